#include "geometry/intersection/pair_tests.h"
#include "geometry/intersection/segment_distance.h"
#include "geometry/intersection/sure_answers.h"
#include "geometry/range.h"
#include "vexakit/intersection.h"

#include <new>

using namespace vexa;

namespace {

// ---- What a type is made of ---------------------------------------------------------------------

template <VexaGeometryType Type>
struct Kind;

template <>
struct Kind<VEXA_POINT> {
    static constexpr auto kRange = pointRange;
    static Points parts(const GeometryBuffer& point) { return {&pointOf(point), 1}; }
};
template <>
struct Kind<VEXA_LINESTRING> {
    static constexpr auto kRange = lineRange;
    static Paths parts(const GeometryBuffer& line) { return {&pathOf(line), 1}; }
};
template <>
struct Kind<VEXA_POLYGON> {
    static constexpr auto kRange = polygonRange;
    static Polygons parts(const GeometryBuffer& polygon) { return {&pathListOf(polygon), 1}; }
};
template <>
struct Kind<VEXA_MULTIPOINT> {
    static constexpr auto kRange = multiPointRange;
    static Points parts(const GeometryBuffer& points) { return pointsOf(pointArrayOf(points)); }
};
template <>
struct Kind<VEXA_MULTILINESTRING> {
    static constexpr auto kRange = multiLineRange;
    static Paths parts(const GeometryBuffer& lines) { return pathsOf(pathListOf(lines)); }
};
template <>
struct Kind<VEXA_MULTIPOLYGON> {
    static constexpr auto kRange = multiPolygonRange;
    static Polygons parts(const GeometryBuffer& polygons) {
        return polygonsOf(polygonListOf(polygons));
    }
};

// ---- Which parts ask which ----------------------------------------------------------------------

/// The order in which the two geometries' parts go into the inner test.
enum class Order { AsNamed, SecondFirst };

/// What lack of memory means to the caller: most tests tell, some pass over it.
constexpr std::uint32_t kTold = kFailure;
constexpr std::uint32_t kPassedOver = kSuccess;

template <VexaGeometryType First, VexaGeometryType Second, Order InnerOrder>
Outcome innerTest(const GeometryBuffer& first, const GeometryBuffer& second, const Asking& asking) {
    const auto firstParts = Kind<First>::parts(first);
    const auto secondParts = Kind<Second>::parts(second);
    if constexpr (InnerOrder == Order::SecondFirst) {
        return anyMeet(secondParts, firstParts, asking);  // NOLINT(*-suspicious-call-argument)
    } else {
        return anyMeet(firstParts, secondParts, asking);
    }
}

/// What is known at once of pairs of the smallest shapes. Such shapes have segments and rings, so that
/// the caller's result is always written.
template <VexaGeometryType First, VexaGeometryType Second>
Sure sureAnswer(const GeometryBuffer& first, const GeometryBuffer& second, double tolerance) {
    if constexpr (First == VEXA_LINESTRING && Second == VEXA_LINESTRING) {
        return segmentAndSegment(pathOf(first), pathOf(second), tolerance);
    } else if constexpr (First == VEXA_POINT && Second == VEXA_POLYGON) {
        return pointAndTriangle(pointOf(first), pathListOf(second), tolerance);
    } else if constexpr (First == VEXA_LINESTRING && Second == VEXA_POLYGON) {
        return segmentAndTriangle(pathOf(first), pathListOf(second), tolerance);
    } else if constexpr (First == VEXA_POLYGON && Second == VEXA_POLYGON) {
        return triangleAndTriangle(pathListOf(first), pathListOf(second));
    } else {
        return Sure::Unsure;
    }
}

template <VexaGeometryType First, VexaGeometryType Second, std::uint32_t WithoutMemory,
          Order InnerOrder = Order::AsNamed>
std::uint32_t intersect(const GeometryBuffer* first, const GeometryBuffer* second, double tolerance,
                        std::uint32_t* result) {
    if (!first || !second || !result) return kFailure;

    const Sure sure = sureAnswer<First, Second>(*first, *second, tolerance);
    if (sure != Sure::Unsure) {
        *result = sure == Sure::Meeting ? 1 : 0;
        return kSuccess;
    }
    if (!RangesOverlap(Kind<First>::kRange(*first), Kind<Second>::kRange(*second))) {
        *result = 0;
        return kSuccess;
    }
    try {
        const Asking asking = {tolerance, *result == 1};
        const Outcome outcome = innerTest<First, Second, InnerOrder>(*first, *second, asking);
        if (outcome != Outcome::Untouched) *result = outcome == Outcome::Meeting ? 1 : 0;
        return kSuccess;
    } catch (const std::bad_alloc&) {
        return WithoutMemory;
    }
}

}  // namespace

