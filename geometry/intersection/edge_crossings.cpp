#include "geometry/intersection/edge_crossings.h"

#include "geometry/intersection/aligned_edges.h"
#include "geometry/intersection/stretches.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>

namespace vexa {

namespace {

constexpr double kSlack = 1e-12;
constexpr int kMostPlaces = 32;

double cross2d(const Point3d& u, const Point3d& v) {
    return u.x * v.y - u.y * v.x;
}

Point3d difference2d(const Point3d& a, const Point3d& b) {
    return {a.x - b.x, a.y - b.y, 0};
}

bool areSame2d(const Point3d& a, const Point3d& b) {
    return a.x == b.x && a.y == b.y;
}

bool edgesCross(const Point3d& startE, const Point3d& endE, const Point3d& startR,
                const Point3d& endR) {
    const Point3d d = difference2d(endE, startE);
    const Point3d f = difference2d(endR, startR);
    const Point3d g = difference2d(startR, startE);
    double k = cross2d(d, f);
    double a = cross2d(g, f);
    double b = cross2d(g, d);
    if (k < 0) {
        k = -k;
        a = -a;
        b = -b;
    }
    if (k == 0) return false;

    const double e = kSlack * k;
    return -e <= a && a <= k + e && -e <= b && b <= k + e;
}

/// The two ends of the edge that closes a polyline; nothing where it is open or meets itself.
struct Edge {
    const Point3d* start;
    const Point3d* end;
};

std::optional<Edge> closingEdge(const Polyline& line) {
    if (!line.isClosed || line.vertices.size() < 2) return std::nullopt;

    const Edge edge = {&line.vertices.back(), &line.vertices.front()};
    const bool differ = edge.start->x != edge.end->x || edge.start->y != edge.end->y ||
                        edge.start->z != edge.end->z;
    return differ ? std::optional{edge} : std::nullopt;
}

/// Each edge in order, the closing one last, until one answers.
template <class Test>
bool anyEdge(const Polyline& line, const Test& test) {
    for (std::size_t i = 1; i < line.vertices.size(); ++i) {
        if (test(line.vertices[i - 1], line.vertices[i])) return true;
    }
    const auto closing = closingEdge(line);
    return closing && test(*closing->start, *closing->end);
}

bool isFinite2d(const Point3d& point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

Range3d box2d(const Point3d& a, const Point3d& b) {
    return boxOf({a.x, a.y, 0}, {b.x, b.y, 0});
}

double largestOf(const Range3d& box) {
    return std::max(
        {std::fabs(box.low.x), std::fabs(box.low.y), std::fabs(box.high.x), std::fabs(box.high.y)});
}

}  // namespace

bool EdgesCross(const Polyline& e, const Polyline& r) {
    return anyEdge(e, [&](const Point3d& startE, const Point3d& endE) {
        return anyEdge(r, [&](const Point3d& startR, const Point3d& endR) {
            return edgesCross(startE, endE, startR, endR);
        });
    });
}

// ---- Two long polylines -------------------------------------------------------------------------

namespace {

/// Edges that are farther apart than this, in units of the largest coordinate, are told to cross for a
/// rounding's sake alone. Where the lines of two edges meet at an angle of more than 1e-7, roundings move
/// the place by at most 4e-8; at a smaller angle each has to lie along the other's line.
constexpr double kFarApart = 1e-7;

bool edgesByStartCross(const Point3d* e, const Point3d* r) {
    return edgesCross(e[0], e[1], r[0], r[1]);
}

bool anyNearEdgesCross(Points e, const Range3d& boxOfE, Points r, const Range3d& boxOfR,
                       const NearFilter& filter, std::pmr::memory_resource* memory) {
    const StretchTree ofE{RunWalk{e}, boxOfR, filter, memory};
    const StretchTree ofR{RunWalk{r}, boxOfE, filter, memory};
    return !ofE.isEmpty() && !ofR.isEmpty() &&
           anyPairNear(ofE.tree(), ofE.tree().root(), ofR.tree(), ofR.tree().root(),
                       filter.margin(), [&](std::size_t i, std::size_t j) {
                           return anyPairOfStretches(ofE[i], ofR[j], filter, edgesByStartCross);
                       });
}

}  // namespace

bool openPolylinesCross(Points e, Points r, std::pmr::memory_resource* memory) {
    constexpr std::size_t kFewPairs = 256;
    const auto eachPair = [&] { return EdgesCross({e, false}, {r, false}); };
    if (e.size() * r.size() <= kFewPairs) return eachPair();

    const std::optional<Range3d> boxOfE = plainRange(RunWalk{e});
    const std::optional<Range3d> boxOfR = plainRange(RunWalk{r});
    if (!boxOfE || !boxOfR) return eachPair();
    const double largest = std::max(largestCoordinate(*boxOfE), largestCoordinate(*boxOfR));
    if (largest <= kLostDistance) return eachPair();

    try {
        const NearFilter filter{kFarApart * largest};
        return anyNearEdgesCross(e, *boxOfE, r, *boxOfR, filter, memory) ||
               AlignedEdges{e, r, largest, memory}.any(edgesByStartCross);
    } catch (const std::bad_alloc&) {
        return eachPair();
    }
}

// ---- A ring that is asked again and again -------------------------------------------------------

namespace {

/// Below this many edges a look at each is cheaper than a tree.
constexpr std::size_t kFewEdges = 16;
constexpr double kRoundings = 1024 * std::numeric_limits<double>::epsilon();

/// Meetings of a line with a closed ring, place by place.
class LinePlaces {
public:
    LinePlaces(const Point3d& start, const Point3d& end)
        : start_(start), direction_(difference2d(end, start)) {}

