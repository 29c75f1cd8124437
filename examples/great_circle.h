#pragma once

#include "world.h"

#include <cstdint>
#include <vector>

namespace world {

/// The shortest way over the globe between two places, as a linestring of `count` vertices on the
/// plane of longitude and latitude. A way across the date line is refused.
Geometry greatCircle(const Point3d& from, const Point3d& to, std::uint32_t count);

/// The vertices of a linestring.
std::vector<Point3d> verticesOf(const GeometryBuffer& line);

}  // namespace world
