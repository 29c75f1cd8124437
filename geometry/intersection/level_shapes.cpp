#include "geometry/intersection/level_shapes.h"

#include "geometry/intersection/prepared_polygon.h"
#include "geometry/intersection/spatial_order.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vexa {

namespace {

template <class Elements, class BoxOfElement>
BoxTree orderedTree(Elements& elements, const BoxOfElement& boxOf,
                    std::pmr::memory_resource* memory) {
    Range3d whole = boxOf(elements.front());
    for (const auto& element : elements) whole = unionOf(whole, boxOf(element));
    const SpatialOrder order{whole};
    if (!order.isKeptBy(elements, boxOf)) order.sort(elements, boxOf);
    return BoxTree{elements.size(), [&](std::size_t i) { return boxOf(elements[i]); }, memory};
}

Range3d boxOfPoint(const Point3d& point) {
    return {point, point};
}

}  // namespace

// Rounding moves what is compared by a few units in the last place, in the world's coordinates and in
// the ring's frame.
double marginOfLevel(double tolerance, double largest) {
    constexpr double kRoundings = 4096 * std::numeric_limits<double>::epsilon();
    return tolerance * (1 + kRoundings) + largest * kRoundings + kLostDistance;
}

bool isLevelRing(const Range3d& box) {
    constexpr double kLargest = 1e60;
    constexpr double kLeastExtent = 1e-60;
    return box.low.z == box.high.z && largestCoordinate(box) <= kLargest &&
           std::max(box.high.x - box.low.x, box.high.y - box.low.y) >= kLeastExtent;
}

std::optional<Range3d> levelBox(const Path* ring) {
    if (!ring) return std::nullopt;
    const std::optional<Range3d> box = plainRange(RunWalk{*ring});
    return box && isLevelRing(*box) ? box : std::nullopt;
}

std::optional<PointTree> PointTree::of(const Points& points, double tolerance,
                                       std::pmr::memory_resource* memory) {
    if (!(tolerance >= 0) || !std::isfinite(tolerance)) return std::nullopt;
    const std::optional<Range3d> box = plainRange(RunWalk{points});
    if (!box || box->low.z != box->high.z) return std::nullopt;
    return PointTree{points, *box, tolerance, memory};
}

PointTree::PointTree(const Points& points, const Range3d& box, double tolerance,
                     std::pmr::memory_resource* memory)
    : box_(box), tolerance_(tolerance), points_(points.begin(), points.end(), memory) {
    tree_.emplace(orderedTree(points_, boxOfPoint, memory));
}

OuterRingTree::OuterRingTree(const Polygons& polygons, std::pmr::memory_resource* memory)
    : rings_(memory), others_(memory) {
    rings_.reserve(polygons.size());
    std::size_t number = 0;
    for (const PathList& polygon : polygons) {
        if (const std::optional<Range3d> box = levelBox(outerRing(polygon))) {
            rings_.push_back({number, *box});
        } else {
            others_.push_back(number);
        }
        ++number;
    }
    if (rings_.empty()) return;
    tree_.emplace(orderedTree(
        rings_, [](const Ring& ring) { return ring.box; }, memory));
}

}  // namespace vexa