    bool isLine() const { return direction_.x != 0 || direction_.y != 0; }

    /// Looks at an edge and the vertex at its end.
    void meet(const Point3d& previous, const Point3d& vertex) {
        const double before = sideOf(previous);
        const double now = sideOf(vertex);
        if (now == 0) {
            if (!areSame2d(previous, vertex)) note(vertex);
        } else if ((before < 0 && now > 0) || (before > 0 && now < 0)) {
            const double ratio = before / (before - now);
            note({previous.x + (vertex.x - previous.x) * ratio,
                  previous.y + (vertex.y - previous.y) * ratio, 0});
        }
    }

    /// A ring whose vertices are all one.
    void meet(const Point3d& vertex) {
        if (sideOf(vertex) == 0) note(vertex);
    }

    int count() const { return count_; }
    bool isAnyOnSegment() const { return isAnyOnSegment_; }

private:
    double sideOf(const Point3d& point) const {
        return cross2d(direction_, difference2d(point, start_));
    }

    void note(const Point3d& place) {
        const Point3d along = difference2d(place, start_);
        const double parameter = (along.x * direction_.x + along.y * direction_.y) /
                                 (direction_.x * direction_.x + direction_.y * direction_.y);
        isAnyOnSegment_ |= parameter >= 0 && parameter <= 1;
        ++count_;
    }

