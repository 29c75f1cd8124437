#pragma once

#include "geometry/run_walk.h"
#include "vexakit/types.h"

#include <optional>

namespace vexa {

/// The box of all vertices of a walk by the widest vectors of the machine: bit for bit what folding
/// them in their order gives.
/// @return false where a coordinate is not a number, since what the fold leaves then depends on the
///         order, and on machines without wide vectors; the box then holds no answer
bool rangeByVectors(const RunWalk& walk, Range3d& box);

/// The same, or nothing.
inline std::optional<Range3d> rangeByVectors(const RunWalk& walk) {
    Range3d box;
    if (!rangeByVectors(walk, box)) return std::nullopt;
    return box;
}

}  // namespace vexa
