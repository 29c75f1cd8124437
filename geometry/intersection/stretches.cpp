#include "geometry/intersection/stretches.h"

#include "geometry/intersection/small_box.h"
#include "geometry/intersection/spatial_order.h"
#include "geometry/range_by_vectors.h"
#include "platform/vector_width.h"

#include <algorithm>
#include <cmath>

namespace vexa {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

Range3d plainBoxOf(Points points) {
    Range3d box = {points.front(), points.front()};
    for (const Point3d& point : points.subspan(1)) box = unionOf(box, {point, point});
    return box;
}

bool isPlain(const Point3d& point) {
    return std::fabs(point.x) <= kLargestPlain && std::fabs(point.y) <= kLargestPlain &&
           std::fabs(point.z) <= kLargestPlain;
}

Range3d boxOfStretch(const Stretch& stretch) {
    return stretch.box;
}

/// How far points lie to the left of a line, least and greatest, times its length.
struct Sides {
    double least;
    double greatest;
};

Sides sidesOf(Points points, const Point3d& origin, double dx, double dy) {
    Sides sides = {kInfinity, -kInfinity};
    for (const Point3d& point : points) {
        const double side = dx * (point.y - origin.y) - dy * (point.x - origin.x);
        sides.least = std::min(sides.least, side);
        sides.greatest = std::max(sides.greatest, side);
    }
    return sides;
}

}  // namespace

double largestCoordinate(const Range3d& box) {
    return std::max({std::fabs(box.low.x), std::fabs(box.low.y), std::fabs(box.low.z),
                     std::fabs(box.high.x), std::fabs(box.high.y), std::fabs(box.high.z)});
}

std::optional<Range3d> plainRange(const RunWalk& walk) {
    if (const std::optional<Range3d> box = rangeByVectors(walk)) {
        return largestCoordinate(*box) <= kLargestPlain ? box : std::nullopt;
    }
    Range3d box = {{kInfinity, kInfinity, kInfinity}, {-kInfinity, -kInfinity, -kInfinity}};
    RunWalk runs = walk;
    for (Points run; runs.next(run);) {
        if (!std::all_of(run.begin(), run.end(), isPlain)) return std::nullopt;
        if (!run.empty()) box = unionOf(box, plainBoxOf(run));
    }
    return largestCoordinate(box) <= kLargestPlain ? std::optional{box} : std::nullopt;
}

std::optional<Range3d> plainRange(Points points) {
    constexpr std::size_t kFewPoints = 16;
    if (points.empty() || points.size() > kFewPoints) return plainRange(RunWalk{points});

    const SmallBox box = SmallBox::of(points);
    return SmallBox::largestOf(box, box) <= kLargestPlain ? std::optional{box.corners()}
                                                          : std::nullopt;
}

std::size_t countSegments(RunWalk walk, std::size_t most) {
    std::size_t count = 0;
    for (Points run; count <= most && walk.next(run);) {
        if (run.size() > 1) count += run.size() - 1;
    }
    return count;
}

bool NearFilter::areAside(Points line, Points other) const {
    const Point3d& origin = line.front();
    const double dx = line.back().x - origin.x;
    const double dy = line.back().y - origin.y;
    const Sides one = sidesOf(line, origin, dx, dy);
    const Sides another = sidesOf(other, origin, dx, dy);
    const double reach = 2 * margin_ * (std::fabs(dx) + std::fabs(dy));
    return another.least - one.greatest > reach || one.least - another.greatest > reach;
}

StretchTree::StretchTree(const RunWalk& walk, const Range3d& other, const NearFilter& filter,
                         std::pmr::memory_resource* memory)
    : stretches_(memory) {
    std::size_t count = 0;
    RunWalk runs = walk;
    for (Points run; runs.next(run);) {
        if (run.size() > 1) count += (run.size() - 2) / Stretch::kMostSegments + 1;
    }
    stretches_.reserve(count);
    runs = walk;
    for (Points run; runs.next(run);) add(run, other, filter);
    if (stretches_.empty()) return;

    Range3d whole = stretches_.front().box;
    for (const Stretch& stretch : stretches_) whole = unionOf(whole, stretch.box);
    const SpatialOrder order{whole};
    if (!order.isKeptBy(stretches_, boxOfStretch)) order.sort(stretches_, boxOfStretch);
    tree_.emplace(
        stretches_.size(), [&](std::size_t i) { return stretches_[i].box; }, memory);
}

