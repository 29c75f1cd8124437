#include "geometry/intersection/stretches.h"
#include "geometry/intersection/sure_answers.h"
#include "tests/support/intersection_asking.h"
#include "tests/support/intersection_random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <span>

#include <gtest/gtest.h>

/// Single pairs of segments, points and triangles in space, most of them next to where the answer turns:
/// what signs are sure of, and what the exported tests make of it, beside the plain walk.
namespace vexa::test {
namespace {

Point3d plus(const Point3d& a, const Point3d& b, double times) {
    return {a.x + times * b.x, a.y + times * b.y, a.z + times * b.z};
}

class Places {
public:
    explicit Places(std::uint64_t seed) : random_(seed) {
        scale_ = std::ldexp(1.0, oneOf({0, 0, 0, 0, 30, -30, 90, -90, 104, -104}));
        shift_ = scale_ * oneOf({0.0, 0.0, 1.0, 100.0, 1e4, 1e6});
        onGrid_ = below(3) == 0;
        isClear_ = below(3) == 0;
        if (isClear_) shift_ = 0;
    }

    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }
    double real(double low, double high) {
        return low + (high - low) * (static_cast<double>(random_() >> 11) * 0x1p-53);
    }
    template <class Value, std::size_t Count>
    Value oneOf(const Value (&values)[Count]) {
        return values[below(Count)];
    }
    double scale() const { return scale_; }

    /// 1 to 1e-17, of either sign; sometimes nothing.
    double small() {
        return below(4) == 0 ? 0 : (below(2) == 0 ? -1 : 1) * std::pow(10, real(-17, 0));
    }
    Point3d vector() {
        const auto number = [&] { return onGrid_ ? std::round(real(-8, 8)) : real(-8, 8); };
        const double x = number() * scale_;
        const double y = number() * scale_;
        return {x, y, number() * scale_};
    }
    Point3d place() {
        const Point3d offset = vector();
        return {offset.x + shift_, offset.y - shift_, offset.z + shift_};
    }
    /// A part of a whole: next to its ends, or to 1/64 of it, or anywhere.
    double part() {
        if (isClear_) return real(0.1, 0.4);
        return oneOf({0.0, 1.0, 1.0 / 64, -1.0 / 64, real(-0.5, 1.5)}) + small();
    }

    /// Often some other small number, or none at all.
    double tolerance() {
        if (isClear_) return scale_ * 1e-6;
        const double size = scale_ * oneOf({0.0, 1e-15, 1e-9, 1e-3, 1.0, 20.0});
        return below(12) == 0 ? oneOf({-1.0, kNaN, kInf, -kInf, kLargest}) : size;
    }

private:
    std::mt19937_64 random_;
    double scale_ = 1;
    double shift_ = 0;
    bool onGrid_ = false;
    /// Whether nothing is to be near where the answer turns.
    bool isClear_ = false;
};

struct TestTriangle {
    explicit TestTriangle(Places& places)
        : corner(places.place()), u(places.vector()), v(places.vector()) {
        if (places.below(4) == 0) v = plus(v, u, 1 / places.small());
    }
    Point3d at(double partOfU, double partOfV) const {
        return plus(plus(corner, u, partOfU), v, partOfV);
    }
    Point3d unitNormal() const { return model::normalised(model::cross(u, v)); }
    Shape shape() const { return polygonShape({{{corner, at(1, 0), at(0, 1), corner}}}); }