// NOLINTBEGIN(cppcoreguidelines-macro-usage): the table of the exported tests, a row each
#define VEXA_PAIR(FirstName, SecondName, ...)                                               \
    uint32_t vexaWKB_intersect##FirstName##SecondName(const GeometryBuffer* first,          \
                                                      const GeometryBuffer* second,         \
                                                      double tolerance, uint32_t* result) { \
        return intersect<__VA_ARGS__>(first, second, tolerance, result);                    \
    }
// NOLINTEND(cppcoreguidelines-macro-usage)

// clang-format off
VEXA_PAIR(Point, Point,                     VEXA_POINT, VEXA_POINT, kTold)
VEXA_PAIR(Point, LineString,                VEXA_POINT, VEXA_LINESTRING, kTold)
VEXA_PAIR(Point, Polygon,                   VEXA_POINT, VEXA_POLYGON, kTold)
VEXA_PAIR(Point, MultiPoint,                VEXA_POINT, VEXA_MULTIPOINT, kTold)
VEXA_PAIR(Point, MultiLineString,           VEXA_POINT, VEXA_MULTILINESTRING, kTold)
VEXA_PAIR(Point, MultiPolygon,              VEXA_POINT, VEXA_MULTIPOLYGON, kTold)
VEXA_PAIR(LineString, LineString,           VEXA_LINESTRING, VEXA_LINESTRING, kTold)
VEXA_PAIR(LineString, Polygon,              VEXA_LINESTRING, VEXA_POLYGON, kPassedOver)
VEXA_PAIR(LineString, MultiPoint,           VEXA_LINESTRING, VEXA_MULTIPOINT, kTold, Order::SecondFirst)
VEXA_PAIR(LineString, MultiLineString,      VEXA_LINESTRING, VEXA_MULTILINESTRING, kTold)
VEXA_PAIR(LineString, MultiPolygon,         VEXA_LINESTRING, VEXA_MULTIPOLYGON, kPassedOver)
VEXA_PAIR(Polygon, Polygon,                 VEXA_POLYGON, VEXA_POLYGON, kTold)
VEXA_PAIR(Polygon, MultiPoint,              VEXA_POLYGON, VEXA_MULTIPOINT, kTold, Order::SecondFirst)
VEXA_PAIR(Polygon, MultiLineString,         VEXA_POLYGON, VEXA_MULTILINESTRING, kPassedOver, Order::SecondFirst)
VEXA_PAIR(Polygon, MultiPolygon,            VEXA_POLYGON, VEXA_MULTIPOLYGON, kPassedOver, Order::SecondFirst)
VEXA_PAIR(MultiPoint, MultiPoint,           VEXA_MULTIPOINT, VEXA_MULTIPOINT, kTold)
VEXA_PAIR(MultiPoint, MultiLineString,      VEXA_MULTIPOINT, VEXA_MULTILINESTRING, kPassedOver)
VEXA_PAIR(MultiPoint, MultiPolygon,         VEXA_MULTIPOINT, VEXA_MULTIPOLYGON, kPassedOver)
VEXA_PAIR(MultiLineString, MultiLineString, VEXA_MULTILINESTRING, VEXA_MULTILINESTRING, kTold)
VEXA_PAIR(MultiLineString, MultiPolygon,    VEXA_MULTILINESTRING, VEXA_MULTIPOLYGON, kPassedOver)
VEXA_PAIR(MultiPolygon, MultiPolygon,       VEXA_MULTIPOLYGON, VEXA_MULTIPOLYGON, kTold)
// clang-format on
