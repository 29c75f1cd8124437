#pragma once

#include "bench/shapes.h"
#include "vexakit/vexakit.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace vexa::bench {

struct Destroy {
    void operator()(GeometryBuffer* geometry) const { vexaWKB_destroyGeom(&geometry); }
};
using Geometry = std::unique_ptr<GeometryBuffer, Destroy>;
/// For rounds, which are copied.
using SharedGeometry = std::shared_ptr<GeometryBuffer>;

/// The shape as the writer would write it, each number with so many significant digits.
std::string textOf(const Shape& shape, int digits);

/// Ends the program where the text is not understood.
Geometry parsed(const std::string& text);

/// The shape's buffer, vertex for vertex.
Geometry geometryOf(const Shape& shape);

/// The numbers of a text that was written with so many digits: those that a parse gives back.
std::vector<Point3d> rounded(std::vector<Point3d> points, int digits);

/// Points all over the globe, at heights to match; always the same ones.
std::vector<Point3d> wanderingPoints(std::size_t count);

/// Cut into parts of so many points.
std::vector<std::vector<Point3d>> inParts(const std::vector<Point3d>& points, std::size_t length);

}  // namespace vexa::bench
