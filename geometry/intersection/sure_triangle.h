#pragma once

#include "transform/vector.h"

#include <algorithm>
#include <cmath>

namespace vexa {

/// A triangle with what its plane and its size need.
///
/// The exact way classifies in a frame that is fitted to the ring. For a triangle that is no sliver the
/// frame's plane is off the triangle's by less than 2^-38 (in radians), and lengths in it are right but
/// for roundings, some 2^-48 of the largest coordinate.
struct SureTriangle {
    explicit SureTriangle(const Point3d* corners)
        : corner(corners[0]),
          toSecond(corners[1] - corners[0]),
          toThird(corners[2] - corners[0]),
          normal(cross(toSecond, toThird)),
          normalSquare(dot(normal, normal)),
          sizeSquare(2 * (dot(toSecond, toSecond) + dot(toThird, toThird))) {}

    /// Whether no height is less than 2^-10 of a side.
    bool isWellShaped() const { return normalSquare >= 0x1p-20 * sizeSquare * sizeSquare; }

    /// Whether a distance is less than all heights. A height is the normal's length by a side's.
    bool isHigherThan(double distance) const {
        return normalSquare >= distance * distance * sizeSquare;
    }

    Point3d corner;
    Point3d toSecond;
    Point3d toThird;
    /// Bit for bit the sum that the ring's plane is made of.
    Point3d normal;
    double normalSquare;
    /// At least the square of any side.
    double sizeSquare;
};

/// Where a place of the triangle's plane lies: what its corners weigh, in thirds that add up to a whole
/// of either sign.
struct CornerWeights {
    CornerWeights(double ofSecond, double ofThird, double all)
        : least(leastOf(ofSecond, ofThird, all)), whole(std::fabs(all)) {}

    /// By more than 1/64 of the heights.
    bool isClearlyInside() const { return least > kClear * whole; }
    bool isClearlyOutside() const { return least < -kClear * whole; }

    double least;
    double whole;

    static constexpr double kClear = 0x1p-6;

private:
    static double leastOf(double ofSecond, double ofThird, double all) {
        const double ofFirst = all - ofSecond - ofThird;
        const double sign = std::copysign(1.0, all);
        return std::min(std::min(sign * ofFirst, sign * ofSecond), sign * ofThird);
    }
};

/// Heights of which 1/64 is 128 times what a place may be off by: a place that is clearly inside is then so
/// far from each side that no classification can take it for a place on the boundary, and of the 36
/// trial rays, any two of which are 1/31 or more apart in direction, each corner is level with one at
/// most: some ray decides.
constexpr double kHeightsPerError = 0x1p13;

}  // namespace vexa
