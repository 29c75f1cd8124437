#include "geometry/intersection/edge_crossings.h"
#include "geometry/intersection/ring_classification.h"
#include "geometry/intersection/ring_frame.h"
#include "tests/support/intersection_asking.h"
#include "tests/support/intersection_random.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory_resource>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace vexa {

static void PrintTo(Side side, std::ostream* out) {
    *out << static_cast<int>(side);
}

namespace test {
namespace {

bool operator==(const Point3d& a, const Point3d& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

const Point3d kSeparatorPoint = {0, kLargest, 0};

// ---- PolygonNormal ------------------------------------------------------------------------------

TEST(PolygonNormal, HasTheFirstPointForItsOrigin) {
    EXPECT_TRUE((PolygonNormal(square(3, 4, 2, 5)).origin == Point3d{3, 4, 5}));
}

TEST(PolygonNormal, PointsToTheSideFromWhichTheRingRunsCounterClockwise) {
    Points ring = square(3, 4, 2);
    EXPECT_TRUE((PolygonNormal(ring).normal == Point3d{0, 0, 1}));
    std::reverse(ring.begin(), ring.end());
    EXPECT_TRUE((PolygonNormal(ring).normal == Point3d{0, 0, -1}));
}

TEST(PolygonNormal, IsZeroForFewerThanThreePointsAndForALine) {
    const Point3d zero = {0, 0, 0};
    EXPECT_TRUE(PolygonNormal(Points{}).normal == zero);
    EXPECT_TRUE(PolygonNormal(Points{{1, 2, 3}}).normal == zero);
    EXPECT_TRUE(PolygonNormal(Points{{1, 2, 3}, {4, 5, 6}}).normal == zero);
    EXPECT_TRUE(PolygonNormal(Points{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}).normal == zero);
    EXPECT_TRUE(PolygonNormal(Points{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {5, 5, 5}}).normal == zero);
}

TEST(PolygonNormal, OfThreePointsIsThatOfTheTriangle) {
    EXPECT_TRUE(
        (PolygonNormal(Points{{0, 0, 0}, {0, 3, 0}, {0, 0, 9}}).normal == Point3d{1, 0, 0}));
}

TEST(PolygonNormal, StartsANewFanBehindASeparator) {
    // two triangles apart from each other: both look up, and one fan over all would not
    const Points rings = {{0, 0, 0},     {1, 0, 0},     {0, 1, 0},    kSeparatorPoint,
                          {-99, 50, 40}, {-98, 50, 40}, {-99, 51, 40}};
    EXPECT_TRUE((PolygonNormal(rings).normal == Point3d{0, 0, 1}));
}

// ---- FitRingFrame -------------------------------------------------------------------------------

TEST(FitRingFrame, FailsForFewerThanThreePointsAndForALine) {
    EXPECT_FALSE(FitRingFrame(Points{}));
    EXPECT_FALSE(FitRingFrame(Points{{1, 0, 0}, {0, 1, 0}}));
    EXPECT_FALSE(FitRingFrame(Points{{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}}));
    EXPECT_FALSE(FitRingFrame(Points{{0, 0, 0}, {5, 5, 0}, {1, 1, 0}, {2, 2, 0}}));
}

TEST(FitRingFrame, FailsWhereNothingIsFartherFromTheLineThan1e12OfTheSize) {
    const auto bentBy = [](double height) {
        return Points{{0, 0, 0}, {1000, 0, 0}, {500, height, 0}};
    };
    EXPECT_FALSE(FitRingFrame(bentBy(0.99e-9)));
    EXPECT_TRUE(FitRingFrame(bentBy(1.01e-9)));
}

TEST(FitRingFrame, FailsWhereTheNormalVanishes) {
    // squares overflow: the direction is divided by an infinite length
    EXPECT_FALSE(FitRingFrame(Points{{0, 0, 0}, {1e160, 0, 0}, {0, 1e160, 0}, {0, 0, 0}}));
}

TEST(FitRingFrame, IsThatOfThePlainSteps) {
    constexpr Placing kPlacings[] = {Placing::Grid,        Placing::Plane, Placing::ShearedGrid,
                                     Placing::TiltedPlane, Placing::Cells, Placing::Space,
                                     Placing::NearlyFlat};
    int fitted = 0;
    for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
        RandomShapes random(seed, kPlacings[seed % 7], 1);
        const Points ring = random.outline(random.below(12));
        const auto frame = FitRingFrame(ring);
        const model::Frame expected = model::fitRingFrame(ring);
        ASSERT_EQ(frame.has_value(), expected.isFitted) << "seed " << seed;
        if (!frame) continue;

        ++fitted;
        const double* const m = frame->toLocal.m;
        EXPECT_TRUE(frame->normal == expected.normal) << "seed " << seed;
        EXPECT_TRUE((Point3d{m[0], m[1], m[2]} == expected.xAxis)) << "seed " << seed;
        EXPECT_TRUE((Point3d{m[4], m[5], m[6]} == expected.yAxis)) << "seed " << seed;
        EXPECT_TRUE((Point3d{m[8], m[9], m[10]} == expected.zAxis)) << "seed " << seed;
        EXPECT_TRUE((Point3d{m[3], m[7], m[11]} == expected.translation)) << "seed " << seed;

        const auto plane = PolygonNormal(ring);
        EXPECT_TRUE(plane.normal == model::polygonNormal(ring).normal) << "seed " << seed;
    }
    EXPECT_GT(fitted, 1500);
}

TEST(AreParallel, HoldsTo1e12OfTheLengths) {
    EXPECT_TRUE(areParallel({0, 0, 2}, {0, 0, -7}));
    EXPECT_TRUE(areParallel({1e6, 0, 0}, {1e6, 0.9e-6, 0}));
    EXPECT_FALSE(areParallel({1e6, 0, 0}, {1e6, 1.1e-6, 0}));
    EXPECT_TRUE(areParallel({0, 0, 0}, {1, 2, 3}));
}

// ---- ClassifyPointInRing ------------------------------------------------------------------------

struct ClassifyCase {
    const char* name;
    Point3d point;
    double tolerance;
    Side side;
};

/// Against the closed square from (0, 0) to (4, 4).
constexpr ClassifyCase kClassifyCases[] = {
    {"InTheMiddle", {2, 2, 0}, 0, Side::Inside},
    {"Left", {-1, 2, 0}, 0, Side::Outside},
    {"Right", {5, 2, 0}, 0, Side::Outside},
    {"Above", {2, 5, 0}, 0, Side::Outside},
    {"OnTheLeftEdge", {0, 2, 0}, 0, Side::OnBoundary},
    {"OnTheLowerEdge", {2, 0, 0}, 0, Side::OnBoundary},
    {"OnTheUpperEdge", {3, 4, 0}, 0, Side::OnBoundary},
    {"OnACorner", {4, 4, 0}, 0, Side::OnBoundary},
    {"LevelWithAnEdgeBesideIt", {5, 4, 0}, 0, Side::Outside},
    {"LevelWithAnEdgeOnTheOtherSide", {-3, 0, 0}, 0, Side::Outside},
    {"BesideWithinTheTolerance", {-0.25, 2, 0}, 0.25, Side::OnBoundary},
    {"BesideBeyondTheTolerance", {-0.25, 2, 0}, 0.2, Side::Outside},
    {"OnAnEdgeWithANegativeTolerance", {0, 2, 0}, -1, Side::Outside},
    {"OnTheOtherEdgeWithANegativeTolerance", {4, 2, 0}, -1, Side::Inside},
    {"NaNTolerance", {2, 2, 0}, kNaN, Side::Inside},
    {"InfiniteToleranceIsNearAVertex", {90, 90, 0}, kInf, Side::OnBoundary},
    {"HeightIsIgnored", {2, 2, 1e9}, 0, Side::Inside},
};

class ClassifyPointInRingTable : public testing::TestWithParam<ClassifyCase> {};

TEST_P(ClassifyPointInRingTable, TellsTheSide) {
    const ClassifyCase& c = GetParam();
    EXPECT_EQ(ClassifyPointInRing(c.point, square(0, 0, 4), c.tolerance), c.side);
    EXPECT_EQ(ClassifyPointInRings(c.point, square(0, 0, 4), c.tolerance), c.side);
}

TEST_P(ClassifyPointInRingTable, NeedsNoRepeatOfTheFirstVertex) {
    const ClassifyCase& c = GetParam();
    Points ring = square(0, 0, 4);
    ring.pop_back();
    EXPECT_EQ(ClassifyPointInRing(c.point, ring, c.tolerance), c.side);
}

INSTANTIATE_TEST_SUITE_P(Table, ClassifyPointInRingTable, testing::ValuesIn(kClassifyCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ClassifyPointInRing, ComparesWithTheOnlyPoint) {
    const Points ring = {{1, 2, 3}};
    EXPECT_EQ(ClassifyPointInRing({1.5, 2, 99}, ring, 0.5), Side::OnBoundary);
    EXPECT_EQ(ClassifyPointInRing({1.5, 2, 3}, ring, 0.4), Side::Outside);
    EXPECT_EQ(ClassifyPointInRing({1, 2.5, 3}, ring, 0.4), Side::Outside);
}

TEST(ClassifyPointInRing, TakesALevelVertexAndACrossingInTheOrderInWhichItMeetsThem) {
    // The ring passes through the point's neighbourhood and has a vertex level with it. Started at the
    // vertex, the horizontal count gives up and a ray decides; started before the crossing, the
    // crossing does.
    const Points crossingFirst = {{0.3, 4, 0}, {-0.3, -4, 0}, {9, -4, 0}, {9, 0, 0}, {9, 4, 0}};
    Points levelFirst = crossingFirst;
    std::rotate(levelFirst.begin(), levelFirst.begin() + 4, levelFirst.end());
    std::rotate(levelFirst.begin(), levelFirst.begin() + 4, levelFirst.end());
    for (const double x : {-0.2, -0.1, 0.05, 0.1, 0.2, 0.29}) {
        for (const double tolerance : {0.0, 0.1, 0.2, 0.25}) {
            for (Points ring : {crossingFirst, levelFirst}) {
                EXPECT_EQ(static_cast<int>(ClassifyPointInRing({x, 0, 0}, ring, tolerance)),
                          model::classifyPointInRing({x, 0, 0}, ring, tolerance))
                    << x << " at " << tolerance;
            }
        }
    }
    EXPECT_EQ(ClassifyPointInRing({-0.05, 0, 0}, crossingFirst, 0.05), Side::OnBoundary);
}

TEST(ClassifyPointInRing, MeasuresNearnessAlongTheCountingLine) {
    // the slanted edge passes 4.5 from the point, and 10 on the point's own height
    const Points ring = {{0, 0, 0}, {100, 50, 0}, {100, 90, 0}, {0, 90, 0}};
    EXPECT_EQ(ClassifyPointInRing({50, 20, 0}, ring, 9.9), Side::Outside);
    EXPECT_EQ(ClassifyPointInRing({50, 20, 0}, ring, 10), Side::OnBoundary);
}

TEST(ClassifyPointInRing, CannotDecideWhereEveryRayMeetsAVertex) {
    const Points diamond = {{4, 0, 0}, {0, 4, 0}, {-4, 0, 0}, {0, -4, 0}};
    EXPECT_EQ(ClassifyPointInRing({0, 0, 0}, diamond, 2.7), Side::Inside);
    EXPECT_EQ(ClassifyPointInRing({0, 0, 0}, diamond, 2.9), Side::Undecidable);
    EXPECT_EQ(ClassifyPointInRing({0, 0, 0}, diamond, 4), Side::OnBoundary);
}

TEST(ClassifyPointInRings, EndsAtTheFirstRingThatCannotDecide) {
    Points rings = {{4, 0, 0}, {0, 4, 0}, {-4, 0, 0}, {0, -4, 0}, kSeparatorPoint};
    for (const Point3d& vertex : square(-1, -1, 2)) rings.push_back(vertex);
    EXPECT_EQ(ClassifyPointInRings({0, 0, 0}, rings, 2.9), Side::Undecidable);
    std::rotate(rings.begin(), rings.begin() + 5, rings.end());
    rings.insert(rings.begin() + 5, kSeparatorPoint);
    EXPECT_EQ(ClassifyPointInRings({0, 0, 0}, rings, 2.9), Side::OnBoundary);
}

// ---- ClassifyPointInRings -----------------------------------------------------------------------

TEST(ClassifyPointInRings, CountsTheRingsThatHoldThePoint) {
    Points rings = square(0, 0, 10);
    rings.push_back(kSeparatorPoint);
    const Points inner = square(3, 3, 2);
    rings.insert(rings.end(), inner.begin(), inner.end());
    EXPECT_EQ(ClassifyPointInRings({1, 1, 0}, rings, 0), Side::Inside);
    EXPECT_EQ(ClassifyPointInRings({4, 4, 0}, rings, 0), Side::Outside);
    EXPECT_EQ(ClassifyPointInRings({3, 4, 0}, rings, 0), Side::OnBoundary);
}

TEST(ClassifyPointInRings, SkipsRingsOfOnePointAndHoldsNothingInThem) {
    EXPECT_EQ(ClassifyPointInRings({1, 1, 0}, Points{}, 5), Side::Outside);
    EXPECT_EQ(ClassifyPointInRings({1, 1, 0}, Points{{1, 1, 0}}, 5), Side::Outside);
    EXPECT_EQ(ClassifyPointInRings({1, 1, 0}, Points{{1, 1, 0}, kSeparatorPoint, {1, 1, 0}}, 5),
              Side::Outside);
    EXPECT_EQ(ClassifyPointInRings({1, 1, 0}, Points{{1, 1, 0}, {1, 1, 0}}, 5), Side::OnBoundary);
}

TEST(ClassifyPointInRings, TakesOnlyTheLargestFiniteNumberForASeparator) {
    for (const double end : {kInf, -kLargest, kNaN}) {
        Points rings = square(0, 0, 10);
        rings.push_back({end, 5, 0});
        rings.push_back({4, 4, 0});
        EXPECT_EQ(static_cast<int>(ClassifyPointInRings({5, 6, 0}, rings, 0)),
                  model::classifyPointInRing({5, 6, 0}, rings, 0));
    }
    for (const Point3d& separator :
         {Point3d{kLargest, 0, 0}, Point3d{0, kLargest, 0}, Point3d{0, 0, kLargest}}) {
        Points rings = square(0, 0, 10);
        rings.push_back(separator);
        rings.push_back({900, 4, 0});
        EXPECT_EQ(ClassifyPointInRings({500, 4, 0}, rings, 0), Side::Outside);
        EXPECT_EQ(ClassifyPointInRings({5, 4, 0}, rings, 0), Side::Inside);
    }
}

TEST(RingClassifier, TellsOfEveryPointWhatTheSinglePassTells) {
    constexpr Placing kPlacings[] = {Placing::Grid, Placing::Plane, Placing::Cells};
    int inside = 0;
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        RandomShapes random(seed, kPlacings[seed % 3], 1);
        random.sprinkleSpecials(seed % 5 == 0 ? 40 : 0);
        const Points ring = random.outline(random.below(seed % 10 == 0 ? 300 : 40));
        const double tolerance = random.tolerance();
        RingClassifier classifier(ring, tolerance, std::pmr::new_delete_resource());
        for (int i = 0; i < 60; ++i) {
            const Point3d point = random.vertex();
            const int expected = model::classifyPointInRings(point, ring, tolerance);
            EXPECT_EQ(static_cast<int>(classifier.classify(point)), expected)
                << "seed " << seed << ", point " << i;
            EXPECT_EQ(static_cast<int>(ClassifyPointInRings(point, ring, tolerance)), expected)
                << "seed " << seed << ", point " << i;
            inside += expected == 1;
        }
    }
    EXPECT_GT(inside, 500);
}

// ---- EdgesCross ---------------------------------------------------------------------------------

bool cross(const Points& e, bool closeE, const Points& r, bool closeR) {
    return EdgesCross({e, closeE}, {r, closeR});
}

TEST(EdgesCross, SeesACrossingATouchAndASharedEnd) {
    const Points edge = {{0, 0, 0}, {4, 0, 0}};
    EXPECT_TRUE(cross(edge, false, {{2, -1, 0}, {2, 1, 0}}, false));
    EXPECT_TRUE(cross(edge, false, {{2, 0, 0}, {2, 1, 0}}, false));
    EXPECT_TRUE(cross(edge, false, {{4, 0, 0}, {5, 1, 0}}, false));
    EXPECT_FALSE(cross(edge, false, {{5, -1, 0}, {5, 1, 0}}, false));
    EXPECT_FALSE(cross(edge, false, {{2, 1, 0}, {2, 2, 0}}, false));
}

TEST(EdgesCross, ReportsNoParallelEdges) {
    const Points edge = {{0, 0, 0}, {4, 0, 0}};
    EXPECT_FALSE(cross(edge, false, edge, false));
    EXPECT_FALSE(cross(edge, false, {{3, 0, 0}, {1, 0, 0}}, false));
    EXPECT_FALSE(cross(edge, false, {{2, 0, 0}, {2, 0, 0}}, false));
}

TEST(EdgesCross, LooksAtXAndYAlone) {
    EXPECT_TRUE(cross({{0, 0, 9}, {4, 0, 9}}, false, {{2, -1, -9}, {2, 1, -9}}, false));
}

TEST(EdgesCross, AllowsASlackOf1e12OfAnEdge) {
    const Points edge = {{0, 0, 0}, {1, 0, 0}};
    EXPECT_TRUE(cross(edge, false, {{1 + 0.9e-12, -1, 0}, {1 + 0.9e-12, 1, 0}}, false));
    EXPECT_FALSE(cross(edge, false, {{1 + 1.2e-12, -1, 0}, {1 + 1.2e-12, 1, 0}}, false));
    EXPECT_TRUE(cross(edge, false, {{-0.9e-12, 1, 0}, {-0.9e-12, -1, 0}}, false));
    EXPECT_FALSE(cross(edge, false, {{-1.2e-12, 1, 0}, {-1.2e-12, -1, 0}}, false));
}

TEST(EdgesCross, ClosesAPolylineOnlyWhereToldTo) {
    const Points open = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}};
    const Points across = {{0, 2, 0}, {2.5, 2, 0}};
    EXPECT_FALSE(cross(open, false, across, false));
    EXPECT_TRUE(cross(open, true, across, false));
    EXPECT_FALSE(cross(across, false, open, false));
    EXPECT_TRUE(cross(across, false, open, true));
}

