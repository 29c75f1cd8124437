#include "geometry/intersection/edge_crossings.h"
#include "geometry/intersection/line_cells.h"
#include "tests/support/vector_widths.h"

#include <cmath>
#include <cstddef>
#include <memory_resource>
#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Long polylines are searched by boxes and by lines; short ones, and the reference here, pair by pair.

namespace vexa::test {

namespace {

using Vertices = std::vector<Point3d>;

constexpr std::size_t kMany = 80;
constexpr double kEighth = 0.785398163397448309;  // of a turn

bool crossByPairs(const Vertices& e, const Vertices& r) {
    return EdgesCross({e, false}, {r, false});
}

bool crossBySearch(const Vertices& e, const Vertices& r) {
    return openPolylinesCross(e, r, std::pmr::get_default_resource());
}

/// The answers of both ways, which have to be one.
bool cross(const Vertices& e, const Vertices& r) {
    const bool doCross = crossByPairs(e, r);
    EXPECT_EQ(crossBySearch(e, r), doCross);
    EXPECT_EQ(crossBySearch(r, e), crossByPairs(r, e));
    return doCross;
}

class PolylineCrossings : public testing::Test {
protected:
    double between(double low, double high) {
        return std::uniform_real_distribution<double>{low, high}(random_);
    }
    std::size_t oneOf(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>{0, count - 1}(random_);
    }

    /// Steps of about that length from a place.
    Vertices walk(Point3d at, double step) {
        Vertices vertices;
        for (std::size_t i = 0; i < kMany; ++i) {
            vertices.push_back(at);
            at.x += between(-step, step);
            at.y += between(-step, step);
        }
        return vertices;
    }

    /// Vertices on one line, as rounding lets them, from `first` units along it on, in steps of one unit.
    static Vertices along(double angle, double offset, double first, double unit) {
        Vertices vertices;
        for (std::size_t i = 0; i < kMany; ++i) {
            const double at = first + unit * static_cast<double>(i);
            vertices.push_back({at * std::cos(angle) - offset * std::sin(angle),
                                at * std::sin(angle) + offset * std::cos(angle), 0});
        }
        return vertices;
    }

    std::mt19937_64 random_{2024};
};

TEST_F(PolylineCrossings, AreThoseOfSomePair) {
    int crossing = 0;
    constexpr int kRounds = 600;
    for (int round = 0; round < kRounds; ++round) {
        const double step = std::pow(10, between(-4, 0));
        const Vertices e = walk({between(-1, 1), between(-1, 1), 0}, step);
        const Vertices r = walk({between(-1, 1), between(-1, 1), 0}, step);
        crossing += cross(e, r) ? 1 : 0;
    }
    EXPECT_GT(crossing, kRounds / 10);
    EXPECT_LT(crossing, kRounds * 9 / 10);
}

TEST_F(PolylineCrossings, AreThoseOfSomePairOnAGrid) {
    int crossing = 0;
    constexpr int kRounds = 600;
    for (int round = 0; round < kRounds; ++round) {
        Vertices e = walk({0, 0, 0}, 3);
        Vertices r = walk({between(0, 60), between(0, 60), 0}, 3);
        for (Vertices* vertices : {&e, &r}) {
            for (Point3d& v : *vertices) v = {std::round(v.x), std::round(v.y), 0};
        }
        crossing += cross(e, r) ? 1 : 0;
    }
    EXPECT_GT(crossing, kRounds / 10);
    EXPECT_LT(crossing, kRounds * 9 / 10);
}

// Edges far apart on one line are told to cross where rounding leaves a trace of an angle between them.
TEST_F(PolylineCrossings, AreFoundFarAwayOnOneLine) {
    const double angles[] = {0,           0.1,  kEighth, kEighth + 1e-9, kEighth - 1e-9, 1.0,
                             2 * kEighth, 2e-7, -1e-9,   -kEighth,       3 * kEighth,    2.7};
    int crossing = 0;
    for (const double angle : angles) {
        for (int round = 0; round < 1'000; ++round) {
            const double offset = round % 2 == 0 ? 0 : between(-3, 3);
            const double unit = std::pow(10, between(-6, 0));
            const Vertices e = along(angle, offset, between(-1, 1), unit);
            const Vertices r =
                along(angle + between(-1, 1) * 1e-15, offset, between(10, 1000), unit);
            crossing += cross(e, r) ? 1 : 0;
        }
    }
    EXPECT_GT(crossing, 0);
}

TEST_F(PolylineCrossings, AreNoneAlongAnAxis) {
    for (const double angle : {0.0, 1.0}) {
        Vertices e = along(0, 0, 0, 1);
        Vertices r = along(0, 0, 200, 1);
        if (angle > 0) {
            for (Vertices* vertices : {&e, &r}) {
                for (Point3d& v : *vertices) v = {v.y, v.x, 0};
            }
        }
        EXPECT_FALSE(cross(e, r));
    }
}

TEST_F(PolylineCrossings, LeaveOutEdgesWithoutLength) {
    Vertices e = along(0.3, 0, 0, 1);
    e.insert(e.begin() + 40, 20, e[40]);
    const Vertices far = along(0.3, 5, 0, 1);
    EXPECT_FALSE(cross(e, far));
    EXPECT_FALSE(cross(Vertices(kMany, Point3d{1, 2, 0}), far));
}

TEST_F(PolylineCrossings, AreLookedForPairByPairAmongOddNumbers) {
    for (const double odd : {std::nan(""), HUGE_VAL, 1e200}) {
        Vertices e = walk({0, 0, 0}, 1);
        const Vertices r = walk({0, 0, 0}, 1);
        e[50].x = odd;
        cross(e, r);
    }
    const Vertices nothing(kMany, Point3d{0, 0, 0});
    EXPECT_FALSE(cross(nothing, nothing));
}

struct NoMemory : std::pmr::memory_resource {
    void* do_allocate(std::size_t, std::size_t) override { throw std::bad_alloc{}; }
    void do_deallocate(void*, std::size_t, std::size_t) override {}
    bool do_is_equal(const memory_resource& other) const noexcept override {
        return this == &other;
    }
};

TEST_F(PolylineCrossings, NeedNoMemory) {
    NoMemory memory;
    const Vertices e = along(0.3, 0, 0, 1);
    const Vertices beside = along(0.3, 1e-3, 0, 1);
    const Vertices across = along(1.3, 0, -40.5, 1);
    EXPECT_FALSE(openPolylinesCross(e, beside, &memory));
    EXPECT_TRUE(openPolylinesCross(e, across, &memory));
}

// ---- Lines in cells -----------------------------------------------------------------------------

class LinesInCells : public PolylineCrossings {
protected:
    /// An edge on a line of any slope, the odd ones among them.
    void makeEdge(Point3d* edge) {
        const double slopes[] = {0,        1,        -1,        1e-7,          -9e-7,
                                 1 - 1e-7, 1 + 1e-7, -1 + 3e-7, between(-1, 1)};
        const double slope = slopes[oneOf(std::size(slopes))];
        edge[0] = {between(-1, 1), between(-1, 1), 0};
        const double run = between(-0.5, 0.5);
        edge[1] = {edge[0].x + run, edge[0].y + run * slope, 0};
        if (oneOf(2) == 0) {
            for (Point3d* end : {edge, edge + 1}) *end = {end->y, end->x, 0};
        }
    }

