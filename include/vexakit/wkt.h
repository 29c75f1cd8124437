#ifndef VEXAKIT_WKT_H
#define VEXAKIT_WKT_H

#include "vexakit/export.h"
#include "vexakit/types.h"

/**
 * Well-known text: writing geometry buffers as text and making them from it.
 *
 * The dialect: keywords in all upper or all lower case; exactly three numbers a point; the points
 * of a multipoint in parentheses of their own; no empty geometries; collections of simple
 * geometries only. A number starts with a digit or "-", and an exponent has its sign ("1e+5").
 * Characters that belong to no token are echoed to standard output and skipped, so
 * "POINT Z (1 2 3)" reads like "POINT (1 2 3)". Written text has lower-case keywords and no spaces
 * but those between the coordinates of a point.
 */

VEXA_BEGIN_DECLS

/* ---- Writing --------------------------------------------------------------------------------- */

/**
 * Sets the significant digits of every coordinate written from now on in this process: 6 at
 * first. 0 counts as 1, a negative value as 6.
 *
 * @return the precision before.
 *
 * Not synchronised: a list of points being written by another thread takes either value.
 */
VEXA_API int64_t vexaWKT_setPrecision(int32_t precision);

/** The significant digits of every coordinate written. */
VEXA_API int64_t vexaWKT_getPrecision(void);

/**
 * Writes points as "x y z", joined by ",".
 *
 * @param[in]  count     points
 * @param[in]  points    array of `count` points
 * @param[out] out       the text, zero-terminated unless it fills the capacity exactly; on failure
 *                       its cells may hold anything
 * @param[in]  capacity  room in `out`, in characters
 * @return the characters written, the terminator not counted; -1 when the text does not fit or
 *         for a null pointer; 0 for no points or a capacity below 1.
 *
 * Numbers have the form of "%.*g" in the C runtime of the platform, its decimal point and its
 * infinities included.
 */
VEXA_API int64_t vexaWKT_pointList(uint64_t count, const Point3d* points, VexaWChar* out,
                                   int64_t capacity);

/** Writes points as "(x y z)", joined by ","; otherwise as `vexaWKT_pointList`. */
VEXA_API int64_t vexaWKT_multipointList(uint64_t count, const Point3d* points, VexaWChar* out,
                                        int64_t capacity);

/**
 * Writes the body of a buffer as "point(...)", "linestring(...)", "polygon(...)" or
 * "multipoint(...)".
 *
 * @param[in]  geometry  a buffer of the function's type; the type word is not looked at
 * @param[out] out       the text, zero-terminated; on failure its cells may hold anything
 * @param[in]  capacity  room in `out` in characters, the terminator included
 * @return the characters written, the terminator not counted; -1 when the text does not fit, for a
 *         geometry without points and for a null pointer.
 *
 * Of a linestring of several runs the first run is written. A ring of several runs has a further
 * ")" between two of them, which does not parse. A polygon whose last ring's ")" leaves one
 * character has its terminator at index `capacity`: give `out` room for `capacity` + 1.
 */
VEXA_API int64_t vexaWKT_point(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity);
VEXA_API int64_t vexaWKT_linestring(const GeometryBuffer* geometry, VexaWChar* out,
                                    int64_t capacity);
VEXA_API int64_t vexaWKT_polygon(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity);
VEXA_API int64_t vexaWKT_multipoint(const GeometryBuffer* geometry, VexaWChar* out,
                                    int64_t capacity);

/**
 * Writes the body of a buffer as "multilinestring(...)", "multipolygon(...)" or
 * "geometrycollection(...)"; arguments as `vexaWKT_point`.
 *
 * @return the characters written; -1 when the text does not fit or for a null pointer; 0 when the
 *         capacity does not exceed the keyword and its "(".
 *
 * A text that ends exactly at the capacity may lack its last ")" and be returned as a success: the
 * count is then the capacity. The terminator may stand at index `capacity`: give `out` room for
 * `capacity` + 1. A member of a collection that is no simple geometry counts as 32768 characters,
 * none of which is written.
 */
VEXA_API int64_t vexaWKT_multilinestring(const GeometryBuffer* geometry, VexaWChar* out,
                                         int64_t capacity);
VEXA_API int64_t vexaWKT_multipolygon(const GeometryBuffer* geometry, VexaWChar* out,
                                      int64_t capacity);
VEXA_API int64_t vexaWKT_geometryCollection(const GeometryBuffer* geometry, VexaWChar* out,
                                            int64_t capacity);

