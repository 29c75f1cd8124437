#include "geometry/range.h"

#include "geometry/range_by_vectors.h"
#include "geometry/run_walk.h"
#include "geometry/walkers.h"
#include "vexakit/geometry.h"

#include <limits>
#include <span>

namespace vexa {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Range3d kEmptyRange = {{kInfinity, kInfinity, kInfinity},
                                 {-kInfinity, -kInfinity, -kInfinity}};

// A value that is unordered with the low corner replaces it, so a NaN gets in and the next value
// pushes it out again. The high corner takes what is greater alone: a NaN that it starts with stays.
// Of two zeros the first stays in both.
void foldLow(double& low, double value) {
    low = low <= value ? low : value;
}
void foldHigh(double& high, double value) {
    high = value > high ? value : high;
}

void fold(Range3d& box, const Range3d& next) {
    foldLow(box.low.x, next.low.x);
    foldLow(box.low.y, next.low.y);
    foldLow(box.low.z, next.low.z);
    foldHigh(box.high.x, next.high.x);
    foldHigh(box.high.y, next.high.y);
    foldHigh(box.high.z, next.high.z);
}

Range3d rangeOf(const Point3d& point) {
    return {point, point};
}

/// The first element's box, with the others' folded in. Not a fold from the empty box: a NaN that
/// comes first belongs in both corners.
template <class List, class RangeOfElement>
Range3d foldedRange(const List& list, RangeOfElement rangeOfElement) {
    Range3d box = kEmptyRange;
    bool isFirst = true;
    for (const auto& element : list) {
        const Range3d next = rangeOfElement(element);
        if (isFirst) {
            box = next;
        } else {
            fold(box, next);
        }
        isFirst = false;
    }
    return box;
}

// ---- Vertex by vertex --------------------------------------------------------------------------

Range3d foldedRangeOf(std::span<const Point3d> points) {
    if (points.empty()) return kEmptyRange;

    Range3d box = rangeOf(points.front());
    for (const Point3d& point : points.subspan(1)) fold(box, rangeOf(point));
    return box;
}

Range3d foldedRangeOf(const PointRun& run) {
    return foldedRangeOf(verticesOf(run));
}

Range3d foldedRangeOf(const Path& path) {
    return foldedRange(runsOf(path), [](const PointRun& run) { return foldedRangeOf(run); });
}

Range3d foldedRangeOf(const PathList& paths) {
    return foldedRange(pathsOf(paths), [](const Path& path) { return foldedRangeOf(path); });
}

Range3d foldedRangeOf(const PolygonList& polygons) {
    return foldedRange(polygonsOf(polygons),
                       [](const PathList& polygon) { return foldedRangeOf(polygon); });
}

// ---- By the quickest way -----------------------------------------------------------------------

// Vectors need some nanoseconds to get going.
constexpr std::size_t kFewPoints = 12;

template <class Structure>
Range3d quickRangeOf(const Structure& structure) {
    Range3d box;
    if (!rangeByVectors(RunWalk{structure}, box)) box = foldedRangeOf(structure);
    return box;
}

}  // namespace

Range3d rangeOf(std::span<const Point3d> points) {
    return points.size() < kFewPoints ? foldedRangeOf(points) : quickRangeOf(points);
}

Range3d runRange(const PointRun& run) {
    return rangeOf(verticesOf(run));
}

Range3d pathRange(const Path& path) {
    return path.runCount == 1 ? runRange(*after<PointRun>(path)) : quickRangeOf(path);
}

Range3d pathListRange(const PathList& paths) {
    return paths.pathCount == 1 ? pathRange(*after<Path>(paths)) : quickRangeOf(paths);
}

Range3d pointRange(const GeometryBuffer& point) {
    return rangeOf(pointOf(point));
}

Range3d lineRange(const GeometryBuffer& line) {
    return pathRange(pathOf(line));
}

Range3d polygonRange(const GeometryBuffer& polygon) {
    return pathListRange(pathListOf(polygon));
}

Range3d multiPointRange(const GeometryBuffer& multiPoint) {
    return rangeOf(pointsOf(pointArrayOf(multiPoint)));
}

Range3d multiLineRange(const GeometryBuffer& multiLine) {
    return pathListRange(pathListOf(multiLine));
}

Range3d multiPolygonRange(const GeometryBuffer& multiPolygon) {
    const PolygonList& polygons = polygonListOf(multiPolygon);
    return polygons.polygonCount == 1 ? pathListRange(*after<PathList>(polygons))
                                      : quickRangeOf(polygons);
}

namespace {

template <Range3d (*RangeOf)(const GeometryBuffer&)>
std::uint32_t corners(const GeometryBuffer* geometry, Point3d* low, Point3d* high) {
    if (!geometry || !low || !high) return kFailure;

    const Range3d range = RangeOf(*geometry);
    *low = range.low;
    *high = range.high;
    return kSuccess;
}

}  // namespace

}  // namespace vexa

using namespace vexa;

uint32_t vexaWKB_getPointRange(const GeometryBuffer* geometry, Point3d* low, Point3d* high) {
    return corners<pointRange>(geometry, low, high);
}

uint32_t vexaWKB_getLineRange(const GeometryBuffer* geometry, Point3d* low, Point3d* high) {
    return corners<lineRange>(geometry, low, high);
}

uint32_t vexaWKB_getPolygonRange(const GeometryBuffer* geometry, Point3d* low, Point3d* high) {
    return corners<polygonRange>(geometry, low, high);
}

uint32_t vexaWKB_getMultiPointRange(const GeometryBuffer* geometry, Point3d* low, Point3d* high) {
    return corners<multiPointRange>(geometry, low, high);
}

uint32_t vexaWKB_getMultiLineRange(const GeometryBuffer* geometry, Point3d* low, Point3d* high) {
    return corners<multiLineRange>(geometry, low, high);
}

uint32_t vexaWKB_getMultiPolygonRange(const GeometryBuffer* geometry, Point3d* low, Point3d* high) {
    return corners<multiPolygonRange>(geometry, low, high);
}

uint32_t vexaWKB_getRange(const GeometryBuffer* geometry, Point3d* low, Point3d* high) {
    if (!geometry) return kFailure;

    switch (geometry->type) {
        case VEXA_POINT: return vexaWKB_getPointRange(geometry, low, high);
        case VEXA_LINESTRING: return vexaWKB_getLineRange(geometry, low, high);
        case VEXA_POLYGON: return vexaWKB_getPolygonRange(geometry, low, high);
        case VEXA_MULTIPOINT: return vexaWKB_getMultiPointRange(geometry, low, high);
        case VEXA_MULTILINESTRING: return vexaWKB_getMultiLineRange(geometry, low, high);
        case VEXA_MULTIPOLYGON: return vexaWKB_getMultiPolygonRange(geometry, low, high);
        default: return kFailure;
    }
}
