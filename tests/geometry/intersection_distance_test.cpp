#include "geometry/intersection/segment_distance.h"
#include "tests/support/intersection_asking.h"
#include "tests/support/intersection_random.h"

#include <cmath>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

// ---- GuardedDivide ------------------------------------------------------------------------------

TEST(GuardedDivide, DividesWhereTheDenominatorIsLargeEnough) {
    EXPECT_EQ(GuardedDivide(1, 4), 0.25);
    EXPECT_EQ(GuardedDivide(-1, 4), -0.25);
    EXPECT_EQ(GuardedDivide(0, -3), 0.0);
    EXPECT_EQ(GuardedDivide(0, 1e-300), 0.0);
}

TEST(GuardedDivide, RefusesADenominatorOf1e12thOfTheNumeratorOrLess) {
    EXPECT_FALSE(GuardedDivide(1, 1e-12));
    EXPECT_FALSE(GuardedDivide(-1, 1e-12));
    EXPECT_FALSE(GuardedDivide(1, -1e-12));
    EXPECT_TRUE(GuardedDivide(1, std::nextafter(1e-12, 1)));
    EXPECT_TRUE(GuardedDivide(-1, -std::nextafter(1e-12, 1)));
    EXPECT_FALSE(GuardedDivide(0, 0));
    EXPECT_FALSE(GuardedDivide(1, 0));
}

TEST(GuardedDivide, RefusesNaNAndInfiniteOverInfinite) {
    EXPECT_FALSE(GuardedDivide(kNaN, 1));
    EXPECT_FALSE(GuardedDivide(1, kNaN));
    EXPECT_FALSE(GuardedDivide(kInf, kInf));
    EXPECT_EQ(GuardedDivide(1, kInf), 0.0);
}

// ---- RangesOverlap ------------------------------------------------------------------------------

constexpr Range3d kUnitBox = {{0, 0, 0}, {1, 1, 1}};

TEST(RangesOverlap, CountsAFaceAnEdgeAndACorner) {
    EXPECT_TRUE(RangesOverlap(kUnitBox, {{1, 0, 0}, {2, 1, 1}}));
    EXPECT_TRUE(RangesOverlap(kUnitBox, {{-1, -1, 0}, {0, 0, 1}}));
    EXPECT_TRUE(RangesOverlap(kUnitBox, {{1, 1, 1}, {1, 1, 1}}));
}

TEST(RangesOverlap, MissesByTheLeastStepOnEachAxisAndSide) {
    const double above = std::nextafter(1.0, 2.0);
    const double below = -std::numeric_limits<double>::denorm_min();
    const Range3d apart[] = {{{above, 0, 0}, {2, 1, 1}},  {{0, above, 0}, {1, 2, 1}},
                             {{0, 0, above}, {1, 1, 2}},  {{-1, 0, 0}, {below, 1, 1}},
                             {{0, -1, 0}, {1, below, 1}}, {{0, 0, -1}, {1, 1, below}}};
    for (const Range3d& box : apart) {
        EXPECT_FALSE(RangesOverlap(kUnitBox, box));
        EXPECT_FALSE(RangesOverlap(box, kUnitBox));
    }
}

TEST(RangesOverlap, IsFalseWithANaNAnywhere) {
    for (int place = 0; place < 6; ++place) {
        Range3d box = kUnitBox;
        double* const corners[] = {&box.low.x,  &box.low.y,  &box.low.z,
                                   &box.high.x, &box.high.y, &box.high.z};
        *corners[place] = kNaN;
        EXPECT_FALSE(RangesOverlap(kUnitBox, box)) << place;
        EXPECT_FALSE(RangesOverlap(box, kUnitBox)) << place;
    }
}

// ---- PointNearSegment ---------------------------------------------------------------------------

struct PointCase {
    const char* name;
    Point3d point;
    double tolerance;
    bool isNear;
};

