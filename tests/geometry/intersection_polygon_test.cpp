#include "geometry/intersection/prepared_polygon.h"
#include "tests/support/intersection_asking.h"
#include "tests/support/intersection_random.h"

#include <cmath>
#include <cstdint>
#include <memory_resource>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr double kNear = 1e-9;

/// Without the ranges that the exported tests compare first.
bool holds(const Shape& polygon, const Point3d& point, double tolerance) {
    const Bytes buffer = bufferOf(polygon);
    return PreparedPolygon(*buffer.at<PathList>(kBodyOffset), tolerance,
                           std::pmr::new_delete_resource())
        .PointInPolygon(point);
}
bool isHit(const Shape& polygon, const Point3d& start, const Point3d& end, double tolerance) {
    const Bytes buffer = bufferOf(polygon);
    return PreparedPolygon(*buffer.at<PathList>(kBodyOffset), tolerance,
                           std::pmr::new_delete_resource())
        .SegmentHitsPolygon(start, end);
}

const Shape kSquare = squareShape(-1, -1, 2);
const Shape kWithHole = polygonShape({{square(0, 0, 9)}, {square(3, 3, 3)}});

// ---- Points -------------------------------------------------------------------------------------

TEST(PointInPolygon, WithinTheToleranceOfThePlane) {
    EXPECT_TRUE(holds(kSquare, {0, 0, 0.5}, 0.6));
    EXPECT_TRUE(holds(kSquare, {0, 0, -0.5}, 0.5));
    EXPECT_FALSE(holds(kSquare, {0, 0, 0.5}, 0.4));
}

TEST(PointInPolygon, OutOfItsHoles) {
    EXPECT_TRUE(holds(kWithHole, {1, 1, 0}, 0));
    EXPECT_FALSE(holds(kWithHole, {4, 5, 0}, 0));
    EXPECT_FALSE(holds(kWithHole, {10, 5, 0}, 0));
}

TEST(PointInPolygon, OnTheOuterBoundaryButNotOnAHoles) {
    EXPECT_TRUE(holds(kWithHole, {0, 5, 0}, 0));
    EXPECT_TRUE(holds(kWithHole, {9, 9, 0}, 0));
    EXPECT_FALSE(holds(kWithHole, {3, 5, 0}, 0));
    EXPECT_FALSE(holds(kWithHole, {6, 6, 0}, 0));
    EXPECT_FALSE(holds(kWithHole, {2.75, 5, 0}, 0.25));
}

TEST(PointInPolygon, AsksEveryHole) {
    const Shape holes =
        polygonShape({{square(0, 0, 9)}, {square(1, 1, 1)}, {square(3, 3, 1)}, {square(5, 5, 1)}});
    EXPECT_FALSE(holds(holes, {1.5, 1.6, 0}, 0));
    EXPECT_FALSE(holds(holes, {3.5, 3.6, 0}, 0));
    EXPECT_FALSE(holds(holes, {5.5, 5.6, 0}, 0));
    EXPECT_TRUE(holds(holes, {7.5, 7.6, 0}, 0));
}

TEST(PointInPolygon, OnAnEdgeOfAGridPolygonAtToleranceZero) {
    const Point3d corners[] = {{0, 0, 0}, {9, 3, 0}, {7, 8, 0}, {-2, 5, 0}};
    const Shape quad = polygonShape({{Points(std::begin(corners), std::end(corners))}});
    EXPECT_TRUE(holds(quad, {3, 1, 0}, 0));
    EXPECT_TRUE(holds(quad, {6, 2, 0}, 0));
    EXPECT_TRUE(holds(quad, {-2, 5, 0}, 0));
}

TEST(PointInPolygon, OfARingInSeveralRuns) {
    const Shape runs = polygonShape({{{{0, 0, 0}}, {{4, 0, 0}, {4, 4, 0}}, {}, {{0, 4, 0}}}});
    EXPECT_TRUE(holds(runs, {2, 2, 0}, 0));
    EXPECT_TRUE(holds(runs, {0, 2, 0}, 0));
    EXPECT_FALSE(holds(runs, {5, 2, 0}, 0));
}

