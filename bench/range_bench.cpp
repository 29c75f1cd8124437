// Boxes of lines and of polygons, beside a sum of the same numbers. Sizes count numbers: the largest
// do not fit the caches.
#include "bench/samples.h"
#include "bench/wide_loops.h"
#include "bench/works.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace vexa::bench {

namespace {

constexpr std::size_t kOutOfCache = 10000000;
constexpr std::size_t kRing = 10;

double reachAt(std::size_t size) {
    return size < kOutOfCache ? 1.8 : 1.1;
}

Range3d boxOf(const std::vector<Point3d>& points) {
    Range3d box = {points.front(), points.front()};
    for (const Point3d& point : points) {
        box.low = {std::min(box.low.x, point.x), std::min(box.low.y, point.y),
                   std::min(box.low.z, point.z)};
        box.high = {std::max(box.high.x, point.x), std::max(box.high.y, point.y),
                    std::max(box.high.z, point.z)};
    }
    return box;
}

bool isSame(const Point3d& left, const Point3d& right) {
    return left.x == right.x && left.y == right.y && left.z == right.z;
}

using RangeOf = uint32_t (*)(const GeometryBuffer*, Point3d*, Point3d*);

void enter(Contest& contest, const std::vector<Point3d>& points, Geometry made, RangeOf rangeOf) {
    const SharedGeometry geometry = std::move(made);
    const auto box = std::make_shared<Range3d>();
    const auto range = [=] {
        rangeOf(geometry.get(), &box->low, &box->high);
        benchmark::DoNotOptimize(box->low);
        benchmark::DoNotOptimize(box->high);
    };
    const Range3d expected = boxOf(points);
    contest.ours(
        range, [&] { return isSame(box->low, expected.low) && isSame(box->high, expected.high); });

    const auto numbers = std::make_shared<std::vector<Point3d>>(points);
    const auto sum = std::make_shared<double>(0);
    const auto loop = [=] {
        *sum = wideSum(&numbers->front().x, numbers->size() * 3);
        benchmark::DoNotOptimize(sum.get());
    };
    contest.peer("widest sum", reachAt(contest.size()), loop, [&] {
        double inOrder = 0;
        double size = 0;
        for (const Point3d& point : points) {
            inOrder += point.x + point.y + point.z;
            size += std::abs(point.x) + std::abs(point.y) + std::abs(point.z);
        }
        return std::abs(*sum - inOrder) <= 1e-9 * size;
    });
}

Shape line(const std::vector<Point3d>& points) {
    return lineOf(points);
}

Shape manyRings(const std::vector<Point3d>& points) {
    return {VEXA_POLYGON, inParts(points, kRing)};
}

Shape manyPolygons(const std::vector<Point3d>& points) {
    return {VEXA_MULTIPOLYGON, inParts(points, kRing)};
}

void add(Works& works, const std::string& name, Shape (*shapeOf)(const std::vector<Point3d>&),
         RangeOf rangeOf) {
    for (const std::size_t size : {100UL, 1000UL, 100000UL, kOutOfCache}) {
        works.add({"range", "range of " + name, size}, [=](Contest& contest) {
            // Short texts make large buffers quickly.
            constexpr int kDigits = 6;
            const auto points = rounded(wanderingPoints(size / 3), kDigits);
            enter(contest, points, parsed(textOf(shapeOf(points), kDigits)), rangeOf);
        });
    }
}

}  // namespace

void addRanges(Works& works) {
    add(works, "linestring", line, vexaWKB_getLineRange);
    add(works, "polygon, rings of 10", manyRings, vexaWKB_getPolygonRange);
    add(works, "multipolygon, rings of 10", manyPolygons, vexaWKB_getMultiPolygonRange);
}

}  // namespace vexa::bench
