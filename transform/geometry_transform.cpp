#include "geometry/layout.h"
#include "geometry/walkers.h"
#include "transform/matrix.h"
#include "vexakit/transform.h"

#include <cstdlib>
#include <memory>
#include <span>

using namespace vexa;

namespace {

// The walkers show a buffer as it is read; the vertices of the caller's own buffer may be written.
void transformPoints(const Transform& transform, std::span<const Point3d> points) {
    auto* const vertices = const_cast<Point3d*>(points.data());
    applyTransformToPoints(transform, vertices, vertices, static_cast<std::int32_t>(points.size()));
}

void transformPath(const Transform& transform, const Path& path) {
    for (const PointRun& run : runsOf(path)) transformPoints(transform, verticesOf(run));
}

struct FreeArray {
    void operator()(const PathList** polygons) const noexcept { std::free(polygons); }
};
using PolygonArray = std::unique_ptr<const PathList*, FreeArray>;

/// Where each polygon starts and, last, where the list ends; null where memory is lacking.
PolygonArray polygonStarts(const PolygonList& list) {
    const std::size_t count = list.polygonCount;
    PolygonArray starts{
        static_cast<const PathList**>(std::malloc((count + 1) * sizeof(const PathList*)))};
    if (!starts) return nullptr;

    const auto* polygon = after<PathList>(list);
    for (std::size_t i = 0; i < count; ++i) {
        starts.get()[i] = polygon;
        polygon = skipPathList(*polygon);
    }
    starts.get()[count] = polygon;
    return starts;
}

/// A walk over the rings of one polygon that its own counts do not bound. It stays before the end of
/// the list, whatever the words say that it takes for counts.
class RingWalk {
public:
    RingWalk(const Transform& transform, const PathList& polygon, const void* end)
        : transform_(transform),
          position_(reinterpret_cast<const std::byte*>(&polygon + 1)),
          left_(bytesBetween(position_, end)) {}

    // The bound is the word that follows a ring, not the polygon's count of rings.
    void run() {
        std::uint32_t runCount = wordHere();
        if (runCount == 0) return;

        std::uint32_t ringsDone = 0;
        do {
            if (!transformRing(runCount)) return;
            runCount = wordHere();
        } while (++ringsDone < runCount);
    }

private:
    /// The word at the position; 0 past the end.
    std::uint32_t wordHere() const {
        return left_ < sizeof(std::uint32_t) ? 0
                                             : *reinterpret_cast<const std::uint32_t*>(position_);
    }

    bool transformRing(std::uint32_t runCount) {
        if (!advance(sizeof(Path))) return false;
        for (; runCount != 0; --runCount) {
            if (left_ < sizeof(PointRun)) return false;

            const auto& run = *reinterpret_cast<const PointRun*>(position_);
            const std::span<const Point3d> vertices = verticesOf(run);
            if (!advance(sizeof(PointRun) + vertices.size_bytes())) return false;
            transformPoints(transform_, vertices);
        }
        return true;
    }

    bool advance(std::size_t bytes) {
        if (bytes > left_) return false;
        position_ += bytes;
        left_ -= bytes;
        return true;
    }

    const Transform& transform_;
    const std::byte* position_;
    std::size_t left_;
};

}  // namespace

uint32_t vexaWKB_transformPoint(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    return transform_point(transform, after<Point3d>(*geometry));
}

uint32_t vexaWKB_transformLine(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    const Transform copy = *transform;
    transformPath(copy, pathOf(*geometry));
    return kSuccess;
}

uint32_t vexaWKB_transformPolygon(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    const Transform copy = *transform;
    for (const Path& path : pathsOf(pathListOf(*geometry))) transformPath(copy, path);
    return kSuccess;
}

extern "C" [[gnu::alias("vexaWKB_transformPolygon")]] uint32_t vexaWKB_transformMultiLine(
    const Transform* transform, GeometryBuffer* geometry);

uint32_t vexaWKB_transformMultiPoint(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    transformPoints(*transform, pointsOf(pointArrayOf(*geometry)));
    return kSuccess;
}

// The polygons' places are settled first: a walk may take coordinates for counts, and what it then
// changes must not lead the next one astray.
uint32_t vexaWKB_transformMultiPolygon(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    const Transform copy = *transform;
    const PolygonList& list = polygonListOf(*geometry);
    const std::uint32_t count = list.polygonCount;
    const PolygonArray starts = polygonStarts(list);
    if (!starts) return kFailure;

    const void* const end = starts.get()[count];
    for (std::uint32_t i = 0; i < count; ++i) RingWalk{copy, *starts.get()[i], end}.run();
    return kSuccess;
}

uint32_t vexaWKB_transformGeometry(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    switch (geometry->type) {
        case VEXA_POINT: return vexaWKB_transformPoint(transform, geometry);
        case VEXA_LINESTRING: return vexaWKB_transformLine(transform, geometry);
        case VEXA_POLYGON:
        case VEXA_MULTILINESTRING: return vexaWKB_transformPolygon(transform, geometry);
        case VEXA_MULTIPOINT: return vexaWKB_transformMultiPoint(transform, geometry);
        case VEXA_MULTIPOLYGON: return vexaWKB_transformMultiPolygon(transform, geometry);
        default: return kFailure;
    }
}
