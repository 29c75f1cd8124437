#include "tests/support/intersection_asking.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr double kNear = 1e-9;

// ---- The ranges come first ----------------------------------------------------------------------

TEST(IntersectRanges, AreNotWidenedByTheTolerance) {
    const Shape low = line({{0, 0, 0}, {1, 1, 0}});
    const Shape high = line({{0, 1, 0.5}, {1, 0, 0.5}});
    for (const double tolerance : {1.0, kLargest, kInf}) {
        EXPECT_EQ(ask(low, high, tolerance, 7), kMiss);
        EXPECT_EQ(ask(pointShape({0.5, 0.5, 0.5}), squareShape(0, 0, 1), tolerance, 7), kMiss);
        EXPECT_EQ(ask(pointShape({1.5, 0, 0}), low, tolerance, 7), kMiss);
    }
}

TEST(IntersectRanges, LetAPointAboveASquareHitOnlyWhereAnotherMemberReachesThere) {
    const Point3d above = {0.5, 0.5, 0.5};
    const Polygons reaching = {{{square(0, 0, 1)}}, {{square(5, 5, 1, 9)}}};
    EXPECT_EQ(ask(pointShape(above), multipolygonShape(reaching), 0.6), kHit);
    EXPECT_EQ(ask(pointShape(above), multipolygonShape(reaching), 0.4), kMiss);
    EXPECT_EQ(ask(pointShape(above), squareShape(0, 0, 1), 0.6), kMiss);
}

TEST(IntersectRanges, WriteZeroForEveryPairApartWhateverTheResultWas) {
    const Shape shapes[] = {pointShape({0, 0, 0}),
                            line({{0, 0, 0}, {1, 1, 0}}),
                            squareShape(0, 0, 1),
                            multipointShape({{0, 0, 0}}),
                            multilineShape({{{{0, 0, 0}, {1, 1, 0}}}}),
                            multipolygonShape({{{square(0, 0, 1)}}})};
    const Shape farther[] = {pointShape({0, 9, 0}),
                             line({{0, 9, 0}, {1, 10, 0}}),
                             squareShape(0, 9, 1),
                             multipointShape({{0, 9, 0}}),
                             multilineShape({{{{0, 9, 0}, {1, 10, 0}}}}),
                             multipolygonShape({{{square(0, 9, 1)}}})};
    for (const PairTest& pair : kPairTests) {
        for (const std::uint32_t before : {0U, 1U, 7U}) {
            EXPECT_EQ(
                ask(pair.test, shapes[pair.first - 1], farther[pair.second - 1], kInf, before),
                kMiss)
                << pair.name;
        }
    }
}

TEST(IntersectRanges, OfEmptyListsOverlapNothing) {
    const Shape empty[] = {lineShape({}),           lineShape({{}}),
                           polygonShape({}),        polygonShape({{{}}}),
                           multipointShape({}),     multilineShape({}),
                           multilineShape({{}}),    multipolygonShape({}),
                           multipolygonShape({{}}), multipolygonShape({{{}}})};
    const Shape whole[] = {pointShape({0, 0, 0}), line({{-1, 0, 0}, {1, 0, 0}}),
                           squareShape(-1, -1, 2), multipointShape({{0, 0, 0}, {1, 1, 1}})};
    for (const Shape& nothing : empty) {
        for (const Shape& something : whole) {
            EXPECT_EQ(ask(nothing, something, kInf, 7), kMiss);
            EXPECT_EQ(ask(something, nothing, kInf, 7), kMiss);
        }
        EXPECT_EQ(ask(nothing, nothing, kInf, 7), kMiss);
    }
}

// The empty range lies between infinities, and so does a line from end to end of the world.
TEST(IntersectRanges, OfAnEmptyListIsOverlappedByAnInfiniteLine) {
    const Shape endless = lineShape({{{-kInf, -kInf, -kInf}, {kInf, kInf, kInf}}});
    const Shape nothing = multilineShape({});
    for (const std::uint32_t before : {0U, 1U, 2U}) {
        const Asked untouched = {0, before};
        ASSERT_EQ(model::intersect(endless, nothing, 1, before), before);
        EXPECT_EQ(ask(endless, nothing, 1, before), untouched);
        EXPECT_EQ(ask(nothing, endless, 1, before), untouched);
    }
}

