#include "geometry/intersection/level_lines.h"

#include "geometry/intersection/level_shapes.h"
#include "geometry/intersection/ring_classification.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace vexa {

namespace {

bool isSamePlace(const Point3d& a, const Point3d& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

/// The edges of a ring in stretches; the edge that closes it stands for itself.
class RingEdgeTree {
public:
    RingEdgeTree(Points ring, const Range3d& other, const NearFilter& filter,
                 std::pmr::memory_resource* memory)
        : filter_(filter),
          stretches_(RunWalk{ring}, other, filter, memory),
          closing_{ring.back(), ring.front()},
          isOpen_(!isSamePlace(ring.back(), ring.front())) {}

    /// A bit for each segment of the stretch that may be near an edge.
    std::uint64_t nearEdges(const Stretch& stretch) const {
        std::uint64_t segments = 0;
        const auto note = [&](const Point3d* segment, const Point3d* /*edge*/) {
            segments |= std::uint64_t{1} << (segment - stretch.first);
            return false;
        };
        if (!stretches_.isEmpty()) {
            const BoxTree& tree = stretches_.tree();
            const auto isNear = [&](const Range3d& box) {
                return filter_.mayBeNear(box, stretch.box);
            };
            anyUnder(tree, tree.root(), isNear, [&](std::size_t i) {
                return anyPairOfStretches(stretch, stretches_[i], filter_, note);
            });
        }
        if (isOpen_) {
            const Stretch closing = {closing_.data(), 1, boxOfSegment(closing_.data())};
            anyPairOfStretches(stretch, closing, filter_, note);
        }
        return segments;
    }

private:
    const NearFilter& filter_;
    StretchTree stretches_;
    std::array<Point3d, 2> closing_;
    bool isOpen_;
};

/// The segments of lines that are near edges of a ring or inside it.
class SegmentList {
public:
    SegmentList(Points ring, std::pmr::vector<const Point3d*>& segments,
                std::pmr::memory_resource* memory)
        : classifier_(ring, 0, memory), segments_(segments) {}

    /// Stretches come in their order: the last piece of one may go on in the next.
    void add(const Stretch& stretch, std::uint64_t nearEdges) {
        bool isGoingOn = stretch.first == pieceEnd_;
        for (std::size_t i = 0; i < stretch.segments; ++i) {
            const Point3d* const start = stretch.first + i;
            const bool isNear = (nearEdges >> i & 1) != 0;
            if (!isNear && !isGoingOn) isPieceOutside_ = isOutside(*start);
            if (isNear || !isPieceOutside_) segments_.push_back(start);
            isGoingOn = !isNear;
        }
        pieceEnd_ = isGoingOn ? stretch.first + stretch.segments : nullptr;
    }

private:
    // Of a point that is near no edge.
    bool isOutside(const Point3d& point) { return classifier_.classify(point) == Side::Outside; }

    RingClassifier classifier_;
    std::pmr::vector<const Point3d*>& segments_;
    const Point3d* pieceEnd_ = nullptr;
    bool isPieceOutside_ = false;
};

}  // namespace

std::optional<LevelLines> LevelLines::of(const Paths& lines, const Range3d& area, double tolerance,
                                         std::pmr::memory_resource* memory) {
    if (!(tolerance >= 0) || !std::isfinite(tolerance)) return std::nullopt;

    const std::optional<Range3d> box = plainRange(RunWalk{lines});
    if (!box || box->low.z != box->high.z) return std::nullopt;

    const double largest = std::max(largestCoordinate(*box), largestCoordinate(area));
    const NearFilter filter{marginOfLevel(tolerance, largest)};
    return LevelLines{lines, *box, area, filter, memory};
}

LevelLines::Before LevelLines::before(Points ring, std::pmr::vector<const Point3d*>& asked,
                                      std::pmr::memory_resource* memory) const {
    if (ring.size() < 3) return Before::Unknown;
    const std::optional<Range3d> ringBox = plainRange(ring);
    if (!ringBox || !isLevelRing(*ringBox) || ringBox->low.z != box_.low.z) return Before::Unknown;
    if (stretches_.isEmpty()) return Before::Apart;

    std::optional<RingEdgeTree> edges;
    std::optional<SegmentList> list;
    const auto isNear = [&](const Range3d& box) { return filter_.mayBeNear(box, *ringBox); };
    anyUnder(stretches_.tree(), stretches_.tree().root(), isNear, [&](std::size_t i) {
        if (!isNear(stretches_[i].box)) return false;
        if (!edges) {
            edges.emplace(ring, box_, filter_, memory);
            list.emplace(ring, asked, memory);
        }
        list->add(stretches_[i], edges->nearEdges(stretches_[i]));
        return false;
    });
    return asked.empty() ? Before::Apart : Before::Listed;
}

}  // namespace vexa
