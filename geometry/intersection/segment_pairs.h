#pragma once

#include "geometry/intersection/pair_tests.h"

#include <memory_resource>

namespace vexa {

/// Whether some segment of the first is within the tolerance of some segment of the second, as asking
/// every pair would tell. Where memory is lacking every pair is asked.
bool anySegmentsNear(const Paths& first, const Paths& second, double tolerance,
                     std::pmr::memory_resource* memory);

/// Whether there is a segment at all.
bool hasSegment(const Paths& paths);

}  // namespace vexa
