// Single pairs in space, a thousand a round, half of which intersect. Coordinates are small whole
// numbers, so that what lies in a plane does so exactly, for exact predicates too.
#include "bench/questions.h"
#include "bench/works.h"

#include <random>

namespace vexa::bench {

namespace {

constexpr std::size_t kPairs = 1000;
constexpr double kReach = 1;

class Places {
public:
    /// A vector of whole numbers, none of its components zero.
    Point3d next(int greatest) {
        std::uniform_int_distribution<int> size{1, greatest};
        std::bernoulli_distribution isNegative{0.5};
        const auto number = [&] {
            const int value = size(random_);
            return static_cast<double>(isNegative(random_) ? -value : value);
        };
        const double x = number();
        const double y = number();
        return {x, y, number()};
    }

private:
    static constexpr unsigned kSeed = 20;
    std::mt19937_64 random_{kSeed};
};

Point3d plus(const Point3d& a, const Point3d& b, double times = 1) {
    return {a.x + times * b.x, a.y + times * b.y, a.z + times * b.z};
}

Point3d cross(const Point3d& a, const Point3d& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double dot(const Point3d& a, const Point3d& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Shape segment(const Point3d& from, const Point3d& to) {
    return lineOf({from, to});
}

struct Triangle {
    Point3d corner;
    Point3d u;
    Point3d v;

    Point3d normal() const { return cross(u, v); }
    /// Eighths of its sides from the corner: whole numbers, the sides being multiples of eight.
    Point3d at(double eighthsOfU, double eighthsOfV) const {
        return plus(plus(corner, u, eighthsOfU / 8), v, eighthsOfV / 8);
    }
    Point3d inside() const { return at(2, 3); }
    /// In the plane, within the box of most triangles.
    Point3d outside() const { return at(5, 5); }
    Shape shape() const { return polygonOf({corner, plus(corner, u), plus(corner, v), corner}); }
};

Triangle triangle(Places& places) {
    for (;;) {
        const Point3d u = places.next(20);
        const Point3d v = places.next(20);
        const Point3d normal = cross(u, v);
        if (dot(normal, normal) < 10000) continue;  // too thin to be told from a line
        return {places.next(100), plus({}, u, 8), plus({}, v, 8)};
    }
}

/// A direction well off the triangle's plane.
Point3d directionThrough(const Triangle& triangle, Places& places) {
    const Point3d normal = triangle.normal();
    for (;;) {
        const Point3d direction = places.next(50);
        const double height = dot(direction, normal);
        if (height * height > 0.1 * dot(direction, direction) * dot(normal, normal)) {
            return direction;
        }
    }
}

using MakeSpacePair = ShapePair (*)(Places& places, bool isHit);

ShapePair twoSegments(Places& places, bool isHit) {
    const Point3d meeting = places.next(100);
    const Point3d first = places.next(50);
    const Point3d second = places.next(50);
    // Side by side where they are not to meet.
    const Point3d apart = plus(meeting, cross(first, second), isHit ? 0 : 0.001);
    return {segment(plus(meeting, first, -1), plus(meeting, first)),
            segment(plus(apart, second, -1), plus(apart, second))};
}

ShapePair pointAndTriangle(Places& places, bool isHit) {
    const Triangle plane = triangle(places);
    return {{VEXA_POINT, {{isHit ? plane.inside() : plane.outside()}}}, plane.shape()};
}

/// The segment goes through the triangle's plane, inside the triangle or beside it.
ShapePair segmentAndTriangle(Places& places, bool isHit) {
    const Triangle plane = triangle(places);
    const Point3d through = isHit ? plane.inside() : plane.outside();
    const Point3d direction = directionThrough(plane, places);
    return {segment(plus(through, direction, -1), plus(through, direction)), plane.shape()};
}

/// One side of the second triangle goes through the first one, or all of it stays beside.
ShapePair twoTriangles(Places& places, bool isHit) {
    const Triangle plane = triangle(places);
    const Point3d direction = directionThrough(plane, places);
    if (isHit) {
        const Point3d through = plane.inside();
        const Triangle other = {plus(through, direction, -8), plus({}, direction, 16),
                                plus({}, places.next(20), 8)};
        return {plane.shape(), other.shape()};
    }
    // Across the plane beyond the long side, and away from it. No vertex lies in the other's plane.
    const Point3d through = plane.outside();
    const Point3d outwards = plus(plane.v, plane.u, 2);
    const Triangle other = {plus(through, direction, -8), plus({}, direction, 16),
                            plus(outwards, direction, 11)};
    return {plane.shape(), other.shape()};
}

void enter(Contest& contest, MakeSpacePair make) {
    Places places;
    Questions questions;
    for (std::size_t i = 0; i < kPairs; ++i) {
        ShapePair pair = make(places, i % 2 == 0);
        questions.pairs.emplace_back(2 * i, 2 * i + 1);
        questions.shapes.push_back(std::move(pair.first));
        questions.shapes.push_back(std::move(pair.second));
    }
    enterQuestions(contest, questions, kPairs / 2, kReach, {cgalPeers(questions)});
}

}  // namespace

void addSpaceIntersections(Works& works) {
    const auto add = [&works](const char* name, MakeSpacePair make) {
        works.add({"space", name, kPairs}, [=](Contest& contest) { enter(contest, make); });
    };
    add("segment and segment in space", twoSegments);
    add("point and triangle in space", pointAndTriangle);
    add("segment and triangle in space", segmentAndTriangle);
    add("triangle and triangle in space", twoTriangles);
}

}  // namespace vexa::bench
