#include "geometry/layout.h"
#include "geometry/walkers.h"
#include "platform/decimal_point.h"
#include "vexakit/wkt.h"
#include "wkt/point_text.h"
#include "wkt/text_output.h"

#include <atomic>
#include <string_view>

using namespace vexa;

namespace {

constexpr std::int64_t kDoesNotFit = -1;
constexpr std::int64_t kNoGeometry = VEXA_FAILURE;
constexpr std::int32_t kInitialPrecision = 6;

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): the precision of the process
std::atomic<std::int32_t> writerPrecision{kInitialPrecision};

PointFormat currentFormat(bool inParentheses) {
    return {writerPrecision.load(std::memory_order_relaxed), platform::wideDecimalPoint(),
            inParentheses};
}

std::int64_t pointListText(std::uint64_t count, const Point3d* points, VexaWChar* out,
                           std::int64_t capacity, bool inParentheses) {
    if (count == 0 || capacity < 1) return 0;
    if (!points || !out) return kDoesNotFit;

    const PointFormat format = currentFormat(inParentheses);
    TextOutput text{out, capacity};
    for (; text.room() > 0; ++points) {
        const std::int64_t length = printPoint(*points, format, text.position(), text.room());
        if (length < 1) return kDoesNotFit;
        text.advance(length);

        if (--count == 0) break;
        if (text.room() < 2) return kDoesNotFit;
        text.put(",");
    }
    return text.written();
}

/// A keyword and the text of the whole body. What does not leave room for the closing parenthesis
/// and a terminator fails.
template <class WriteBody>
std::int64_t simpleText(std::string_view keyword, const GeometryBuffer* geometry, VexaWChar* out,
                        std::int64_t capacity, WriteBody writeBody) {
    const auto keywordLength = static_cast<std::int64_t>(keyword.size());
    if (!geometry || !out || capacity <= keywordLength) return kDoesNotFit;

    TextOutput text{out, capacity};
    text.put(keyword);
    const std::int64_t body = writeBody(*geometry, text.position(), text.room());
    if (body < 1 || body + 1 >= text.room()) return kDoesNotFit;

    text.advance(body);
    text.put(")");
    return text.written();
}

/// A keyword and the text of each element of the list that is the body, joined by ",". Unlike the
/// simple texts it gives 0 where not even the keyword fits, and leaves the closing parenthesis away
/// where the elements take all the room.
template <class Element, class WriteElement, class Step>
std::int64_t listText(std::string_view keyword, const GeometryBuffer* geometry, VexaWChar* out,
                      std::int64_t capacity, WriteElement writeElement, Step next) {
    if (capacity <= static_cast<std::int64_t>(keyword.size())) return 0;
    if (!geometry || !out) return kDoesNotFit;

    TextOutput text{out, capacity};
    text.put(keyword);
    const MemberList& list = memberListOf(*geometry);  // all lists begin alike
    const auto* element = after<Element>(list);
    for (std::uint32_t left = list.memberCount; left != 0; --left) {
        const std::int64_t length = writeElement(element, text.position(), text.room());
        if (length < 1) return kDoesNotFit;
        text.advance(length);

        if (left == 1) break;
        if (text.room() < 2) return kDoesNotFit;
        text.put(",");
        element = next(element);
    }
    if (text.room() < 1) return text.written();

    text.put(")");
    return text.written();
}

std::int64_t polygonText(const PathList* polygon, VexaWChar* out, std::int64_t capacity) {
    if (capacity < 2) return kDoesNotFit;

    TextOutput text{out, capacity};
    text.put("(");
    const std::int64_t rings = vexaWKT_ringSeq(polygon, text.position(), text.room());
    if (rings < 1 || text.room() - rings < 2) return kDoesNotFit;

    text.advance(rings);
    text.put(")");
    return text.written();
}

template <class Element>
const Element* stepOver(const Element* element) {
    return nextElement(*element);
}

}  // namespace

int64_t vexaWKT_getPrecision(void) {
    return writerPrecision.load(std::memory_order_relaxed);
}

int64_t vexaWKT_setPrecision(int32_t precision) {
    return writerPrecision.exchange(precision, std::memory_order_relaxed);
}

int64_t vexaWKT_pointList(uint64_t count, const Point3d* points, VexaWChar* out, int64_t capacity) {
    return pointListText(count, points, out, capacity, false);
}

int64_t vexaWKT_multipointList(uint64_t count, const Point3d* points, VexaWChar* out,
                               int64_t capacity) {
    return pointListText(count, points, out, capacity, true);
}

int64_t vexaWKT_point(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity) {
    return simpleText("point(", geometry, out, capacity,
                      [](const GeometryBuffer& point, VexaWChar* body, std::int64_t room) {
                          return vexaWKT_pointList(1, &pointOf(point), body, room);
                      });
}

