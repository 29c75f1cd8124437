#pragma once

#include "tests/support/geometry_bytes.h"
#include "vexakit/types.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

/// The intersection tests once more, written out step by step: every vertex is looked at, every
/// segment is tried, nothing is skipped. Slow, and easy to check by eye.
namespace vexa::test::model {

// ---- Vectors ------------------------------------------------------------------------------------

inline Point3d difference(const Point3d& a, const Point3d& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline double dot(const Point3d& a, const Point3d& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Point3d cross(const Point3d& a, const Point3d& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double squaredLength(const Point3d& v) {
    return dot(v, v);
}
inline double length(const Point3d& v) {
    return std::sqrt(squaredLength(v));
}
inline Point3d normalised(const Point3d& v) {
    const double size = length(v);
    if (size == 0) return v;
    return {v.x / size, v.y / size, v.z / size};
}
inline Point3d stepAlong(const Point3d& origin, double parameter, const Point3d& direction) {
    return {origin.x + parameter * direction.x, origin.y + parameter * direction.y,
            origin.z + parameter * direction.z};
}
inline bool areParallel(const Point3d& u, const Point3d& v) {
    return squaredLength(cross(u, v)) <= 1e-12 * 1e-12 * squaredLength(u) * squaredLength(v);
}

// ---- Boxes --------------------------------------------------------------------------------------

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Range3d kEmptyBox = {{kInfinity, kInfinity, kInfinity},
                               {-kInfinity, -kInfinity, -kInfinity}};

inline double foldLow(double low, double value) {
    return value >= low ? low : value;
}
inline double foldHigh(double high, double value) {
    return value > high ? value : high;
}
inline Range3d folded(const Range3d& box, const Range3d& other) {
    return {{foldLow(box.low.x, other.low.x), foldLow(box.low.y, other.low.y),
             foldLow(box.low.z, other.low.z)},
            {foldHigh(box.high.x, other.high.x), foldHigh(box.high.y, other.high.y),
             foldHigh(box.high.z, other.high.z)}};
}

/// The first element's box, then the others folded in.
template <class List, class BoxOf>
Range3d boxOfList(const List& list, BoxOf boxOf) {
    if (list.empty()) return kEmptyBox;

    Range3d box = boxOf(list.front());
    for (std::size_t i = 1; i < list.size(); ++i) box = folded(box, boxOf(list[i]));
    return box;
}

inline Range3d boxOfPoint(const Point3d& point) {
    return {point, point};
}
inline Range3d boxOfPoints(const Points& points) {
    return boxOfList(points, boxOfPoint);
}

inline bool rangesOverlap(const Range3d& a, const Range3d& b) {
    return b.high.x >= a.low.x && a.high.x >= b.low.x && b.high.y >= a.low.y &&
           a.high.y >= b.low.y && b.high.z >= a.low.z && a.high.z >= b.low.z;
}

// ---- The plane and the frame of a ring ----------------------------------------------------------

inline bool isSeparator(const Point3d& point) {
    constexpr double kSeparator = std::numeric_limits<double>::max();
    return point.x == kSeparator || point.y == kSeparator || point.z == kSeparator;
}

inline std::vector<Points> splitAtSeparators(const Points& points) {
    std::vector<Points> rings(1);
    for (const Point3d& point : points) {
        if (isSeparator(point)) {
            rings.emplace_back();
        } else {
            rings.back().push_back(point);
        }
    }
    return rings;
}

struct Plane {
    Point3d origin = {0, 0, 0};
    Point3d normal = {0, 0, 0};
};

inline Plane polygonNormal(const Points& points) {
    Plane plane;
    if (points.empty()) return plane;

    plane.origin = points.front();
    if (points.size() < 3) return plane;

    Point3d sum = {0, 0, 0};
    if (points.size() == 3) {
        sum = cross(difference(points[1], points[0]), difference(points[2], points[0]));
    } else {
        for (const Points& fan : splitAtSeparators(points)) {
            for (std::size_t k = 1; k < fan.size(); ++k) {
                const Point3d triangle =
                    cross(difference(fan[k - 1], fan[0]), difference(fan[k], fan[0]));
                sum = {sum.x + triangle.x, sum.y + triangle.y, sum.z + triangle.z};
            }
        }
    }
    plane.normal = normalised(sum);
    return plane;
}

struct Frame {
    bool isFitted = false;
    Point3d normal = {0, 0, 0};  ///< as long as it came out
    Point3d xAxis = {1, 0, 0};
    Point3d yAxis = {0, 1, 0};
    Point3d zAxis = {0, 0, 1};
    Point3d translation = {0, 0, 0};  ///< of the way into the frame
};

inline Point3d intoFrame(const Frame& frame, const Point3d& p) {
    const auto along = [&p](const Point3d& axis, double offset) {
        return axis.x * p.x + axis.y * p.y + axis.z * p.z + offset;
    };
    return {along(frame.xAxis, frame.translation.x), along(frame.yAxis, frame.translation.y),
            along(frame.zAxis, frame.translation.z)};
}

inline Points intoFrame(const Frame& frame, const Points& points) {
    Points local;
    for (const Point3d& point : points) local.push_back(intoFrame(frame, point));
    return local;
}

struct Extent {
    std::size_t least = 0;
    std::size_t greatest = 0;
    double size = 0;
};

template <class CoordinateOf>
Extent extentAlong(const Points& points, CoordinateOf coordinateOf) {
    Extent extent;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double value = coordinateOf(points[i]);
        if (value < coordinateOf(points[extent.least])) {
            extent.least = i;
        } else if (value > coordinateOf(points[extent.greatest])) {
            extent.greatest = i;
        }
    }
    extent.size = coordinateOf(points[extent.greatest]) - coordinateOf(points[extent.least]);
    return extent;
}

inline Extent largestExtent(const Points& points) {
    const Extent x = extentAlong(points, [](const Point3d& p) { return p.x; });
    const Extent y = extentAlong(points, [](const Point3d& p) { return p.y; });
    const Extent z = extentAlong(points, [](const Point3d& p) { return p.z; });
    if (z.size > x.size && z.size > y.size) return z;
    return y.size > x.size ? y : x;
}

inline double largestComponent(const Point3d& v) {
    return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
}

inline Frame fitRingFrame(const Points& points) {
    if (points.size() < 3) return {};

    const Range3d box = boxOfPoints(points);
    const double threshold = 1e-12 * largestComponent(difference(box.high, box.low));
    const Extent extent = largestExtent(points);
    const Point3d start = points[extent.least];
    const Point3d end = points[extent.greatest];
    const Point3d u = normalised(difference(end, start));

    double farthest = 0;
    Point3d offset = {0, 0, 0};
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i == extent.least || i == extent.greatest) continue;
        const Point3d d = difference(points[i], start);
        const double along = dot(d, u);
        const Point3d square = {d.x - along * u.x, d.y - along * u.y, d.z - along * u.z};
        if (squaredLength(square) > farthest) {
            farthest = squaredLength(square);
            offset = square;
        }
    }
    if (!(farthest > threshold * threshold)) return {};

    const Point3d normal = cross(u, offset);
    if (length(normal) == 0) return {};

    const double flat = length(normal) * 0.015625;
    const bool isSteep = std::abs(normal.x) < flat && std::abs(normal.y) < flat;
    const Point3d helper = isSteep ? Point3d{0, 1, 0} : Point3d{0, 0, 1};
    const Point3d x = cross(helper, normal);

    Frame frame;
    frame.isFitted = true;
    frame.normal = normal;
    frame.xAxis = normalised(x);
    frame.yAxis = normalised(cross(normal, x));
    frame.zAxis = normalised(normal);
    frame.translation = {-dot(frame.xAxis, end), -dot(frame.yAxis, end), -dot(frame.zAxis, end)};
    return frame;
}

// ---- Inside, outside, on the boundary -----------------------------------------------------------

constexpr int kInside = 1;
constexpr int kOnBoundary = 0;
constexpr int kOutside = -1;
constexpr int kUndecidable = -2;

/// Counts the crossings of a line through the point with the ring. `side` says how far a vertex is
/// from the line, with a sign, `position` where it is along the line, the point being at 0.
template <class Side, class Position>
int countCrossings(const Points& ring, double tolerance, Side side, Position position) {
    Point3d previous = ring.back();
    double before = side(previous);
    if (std::abs(before) <= tolerance) return kUndecidable;

    bool isOdd = false;
    for (const Point3d& vertex : ring) {
        const double e = side(vertex);
        if (std::abs(e) <= tolerance) return kUndecidable;
        if ((e < 0) != (before < 0)) {
            const double at = position(previous, vertex, -before / (e - before));
            if (std::abs(at) <= tolerance) return kOnBoundary;
            if (at < 0) isOdd = !isOdd;
        }
        previous = vertex;
        before = e;
    }
    return isOdd ? kInside : kOutside;
}

inline int countOnHorizontal(const Point3d& p, const Points& ring, double tolerance) {
    return countCrossings(
        ring, tolerance, [&p](const Point3d& v) { return p.y - v.y; },
        [&p](const Point3d& a, const Point3d& b, double share) {
            return a.x + (b.x - a.x) * share - p.x;
        });
}

inline int countOnVertical(const Point3d& p, const Points& ring, double tolerance) {
    return countCrossings(
        ring, tolerance, [&p](const Point3d& v) { return p.x - v.x; },
        [&p](const Point3d& a, const Point3d& b, double share) {
            return a.y + (b.y - a.y) * share - p.y;
        });
}

inline int countOnRay(const Point3d& p, const Points& ring, double tolerance, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const auto along = [&](const Point3d& v) { return (v.y - p.y) * s + (v.x - p.x) * c; };
    return countCrossings(
        ring, tolerance, [&](const Point3d& v) { return (v.y - p.y) * c - (v.x - p.x) * s; },
        [&](const Point3d& a, const Point3d& b, double share) {
            return along(a) + (along(b) - along(a)) * share;
        });
}

inline int classifyPointInRing(const Point3d& p, const Points& ring, double tolerance) {
    const auto isNear = [&](const Point3d& v) {
        return std::abs(p.x - v.x) <= tolerance && std::abs(p.y - v.y) <= tolerance;
    };
    if (ring.size() < 2) return isNear(ring.front()) ? kOnBoundary : kOutside;

    const int horizontal = countOnHorizontal(p, ring, tolerance);
    if (horizontal != kUndecidable) return horizontal;
    const int vertical = countOnVertical(p, ring, tolerance);
    if (vertical != kUndecidable) return vertical;
    if (std::any_of(ring.begin(), ring.end(), isNear)) return kOnBoundary;

    constexpr double kAngleStep = 0.276234342921378;
    for (double angle = kAngleStep; angle < 10.0; angle += kAngleStep) {
        const int along = countOnRay(p, ring, tolerance, angle);
        if (along != kUndecidable) return along;
    }
    return kUndecidable;
}

inline int classifyPointInRings(const Point3d& p, const Points& points, double tolerance) {
    bool isInside = false;
    for (const Points& ring : splitAtSeparators(points)) {
        if (ring.size() < 2) continue;
        const int side = classifyPointInRing(p, ring, tolerance);
        if (side == kOnBoundary || side == kUndecidable) return side;
        if (side == kInside) isInside = !isInside;
    }
    return isInside ? kInside : kOutside;
}

}  // namespace vexa::test::model
