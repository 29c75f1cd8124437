#include "geometry/intersection/small_box.h"
#include "geometry/intersection/small_shapes.h"
#include "geometry/intersection/sure_answers.h"
#include "transform/vector.h"

#include <algorithm>
#include <cmath>

namespace vexa {

namespace {

double clampedToUnit(double parameter) {
    return std::min(std::max(parameter, 0.0), 1.0);
}

}  // namespace

// Solves for the closest approach of the two lines by Cramer's rule instead of with unit vectors and
// singular values. Both ways start from the same three differences, and both are wrong by no more than
// some 110 roundings of these (the sum of their lengths), divided by the square of the sine of the angle
// between the segments, as long as that is no small number; nor does the clamping widen an error. So the
// two distances differ by less than `error`, which allows for twice as much.
Sure segmentAndSegment(const Path& first, const Path& second, double tolerance) {
    constexpr double kLeastSineSquare = 0x1p-10;
    constexpr double kLeastLengthSquare = 0x1p-40;
    constexpr double kRoundings = 0x1p-44;

    const Point3d* const a = segmentOf(first);
    const Point3d* const b = segmentOf(second);
    if (!a || !b || !(tolerance >= 0)) return Sure::Unsure;

    const SmallBox boxA = SmallBox::of<2>(a);
    const SmallBox boxB = SmallBox::of<2>(b);
    const double largest = SmallBox::largestOf(boxA, boxB);
    if (!isOrdinarySize(largest)) return Sure::Unsure;
    if (!boxA.overlaps(boxB)) return Sure::Apart;

    const Point3d alongA = a[1] - a[0];
    const Point3d alongB = b[1] - b[0];
    const Point3d across = b[0] - a[0];
    const double aa = dot(alongA, alongA);
    const double ab = dot(alongA, alongB);
    const double bb = dot(alongB, alongB);
    const Point3d normal = cross(alongA, alongB);
    const double determinant = dot(normal, normal);
    const double leastSquare = kLeastLengthSquare * largest * largest;
    if (!(aa >= leastSquare && bb >= leastSquare)) return Sure::Unsure;
    if (!(determinant >= kLeastSineSquare * aa * bb)) return Sure::Unsure;

    const double inverse = 1 / determinant;
    const double onA = dot(across, alongA);
    const double onB = dot(across, alongB);
    const double s = clampedToUnit((onA * bb - onB * ab) * inverse);
    const double t = clampedToUnit((onA * ab - onB * aa) * inverse);
    const Point3d gap = across + alongB * t - alongA * s;
    const double square = dot(gap, gap);

    const double sizes =
        sumOfMagnitudes(across) + sumOfMagnitudes(alongA) + sumOfMagnitudes(alongB);
    const double error = kRoundings * (sizes * (aa * bb * inverse) + largest);
    const double farthest = tolerance + error;
    const double nearest = tolerance - error;
    if (square > farthest * farthest) return Sure::Apart;
    return nearest > 0 && square < nearest * nearest ? Sure::Meeting : Sure::Unsure;
}

}  // namespace vexa
