#include "tests/support/intersection_asking.h"

#include <cmath>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

/// Whether two rings meet, as polygons and as members of multipolygons, in either order.
void expectRings(const Points& a, const Points& b, const Asked& expected) {
    const Shape first = polygonShape({{a}});
    const Shape second = polygonShape({{b}});
    EXPECT_EQ(ask(first, second, 0, 7), expected);
    EXPECT_EQ(ask(second, first, 0, 7), expected);
    EXPECT_EQ(ask(asMulti(first), second, 0, 7), expected);
    EXPECT_EQ(ask(asMulti(second), first, 0, 7), expected);
    EXPECT_EQ(ask(asMulti(first), asMulti(second), 0, 7), expected);
}

Points open(Points ring) {
    ring.pop_back();
    return ring;
}

TEST(IntersectPolygonPolygon, HitsWhereOneLiesInTheOther) {
    expectRings(square(0, 0, 9), square(3, 3, 1), kHit);
    expectRings(square(0, 0, 9), square(0, 0, 9), kHit);
}

TEST(IntersectPolygonPolygon, HitsWhereTheyOverlapOrTouch) {
    expectRings(square(0, 0, 4), square(3, 3, 4), kHit);
    expectRings(square(0, 0, 4), square(4, 1, 2), kHit);
    expectRings(square(0, 0, 4), square(4, 4, 2), kHit);
}

TEST(IntersectPolygonPolygon, HitsWhereOnlyEdgesCross) {
    const Points wide = {{-5, -1, 0}, {5, -1, 0}, {5, 1, 0}, {-5, 1, 0}, {-5, -1, 0}};
    const Points tall = {{-1, -5, 0}, {1, -5, 0}, {1, 5, 0}, {-1, 5, 0}, {-1, -5, 0}};
    expectRings(wide, tall, kHit);
}

TEST(IntersectPolygonPolygon, ClosesNeitherRingWhereEdgesOfOnePlaneAreCrossed) {
    // a triangle whose missing edge alone is crossed, by another whose missing edge crosses it
    const Points left = {{0, -4, 0}, {-9, 0, 0}, {0, 4, 0}};
    const Points right = {{-1, 0.5, 0}, {9, 9, 0}, {9, -9, 0}, {-1, -0.5, 0}};
    // its first vertex lies in the other ring, so start it elsewhere
    const Points rightFromOutside = {{9, 9, 0}, {9, -9, 0}, {-1, -0.5, 0}, {-1, 0.5, 0}};
    expectRings(left, right, kHit);
    expectRings(left, rightFromOutside, kMiss);
    Points closed = left;
    closed.push_back(left.front());
    expectRings(closed, rightFromOutside, kHit);
}

TEST(IntersectPolygonPolygon, MissesNeighboursThoughTheirBoxesOverlap) {
    const Points lower = {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 0, 0}};
    const Points upper = {{0, 1, 0}, {8, 9, 0}, {0, 9, 0}, {0, 1, 0}};
    expectRings(lower, upper, kMiss);
}

TEST(IntersectPolygonPolygon, IgnoresHoles) {
    const Shape withHole = polygonShape({{square(0, 0, 9)}, {square(3, 3, 3)}});
    const Shape inHole = squareShape(4, 4, 1);
    EXPECT_EQ(ask(withHole, inHole, 0), kHit);
    EXPECT_EQ(ask(inHole, withHole, 0), kHit);
    EXPECT_EQ(ask(asMulti(withHole), inHole, 0), kHit);
    EXPECT_EQ(ask(asMulti(inHole), asMulti(withHole), 0), kHit);
    EXPECT_EQ(ask(pointShape({4.5, 4.5, 0}), withHole, 0), kMiss);
}

