#include "tests/support/intersection_asking.h"
#include "tests/support/intersection_random.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr double kNear = 1e-9;

template <class Change>
Shape changed(Shape shape, Change change) {
    for (Point3d& point : shape.points) point = change(point);
    for (Paths& paths : shape.parts) {
        for (Runs& runs : paths) {
            for (Points& run : runs) {
                for (Point3d& point : run) point = change(point);
            }
        }
    }
    return shape;
}

/// Shapes in z = 0 without coincidences, of any type.
class GenericPair {
public:
    GenericPair(std::uint64_t seed, std::uint32_t firstType, std::uint32_t secondType)
        : random_(seed, Placing::Plane, 1), first(make(firstType)), second(make(secondType)) {}

private:
    Points way() { return random_.vertices(2 + random_.below(6)); }
    Points ring() {
        Points ring = random_.outline(4 + random_.below(20));
        return ring;
    }
    Paths rings() {
        Paths rings = {{ring()}};
        if (random_.oneIn(2)) rings.push_back({ring()});
        return rings;
    }
    Shape make(std::uint32_t type) {
        switch (type) {
            case VEXA_POINT: return pointShape(random_.vertex());
            case VEXA_LINESTRING: return line(way());
            case VEXA_POLYGON: return polygonShape(rings());
            case VEXA_MULTIPOINT: return multipointShape(random_.vertices(1 + random_.below(5)));
            case VEXA_MULTILINESTRING: return multilineShape({{way()}, {way(), way()}, {way()}});
            default: return multipolygonShape({rings(), rings(), rings()});
        }
    }

    RandomShapes random_;

public:
    const Shape first;
    const Shape second;
};

/// Runs a check on so many pairs of each two types, and sees that both answers came up.
template <class Check>
void forGenericPairs(Check check) {
    int hits = 0;
    int misses = 0;
    for (std::uint64_t round = 0; round < 25; ++round) {
        for (std::uint32_t cell = 0; cell < 36; ++cell) {
            const std::uint64_t seed = round * 36 + cell + 1;
            const GenericPair pair(seed, cell / 6 + 1, cell % 6 + 1);
            const Asked asked = ask(pair.first, pair.second, kNear);
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", cell " << cell);
            check(pair, asked);
            (asked == kHit ? hits : misses) += 1;
        }
    }
    EXPECT_GT(hits, 150);
    EXPECT_GT(misses, 150);
}

TEST(IntersectProperty, AnswersStayUnderATranslation) {
    forGenericPairs([](const GenericPair& pair, const Asked& asked) {
        const auto moved = [](const Point3d& p) { return Point3d{p.x + 64, p.y - 32, p.z + 128}; };
        EXPECT_EQ(ask(changed(pair.first, moved), changed(pair.second, moved), kNear), asked);
    });
}

TEST(IntersectProperty, AnswersStayUnderAPermutationOfTheAxes) {
    forGenericPairs([](const GenericPair& pair, const Asked& asked) {
        const auto turned = [](const Point3d& p) { return Point3d{p.z, p.x, p.y}; };
        const auto turnedBack = [](const Point3d& p) { return Point3d{p.y, p.z, p.x}; };
        const auto swapped = [](const Point3d& p) { return Point3d{p.y, p.x, p.z}; };
        EXPECT_EQ(ask(changed(pair.first, turned), changed(pair.second, turned), kNear), asked);
        EXPECT_EQ(ask(changed(pair.first, turnedBack), changed(pair.second, turnedBack), kNear),
                  asked);
        EXPECT_EQ(ask(changed(pair.first, swapped), changed(pair.second, swapped), kNear), asked);
    });
}

TEST(IntersectProperty, AnswersStayUnderAChangeOfScale) {
    forGenericPairs([](const GenericPair& pair, const Asked& asked) {
        const auto scaled = [](const Point3d& p) {
            return Point3d{p.x * 0x1p30, p.y * 0x1p30, p.z * 0x1p30};
        };
        EXPECT_EQ(ask(changed(pair.first, scaled), changed(pair.second, scaled), kNear * 0x1p30),
                  asked);
    });
}