/**
 * Writes each run of a path as "(...)", with one further ")" between two runs; arguments as
 * `vexaWKT_point`.
 *
 * @return the characters written; -1 when the text does not fit or for a null pointer; 0 for a
 *         path without runs or a capacity below 1. When the room ends between two runs, the
 *         characters so far.
 */
VEXA_API int64_t vexaWKT_sublineSeq(const Path* path, VexaWChar* out, int64_t capacity);

/** Writes each path of a list by `vexaWKT_sublineSeq`, joined by ","; otherwise as it. */
VEXA_API int64_t vexaWKT_ringSeq(const PathList* paths, VexaWChar* out, int64_t capacity);

/**
 * Writes a buffer of type 1 to 6 by its type's function.
 *
 * @return what that function returns; 32768 for a null pointer, a zero capacity or any other type.
 *         A text of 32768 characters cannot be told from that.
 */
VEXA_API int64_t vexaWKT_geometry(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity);

/**
 * Writes a buffer of any type.
 *
 * @param[in]  geometry  the buffer
 * @param[out] text      the text; see `vexaWKT_point` and `vexaWKT_multilinestring`
 * @param[in]  capacity  room in `text` in bytes, two a character. A negative one counts as
 *                       unlimited.
 * @return what `vexaWKT_geometryCollection` (type 7) or `vexaWKT_geometry` returns; 32768 for a
 *         null geometry.
 */
VEXA_API int64_t vexaWKB_convertBinaryToText(const GeometryBuffer* geometry, VexaWChar* text,
                                             int32_t capacity);

/* ---- Parsing --------------------------------------------------------------------------------- */

/** Nothing needs initialising: both do nothing, are one function and return 0. */
VEXA_API uint32_t vexaParse_initialize(void);
VEXA_API uint32_t vexaParse_uninitialize(void);

/**
 * Makes a geometry buffer from text.
 *
 * @param[in]  text    zero-terminated text
 * @param[out] result  receives the buffer, which the caller frees with `vexaWKB_destroyGeom`;
 *                     written on success only
 * @return 0; 1 for a syntax error; 0xFFFFFFFF for a null text; 0x8000 for a failed allocation, or
 *         for a null result where the text is right.
 *
 * Parses run one at a time in a process. The `size` word of a polygon or multilinestring of
 * several parts tells the size of the first part alone, as the appends leave it; a multipolygon of
 * one ring and a collection have 0 there. Every ring of a multipolygon, holes included, becomes a
 * polygon of its own. A collection's members are cut to their `size` words: all but the first
 * ring or line of a member is missing, while its count still tells of them, so such a collection
 * must not be walked below its members' headers.
 *
 * Numbers are read as `atof` reads them, with the decimal point of the process's locale. Where
 * there is no memory for the private copy of the text, the process ends with status 2.
 */
VEXA_API uint32_t vexaParse_string(const char* text, GeometryBuffer** result);

/**
 * The message of the last parse of the process: empty after a success, else "parse error, at or
 * near ..." with the offending token, at most 127 bytes and a terminator.
 *
 * @return the library's own array, which the next parse of any thread overwrites.
 */
VEXA_API const char* vexaParse_errorString(void);

/**
 * Parses wide text into the caller's array.
 *
 * @param[in]  text      zero-terminated wide text; it goes through the ANSI code page
 * @param[out] out       receives the geometry buffer; written on success only
 * @param[in]  capacity  room in `out`, in bytes
 * @return 0; 1 for a syntax error; -5 when the buffer does not fit; 32768 for a null pointer or a
 *         failed allocation.
 *
 * As many bytes are copied as `vexaWKB_getSize` tells: of a polygon or multilinestring of several
 * parts those of the first part, while the count tells of all. Such an image must not be walked;
 * `vexaParse_string` hands out everything.
 */
VEXA_API int64_t vexaWKB_convertTextToBinary(const VexaWChar* text, void* out, uint32_t capacity);

/**
 * The bytes that `vexaWKB_convertTextToBinary` needs for a text.
 *
 * @param[in]  text  zero-terminated wide text
 * @param[out] size  receives the bytes; written on success only
 * @return 0; 1 for a syntax error; 32768 for a null pointer or a failed allocation.
 */
VEXA_API int64_t vexaWKB_getSizeFromTextGeom(const VexaWChar* text, uint32_t* size);

VEXA_END_DECLS

#endif
