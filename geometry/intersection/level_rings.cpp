#include "geometry/intersection/level_rings.h"

#include "geometry/intersection/aligned_edges.h"
#include "geometry/intersection/level_point.h"
#include "geometry/intersection/level_shapes.h"
#include "geometry/intersection/small_shapes.h"
#include "geometry/intersection/stretches.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>

// In a level plane a ring's frame is the world's with axes turned round and another origin: coordinates
// there are those of the world up to a few units in the last place of the largest one.
namespace vexa {

namespace {

/// Edges farther apart than this, in units of the largest coordinate, cross for a rounding's sake alone, and
/// only along one line.
constexpr double kFarApart = 1e-7;
/// The directions of edges this long are the same in a frame to 2e-8.
constexpr double kLeastEdge = 1e-7;
/// At least the tolerance of the test, which is 1e-12 of what two rings have for coordinates and extents in
/// the frame.
constexpr double kTolerance = 5e-12;

struct Vector2d {
    double x;
    double y;
};

Vector2d operator-(const Point3d& a, const Point3d& b) {
    return {a.x - b.x, a.y - b.y};
}
double cross(const Vector2d& u, const Vector2d& v) {
    return u.x * v.y - u.y * v.x;
}
/// At least the length of a vector, and less than twice it.
double size(const Vector2d& vector) {
    return std::fabs(vector.x) + std::fabs(vector.y);
}

bool isWellInside(double part, double whole) {
    constexpr double kOfEachEnd = 1.0 / 64;
    return part >= kOfEachEnd * whole && part <= (1 - kOfEachEnd) * whole;
}

/// Two rings of one plane, and how large their coordinates are.
class LevelRings {
public:
    LevelRings(Points first, const Range3d& firstBox, Points second, const Range3d& secondBox)
        : first_(first),
          firstBox_(firstBox),
          second_(second),
          secondBox_(secondBox),
          largest_(std::max(largestCoordinate(firstBox), largestCoordinate(secondBox))),
          filter_(kFarApart * largest_) {}

    Sure answer(std::pmr::memory_resource* memory) const {
        if (!filter_.mayBeNear(firstBox_, secondBox_)) return Sure::Apart;

        const Sure byEdges = nearEdges(memory);
        if (byEdges != Sure::Apart) return haveArea() ? byEdges : Sure::Unsure;
        const Sure byVertices = firstVertices();
        if (byVertices != Sure::Apart) return haveArea() ? byVertices : Sure::Unsure;
        return mayEdgesBeAligned(memory) ? Sure::Unsure : Sure::Apart;
    }

private:
    static constexpr std::size_t kFewPairs = 256;

    bool areFew() const { return first_.size() * second_.size() <= kFewPairs; }

    // A ring that has some width has a frame.
    bool hasArea(Points ring) const {
        const Point3d& corner = ring[0];
        const double area =
            cross(ring[ring.size() / 3] - corner, ring[ring.size() * 2 / 3] - corner);
        return std::fabs(area) > 1e-9 * largest_ * largest_;
    }
    bool haveArea() const { return hasArea(first_) && hasArea(second_); }

    /// Whether edges that are long beside roundings cross at a good angle, well away from their ends.
    bool surelyCross(const Point3d* one, const Point3d* other) const {
        constexpr double kLeastSine = 1.0 / 32;
        const Vector2d d = one[1] - one[0];
        const Vector2d f = other[1] - other[0];
        const Vector2d g = other[0] - one[0];
        const double k = cross(d, f);
        const double whole = std::fabs(k);
        const double sign = k < 0 ? -1 : 1;
        return size(d) > 16 * kLeastEdge * largest_ && size(f) > 16 * kLeastEdge * largest_ &&
               whole > kLeastSine * size(d) * size(f) && isWellInside(sign * cross(g, f), whole) &&
               isWellInside(sign * cross(g, d), whole);
    }

    /// Apart where no edge is near another; the first two that are near tell otherwise.
    Sure nearEdges(std::pmr::memory_resource* memory) const {
        Sure found = Sure::Apart;
        const auto look = [&](const Point3d* one, const Point3d* other) {
            found = surelyCross(one, other) ? Sure::Meeting : Sure::Unsure;
            return true;
        };
        if (areFew()) {
            anyPairOfFew(look);
            return found;
        }
        const StretchTree a{RunWalk{first_}, secondBox_, filter_, memory};
        if (a.isEmpty()) return found;
        const StretchTree b{RunWalk{second_}, firstBox_, filter_, memory};
        if (b.isEmpty()) return found;
        anyPairNear(a.tree(), a.tree().root(), b.tree(), b.tree().root(), filter_.margin(),
                    [&](std::size_t i, std::size_t j) {
                        return anyPairOfStretches(a[i], b[j], filter_, look);
                    });
        return found;
    }

