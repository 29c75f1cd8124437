#pragma once

#include "tests/support/intersection_model.h"
#include "vexakit/intersection.h"

#include <cstdint>
#include <limits>
#include <ostream>
#include <utility>

namespace vexa::test {

/// The shape of all 28 exported tests.
using IntersectionTest = std::uint32_t (*)(const GeometryBuffer* first,
                                           const GeometryBuffer* second, double tolerance,
                                           std::uint32_t* result);

struct PairTest {
    const char* name;
    std::uint32_t first;
    std::uint32_t second;
    IntersectionTest test;
};

constexpr PairTest kPairTests[] = {
    {"PointPoint", 1, 1, vexaWKB_intersectPointPoint},
    {"PointLineString", 1, 2, vexaWKB_intersectPointLineString},
    {"PointPolygon", 1, 3, vexaWKB_intersectPointPolygon},
    {"PointMultiPoint", 1, 4, vexaWKB_intersectPointMultiPoint},
    {"PointMultiLineString", 1, 5, vexaWKB_intersectPointMultiLineString},
    {"PointMultiPolygon", 1, 6, vexaWKB_intersectPointMultiPolygon},
    {"LineStringLineString", 2, 2, vexaWKB_intersectLineStringLineString},
    {"LineStringPolygon", 2, 3, vexaWKB_intersectLineStringPolygon},
    {"LineStringMultiPoint", 2, 4, vexaWKB_intersectLineStringMultiPoint},
    {"LineStringMultiLineString", 2, 5, vexaWKB_intersectLineStringMultiLineString},
    {"LineStringMultiPolygon", 2, 6, vexaWKB_intersectLineStringMultiPolygon},
    {"PolygonPolygon", 3, 3, vexaWKB_intersectPolygonPolygon},
    {"PolygonMultiPoint", 3, 4, vexaWKB_intersectPolygonMultiPoint},
    {"PolygonMultiLineString", 3, 5, vexaWKB_intersectPolygonMultiLineString},
    {"PolygonMultiPolygon", 3, 6, vexaWKB_intersectPolygonMultiPolygon},
    {"MultiPointMultiPoint", 4, 4, vexaWKB_intersectMultiPointMultiPoint},
    {"MultiPointMultiLineString", 4, 5, vexaWKB_intersectMultiPointMultiLineString},
    {"MultiPointMultiPolygon", 4, 6, vexaWKB_intersectMultiPointMultiPolygon},
    {"MultiLineStringMultiLineString", 5, 5, vexaWKB_intersectMultiLineStringMultiLineString},
    {"MultiLineStringMultiPolygon", 5, 6, vexaWKB_intersectMultiLineStringMultiPolygon},
    {"MultiPolygonMultiPolygon", 6, 6, vexaWKB_intersectMultiPolygonMultiPolygon},
};

/// By the type of the second argument, from 1 on.
constexpr IntersectionTest kTypedEntries[] = {
    vexaWKB_intersectGeometryPoint,           vexaWKB_intersectGeometryLineString,
    vexaWKB_intersectGeometryPolygon,         vexaWKB_intersectGeometryMultiPoint,
    vexaWKB_intersectGeometryMultiLineString, vexaWKB_intersectGeometryMultiPolygon,
};

/// What a test returned and what it left in the result.
struct Asked {
    std::uint32_t status;
    std::uint32_t result;
    bool operator==(const Asked&) const = default;
};

inline void PrintTo(const Asked& asked, std::ostream* out) {
    *out << "status " << asked.status << ", result " << asked.result;
}

constexpr Asked kHit = {0, 1};
constexpr Asked kMiss = {0, 0};

inline Asked ask(IntersectionTest test, const Bytes& first, const Bytes& second, double tolerance,
                 std::uint32_t before = 0) {
    Asked asked = {0xBAD, before};
    asked.status = test(first.geometry(), second.geometry(), tolerance, &asked.result);
    return asked;
}

inline Asked ask(IntersectionTest test, const Shape& first, const Shape& second, double tolerance,
                 std::uint32_t before = 0) {
    return ask(test, bufferOf(first), bufferOf(second), tolerance, before);
}

/// By the general entry.
inline Asked ask(const Shape& first, const Shape& second, double tolerance,
                 std::uint32_t before = 0) {
    return ask(vexaWKB_intersectGeometry, first, second, tolerance, before);
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();

// ---- Shapes -------------------------------------------------------------------------------------

/// Four corners from (x, y) on, and the first again.
inline Points square(double x, double y, double side, double z = 0) {
    return {{x, y, z}, {x + side, y, z}, {x + side, y + side, z}, {x, y + side, z}, {x, y, z}};
}
inline Shape squareShape(double x, double y, double side, double z = 0) {
    return polygonShape({{square(x, y, side, z)}});
}
inline Shape line(Points vertices) {
    return lineShape({std::move(vertices)});
}

/// The same geometry in a multi-part one.
inline Shape asMulti(const Shape& shape) {
    if (shape.type == VEXA_POINT) return multipointShape(shape.points);
    if (shape.type == VEXA_LINESTRING) return multilineShape(shape.parts.front());
    return multipolygonShape(shape.parts);
}

}  // namespace vexa::test
