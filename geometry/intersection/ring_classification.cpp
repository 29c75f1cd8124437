#include "geometry/intersection/ring_classification.h"

#include "geometry/intersection/ring_frame.h"
#include "geometry/range.h"
#include "transform/vector.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <optional>

namespace vexa {

namespace {

constexpr double kRayStep = 0.276234342921378;
constexpr double kRayEnd = 10.0;

using Coordinate = double Point3d::*;

Side bySign(bool isOdd) {
    return isOdd ? Side::Inside : Side::Outside;
}

/// One vertex as a counting line sees it: how far it is off the line, and where along it.
struct Sighting {
    double off;
    double along;
};

/// Counts crossings of a line through the point, vertex by vertex. Each vertex is level with the
/// line, or it may end an edge that crosses it.
class CrossingCount {
public:
    CrossingCount(const Sighting& last, double tolerance)
        : previous_(last), tolerance_(tolerance) {}

    bool isLevel(const Sighting& vertex) const { return std::fabs(vertex.off) <= tolerance_; }

    /// Whether the edge from the vertex before crosses the line, which it then does at `at`.
    bool crosses(const Sighting& vertex, double& at) const {
        if ((vertex.off < 0) == (previous_.off < 0)) return false;
        at = previous_.along +
             (vertex.along - previous_.along) * (-previous_.off / (vertex.off - previous_.off));
        return true;
    }

    /// Nothing while the vertex decides nothing.
    std::optional<Side> meet(const Sighting& vertex, double place) {
        double at = 0;
        if (crosses(vertex, at)) {
            if (std::fabs(at - place) <= tolerance_) return Side::OnBoundary;
            if (at < place) isOdd_ = !isOdd_;
        }
        previous_ = vertex;
        return std::nullopt;
    }

    void moveTo(const Sighting& vertex) { previous_ = vertex; }
    Side side() const { return bySign(isOdd_); }

private:
    Sighting previous_;
    double tolerance_;
    bool isOdd_ = false;
};

/// Along a line through the point at `place` on it; nothing where a vertex is level with it first.
template <class See>
std::optional<Side> countedAlong(std::span<const Point3d> ring, double place, double tolerance,
                                 See see) {
    const Sighting last = see(ring.back());
    CrossingCount count{last, tolerance};
    if (count.isLevel(last)) return std::nullopt;

    for (const Point3d& vertex : ring) {
        const Sighting sighting = see(vertex);
        if (count.isLevel(sighting)) return std::nullopt;
        if (const auto decided = count.meet(sighting, place)) return decided;
    }
    return count.side();
}

/// Along the line on which one coordinate has the point's value.
struct LevelLine {
    Coordinate level;
    Coordinate along;
    Point3d point;