TEST(IntersectProperty, OrderDoesNotMatter) {
    forGenericPairs([](const GenericPair& pair, const Asked& asked) {
        EXPECT_EQ(ask(pair.second, pair.first, kNear), asked);
    });
}

/// Every member as a geometry of its own.
std::vector<Shape> membersOf(const Shape& shape) {
    std::vector<Shape> members;
    switch (shape.type) {
        case VEXA_MULTIPOINT:
            for (const Point3d& point : shape.points) members.push_back(pointShape(point));
            return members;
        case VEXA_MULTILINESTRING:
            for (const Runs& runs : shape.parts.front()) members.push_back(lineShape(runs));
            return members;
        case VEXA_MULTIPOLYGON:
            for (const Paths& rings : shape.parts) members.push_back(polygonShape(rings));
            return members;
        default: return {shape};
    }
}

TEST(IntersectProperty, MultiPartsHitWhereSomeMembersDo) {
    forGenericPairs([](const GenericPair& pair, const Asked& asked) {
        bool isHit = false;
        for (const Shape& a : membersOf(pair.first)) {
            for (const Shape& b : membersOf(pair.second)) isHit |= ask(a, b, kNear) == kHit;
        }
        EXPECT_EQ(asked, isHit ? kHit : kMiss);
    });
}

/// How often the ring goes around the place, in x and y.
double turnsAround(double x, double y, const Points& ring) {
    double turned = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Point3d& a = ring[i];
        const Point3d& b = ring[(i + 1) % ring.size()];
        turned += std::atan2((a.x - x) * (b.y - y) - (a.y - y) * (b.x - x),
                             (a.x - x) * (b.x - x) + (a.y - y) * (b.y - y));
    }
    return turned / 6.283185307179586;
}

TEST(IntersectProperty, APointIsInARingThatGoesAroundItAnOddNumberOfTimes) {
    int inside = 0;
    int asked = 0;
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        RandomShapes random(seed, Placing::Plane, 1);
        const Points flat = random.outline(3 + random.below(15));
        const double turn = random.real(0, 6.28);
        const double tilt = random.real(0, 6.28);
        const Point3d shift = {random.real(-9, 9), random.real(-9, 9), random.real(-9, 9)};
        const auto placed = [&](const Point3d& p) {
            const double x = p.x * std::cos(turn) - p.y * std::sin(turn);
            const double y = p.x * std::sin(turn) + p.y * std::cos(turn);
            return Point3d{x + shift.x, y * std::cos(tilt) + shift.y, y * std::sin(tilt) + shift.z};
        };
        const Shape polygon = changed(polygonShape({{flat}}), placed);
        Points rotated = flat;
        std::rotate(rotated.begin(), rotated.begin() + 1, rotated.end());
        const Shape startedElsewhere = changed(polygonShape({{rotated}}), placed);
        Points reversed(flat.rbegin(), flat.rend());
        const Shape backwards = changed(polygonShape({{reversed}}), placed);
        for (int i = 0; i < 20; ++i) {
            const Point3d p = random.vertex();
            const bool isNearEdge = [&] {
                for (const model::Edge& edge : model::edgesOf(flat, true)) {
                    if (model::pointNearSegment(p, edge.start, edge.end, 1e-5)) return true;
                }
                return false;
            }();
            if (isNearEdge) continue;

            const bool isOdd = std::lround(turnsAround(p.x, p.y, flat)) % 2 != 0;
            const Asked expected = isOdd ? kHit : kMiss;
            const Shape point = pointShape(placed(p));
            EXPECT_EQ(ask(point, polygon, kNear), expected) << "seed " << seed << ", point " << i;
            EXPECT_EQ(ask(point, startedElsewhere, kNear), expected) << "seed " << seed;
            EXPECT_EQ(ask(point, backwards, kNear), expected) << "seed " << seed;
            ++asked;
            inside += isOdd;
        }
    }
    EXPECT_GT(asked, 5000);
    EXPECT_GT(inside, 800);
}

}  // namespace
}  // namespace vexa::test
