#include "geometry/intersection/small_box.h"
#include "geometry/intersection/small_shapes.h"
#include "geometry/intersection/sure_answers.h"
#include "geometry/intersection/sure_triangle.h"

namespace vexa {

namespace {

/// What a place in the plane of the triangle may be off by, of the largest coordinate.
constexpr double kPlaceError = 0x1p-34;

bool isSureFor(const SureTriangle& triangle, double tolerance, double largest) {
    return triangle.isWellShaped() &&
           triangle.isHigherThan(kHeightsPerError * (tolerance + kPlaceError * largest));
}

Sure bySide(const CornerWeights& weights) {
    if (weights.isClearlyInside()) return Sure::Meeting;
    return weights.isClearlyOutside() ? Sure::Apart : Sure::Unsure;
}

}  // namespace

// The height over the plane is off by some 30 roundings of the coordinates. A place that has passed as
// near the plane keeps its place in it: the frame's plane is tilted by next to nothing.
Sure pointAndTriangle(const Point3d& point, const PathList& polygon, double tolerance) {
    constexpr double kHeightError = 0x1p-46;

    const Point3d* const corners = closedTriangleOf(polygon);
    if (!corners || !(tolerance >= 0)) return Sure::Unsure;

    const SmallBox box = SmallBox::of<3>(corners);
    const SmallBox place = SmallBox::of<1>(&point);
    const double largest = SmallBox::largestOf(box, place);
    if (!isOrdinarySize(largest)) return Sure::Unsure;
    if (!box.overlaps(place)) return Sure::Apart;

    const SureTriangle triangle{corners};
    if (!isSureFor(triangle, tolerance, largest)) return Sure::Unsure;

    const Point3d across = point - triangle.corner;
    const double height = dot(triangle.normal, across);
    const double heightSquare = height * height;
    const double error = kHeightError * largest;
    const double farthest = tolerance + error;
    const double nearest = tolerance - error;
    if (heightSquare > farthest * farthest * triangle.normalSquare) return Sure::Apart;
    if (!(nearest > 0 && heightSquare < nearest * nearest * triangle.normalSquare)) {
        return Sure::Unsure;
    }
    return bySide({dot(triangle.normal, cross(across, triangle.toThird)),
                   dot(triangle.normal, cross(triangle.toSecond, across)), triangle.normalSquare});
}

// The segment stands for its line. At an angle of more than 1/16 with the plane the line cuts it within
// 64 times the largest coordinate, and errors along the line grow no more than 256-fold.
Sure segmentAndTriangle(const Path& segment, const PathList& polygon, double tolerance) {
    constexpr double kLeastSineSquare = 0x1p-8;
    constexpr double kLeastLengthSquare = 0x1p-40;

    const Point3d* const ends = segmentOf(segment);
    const Point3d* const corners = closedTriangleOf(polygon);
    if (!ends || !corners || !(tolerance >= 0)) return Sure::Unsure;

    const SmallBox box = SmallBox::of<3>(corners);
    const SmallBox reach = SmallBox::of<2>(ends);
    const double largest = SmallBox::largestOf(box, reach);
    if (!isOrdinarySize(largest)) return Sure::Unsure;
    if (!box.overlaps(reach)) return Sure::Apart;

    const SureTriangle triangle{corners};
    if (!isSureFor(triangle, tolerance, largest)) return Sure::Unsure;

    const Point3d along = ends[1] - ends[0];
    const double lengthSquare = dot(along, along);
    if (!(lengthSquare >= kLeastLengthSquare * largest * largest)) return Sure::Unsure;

    const double climb = dot(triangle.normal, along);
    if (!(climb * climb >= kLeastSineSquare * lengthSquare * triangle.normalSquare)) {
        return Sure::Unsure;
    }
    const Point3d moment = cross(along, ends[0] - triangle.corner);
    return bySide({dot(triangle.toThird, moment), -dot(triangle.toSecond, moment), climb});
}

}  // namespace vexa
