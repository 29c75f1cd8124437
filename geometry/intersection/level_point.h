#pragma once

#include "geometry/intersection/pair_tests.h"

#include <optional>

namespace vexa {

/// What one pass over a ring tells of a point, where both lie in one level plane: there the world's x
/// and y say what the ring's frame would, but for what is near an edge.
enum class SureSide { Outside, Inside, Unsure };

/// A point before rings that are level, as flat maps have them.
class LevelPoint {
public:
    /// @return nothing where the tolerance or the point is none to be sure of
    static std::optional<LevelPoint> of(const Point3d& point, double tolerance);

    /// @param ring  vertices, closed from the last to the first
    SureSide sideOf(Points ring) const;

    /// Whether the polygon holds the point; nothing where that needs a closer look.
    std::optional<bool> isHeldBy(const PathList& polygon) const;

private:
    LevelPoint(const Point3d& point, double tolerance) : point_(point), tolerance_(tolerance) {}

    Point3d point_;
    double tolerance_;
};

}  // namespace vexa
