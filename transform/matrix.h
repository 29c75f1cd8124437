#pragma once

#include "vexakit/types.h"

#include <cstdint>

namespace vexa {

constexpr Transform kIdentity = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}};

/// m0 x + m1 y + m2 z + m3, and so on. `out` may be `in`.
void applyTransformToPoint(const Transform& transform, Point3d* out, const Point3d* in);

/// The same for a packed array; nothing for a count below 1. `out` may be `in`.
void applyTransformToPoints(const Transform& transform, Point3d* out, const Point3d* in,
                            std::int32_t count);

/// The inverse of a transform whose linear part is orthonormal, which is not checked.
Transform invertRigidTransform(const Transform& transform);

/// The frame with the three axes as its columns: takes frame coordinates to world coordinates.
Transform frameFromAxes(const Point3d& origin, const Point3d& xAxis, const Point3d& yAxis,
                        const Point3d& zAxis);

}  // namespace vexa
