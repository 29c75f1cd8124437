#pragma once

#include "geometry/intersection/box_tree.h"
#include "geometry/intersection/pair_tests.h"
#include "geometry/run_walk.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory_resource>
#include <optional>
#include <vector>

/// Segments in stretches that follow each other along their lines, with boxes over them, so that what is
/// far apart is not asked.
namespace vexa {

inline Range3d boxOfSegment(const Point3d* start) {
    return boxOf(start[0], start[1]);
}

/// The largest magnitude among the coordinates of a box.
double largestCoordinate(const Range3d& box);

/// The box of all points of a walk; nothing where one of them is not a number, or so large that boxes
/// must not rule anything out. The empty box has infinite corners and is not plain either.
std::optional<Range3d> plainRange(const RunWalk& walk);
std::optional<Range3d> plainRange(Points points);

/// Segments of a walk, counted up to the first number above `most`.
std::size_t countSegments(RunWalk walk, std::size_t most);

/// Rules out what is farther apart than a margin.
class NearFilter {
public:
    explicit NearFilter(double margin) : margin_(margin) {}

    double margin() const { return margin_; }

    bool mayBeNear(const Range3d& a, const Range3d& b) const { return gapBetween(a, b) <= margin_; }

    bool mayBeNear(const Point3d* a, const Point3d* b) const {
        return mayBeNear(boxOfSegment(a), boxOfSegment(b)) && !isAside(a, b) && !isAside(b, a);
    }

    /// Whether a segment is apart to one side of the line through another.
    bool isAside(const Point3d* line, const Point3d* other) const {
        const double dx = line[1].x - line[0].x;
        const double dy = line[1].y - line[0].y;
        const double start = dx * (other[0].y - line[0].y) - dy * (other[0].x - line[0].x);
        const double end = dx * (other[1].y - line[0].y) - dy * (other[1].x - line[0].x);
        const double reach = 2 * margin_ * (std::fabs(dx) + std::fabs(dy));
        return std::min(start, end) > reach || std::max(start, end) < -reach;
    }

    /// Whether two polylines are apart to the sides of the line from the one's start to its end, seen
    /// from above. A distance from that line, times its length, is a cross product; the rounding of
    /// these is one more margin.
    bool areAside(Points line, Points other) const;

private:
    double margin_;
};

/// Some segments that follow each other, by the vertex that the first of them starts with.
struct Stretch {
    static constexpr std::size_t kMostSegments = 64;

    const Point3d* first;
    std::size_t segments;
    Range3d box;

    Points points() const { return {first, segments + 1}; }
};

/// The stretches of a walk that come near a box, in an order in which neighbours are near each other,
/// with boxes over them.
class StretchTree {
public:
    /// All coordinates of the walk have to be plain.
    StretchTree(const RunWalk& walk, const Range3d& other, const NearFilter& filter,
                std::pmr::memory_resource* memory);

    bool isEmpty() const { return stretches_.empty(); }
    std::size_t size() const { return stretches_.size(); }
    /// Of the stretches, of which there are some.
    const BoxTree& tree() const { return *tree_; }
    const Stretch& operator[](std::size_t i) const { return stretches_[i]; }

private:
    void add(Points run, const Range3d& other, const NearFilter& filter);

    std::pmr::vector<Stretch> stretches_;
    std::optional<BoxTree> tree_;
};

/// Parts of a stretch that come near a box.
class Pieces {
public:
    Pieces(const Stretch& stretch, const Range3d& other, const NearFilter& filter);

    const Stretch* begin() const { return pieces_.data(); }
    const Stretch* end() const { return pieces_.data() + count_; }

private:
    static constexpr std::size_t kSegments = 8;
    std::array<Stretch, Stretch::kMostSegments / kSegments> pieces_;
    std::size_t count_ = 0;
};

/// A bit for each pair of segments of two pieces whose boxes are within the margin: eight bits for each
/// segment of the one, from its first on.
std::uint64_t nearPairsOfPieces(const Stretch& a, const Stretch& b, double margin);

/// Whether the test holds for some pair of segments, by their starts, that may be near each other.
template <class Test>
bool anyPairOfPieces(const Stretch& a, const Stretch& b, const NearFilter& filter,
                     const Test& test) {
    if (filter.areAside(a.points(), b.points()) || filter.areAside(b.points(), a.points())) {
        return false;
    }
    std::uint64_t near = nearPairsOfPieces(a, b, filter.margin());
    for (; near != 0; near &= near - 1) {
        const auto pair = static_cast<std::size_t>(std::countr_zero(near));
        const Point3d* const one = a.first + pair / 8;
        const Point3d* const other = b.first + pair % 8;
        const bool areApart = filter.isAside(one, other) || filter.isAside(other, one);
        if (!areApart && test(one, other)) return true;
    }
    return false;
}

template <class Test>
bool anyPairOfStretches(const Stretch& a, const Stretch& b, const NearFilter& filter,
                        const Test& test) {
    if (!filter.mayBeNear(a.box, b.box)) return false;

    const Pieces pieces{a, b.box, filter};
    const Pieces others{b, a.box, filter};
    for (const Stretch& piece : pieces) {
        for (const Stretch& other : others) {
            if (filter.mayBeNear(piece.box, other.box) &&
                anyPairOfPieces(piece, other, filter, test)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace vexa
