#include "geometry/layout.h"
#include "geometry/walkers.h"
#include "vexakit/geometry.h"

#include <cstring>
#include <span>

using namespace vexa;

namespace {

std::uint32_t vertexCount(const Path& path) {
    std::uint32_t count = 0;
    for (const PointRun& run : runsOf(path)) count += run.pointCount;  // wraps, as sizes do
    return count;
}

std::uint32_t vertexCount(const PathList& paths) {
    std::uint32_t count = 0;
    for (const Path& path : pathsOf(paths)) count += vertexCount(path);
    return count;
}

/// The free slots of the caller's array and the number of those taken.
struct Room {
    Point3d* points = nullptr;
    std::uint32_t capacity = 0;
    std::uint32_t copied = 0;
};

// A run is copied whole or not at all.
std::uint32_t copyPoints(std::span<const Point3d> vertices, Room& room) {
    if (room.capacity - room.copied < vertices.size()) return kFailure;

    if (!vertices.empty()) {
        std::memcpy(room.points + room.copied, vertices.data(), vertices.size_bytes());
    }
    room.copied += static_cast<std::uint32_t>(vertices.size());
    return kSuccess;
}

std::uint32_t copyPoints(const Path& path, Room& room) {
    for (const PointRun& run : runsOf(path)) {
        if (copyPoints(verticesOf(run), room) != kSuccess) return kFailure;
    }
    return kSuccess;
}

// A path that does not fit counts for nothing, although its first runs may have been written.
std::uint32_t copyPoints(const PathList& paths, Room& room) {
    for (const Path& path : pathsOf(paths)) {
        const std::uint32_t before = room.copied;
        if (copyPoints(path, room) != kSuccess) {
            room.copied = before;
            return kFailure;
        }
    }
    return kSuccess;
}

template <class Vertices>
std::uint32_t copyPoints(const Vertices& vertices, std::uint32_t capacity, Point3d* points,
                         std::uint32_t* copied) {
    Room room{points, capacity};
    const std::uint32_t status = copyPoints(vertices, room);
    *copied = room.copied;
    return status;
}

bool isOfType(const GeometryBuffer* geometry, VexaGeometryType type) {
    return geometry != nullptr && geometry->type == static_cast<std::uint32_t>(type);
}

/// The index-th path or polygon of a buffer of the given type, or null.
template <class Element>
const Element* elementOf(const GeometryBuffer* geometry, VexaGeometryType type,
                         std::uint32_t index) {
    if (!isOfType(geometry, type)) return nullptr;

    // A path list and a polygon list begin alike: a count, a padding word, the elements.
    const PathList& list = pathListOf(*geometry);
    if (index >= list.pathCount) return nullptr;

    return &elementAt(after<Element>(list), index);
}

const Path* lineAt(const GeometryBuffer* multiLine, std::uint32_t index) {
    return elementOf<Path>(multiLine, VEXA_MULTILINESTRING, index);
}

const PathList* polygonAt(const GeometryBuffer* multiPolygon, std::uint32_t index) {
    return elementOf<PathList>(multiPolygon, VEXA_MULTIPOLYGON, index);
}

}  // namespace

uint32_t vexaWKB_getType(const GeometryBuffer* geometry, uint32_t* type) {
    if (!geometry || !type) return kFailure;

    *type = geometry->type;
    return kSuccess;
}

uint32_t vexaWKB_pointGetPoint(const GeometryBuffer* geometry, Point3d* point) {
    if (!isOfType(geometry, VEXA_POINT) || !point) return kFailure;

    *point = pointOf(*geometry);
    return kSuccess;
}

uint32_t vexaWKB_lineGetPointCount(const GeometryBuffer* geometry, uint32_t* count) {
    if (!isOfType(geometry, VEXA_LINESTRING) || !count) return kFailure;

    *count = vertexCount(pathOf(*geometry));
    return kSuccess;
}