// The first run stands for the whole line.
int64_t vexaWKT_linestring(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity) {
    return simpleText("linestring(", geometry, out, capacity,
                      [](const GeometryBuffer& line, VexaWChar* body, std::int64_t room) {
                          const auto& run = *after<PointRun>(pathOf(line));
                          return vexaWKT_pointList(run.pointCount, verticesOf(run).data(), body,
                                                   room);
                      });
}

int64_t vexaWKT_polygon(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity) {
    return simpleText("polygon(", geometry, out, capacity,
                      [](const GeometryBuffer& polygon, VexaWChar* body, std::int64_t room) {
                          return vexaWKT_ringSeq(&pathListOf(polygon), body, room);
                      });
}

int64_t vexaWKT_multipoint(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity) {
    return simpleText("multipoint(", geometry, out, capacity,
                      [](const GeometryBuffer& multiPoint, VexaWChar* body, std::int64_t room) {
                          const std::span<const Point3d> points =
                              pointsOf(pointArrayOf(multiPoint));
                          return vexaWKT_multipointList(points.size(), points.data(), body, room);
                      });
}

int64_t vexaWKT_multilinestring(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity) {
    return listText<Path>("multilinestring(", geometry, out, capacity, vexaWKT_sublineSeq,
                          stepOver<Path>);
}

int64_t vexaWKT_multipolygon(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity) {
    return listText<PathList>("multipolygon(", geometry, out, capacity, polygonText,
                              stepOver<PathList>);
}

// A member that is no simple geometry gives a failure status where a count of characters is
// expected, and is taken for one: 32768 characters are counted and none is written.
int64_t vexaWKT_geometryCollection(const GeometryBuffer* geometry, VexaWChar* out,
                                   int64_t capacity) {
    return listText<GeometryBuffer>("geometrycollection(", geometry, out, capacity,
                                    vexaWKT_geometry, skipCollectionMember);
}

// Two runs are divided by a further ")", which does not parse: a reader of several runs meets the
// end of the geometry there.
int64_t vexaWKT_sublineSeq(const Path* path, VexaWChar* out, int64_t capacity) {
    if (!path) return kDoesNotFit;
    if (path->runCount == 0 || capacity < 1) return 0;
    if (!out) return kDoesNotFit;

    TextOutput text{out, capacity};
    std::uint32_t left = path->runCount;
    for (const PointRun& run : runsOf(*path)) {
        if (text.room() < 1) break;

        text.put("(");
        const std::int64_t length =
            vexaWKT_pointList(run.pointCount, verticesOf(run).data(), text.position(), text.room());
        if (length < 1 || text.room() == length) return kDoesNotFit;
        text.advance(length);
        text.put(")");

        if (--left == 0) break;
        if (text.room() < 1) return kDoesNotFit;
        text.put(")");
    }
    return text.written();
}

int64_t vexaWKT_ringSeq(const PathList* paths, VexaWChar* out, int64_t capacity) {
    if (!paths) return kDoesNotFit;
    if (paths->pathCount == 0 || capacity < 1) return 0;
    if (!out) return kDoesNotFit;

    TextOutput text{out, capacity};
    std::uint32_t left = paths->pathCount;
    for (const Path& path : pathsOf(*paths)) {
        if (text.room() < 1) break;

        const std::int64_t length = vexaWKT_sublineSeq(&path, text.position(), text.room());
        if (length < 1) return kDoesNotFit;
        text.advance(length);

        if (--left == 0) break;
        if (text.room() < 1) return kDoesNotFit;
        text.put(",");
    }
    return text.written();
}

int64_t vexaWKT_geometry(const GeometryBuffer* geometry, VexaWChar* out, int64_t capacity) {
    if (!geometry || !out || capacity == 0) return kNoGeometry;

    switch (geometry->type) {
        case VEXA_POINT: return vexaWKT_point(geometry, out, capacity);
        case VEXA_LINESTRING: return vexaWKT_linestring(geometry, out, capacity);
        case VEXA_POLYGON: return vexaWKT_polygon(geometry, out, capacity);
        case VEXA_MULTIPOINT: return vexaWKT_multipoint(geometry, out, capacity);
        case VEXA_MULTILINESTRING: return vexaWKT_multilinestring(geometry, out, capacity);
        case VEXA_MULTIPOLYGON: return vexaWKT_multipolygon(geometry, out, capacity);
        default: return kNoGeometry;
    }
}

// A negative capacity, halved without its sign, is as good as none.
int64_t vexaWKB_convertBinaryToText(const GeometryBuffer* geometry, VexaWChar* text,
                                    int32_t capacity) {
    if (!geometry) return kNoGeometry;

    const auto characters =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(std::int64_t{capacity}) / 2);
    return geometry->type == VEXA_GEOMETRYCOLLECTION
               ? vexaWKT_geometryCollection(geometry, text, characters)
               : vexaWKT_geometry(geometry, text, characters);
}