TEST(PointInPolygon, OfAnUprightAndATiltedRing) {
    const Shape upright = polygonShape({{{{2, 0, 0}, {2, 4, 0}, {2, 4, 4}, {2, 0, 4}}}});
    EXPECT_TRUE(holds(upright, {2, 1, 1}, kNear));
    EXPECT_FALSE(holds(upright, {2, 5, 1}, kNear));
    EXPECT_FALSE(holds(upright, {2.1, 1, 1}, kNear));
    const Shape tilted = polygonShape({{{{0, 0, 0}, {4, 0, 4}, {4, 4, 4}, {0, 4, 0}}}});
    EXPECT_TRUE(holds(tilted, {1, 1, 1}, kNear));
    EXPECT_FALSE(holds(tilted, {1, 1, 2}, 0.7));
    EXPECT_TRUE(holds(tilted, {1, 1, 2}, 0.71));
}

TEST(PointInPolygon, OfALineIsJudgedInXAndY) {
    // no plane and no frame: every height is level with it
    const Shape flat = polygonShape({{{{0, 0, 0}, {2, 2, 0}, {4, 4, 0}}}});
    EXPECT_TRUE(holds(flat, {1, 1, 77}, 0));
    EXPECT_FALSE(holds(flat, {1, 1.5, 0}, 0));
    EXPECT_TRUE(holds(polygonShape({{{{0, 0, 0}, {2, 2, 0}}}}), {1, 1, 5}, 0));
}

TEST(PointInPolygon, OfNoneOrOnePointHoldsNothing) {
    EXPECT_FALSE(holds(polygonShape({{{{1, 1, 1}}}}), {1, 1, 1}, 5));
    EXPECT_FALSE(holds(polygonShape({{{}}}), {0, 0, 0}, 5));
    EXPECT_FALSE(holds(polygonShape({{}}), {0, 0, 0}, 5));
    EXPECT_FALSE(holds(polygonShape({}), {0, 0, 0}, 5));
}

TEST(PointInPolygon, IsNotThereWhereATooLargeToleranceLeavesItUndecided) {
    const Shape diamond = polygonShape({{{{4, 0, 0}, {0, 4, 0}, {-4, 0, 0}, {0, -4, 0}}}});
    EXPECT_EQ(ask(pointShape({0, 0, 0}), diamond, 2.7), kHit);
    EXPECT_EQ(ask(pointShape({0, 0, 0}), diamond, 2.9), kMiss);
    EXPECT_EQ(ask(pointShape({0, 0, 0}), diamond, 4), kHit);
}

TEST(PointInPolygon, OnlyWhereTheToleranceIsNotNegative) {
    EXPECT_FALSE(holds(kSquare, {0, 0, 0}, -1e-300));
    EXPECT_TRUE(holds(kSquare, {0, 0, 0}, -0.0));
    EXPECT_TRUE(holds(kSquare, {0, 0, 99}, kNaN));
}

TEST(IntersectPointPolygon, WritesItsAnswerOverWhateverTheResultWas) {
    EXPECT_EQ(ask(pointShape({4, 5, 0}), kWithHole, 0, 1), kMiss);
    EXPECT_EQ(ask(pointShape({1, 1, 0}), kWithHole, 0, 7), kHit);
    EXPECT_EQ(ask(multipointShape({{4, 5, 0}, {3, 4, 0}}), kWithHole, 0, 1), kMiss);
    EXPECT_EQ(ask(multipointShape({{4, 5, 0}, {1, 4, 0}}), asMulti(kWithHole), 0, 1), kHit);
}

// ---- Segments -----------------------------------------------------------------------------------

TEST(SegmentHitsPolygon, AsItsWholeLineWhereItIsNotParallel) {
    EXPECT_TRUE(isHit(kSquare, {0, 0, 1}, {0, 0, 2}, 0));
    EXPECT_TRUE(isHit(kSquare, {0, 0, -1}, {0, 0, -1000}, 0));
    EXPECT_FALSE(isHit(kSquare, {3, 0, 1}, {3, 0, 2}, 0));
    EXPECT_TRUE(isHit(kSquare, {3, 0, 3}, {2.5, 0, 2.5}, 0));
}

TEST(SegmentHitsPolygon, NotThroughAHole) {
    EXPECT_FALSE(isHit(kWithHole, {4, 5, 1}, {4, 5, 2}, 0));
    EXPECT_TRUE(isHit(kWithHole, {2, 5, 1}, {2, 5, 2}, 0));
    EXPECT_FALSE(isHit(kWithHole, {3, 5, 1}, {3, 5, 2}, 0));
}