    Point3d corner;
    Point3d u;
    Point3d v;
};

/// Off the plane, or nearly in it.
Point3d directionFrom(const TestTriangle& triangle, Places& places) {
    const Point3d any = places.vector();
    if (places.below(2) == 0) return any;
    const Point3d flat =
        plus(plus({}, triangle.u, places.real(-1, 1)), triangle.v, places.real(-1, 1));
    const double rise = places.oneOf({1.0 / 16, 1e-3, 1e-9, 1e-15, 0.0}) * (1 + places.small());
    return plus(flat, triangle.unitNormal(), rise * model::length(flat));
}

struct Pair {
    Shape first;
    Shape second;
    double tolerance = 0;
};

using MakePair = Pair (*)(Places& places);

Pair twoSegments(Places& places) {
    const Point3d u = places.vector();
    const Point3d v =
        places.below(3) == 0 ? plus(u, places.vector(), places.small()) : places.vector();
    const Point3d meeting = places.place();
    const double tolerance = places.tolerance();
    const Point3d across = model::normalised(model::cross(u, v));
    const double gap = std::isfinite(tolerance) ? tolerance * (1 + places.small()) : 1;
    const Point3d other = plus(meeting, across, gap);
    const double onU = places.part();
    const double onV = places.part();
    return {lineShape({{plus(meeting, u, -onU), plus(meeting, u, 1 - onU)}}),
            lineShape({{plus(other, v, -onV), plus(other, v, 1 - onV)}}), tolerance};
}

Pair pointAndTriangle(Places& places) {
    const TestTriangle triangle{places};
    const double tolerance = places.tolerance();
    const double height = std::isfinite(tolerance) ? tolerance * (1 + places.small()) : 1;
    const Point3d inPlane = triangle.at(places.part(), places.part());
    const Point3d point =
        plus(inPlane, triangle.unitNormal(), places.oneOf({0.0, height, -height}));
    return {pointShape(point), triangle.shape(), tolerance};
}

Pair segmentAndTriangle(Places& places) {
    const TestTriangle triangle{places};
    const Point3d through = triangle.at(places.part(), places.part());
    const Point3d direction = directionFrom(triangle, places);
    const double before = places.part();
    return {lineShape({{plus(through, direction, -before), plus(through, direction, 1 - before)}}),
            triangle.shape(), places.tolerance()};
}

Pair twoTriangles(Places& places) {
    const TestTriangle triangle{places};
    TestTriangle other{places};
    other.u = directionFrom(triangle, places);
    other.corner = plus(triangle.at(places.part(), places.part()), other.u, -places.part());
    if (places.below(3) == 0) other.v = directionFrom(triangle, places);
    return {triangle.shape(), other.shape(), 0};
}

Sure sureOf(const Bytes& first, const Bytes& second, double tolerance) {
    const GeometryBuffer& a = *first.geometry();
    const GeometryBuffer& b = *second.geometry();
    if (b.type == VEXA_LINESTRING) {
        return vexa::segmentAndSegment(vexa::pathOf(a), vexa::pathOf(b), tolerance);
    }
    const PathList& polygon = vexa::pathListOf(b);
    if (a.type == VEXA_POINT) return vexa::pointAndTriangle(vexa::pointOf(a), polygon, tolerance);
    if (a.type == VEXA_LINESTRING) {
        return vexa::segmentAndTriangle(vexa::pathOf(a), polygon, tolerance);
    }
    return vexa::triangleAndTriangle(vexa::pathListOf(a), polygon);
}

struct SureCase {
    const char* name;
    MakePair make;
};

class SureAnswers : public testing::TestWithParam<SureCase> {};

constexpr std::uint64_t kRounds = 100000;

void expectModel(const Pair& pair, std::uint64_t seed, std::array<int, 3>& counts) {
    const std::uint32_t expected = model::intersect(pair.first, pair.second, pair.tolerance, 7);
    const Bytes first = bufferOf(pair.first);
    const Bytes second = bufferOf(pair.second);
    const Sure sure = sureOf(first, second, pair.tolerance);
    ++counts[static_cast<std::size_t>(sure)];
    if (sure != Sure::Unsure) {
        EXPECT_EQ(sure == Sure::Meeting ? 1U : 0U, expected)
            << "seed " << seed << ", tolerance " << pair.tolerance << "\n"
            << testing::PrintToString(pair.first) << "\n"
            << testing::PrintToString(pair.second);
    }
    const Asked right = {0, expected};
    EXPECT_EQ(ask(vexaWKB_intersectGeometry, first, second, pair.tolerance, 7), right)
        << "seed " << seed;
}

TEST_P(SureAnswers, AreThoseOfThePlainWalk) {
    std::array<int, 3> counts{};
    for (std::uint64_t seed = 1; seed <= kRounds; ++seed) {
        Places places{seed};
        expectModel(GetParam().make(places), seed, counts);
    }
    for (const int count : counts) EXPECT_GT(count, kRounds / 50);
}

TEST_P(SureAnswers, AreNoneWhereACoordinateIsNoOrdinaryNumber) {
    constexpr double kSpecials[] = {kNaN, kInf, -kInf, kLargest, -kLargest, 1e60, -1e60};
    std::array<int, 3> counts{};
    for (std::uint64_t seed = 1; seed <= kRounds / 10; ++seed) {
        Places places{seed};
        Pair pair = GetParam().make(places);
        Shape& shape = places.below(2) == 0 ? pair.first : pair.second;
        Points& points = shape.type == VEXA_POINT ? shape.points : shape.parts[0][0][0];
        Point3d& point = points[places.below(points.size())];
        double* const coordinates[] = {&point.x, &point.y, &point.z};
        *coordinates[places.below(3)] = places.oneOf(kSpecials);
        expectModel(pair, seed, counts);
    }
    EXPECT_EQ(counts[static_cast<std::size_t>(Sure::Unsure)], kRounds / 10);
}

/// Up to the count at which a box is taken by the widest vectors.
TEST(PlainRange, OfFewPointsIsThatOfTheFold) {
    constexpr double kSpecials[] = {kNaN, kInf, -kInf, kLargest, 1e150, -1e151, -0.0, 0.0};
    int plain = 0;
    for (std::uint64_t seed = 1; seed <= kRounds / 10; ++seed) {
        Places places{seed};
        Points points(1 + places.below(20));
        for (Point3d& point : points) point = places.place();
        if (places.below(2) == 0) {
            points[places.below(points.size())].y = places.oneOf(kSpecials);
            points[places.below(points.size())].z = places.oneOf(kSpecials);
        }
        const bool arePlain = std::all_of(points.begin(), points.end(), [](const Point3d& point) {
            return std::fabs(point.x) <= kLargestPlain && std::fabs(point.y) <= kLargestPlain &&
                   std::fabs(point.z) <= kLargestPlain;
        });
        const Range3d folded = model::boxOfPoints(points);
        const std::optional<Range3d> box = vexa::plainRange(std::span<const Point3d>(points));
        ASSERT_EQ(box.has_value(), arePlain) << "seed " << seed;
        if (!box) continue;
        ++plain;
        for (const auto coordinate : {&Point3d::x, &Point3d::y, &Point3d::z}) {
            ASSERT_EQ(box->low.*coordinate, folded.low.*coordinate) << "seed " << seed;
            ASSERT_EQ(box->high.*coordinate, folded.high.*coordinate) << "seed " << seed;
        }
    }
    EXPECT_GT(plain, kRounds / 40);
    EXPECT_LT(plain, kRounds / 11);
}

INSTANTIATE_TEST_SUITE_P(Pairs, SureAnswers,
                         testing::Values(SureCase{"TwoSegments", twoSegments},
                                         SureCase{"PointAndTriangle", pointAndTriangle},
                                         SureCase{"SegmentAndTriangle", segmentAndTriangle},
                                         SureCase{"TwoTriangles", twoTriangles}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace vexa::test
