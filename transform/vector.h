#pragma once

#include "vexakit/types.h"

#include <cmath>

/// Vectors and points as triples. Sums run from left to right: their order fixes their bits.
namespace vexa {

constexpr Point3d operator+(const Point3d& a, const Point3d& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

constexpr Point3d operator-(const Point3d& a, const Point3d& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

constexpr Point3d operator*(const Point3d& a, double factor) {
    return {a.x * factor, a.y * factor, a.z * factor};
}

constexpr Point3d operator/(const Point3d& a, double divisor) {
    return {a.x / divisor, a.y / divisor, a.z / divisor};
}

constexpr double dot(const Point3d& a, const Point3d& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

constexpr Point3d cross(const Point3d& a, const Point3d& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double length(const Point3d& a) {
    return std::sqrt(dot(a, a));
}

inline double distance(const Point3d& a, const Point3d& b) {
    return length(a - b);
}

/// The vector at length 1; a vector of length 0 as it is. Divides by the length: a reciprocal would
/// move points that lie exactly on a grid polygon's edge off it.
inline Point3d unit(const Point3d& a) {
    const double size = length(a);
    return size > 0 ? a / size : a;
}

}  // namespace vexa
