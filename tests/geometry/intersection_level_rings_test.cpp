#include "geometry/intersection/level_rings.h"
#include "geometry/intersection/prepared_polygon.h"
#include "tests/support/intersection_asking.h"
#include "tests/support/intersection_random.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <random>

#include <gtest/gtest.h>

/// Rings of flat maps: what is told of them without their frames, beside the plain walk.
namespace vexa::test {
namespace {

Shape polygonOf(Points ring) {
    return polygonShape({{std::move(ring)}});
}

Sure sureOf(const Bytes& first, const Bytes& second,
            std::pmr::memory_resource* memory = std::pmr::get_default_resource()) {
    return levelRings(outerRing(pathListOf(*first.geometry())),
                      outerRing(pathListOf(*second.geometry())), memory);
}

/// Counts what is sure of pairs, and holds it and the exported test to the plain walk.
struct Told {
    std::array<int, 3> counts{};

    Sure of(const Points& first, const Points& second) {
        const Shape a = polygonOf(first);
        const Shape b = polygonOf(second);
        const std::uint32_t expected = model::intersect(a, b, 0, 0);
        const Asked right = {0, expected};
        EXPECT_EQ(ask(a, b, 0), right);

        const Sure sure = sureOf(bufferOf(a), bufferOf(b));
        ++counts[static_cast<std::size_t>(sure)];
        if (sure != Sure::Unsure) {
            EXPECT_EQ(sure == Sure::Meeting ? 1U : 0U, expected);
        }
        return sure;
    }

    int count(Sure sure) const { return counts[static_cast<std::size_t>(sure)]; }
};

class RingsOfFlatMaps : public testing::Test {
protected:
    double between(double low, double high) {
        return std::uniform_real_distribution<double>{low, high}(random_);
    }
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }

    /// A star around a place.
    Points star(double x, double y, double radius, std::size_t count) {
        Points points;
        for (std::size_t i = 0; i < count; ++i) {
            const double angle = kTurn * static_cast<double>(i) / static_cast<double>(count);
            const double reach = radius * between(0.5, 1);
            points.push_back({x + reach * std::cos(angle), y + reach * std::sin(angle), 3});
        }
        if (below(2) == 0) points.push_back(points.front());
        return points;
    }

    static Points rounded(Points points, double step) {
        for (Point3d& p : points)
            p = {std::round(p.x / step) * step, std::round(p.y / step) * step, 3};
        return points;
    }

    static Points turned(Points points, double angle) {
        for (Point3d& p : points) {
            p = {p.x * std::cos(angle) - p.y * std::sin(angle),
                 p.x * std::sin(angle) + p.y * std::cos(angle), 3};
        }
        return points;
    }

    /// Teeth along the x axis, which others of the same kind lie in line with.
    static Points comb(double from, std::size_t teeth, double down) {
        Points points = {{from, down, 3}};
        for (std::size_t i = 0; i < teeth; ++i) {
            const double x = from + static_cast<double>(i);
            points.insert(points.end(), {{x, 0, 3}, {x + 0.3, 0, 3}});
            points.insert(points.end(), {{x + 0.3, down / 2, 3}, {x + 1, down / 2, 3}});
        }
        points.push_back({from + static_cast<double>(teeth), down, 3});
        points.push_back(points.front());
        return points;
    }

