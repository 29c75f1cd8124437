#include "geometry/layout.h"
#include "vexakit/intersection.h"

using namespace vexa;

namespace {

using PairTest = uint32_t (*)(const GeometryBuffer*, const GeometryBuffer*, double, uint32_t*);

constexpr std::uint32_t kTypes = VEXA_MULTIPOLYGON;

/// By the lower type and the higher one, both counted from the point; the lower goes first.
constexpr PairTest kPairTests[kTypes][kTypes] = {
    {vexaWKB_intersectPointPoint, vexaWKB_intersectPointLineString, vexaWKB_intersectPointPolygon,
     vexaWKB_intersectPointMultiPoint, vexaWKB_intersectPointMultiLineString,
     vexaWKB_intersectPointMultiPolygon},
    {nullptr, vexaWKB_intersectLineStringLineString, vexaWKB_intersectLineStringPolygon,
     vexaWKB_intersectLineStringMultiPoint, vexaWKB_intersectLineStringMultiLineString,
     vexaWKB_intersectLineStringMultiPolygon},
    {nullptr, nullptr, vexaWKB_intersectPolygonPolygon, vexaWKB_intersectPolygonMultiPoint,
     vexaWKB_intersectPolygonMultiLineString, vexaWKB_intersectPolygonMultiPolygon},
    {nullptr, nullptr, nullptr, vexaWKB_intersectMultiPointMultiPoint,
     vexaWKB_intersectMultiPointMultiLineString, vexaWKB_intersectMultiPointMultiPolygon},
    {nullptr, nullptr, nullptr, nullptr, vexaWKB_intersectMultiLineStringMultiLineString,
     vexaWKB_intersectMultiLineStringMultiPolygon},
    {nullptr, nullptr, nullptr, nullptr, nullptr, vexaWKB_intersectMultiPolygonMultiPolygon},
};

bool isTested(std::uint32_t type) {
    return type >= VEXA_POINT && type <= kTypes;
}

/// Any geometry against one that is taken for the given type. Of two of one type it is the typed one
/// that goes first.
std::uint32_t intersectTyped(std::uint32_t type, const GeometryBuffer* other,
                             const GeometryBuffer* typed, double tolerance, std::uint32_t* result) {
    if (!other || !typed || !result || !isTested(other->type)) return kFailure;

    return other->type < type
               ? kPairTests[other->type - 1][type - 1](other, typed, tolerance, result)
               : kPairTests[type - 1][other->type - 1](typed, other, tolerance, result);
}

}  // namespace

uint32_t vexaWKB_intersectGeometry(const GeometryBuffer* first, const GeometryBuffer* second,
                                   double tolerance, uint32_t* result) {
    if (!first || !second || !result || !isTested(first->type)) return kFailure;

    return intersectTyped(first->type, second, first, tolerance, result);
}

uint32_t vexaWKB_intersectGeometryPoint(const GeometryBuffer* other, const GeometryBuffer* point,
                                        double tolerance, uint32_t* result) {
    return intersectTyped(VEXA_POINT, other, point, tolerance, result);
}

uint32_t vexaWKB_intersectGeometryLineString(const GeometryBuffer* other,
                                             const GeometryBuffer* line, double tolerance,
                                             uint32_t* result) {
    return intersectTyped(VEXA_LINESTRING, other, line, tolerance, result);
}

uint32_t vexaWKB_intersectGeometryPolygon(const GeometryBuffer* other,
                                          const GeometryBuffer* polygon, double tolerance,
                                          uint32_t* result) {
    return intersectTyped(VEXA_POLYGON, other, polygon, tolerance, result);
}

uint32_t vexaWKB_intersectGeometryMultiPoint(const GeometryBuffer* other,
                                             const GeometryBuffer* points, double tolerance,
                                             uint32_t* result) {
    return intersectTyped(VEXA_MULTIPOINT, other, points, tolerance, result);
}

uint32_t vexaWKB_intersectGeometryMultiLineString(const GeometryBuffer* other,
                                                  const GeometryBuffer* lines, double tolerance,
                                                  uint32_t* result) {
    return intersectTyped(VEXA_MULTILINESTRING, other, lines, tolerance, result);
}

uint32_t vexaWKB_intersectGeometryMultiPolygon(const GeometryBuffer* other,
                                               const GeometryBuffer* polygons, double tolerance,
                                               uint32_t* result) {
    return intersectTyped(VEXA_MULTIPOLYGON, other, polygons, tolerance, result);
}