/// Against the segment from (0, 0, 0) to (4, 0, 0).
constexpr PointCase kPointCases[] = {
    {"OnTheSegment", {2, 0, 0}, 0, true},
    {"OnAnEnd", {4, 0, 0}, 0, true},
    {"BesideExactlyAtTheTolerance", {2, 0, 3}, 3, true},
    {"BesideBeyondTheTolerance", {2, 3, 0}, 2.999, false},
    {"BeforeTheStartIsMeasuredFromTheStart", {-3, 4, 0}, 5, true},
    {"BeforeTheStartTooFar", {-3, 4, 0}, 4.999, false},
    {"BeyondTheEndIsMeasuredFromTheEnd", {7, 4, 0}, 5, true},
    {"BeyondTheEndTooFar", {7, 0, 4}, 4.999, false},
    {"HeightCounts", {2, 0, 1}, 0.5, false},
    {"NegativeToleranceNeverHits", {2, 0, 0}, -1, false},
    {"MinusZeroIsZero", {2, 0, 0}, -0.0, true},
    {"NaNToleranceNeverHits", {2, 0, 0}, kNaN, false},
    {"InfiniteToleranceAlwaysHits", {1e300, 1e300, 0}, kInf, true},
    {"NaNPointNeverHits", {2, kNaN, 0}, kInf, false},
};

class PointNearSegmentTable : public testing::TestWithParam<PointCase> {};

TEST_P(PointNearSegmentTable, MeasuresToTheClosestPlace) {
    const PointCase& given = GetParam();
    const Point3d start = {0, 0, 0};
    const Point3d end = {4, 0, 0};
    EXPECT_EQ(PointNearSegment(given.point, start, end, given.tolerance), given.isNear);
    EXPECT_EQ(PointNearSegment(given.point, end, start, given.tolerance), given.isNear);
}

