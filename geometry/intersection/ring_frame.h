#pragma once

#include "transform/matrix.h"
#include "vexakit/types.h"

#include <limits>
#include <optional>
#include <span>

namespace vexa {

/// A coordinate that ends one ring and begins the next in a list of points.
constexpr double kSeparator = std::numeric_limits<double>::max();

inline bool isSeparator(const Point3d& point) {
    return point.x == kSeparator || point.y == kSeparator || point.z == kSeparator;
}

struct Plane {
    Point3d origin;
    /// Of length 1, or zero for points that span no plane.
    Point3d normal;
};

/// The plane through the first point, its normal summed over the triangles of a fan (as Newell's
/// method does from the edges). Nothing needs to be flat or convex.
Plane PolygonNormal(std::span<const Point3d> points);

/// A frame in which a ring lies in z = 0, as nearly as its three points farthest apart tell.
struct RingFrame {
    /// Not of length 1.
    Point3d normal;
    Transform toLocal;
};

/// Nothing for fewer than three points and for points that span no plane.
std::optional<RingFrame> FitRingFrame(std::span<const Point3d> points);

/// Whether two vectors are parallel to 1e-12 of their lengths.
bool areParallel(const Point3d& u, const Point3d& v);

}  // namespace vexa
