#ifndef VEXAKIT_TYPES_H
#define VEXAKIT_TYPES_H

#include <stdint.h>

/**
 * A 16-bit text character. Wide text is UTF-16 on every system: `L"..."` on Windows, `u"..."`
 * elsewhere.
 */
#if defined(_WIN32)
#include <stddef.h>
typedef wchar_t VexaWChar;
#elif defined(__cplusplus)
typedef char16_t VexaWChar;
#else
typedef uint16_t VexaWChar;
#endif

/**
 * Who may use a named lock. On Windows these are the system's own types. Elsewhere the library reads
 * the permission bits alone; they count for the process that creates the lock's shared objects.
 */
#if defined(_WIN32)
typedef struct _SECURITY_ATTRIBUTES SECURITY_ATTRIBUTES;
#else
typedef struct SECURITY_DESCRIPTOR {
    /** Permission bits of a file, such as 0660. */
    uint32_t mode;
} SECURITY_DESCRIPTOR;

typedef struct SECURITY_ATTRIBUTES {
    /** 24, the size of this structure; not looked at. */
    uint32_t nLength;
    /** A `SECURITY_DESCRIPTOR`; null stands for 0600. */
    void* lpSecurityDescriptor;
    /** Not looked at. */
    int32_t bInheritHandle;
} SECURITY_ATTRIBUTES;
#endif

/** Values of the `type` word of a geometry buffer. */
enum VexaGeometryType {
    VEXA_POINT = 1,
    VEXA_LINESTRING = 2,
    VEXA_POLYGON = 3,
    VEXA_MULTIPOINT = 4,
    VEXA_MULTILINESTRING = 5,
    VEXA_MULTIPOLYGON = 6,
    VEXA_GEOMETRYCOLLECTION = 7,
    /** Has no body; only the size functions accept it. */
    VEXA_RESERVED = 8
};

/**
 * Status codes. A status travels as `uint32_t`, so the negative ones arrive as 0xFFFFFFFF,
 * 0xFFFFFFFE and 0xFFFFFFFB; functions that return `int64_t` give them with their sign.
 */
enum VexaStatus {
    VEXA_SUCCESS = 0,
    /** The text is not well-known text; `vexaParse_errorString` has the message. */
    VEXA_SYNTAX_ERROR = 1,
    /** The parser's stack limit was reached. */
    VEXA_STACK_LIMIT = 2,
    /** Null pointer, zero count, wrong or unknown type, index out of range, output too small,
     *  failed allocation. */
    VEXA_FAILURE = 0x8000,
    /** No text was given, or the parse was accepted without a result. */
    VEXA_NO_TEXT = -1,
    /** The parse produced a result of an unexpected kind. */
    VEXA_UNEXPECTED_RESULT = -2,
    /** The output array is smaller than the geometry buffer. */
    VEXA_ARRAY_TOO_SMALL = -5
};

/** One vertex: three packed doubles, 24 bytes. */
typedef struct Point3d {
    double x;
    double y;
    double z;
} Point3d;

/** An axis-aligned box: its least and its greatest corner. */
typedef struct Range3d {
    Point3d low;
    Point3d high;
} Range3d;

/**
 * An affine transform: a 3-by-4 matrix, row by row. A point (x, y, z) maps to
 * (m0 x + m1 y + m2 z + m3, m4 x + m5 y + m6 z + m7, m8 x + m9 y + m10 z + m11).
 */
typedef struct Transform {
    double m[12];
} Transform;

/**
 * The 16 bytes at the start of every geometry buffer; the body follows them at once.
 *
 * A geometry buffer is one block from `malloc`. All words are little-endian, all coordinates
 * doubles, and every structure is a multiple of 8 bytes long:
 *
 *     point            Point3d
 *     linestring       Path
 *     polygon          PathList, each path a ring, the outer one first
 *     multipoint       uint32_t pointCount, uint32_t padding, then the Point3ds
 *     multilinestring  PathList, each path a line
 *     multipolygon     uint32_t polygonCount, uint32_t padding, then one PathList a polygon
 *     collection       uint32_t memberCount, uint32_t padding, then the members: whole geometry
 *                      buffers, each in its size rounded up to a multiple of 8
 *
 * Counts and sizes are trusted by every function that takes a buffer: one that says more than
 * the block holds makes them read past its end.
 */
typedef struct GeometryBuffer {
    /** Written 1, never read. */
    uint32_t headerWord0;
    /** Written 1, never read. */
    uint32_t headerWord1;
    /** One of `VexaGeometryType`. */
    uint32_t type;
    /**
     * Bytes of the whole buffer, or 0 where the size is to be computed from the contents. The
     * appends to linestrings, polygons and multilinestrings leave the old value in place.
     */
    uint32_t size;
} GeometryBuffer;

/** A run of vertices: these 8 bytes, then `pointCount` `Point3d`s. */
typedef struct PointRun {
    /** Written 0, never read. */
    uint32_t runFlags;
    uint32_t pointCount;
} PointRun;

/** A linestring, a ring, or a line of a multilinestring: these 8 bytes, then the `PointRun`s. */
typedef struct Path {
    uint32_t runCount;
    uint32_t padding;
} Path;

/** A polygon's rings or a multilinestring's lines: these 8 bytes, then the `Path`s. */
typedef struct PathList {
    uint32_t pathCount;
    uint32_t padding;
} PathList;

#endif
