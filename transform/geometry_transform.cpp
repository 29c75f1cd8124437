#include "geometry/layout.h"
#include "geometry/run_walk.h"
#include "geometry/walkers.h"
#include "transform/run_transform.h"
#include "vexakit/transform.h"

#include <cstdlib>
#include <memory>
#include <span>

using namespace vexa;

namespace {

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

/// A walk over the runs of one polygon that its own counts do not bound. It stays before the end of
/// the list, whatever the words say that it takes for counts. A word is read when the walk gets there:
/// what has been transformed before may have changed it.
class RingWalk {
public:
    RingWalk() = default;
    RingWalk(const PathList& polygon, const void* end)
        : position_(reinterpret_cast<const std::byte*>(&polygon + 1)),
          left_(bytesBetween(position_, end)) {}

    bool next(std::span<const Point3d>& vertices) {
        while (runsLeft_ == 0) {
            if (!nextRing()) return false;
        }
        --runsLeft_;
        return nextRun(vertices);
    }

private:
    /// The word at the position; 0 past the end.
    std::uint32_t wordHere() const {
        return left_ < sizeof(std::uint32_t) ? 0
                                             : *reinterpret_cast<const std::uint32_t*>(position_);
    }

    // The bound is the word that the next ring starts with, not the polygon's count of rings.
    bool nextRing() {
        const std::uint32_t runCount = wordHere();
        if (ringsBegun_ >= runCount || !advance(sizeof(Path))) return end();
        ++ringsBegun_;
        runsLeft_ = runCount;
        return true;
    }

    bool nextRun(std::span<const Point3d>& vertices) {
        if (left_ < sizeof(PointRun)) return end();

        const auto& run = *reinterpret_cast<const PointRun*>(position_);
        vertices = verticesOf(run);
        return advance(sizeof(PointRun) + vertices.size_bytes()) || end();
    }

    bool advance(std::size_t bytes) {
        if (bytes > left_) return false;
        position_ += bytes;
        left_ -= bytes;
        return true;
    }

    bool end() {
        left_ = 0;
        runsLeft_ = 0;
        return false;
    }

    const std::byte* position_ = nullptr;
    std::size_t left_ = 0;
    std::uint32_t ringsBegun_ = 0;
    std::uint32_t runsLeft_ = 0;
};

/// The runs of all polygons of a list, whose places are settled beforehand: a walk may take
/// coordinates for counts, and what it then changes must not lead the next one astray.
class PolygonWalk {
public:
    /// @param starts  where each polygon starts and where the list ends
    explicit PolygonWalk(std::span<const PathList* const> starts) : starts_(starts) {}

    bool next(std::span<const Point3d>& vertices) {
        while (!rings_.next(vertices)) {
            if (starts_.size() <= 1) return false;
            rings_ = RingWalk{*starts_.front(), starts_.back()};
            starts_ = starts_.subspan(1);
        }
        return true;
    }

private:
    std::span<const PathList* const> starts_;
    RingWalk rings_;
};

template <class Walk>
void transformInPlace(const Transform& transform, const Walk& walk) {
    transformRuns(transform, MovesInPlace<Walk>(walk));
}

}  // namespace

uint32_t vexaWKB_transformPoint(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    return transform_point(transform, after<Point3d>(*geometry));
}

uint32_t vexaWKB_transformLine(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    transformInPlace(*transform, RunWalk{pathOf(*geometry)});
    return kSuccess;
}

uint32_t vexaWKB_transformPolygon(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    transformInPlace(*transform, RunWalk{pathListOf(*geometry)});
    return kSuccess;
}

extern "C" [[gnu::alias("vexaWKB_transformPolygon")]] uint32_t vexaWKB_transformMultiLine(
    const Transform* transform, GeometryBuffer* geometry);

uint32_t vexaWKB_transformMultiPoint(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    transformInPlace(*transform, RunWalk{pointsOf(pointArrayOf(*geometry))});
    return kSuccess;
}

uint32_t vexaWKB_transformMultiPolygon(const Transform* transform, GeometryBuffer* geometry) {
    if (!transform || !geometry) return kFailure;

    const PolygonList& list = polygonListOf(*geometry);
    const std::size_t count = list.polygonCount;
    const PolygonArray starts = polygonStarts(list);
    if (!starts) return kFailure;

    transformInPlace(*transform, PolygonWalk{{starts.get(), count + 1}});
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
