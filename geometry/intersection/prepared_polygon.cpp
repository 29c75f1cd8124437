#include "geometry/intersection/prepared_polygon.h"

#include "geometry/intersection/segment_distance.h"
#include "geometry/walkers.h"
#include "transform/vector.h"

#include <cmath>
#include <utility>

namespace vexa {

std::pmr::vector<Point3d> verticesOfRing(const Path* ring, std::pmr::memory_resource* memory) {
    std::pmr::vector<Point3d> vertices{memory};
    if (!ring) return vertices;

    std::size_t count = 0;
    for (const PointRun& run : runsOf(*ring)) count += run.pointCount;
    vertices.reserve(count);
    for (const PointRun& run : runsOf(*ring)) {
        const std::span<const Point3d> points = verticesOf(run);
        vertices.insert(vertices.end(), points.begin(), points.end());
    }
    return vertices;
}

const Path* outerRing(const PathList& polygon) {
    return polygon.pathCount == 0 ? nullptr : after<Path>(polygon);
}

// ---- One ring -----------------------------------------------------------------------------------

PreparedRing::PreparedRing(const Path* ring, double tolerance, std::pmr::memory_resource* memory)
    : PreparedRing(verticesOfRing(ring, memory), tolerance, memory) {}

// A ring that spans no plane is classified as it stands, in the world's x and y.
PreparedRing::PreparedRing(std::pmr::vector<Point3d> vertices, double tolerance,
                           std::pmr::memory_resource* memory)
    : tolerance_(tolerance),
      memory_(memory),
      local_(std::move(vertices)),
      plane_(PolygonNormal(local_)),
      classifier_(local_, tolerance, memory) {
    const auto frame = FitRingFrame(local_);
    if (!frame) return;

    toLocal_ = frame->toLocal;
    applyTransformToPoints(toLocal_, local_.data(), local_.data(),
                           static_cast<std::int32_t>(local_.size()));
}

double PreparedRing::heightOf(const Point3d& point) const {
    return dot(point - plane_.origin, plane_.normal);
}

Point3d PreparedRing::toLocal(const Point3d& point) const {
    Point3d local = point;
    applyTransformToPoint(toLocal_, &local, &point);
    return local;
}

bool PreparedRing::isInsideOrOnLocally(const Point3d& point) {
    return isInsideOrOn(classifier_.classify(point));
}

bool PreparedRing::PointInRing(const Point3d& point) {
    if (std::fabs(dot(plane_.normal, point - plane_.origin)) > tolerance_) return false;
    return isInsideOrOnLocally(toLocal(point));
}

bool PreparedRing::SegmentHitsRing(const Point3d& start, const Point3d& end) {
    const Point3d direction = end - start;
    const double height = heightOf(start);
    if (const auto parameter = GuardedDivide(-height, dot(direction, plane_.normal))) {
        return isInsideOrOnLocally(toLocal(start + direction * *parameter));
    }
    if (std::fabs(height) > tolerance_ || std::fabs(heightOf(end)) > tolerance_) return false;

    const Point3d localStart = toLocal(start);
    const Point3d localEnd = toLocal(end);
    if (isInsideOrOnLocally(localStart) || isInsideOrOnLocally(localEnd)) return true;

    if (!edges_) edges_.emplace(local_, memory_);
    return edges_->areMetBy(localStart, localEnd);
}

// ---- A polygon ----------------------------------------------------------------------------------

PreparedPolygon::PreparedPolygon(const PathList& polygon, double tolerance,
                                 std::pmr::memory_resource* memory)
    : polygon_(polygon),
      tolerance_(tolerance),
      memory_(memory),
      outer_(outerRing(polygon), tolerance, memory),
      holes_(memory) {}

template <class Question>
bool PreparedPolygon::isInOuterRingAlone(const Question& question) {
    if (!question(outer_)) return false;
    if (polygon_.pathCount < 2) return true;

    const std::size_t holeCount = polygon_.pathCount - 1;
    if (!nextHole_) {
        nextHole_ = skipPath(*after<Path>(polygon_));
        holes_.reserve(holeCount);
    }
    for (std::size_t i = 0; i < holeCount; ++i) {
        if (i == holes_.size()) {
            holes_.emplace_back(nextHole_, tolerance_, memory_);
            nextHole_ = skipPath(*nextHole_);
        }
        if (question(holes_[i])) return false;
    }
    return true;
}

bool PreparedPolygon::PointInPolygon(const Point3d& point) {
    return isInOuterRingAlone([&](PreparedRing& ring) { return ring.PointInRing(point); });
}

bool PreparedPolygon::SegmentHitsPolygon(const Point3d& start, const Point3d& end) {
    return isInOuterRingAlone([&](PreparedRing& ring) { return ring.SegmentHitsRing(start, end); });
}

}  // namespace vexa
