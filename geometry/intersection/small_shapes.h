#pragma once

#include "geometry/layout.h"

#include <cmath>

namespace vexa {

/// The two ends of a line that is one segment, or null.
inline const Point3d* segmentOf(const Path& line) {
    if (line.runCount != 1) return nullptr;
    const PointRun& run = *after<PointRun>(line);
    return run.pointCount == 2 ? after<Point3d>(run) : nullptr;
}

/// At least the length of a vector, and less than twice it.
inline double sumOfMagnitudes(const Point3d& vector) {
    return std::fabs(vector.x) + std::fabs(vector.y) + std::fabs(vector.z);
}

inline bool isSamePlace(const Point3d& a, const Point3d& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

/// The corners of a polygon that is one triangle, whose fourth vertex is the first again; or null.
inline const Point3d* closedTriangleOf(const PathList& polygon) {
    if (polygon.pathCount != 1) return nullptr;
    const Path& ring = *after<Path>(polygon);
    if (ring.runCount != 1) return nullptr;
    const PointRun& run = *after<PointRun>(ring);
    const auto* const corners = after<Point3d>(run);
    return run.pointCount == 4 && isSamePlace(corners[0], corners[3]) ? corners : nullptr;
}

}  // namespace vexa