    /// Another edge on the same line, turned and shifted by less than what counts as near.
    void makeNeighbour(const Point3d* edge, Point3d* other) {
        const double dx = edge[1].x - edge[0].x;
        const double dy = edge[1].y - edge[0].y;
        const double angle = between(-9e-8, 9e-8);
        const double at = between(-1, 1);
        const double off = between(-1e-7, 1e-7);
        const double length = std::hypot(dx, dy);
        other[0] = {edge[0].x + at * dx - off * dy / length,
                    edge[0].y + at * dy + off * dx / length, 0};
        other[1] = {other[0].x + 0.3 * (dx - angle * dy), other[0].y + 0.3 * (dy + angle * dx), 0};
    }
};

TEST_F(LinesInCells, HaveTheirNeighboursInTheCellsBesideTheirs) {
    const LineCells cells{2};
    for (int round = 0; round < 200'000; ++round) {
        Point3d edge[2];
        Point3d other[2];
        makeEdge(edge);
        makeNeighbour(edge, other);
        const bool areAlongAxis = (edge[0].x == edge[1].x && other[0].x == other[1].x) ||
                                  (edge[0].y == edge[1].y && other[0].y == other[1].y);
        if (areAlongAxis) continue;

        LineCells::Block block;
        cells.fill(block, edge, 1);
        const LineCells::Key own = block.own[0];
        ASSERT_TRUE(cells.anyNear(other, [=](LineCells::Key key) { return key == own; }))
            << edge[0].x << ' ' << edge[0].y << ' ' << edge[1].x << ' ' << edge[1].y;
        cells.fill(block, other, 1);
        ASSERT_TRUE(block.first[0] != block.last[0] || block.first[0] == own);
    }
}

TEST_F(LinesInCells, AreTheSameAtEachVectorWidth) {
    Vertices vertices = walk({0, 0, 0}, 0.1);
    vertices[7] = vertices[8];
    vertices[20].x = vertices[21].x;
    vertices[30].y = vertices[31].y;
    const LineCells cells{10};
    for (std::size_t count = 1; count <= LineCells::Block::kMostEdges; ++count) {
        const auto filled = [&] {
            LineCells::Block block{};
            cells.fill(block, vertices.data(), count);
            return block;
        };
        const LineCells::Block plain = plainly(filled);
        atEachWidth([&] {
            const LineCells::Block block = filled();
            EXPECT_THAT(block.own, testing::ElementsAreArray(plain.own));
            EXPECT_THAT(block.first, testing::ElementsAreArray(plain.first));
            EXPECT_THAT(block.last, testing::ElementsAreArray(plain.last));
        });
    }
}

}  // namespace

}  // namespace vexa::test
