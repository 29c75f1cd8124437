#pragma once

#include "geometry/intersection/prepared_polygon.h"
#include "geometry/intersection/ring_frame.h"
#include "geometry/layout.h"

#include <memory_resource>
#include <optional>
#include <vector>

namespace vexa {

/// A ring with its own frame, ready to be tested against others.
struct FramedRing {
    FramedRing(const Path* ring, std::pmr::memory_resource* memory);

    RingVertices world;
    std::optional<RingFrame> frame;
    /// In the ring's own frame, where it has one.
    std::pmr::vector<Point3d> local;
    Range3d localBox{};
};

/// Whether two planar rings share a point, to 1e-12 of their size. A ring that spans no plane meets
/// nothing. Throws std::bad_alloc.
bool PolygonsIntersect(const FramedRing& a, const FramedRing& b, std::pmr::memory_resource* memory);

}  // namespace vexa
