#include "geometry/intersection/level_point.h"

#include "geometry/intersection/level_shapes.h"

#include <algorithm>
#include <cmath>

namespace vexa {

namespace {

using Coordinate = double Point3d::*;

bool isPlain(const Point3d& point) {
    return std::fabs(point.x) <= kLargestPlain && std::fabs(point.y) <= kLargestPlain &&
           std::fabs(point.z) <= kLargestPlain;
}

bool isAtLevel(Points ring, Coordinate coordinate, double value, double margin) {
    return std::any_of(ring.begin(), ring.end(), [=](const Point3d& vertex) {
        return std::fabs(vertex.*coordinate - value) <= margin;
    });
}

/// Counts the edges to the left of a point.
class LeftEdges {
public:
    LeftEdges(const Point3d& point, double margin) : point_(point), margin_(margin) {}

    /// False for an edge that the point is too near to.
    bool meet(const Point3d& start, const Point3d& end) {
        const double startAbove = start.y - point_.y;
        const double endAbove = end.y - point_.y;
        if (std::min(startAbove, endAbove) > margin_) return true;
        if (std::max(startAbove, endAbove) < -margin_) return true;

        const bool isCrossed = (startAbove < 0) != (endAbove < 0);
        if (std::min(start.x, end.x) - point_.x > margin_) return true;
        if (std::max(start.x, end.x) - point_.x < -margin_) {
            isOdd_ ^= isCrossed;
            return true;
        }
        // How far the point lies to the left of the edge, times its length.
        const double dx = end.x - start.x;
        const double dy = end.y - start.y;
        const double side = dx * (point_.y - start.y) - dy * (point_.x - start.x);
        if (std::fabs(side) <= 2 * margin_ * (std::fabs(dx) + std::fabs(dy))) return false;
        isOdd_ ^= isCrossed && (side < 0) == (dy > 0);
        return true;
    }

    bool isOdd() const { return isOdd_; }

private:
    Point3d point_;
    double margin_;
    bool isOdd_ = false;
};

}  // namespace

std::optional<LevelPoint> LevelPoint::of(const Point3d& point, double tolerance) {
    if (!(tolerance >= 0) || !(tolerance <= kLargestPlain) || !isPlain(point)) return std::nullopt;
    return LevelPoint{point, tolerance};
}

// Inside alone is not enough: where vertices are level with the point both ways, within the tolerance,
// it may be that no ray decides.
SureSide LevelPoint::sideOf(Points ring) const {
    if (ring.size() < 3) return SureSide::Unsure;
    const std::optional<Range3d> box = plainRange(ring);
    if (!box || !isLevelRing(*box) || box->low.z != point_.z) return SureSide::Unsure;

    const double largest = std::max(largestCoordinate(*box), largestCoordinate({point_, point_}));
    const double margin = marginOfLevel(tolerance_, largest);
    if (gapBetween(*box, {point_, point_}) > margin) return SureSide::Outside;

    LeftEdges edges{point_, margin};
    const Point3d* previous = &ring.back();
    for (const Point3d& vertex : ring) {
        if (!edges.meet(*previous, vertex)) return SureSide::Unsure;
        previous = &vertex;
    }
    if (!edges.isOdd()) return SureSide::Outside;

    const bool isDecided = !isAtLevel(ring, &Point3d::y, point_.y, margin) ||
                           !isAtLevel(ring, &Point3d::x, point_.x, margin);
    return isDecided ? SureSide::Inside : SureSide::Unsure;
}

std::optional<bool> LevelPoint::isHeldBy(const PathList& polygon) const {
    bool isOuter = true;
    for (const Path& ring : pathsOf(polygon)) {
        if (ring.runCount != 1) return std::nullopt;
        const SureSide side = sideOf(verticesOf(*after<PointRun>(ring)));
        if (side == SureSide::Unsure) return std::nullopt;
        // Outside the outer ring, or inside a hole.
        if ((side == SureSide::Inside) != isOuter) return false;
        isOuter = false;
    }
    return isOuter ? std::nullopt : std::optional{true};
}

}  // namespace vexa
