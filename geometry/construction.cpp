#include "geometry/block.h"
#include "geometry/layout.h"
#include "geometry/size.h"
#include "geometry/walkers.h"
#include "vexakit/geometry.h"

#include <cstring>
#include <span>

using namespace vexa;

namespace {

using Points = std::span<const Point3d>;

// Bytes that the headers of one part take, from the list's start to its vertices.
constexpr std::uint64_t kRunHeaders = sizeof(PointRun);
constexpr std::uint64_t kPathHeaders = sizeof(Path) + kRunHeaders;
constexpr std::uint64_t kPolygonHeaders = sizeof(PathList) + kPathHeaders;

// What the allocations hold beyond the geometry itself.
constexpr std::uint64_t kMultiPointReserve = 24;
constexpr std::uint64_t kLineRunReserve = 8;

/// Writes a body front to back, every list with one element.
class BodyWriter {
public:
    explicit BodyWriter(void* position) : position_(static_cast<std::byte*>(position)) {}

    BodyWriter& words(std::uint32_t first, std::uint32_t second) {
        const std::uint32_t pair[] = {first, second};
        return bytes(pair, sizeof pair);
    }
    BodyWriter& points(Points points) { return bytes(points.data(), points.size_bytes()); }

    BodyWriter& run(Points points) {
        return words(0, static_cast<std::uint32_t>(points.size())).BodyWriter::points(points);
    }
    BodyWriter& path(Points points) { return words(1, 0).run(points); }
    BodyWriter& pathList(Points points) { return words(1, 0).path(points); }
    BodyWriter& polygonList(Points points) { return words(1, 0).pathList(points); }
    BodyWriter& pointArray(Points points) {
        return words(static_cast<std::uint32_t>(points.size()), 0).BodyWriter::points(points);
    }

private:
    BodyWriter& bytes(const void* source, std::size_t count) {
        std::memcpy(position_, source, count);
        position_ += count;
        return *this;
    }

    std::byte* position_;
};

using WriteBody = BodyWriter& (BodyWriter::*)(Points);

/// What a constructor makes: a header, and a body of `headers` bytes before the vertices.
struct Shape {
    VexaGeometryType type{};
    std::uint64_t headers = 0;
    WriteBody write = nullptr;
    std::uint64_t reserve = 0;
    bool sized = true;
};

constexpr Shape kPoint{VEXA_POINT, 0, &BodyWriter::points};
constexpr Shape kLine{VEXA_LINESTRING, kPathHeaders, &BodyWriter::path};
constexpr Shape kPolygon{VEXA_POLYGON, kPolygonHeaders, &BodyWriter::pathList};
constexpr Shape kMultiPoint{VEXA_MULTIPOINT, sizeof(PointArray), &BodyWriter::pointArray,
                            kMultiPointReserve};
constexpr Shape kMultiLine{VEXA_MULTILINESTRING, kPolygonHeaders, &BodyWriter::pathList};
// The size of a multipolygon is left to be computed; the first append fills it in.
constexpr Shape kMultiPolygon{VEXA_MULTIPOLYGON, sizeof(PolygonList) + kPolygonHeaders,
                              &BodyWriter::polygonList, 0, false};

std::uint32_t create(const Shape& shape, const Point3d* points, std::uint32_t count,
                     GeometryBuffer** result) {
    if (!points || count == 0 || !result) return kFailure;

    const std::uint64_t size =
        sizeof(GeometryBuffer) + shape.headers + count * std::uint64_t{sizeof(Point3d)};
    Block geometry = makeBlock(size + shape.reserve);
    if (!geometry) return kFailure;

    *geometry = {1, 1, static_cast<std::uint32_t>(shape.type),
                 shape.sized ? static_cast<std::uint32_t>(size) : 0};
    (BodyWriter{geometry.get() + 1}.*shape.write)({points, count});
    *result = geometry.release();
    return kSuccess;
}

/// What an append writes behind the last element of a list, whose count is the body's first word.
struct Growth {
    std::size_t (*currentSize)(const GeometryBuffer&) = nullptr;
    std::uint64_t headers = 0;
    WriteBody write = nullptr;
    std::uint64_t reserve = 0;
};

constexpr Growth kRunGrowth{lineSize, kRunHeaders, &BodyWriter::run, kLineRunReserve};
constexpr Growth kPathGrowth{pathListSize, kPathHeaders, &BodyWriter::path};
constexpr Growth kPolygonGrowth{multiPolygonSize, kPolygonHeaders, &BodyWriter::pathList};

std::uint32_t append(const Growth& growth, const Point3d* points, std::uint32_t count,
                     GeometryBuffer** geometry) {
    if (!geometry || !*geometry || !points || count == 0) return kFailure;

    // From the contents: the size word may be stale.
    const std::size_t used = growth.currentSize(**geometry);
    const std::uint64_t added = growth.headers + count * std::uint64_t{sizeof(Point3d)};
    if (!growBlock(*geometry, used + added + growth.reserve)) return kFailure;

    auto* const body = reinterpret_cast<std::byte*>(*geometry);
    (BodyWriter{body + used}.*growth.write)({points, count});
    ++*after<std::uint32_t>(**geometry);
    return kSuccess;
}

bool hasSize(std::uint32_t type) {
    return type >= VEXA_POINT && type <= VEXA_RESERVED;
}

}  // namespace

