#pragma once

#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace vexa {

constexpr std::uint32_t kSuccess = VEXA_SUCCESS;
constexpr std::uint32_t kFailure = VEXA_FAILURE;

/// Body of a multipoint: the points follow.
struct PointArray {
    std::uint32_t pointCount;
    std::uint32_t padding;
};

/// Body of a multipolygon: one `PathList` a polygon follows.
struct PolygonList {
    std::uint32_t polygonCount;
    std::uint32_t padding;
};

/// Body of a geometry collection: the members, whole buffers, follow.
struct MemberList {
    std::uint32_t memberCount;
    std::uint32_t padding;
};

static_assert(sizeof(Point3d) == 24);
static_assert(sizeof(GeometryBuffer) == 16, "the body follows the header at once");
static_assert(offsetof(GeometryBuffer, headerWord0) == 0);
static_assert(offsetof(GeometryBuffer, headerWord1) == 4);
static_assert(offsetof(GeometryBuffer, type) == 8);
static_assert(offsetof(GeometryBuffer, size) == 12);
static_assert(sizeof(PointRun) == 8, "the vertices follow its two words at once");
static_assert(offsetof(PointRun, pointCount) == 4);
static_assert(sizeof(Path) == 8 && offsetof(Path, runCount) == 0);
static_assert(sizeof(PathList) == 8 && offsetof(PathList, pathCount) == 0);
static_assert(sizeof(PointArray) == 8 && offsetof(PointArray, pointCount) == 0);
static_assert(sizeof(PolygonList) == 8 && offsetof(PolygonList, polygonCount) == 0);
static_assert(sizeof(MemberList) == 8 && offsetof(MemberList, memberCount) == 0);
static_assert(alignof(Point3d) == 8, "every structure is a multiple of 8 bytes");

/// What follows a structure at once: the body of a header, the first element of a list.
template <class Element, class Structure>
const Element* after(const Structure& structure) {
    return reinterpret_cast<const Element*>(&structure + 1);
}
template <class Element, class Structure>
Element* after(Structure& structure) {
    return reinterpret_cast<Element*>(&structure + 1);
}

inline const Point3d& pointOf(const GeometryBuffer& point) {
    return *after<Point3d>(point);
}
inline const Path& pathOf(const GeometryBuffer& line) {
    return *after<Path>(line);
}
inline const PathList& pathListOf(const GeometryBuffer& geometry) {
    return *after<PathList>(geometry);
}
inline const PointArray& pointArrayOf(const GeometryBuffer& multiPoint) {
    return *after<PointArray>(multiPoint);
}
inline const PolygonList& polygonListOf(const GeometryBuffer& multiPolygon) {
    return *after<PolygonList>(multiPolygon);
}
inline const MemberList& memberListOf(const GeometryBuffer& collection) {
    return *after<MemberList>(collection);
}

inline std::span<const Point3d> verticesOf(const PointRun& run) {
    return {after<Point3d>(run), run.pointCount};
}
inline std::span<const Point3d> pointsOf(const PointArray& array) {
    return {after<Point3d>(array), array.pointCount};
}

}  // namespace vexa