TEST(IntersectPolygonPolygon, IgnoresTheTolerance) {
    const Shape flat = squareShape(0, 0, 4);
    const Shape bent =
        polygonShape({{{{1, 1, 0.5}, {3, 1, 0.5}, {3, 3, 0.5}, {1, 3, 0.5}, {1, 1, 0.5}}}});
    const Shape far = multipolygonShape({{{square(90, 90, 1, 9)}}, flat.parts.front()});
    for (const double tolerance : {0.0, 1.0, kInf, -1.0, kNaN}) {
        EXPECT_EQ(
            ask(far, multipolygonShape({bent.parts[0], {{square(50, 50, 1, -9)}}}), tolerance, 7),
            kMiss);
        EXPECT_EQ(ask(flat, squareShape(2, 2, 4), tolerance), kHit);
    }
}

TEST(IntersectPolygonPolygon, AllowsParallelPlanes1e12OfTheSizeApart) {
    // thick by one raised corner, so that the boxes overlap all the same
    const auto raisedBy = [](double height) {
        return Points{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, height}, {0, 0, 0}};
    };
    expectRings(raisedBy(0), square(1, 1, 10), kHit);
    expectRings(raisedBy(1e-11), square(1, 1, 10), kHit);
    expectRings(raisedBy(3e-11), square(1, 1, 10), kMiss);
}

TEST(IntersectPolygonPolygon, SeesAnUprightRingPierceALevelOne) {
    const Points level = square(-4, -4, 8);
    const Points upright = {{0, -1, -1}, {0, 1, -1}, {0, 1, 1}, {0, -1, 1}};
    expectRings(level, upright, kHit);
    Points beside = upright;
    for (Point3d& vertex : beside) vertex.y += 3;  // one edge inside, one on the way out
    expectRings(level, beside, kHit);
    for (Point3d& vertex : beside) vertex.y += 3;
    expectRings(level, beside, kMiss);
}

TEST(IntersectPolygonPolygon, SeesInterlockedRings) {
    // each passes through the other's inside with one edge
    const Points level = {{-1, -2, 0}, {5, -2, 0}, {5, 2, 0}, {-1, 2, 0}, {-1, -2, 0}};
    const Points upright = {{-5, 0, -2}, {1, 0, -2}, {1, 0, 2}, {-5, 0, 2}, {-5, 0, -2}};
    expectRings(level, upright, kHit);
}

TEST(IntersectPolygonPolygon, NeverClosesTheMovingRing) {
    // the only edge through the level square is the one that is not written down
    const Points level = square(-1, -1, 2);
    const Points upright = {{0, 0, 3}, {9, 0, 3}, {9, 0, -3}, {0, 0, -3}};
    expectRings(level, upright, kHit);  // the level ring's edge pierces the upright one
    const Points sideways = {{0, 0, 3}, {9, 9, 30}, {0, 0, -3}};
    Points closed = sideways;
    closed.push_back(sideways.front());
    const Points tiny = square(-0.01, -0.02, 0.03);
    EXPECT_EQ(ask(polygonShape({{tiny}}), polygonShape({{sideways}}), 0).result,
              model::intersect(polygonShape({{tiny}}), polygonShape({{sideways}}), 0, 0));
    expectRings(tiny, closed, kHit);
}

TEST(IntersectPolygonPolygon, ClassifiesTheEndOfAnEdgeThatStartsInThePlane) {
    // the walk's edge leaves the plane at (9, 0) and ends above the square's inside: its end is taken
    // for a place in the square, though it is 5 above
    const Points level = square(-1, -1, 2);
    const Points leaving = {{9, 0, 0}, {0, 0, 5}, {9, 1, 5}};
    const Points arriving = {{9, 1, 5}, {0, 0, 5}, {9, 0, 0.1}};
    const Shape under = multipolygonShape({{{level}}, {{square(20, 20, 1, 5)}}});
    EXPECT_EQ(ask(polygonShape({{leaving}}), squareShape(-1, -1, 2), 0).status, 0U);
    EXPECT_EQ(ask(under, polygonShape({{leaving}}), 0),
              (Asked{0, model::intersect(under, polygonShape({{leaving}}), 0, 0)}));
    EXPECT_EQ(ask(under, polygonShape({{arriving}}), 0), kMiss);
}