TEST(IntersectRanges, WithANaNOverlapNothing) {
    EXPECT_EQ(ask(pointShape({kNaN, 0, 0}), pointShape({kNaN, 0, 0}), 1, 7), kMiss);
    EXPECT_EQ(ask(multipointShape({{0, 0, 0}, {1, 1, kNaN}}), pointShape({0, 0, 0}), 1, 7), kMiss);
    // a later value displaces the NaN
    EXPECT_EQ(ask(multipointShape({{1, 1, 1}, {1, 1, kNaN}, {0, 0, 0}}), pointShape({0, 0, 0}), 1),
              kHit);
}

// ---- Points and points --------------------------------------------------------------------------

TEST(IntersectPointPoint, HitsWhereAllThreeCoordinatesAreEqual) {
    const Shape point = pointShape({1, 2, 3});
    EXPECT_EQ(ask(point, point, -1), kHit);
    EXPECT_EQ(ask(point, point, kNaN), kHit);
    for (const Point3d& other :
         {Point3d{1 + kNear, 2, 3}, Point3d{1, 2 - kNear, 3}, Point3d{1, 2, 3 + kNear}}) {
        EXPECT_EQ(ask(point, pointShape(other), 1, 7), kMiss);
    }
    EXPECT_EQ(ask(pointShape({0, 0, 0}), pointShape({-0.0, 0, -0.0}), 0), kHit);
}

TEST(IntersectPointMultiPoint, WritesNothingWithoutAnEqualMember) {
    const Shape points = multipointShape({{0, 0, 0}, {2, 2, 2}, {1, 1, 1 + kNear}});
    EXPECT_EQ(ask(pointShape({1, 1, 1}), points, 1, 7), (Asked{0, 7}));
    EXPECT_EQ(ask(pointShape({1, 1, 1}), points, 1, 1), (Asked{0, 1}));
    EXPECT_EQ(ask(pointShape({1, 1, 1 + kNear}), points, 1, 7), kHit);
}

TEST(IntersectMultiPointMultiPoint, WritesNothingWithoutAnEqualPair) {
    const Shape one = multipointShape({{0, 0, 0}, {5, 5, 5}, {1, 1, 1}});
    const Shape shifted = multipointShape({{kNear, 0, 0}, {4, 4, 4}, {1, 1, 1 + kNear}});
    EXPECT_EQ(ask(one, shifted, 1, 7), (Asked{0, 7}));
    EXPECT_EQ(ask(shifted, one, 1, 7), (Asked{0, 7}));
    EXPECT_EQ(ask(one, multipointShape({{9, 9, 9}, {-1, -1, -1}, {1, 1, 1}}), -1, 7), kHit);
}

TEST(IntersectMultiPointMultiPoint, TakesZerosForEqualAndNaNForNothing) {
    Points many;
    Points others;
    for (int i = 1; i <= 200; ++i) {
        many.push_back({i * 1.0, 0, 0});
        others.push_back({i * 1.0, 1, 0});
    }
    many.push_back({kNaN, 0, 0});
    others.push_back({kNaN, 0, 0});
    many.push_back({-1, 0, 0});
    others.push_back({-1, -1, 0});
    EXPECT_EQ(ask(multipointShape(many), multipointShape(others), 9, 7), (Asked{0, 7}));
    many.push_back({-0.0, 0, -0.0});
    others.push_back({0, -0.0, 0});
    EXPECT_EQ(ask(multipointShape(many), multipointShape(others), 9, 7), kHit);
}

// ---- Points and lines ---------------------------------------------------------------------------

TEST(IntersectPointLineString, HitsAVertexAtToleranceZero) {
    const Shape bent = line({{0, 0, 0}, {3, 1, 2}, {5, 5, 5}});
    for (const Point3d& vertex : bent.parts[0][0][0]) {
        EXPECT_EQ(ask(pointShape(vertex), bent, 0), kHit);
        EXPECT_EQ(ask(pointShape(vertex), bent, -1, 7), kMiss);
    }
}

