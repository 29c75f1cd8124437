#ifndef VEXAKIT_INTERSECTION_H
#define VEXAKIT_INTERSECTION_H

#include "vexakit/export.h"
#include "vexakit/types.h"

/**
 * Whether two geometry buffers share a point, within a tolerance.
 *
 * Every function takes
 * @param[in]     tolerance  an absolute distance in coordinate units, taken as it is
 * @param[in,out] result     receives 1 (they intersect) or 0 (they do not). Set it to 0 before the
 *                           call: where nothing decides, it is left as it was, and a 1 that it holds
 *                           may be taken for a hit.
 * @return 0; 0x8000 for a null pointer (the result is untouched) or where memory is lacking.
 *
 * The buffers are only read, and only the vertices count: z takes part in everything. First of all the
 * ranges of the two are compared, not widened by the tolerance: where they do not overlap the result
 * is 0. What then counts as intersecting:
 *
 * - point and point: equal coordinates. The tolerance is not used.
 * - point and line: a distance to a segment within the tolerance.
 * - point and polygon: a distance to the outer ring's plane within the tolerance, and inside or on the
 *   ring, but neither inside nor on a hole.
 * - line and line: two segments whose lines come closest within the tolerance, each point moved to the
 *   nearer end where it lies beyond its segment. Parallel segments never intersect, even where they
 *   overlap.
 * - line and polygon: a segment that is not parallel to the polygon's plane stands for its whole line.
 *   One in the plane intersects where an end is inside or on the ring or an edge is crossed. A hole
 *   that the segment meets lets it go.
 * - polygon and polygon: the outer rings alone, with a tolerance of their own: 1e-12 of their size. A
 *   polygon in another's hole intersects it.
 *
 * A ring whose points span no plane, such as one point repeated, is looked at in the world's x and y
 * alone, whatever plane it lies in.
 *
 * Answers are delicate for segments that lie in a tilted plane and for a tolerance of 0 between
 * crossing segments: rounding decides. A tolerance of 1e-14 of the coordinates' size finds nearly all
 * crossings, 0 about a quarter.
 */

VEXA_BEGIN_DECLS

/** Any two buffers of type 1 to 6, in any order; 0x8000 also for another type. */
VEXA_API uint32_t vexaWKB_intersectGeometry(const GeometryBuffer* first,
                                            const GeometryBuffer* second, double tolerance,
                                            uint32_t* result);

/** A buffer of type 1 to 6 (0x8000 for another) and one that is taken for the type in the function's
 *  name, without a look at its type word. */
VEXA_API uint32_t vexaWKB_intersectGeometryPoint(const GeometryBuffer* other,
                                                 const GeometryBuffer* point, double tolerance,
                                                 uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectGeometryLineString(const GeometryBuffer* other,
                                                      const GeometryBuffer* line, double tolerance,
                                                      uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectGeometryPolygon(const GeometryBuffer* other,
                                                   const GeometryBuffer* polygon, double tolerance,
                                                   uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectGeometryMultiPoint(const GeometryBuffer* other,
                                                      const GeometryBuffer* points,
                                                      double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectGeometryMultiLineString(const GeometryBuffer* other,
                                                           const GeometryBuffer* lines,
                                                           double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectGeometryMultiPolygon(const GeometryBuffer* other,
                                                        const GeometryBuffer* polygons,
                                                        double tolerance, uint32_t* result);

/** Two buffers that are taken for the types in the function's name. Lines against polygons, points
 *  against multi-part lines and polygons of a multipoint, and a polygon against a multipolygon return 0
 *  where memory is lacking. */
VEXA_API uint32_t vexaWKB_intersectPointPoint(const GeometryBuffer* first,
                                              const GeometryBuffer* second, double tolerance,
                                              uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectPointLineString(const GeometryBuffer* point,
                                                   const GeometryBuffer* line, double tolerance,
                                                   uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectPointPolygon(const GeometryBuffer* point,
                                                const GeometryBuffer* polygon, double tolerance,
                                                uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectPointMultiPoint(const GeometryBuffer* point,
                                                   const GeometryBuffer* points, double tolerance,
                                                   uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectPointMultiLineString(const GeometryBuffer* point,
                                                        const GeometryBuffer* lines,
                                                        double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectPointMultiPolygon(const GeometryBuffer* point,
                                                     const GeometryBuffer* polygons,
                                                     double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectLineStringLineString(const GeometryBuffer* first,
                                                        const GeometryBuffer* second,
                                                        double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectLineStringPolygon(const GeometryBuffer* line,
                                                     const GeometryBuffer* polygon,
                                                     double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectLineStringMultiPoint(const GeometryBuffer* line,
                                                        const GeometryBuffer* points,
                                                        double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectLineStringMultiLineString(const GeometryBuffer* line,
                                                             const GeometryBuffer* lines,
                                                             double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectLineStringMultiPolygon(const GeometryBuffer* line,
                                                          const GeometryBuffer* polygons,
                                                          double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectPolygonPolygon(const GeometryBuffer* first,
                                                  const GeometryBuffer* second, double tolerance,
                                                  uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectPolygonMultiPoint(const GeometryBuffer* polygon,
                                                     const GeometryBuffer* points, double tolerance,
                                                     uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectPolygonMultiLineString(const GeometryBuffer* polygon,
                                                          const GeometryBuffer* lines,
                                                          double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectPolygonMultiPolygon(const GeometryBuffer* polygon,
                                                       const GeometryBuffer* polygons,
                                                       double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectMultiPointMultiPoint(const GeometryBuffer* first,
                                                        const GeometryBuffer* second,
                                                        double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectMultiPointMultiLineString(const GeometryBuffer* points,
                                                             const GeometryBuffer* lines,
                                                             double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectMultiPointMultiPolygon(const GeometryBuffer* points,
                                                          const GeometryBuffer* polygons,
                                                          double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectMultiLineStringMultiLineString(const GeometryBuffer* first,
                                                                  const GeometryBuffer* second,
                                                                  double tolerance,
                                                                  uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectMultiLineStringMultiPolygon(const GeometryBuffer* lines,
                                                               const GeometryBuffer* polygons,
                                                               double tolerance, uint32_t* result);
VEXA_API uint32_t vexaWKB_intersectMultiPolygonMultiPolygon(const GeometryBuffer* first,
                                                            const GeometryBuffer* second,
                                                            double tolerance, uint32_t* result);

VEXA_END_DECLS

#endif