    template <class Test>
    void anyPairOfFew(const Test& test) const {
        for (std::size_t i = 0; i + 1 < first_.size(); ++i) {
            const Range3d box = boxOfSegment(&first_[i]);
            if (!filter_.mayBeNear(box, secondBox_)) continue;
            for (std::size_t j = 0; j + 1 < second_.size(); ++j) {
                if (filter_.mayBeNear(&first_[i], &second_[j]) && test(&first_[i], &second_[j])) {
                    return;
                }
            }
        }
    }

    /// What the first vertex of each tells before the other ring.
    Sure firstVertices() const {
        for (const auto& [point, ring] : {std::pair{second_[0], first_}, {first_[0], second_}}) {
            const auto vertex = LevelPoint::of(point, kTolerance * largest_);
            const SureSide side = vertex ? vertex->sideOf(ring) : SureSide::Unsure;
            if (side == SureSide::Inside) return Sure::Meeting;
            if (side == SureSide::Unsure) return Sure::Unsure;
        }
        return Sure::Apart;
    }

    /// Whether edges that are far apart may be told to cross: they are parallel, but not exactly along an
    /// axis, and each lies on the other's line.
    bool mayEdgesBeAligned(std::pmr::memory_resource* memory) const {
        const auto mayBeAligned = [this](const Point3d* one, const Point3d* other) {
            const Vector2d d = one[1] - one[0];
            const Vector2d f = other[1] - other[0];
            const Vector2d g = other[0] - one[0];
            const double reach = 1e-6 * largest_;
            return std::fabs(cross(d, f)) <= 4e-7 * size(d) * size(f) &&
                   std::fabs(cross(g, f)) <= reach * size(f) &&
                   std::fabs(cross(g, d)) <= reach * size(d) &&  //
                   !areAlongOneAxis(d, f);
        };
        if (hasShortEdge(first_) || hasShortEdge(second_)) return true;
        if (!areFew()) return AlignedEdges{first_, second_, largest_, memory}.any(mayBeAligned);

        for (std::size_t i = 0; i + 1 < first_.size(); ++i) {
            for (std::size_t j = 0; j + 1 < second_.size(); ++j) {
                if (mayBeAligned(&first_[i], &second_[j])) return true;
            }
        }
        return false;
    }

    static bool areAlongOneAxis(const Vector2d& d, const Vector2d& f) {
        return (d.x == 0 && f.x == 0) || (d.y == 0 && f.y == 0);
    }

    /// Whether some edge is so short that its direction is another in a frame.
    bool hasShortEdge(Points ring) const {
        const double least = kLeastEdge * largest_;
        bool isAnyShort = false;
        for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
            const double length = size(ring[i + 1] - ring[i]);
            isAnyShort |= length < least && length != 0;
        }
        return isAnyShort;
    }

    Points first_;
    Range3d firstBox_;
    Points second_;
    Range3d secondBox_;
    double largest_;
    NearFilter filter_;
};

/// The vertices of a ring of one run; none where there are too few for a plane.
Points verticesOfOneRun(const Path* ring) {
    if (!ring || ring->runCount != 1) return {};
    const Points vertices = verticesOf(*after<PointRun>(*ring));
    return vertices.size() < 3 ? Points{} : vertices;
}

}  // namespace

Sure levelRings(const Path* first, const Path* second, std::pmr::memory_resource* memory) {
    const Points a = verticesOfOneRun(first);
    const Points b = verticesOfOneRun(second);
    if (a.empty() || b.empty()) return Sure::Unsure;

    const std::optional<Range3d> boxOfA = plainRange(a);
    if (!boxOfA || !isLevelRing(*boxOfA)) return Sure::Unsure;
    const std::optional<Range3d> boxOfB = plainRange(b);
    if (!boxOfB || !isLevelRing(*boxOfB) || boxOfB->low.z != boxOfA->low.z) return Sure::Unsure;
    try {
        return LevelRings{a, *boxOfA, b, *boxOfB}.answer(memory);
    } catch (const std::bad_alloc&) {
        return Sure::Unsure;
    }
}

}  // namespace vexa
