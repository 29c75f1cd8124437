#pragma once

#include "geometry/intersection/pair_tests.h"
#include "geometry/intersection/sure_answers.h"

#include <memory_resource>

namespace vexa {

/// What the world's x and y tell of two outer rings that lie in one level plane, as flat maps have them,
/// where rounding cannot matter: they are apart by more than that, or they surely cross, or a vertex of one
/// lies surely inside the other. Neither has to be closed. Without memory nothing is sure.
Sure levelRings(const Path* first, const Path* second, std::pmr::memory_resource* memory);

}  // namespace vexa
