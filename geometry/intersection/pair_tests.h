#pragma once

#include "geometry/layout.h"
#include "geometry/walkers.h"

#include <span>

namespace vexa {

/// What a test does to the caller's result.
enum class Outcome {
    Untouched,  ///< there was nothing to ask
    Apart,
    Meeting
};

/// The parts of a geometry, one for the simple types.
using Points = std::span<const Point3d>;
using Paths = CountedList<Path>;
using Polygons = CountedList<PathList>;

/// How a test is asked.
struct Asking {
    double tolerance;
    /// Whether the caller's result reads 1 already: a first step that has no segment to ask then ends
    /// the test with that 1.
    bool isResultSet;
};

/// Each answers whether some part of the first meets some part of the second, as a walk of every part
/// of the one against every part of the other would. All may throw std::bad_alloc.
///
/// Points meet points where all coordinates are equal.
Outcome anyMeet(const Points& first, const Points& second, const Asking& asking);
/// A path's runs of fewer than two points have no segments.
Outcome anyMeet(const Points& points, const Paths& paths, const Asking& asking);
Outcome anyMeet(const Points& points, const Polygons& polygons, const Asking& asking);
Outcome anyMeet(const Paths& first, const Paths& second, const Asking& asking);
Outcome anyMeet(const Paths& paths, const Polygons& polygons, const Asking& asking);
/// The outer rings alone, with a tolerance of their own.
Outcome anyMeet(const Polygons& first, const Polygons& second, const Asking& asking);

}  // namespace vexa