INSTANTIATE_TEST_SUITE_P(Table, PointNearSegmentTable, testing::ValuesIn(kPointCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PointNearSegment, MeasuresToTheStartOfASegmentOfNoLength) {
    EXPECT_TRUE(PointNearSegment({3, 4, 0}, {0, 0, 0}, {0, 0, 0}, 5));
    EXPECT_FALSE(PointNearSegment({3, 4, 0}, {0, 0, 0}, {0, 0, 0}, 4.999));
}

TEST(PointNearSegment, TakesTheStartWhereTheSegmentIsTooShortToDivideBy) {
    // dot(d, d) is 1e-12 of dot(P - A, d): the end would be nearer, by a hair
    const Point3d end = {1e-7, 0, 0};
    const Point3d point = {1e6, 0, 0};
    EXPECT_FALSE(PointNearSegment(point, {0, 0, 0}, end, 1e6 - 1e-8));
    EXPECT_TRUE(PointNearSegment({1e3, 0, 0}, {0, 0, 0}, end, 1e3 - 1e-8));
}

// ---- SegmentsNear -------------------------------------------------------------------------------

struct SegmentCase {
    const char* name;
    Point3d startA, endA, startB, endB;
    double tolerance;
    bool isNear;
};

constexpr SegmentCase kSegmentCases[] = {
    {"CrossingInTheMiddle", {0, 0, 0}, {1, 1, 0}, {0, 1, 0}, {1, 0, 0}, 1e-9, true},
    {"SharedEnd", {0, 0, 0}, {1, 1, 0}, {1, 1, 0}, {2, 3, 0}, 1e-14, true},
    {"PassingAbove", {-1, 0, 0}, {1, 0, 0}, {0, -1, 2}, {0, 1, 2}, 2, true},
    {"PassingTooFarAbove", {-1, 0, 0}, {1, 0, 0}, {0, -1, 2}, {0, 1, 2}, 1.999, false},
    {"EndingBeforeTheOther", {-1, 0, 0}, {1, 0, 0}, {0, 3, 0}, {0, 1, 0}, 1, true},
    {"EndingTooFarBeforeTheOther", {-1, 0, 0}, {1, 0, 0}, {0, 3, 0}, {0, 1, 0}, 0.999, false},
    {"Identical", {0, 0, 0}, {1, 1, 0}, {0, 0, 0}, {1, 1, 0}, 10, false},
    {"Reversed", {0, 0, 0}, {1, 1, 0}, {1, 1, 0}, {0, 0, 0}, 10, false},
    {"CollinearAndOverlapping", {0, 0, 0}, {2, 0, 0}, {1, 0, 0}, {3, 0, 0}, 10, false},
    {"CollinearWithASharedEnd", {0, 0, 0}, {1, 1, 0}, {1, 1, 0}, {2, 2, 0}, kInf, false},
    {"ParallelAndClose", {0, 0, 0}, {2, 0, 0}, {0, 0.1, 0}, {2, 0.1, 0}, 1, false},
    {"NoLengthOnTheOther", {1, 0, 0}, {1, 0, 0}, {0, 0, 0}, {2, 0, 0}, 10, false},
    {"NoLengthBoth", {1, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}, 10, false},
    {"NegativeTolerance", {0, 0, 0}, {2, 2, 0}, {0, 2, 0}, {2, 0, 0}, -1e-9, false},
    {"NaNTolerance", {0, 0, 0}, {2, 2, 0}, {0, 2, 0}, {2, 0, 0}, kNaN, false},
    {"InfiniteTolerance", {0, 0, 0}, {1, 1, 0}, {90, 90, 9}, {91, 80, 9}, kInf, true},
    {"NaNCoordinate", {0, 0, 0}, {2, 2, kNaN}, {0, 2, 0}, {2, 0, 0}, kInf, false},
    // The lines meet at (100, 0): the ends nearest to that place are (1, 0) and (0, 1), though (0, 0)
    // and (0, 1) are nearer to each other.
    {"EachIsClampedByItself", {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-100, 2, 0}, 1.2, false},
    {"EachIsClampedByItselfAsFarAsThat", {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-100, 2, 0}, 1.5, true},
};

class SegmentsNearTable : public testing::TestWithParam<SegmentCase> {};

TEST_P(SegmentsNearTable, MeasuresBetweenTheClampedClosestPlacesOfTheLines) {
    const SegmentCase& c = GetParam();
    EXPECT_EQ(SegmentsNear(c.startA, c.endA, c.startB, c.endB, c.tolerance), c.isNear);
    EXPECT_EQ(SegmentsNear(c.startB, c.endB, c.startA, c.endA, c.tolerance), c.isNear);
    EXPECT_EQ(SegmentsNear(c.endA, c.startA, c.startB, c.endB, c.tolerance), c.isNear);
    EXPECT_EQ(SegmentsNear(c.startA, c.endA, c.endB, c.startB, c.tolerance), c.isNear);
}

INSTANTIATE_TEST_SUITE_P(Table, SegmentsNearTable, testing::ValuesIn(kSegmentCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(SegmentsNear, TakesLinesAtAnAngleOfTwoMillionthsForParallel) {
    const auto crossesAt = [](double angle) {
        return SegmentsNear({-1, 0, 0}, {1, 0, 0}, {-1, -angle, 0}, {1, angle, 0}, 0.5);
    };
    EXPECT_TRUE(crossesAt(2.1e-6));
    EXPECT_FALSE(crossesAt(1.9e-6));
}

// ---- Both beside the plain formulas -------------------------------------------------------------

TEST(SegmentDistances, AreThoseOfThePlainFormulas) {
    constexpr Placing kPlacings[] = {Placing::Grid, Placing::Plane, Placing::Cells, Placing::Space,
                                     Placing::TiltedPlane};
    int hits = 0;
    for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
        RandomShapes random(seed, kPlacings[seed % 5], 1);
        random.sprinkleSpecials(seed % 7 == 0 ? 6 : 0);
        const double tolerance = random.tolerance();
        const Points p = {random.vertex(), random.vertex(), random.vertex(), random.vertex()};
        const bool isNear = SegmentsNear(p[0], p[1], p[2], p[3], tolerance);
        EXPECT_EQ(isNear, model::segmentsNear(p[0], p[1], p[2], p[3], tolerance))
            << "seed " << seed;
        EXPECT_EQ(PointNearSegment(p[0], p[1], p[2], tolerance),
                  model::pointNearSegment(p[0], p[1], p[2], tolerance))
            << "seed " << seed;
        hits += isNear;
    }
    EXPECT_GT(hits, 400);
}

}  // namespace
}  // namespace vexa::test
