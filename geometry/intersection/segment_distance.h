#pragma once

#include "vexakit/types.h"

#include <optional>

namespace vexa {

/// numerator / denominator, but nothing where the denominator is 1e-12 of the numerator or less.
std::optional<double> GuardedDivide(double numerator, double denominator);

/// Whether two boxes share a point, their faces included. False with a NaN.
bool RangesOverlap(const Range3d& a, const Range3d& b);

/// Whether the point lies within the tolerance of the segment. A segment of no length is its start.
bool PointNearSegment(const Point3d& point, const Point3d& start, const Point3d& end,
                      double tolerance);

/// Whether the closest points of the two segments' lines, each moved to the nearer end where it lies
/// beyond its segment, are within the tolerance of each other. Never so for parallel segments, even
/// where they overlap, and for segments of no length.
bool SegmentsNear(const Point3d& startA, const Point3d& endA, const Point3d& startB,
                  const Point3d& endB, double tolerance);

}  // namespace vexa
