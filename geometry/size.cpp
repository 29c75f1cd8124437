#include "geometry/size.h"

#include "geometry/walkers.h"
#include "vexakit/geometry.h"

namespace vexa {

std::size_t lineSize(const GeometryBuffer& line) {
    return bytesBetween(&line, skipPath(pathOf(line)));
}

std::size_t pathListSize(const GeometryBuffer& polygonOrMultiLine) {
    return bytesBetween(&polygonOrMultiLine, skipPathList(pathListOf(polygonOrMultiLine)));
}

std::size_t multiPointSize(const GeometryBuffer& multiPoint) {
    const PointArray& points = pointArrayOf(multiPoint);
    return sizeof(GeometryBuffer) + sizeof(PointArray) +
           std::size_t{points.pointCount} * sizeof(Point3d);
}

std::size_t multiPolygonSize(const GeometryBuffer& multiPolygon) {
    const PolygonList& polygons = polygonListOf(multiPolygon);
    const auto* polygon = after<PathList>(polygons);
    for (std::uint32_t left = polygons.polygonCount; left != 0; --left) {
        polygon = skipPathList(*polygon);
    }
    return bytesBetween(&multiPolygon, polygon);
}

namespace {

// A member that adds nothing stays where the next round looks, and that round finds what this one
// found: the loop has its result.
// NOLINTNEXTLINE(misc-no-recursion): as deep as the collections are nested
std::uint32_t collectionSize(const GeometryBuffer& collection) {
    const MemberList& members = memberListOf(collection);
    const auto* cursor = after<std::byte>(members);
    std::uint32_t total = 0;
    std::uint32_t size = 0;  // a member of type 8 takes what the member before it left here
    for (std::uint32_t left = members.memberCount; left != 0; --left) {
        const auto& member = *reinterpret_cast<const GeometryBuffer*>(cursor);
        if (knownOrComputedSize(member, size) != kSuccess) break;
        size = roundedTo8(size);
        if (size == 0) break;
        total += size;
        cursor += size;
    }
    return static_cast<std::uint32_t>(sizeof(GeometryBuffer) + sizeof(MemberList)) + total;
}

template <std::size_t (*Size)(const GeometryBuffer&)>
std::uint32_t sizeOfLayout(const GeometryBuffer* geometry, std::uint32_t* size) {
    if (!geometry || !size) return kFailure;

    *size = static_cast<std::uint32_t>(Size(*geometry));
    return kSuccess;
}

}  // namespace

// NOLINTNEXTLINE(misc-no-recursion): as deep as the collections are nested
std::uint32_t computedSize(const GeometryBuffer& geometry, std::uint32_t& size) {
    const auto tell = [&size](std::size_t bytes) {
        size = static_cast<std::uint32_t>(bytes);
        return kSuccess;
    };
    switch (geometry.type) {
        case VEXA_POINT: return tell(kPointSize);
        case VEXA_LINESTRING: return tell(lineSize(geometry));
        case VEXA_POLYGON:
        case VEXA_MULTILINESTRING: return tell(pathListSize(geometry));
        case VEXA_MULTIPOINT: return tell(multiPointSize(geometry));
        case VEXA_MULTIPOLYGON: return tell(multiPolygonSize(geometry));
        case VEXA_GEOMETRYCOLLECTION: return tell(collectionSize(geometry));
        case VEXA_RESERVED: return kSuccess;
        default: return kFailure;
    }
}

// NOLINTNEXTLINE(misc-no-recursion): as deep as the collections are nested
std::uint32_t knownOrComputedSize(const GeometryBuffer& geometry, std::uint32_t& size) {
    if (geometry.size == 0) return computedSize(geometry, size);

    size = geometry.size;
    return kSuccess;
}

}  // namespace vexa

using namespace vexa;

uint32_t vexaWKB_getPointSize(const GeometryBuffer* geometry, uint32_t* size) {
    if (!geometry || !size) return kFailure;

    *size = kPointSize;
    return kSuccess;
}

uint32_t vexaWKB_getLineSize(const GeometryBuffer* geometry, uint32_t* size) {
    return sizeOfLayout<lineSize>(geometry, size);
}

uint32_t vexaWKB_getPolygonSize(const GeometryBuffer* geometry, uint32_t* size) {
    return sizeOfLayout<pathListSize>(geometry, size);
}

uint32_t vexaWKB_getMultiPointSize(const GeometryBuffer* geometry, uint32_t* size) {
    return sizeOfLayout<multiPointSize>(geometry, size);
}

uint32_t vexaWKB_getMultiLineSize(const GeometryBuffer* geometry, uint32_t* size) {
    return sizeOfLayout<pathListSize>(geometry, size);
}

uint32_t vexaWKB_getMultiPolygonSize(const GeometryBuffer* geometry, uint32_t* size) {
    return sizeOfLayout<multiPolygonSize>(geometry, size);
}

uint32_t vexaWKB_calculateSize(const GeometryBuffer* geometry, uint32_t* size) {
    if (!geometry || !size) return kFailure;

    return computedSize(*geometry, *size);
}

uint32_t vexaWKB_getSize(const GeometryBuffer* geometry, uint32_t* size) {
    if (!geometry || !size) return kFailure;

    return knownOrComputedSize(*geometry, *size);
}