void StretchTree::add(Points run, const Range3d& other, const NearFilter& filter) {
    for (std::size_t first = 0; first + 1 < run.size(); first += Stretch::kMostSegments) {
        const std::size_t segments = std::min(Stretch::kMostSegments, run.size() - 1 - first);
        const Points points = run.subspan(first, segments + 1);
        const auto box = rangeByVectors(RunWalk{points});
        const Stretch stretch = {points.data(), segments, box ? *box : plainBoxOf(points)};
        if (filter.mayBeNear(stretch.box, other)) stretches_.push_back(stretch);
    }
}

namespace {

constexpr std::size_t kPiece = 8;

/// The boxes of a piece's segments, coordinate by coordinate, so that one box is compared with all at once.
struct PieceBoxes {
    double lowX[kPiece], lowY[kPiece], lowZ[kPiece];
    double highX[kPiece], highY[kPiece], highZ[kPiece];

    // Places without a segment repeat the last one; their bits are cleared.
    [[gnu::always_inline]] void fill(const Stretch& piece) {
        for (std::size_t i = 0; i < kPiece; ++i) {
            const Point3d* const start = piece.first + std::min(i, piece.segments - 1);
            lowX[i] = std::min(start[0].x, start[1].x);
            lowY[i] = std::min(start[0].y, start[1].y);
            lowZ[i] = std::min(start[0].z, start[1].z);
            highX[i] = std::max(start[0].x, start[1].x);
            highY[i] = std::max(start[0].y, start[1].y);
            highZ[i] = std::max(start[0].z, start[1].z);
        }
    }

    [[gnu::always_inline]] std::uint64_t nearTo(const PieceBoxes& other, std::size_t at,
                                                double margin) const {
        double gaps[kPiece];
        for (std::size_t i = 0; i < kPiece; ++i) {
            const double x = std::max(lowX[i] - other.highX[at], other.lowX[at] - highX[i]);
            const double y = std::max(lowY[i] - other.highY[at], other.lowY[at] - highY[i]);
            const double z = std::max(lowZ[i] - other.highZ[at], other.lowZ[at] - highZ[i]);
            gaps[i] = std::max(std::max(x, y), z);
        }
        std::uint64_t near = 0;
        for (std::size_t i = 0; i < kPiece; ++i) near |= std::uint64_t{gaps[i] <= margin} << i;
        return near;
    }
};

[[gnu::always_inline]] inline std::uint64_t nearPairs(const Stretch& a, const Stretch& b,
                                                      double margin) {
    PieceBoxes ofA;
    PieceBoxes ofB;
    ofA.fill(a);
    ofB.fill(b);
    const std::uint64_t all = (std::uint64_t{1} << b.segments) - 1;
    std::uint64_t near = 0;
    for (std::size_t i = 0; i < a.segments; ++i) {
        near |= (ofB.nearTo(ofA, i, margin) & all) << kPiece * i;
    }
    return near;
}

#if VEXAKIT_HAS_WIDE_VECTORS
VEXAKIT_AVX2 std::uint64_t nearPairsByAvx2(const Stretch& a, const Stretch& b, double margin) {
    return nearPairs(a, b, margin);
}
VEXAKIT_AVX512 std::uint64_t nearPairsByAvx512(const Stretch& a, const Stretch& b, double margin) {
    return nearPairs(a, b, margin);
}
#endif

}  // namespace

std::uint64_t nearPairsOfPieces(const Stretch& a, const Stretch& b, double margin) {
#if VEXAKIT_HAS_WIDE_VECTORS
    switch (platform::vectorWidth()) {
        case platform::VectorWidth::Avx512: return nearPairsByAvx512(a, b, margin);
        case platform::VectorWidth::Avx2: return nearPairsByAvx2(a, b, margin);
        case platform::VectorWidth::Plain: break;
    }
#endif
    return nearPairs(a, b, margin);
}

// NOLINTNEXTLINE(*-member-init): of the pieces those that are counted are set
Pieces::Pieces(const Stretch& stretch, const Range3d& other, const NearFilter& filter) {
    for (std::size_t first = 0; first < stretch.segments; first += kSegments) {
        const std::size_t segments = std::min(kSegments, stretch.segments - first);
        const Points points = stretch.points().subspan(first, segments + 1);
        const Range3d box = plainBoxOf(points);
        if (filter.mayBeNear(box, other)) pieces_[count_++] = {points.data(), segments, box};
    }
}

}  // namespace vexa