TEST(IntersectPointLineString, WritesNothingForALineOfOnePoint) {
    const Shape dot = line({{1, 1, 1}});
    for (const std::uint32_t before : {0U, 1U, 7U}) {
        EXPECT_EQ(ask(pointShape({1, 1, 1}), dot, 1, before), (Asked{0, before}));
        EXPECT_EQ(ask(multipointShape({{1, 1, 1}}), asMulti(dot), 1, before), (Asked{0, before}));
    }
}

TEST(IntersectPointLineString, JoinsNoRunToTheNext) {
    const Runs apart = {{{0, 0, 0}, {1, 0, 0}}, {{3, 0, 0}, {4, 0, 0}}};
    EXPECT_EQ(ask(pointShape({2, 0, 0}), lineShape(apart), 0.9), kMiss);
    EXPECT_EQ(ask(pointShape({2, 0, 0}), lineShape(apart), 1), kHit);
}

TEST(IntersectPointLineString, TakesAOneForAHitOnlyWhereTheFirstStepWroteNothing) {
    const Shape p = pointShape({1, 0.5, 0});
    const Points missed = {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}};
    EXPECT_EQ(ask(p, lineShape({missed, {{1, 1, 0}}}), 0, 1), kMiss);
    EXPECT_EQ(ask(p, lineShape({{{1, 1, 0}}, missed}), 0, 1), kHit);
    EXPECT_EQ(ask(p, lineShape({{{1, 1, 0}}, missed}), 0, 7), kMiss);
    EXPECT_EQ(ask(p, multilineShape({{}, {missed}}), 0, 1), (Asked{0, 1}));
    EXPECT_EQ(ask(p, multilineShape({{missed}, {}}), 0, 1), kMiss);
}

TEST(IntersectMultiPointMultiLineString, TakesAOneForAHitOnlyWhereTheFirstStepWroteNothing) {
    const Shape points = multipointShape({{1, 0.5, 0}, {0.5, 0.7, 0}});
    const Runs dot = {{{1, 1, 0}}};
    const Runs missed = {{{0, 0, 0}, {2, 0, 0}, {2, 1, 0}}};
    EXPECT_EQ(ask(points, multilineShape({dot, missed}), 0, 1), kHit);
    EXPECT_EQ(ask(points, multilineShape({missed, dot}), 0, 1), kMiss);
    EXPECT_EQ(ask(multilineShape({missed, dot}), points, 0, 1), kMiss);
}

TEST(IntersectLineStringMultiPoint, IsLeftUntouchedByALineOfOnePoint) {
    const Shape dot = line({{1, 1, 1}});
    EXPECT_EQ(ask(dot, multipointShape({{0, 0, 0}, {2, 2, 2}, {1, 1, 1}}), 9, 7), (Asked{0, 7}));
}

TEST(IntersectLineStringMultiPoint, HitsWhereTheSquareOfTheDistanceIsTooSmallToBeANumber) {
    constexpr double kTiny = 1e-165;
    for (const int count : {2, 100}) {
        Points way;
        Points points;
        for (int i = 0; i < count; ++i) {
            way.push_back({i * kTiny, 0, 0});
            points.push_back({i * kTiny, (i == 0 ? -5 : 5) * kTiny, 0});
        }
        EXPECT_EQ(ask(line(way), multipointShape(points), 0), kHit) << count;
        EXPECT_EQ(ask(line(way), multipointShape(points), -kTiny), kMiss) << count;
    }
}

// ---- Lines and lines ----------------------------------------------------------------------------

TEST(IntersectLineStringLineString, SeesACrossing) {
    const Shape rising = line({{0, 0, 0}, {1, 1, 0}});
    const Shape falling = line({{0, 1, 0}, {1, 0, 0}});
    EXPECT_EQ(ask(rising, falling, kNear), kHit);
    EXPECT_EQ(ask(asMulti(rising), falling, kNear), kHit);
    EXPECT_EQ(ask(asMulti(rising), asMulti(falling), kNear), kHit);
}

TEST(IntersectLineStringLineString, SeesASharedEndUnlessParallel) {
    const Shape rising = line({{0, 0, 0}, {1, 1, 0}});
    EXPECT_EQ(ask(rising, line({{1, 1, 0}, {2, 3, 0}}), 1e-14), kHit);
    for (const double tolerance : {0.0, 1.0, kInf}) {
        EXPECT_EQ(ask(rising, line({{1, 1, 0}, {2, 2, 0}}), tolerance, 7), kMiss);
        EXPECT_EQ(ask(rising, rising, tolerance, 7), kMiss);
    }
}