TEST(SegmentHitsPolygon, InThePlaneByAnEndOrACrossing) {
    EXPECT_TRUE(isHit(kSquare, {0, 0, 0}, {5, 0.5, 0}, 0));
    EXPECT_TRUE(isHit(kSquare, {5, 0.5, 0}, {0, 0, 0}, 0));
    EXPECT_TRUE(isHit(kSquare, {-5, 0.25, 0}, {5, 0.5, 0}, 0));
    EXPECT_TRUE(isHit(kSquare, {-2, 0, 0}, {0, 2, 0}, 0)) << "touches a corner";
    EXPECT_TRUE(isHit(kSquare, {-5, 1, 0}, {5, 1, 0}, 0)) << "runs along an edge";
    EXPECT_FALSE(isHit(kSquare, {-5, 0.25, 0}, {-3, 0.5, 0}, 0)) << "its line would";
    EXPECT_FALSE(isHit(kSquare, {-5, 3, 0}, {5, 3, 0}, 0));
}

TEST(SegmentHitsPolygon, InThePlaneNotWhereItMeetsAHole) {
    EXPECT_FALSE(isHit(kWithHole, {-5, 4, 0}, {15, 5, 0}, 0)) << "crosses ring and hole";
    EXPECT_TRUE(isHit(kWithHole, {-5, 1, 0}, {15, 2, 0}, 0)) << "passes the hole by";
    EXPECT_FALSE(isHit(kWithHole, {1, 4, 0}, {4, 4, 0}, 0)) << "ends in the hole";
}

TEST(SegmentHitsPolygon, ParallelOnlyWithinTheToleranceOfThePlane) {
    EXPECT_FALSE(isHit(kSquare, {-5, 0, 0.5}, {5, 0.1, 0.5}, 0.4));
    EXPECT_TRUE(isHit(kSquare, {-5, 0, 0.5}, {5, 0.1, 0.5}, 0.5));
    // level to within the division's guard, yet its ends differ
    EXPECT_FALSE(isHit(kSquare, {-5e5, 0, 1}, {5e5, 0.1, 1}, 0.99));
}

TEST(SegmentHitsPolygon, OfNoLengthByItsEndsAlone) {
    EXPECT_TRUE(isHit(kSquare, {0, 0, 0}, {0, 0, 0}, 0));
    EXPECT_FALSE(isHit(kSquare, {2, 1, 0}, {2, 1, 0}, 0));
    EXPECT_FALSE(isHit(kSquare, {0, 0, 1}, {0, 0, 1}, 0.5));
}

/// A comb of so many teeth, 1 apart, under y = 1 and over y = -1.
Points comb(int teeth) {
    Points outline = {{0, -2, 0}};
    for (int tooth = 0; tooth < teeth; ++tooth) {
        outline.push_back({tooth * 1.0, 1, 0});
        outline.push_back({tooth + 0.5, -1, 0});
    }
    outline.push_back({teeth * 1.0, -2, 0});
    return outline;
}

TEST(SegmentHitsPolygon, TakesMoreThan32CrossingsOfItsLineForNone) {
    // between two teeth at y = 0, across one flank
    const auto crossesComb = [](int teeth, double fromX, double toX) {
        return isHit(polygonShape({{comb(teeth)}}), {fromX, 0, 0}, {toX, 0, 0}, 0);
    };
    EXPECT_TRUE(crossesComb(16, -9, 90));
    EXPECT_FALSE(crossesComb(17, -9, 90)) << "34 crossings";
    EXPECT_TRUE(crossesComb(16, 0.5, 1.5)) << "over a tooth, both ends in gaps";
    EXPECT_FALSE(crossesComb(17, 0.5, 1.5)) << "the line's crossings count, not the segment's";
    EXPECT_FALSE(crossesComb(300, 0.5, 1.5));
    EXPECT_TRUE(crossesComb(300, 1, 1.5)) << "an end inside needs no crossing";
}

