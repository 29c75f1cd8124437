#ifndef VEXAKIT_TRANSFORM_H
#define VEXAKIT_TRANSFORM_H

#include "vexakit/export.h"
#include "vexakit/types.h"

/**
 * Affine transforms: making, combining and applying them, to points and to geometry buffers.
 *
 * Every function returns a status: 0, or 0x8000 for a null pointer, with nothing written. Angles are
 * radians. Formulas are evaluated in the order written here, without contraction, so that every
 * target gives the same bits (but for the sine and cosine of the platform's mathematics library).
 */

VEXA_BEGIN_DECLS

/** angle * 57.29577951308232 (180/pi). */
VEXA_API uint32_t transform_radians2degrees(double angle, double* result);

/** angle * 0.017453292519943295 (pi/180). */
VEXA_API uint32_t transform_degrees2radians(double angle, double* result);

/** The transform that moves nothing. */
VEXA_API uint32_t transform_initIdentity(Transform* transform);

/** Moves every point by `delta`. */
VEXA_API uint32_t transform_initTranslation(Transform* transform, const Point3d* delta);

/**
 * Scales along the axes.
 *
 * @param[out] transform   linear part: the components of `scale` on the diagonal
 * @param[in]  scale       factors along x, y and z
 * @param[in]  fixedPoint  the point that stays where it is
 */
VEXA_API uint32_t transform_initScale(Transform* transform, const Point3d* scale,
                                      const Point3d* fixedPoint);

/** Takes a 3-by-3 matrix, row by row, as it is given: nothing is checked or orthonormalised. The
 *  translation is 0. */
VEXA_API uint32_t transform_initRotation(Transform* transform, double r00, double r01, double r02,
                                         double r10, double r11, double r12, double r20, double r21,
                                         double r22);

/**
 * Rotates about the line through two points, right-handed about the direction from the first to
 * the second.
 *
 * @param[out] transform   with the unit direction (x, y, z), c and s the cosine and sine of the angle
 *                         and C = 1 - c, the rows of the linear part are (xxC + c, xyC - zs, xzC + ys),
 *                         (xyC + zs, yyC + c, yzC - xs), (xzC - ys, yzC + xs, zzC + c); the identity
 *                         where the two points are equal or their distance is not a number
 * @param[in]  linePoint0  stays where it is
 * @param[in]  linePoint1  another point of the line
 * @param[in]  angle       radians
 */
VEXA_API uint32_t transform_initRotationAboutLine(Transform* transform, const Point3d* linePoint0,
                                                  const Point3d* linePoint1, double angle);

/**
 * Reflects in a plane: x maps to x - 2 n (n . (x - planePoint)).
 *
 * @param[out] transform    the identity where the normal's length is 0 or not a number
 * @param[in]  planePoint   any point of the plane
 * @param[in]  planeNormal  its normal, of any length
 */
VEXA_API uint32_t transform_initMirror(Transform* transform, const Point3d* planePoint,
                                       const Point3d* planeNormal);

/** Keeps the linear part and replaces the translation, whatever it was, so that `point` maps to
 *  itself. */
VEXA_API uint32_t transform_setFixedPoint(Transform* transform, const Point3d* point);

/** result = first * second: applies `second`, then `first`. The result may be either of them. */
VEXA_API uint32_t transform_multiply(const Transform* first, const Transform* second,
                                     Transform* result);

/** Transforms one point in place. */
VEXA_API uint32_t transform_point(const Transform* transform, Point3d* point);

/**
 * Transforms an array of points in place.
 *
 * @param[in]     transform  read once, before any point is written: it may lie among the points
 * @param[in]     count      points; its low 32 bits count, as a signed number: of 2^31 none is
 *                           transformed, of 2^32 + 2 two
 * @param[in,out] points     array of `count` points
 */
VEXA_API uint32_t transform_pointArray(const Transform* transform, uint64_t count, Point3d* points);

/**
 * Transforms every vertex of a buffer in place; counts, sizes and header stay as they are.
 *
 * @param[in]     transform  the transform
 * @param[in,out] geometry   a buffer of the function's type; the type word is not looked at
 *
 * A run of 2^31 vertices or more is left as it is, since its count is read as a signed number.
 * The polygon and the multilinestring function are one.
 */
VEXA_API uint32_t vexaWKB_transformPoint(const Transform* transform, GeometryBuffer* geometry);
VEXA_API uint32_t vexaWKB_transformLine(const Transform* transform, GeometryBuffer* geometry);
VEXA_API uint32_t vexaWKB_transformPolygon(const Transform* transform, GeometryBuffer* geometry);
VEXA_API uint32_t vexaWKB_transformMultiPoint(const Transform* transform, GeometryBuffer* geometry);
VEXA_API uint32_t vexaWKB_transformMultiLine(const Transform* transform, GeometryBuffer* geometry);

/**
 * Transforms the first ring of each polygon of a multipolygon in place.
 *
 * @return 0; 0x8000 for a null pointer or where memory is lacking, with nothing transformed.
 *
 * Further rings are transformed only while the word that follows a ring exceeds the number of rings
 * done: a polygon of one ring that stands before one of two or more has rings of that one transformed
 * with it, and so twice in all. Buffers made by `vexaWKB_createMultiPolygon`,
 * `vexaWKB_addPolyToMultiPoly` and from text have one ring a polygon, and each is transformed once.
 * Where padding words are not 0, the walk over a hand-made buffer may take them for counts and change
 * what stands there; it stays within the list of polygons.
 */
VEXA_API uint32_t vexaWKB_transformMultiPolygon(const Transform* transform,
                                                GeometryBuffer* geometry);

/** Transforms a buffer of type 1 to 6 by its type's function; 0x8000 also for any other type. */
VEXA_API uint32_t vexaWKB_transformGeometry(const Transform* transform, GeometryBuffer* geometry);

VEXA_END_DECLS

#endif
