#pragma once

#include "bench/shapes.h"

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vexa::bench {

/// Pairs of shapes, by their places, to be asked whether they intersect.
struct Questions {
    std::vector<Shape> shapes;
    std::vector<std::pair<std::size_t, std::size_t>> pairs;
};

/// Another library with all shapes built in its own terms.
struct Peer {
    std::string name;
    /// How many of the pairs intersect.
    std::function<std::size_t()> countHits;
};

// Empty where the library was not there when this was built. Those of the plane leave z out.

/// Plain, and with the first of each pair prepared, which is part of the count: pairs of the same
/// first shape stand together.
std::vector<Peer> geosPeers(const Questions& questions);
std::vector<Peer> boostPeers(const Questions& questions);

/// In space: points, lines of two vertices and triangles; all pairs of the same two types.
std::vector<Peer> cgalPeers(const Questions& questions);

}  // namespace vexa::bench
