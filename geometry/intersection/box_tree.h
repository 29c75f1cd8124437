#pragma once

#include "vexakit/types.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory_resource>
#include <span>
#include <vector>

namespace vexa {

/// Beyond this size products of coordinates are no longer finite, and boxes may rule nothing out.
constexpr double kLargestPlain = 1e150;
/// Below this size products of distances may be 0, and what is apart seems to be in one place.
constexpr double kLostDistance = 1e-140;

/// How far two boxes are apart along the axis on which they are farthest apart; 0 or less where they
/// overlap.
inline double gapBetween(const Range3d& a, const Range3d& b) {
    return std::max({a.low.x - b.high.x, b.low.x - a.high.x,  //
                     a.low.y - b.high.y, b.low.y - a.high.y,  //
                     a.low.z - b.high.z, b.low.z - a.high.z});
}

inline Range3d unionOf(const Range3d& a, const Range3d& b) {
    return {
        {std::min(a.low.x, b.low.x), std::min(a.low.y, b.low.y), std::min(a.low.z, b.low.z)},
        {std::max(a.high.x, b.high.x), std::max(a.high.y, b.high.y), std::max(a.high.z, b.high.z)}};
}

inline Range3d boxOf(const Point3d& a, const Point3d& b) {
    return unionOf({a, a}, {b, b});
}

/// Boxes over elements in their own order, boxes over those, and so on to one: elements that follow
/// each other along a line are near each other, so no sorting is needed. The elements' boxes have to
/// be finite.
class BoxTree {
public:
    template <class BoxOfElement>
    BoxTree(std::size_t count, BoxOfElement boxOfElement, std::pmr::memory_resource* memory)
        : count_(count), boxes_(memory) {
        std::size_t total = 0;
        std::size_t size = count;
        do {
            size = (size + kFanOut - 1) / kFanOut;
            starts_[levels_++] = total;
            total += size;
        } while (size > 1);
        boxes_.reserve(total);
        addLevel(count, boxOfElement);
        for (std::size_t level = 1; level < levels_; ++level) {
            const std::size_t below = starts_[level - 1];
            addLevel(starts_[level] - below,
                     [&](std::size_t i) -> const Range3d& { return boxes_[below + i]; });
        }
    }

    const Range3d& box() const { return boxes_.back(); }

    /// A box of the tree: of elements on level 0, of boxes above.
    struct Node {
        std::size_t level;
        std::size_t index;
    };
    Node root() const { return {levels_ - 1, 0}; }
    const Range3d& boxAt(const Node& node) const {
        return boxes_[starts_[node.level] + node.index];
    }

    /// The elements under a node of level 0, or the nodes under one above.
    struct Children {
        std::size_t first;
        std::size_t last;
    };
    Children childrenOf(const Node& node) const {
        const std::size_t below =
            node.level == 0 ? count_ : starts_[node.level] - starts_[node.level - 1];
        const std::size_t first = node.index * kFanOut;
        return {first, std::min(first + kFanOut, below)};
    }

private:
    static constexpr std::size_t kFanOut = 8;
    static constexpr std::size_t kMostLevels = 22;  // enough for 2^64 elements

    template <class BoxOfElement>
    void addLevel(std::size_t count, BoxOfElement boxOfElement) {
        for (std::size_t first = 0; first < count; first += kFanOut) {
            Range3d box = boxOfElement(first);
            const std::size_t last = std::min(first + kFanOut, count);
            for (std::size_t i = first + 1; i < last; ++i) box = unionOf(box, boxOfElement(i));
            boxes_.push_back(box);
        }
    }

    std::size_t count_;
    std::size_t levels_ = 0;
    std::array<std::size_t, kMostLevels> starts_{};
    std::pmr::vector<Range3d> boxes_;
};

/// Whether the test holds for some element; those under a box of which `mayHold` knows better are not
/// asked.
template <class MayHold, class Test>
// NOLINTNEXTLINE(misc-no-recursion): as deep as the tree, which has at most 22 levels
bool anyUnder(const BoxTree& tree, const BoxTree::Node& node, const MayHold& mayHold,
              const Test& test) {
    if (!mayHold(tree.boxAt(node))) return false;

    const auto [first, last] = tree.childrenOf(node);
    for (std::size_t i = first; i < last; ++i) {
        const bool holds =
            node.level == 0 ? test(i) : anyUnder(tree, {node.level - 1, i}, mayHold, test);
        if (holds) return true;
    }
    return false;
}

/// Whether the test holds for some pair of elements of two trees whose boxes lie within the margin of
/// each other.
template <class Test>
// NOLINTNEXTLINE(misc-no-recursion): as deep as the two trees
bool anyPairNear(const BoxTree& a, const BoxTree::Node& nodeA, const BoxTree& b,
                 const BoxTree::Node& nodeB, double margin, const Test& test) {
    if (gapBetween(a.boxAt(nodeA), b.boxAt(nodeB)) > margin) return false;

    if (nodeA.level == 0 && nodeB.level == 0) {
        const auto [firstA, lastA] = a.childrenOf(nodeA);
        const auto [firstB, lastB] = b.childrenOf(nodeB);
        for (std::size_t i = firstA; i < lastA; ++i) {
            for (std::size_t j = firstB; j < lastB; ++j) {
                if (test(i, j)) return true;
            }
        }
        return false;
    }
    const bool splitA = nodeA.level >= nodeB.level;
    const auto [first, last] = splitA ? a.childrenOf(nodeA) : b.childrenOf(nodeB);
    for (std::size_t i = first; i < last; ++i) {
        const BoxTree::Node nextA = splitA ? BoxTree::Node{nodeA.level - 1, i} : nodeA;
        const BoxTree::Node nextB = splitA ? nodeB : BoxTree::Node{nodeB.level - 1, i};
        if (anyPairNear(a, nextA, b, nextB, margin, test)) return true;
    }
    return false;
}

}  // namespace vexa
