#pragma once

#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vexa::bench {

/// A geometry before any library has seen it. Parts are the rings of a polygon (closed), the lines of
/// a multilinestring, the polygons of a multipolygon (one ring each); all others have one part.
struct Shape {
    std::uint32_t type;
    std::vector<std::vector<Point3d>> parts;
};

Shape lineOf(std::vector<Point3d> points);
Shape polygonOf(std::vector<Point3d> ring);
Shape pointsOf(std::vector<Point3d> points);

/// Two shapes in the plane z = 0. Their boxes overlap; whether they themselves do is what the name
/// says.
struct ShapePair {
    Shape first;
    Shape second;
};
/// The pair with about so many vertices a side.
using MakePair = ShapePair (*)(std::size_t count);

ShapePair linesSideBySide(std::size_t count);
ShapePair interleavedSpirals(std::size_t count);
ShapePair linesCrossingAtTheEnd(std::size_t count);
ShapePair polygonAndLineAround(std::size_t count);
ShapePair polygonAndLineEnteringAtTheEnd(std::size_t count);
ShapePair neighbourPolygons(std::size_t count);
ShapePair interlockedCombs(std::size_t count);
ShapePair neighbourEnteringAtTheEnd(std::size_t count);
ShapePair polygonAndThousandPointsAround(std::size_t count);
ShapePair polygonAndPointBeside(std::size_t count);
ShapePair multipointsApart(std::size_t count);

// Parts of ten vertices on two grids, each part of one between four of the other; `count` parts.
ShapePair linesOnGrids(std::size_t count);
ShapePair polygonsOnGrids(std::size_t count);
ShapePair polygonsAndLinesOnGrids(std::size_t count);

}  // namespace vexa::bench
