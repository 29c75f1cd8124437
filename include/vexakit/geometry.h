#ifndef VEXAKIT_GEOMETRY_H
#define VEXAKIT_GEOMETRY_H

#include "vexakit/export.h"
#include "vexakit/types.h"

/**
 * Geometry buffers: making, growing, copying, freeing, measuring and reading them.
 *
 * Every function returns a status: 0, or 0x8000 for every failure. Outputs are written on success
 * only, except where a function says otherwise. Point arrays are copied in both directions; the
 * library keeps no pointer to them and hands out none into a buffer. A function that names a
 * type in its name walks the buffer as that type; only the accessors check the `type` word.
 */

VEXA_BEGIN_DECLS

/* ---- Making and freeing ---------------------------------------------------------------------- */

/**
 * Makes a point.
 *
 * @param[in]  point   its coordinates
 * @param[out] result  receives a 40-byte buffer, which the caller frees with
 *                     `vexaWKB_destroyGeom`; written on success only
 * @return 0; 0x8000 for a null pointer or a failed allocation.
 */
VEXA_API uint32_t vexaWKB_createPoint(const Point3d* point, GeometryBuffer** result);

/**
 * Makes a linestring of one run.
 *
 * @param[in]  points  array of `count` vertices of 24 bytes; copied
 * @param[in]  count   vertices, at least 1
 * @param[out] result  receives a buffer of 32 + 24 * count bytes, which the caller frees with
 *                     `vexaWKB_destroyGeom`; written on success only
 * @return 0; 0x8000 for a null pointer, a zero count, more bytes than 32 bits hold or a failed
 *         allocation.
 */
VEXA_API uint32_t vexaWKB_createLine(const Point3d* points, uint32_t count,
                                     GeometryBuffer** result);

/** Makes a polygon whose one ring has the given vertices: 40 + 24 * count bytes. Otherwise as
 *  `vexaWKB_createLine`; the ring is neither closed nor checked. */
VEXA_API uint32_t vexaWKB_createPolygon(const Point3d* points, uint32_t count,
                                        GeometryBuffer** result);

/** Makes a multipoint: 24 + 24 * count bytes, in a block 24 bytes larger. Otherwise as
 *  `vexaWKB_createLine`. */
VEXA_API uint32_t vexaWKB_createMultiPoint(const Point3d* points, uint32_t count,
                                           GeometryBuffer** result);

/** Makes a multilinestring of one line: 40 + 24 * count bytes. Otherwise as
 *  `vexaWKB_createLine`. */
VEXA_API uint32_t vexaWKB_createMultiLine(const Point3d* points, uint32_t count,
                                          GeometryBuffer** result);

/** Makes a multipolygon of one polygon of one ring: 48 + 24 * count bytes. Otherwise as
 *  `vexaWKB_createLine`. Its `size` word is 0 (to be computed) until the first
 *  `vexaWKB_addPolyToMultiPoly`. */
VEXA_API uint32_t vexaWKB_createMultiPolygon(const Point3d* points, uint32_t count,
                                             GeometryBuffer** result);

/**
 * Copies a geometry buffer.
 *
 * @param[in]  source  any geometry buffer
 * @param[out] result  receives the copy, which the caller frees with `vexaWKB_destroyGeom`;
 *                     written on success only
 * @return 0; 0x8000 for a null pointer, a size that cannot be told or a failed allocation.
 *
 * As many bytes are copied as `vexaWKB_getSize` tells: a buffer with a stale `size` word, as the
 * appends leave it, is cut to that size although its counts say more. Such a copy must not be
 * walked; set the word with `vexaWKB_calculateSize` first to copy everything.
 */
VEXA_API uint32_t vexaWKB_copy(const GeometryBuffer* source, GeometryBuffer** result);

/**
 * Frees a geometry buffer.
 *
 * @param[in,out] geometry  the caller's handle; set to null
 * @return 0; 0x8000 for a null pointer or a null handle.
 *
 * Both names are one function.
 */
VEXA_API uint32_t vexaWKB_destroyGeom(GeometryBuffer** geometry);
VEXA_API uint32_t vexaWKB_destroyGeomCollection(GeometryBuffer** geometry);

/* ---- Growing --------------------------------------------------------------------------------- */

/**
 * Appends one run of vertices to a linestring.
 *
 * @param[in]     points    array of `count` vertices of 24 bytes; copied, not kept. Not within the
 *                          buffer itself, which may move before they are read.
 * @param[in]     count     vertices to append, at least 1
 * @param[in,out] geometry  the caller's handle. On success it holds the grown buffer, which may
 *                          have moved; on failure handle and buffer are as before.
 * @return 0; 0x8000 for a null pointer, a zero count, more bytes than 32 bits hold or a failed
 *         allocation.
 *
 * The type is not checked. The `size` word keeps its old value, so `vexaWKB_copy` copies the
 * shorter line. The cost grows with the runs already there.
 */
