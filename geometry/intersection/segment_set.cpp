#include "geometry/intersection/segment_set.h"

#include "geometry/intersection/box_tree.h"
#include "geometry/intersection/segment_distance.h"
#include "geometry/intersection/spatial_order.h"

#include <cmath>
#include <limits>
#include <new>
#include <optional>

namespace vexa {

namespace {

/// Up to so many pairs are asked one by one.
constexpr std::size_t kFewPairs = 512;

double largestOf(const Range3d& box) {
    const double low = std::max({std::fabs(box.low.x), std::fabs(box.low.y), std::fabs(box.low.z)});
    const double high =
        std::max({std::fabs(box.high.x), std::fabs(box.high.y), std::fabs(box.high.z)});
    return std::max(low, high);
}

/// A minimum drops a NaN, and a box that hides one must not rule anything out.
bool isPlain(const Point3d& point) {
    return std::fabs(point.x) <= kLargestPlain && std::fabs(point.y) <= kLargestPlain &&
           std::fabs(point.z) <= kLargestPlain;
}
bool isPlain(const Points& points) {
    return std::all_of(points.begin(), points.end(),
                       [](const Point3d& point) { return isPlain(point); });
}
bool isPlain(const Segments& segments) {
    return std::all_of(segments.begin(), segments.end(),
                       [](const Point3d* start) { return isPlain(start[0]) && isPlain(start[1]); });
}

Range3d boxOfElement(const Point3d& point) {
    return {point, point};
}
Range3d boxOfElement(const Point3d* segment) {
    return boxOf(segment[0], segment[1]);
}

/// A set with boxes over it, in an order of its own where the given one is no good for them.
template <class Element>
struct IndexedSet {
    template <class Set>
    IndexedSet(const Set& set, std::pmr::memory_resource* memory)
        : elements(set.begin(), set.end(), memory) {
        Range3d whole = box(elements.front());
        for (const Element& element : elements) whole = unionOf(whole, box(element));
        const SpatialOrder order{whole};
        if (!order.isKeptBy(elements, box)) order.sort(elements, box);
        tree.emplace(
            elements.size(), [&](std::size_t i) { return box(elements[i]); }, memory);
    }

    static Range3d box(const Element& element) { return boxOfElement(element); }

    std::pmr::vector<Element> elements;
    std::optional<BoxTree> tree;
};

/// The points that a test compares lie on the segments up to rounding, so that what is farther apart
/// than the tolerance and some roundings cannot hit. Squares of the smallest distances are lost.
double marginFor(double tolerance, double largest) {
    constexpr double kRoundings = 64 * std::numeric_limits<double>::epsilon();
    return tolerance * (1 + kRoundings) + largest * kRoundings + kLostDistance;
}

template <class First, class Second, class Test>
bool anyPair(const First& first, const Second& second, const Test& test) {
    for (const auto& a : first) {
        for (const auto& b : second) {
            if (test(a, b)) return true;
        }
    }
    return false;
}

template <class First, class Second, class Test>
bool anyPairByBoxes(const First& first, const Second& second, double tolerance,
                    std::pmr::memory_resource* memory, const Test& test) {
    const IndexedSet<typename First::value_type> a{first, memory};
    const IndexedSet<typename Second::value_type> b{second, memory};
    const double largest = std::max(largestOf(a.tree->box()), largestOf(b.tree->box()));
    const double margin = marginFor(tolerance, largest);
    const auto testNear = [&](std::size_t i, std::size_t j) {
        const double gap = gapBetween(a.box(a.elements[i]), b.box(b.elements[j]));
        return gap <= margin && test(a.elements[i], b.elements[j]);
    };
    return anyPairNear(*a.tree, a.tree->root(), *b.tree, b.tree->root(), margin, testNear);
}

/// Some pair of two sets, with boxes over both where that can pay: what is far apart is not asked.
template <class First, class Second, class Test>
bool anyPairWithin(const First& first, const Second& second, double tolerance,
                   std::pmr::memory_resource* memory, const Test& test) {
    // No distance is within a tolerance that is negative or not a number.
    if (!(tolerance >= 0)) return false;

    const bool areFew = first.size() * second.size() <= kFewPairs;
    if (areFew || !std::isfinite(tolerance) || !isPlain(first) || !isPlain(second)) {
        return anyPair(first, second, test);
    }
    try {
        return anyPairByBoxes(first, second, tolerance, memory, test);
    } catch (const std::bad_alloc&) {
        return anyPair(first, second, test);  // slower, but it needs no memory
    }
}

}  // namespace

Segments segmentsOf(const Paths& paths, std::pmr::memory_resource* memory) {
    std::size_t count = 0;
    const auto forEachRun = [&](auto visit) {
        for (const Path& path : paths) {
            for (const PointRun& run : runsOf(path)) {
                if (run.pointCount > 1) visit(verticesOf(run));
            }
        }
    };
    forEachRun([&](Points vertices) { count += vertices.size() - 1; });

    Segments segments{memory};
    segments.reserve(count);
    forEachRun([&](Points vertices) {
        for (const Point3d& start : vertices.first(vertices.size() - 1)) {
            segments.push_back(&start);
        }
    });
    return segments;
}

bool firstRunHasSegment(const Paths& paths) {
    if (paths.size() == 0) return false;
    const Path& first = *paths.begin();
    return first.runCount != 0 && after<PointRun>(first)->pointCount > 1;
}

bool anyPointNearSegment(const Points& points, const Segments& segments, double tolerance,
                         std::pmr::memory_resource* memory) {
    return anyPairWithin(points, segments, tolerance, memory,
                         [=](const Point3d& point, const Point3d* segment) {
                             return PointNearSegment(point, segment[0], segment[1], tolerance);
                         });
}

}  // namespace vexa