    static constexpr double kTurn = 6.283185307179586;
    std::mt19937_64 random_{77};
    Told told_;
};

TEST_F(RingsOfFlatMaps, AreAsThePlainWalkTells) {
    constexpr int kRounds = 3000;
    for (int round = 0; round < kRounds; ++round) {
        const std::size_t most = round % 2 == 0 ? 8 : 90;
        const Points first = star(0, 0, between(0.1, 5), 3 + below(most));
        const Points second =
            star(between(-6, 6), between(-6, 6), between(0.1, 5), 3 + below(most));
        told_.of(first, second);
    }
    EXPECT_GT(told_.count(Sure::Apart), kRounds / 10);
    EXPECT_GT(told_.count(Sure::Meeting), kRounds / 10);
    EXPECT_LT(told_.count(Sure::Unsure), kRounds / 5);
}

TEST_F(RingsOfFlatMaps, AreAsThePlainWalkTellsOnAGrid) {
    constexpr int kRounds = 3000;
    for (int round = 0; round < kRounds; ++round) {
        const std::size_t most = round % 2 == 0 ? 8 : 90;
        const double step = round % 3 == 0 ? 1 : 0.1;
        const Points first = rounded(star(0, 0, between(0.5, 5), 3 + below(most)), step);
        const Points second =
            rounded(star(between(-6, 6), between(-6, 6), between(0.5, 5), 3 + below(most)), step);
        told_.of(first, second);
    }
    EXPECT_GT(told_.count(Sure::Apart), kRounds / 10);
    EXPECT_GT(told_.count(Sure::Unsure), kRounds / 10);
}

// Far away on one line, and by a hair beside it.
TEST_F(RingsOfFlatMaps, AreUnsureWhereEdgesLieOnOneLine) {
    for (const std::size_t teeth : {2U, 40U}) {
        for (const double angle : {0.3, 0.785398163397448309, 1.9}) {
            for (const double beside : {0.0, 1e-15, 1e-9, 1e-8}) {
                Points first = comb(0, teeth, -5);
                Points second = comb(100, teeth, -5);
                for (Point3d& p : second) p.y += beside;
                // A spike over the other brings their ranges together.
                first.push_back({150, 30, 3});
                EXPECT_EQ(told_.of(turned(first, angle), turned(second, angle)), Sure::Unsure);
            }
        }
    }
}

TEST_F(RingsOfFlatMaps, AreSurelyApartAlongAnAxis) {
    for (const std::size_t teeth : {2U, 40U}) {
        Points first = comb(0, teeth, -5);
        const Points second = comb(100, teeth, -5);
        first.push_back({150, 30, 3});
        EXPECT_EQ(told_.of(first, second), Sure::Apart);
    }
}

TEST_F(RingsOfFlatMaps, AreUnsureOfEdgesThatRoundingTurns) {
    for (const std::size_t count : {5U, 60U}) {
        Points first = star(0, 0, 1, count);
        first.insert(first.begin() + 2, {first[1].x + 1e-9, first[1].y + 1e-9, 3});
        Points second = star(0, 0, 1, count);
        for (Point3d& p : second) p.x += 2.5;
        EXPECT_EQ(told_.of(first, second), Sure::Apart);  // the boxes tell
        first.push_back({1.2, 3, 3});
        second.push_back({1.1, -3, 3});
        EXPECT_EQ(told_.of(first, second), Sure::Unsure);
    }
}

TEST_F(RingsOfFlatMaps, AreUnsureWithoutArea) {
    const Points line = {{-4, -4, 3}, {0, 0, 3}, {4, 4, 3}, {-4, -4, 3}};
    EXPECT_EQ(told_.of(line, {{-3, 3.5, 3}, {3, -3, 3}, {-3, -3, 3}}), Sure::Unsure);
    EXPECT_EQ(told_.of(line, star(0, 0, 9, 9)), Sure::Unsure);
}

TEST_F(RingsOfFlatMaps, AreUnsureWhereTheyTouch) {
    const Points square = {{0, 0, 3}, {4, 0, 3}, {4, 4, 3}, {0, 4, 3}, {0, 0, 3}};
    Points beside = square;
    for (Point3d& p : beside) p.x += 4;
    EXPECT_EQ(told_.of(square, beside), Sure::Unsure);
    const Points onEdge = {{2, 4, 3}, {3, 6, 3}, {1, 6, 3}};
    EXPECT_EQ(told_.of(square, onEdge), Sure::Unsure);
}

TEST_F(RingsOfFlatMaps, HaveToBeLevelAndPlain) {
    const Points square = {{0, 0, 3}, {4, 0, 3}, {4, 4, 3}, {0, 4, 3}, {0, 0, 3}};
    Points odd = square;
    odd[2].z = 4;
    EXPECT_EQ(told_.of(odd, square), Sure::Unsure);
    EXPECT_EQ(told_.of(square, odd), Sure::Unsure);
    odd[2] = {1e200, 1, 3};
    EXPECT_EQ(told_.of(odd, square), Sure::Unsure);
    odd[2] = {std::nan(""), 1, 3};
    EXPECT_EQ(told_.of(odd, square), Sure::Unsure);
    EXPECT_EQ(told_.of(square, {{0, 0, 3}, {1, 1, 3}}), Sure::Unsure);
    EXPECT_EQ(told_.of(Points(4, Point3d{0, 0, 0}), Points(4, Point3d{0, 0, 0})), Sure::Unsure);

    const Bytes runs = bufferOf(polygonShape({{{square[0], square[1]}, {square[2], square[3]}}}));
    EXPECT_EQ(sureOf(runs, bufferOf(polygonOf(square))), Sure::Unsure);
    EXPECT_EQ(sureOf(bufferOf(polygonOf(square)), runs), Sure::Unsure);
    EXPECT_EQ(sureOf(bufferOf(polygonShape({})), runs), Sure::Unsure);
}

TEST_F(RingsOfFlatMaps, AreUnsureWithoutMemory) {
    const Bytes first = bufferOf(polygonOf(star(0, 0, 4, 200)));
    const Bytes second = bufferOf(polygonOf(star(3, 0, 4, 200)));
    EXPECT_EQ(sureOf(first, second), Sure::Meeting);
    EXPECT_EQ(sureOf(first, second, std::pmr::null_memory_resource()), Sure::Unsure);
}

}  // namespace
}  // namespace vexa::test
