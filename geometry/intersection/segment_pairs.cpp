#include "geometry/intersection/segment_pairs.h"

#include "geometry/intersection/segment_distance.h"
#include "geometry/intersection/stretches.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <optional>

namespace vexa {

namespace {

constexpr std::size_t kFewSegments = 16;

/// The points that the test compares lie on the segments up to rounding, so that what is farther apart
/// than the tolerance and some roundings cannot hit. Squares of the smallest distances are lost.
double marginFor(double tolerance, double largest) {
    constexpr double kRoundings = 64 * std::numeric_limits<double>::epsilon();
    return tolerance * (1 + kRoundings) + largest * kRoundings + kLostDistance;
}

template <class Test>
bool anyPair(const Paths& first, const Paths& second, const Test& test) {
    RunWalk runs{first};
    for (Points run; runs.next(run);) {
        for (std::size_t i = 1; i < run.size(); ++i) {
            RunWalk others{second};
            for (Points other; others.next(other);) {
                for (std::size_t j = 1; j < other.size(); ++j) {
                    if (test(&run[i - 1], &other[j - 1])) return true;
                }
            }
        }
    }
    return false;
}

/// The segments of few that come near a box, by their starts, with their boxes.
class FewSegments {  // NOLINT(*-member-init): of the segments those that are counted are set
public:
    FewSegments(const Paths& paths, const Range3d& other, const NearFilter& filter) {
        RunWalk runs{paths};
        for (Points run; runs.next(run);) {
            for (std::size_t i = 1; i < run.size(); ++i) {
                const Range3d box = boxOfSegment(&run[i - 1]);
                if (filter.mayBeNear(box, other)) segments_[count_++] = {&run[i - 1], 1, box};
            }
        }
    }

    const Stretch* begin() const { return segments_.data(); }
    const Stretch* end() const { return segments_.data() + count_; }

private:
    std::array<Stretch, kFewSegments> segments_;
    std::size_t count_ = 0;
};

/// As the filter tells, without a branch.
bool areBoxesNear(const Range3d& a, const Range3d& b, double margin) {
    const bool x = (a.low.x - b.high.x <= margin) & (b.low.x - a.high.x <= margin);
    const bool y = (a.low.y - b.high.y <= margin) & (b.low.y - a.high.y <= margin);
    const bool z = (a.low.z - b.high.z <= margin) & (b.low.z - a.high.z <= margin);
    return x & y & z;
}

/// Whether one segment lies to one side of the other's line, as the filter tells of polylines.
bool isAside(const Point3d* line, const Point3d* other, double margin) {
    const double dx = line[1].x - line[0].x;
    const double dy = line[1].y - line[0].y;
    const double start = dx * (other[0].y - line[0].y) - dy * (other[0].x - line[0].x);
    const double end = dx * (other[1].y - line[0].y) - dy * (other[1].x - line[0].x);
    const double reach = 2 * margin * (std::fabs(dx) + std::fabs(dy));
    return ((start > reach) & (end > reach)) | ((start < -reach) & (end < -reach));
}

template <class Test>
bool anyPairOfFew(const Paths& first, const Range3d& firstBox, const Paths& second,
                  const Range3d& secondBox, const NearFilter& filter, const Test& test) {
    const FewSegments segments{first, secondBox, filter};
    const FewSegments others{second, firstBox, filter};
    for (const Stretch& a : segments) {
        for (const Stretch& b : others) {
            if (areBoxesNear(a.box, b.box, filter.margin()) &&
                !isAside(a.first, b.first, filter.margin()) &&
                !isAside(b.first, a.first, filter.margin()) && test(a.first, b.first)) {
                return true;
            }
        }
    }
    return false;
}

template <class Test>
bool anyPairByBoxes(const Paths& first, const Range3d& firstBox, const Paths& second,
                    const Range3d& secondBox, const NearFilter& filter, const Test& test,
                    std::pmr::memory_resource* memory) {
    const StretchTree a{RunWalk{first}, secondBox, filter, memory};
    if (a.isEmpty()) return false;
    const StretchTree b{RunWalk{second}, firstBox, filter, memory};
    if (b.isEmpty()) return false;

    return anyPairNear(
        a.tree(), a.tree().root(), b.tree(), b.tree().root(), filter.margin(),
        [&](std::size_t i, std::size_t j) { return anyPairOfStretches(a[i], b[j], filter, test); });
}

std::optional<Range3d> plainRangeOf(const Paths& paths) {
    const bool isOneRun = paths.size() == 1 && paths.first()->runCount == 1;
    return isOneRun ? plainRange(verticesOf(*after<PointRun>(*paths.first())))
                    : plainRange(RunWalk{paths});
}

bool areFew(const Paths& paths) {
    return countSegments(RunWalk{paths}, kFewSegments) <= kFewSegments;
}

}  // namespace

bool hasSegment(const Paths& paths) {
    return countSegments(RunWalk{paths}, 0) != 0;
}

bool anySegmentsNear(const Paths& first, const Paths& second, double tolerance,
                     std::pmr::memory_resource* memory) {
    // No distance is within a tolerance that is negative or not a number.
    if (!(tolerance >= 0)) return false;

    const auto areNear = [=](const Point3d* a, const Point3d* b) {
        return SegmentsNear(a[0], a[1], b[0], b[1], tolerance);
    };
    const std::optional<Range3d> firstBox = plainRangeOf(first);
    const std::optional<Range3d> secondBox = plainRangeOf(second);
    if (!firstBox || !secondBox || !std::isfinite(tolerance)) {
        return anyPair(first, second, areNear);
    }
    const double largest = std::max(largestCoordinate(*firstBox), largestCoordinate(*secondBox));
    const NearFilter filter{marginFor(tolerance, largest)};
    const auto areNearBehindFilter = [&](const Point3d* a, const Point3d* b) {
        return filter.mayBeNear(a, b) && areNear(a, b);
    };
    if (areFew(first) && areFew(second)) {
        return anyPairOfFew(first, *firstBox, second, *secondBox, filter, areNear);
    }
    try {
        return anyPairByBoxes(first, *firstBox, second, *secondBox, filter, areNear, memory);
    } catch (const std::bad_alloc&) {
        return anyPair(first, second, areNearBehindFilter);  // slower, but it needs no memory
    }
}

}  // namespace vexa
