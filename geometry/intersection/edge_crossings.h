#pragma once

#include "geometry/intersection/box_tree.h"
#include "vexakit/types.h"

#include <memory_resource>
#include <optional>
#include <span>

namespace vexa {

/// Vertices of a polyline, in x and y alone.
struct Polyline {
    std::span<const Point3d> vertices;
    /// Whether the last vertex is joined to the first where the two differ.
    bool isClosed;
};

/// Whether some edge of one polyline crosses some edge of the other. Parallel edges never do.
bool EdgesCross(const Polyline& e, const Polyline& r);

/// The same for two open polylines in one plane, whose z is 0 up to rounding, without a look at each pair.
/// Without memory for that each pair is looked at.
bool openPolylinesCross(std::span<const Point3d> e, std::span<const Point3d> r,
                        std::pmr::memory_resource* memory);

/// The edges of a ring in a local frame, with boxes over them where their coordinates are finite, so
/// that what lies elsewhere is not looked at.
class RingEdges {
public:
    RingEdges(std::span<const Point3d> vertices, std::pmr::memory_resource* memory);

    /// Whether an edge crosses some edge of the closed ring, as `EdgesCross` tells.
    bool areCrossedBy(const Point3d& start, const Point3d& end) const;

    /// Whether a segment in the ring's plane crosses the ring: whether its line crosses or meets the
    /// closed ring at 1 to 32 places, one of them on the segment. A vertex on the line is one place
    /// however often it is repeated; more than 32 places count as none.
    bool areMetBy(const Point3d& start, const Point3d& end) const;

private:
    /// The vertex before, from the last one to the first.
    const Point3d& previousOf(std::size_t i) const {
        return i == 0 ? vertices_.back() : vertices_[i - 1];
    }
    bool canRuleOut(const Range3d& box) const;
    bool hasPlaceNear(const Point3d& start, const Point3d& end) const;

    std::span<const Point3d> vertices_;
    bool isOnePlace_ = false;
    std::optional<BoxTree> boxes_;
    double largest_ = 0;
};

}  // namespace vexa
