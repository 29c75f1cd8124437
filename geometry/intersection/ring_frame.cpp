#include "geometry/intersection/ring_frame.h"

#include "geometry/intersection/stretches.h"
#include "geometry/range.h"
#include "platform/vector_width.h"
#include "transform/vector.h"

#include <algorithm>
#include <cmath>

namespace vexa {

namespace {

constexpr double kRelativeThreshold = 1e-12;
constexpr double kAxisThreshold = 1.0 / 64;

Point3d fanNormal(std::span<const Point3d> points) {
    Point3d sum = {0, 0, 0};
    const Point3d* apex = nullptr;
    for (const Point3d& point : points) {
        if (isSeparator(point)) {
            apex = nullptr;
        } else if (!apex) {
            apex = &point;
        } else {
            sum = sum + cross((&point)[-1] - *apex, point - *apex);
        }
    }
    return sum;
}

using Coordinate = double Point3d::*;

/// The points that lie farthest to both sides along an axis; the first ones among equals.
struct Extremes {
    const Point3d* least;
    const Point3d* greatest;
    double extent;
};

Extremes extremesAlong(Coordinate axis, std::span<const Point3d> points) {
    const Point3d* least = &points.front();
    const Point3d* greatest = least;
    for (const Point3d& point : points.subspan(1)) {
        if (point.*axis < least->*axis) {
            least = &point;
        } else if (point.*axis > greatest->*axis) {
            greatest = &point;
        }
    }
    return {least, greatest, greatest->*axis - least->*axis};
}

Extremes widestExtremes(std::span<const Point3d> points) {
    const Extremes x = extremesAlong(&Point3d::x, points);
    const Extremes y = extremesAlong(&Point3d::y, points);
    const Extremes z = extremesAlong(&Point3d::z, points);
    if (z.extent > x.extent && z.extent > y.extent) return z;
    return y.extent > x.extent ? y : x;
}

/// The same where all coordinates are plain numbers: their range tells the extents.
Extremes widestExtremes(std::span<const Point3d> points, const Range3d& range) {
    const Point3d extent = range.high - range.low;
    if (extent.z > extent.x && extent.z > extent.y) return extremesAlong(&Point3d::z, points);
    return extremesAlong(extent.y > extent.x ? &Point3d::y : &Point3d::x, points);
}

Point3d offsetFrom(const Point3d& origin, const Point3d& direction, const Point3d& point) {
    const Point3d across = point - origin;
    return across - direction * dot(across, direction);
}

/// The offset from a line of the point farthest from it; the first among equals.
Point3d farthestOffset(std::span<const Point3d> points, const Extremes& line,
                       const Point3d& direction) {
    Point3d farthest = {0, 0, 0};
    double farthestSquare = -1;
    for (const Point3d& point : points) {
        if (&point == line.least || &point == line.greatest) continue;

        const Point3d offset = offsetFrom(*line.least, direction, point);
        const double square = dot(offset, offset);
        if (square > farthestSquare) {
            farthestSquare = square;
            farthest = offset;
        }
    }
    return farthest;
}

constexpr std::size_t kBlock = 64;

// Written so that a compiler makes vectors of it.
[[gnu::always_inline]] inline double largestSquare(double* squares, const Point3d* points,
                                                   std::size_t count, const Point3d& origin,
                                                   const Point3d& direction) {
    const Point3d from = origin;
    const Point3d along = direction;
    for (std::size_t i = 0; i < count; ++i) {
        const Point3d offset = offsetFrom(from, along, points[i]);
        squares[i] = dot(offset, offset);
    }
    double largest = -1;
    for (std::size_t i = 0; i < count; ++i) largest = squares[i] > largest ? squares[i] : largest;
    return largest;
}

using LargestSquare = double (*)(double* squares, const Point3d* points, std::size_t count,
                                 const Point3d& origin, const Point3d& direction);

double largestSquarePlainly(double* squares, const Point3d* points, std::size_t count,
                            const Point3d& origin, const Point3d& direction) {
    return largestSquare(squares, points, count, origin, direction);
}
#if VEXAKIT_HAS_WIDE_VECTORS
VEXAKIT_AVX512 double largestSquareByAvx512(double* squares, const Point3d* points,
                                            std::size_t count, const Point3d& origin,
                                            const Point3d& direction) {
    return largestSquare(squares, points, count, origin, direction);
}
#endif

LargestSquare largestSquareOfMachine() {
#if VEXAKIT_HAS_WIDE_VECTORS
    if (platform::vectorWidth() == platform::VectorWidth::Avx512) return largestSquareByAvx512;
#endif
    return largestSquarePlainly;
}

/// The same for plain coordinates, block by block. The two ends of the line, which are not to count, are off
/// it by a rounding at most: where that is the most, a ring has no frame either way.
Point3d farthestOffsetByBlocks(std::span<const Point3d> points, const Point3d& origin,
                               const Point3d& direction) {
    const LargestSquare largestOf = largestSquareOfMachine();
    double squares[kBlock];
    double farthestSquare = -1;
    const Point3d* farthest = &points.front();
    for (std::size_t first = 0; first < points.size(); first += kBlock) {
        const std::size_t count = std::min(kBlock, points.size() - first);
        const double largest = largestOf(squares, &points[first], count, origin, direction);
        if (!(largest > farthestSquare)) continue;
        farthestSquare = largest;
        farthest = &points[first] + (std::find(squares, squares + count, largest) - squares);
    }
    return offsetFrom(origin, direction, *farthest);
}

double largestExtent(const Range3d& box) {
    const Point3d diagonal = box.high - box.low;
    return std::max({std::fabs(diagonal.x), std::fabs(diagonal.y), std::fabs(diagonal.z)});
}

/// The arbitrary-axis rule: any normal gets its x axis from the world's z axis, or from the y axis
/// where the normal is nearly vertical.
Transform frameAround(const Point3d& origin, const Point3d& normal) {
    const double threshold = length(normal) * kAxisThreshold;
    const bool isVertical = std::fabs(normal.x) < threshold && std::fabs(normal.y) < threshold;
    const Point3d helper = isVertical ? Point3d{0, 1, 0} : Point3d{0, 0, 1};
    const Point3d xAxis = cross(helper, normal);
    return frameFromAxes(origin, unit(xAxis), unit(cross(normal, xAxis)), unit(normal));
}

}  // namespace

Plane PolygonNormal(std::span<const Point3d> points) {
    if (points.empty()) return {};
    const Point3d& origin = points.front();
    if (points.size() < 3) return {origin, {0, 0, 0}};
    if (points.size() == 3) return {origin, unit(cross(points[1] - origin, points[2] - origin))};
    return {origin, unit(fanNormal(points))};
}

std::optional<RingFrame> FitRingFrame(std::span<const Point3d> points) {
    if (points.size() < 3) return std::nullopt;

    const std::optional<Range3d> plain = plainRange(points);
    const double threshold = kRelativeThreshold * largestExtent(plain ? *plain : rangeOf(points));
    const Extremes line = plain ? widestExtremes(points, *plain) : widestExtremes(points);
    const Point3d direction = unit(*line.greatest - *line.least);
    const Point3d offset = plain ? farthestOffsetByBlocks(points, *line.least, direction)
                                 : farthestOffset(points, line, direction);
    if (!(dot(offset, offset) > threshold * threshold)) return std::nullopt;

    const Point3d normal = cross(direction, offset);
    if (length(normal) == 0) return std::nullopt;
    return RingFrame{normal, invertRigidTransform(frameAround(*line.greatest, normal))};
}

bool areParallel(const Point3d& u, const Point3d& v) {
    const Point3d across = cross(u, v);
    return dot(across, across) <= kRelativeThreshold * kRelativeThreshold * dot(u, u) * dot(v, v);
}

}  // namespace vexa
