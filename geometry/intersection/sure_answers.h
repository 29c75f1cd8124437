#pragma once

#include "geometry/layout.h"

/// Single pairs of the smallest shapes: what the signs of a few products tell where rounding cannot
/// matter, without frames. Whatever is in doubt is left to the exact way.
namespace vexa {

enum class Sure { Apart, Meeting, Unsure };

/// A segment is a line of one run of two points; a triangle is a polygon of one ring in one run, of four
/// points that end where they start. Every other shape is unsure at once.
Sure segmentAndSegment(const Path& first, const Path& second, double tolerance);
Sure pointAndTriangle(const Point3d& point, const PathList& polygon, double tolerance);
Sure segmentAndTriangle(const Path& segment, const PathList& polygon, double tolerance);
/// Polygons have a tolerance of their own.
Sure triangleAndTriangle(const PathList& first, const PathList& second);

}  // namespace vexa
