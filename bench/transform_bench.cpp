// Transforms in place, beside an addition to the same numbers in place. Sizes count numbers.
#include "bench/samples.h"
#include "bench/wide_loops.h"
#include "bench/works.h"

#include <cstring>
#include <memory>
#include <vector>

namespace vexa::bench {

namespace {

constexpr std::size_t kOutOfCache = 10000000;
constexpr std::size_t kPart = 10;
constexpr int kDigits = 6;
constexpr double kNoSlower = 1;

using Points = std::vector<Point3d>;

double reachAt(std::size_t size) {
    return size < kOutOfCache ? 1.9 : 1.1;
}

Transform rotation() {
    Transform transform{};
    const Point3d origin = {0, 0, 0};
    const Point3d direction = {1, 2, 3};
    transform_initRotationAboutLine(&transform, &origin, &direction, 0.1);
    return transform;
}

void plainLoop(const Transform& transform, Points& points) {
    const auto& m = transform.m;
    for (Point3d& point : points) {
        const auto [x, y, z] = point;
        point.x = m[0] * x + m[1] * y + m[2] * z + m[3];
        point.y = m[4] * x + m[5] * y + m[6] * z + m[7];
        point.z = m[8] * x + m[9] * y + m[10] * z + m[11];
    }
}

bool isSame(const Points& left, const Points& right) {
    return left.size() == right.size() &&
           std::memcmp(left.data(), right.data(), left.size() * sizeof(Point3d)) == 0;
}

Points transformed(Points points) {
    plainLoop(rotation(), points);
    return points;
}

/// Rounds work in place: the first one's result is what is checked.
void enterAdd(Contest& contest, const Points& points) {
    const auto numbers = std::make_shared<Points>(points);
    const auto loop = [=] {
        wideAdd(&numbers->front().x, numbers->size() * 3, 1);
        benchmark::ClobberMemory();
    };
    contest.peer("widest addition", reachAt(contest.size()), loop, [=] {
        Points expected = points;
        for (auto& [x, y, z] : expected) {
            x += 1;
            y += 1;
            z += 1;
        }
        return isSame(*numbers, expected);
    });
}

void enterArray(Contest& contest, const Points& points) {
    const Transform transform = rotation();
    const auto ours = std::make_shared<Points>(points);
    const auto isRight = [=](const Points& result) { return isSame(result, transformed(points)); };
    contest.ours(
        [=] {
            transform_pointArray(&transform, ours->size(), ours->data());
            benchmark::ClobberMemory();
        },
        [=] { return isRight(*ours); });
    const auto theirs = std::make_shared<Points>(points);
    contest.peer(
        "plain loop", kNoSlower,
        [=] {
            plainLoop(transform, *theirs);
            benchmark::ClobberMemory();
        },
        [=] { return isRight(*theirs); });
    enterAdd(contest, points);
}

using ShapeOf = Shape (*)(const Points&);

/// Vertex for vertex, without a look at headers: written out and read again as text.
bool hasVertices(const GeometryBuffer& geometry, const Shape& expected) {
    const Geometry other = geometryOf(expected);
    std::uint32_t size = 0;
    return vexaWKB_calculateSize(&geometry, &size) == VEXA_SUCCESS &&
           std::memcmp(&geometry + 1, other.get() + 1, size - sizeof(GeometryBuffer)) == 0;
}

void enterBuffer(Contest& contest, const Points& points, ShapeOf shapeOf) {
    const Transform transform = rotation();
    const SharedGeometry geometry = parsed(textOf(shapeOf(points), kDigits));
    contest.ours(
        [=] {
            vexaWKB_transformGeometry(&transform, geometry.get());
            benchmark::ClobberMemory();
        },
        [&] { return hasVertices(*geometry, shapeOf(transformed(points))); });
    enterAdd(contest, points);
}

/// A buffer a point: the addition walks the same buffers.
void enterPoints(Contest& contest, const Points& points) {
    const Transform transform = rotation();
    const auto make = [&] {
        auto list = std::make_shared<std::vector<SharedGeometry>>();
        for (const Point3d& point : points) list->push_back(geometryOf({VEXA_POINT, {{point}}}));
        return list;
    };
    const auto verticesOf = [](const std::vector<SharedGeometry>& list) {
        Points result(list.size());
        for (std::size_t i = 0; i < list.size(); ++i) {
            vexaWKB_pointGetPoint(list[i].get(), &result[i]);
        }
        return result;
    };
    const auto ours = make();
    contest.ours(
        [=] {
            for (const SharedGeometry& point : *ours) {
                vexaWKB_transformGeometry(&transform, point.get());
            }
            benchmark::ClobberMemory();
        },
        [=] { return isSame(verticesOf(*ours), transformed(points)); });
    const auto theirs = make();
    contest.peer(
        "plain loop", 0,
        [=] {
            for (const SharedGeometry& point : *theirs) {
                auto& vertex = *reinterpret_cast<Point3d*>(point.get() + 1);
                const auto [x, y, z] = vertex;
                const auto& m = transform.m;
                vertex = {m[0] * x + m[1] * y + m[2] * z + m[3],
                          m[4] * x + m[5] * y + m[6] * z + m[7],
                          m[8] * x + m[9] * y + m[10] * z + m[11]};
            }
            benchmark::ClobberMemory();
        },
        [=] { return isSame(verticesOf(*theirs), transformed(points)); });
}

struct Kind {
    const char* name;
    ShapeOf shapeOf;
};
constexpr Kind kKinds[] = {
    {"linestring", [](const Points& points) { return lineOf(points); }},
    {"polygon, rings of 10",
     [](const Points& points) {
         return Shape{VEXA_POLYGON, inParts(points, kPart)};
     }},
    {"multipoint", [](const Points& points) { return pointsOf(points); }},
    {"multilinestring, lines of 10",
     [](const Points& points) {
         return Shape{VEXA_MULTILINESTRING, inParts(points, kPart)};
     }},
    {"multipolygon, rings of 10",
     [](const Points& points) {
         return Shape{VEXA_MULTIPOLYGON, inParts(points, kPart)};
     }},
};

template <class Enter>
void add(Works& works, const std::string& name, std::size_t size, Enter enter) {
    works.add({"transform", "transform " + name, size}, [=](Contest& contest) {
        enter(contest, rounded(wanderingPoints(size / 3), kDigits));
    });
}

}  // namespace

void addTransforms(Works& works) {
    for (const std::size_t size : {100UL, 1000UL, 100000UL, kOutOfCache}) {
        add(works, "array", size, enterArray);
    }
    add(works, "1,000 points", 3000, enterPoints);
    for (const Kind& kind : kKinds) {
        for (const std::size_t size : {1000UL, 100000UL, kOutOfCache}) {
            add(works, kind.name, size, [=](Contest& contest, const Points& points) {
                enterBuffer(contest, points, kind.shapeOf);
            });
        }
    }
}

}  // namespace vexa::bench
