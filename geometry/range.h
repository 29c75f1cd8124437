#pragma once

#include "geometry/layout.h"
#include "vexakit/types.h"

#include <span>

namespace vexa {

/// The box of every vertex of an element, folded level by level in the order of the vertices. An
/// empty element has the empty box: low corner +infinity, high corner -infinity.
Range3d runRange(const PointRun& run);
Range3d pathRange(const Path& path);
Range3d pathListRange(const PathList& paths);
Range3d rangeOf(std::span<const Point3d> points);

/// The box of a whole buffer walked as the layout the name tells.
Range3d pointRange(const GeometryBuffer& point);
Range3d lineRange(const GeometryBuffer& line);
Range3d polygonRange(const GeometryBuffer& polygon);
Range3d multiPointRange(const GeometryBuffer& multiPoint);
Range3d multiLineRange(const GeometryBuffer& multiLine);
Range3d multiPolygonRange(const GeometryBuffer& multiPolygon);

}  // namespace vexa
