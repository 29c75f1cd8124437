#pragma once

#include "geometry/intersection/edge_crossings.h"
#include "geometry/intersection/ring_classification.h"
#include "geometry/intersection/ring_frame.h"
#include "geometry/layout.h"
#include "geometry/walkers.h"

#include <memory_resource>
#include <optional>
#include <span>
#include <vector>

namespace vexa {

/// The vertices of all runs of a ring, one after the other; none for no ring.
std::pmr::vector<Point3d> verticesOfRing(const Path* ring, std::pmr::memory_resource* memory);

/// The vertices of a ring as they lie in the buffer, or in a copy where they lie in several runs.
class RingVertices {
public:
    RingVertices(const Path* ring, std::pmr::memory_resource* memory) : copy_(memory) {
        if (ring && ring->runCount == 1) {
            vertices_ = verticesOf(*after<PointRun>(*ring));
        } else {
            copy_ = verticesOfRing(ring, memory);
            vertices_ = copy_;
        }
    }
    RingVertices(const RingVertices&) = delete;
    RingVertices& operator=(const RingVertices&) = delete;
    ~RingVertices() = default;

    std::span<const Point3d> get() const { return vertices_; }

private:
    std::pmr::vector<Point3d> copy_;
    std::span<const Point3d> vertices_;
};

/// The first ring of a polygon, or null.
const Path* outerRing(const PathList& polygon);

/// A ring that is asked by points and segments in turn: its plane, its frame and its vertices in that
/// frame are settled once.
class PreparedRing {
public:
    /// Throws std::bad_alloc, as do the questions.
    PreparedRing(const Path* ring, double tolerance, std::pmr::memory_resource* memory);

    /// Whether the point is within the tolerance of the ring's plane, and inside or on the ring there.
    bool PointInRing(const Point3d& point);

    /// Whether the segment meets the ring. One that is not parallel to the plane stands for its line,
    /// however far from the plane it ends; one in the plane has to have an end inside or on the ring, or
    /// to cross it.
    bool SegmentHitsRing(const Point3d& start, const Point3d& end);

private:
    PreparedRing(std::pmr::vector<Point3d> vertices, double tolerance,
                 std::pmr::memory_resource* memory);

    double heightOf(const Point3d& point) const;
    Point3d toLocal(const Point3d& point) const;
    bool isInsideOrOnLocally(const Point3d& point);

    double tolerance_;
    std::pmr::memory_resource* memory_;
    std::pmr::vector<Point3d> local_;
    Plane plane_;
    Transform toLocal_ = kIdentity;
    RingClassifier classifier_;
    std::optional<RingEdges> edges_;
};

/// A polygon: an outer ring, and holes that are prepared when a question gets to them.
class PreparedPolygon {
public:
    PreparedPolygon(const PathList& polygon, double tolerance, std::pmr::memory_resource* memory);

    /// In the outer ring and in no hole; a hole's boundary belongs to the hole.
    bool PointInPolygon(const Point3d& point);

    /// The outer ring is hit and no hole is.
    bool SegmentHitsPolygon(const Point3d& start, const Point3d& end);

private:
    template <class Question>
    bool isInOuterRingAlone(const Question& question);

    const PathList& polygon_;
    double tolerance_;
    std::pmr::memory_resource* memory_;
    PreparedRing outer_;
    std::pmr::vector<PreparedRing> holes_;
    const Path* nextHole_ = nullptr;
};

}  // namespace vexa
