#include "geometry/intersection/small_box.h"
#include "geometry/intersection/small_shapes.h"
#include "geometry/intersection/sure_answers.h"
#include "geometry/intersection/sure_triangle.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vexa {

namespace {

/// More than what a distance between two triangles may be off by together with the tolerance of the
/// exact way, which is less than 2^-37; of the largest coordinate.
constexpr double kGap = 0x1p-32;
/// Heights of triangles above this, of the largest coordinate, have room for the tolerance and for what a
/// cut may be off by.
constexpr double kLeastHeight = kHeightsPerError * 0x1p-33;
/// Of the angle between a plane and a side that cuts it.
constexpr double kLeastSineSquare = 0x1p-12;

/// The corners of a triangle before the plane of the other one.
class Heights {
public:
    Heights(const Point3d* corners, const SureTriangle& plane, double gap)
        : first_(dot(plane.normal, corners[0] - plane.corner)),
          second_(dot(plane.normal, corners[1] - plane.corner)),
          third_(dot(plane.normal, corners[2] - plane.corner)),
          margin_(gap * sumOfMagnitudes(plane.normal)) {}

    bool areOnOneSide() const {
        return std::min({first_, second_, third_}) > margin_ ||
               std::max({first_, second_, third_}) < -margin_;
    }
    bool areClear() const {
        return std::min({std::fabs(first_), std::fabs(second_), std::fabs(third_)}) > margin_;
    }

    /// The corner that has a side of the plane to itself, where they are not all on one.
    std::size_t lone() const {
        constexpr std::size_t kLone[] = {0, 0, 1, 2, 2, 1, 0, 0};
        const std::size_t above =
            (first_ > 0 ? 1U : 0U) | (second_ > 0 ? 2U : 0U) | (third_ > 0 ? 4U : 0U);
        return kLone[above];
    }
    bool isLoneAbove() const {
        return (first_ > 0 ? 1 : 0) + (second_ > 0 ? 1 : 0) + (third_ > 0 ? 1 : 0) == 1;
    }

private:
    double first_;
    double second_;
    double third_;
    double margin_;
};

/// The corner that lies alone, and the two sides that cut the plane there.
struct Wedge {
    Wedge(const Point3d* ring, std::size_t lone)
        : corner(ring[lone]),
          toNext(ring[lone + 1] - corner),
          toPrevious(ring[lone == 0 ? 2 : lone - 1] - corner) {}

    Point3d corner;
    Point3d toNext;
    Point3d toPrevious;
};

/// The sides of two wedges before each other: how far their lines pass each other, times their lengths.
struct Passings {
    Passings(const Wedge& a, const Wedge& b) {
        const Point3d across = b.corner - a.corner;
        const Point3d ofNext = cross(across, b.toNext);
        const Point3d ofPrevious = cross(across, b.toPrevious);
        nextAndNext = dot(a.toNext, ofNext);
        nextAndPrevious = dot(a.toNext, ofPrevious);
        previousAndNext = dot(a.toPrevious, ofNext);
        previousAndPrevious = dot(a.toPrevious, ofPrevious);
    }

    double nextAndNext;
    double nextAndPrevious;
    double previousAndNext;
    double previousAndPrevious;
};

/// A triangle whose plane the sides of the other one cut.
struct Target {
    Target(const SureTriangle& triangle, const SureTriangle& other, double largest)
        : normal(triangle.normal),
          leastClimbSquare(kLeastSineSquare * other.sizeSquare * triangle.normalSquare),
          isHigh(triangle.isHigherThan(kLeastHeight * largest)) {}

    /// Whether a side is sure to go through the midst of the triangle, by two of its corners' weights.
    bool isPierced(const Point3d& side, double weight, double another) const {
        const CornerWeights weights{weight, another, dot(normal, side)};
        return isHigh & weights.isClearlyInside() &
               (weights.whole * weights.whole >= leastClimbSquare);
    }

    Point3d normal;
    double leastClimbSquare;
    bool isHigh;
};

}  // namespace

// Where all of one triangle lies to one side of the other's plane, their boxes are apart in its frame.
//
// The cuts of the exact way lie on the sides up to rounding, whatever the angle, and it looks at a vertex
// only where that lies in the other's plane: triangles that are farther apart than the gap, without such
// a vertex, share nothing. Only the two sides at the lone corner cut the plane. What such a side cuts is
// outside the triangle where it passes one of the two sides at the lone corner there on the outside, and
// its line is as far off as the product of three vectors tells.
//
// A cut in the midst of a triangle, by a side at an angle of more than 1/64, is one in the exact way, and
// then the boxes overlap in both frames: either box spans, on each axis, the cut and more, but where an
// axis is square to the triangle, and there the side does so.
Sure triangleAndTriangle(const PathList& first, const PathList& second) {
    const Point3d* const a = closedTriangleOf(first);
    const Point3d* const b = closedTriangleOf(second);
    if (!a || !b) return Sure::Unsure;

    const SmallBox boxA = SmallBox::of<3>(a);
    const SmallBox boxB = SmallBox::of<3>(b);
    const double largest = SmallBox::largestOf(boxA, boxB);
    if (!isOrdinarySize(largest)) return Sure::Unsure;
    if (!boxA.overlaps(boxB)) return Sure::Apart;

    const double gap = kGap * largest;
    const SureTriangle triangleA{a};
    const Heights ofB{b, triangleA, gap};
    if (!triangleA.isWellShaped()) return Sure::Unsure;
    if (ofB.areOnOneSide()) return Sure::Apart;

    const SureTriangle triangleB{b};
    const Heights ofA{a, triangleB, gap};
    if (!triangleB.isWellShaped()) return Sure::Unsure;
    if (ofA.areOnOneSide()) return Sure::Apart;
    if (!ofA.areClear() || !ofB.areClear()) return Sure::Unsure;

    const Wedge wedgeA{a, ofA.lone()};
    const Wedge wedgeB{b, ofB.lone()};
    const auto [nn, np, pn, pp] = Passings{wedgeA, wedgeB};

    const double product = gap * std::sqrt(triangleA.sizeSquare * triangleB.sizeSquare);
    const double signB = ofB.isLoneAbove() ? -1 : 1;
    const double signA = ofA.isLoneAbove() ? -1 : 1;
    // The farther of the two sides of a wedge at which each side of the other passes.
    const double leastOff =
        std::max({std::min(signB * nn, -signB * pn), std::min(signB * np, -signB * pp),
                  std::min(signA * nn, -signA * np), std::min(signA * pn, -signA * pp)});
    if (leastOff < -product) return Sure::Apart;

    const Target inA{triangleA, triangleB, largest};
    const Target inB{triangleB, triangleA, largest};
    const bool isPierced =
        inA.isPierced(wedgeB.toNext, nn, -pn) || inA.isPierced(wedgeB.toPrevious, np, -pp) ||
        inB.isPierced(wedgeA.toNext, nn, -np) || inB.isPierced(wedgeA.toPrevious, pn, -pp);
    return isPierced ? Sure::Meeting : Sure::Unsure;
}

}  // namespace vexa