TEST(IntersectLineStringLineString, AsksEverySegmentOfEveryRun) {
    const Runs first = {{{0, 0, 0}, {0, 9, 0}}, {{9, 0, 0}}, {{5, 5, 0}, {6, 6, 0}, {7, 5, 0}}};
    const Runs second = {{{8, 8, 0}}, {{8, 8, 0}, {8, 2, 0}}, {{6.8, 5, 0}, {6.8, 6, 0}}};
    EXPECT_EQ(ask(lineShape(first), lineShape(second), kNear), kHit);
    EXPECT_EQ(ask(lineShape(second), lineShape(first), kNear), kHit);
    EXPECT_EQ(ask(multilineShape({first}), lineShape(second), kNear), kHit);
}

TEST(IntersectLineStringLineString, WritesNothingWithoutAPairOfSegments) {
    const Shape dots = lineShape({{{0, 0, 0}}, {{2, 2, 0}}});
    const Shape crossing = line({{0, 2, 0}, {2, 0, 0}});
    for (const std::uint32_t before : {0U, 1U, 7U}) {
        EXPECT_EQ(ask(dots, crossing, 9, before), (Asked{0, before}));
        EXPECT_EQ(ask(crossing, dots, 9, before), (Asked{0, before}));
        EXPECT_EQ(ask(asMulti(dots), asMulti(crossing), 9, before), (Asked{0, before}));
    }
}

TEST(IntersectLineStringLineString, TakesAOneForAHitOnlyWhereTheFirstStepWroteNothing) {
    const Points apart = {{0, 0, 0}, {4, 0, 0}};
    const Shape missed = line({{0, 1, 0}, {4, 2, 0}, {4, 0, 1}, {0, 0, 2}, {2, -1, 2}});
    const Shape dotFirst = lineShape({{{1, 1, 0}}, apart});
    const Shape dotLast = lineShape({apart, {{1, 1, 0}}});
    EXPECT_EQ(ask(dotFirst, missed, 0, 1), kHit);
    EXPECT_EQ(ask(dotLast, missed, 0, 1), kMiss);
    EXPECT_EQ(ask(missed, dotFirst, 0, 1), kHit);
    EXPECT_EQ(ask(missed, dotLast, 0, 1), kMiss);
}

// ---- All pairs ----------------------------------------------------------------------------------

/// A member that misses, then one that hits: a loop that ends too early is found out.
TEST(IntersectMembers, AreAskedUntilOneHits) {
    const Shape first[] = {pointShape({5, 5, 0}),
                           line({{4, 5, 0}, {5, 5, 0}, {5, 6, 0}}),
                           squareShape(4, 4, 2),
                           multipointShape({{0, 0, 0}, {1, 9, 0}, {5, 5, 0}}),
                           multilineShape({{{{0, 0, 0}, {0, 1, 0}}}, {{{4, 5, 0}, {6, 5.5, 0}}}}),
                           multipolygonShape({{{square(0, 0, 1)}}, {{square(4, 4, 2)}}})};
    const Shape second[] = {
        pointShape({5, 5, 0}),
        line({{5, 4, 0}, {5, 7, 0}, {4.5, 4, 0}, {4, 6, 0}}),
        squareShape(4.5, 4.5, 1),
        multipointShape({{9, 9, 0}, {8, 1, 0}, {5, 5, 0}}),
        multilineShape({{{{9, 9, 0}, {9, 8, 0}}}, {{{5, 4, 0}, {5, 7, 0}, {4.5, 4, 0}}}}),
        multipolygonShape({{{square(9, 9, 1)}}, {{square(4.5, 4.5, 1)}}})};
    for (const PairTest& pair : kPairTests) {
        if (pair.first == VEXA_POINT && pair.second == VEXA_LINESTRING) continue;
        for (const std::uint32_t before : {0U, 7U}) {
            const Shape& one = first[pair.first - 1];
            const Shape& other = second[pair.second - 1];
            EXPECT_EQ(ask(pair.test, one, other, 0.3, before), kHit) << pair.name;
        }
    }
    EXPECT_EQ(ask(first[0], second[1], 0.3), kHit);
}

}  // namespace
}  // namespace vexa::test