uint32_t vexaWKB_lineGetPoints(const GeometryBuffer* geometry, uint32_t capacity, Point3d* points,
                               uint32_t* copied) {
    if (!isOfType(geometry, VEXA_LINESTRING) || !points || !copied) return kFailure;

    return copyPoints(pathOf(*geometry), capacity, points, copied);
}

uint32_t vexaWKB_polygonGetPointCount(const GeometryBuffer* geometry, uint32_t* count) {
    if (!isOfType(geometry, VEXA_POLYGON) || !count) return kFailure;

    *count = vertexCount(pathListOf(*geometry));
    return kSuccess;
}

uint32_t vexaWKB_polygonGetPoints(const GeometryBuffer* geometry, uint32_t capacity,
                                  Point3d* points, uint32_t* copied) {
    if (!isOfType(geometry, VEXA_POLYGON) || !points || !copied) return kFailure;

    return copyPoints(pathListOf(*geometry), capacity, points, copied);
}

uint32_t vexaWKB_mpointGetPointCount(const GeometryBuffer* geometry, uint32_t* count) {
    if (!isOfType(geometry, VEXA_MULTIPOINT) || !count) return kFailure;

    *count = pointArrayOf(*geometry).pointCount;
    return kSuccess;
}

uint32_t vexaWKB_mpointGetPoint(const GeometryBuffer* geometry, uint32_t index, Point3d* point) {
    if (!isOfType(geometry, VEXA_MULTIPOINT) || !point) return kFailure;

    const std::span<const Point3d> points = pointsOf(pointArrayOf(*geometry));
    if (index >= points.size()) return kFailure;

    *point = points[index];
    return kSuccess;
}

uint32_t vexaWKB_mpointGetPoints(const GeometryBuffer* geometry, uint32_t capacity, Point3d* points,
                                 uint32_t* copied) {
    if (!isOfType(geometry, VEXA_MULTIPOINT) || !points || !copied) return kFailure;

    const std::span<const Point3d> source = pointsOf(pointArrayOf(*geometry));
    if (capacity < source.size()) return kFailure;

    return copyPoints(source, capacity, points, copied);
}

uint32_t vexaWKB_mlineGetLineCount(const GeometryBuffer* geometry, uint32_t* count) {
    if (!isOfType(geometry, VEXA_MULTILINESTRING) || !count) return kFailure;

    *count = pathListOf(*geometry).pathCount;
    return kSuccess;
}

uint32_t vexaWKB_mlineGetPointCount(const GeometryBuffer* geometry, uint32_t index,
                                    uint32_t* count) {
    if (!count) return kFailure;

    const Path* const line = lineAt(geometry, index);
    if (!line) return kFailure;

    *count = vertexCount(*line);
    return kSuccess;
}

uint32_t vexaWKB_mlineGetPoints(const GeometryBuffer* geometry, uint32_t index, uint32_t capacity,
                                Point3d* points, uint32_t* copied) {
    if (!points || !copied) return kFailure;

    const Path* const line = lineAt(geometry, index);
    if (!line) return kFailure;

    return copyPoints(*line, capacity, points, copied);
}

uint32_t vexaWKB_mpolygonGetPolyCount(const GeometryBuffer* geometry, uint32_t* count) {
    if (!isOfType(geometry, VEXA_MULTIPOLYGON) || !count) return kFailure;

    *count = polygonListOf(*geometry).polygonCount;
    return kSuccess;
}

uint32_t vexaWKB_mpolygonGetPointCount(const GeometryBuffer* geometry, uint32_t index,
                                       uint32_t* count) {
    if (!count) return kFailure;

    const PathList* const polygon = polygonAt(geometry, index);
    if (!polygon) return kFailure;

    *count = vertexCount(*polygon);
    return kSuccess;
}

uint32_t vexaWKB_mpolygonGetPoints(const GeometryBuffer* geometry, uint32_t index,
                                   uint32_t capacity, Point3d* points, uint32_t* copied) {
    if (!points || !copied) return kFailure;

    const PathList* const polygon = polygonAt(geometry, index);
    if (!polygon) return kFailure;

    return copyPoints(*polygon, capacity, points, copied);
}
