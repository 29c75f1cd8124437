#include "tests/support/intersection_asking.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

/// Large geometries without a hit. Each is done in a blink where only what is near is looked at;
/// trying every pair would take minutes.
namespace vexa::test {
namespace {

constexpr std::size_t kMany = 100'000;
constexpr double kNear = 1e-9;

double at(std::size_t i) {
    return static_cast<double>(i);
}

Points spiral(double phase, std::size_t count = kMany) {
    Points points;
    for (std::size_t i = 0; i < count; ++i) {
        const double angle = at(i) * 0.001;
        points.push_back(
            {(1 + angle) * std::cos(angle + phase), (1 + angle) * std::sin(angle + phase), 0});
    }
    return points;
}

Points zigzag(double offset) {
    Points points;
    for (std::size_t i = 0; i < kMany; ++i) {
        points.push_back({at(i), offset + (i % 2 == 0 ? 0.0 : 0.25), 0});
    }
    return points;
}

/// Around a centre in 40 waves, none of them farther out than the radius.
Points wavyRing(double x, double y, double radius) {
    Points points;
    for (std::size_t i = 0; i < kMany; ++i) {
        const double angle = 6.283185307179586 * at(i) / at(kMany);
        const double reach = radius * (0.99 + 0.01 * std::cos(40 * angle));
        points.push_back({x + reach * std::cos(angle), y + reach * std::sin(angle), 0});
    }
    points.push_back(points.front());
    return points;
}

/// The last vertex, moved onto the other geometry, makes the difference.
TEST(IntersectGrowth, LinesSideBySide) {
    Points upper = zigzag(0.5);
    upper.push_back({at(kMany), -1, 0.001});
    upper.push_back({at(kMany), 2, 0.001});
    const Shape lower = line(zigzag(0));
    EXPECT_EQ(ask(lower, line(upper), kNear), kMiss);
    EXPECT_EQ(ask(lower, line(upper), 0.01), kMiss);
    upper.push_back({at(kMany) - 1.5, 0.2, 0});
    upper.push_back({at(kMany) - 1.5, -1, 0});
    EXPECT_EQ(ask(lower, line(upper), kNear), kHit);
}

TEST(IntersectGrowth, InterlacedSpirals) {
    Points other = spiral(3.14159);
    const Shape one = line(spiral(0));
    EXPECT_EQ(ask(one, line(other), kNear), kMiss);
    EXPECT_EQ(ask(asMulti(line(other)), one, kNear), kMiss);
    other.push_back({0, 0.001, 0});
    EXPECT_EQ(ask(one, line(other), kNear), kHit);
}

TEST(IntersectGrowth, PointsAroundAPolygon) {
    Points points;
    for (std::size_t i = 0; i < kMany; ++i) {
        const double angle = at(i) * 0.37;
        const double radius = 1.0001 + at(i % 1000) * 1e-4;
        points.push_back({radius * std::cos(angle), radius * std::sin(angle), 0});
    }
    const Shape polygon = polygonShape({{wavyRing(0, 0, 1)}});
    EXPECT_EQ(ask(multipointShape(points), polygon, kNear), kMiss);
    EXPECT_EQ(ask(polygon, multipointShape(points), kNear), kMiss);
    points.push_back({0.1, 0.2, 0});
    EXPECT_EQ(ask(multipointShape(points), polygon, kNear), kHit);
}

TEST(IntersectGrowth, PointsBesideALine) {
    Points points;
    for (std::size_t i = 0; i < kMany; ++i) points.push_back({at(i) + 0.5, 0.5, 0});
    points.push_back({0, -1, 0});
    const Shape zigzagged = line(zigzag(0));
    EXPECT_EQ(ask(multipointShape(points), zigzagged, 0.1), kMiss);
    points.push_back({at(kMany) - 2, 0.1, 0});
    EXPECT_EQ(ask(multipointShape(points), asMulti(zigzagged), 0.11), kHit);
}

/// In no order that would help: what follows in the buffer is far away.
TEST(IntersectGrowth, ScatteredPointsAmongScatteredLines) {
    constexpr std::size_t kSide = 1'000;
    Points points;
    Paths lines;
    for (std::size_t i = 0; i < kMany; ++i) {
        const std::size_t place = i * 7919 % kMany;
        const Point3d corner = {at(place % kSide), at(place / kSide), at(i % 3)};
        points.push_back({corner.x + 0.5, corner.y + 0.5, corner.z});
        lines.push_back({{corner, {corner.x + 0.25, corner.y + 0.25, corner.z}}});
    }
    EXPECT_EQ(ask(multipointShape(points), multilineShape(lines), 0.2), kMiss);
    points[kMany / 3] = lines[kMany / 2].front().front();
    EXPECT_EQ(ask(multipointShape(points), multilineShape(lines), 0.2), kHit);
}

TEST(IntersectGrowth, PointsBesidePoints) {
    Points one;
    Points other;
    for (std::size_t i = 0; i < kMany; ++i) {
        one.push_back({at(i), at(i * 7919 % kMany), 0});
        other.push_back({at(i) + 0.5, at(i * 7919 % kMany), 0});
    }
    EXPECT_EQ(ask(multipointShape(one), multipointShape(other), 0, 7), (Asked{0, 7}));
    other.push_back(one[kMany / 3]);
    EXPECT_EQ(ask(multipointShape(one), multipointShape(other), 0, 7), kHit);
}

TEST(IntersectGrowth, ALineAroundAPolygon) {
    Points around = wavyRing(0, 0, 1.05);
    const Shape polygon = polygonShape({{wavyRing(0, 0, 1)}});
    EXPECT_EQ(ask(line(around), polygon, kNear), kMiss);
    around.push_back({0.5, 0.5, 0});
    EXPECT_EQ(ask(line(around), polygon, kNear), kHit);
}

TEST(IntersectGrowth, NeighbouringPolygons) {
    Points left;
    Points right;
    for (std::size_t i = 0; i < kMany; ++i) {
        const double x = i % 2 == 0 ? 0 : 1;
        left.push_back({x, at(i), 0});
        right.push_back({x + 0.25, at(i), 0});
    }
    left.push_back({-9, at(kMany), 0});
    left.push_back({-9, 0, 0});
    left.push_back(left.front());
    right.push_back({9, at(kMany), 0});
    right.push_back({9, 0, 0});
    right.push_back(right.front());
    EXPECT_EQ(ask(polygonShape({{left}}), polygonShape({{right}}), 0), kMiss);
    EXPECT_EQ(ask(polygonShape({{left}}), polygonShape({{wavyRing(6, 600, 2)}}), 0), kMiss);
    right[kMany / 2].x = -1;
    EXPECT_EQ(ask(polygonShape({{left}}), polygonShape({{right}}), 0), kHit);
}

TEST(IntersectGrowth, EightThreadsAskOfTheSameBuffers) {
    const Bytes one = bufferOf(line(spiral(0, 10'000)));
    const Bytes other = bufferOf(line(spiral(3.14159, 10'000)));
    const Bytes polygon = bufferOf(polygonShape({{wavyRing(0, 0, 1)}}));
    const Bytes points = bufferOf(multipointShape({{2, 2, 0}, {-2, -2, 0}, {0.1, 0.1, 0}}));
    std::array<std::array<Asked, 3>, 8> answers{};
    std::vector<std::thread> threads;
    for (auto& mine : answers) {
        threads.emplace_back([&] {
            mine = {ask(vexaWKB_intersectGeometry, one, other, kNear),
                    ask(vexaWKB_intersectGeometry, polygon, points, kNear),
                    ask(vexaWKB_intersectGeometry, other, polygon, kNear)};
        });
    }
    for (std::thread& thread : threads) thread.join();

    const Asked spiralAndRing = ask(vexaWKB_intersectGeometry, other, polygon, kNear);
    for (const auto& mine : answers) {
        EXPECT_EQ(mine[0], kMiss);
        EXPECT_EQ(mine[1], kHit);
        EXPECT_EQ(mine[2], spiralAndRing);
    }
}

}  // namespace
}  // namespace vexa::test
