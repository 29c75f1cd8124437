#pragma once

#include "geometry/intersection/box_tree.h"
#include "geometry/intersection/pair_tests.h"
#include "geometry/intersection/stretches.h"

#include <cstddef>
#include <memory_resource>
#include <optional>
#include <vector>

/// Shapes that lie in one level plane, as flat maps have them. There the boxes of the world's x and y
/// are a proof: what a test looks at lies in them up to rounding.
namespace vexa {

/// How far apart boxes of level shapes have to be for a test with that tolerance to find nothing, where
/// no coordinate is larger.
double marginOfLevel(double tolerance, double largest);

/// Whether a ring of plain coordinates, by its box, is level and has a frame that is the world's with axes
/// turned round: the lengths that axes are divided by are products of four extents, which must not overflow
/// or vanish.
bool isLevelRing(const Range3d& box);

/// The box of a ring; nothing where the ring is not level, or has coordinates that boxes are no proof of.
std::optional<Range3d> levelBox(const Path* ring);

/// Points before many polygons.
class PointTree {
public:
    /// @return nothing for points that are not level, and where the tolerance is none
    static std::optional<PointTree> of(const Points& points, double tolerance,
                                       std::pmr::memory_resource* memory);

    /// Whether the test holds for some point that is near the polygon; nothing where all points would
    /// have to be asked.
    template <class Test>
    std::optional<bool> anyNear(const Path* outerRing, const Test& test) const {
        const std::optional<Range3d> ring = levelBox(outerRing);
        if (!ring || ring->low.z != box_.low.z) return std::nullopt;

        const double largest = std::max(largestCoordinate(box_), largestCoordinate(*ring));
        const NearFilter filter{marginOfLevel(tolerance_, largest)};
        const auto isNear = [&](const Range3d& box) { return filter.mayBeNear(box, *ring); };
        return anyUnder(*tree_, tree_->root(), isNear, [&](std::size_t i) {
            return isNear({points_[i], points_[i]}) && test(points_[i]);
        });
    }

private:
    PointTree(const Points& points, const Range3d& box, double tolerance,
              std::pmr::memory_resource* memory);

    Range3d box_;
    double tolerance_;
    std::pmr::vector<Point3d> points_;
    std::optional<BoxTree> tree_;
};

/// The outer rings of polygons before many other rings.
class OuterRingTree {
public:
    OuterRingTree(const Polygons& polygons, std::pmr::memory_resource* memory);

    /// Whether the test holds for some polygon, by its number, whose outer ring may meet the other one.
    template <class Test>
    bool anyNear(const Path* outerRing, const Test& test) const {
        const std::optional<Range3d> ring = levelBox(outerRing);
        if (!ring) return anyOf(test);

        for (const std::size_t number : others_) {
            if (test(number)) return true;
        }
        if (rings_.empty()) return false;
        const double largest = std::max(largestCoordinate(tree_->box()), largestCoordinate(*ring));
        const NearFilter filter{marginOfLevel(0, largest)};
        const auto isNear = [&](const Range3d& box) { return filter.mayBeNear(box, *ring); };
        return anyUnder(*tree_, tree_->root(), isNear, [&](std::size_t i) {
            return isNear(rings_[i].box) && test(rings_[i].number);
        });
    }

private:
    struct Ring {
        std::size_t number;
        Range3d box;
    };

    template <class Test>
    bool anyOf(const Test& test) const {
        for (std::size_t number = 0; number < rings_.size() + others_.size(); ++number) {
            if (test(number)) return true;
        }
        return false;
    }

    std::pmr::vector<Ring> rings_;
    /// Those that are not level.
    std::pmr::vector<std::size_t> others_;
    std::optional<BoxTree> tree_;
};

}  // namespace vexa
