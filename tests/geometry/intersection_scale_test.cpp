#include "tests/support/intersection_asking.h"
#include "tests/support/intersection_random.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>

#include <gtest/gtest.h>

/// Level shapes as small and as large as numbers get. Beyond some scales a ring's frame degenerates, as
/// lengths overflow or vanish on the way: what holds for maps of this world does not hold there.
namespace vexa::test {
namespace {

class ShapesAtAnyScale : public testing::TestWithParam<int> {
protected:
    double between(double low, double high) {
        return std::uniform_real_distribution<double>{low, high}(random_);
    }

    Points star(double x, double y) {
        const std::size_t count = 3 + static_cast<std::size_t>(random_() % 40);
        Points points;
        for (std::size_t i = 0; i < count; ++i) {
            const double angle =
                6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
            const double reach = between(2, 4);
            points.push_back({scale_ * (x + reach * std::cos(angle)),
                              scale_ * (y + reach * std::sin(angle)), 0});
        }
        return points;
    }

    double scale_ = std::pow(10.0, GetParam());
    std::mt19937_64 random_{static_cast<std::uint64_t>(GetParam() + 1000)};
};

TEST_P(ShapesAtAnyScale, AreAsThePlainWalkTells) {
    constexpr int kRounds = 40;
    for (int round = 0; round < kRounds; ++round) {
        const Shape polygon = polygonShape({{star(0, 0)}});
        const Points points = star(between(-6, 6), between(-6, 6));
        const std::array others = {polygonShape({{points}}), lineShape({points}),
                                   multipolygonShape({{{points}}, {{star(5, 5)}}}),
                                   pointShape(points.front()), multipointShape(points)};
        for (const Shape& other : others) {
            for (const double tolerance : {0.0, 0.1 * scale_}) {
                const Asked right = {0, model::intersect(polygon, other, tolerance, 0)};
                ASSERT_EQ(ask(polygon, other, tolerance), right);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(PowersOfTen, ShapesAtAnyScale, testing::Range(-160, 156, 4));

}  // namespace
}  // namespace vexa::test