    Sighting operator()(const Point3d& vertex) const {
        return {point.*level - vertex.*level, vertex.*along};
    }
    double place() const { return point.*along; }
};

LevelLine horizontal(const Point3d& point) {
    return {&Point3d::y, &Point3d::x, point};
}
LevelLine vertical(const Point3d& point) {
    return {&Point3d::x, &Point3d::y, point};
}

bool isAtVertex(const Point3d& point, std::span<const Point3d> ring, double tolerance) {
    return std::any_of(ring.begin(), ring.end(), [&](const Point3d& vertex) {
        return std::fabs(vertex.x - point.x) <= tolerance &&
               std::fabs(vertex.y - point.y) <= tolerance;
    });
}

Side alongTrialRays(const Point3d& point, std::span<const Point3d> ring, double tolerance) {
    // NOLINTNEXTLINE(clang-analyzer-security.FloatLoopCounter): the angles' sums are what fixes the rays
    for (double angle = kRayStep; angle < kRayEnd; angle += kRayStep) {
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const auto see = [&](const Point3d& vertex) -> Sighting {
            const double x = vertex.x - point.x;
            const double y = vertex.y - point.y;
            return {y * c - x * s, y * s + x * c};
        };
        if (const auto side = countedAlong(ring, 0, tolerance, see)) return *side;
    }
    return Side::Undecidable;
}

/// Where neither level line decided.
Side withoutLevelLines(const Point3d& point, std::span<const Point3d> ring, double tolerance) {
    return isAtVertex(point, ring, tolerance) ? Side::OnBoundary
                                              : alongTrialRays(point, ring, tolerance);
}

}  // namespace

Side ClassifyPointInRing(const Point3d& point, std::span<const Point3d> ring, double tolerance) {
    if (ring.size() < 2) {
        return isAtVertex(point, ring, tolerance) ? Side::OnBoundary : Side::Outside;
    }
    for (const LevelLine& line : {horizontal(point), vertical(point)}) {
        if (const auto side = countedAlong(ring, line.place(), tolerance, line)) return *side;
    }
    return withoutLevelLines(point, ring, tolerance);
}

Side ClassifyPointInRings(const Point3d& point, std::span<const Point3d> points, double tolerance) {
    bool isOdd = false;
    for (auto first = points.begin(); first != points.end();) {
        const auto last = std::find_if(first, points.end(), isSeparator);
        const std::span<const Point3d> ring{first, last};
        first = last == points.end() ? last : last + 1;
        if (ring.size() < 2) continue;

        const Side side = ClassifyPointInRing(point, ring, tolerance);
        if (side == Side::OnBoundary || side == Side::Undecidable) return side;
        if (side == Side::Inside) isOdd = !isOdd;
    }
    return bySign(isOdd);
}

// ---- Many points against one ring ---------------------------------------------------------------

namespace {

constexpr std::size_t kFewEdges = 32;
/// Questions after which an index has paid for itself.
constexpr int kPatience = 4;
constexpr int kEndless = -1;
constexpr std::size_t kMostBands = 1U << 20;
constexpr double kEntriesPerEdge = 4;

bool isFinite(const Point3d& point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

/// How far from its vertices an edge has to be known so that no point that is level with one, as
/// rounded, is missed.
double reachOf(std::span<const Point3d> ring, double tolerance) {
    constexpr double kRoundings = 64 * std::numeric_limits<double>::epsilon();
    double largest = 0;
    for (const Point3d& vertex : ring) {
        largest = std::max({largest, std::fabs(vertex.x), std::fabs(vertex.y)});
    }
    return std::max(tolerance, 0.0) * (1 + kRoundings) + largest * kRoundings;
}

/// As many bands as edges, but fewer where the edges are long, so that an edge stands in a few bands
/// in the mean.
std::size_t bandCount(std::span<const Point3d> ring, Coordinate level, double extent,
                      double reach) {
    double sum = 0;
    const Point3d* previous = &ring.back();
    for (const Point3d& vertex : ring) {
        sum += std::fabs(vertex.*level - previous->*level) + 2 * reach;
        previous = &vertex;
    }
    const auto edges = static_cast<double>(ring.size());
    const double count = std::min(edges, kEntriesPerEdge * edges * extent / sum);
    return count > 1 ? std::min(static_cast<std::size_t>(count), kMostBands) : 1;
}

}  // namespace

RingClassifier::RingClassifier(std::span<const Point3d> ring, double tolerance,
                               std::pmr::memory_resource* memory)
    : ring_(ring),
      tolerance_(tolerance),
      patience_(ring.size() < kFewEdges ? kEndless : kPatience),
      byHeight_(&Point3d::y, memory),
      byAbscissa_(&Point3d::x, memory) {}

Side RingClassifier::classify(const Point3d& point) {
    if (patience_ != kEndless && patience_-- == 0) makeIndex();
    return isIndexed_ ? classifyByIndex(point) : ClassifyPointInRings(point, ring_, tolerance_);
}

void RingClassifier::makeIndex() {
    patience_ = kEndless;
    const bool isPlain = std::isfinite(tolerance_) &&
                         std::all_of(ring_.begin(), ring_.end(), isFinite) &&
                         std::none_of(ring_.begin(), ring_.end(), isSeparator);
    if (!isPlain) return;

    isIndexed_ = isFilled(byHeight_);
}

// Without memory for an index the ring is still there to be walked.
bool RingClassifier::isFilled(Bands& bands) {
    if (!bands.starts.empty()) return true;
    try {
        fill(bands);
        return true;
    } catch (const std::bad_alloc&) {
        bands.starts.clear();
        return false;
    }
}

std::size_t RingClassifier::Bands::bandOf(double value) const {
    const std::size_t count = starts.size() - 1;
    const double band = (value - low) * perUnit;
    if (!(band > 0)) return 0;
    return band < static_cast<double>(count) ? static_cast<std::size_t>(band) : count - 1;
}

std::span<const std::uint32_t> RingClassifier::Bands::edgesAt(double value) const {
    const std::size_t band = bandOf(value);
    return {edges.data() + starts[band], edges.data() + starts[band + 1]};
}

// Each edge stands in every band that it reaches, in the order of the ring: first they are counted,
// then they are put where the counts say.
void RingClassifier::fill(Bands& bands) const {
    const Coordinate level = bands.level;
    const double reach = reachOf(ring_, tolerance_);
    const auto [least, greatest] = std::minmax_element(
        ring_.begin(), ring_.end(),
        [level](const Point3d& a, const Point3d& b) { return a.*level < b.*level; });
    const double extent = *greatest.*level - *least.*level;
    const std::size_t count = bandCount(ring_, level, extent, reach);
    bands.low = *least.*level;
    bands.perUnit = extent > 0 ? static_cast<double>(count) / extent : 0;
    if (!std::isfinite(bands.perUnit)) bands.perUnit = 0;
    bands.starts.assign(count + 1, 0);

    const auto forEachBand = [&](auto visit) {
        const Point3d* previous = &ring_.back();
        for (std::uint32_t edge = 0; edge < ring_.size(); ++edge) {
            const Point3d& vertex = ring_[edge];
            const auto [low, high] = std::minmax(previous->*level, vertex.*level);
            const std::size_t last = bands.bandOf(high + reach);
            for (std::size_t band = bands.bandOf(low - reach); band <= last; ++band) {
                visit(band, edge);
            }
            previous = &vertex;
        }
    };
    forEachBand([&](std::size_t band, std::uint32_t) { ++bands.starts[band + 1]; });
    for (std::size_t band = 0; band < count; ++band) bands.starts[band + 1] += bands.starts[band];
    bands.edges.resize(bands.starts.back());
    std::pmr::vector<std::uint32_t> next{bands.starts, bands.starts.get_allocator()};
    forEachBand([&](std::size_t band, std::uint32_t edge) { bands.edges[next[band]++] = edge; });
}

// An edge that does not stand in the point's band is not crossed and ends at no level vertex: those
// that do give all that the whole ring would, in the same order.
Side RingClassifier::classifyByIndex(const Point3d& point) {
    const auto countedInBand = [&](const Bands& bands,
                                   const LevelLine& line) -> std::optional<Side> {
        const Sighting last = line(ring_.back());
        CrossingCount count{last, tolerance_};
        if (count.isLevel(last)) return std::nullopt;

        for (const std::uint32_t edge : bands.edgesAt(point.*bands.level)) {
            count.moveTo(line(edge == 0 ? ring_.back() : ring_[edge - 1]));
            const Sighting sighting = line(ring_[edge]);
            if (count.isLevel(sighting)) return std::nullopt;
            if (const auto decided = count.meet(sighting, line.place())) return decided;
        }
        return count.side();
    };
    if (const auto side = countedInBand(byHeight_, horizontal(point))) return *side;
    // Few points are level with a vertex: what tells of these is made when the first of them comes.
    const LevelLine upright = vertical(point);
    const auto side = isFilled(byAbscissa_)
                          ? countedInBand(byAbscissa_, upright)
                          : countedAlong(ring_, upright.place(), tolerance_, upright);
    return side ? *side : withoutLevelLines(point, ring_, tolerance_);
}

}  // namespace vexa