TEST(SegmentHitsPolygon, CountsAVertexOnItsLineOnce) {
    // 31 or 32 teeth that end on the line; the last flank crosses it once more, and the first edge
    for (const int teeth : {15, 30, 31, 32, 33, 40}) {
        Points outline = {{-1, -2, 0}};
        for (int tooth = 0; tooth < teeth; ++tooth) {
            outline.push_back({tooth * 1.0, 0, 0});
            if (tooth % 3 == 0) outline.push_back(outline.back());
            outline.push_back({tooth + 0.5, -1, 0});
        }
        outline.push_back({teeth * 1.0, -2, 0});
        EXPECT_EQ(isHit(polygonShape({{outline}}), {0.25, 0, 0}, {1.25, 0, 0}, 0), teeth <= 32)
            << teeth;
        outline.push_back(outline.front());
        EXPECT_EQ(isHit(polygonShape({{outline}}), {0.25, 0, 0}, {1.25, 0, 0}, 0), teeth <= 32)
            << teeth << ", closed";
    }
}

TEST(IntersectLineStringPolygon, RejectsByTheRangesALineThatWouldHit) {
    EXPECT_EQ(ask(line({{0, 0, 1}, {0, 0, 2}}), kSquare, 9, 7), kMiss);
    // another segment brings the ranges together
    EXPECT_EQ(ask(line({{0, 0, 1}, {0, 0, 2}, {5, 5, 2}, {5, 5, 0}}), kSquare, 0), kHit);
}

TEST(IntersectLineStringPolygon, TakesASegmentForItsLineHoweverFarAndManyTheOthersAre) {
    Points way;
    for (int i = 0; i < 60; ++i) way.push_back({50.0 + i, 60.0 + i % 7, 100.0});
    way.push_back({1000, 1000, 1000});
    way.push_back({999, 999, 999});  // its line meets the square's middle
    way.push_back({1200, 999, 999});
    for (int i = 0; i < 60; ++i) way.push_back({1300.0 + i, 900.0 + i % 5, 999});
    Points ring;
    for (int i = 0; i < 100; ++i) {
        ring.push_back({std::cos(i * 0.0628), std::sin(i * 0.0628), 0});
    }
    const Shape disc = polygonShape({{ring}});
    const Shape reaching = multipolygonShape({{{ring}}, {{square(70, 61, 1, 100)}}});
    EXPECT_EQ(ask(line(way), reaching, kNear), kHit);
    EXPECT_EQ(model::intersect(line(way), reaching, kNear, 0), 1U);
    way.erase(way.begin() + 60, way.begin() + 63);
    const Shape apart =
        multipolygonShape({{{ring}}, {{square(5, 61, 1, 100)}, {square(5, 61, 1, 100)}}});
    EXPECT_EQ(ask(line(way), apart, kNear),
              (Asked{0, model::intersect(line(way), apart, kNear, 0)}));
    EXPECT_TRUE(isHit(disc, {1000, 1000, 1000}, {999, 999, 999}, 0));
}

// ---- Both beside the plain steps ----------------------------------------------------------------

TEST(PreparedPolygon, AnswersManyQuestionsAsThePlainStepsDo) {
    constexpr Placing kPlacings[] = {Placing::Grid,        Placing::Plane, Placing::ShearedGrid,
                                     Placing::TiltedPlane, Placing::Cells, Placing::Space,
                                     Placing::NearlyFlat};
    int hits = 0;
    for (std::uint64_t seed = 1; seed <= 210; ++seed) {
        RandomShapes random(seed, kPlacings[seed % 7], seed % 10 == 0 ? 120 : 12);
        random.sprinkleSpecials(seed % 6 == 0 ? 20 : 0);
        const Shape polygon = random.ofType(VEXA_POLYGON);
        const Paths& rings = polygon.parts.front();
        const double tolerance = random.tolerance();
        const Bytes buffer = bufferOf(polygon);
        PreparedPolygon prepared(*buffer.at<PathList>(kBodyOffset), tolerance,
                                 std::pmr::new_delete_resource());
        for (int i = 0; i < 40; ++i) {
            const Point3d a = random.vertex();
            const Point3d b = random.vertex();
            const bool isHeld = model::pointInPolygon(a, rings, tolerance);
            EXPECT_EQ(prepared.PointInPolygon(a), isHeld) << "seed " << seed << ", point " << i;
            EXPECT_EQ(prepared.SegmentHitsPolygon(a, b),
                      model::segmentHitsPolygon(a, b, rings, tolerance))
                << "seed " << seed << ", segment " << i;
            hits += isHeld;
        }
    }
    EXPECT_GT(hits, 500);
}

}  // namespace
}  // namespace vexa::test
