#include "bench/peers.h"

#include <memory>

#ifdef VEXAKIT_BENCH_CGAL
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/intersections.h>
#endif

namespace vexa::bench {

#ifdef VEXAKIT_BENCH_CGAL

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;

Kernel::Point_3 vertex(const Shape& shape, std::size_t index) {
    const Point3d& point = shape.parts.front()[index];
    return {point.x, point.y, point.z};
}

template <class Object>
Object built(const Shape& shape);

template <>
Kernel::Point_3 built(const Shape& shape) {
    return vertex(shape, 0);
}

template <>
Kernel::Segment_3 built(const Shape& shape) {
    return {vertex(shape, 0), vertex(shape, 1)};
}

template <>
Kernel::Triangle_3 built(const Shape& shape) {
    return {vertex(shape, 0), vertex(shape, 1), vertex(shape, 2)};
}

template <class First, class Second>
std::vector<Peer> peerFor(const Questions& questions) {
    const auto pairs = std::make_shared<std::vector<std::pair<First, Second>>>();
    for (const auto& [first, second] : questions.pairs) {
        pairs->emplace_back(built<First>(questions.shapes[first]),
                            built<Second>(questions.shapes[second]));
    }
    const auto countHits = [=] {
        std::size_t hits = 0;
        for (const auto& [first, second] : *pairs) {
            hits += CGAL::do_intersect(first, second) ? 1 : 0;
        }
        return hits;
    };
    return {{"CGAL", countHits}};
}

}  // namespace

std::vector<Peer> cgalPeers(const Questions& questions) {
    const auto& [first, second] = questions.pairs.front();
    const std::uint32_t firstType = questions.shapes[first].type;
    const std::uint32_t secondType = questions.shapes[second].type;
    if (secondType == VEXA_LINESTRING) {
        return peerFor<Kernel::Segment_3, Kernel::Segment_3>(questions);
    }
    if (firstType == VEXA_POINT) return peerFor<Kernel::Point_3, Kernel::Triangle_3>(questions);
    if (firstType == VEXA_LINESTRING) {
        return peerFor<Kernel::Segment_3, Kernel::Triangle_3>(questions);
    }
    return peerFor<Kernel::Triangle_3, Kernel::Triangle_3>(questions);
}

#else

std::vector<Peer> cgalPeers(const Questions& /*questions*/) {
    return {};
}

#endif

}  // namespace vexa::bench