TEST(EdgesCross, HasNoEdgesInFewerThanTwoVertices) {
    const Points edge = {{-1, 0, 0}, {1, 0, 0}};
    EXPECT_FALSE(cross({}, true, edge, true));
    EXPECT_FALSE(cross(edge, true, {{0, 0, 0}}, true));
}

TEST(EdgesCross, AnswersAsEveryPairOfEdgesAskedInTurn) {
    int hits = 0;
    for (std::uint64_t seed = 1; seed <= 1500; ++seed) {
        RandomShapes random(seed, seed % 2 == 0 ? Placing::Grid : Placing::Plane, 1);
        random.sprinkleSpecials(seed % 9 == 0 ? 20 : 0);
        const std::size_t most = seed % 50 == 0 ? 200 : 12;
        const Points e = random.trailOf(random.below(most));
        const Points r = random.trailOf(random.below(most));
        const bool closeE = random.oneIn(2);
        const bool closeR = random.oneIn(2);
        const bool expected = model::edgesCross(e, closeE, r, closeR);
        EXPECT_EQ(cross(e, closeE, r, closeR), expected) << "seed " << seed;
        hits += expected;
    }
    EXPECT_GT(hits, 200);
    EXPECT_LT(hits, 1200);
}

}  // namespace
}  // namespace test
}  // namespace vexa