uint32_t vexaWKB_createPoint(const Point3d* point, GeometryBuffer** result) {
    return create(kPoint, point, 1, result);
}

uint32_t vexaWKB_createLine(const Point3d* points, uint32_t count, GeometryBuffer** result) {
    return create(kLine, points, count, result);
}

uint32_t vexaWKB_createPolygon(const Point3d* points, uint32_t count, GeometryBuffer** result) {
    return create(kPolygon, points, count, result);
}

uint32_t vexaWKB_createMultiPoint(const Point3d* points, uint32_t count, GeometryBuffer** result) {
    return create(kMultiPoint, points, count, result);
}

uint32_t vexaWKB_createMultiLine(const Point3d* points, uint32_t count, GeometryBuffer** result) {
    return create(kMultiLine, points, count, result);
}

uint32_t vexaWKB_createMultiPolygon(const Point3d* points, uint32_t count,
                                    GeometryBuffer** result) {
    return create(kMultiPolygon, points, count, result);
}

uint32_t vexaWKB_addLineToLine(const Point3d* points, uint32_t count, GeometryBuffer** geometry) {
    return append(kRunGrowth, points, count, geometry);
}

uint32_t vexaWKB_addRingToPolygon(const Point3d* points, uint32_t count,
                                  GeometryBuffer** geometry) {
    return append(kPathGrowth, points, count, geometry);
}

uint32_t vexaWKB_addLineToMultiLine(const Point3d* points, uint32_t count,
                                    GeometryBuffer** geometry) {
    return append(kPathGrowth, points, count, geometry);
}

// The only append that brings the size word up to date, by the type word. A type that has no size
// is refused before the buffer changes, so that the caller's handle stays good.
uint32_t vexaWKB_addPolyToMultiPoly(const Point3d* points, uint32_t count,
                                    GeometryBuffer** geometry) {
    if (!geometry || !*geometry || !hasSize((*geometry)->type)) return kFailure;

    const std::uint32_t status = append(kPolygonGrowth, points, count, geometry);
    if (status != kSuccess) return status;

    return computedSize(**geometry, (*geometry)->size);
}

uint32_t vexaWKB_copy(const GeometryBuffer* source, GeometryBuffer** result) {
    if (!source || !result) return kFailure;

    std::uint32_t size = 0;
    const std::uint32_t status = knownOrComputedSize(*source, size);
    if (status != kSuccess) return status;
    if (size == 0) return kFailure;  // type 8 has no body, and so no length to copy

    Block copy = makeBlock(size);
    if (!copy) return kFailure;

    std::memcpy(copy.get(), source, size);
    *result = copy.release();
    return kSuccess;
}

uint32_t vexaWKB_destroyGeom(GeometryBuffer** geometry) {
    if (!geometry || !*geometry) return kFailure;

    std::free(*geometry);
    *geometry = nullptr;
    return kSuccess;
}

extern "C" [[gnu::alias("vexaWKB_destroyGeom")]] uint32_t vexaWKB_destroyGeomCollection(
    GeometryBuffer** geometry);
