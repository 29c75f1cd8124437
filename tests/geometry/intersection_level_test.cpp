#include "tests/support/intersection_asking.h"
#include "tests/support/intersection_random.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>

#include <gtest/gtest.h>

/// Flat maps: shapes in one level plane, with lines that come and go, rings inside of rings and steps
/// that are small beside the whole, so that much is ruled out by boxes. Beside the plain walk.
namespace vexa::test {
namespace {

class FlatMap {
public:
    explicit FlatMap(std::uint64_t seed) : random_(seed) {
        step_ = std::array{1.0, 0.5, 0.1, 1e-3}[below(4)];
        isOnGrid_ = below(2) == 0;
        height_ = below(2) == 0 ? 0.0 : 7.25;
    }

    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }
    double real(double low, double high) {
        return low + (high - low) * (static_cast<double>(random_() >> 11) * 0x1p-53);
    }

    /// From somewhere on in small steps.
    Points walk(std::size_t count) {
        Points points;
        double x = real(-20, 20);
        double y = real(-20, 20);
        double angle = real(0, 6.28);
        while (points.size() < count) {
            points.push_back(at(x, y));
            angle += real(-0.8, 0.8);
            x += 2 * step_ * std::cos(angle);
            y += 2 * step_ * std::sin(angle);
        }
        return points;
    }

    /// Around a place, closed by its last vertex or not.
    Points ring(double x, double y, double radius, std::size_t count) {
        Points points;
        for (std::size_t i = 0; i < count; ++i) {
            const double angle =
                6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
            const double reach = radius * real(0.8, 1);
            points.push_back(at(x + reach * std::cos(angle), y + reach * std::sin(angle)));
        }
        if (below(2) == 0) points.push_back(points.front());
        return points;
    }

    Paths lines() {
        Paths paths;
        for (std::size_t left = 1 + below(4); left > 0; --left) {
            Runs runs;
            for (std::size_t more = 1 + below(2); more > 0; --more)
                runs.push_back(walk(2 + below(90)));
            paths.push_back(runs);
        }
        return paths;
    }

    /// An outer ring and, in the midst of it, holes.
    Paths polygon() {
        const double x = real(-15, 15);
        const double y = real(-15, 15);
        const double radius = real(1, 15);
        Paths rings = {{ring(x, y, radius, 5 + below(80))}};
        for (std::size_t left = below(3); left > 0; --left) {
            rings.push_back({ring(x, y, radius * real(0.1, 0.7), 3 + below(40))});
        }
        return rings;
    }

    double tolerance() { return std::array{0.0, 1e-9, 0.01, 0.3, 1.0, 4.0}[below(6)]; }

    Points places(std::size_t count) {
        Points points;
        while (points.size() < count) points.push_back(at(real(-20, 20), real(-20, 20)));
        return points;
    }

private:
    Point3d at(double x, double y) const {
        return isOnGrid_
                   ? Point3d{std::round(x / step_) * step_, std::round(y / step_) * step_, height_}
                   : Point3d{x, y, height_};
    }

    std::mt19937_64 random_;
    double step_ = 1;
    bool isOnGrid_ = false;
    double height_ = 0;
};

struct Seen {
    std::array<int, 2> answers{};

    void ask(const Shape& first, const Shape& second, double tolerance, std::uint64_t seed) {
        const std::uint32_t expected = model::intersect(first, second, tolerance, 0);
        ++answers[expected];
        const Asked right = {0, expected};
        EXPECT_EQ(test::ask(first, second, tolerance), right)
            << "seed " << seed << ", tolerance " << tolerance;
    }

    void expectBoth(int rounds) const {
        EXPECT_GT(answers[0], rounds / 10);
        EXPECT_GT(answers[1], rounds / 10);
    }
};

constexpr int kRounds = 1500;

template <class AskOnce>
void askMany(AskOnce askOnce) {
    Seen seen;
    for (std::uint64_t seed = 1; seed <= kRounds; ++seed) {
        FlatMap map{seed};
        askOnce(map, seen, seed);
    }
    seen.expectBoth(kRounds);
}

TEST(IntersectFlatMaps, LinesWithLines) {
    askMany([](FlatMap& map, Seen& seen, std::uint64_t seed) {
        seen.ask(multilineShape(map.lines()), multilineShape(map.lines()), map.tolerance(), seed);
    });
}

TEST(IntersectFlatMaps, LinesWithAPolygon) {
    askMany([](FlatMap& map, Seen& seen, std::uint64_t seed) {
        seen.ask(multilineShape(map.lines()), polygonShape(map.polygon()), map.tolerance(), seed);
    });
}

TEST(IntersectFlatMaps, LinesWithPolygons) {
    askMany([](FlatMap& map, Seen& seen, std::uint64_t seed) {
        const Polygons polygons = {map.polygon(), map.polygon(), map.polygon()};
        seen.ask(multipolygonShape(polygons), multilineShape(map.lines()), map.tolerance(), seed);
    });
}

TEST(IntersectFlatMaps, PointsWithAPolygon) {
    askMany([](FlatMap& map, Seen& seen, std::uint64_t seed) {
        const Points places = map.places(1 + map.below(12));
        seen.ask(multipointShape(places), polygonShape(map.polygon()), map.tolerance(), seed);
    });
}

TEST(IntersectFlatMaps, PolygonsWithPolygons) {
    askMany([](FlatMap& map, Seen& seen, std::uint64_t seed) {
        const Polygons some = {map.polygon(), map.polygon()};
        const Polygons others = {map.polygon(), map.polygon()};
        seen.ask(multipolygonShape(some), multipolygonShape(others), map.tolerance(), seed);
    });
}

}  // namespace
}  // namespace vexa::test