TEST(IntersectPolygonPolygon, MissesWithARingThatSpansNoPlane) {
    const Points triangle = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}};
    for (const Points& flat : {Points{{1, 1, 0}}, Points{{0, 0, 0}, {2, 2, 0}},
                               Points{{0, 0, 0}, {1, 1, 0}, {2, 2, 0}, {3, 3, 0}},
                               Points{{1, 1, 0}, {1, 1, 0}, {1, 1, 0}}}) {
        expectRings(triangle, flat, kMiss);
        expectRings(flat, flat, kMiss);
    }
}

TEST(IntersectPolygonPolygon, JoinsTheRunsOfARing) {
    const Points ring = square(3, 3, 4);
    const Shape inRuns = polygonShape({{{ring[0]}, {ring[1], ring[2]}, {}, {ring[3], ring[4]}}});
    EXPECT_EQ(ask(inRuns, squareShape(0, 0, 4), 0), kHit);
    EXPECT_EQ(ask(squareShape(6.5, 1, 4), inRuns, 0), kHit);
    EXPECT_EQ(ask(squareShape(8, 1, 4), inRuns, 0), kMiss);
}

TEST(IntersectMultiPolygonMultiPolygon, EndsWithTheOneThatAnEarlierStepCannotHaveWritten) {
    // rings always write, so a 1 from before survives nothing
    const Shape one = multipolygonShape({{{square(0, 0, 1)}}, {{square(9, 9, 1)}}});
    const Shape other = multipolygonShape({{{square(0, 9, 1)}}, {{square(9, 0, 1)}}});
    EXPECT_EQ(ask(one, other, 0, 1), kMiss);
    EXPECT_EQ(ask(one, squareShape(4, 4, 2), 0, 1), kMiss);
}

TEST(IntersectPolygonPolygon, NeedNotBeClosedByARepeatedVertex) {
    expectRings(open(square(0, 0, 4)), open(square(3, 3, 4)), kHit);
    expectRings(open(square(0, 0, 9)), open(square(3, 3, 1)), kHit);
    expectRings(open(square(0, 0, 2)), open(square(3, 3, 1)), kMiss);
}

/// A warped ring reaches out of its box when it is laid into the plane of three of its vertices.
TEST(IntersectPolygonPolygon, SeesAWarpedRingWhereItsFrameHasIt) {
    int hits = 0;
    for (int i = 0; i < 400; ++i) {
        const double turn = i * 0.07;
        const double height = 0.5 + (i % 20) * 0.5;
        Points warped;
        for (int k = 0; k < 40; ++k) {
            const double angle = k * 0.157;
            warped.push_back({std::cos(angle), std::sin(angle), height * std::sin(3 * angle)});
        }
        const Points other = {
            {0.5 * std::cos(turn), 0.5 * std::sin(turn), -1 - 0.1 * (i % 7)},
            {1.4 * std::cos(turn), 1.4 * std::sin(turn), 1},
            {1.5 * std::cos(turn + 0.2), 1.5 * std::sin(turn + 0.2), 2.0 + i % 3}};
        const Shape a = polygonShape({{warped}});
        const Shape b = polygonShape({{other}});
        const std::uint32_t expected = model::intersect(a, b, 0, 0);
        EXPECT_EQ(ask(a, b, 0).result, expected) << i;
        EXPECT_EQ(ask(asMulti(a), multipolygonShape({b.parts[0], b.parts[0]}), 0).result, expected)
            << i;
        hits += static_cast<int>(expected);
    }
    EXPECT_GT(hits, 20);
    EXPECT_LT(hits, 380);
}

}  // namespace
}  // namespace vexa::test
