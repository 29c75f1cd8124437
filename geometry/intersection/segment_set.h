#pragma once

#include "geometry/intersection/pair_tests.h"

#include <memory_resource>
#include <vector>

namespace vexa {

/// Segments by their starts: the end is the vertex that follows.
using Segments = std::pmr::vector<const Point3d*>;

/// All segments of all paths, in order.
Segments segmentsOf(const Paths& paths, std::pmr::memory_resource* memory);

/// Whether the first run of the first path has a segment: the first step of a walk over the paths.
bool firstRunHasSegment(const Paths& paths);

/// Whether some point is within the tolerance of some segment.
bool anyPointNearSegment(const Points& points, const Segments& segments, double tolerance,
                         std::pmr::memory_resource* memory);

}  // namespace vexa
