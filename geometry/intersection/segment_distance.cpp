#include "geometry/intersection/segment_distance.h"

#include "transform/vector.h"

#include <algorithm>
#include <cmath>

namespace vexa {

namespace {

constexpr double kRelativeThreshold = 1e-12;

/// Solves p x + q y = e, r x + u y = f for columns that are scaled to the same size; nothing where
/// the matrix is singular, as its singular values tell.
struct Solution {
    double x;
    double y;
};

std::optional<Solution> solved(double p, double q, double r, double u, double e, double f) {
    const double sigma1 = 0.5 * std::sqrt((q + r) * (q + r) + (p - u) * (p - u));
    const double sigma2 = 0.5 * std::sqrt((q - r) * (q - r) + (p + u) * (p + u));
    if (std::fabs(sigma2 - sigma1) <= kRelativeThreshold * (sigma1 + sigma2)) return std::nullopt;

    const double determinant = (sigma2 - sigma1) * (sigma1 + sigma2);
    return Solution{(u * e - q * f) / determinant, (p * f - r * e) / determinant};
}

/// Where two lines come closest, as parameters of their directions.
std::optional<Solution> closestApproach(const Point3d& originA, const Point3d& directionA,
                                        const Point3d& originB, const Point3d& directionB) {
    if (length(directionA) == 0 || length(directionB) == 0) return std::nullopt;

    const Point3d a = unit(directionA);
    const Point3d b = unit(directionB);
    const Point3d w = originB - originA;

    const double aa = dot(directionA, a);
    const double ab = dot(directionA, b);
    const double ba = -dot(directionB, a);
    const double bb = -dot(directionB, b);
    const double largestA = std::max(std::fabs(aa), std::fabs(ab));
    const double largestB = std::max(std::fabs(ba), std::fabs(bb));
    if (largestA == 0 || largestB == 0) return std::nullopt;

    const double scaleA = 1 / largestA;
    const double scaleB = 1 / largestB;
    const auto scaled =
        solved(aa * scaleA, ba * scaleB, ab * scaleA, bb * scaleB, dot(w, a), dot(w, b));
    if (!scaled) return std::nullopt;

    return Solution{scaled->x * scaleA, scaled->y * scaleB};
}

Point3d clampedPoint(const Point3d& start, const Point3d& end, double parameter) {
    if (parameter < 0) return start;
    if (parameter > 1) return end;
    return start + (end - start) * parameter;
}

}  // namespace

std::optional<double> GuardedDivide(double numerator, double denominator) {
    if (!(std::fabs(denominator) > std::fabs(numerator) * kRelativeThreshold)) return std::nullopt;
    return numerator / denominator;
}

bool RangesOverlap(const Range3d& a, const Range3d& b) {
    return b.high.x >= a.low.x && a.high.x >= b.low.x &&  //
           b.high.y >= a.low.y && a.high.y >= b.low.y &&  //
           b.high.z >= a.low.z && a.high.z >= b.low.z;
}

bool PointNearSegment(const Point3d& point, const Point3d& start, const Point3d& end,
                      double tolerance) {
    const Point3d direction = end - start;
    const double t =
        GuardedDivide(dot(point - start, direction), dot(direction, direction)).value_or(0);
    if (t <= 0) return distance(point, start) <= tolerance;
    if (t >= 1) return distance(point, end) <= tolerance;
    return distance(point, start + direction * t) <= tolerance;
}

bool SegmentsNear(const Point3d& startA, const Point3d& endA, const Point3d& startB,
                  const Point3d& endB, double tolerance) {
    const auto closest = closestApproach(startA, endA - startA, startB, endB - startB);
    if (!closest) return false;

    return distance(clampedPoint(startA, endA, closest->x),
                    clampedPoint(startB, endB, closest->y)) <= tolerance;
}

}  // namespace vexa
