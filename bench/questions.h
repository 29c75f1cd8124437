#pragma once

#include "bench/contest.h"
#include "bench/peers.h"

#include <cstddef>
#include <vector>

namespace vexa::bench {

/// Enters the library and the peers for the pairs, of which so many are expected to intersect.
void enterQuestions(Contest& contest, const Questions& questions, std::size_t expectedHits,
                    double reach, const std::vector<std::vector<Peer>>& peers);

/// One question about two shapes.
Questions question(ShapePair pair);

}  // namespace vexa::bench