    Point3d start_;
    Point3d direction_;
    int count_ = 0;
    bool isAnyOnSegment_ = false;
};

}  // namespace

RingEdges::RingEdges(std::span<const Point3d> vertices, std::pmr::memory_resource* memory)
    : vertices_(vertices),
      isOnePlace_(!vertices.empty() &&
                  std::all_of(vertices.begin(), vertices.end(), [&](const Point3d& vertex) {
                      return areSame2d(vertex, vertices.front());
                  })) {
    if (vertices.size() <= kFewEdges || isOnePlace_) return;
    if (!std::all_of(vertices.begin(), vertices.end(), isFinite2d)) return;

    try {
        // Edge i ends at vertex i; the first one closes the ring.
        boxes_.emplace(
            vertices.size(), [&](std::size_t i) { return box2d(previousOf(i), vertices[i]); },
            memory);
        largest_ = largestOf(boxes_->box());
    } catch (const std::bad_alloc&) {
        // Without memory for boxes each edge is looked at.
    }
}

/// Whether boxes may leave edges out that a segment with that box is to be tested against.
bool RingEdges::canRuleOut(const Range3d& box) const {
    const double largest = std::max(largest_, largestOf(box));
    return boxes_ && isFinite2d(box.low) && isFinite2d(box.high) && largest < kLargestPlain &&
           largest > kLostDistance;
}

namespace {

/// Leaves out boxes in which nothing can cross an edge. Edges at an angle cross where both of them are,
/// but for roundings that grow as the angle shrinks. Edges that are nearly parallel may be told to cross
/// for a rounding's sake, however far apart they are, but only where one lies along the other's line.
class CrossingFilter {
public:
    CrossingFilter(const Point3d& start, const Point3d& end, double largest)
        : start_(start),
          direction_(difference2d(end, start)),
          box_(box2d(start, end)),
          largest_(largest) {}

    bool operator()(const Range3d& box) const {
        return gapBetween(box, box_) <= kAtAnAngle * largest_ || isMetByLine(box);
    }

private:
    static constexpr double kAtAnAngle = 1e-7;
    static constexpr double kAlong = 1e-5;
    static constexpr double kAlongRoundings = 1e-12;

    bool isMetByLine(const Range3d& box) const {
        const Point3d middle = {box.low.x / 2 + box.high.x / 2, box.low.y / 2 + box.high.y / 2, 0};
        const double halfWidth = box.high.x / 2 - box.low.x / 2;
        const double halfHeight = box.high.y / 2 - box.low.y / 2;
        const double slack = kAlong * (halfWidth + halfHeight) + kAlongRoundings * largest_;
        const double reach = std::fabs(direction_.x) * (halfHeight + slack) +
                             std::fabs(direction_.y) * (halfWidth + slack);
        return std::fabs(cross2d(direction_, difference2d(middle, start_))) <= reach;
    }

    Point3d start_;
    Point3d direction_;
    Range3d box_;
    double largest_;
};

}  // namespace

bool RingEdges::areCrossedBy(const Point3d& start, const Point3d& end) const {
    const Range3d box = box2d(start, end);
    if (!canRuleOut(box)) return EdgesCross({std::array{start, end}, false}, {vertices_, true});

    const bool hasClosingEdge = closingEdge({vertices_, true}).has_value();
    const CrossingFilter mayCross{start, end, std::max(largest_, largestOf(box))};
    return anyUnder(*boxes_, boxes_->root(), mayCross, [&](std::size_t i) {
        return (i != 0 || hasClosingEdge) && edgesCross(start, end, previousOf(i), vertices_[i]);
    });
}

/// Whether some edge near the segment gives a place on it. Rounding moves a place by a few units in the
/// last place of the largest coordinate, so no edge farther off can.
bool RingEdges::hasPlaceNear(const Point3d& start, const Point3d& end) const {
    const Range3d box = box2d(start, end);
    if (!canRuleOut(box)) return true;

    const double margin = std::max(largest_, largestOf(box)) * kRoundings + kLostDistance;
    const auto isNear = [&](const Range3d& other) { return gapBetween(other, box) <= margin; };
    return anyUnder(*boxes_, boxes_->root(), isNear, [&](std::size_t i) {
        LinePlaces line{start, end};
        line.meet(previousOf(i), vertices_[i]);
        return line.isAnyOnSegment();
    });
}

// The line is followed around the whole ring only where some place lies on the segment, to see whether
// there are too many.
bool RingEdges::areMetBy(const Point3d& start, const Point3d& end) const {
    LinePlaces line{start, end};
    if (!line.isLine() || !hasPlaceNear(start, end)) return false;

    for (std::size_t i = 0; i < vertices_.size(); ++i) line.meet(previousOf(i), vertices_[i]);
    if (isOnePlace_) line.meet(vertices_.front());
    return line.count() <= kMostPlaces && line.isAnyOnSegment();
}

}  // namespace vexa