VEXA_API uint32_t vexaWKB_addLineToLine(const Point3d* points, uint32_t count,
                                        GeometryBuffer** geometry);

/** Appends one ring of one run to a polygon; otherwise as `vexaWKB_addLineToLine`, the stale
 *  `size` word included. */
VEXA_API uint32_t vexaWKB_addRingToPolygon(const Point3d* points, uint32_t count,
                                           GeometryBuffer** geometry);

/** Appends one line of one run to a multilinestring; otherwise as `vexaWKB_addLineToLine`, the
 *  stale `size` word included. */
VEXA_API uint32_t vexaWKB_addLineToMultiLine(const Point3d* points, uint32_t count,
                                             GeometryBuffer** geometry);

/**
 * Appends one polygon of one ring to a multipolygon; arguments as `vexaWKB_addLineToLine`.
 *
 * @return 0; 0x8000 for a null pointer, a zero count, a type word outside 1 to 8, more bytes than
 *         32 bits hold or a failed allocation.
 *
 * The `size` word becomes what `vexaWKB_calculateSize` tells of the grown buffer.
 */
VEXA_API uint32_t vexaWKB_addPolyToMultiPoly(const Point3d* points, uint32_t count,
                                             GeometryBuffer** geometry);

/* ---- Sizes ----------------------------------------------------------------------------------- */

/**
 * The bytes of a buffer, header included, computed from its contents as its type lays them out.
 *
 * @param[in]  geometry  the buffer; its `type` and `size` words are not looked at
 * @param[out] size      receives the bytes; sums wrap at 32 bits
 * @return 0; 0x8000 for a null pointer.
 */
VEXA_API uint32_t vexaWKB_getLineSize(const GeometryBuffer* geometry, uint32_t* size);
VEXA_API uint32_t vexaWKB_getPolygonSize(const GeometryBuffer* geometry, uint32_t* size);
VEXA_API uint32_t vexaWKB_getMultiPointSize(const GeometryBuffer* geometry, uint32_t* size);
VEXA_API uint32_t vexaWKB_getMultiLineSize(const GeometryBuffer* geometry, uint32_t* size);
VEXA_API uint32_t vexaWKB_getMultiPolygonSize(const GeometryBuffer* geometry, uint32_t* size);

/** The size of every point: 40. The buffer is not read. Otherwise as `vexaWKB_getLineSize`. */
VEXA_API uint32_t vexaWKB_getPointSize(const GeometryBuffer* geometry, uint32_t* size);

/**
 * The bytes of a buffer of any type, computed from its contents.
 *
 * @param[in]  geometry  the buffer
 * @param[out] size      receives the bytes; sums wrap at 32 bits
 * @return 0; 0x8000 for a null pointer or a type other than 1 to 8.
 *
 * Type 8 gives 0 and writes nothing. A collection always succeeds; each member counts as its
 * `size` word, or as its computed size when the word is 0, rounded up to a multiple of 8. A
 * member that has no size adds nothing, and the next one is read in its place.
 */
VEXA_API uint32_t vexaWKB_calculateSize(const GeometryBuffer* geometry, uint32_t* size);

/** The `size` word where it is not 0, else what `vexaWKB_calculateSize` gives. */
VEXA_API uint32_t vexaWKB_getSize(const GeometryBuffer* geometry, uint32_t* size);

/* ---- Ranges ---------------------------------------------------------------------------------- */

/**
 * The axis-aligned box of all vertices of a buffer, z included.
 *
 * @param[in]  geometry  a buffer of the function's type; the type word is not looked at
 * @param[out] low       receives the least coordinates
 * @param[out] high      receives the greatest coordinates
 * @return 0; 0x8000 for a null pointer, with nothing written.
 *
 * Without vertices the box is empty: low +infinity, high -infinity. A NaN gets into the low corner
 * and is displaced by the next value; it gets into the high corner only as the first value of a run,
 * ring, line or polygon, whose other values are then lost to it.
 */
VEXA_API uint32_t vexaWKB_getPointRange(const GeometryBuffer* geometry, Point3d* low,
                                        Point3d* high);
VEXA_API uint32_t vexaWKB_getLineRange(const GeometryBuffer* geometry, Point3d* low, Point3d* high);
VEXA_API uint32_t vexaWKB_getPolygonRange(const GeometryBuffer* geometry, Point3d* low,
                                          Point3d* high);
VEXA_API uint32_t vexaWKB_getMultiPointRange(const GeometryBuffer* geometry, Point3d* low,
                                             Point3d* high);
VEXA_API uint32_t vexaWKB_getMultiLineRange(const GeometryBuffer* geometry, Point3d* low,
                                            Point3d* high);
VEXA_API uint32_t vexaWKB_getMultiPolygonRange(const GeometryBuffer* geometry, Point3d* low,
                                               Point3d* high);

/** The box of a buffer of type 1 to 6 by its type's function; 0x8000 also for any other type. */
VEXA_API uint32_t vexaWKB_getRange(const GeometryBuffer* geometry, Point3d* low, Point3d* high);

/* ---- Reading --------------------------------------------------------------------------------- */

/** The `type` word as stored, valid or not; 0x8000 for a null pointer. */
VEXA_API uint32_t vexaWKB_getType(const GeometryBuffer* geometry, uint32_t* type);

/** The coordinates of a point; 0x8000 for a null pointer or another type. */
VEXA_API uint32_t vexaWKB_pointGetPoint(const GeometryBuffer* geometry, Point3d* point);

/** The vertices of a linestring, all runs together; 0x8000 for a null pointer or another type. */
VEXA_API uint32_t vexaWKB_lineGetPointCount(const GeometryBuffer* geometry, uint32_t* count);

/**
 * Copies the vertices of a linestring.
 *
 * @param[in]  geometry  a linestring
 * @param[in]  capacity  room in `points`, in vertices
 * @param[out] points    receives the vertices of all runs in order
 * @param[out] copied    receives the number of vertices copied; also written when the room ends
 * @return 0; 0x8000 for a null pointer or another type (nothing is written), or when a run does
 *         not fit: a run is copied whole or not at all, and those before it stay copied.
 */
VEXA_API uint32_t vexaWKB_lineGetPoints(const GeometryBuffer* geometry, uint32_t capacity,
                                        Point3d* points, uint32_t* copied);

/** The vertices of a polygon, all runs of all rings together; 0x8000 for a null pointer or
 *  another type. */
VEXA_API uint32_t vexaWKB_polygonGetPointCount(const GeometryBuffer* geometry, uint32_t* count);

/**
 * Copies the vertices of all rings of a polygon; arguments as `vexaWKB_lineGetPoints`.
 *
 * When the room ends inside a ring, `copied` counts the rings before it only, although runs of
 * that ring that did fit have been written behind them.
 */
VEXA_API uint32_t vexaWKB_polygonGetPoints(const GeometryBuffer* geometry, uint32_t capacity,
                                           Point3d* points, uint32_t* copied);

/** The points of a multipoint; 0x8000 for a null pointer or another type. */
VEXA_API uint32_t vexaWKB_mpointGetPointCount(const GeometryBuffer* geometry, uint32_t* count);

/** One point of a multipoint, counted from 0; 0x8000 for a null pointer, another type or an
 *  index past the end. */
VEXA_API uint32_t vexaWKB_mpointGetPoint(const GeometryBuffer* geometry, uint32_t index,
                                         Point3d* point);

/**
 * Copies all points of a multipoint; arguments as `vexaWKB_lineGetPoints`.
 *
 * @return 0; 0x8000 for a null pointer, another type or too small a room, with nothing written.
 */
VEXA_API uint32_t vexaWKB_mpointGetPoints(const GeometryBuffer* geometry, uint32_t capacity,
                                          Point3d* points, uint32_t* copied);

/** The lines of a multilinestring; 0x8000 for a null pointer or another type. */
VEXA_API uint32_t vexaWKB_mlineGetLineCount(const GeometryBuffer* geometry, uint32_t* count);

/** The vertices of one line, counted from 0, of a multilinestring; 0x8000 for a null pointer,
 *  another type or an index past the end. */
VEXA_API uint32_t vexaWKB_mlineGetPointCount(const GeometryBuffer* geometry, uint32_t index,
                                             uint32_t* count);

/** Copies the vertices of one line of a multilinestring; otherwise as `vexaWKB_lineGetPoints`.
 *  0x8000 also for an index past the end, with nothing written. */
VEXA_API uint32_t vexaWKB_mlineGetPoints(const GeometryBuffer* geometry, uint32_t index,
                                         uint32_t capacity, Point3d* points, uint32_t* copied);

/** The polygons of a multipolygon; 0x8000 for a null pointer or another type. */
VEXA_API uint32_t vexaWKB_mpolygonGetPolyCount(const GeometryBuffer* geometry, uint32_t* count);

/** The vertices of all rings of one polygon, counted from 0, of a multipolygon; 0x8000 for a
 *  null pointer, another type or an index past the end. */
VEXA_API uint32_t vexaWKB_mpolygonGetPointCount(const GeometryBuffer* geometry, uint32_t index,
                                                uint32_t* count);

/** Copies the vertices of all rings of one polygon of a multipolygon; otherwise as
 *  `vexaWKB_polygonGetPoints`. 0x8000 also for an index past the end, with nothing written. */
VEXA_API uint32_t vexaWKB_mpolygonGetPoints(const GeometryBuffer* geometry, uint32_t index,
                                            uint32_t capacity, Point3d* points, uint32_t* copied);

VEXA_END_DECLS

#endif
