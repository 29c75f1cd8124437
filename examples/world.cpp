#include "world.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <utility>

namespace world {
namespace {

constexpr double kHalfTurn = 180;
constexpr double kFullTurn = 360;

/// The parser's message without its line end; other failures have a status alone.
std::string parseFailure(std::uint32_t status) {
    if (status != VEXA_SYNTAX_ERROR) return "status " + std::to_string(status);

    std::string message = vexaParse_errorString();
    while (message.ends_with('\n')) message.pop_back();
    return message;
}

Country splitLine(std::string_view line) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::size_t tab = line.find('\t');
    check(tab != std::string_view::npos, "no tab between name and text");
    return {std::string{line.substr(0, tab)}, std::string{line.substr(tab + 1)}};
}

bool samePlace(const Point3d& left, const Point3d& right) {
    return left.x == right.x && left.y == right.y && left.z == right.z;
}

// ---- Reading vertices ---------------------------------------------------------------------------

std::vector<Point3d> polygonVertices(const GeometryBuffer& polygon) {
    std::uint32_t count = 0;
    check(vexaWKB_polygonGetPointCount(&polygon, &count) == VEXA_SUCCESS,
          "the polygon's vertices cannot be counted");
    std::vector<Point3d> vertices(count);
    check(vexaWKB_polygonGetPoints(&polygon, count, vertices.data(), &count) == VEXA_SUCCESS,
          "the polygon's vertices cannot be read");
    return vertices;
}

std::vector<Point3d> memberVertices(const GeometryBuffer& multiPolygon, std::uint32_t index) {
    std::uint32_t count = 0;
    check(vexaWKB_mpolygonGetPointCount(&multiPolygon, index, &count) == VEXA_SUCCESS,
          "a polygon's vertices cannot be counted");
    std::vector<Point3d> vertices(count);
    check(vexaWKB_mpolygonGetPoints(&multiPolygon, index, count, vertices.data(), &count) ==
              VEXA_SUCCESS,
          "a polygon's vertices cannot be read");
    return vertices;
}

/// The rings of a polygon are read in one go: each ends where its first vertex comes again.
void splitRings(const std::vector<Point3d>& vertices, std::vector<Ring>& rings) {
    auto start = vertices.begin();
    while (start != vertices.end()) {
        const auto isStart = [&](const Point3d& vertex) { return samePlace(vertex, *start); };
        const auto last = std::find_if(start + 1, vertices.end(), isStart);
        check(last != vertices.end(), "a ring is not closed");
        const auto end = std::find_if_not(last, vertices.end(), isStart);
        rings.emplace_back(start, end);
        start = end;
    }
}

// ---- Rings that the plane takes amiss -----------------------------------------------------------

bool isMerePoint(const Ring& ring) {
    const auto isFirst = [&](const Point3d& vertex) { return samePlace(vertex, ring.front()); };
    return std::all_of(ring.begin(), ring.end(), isFirst);
}

/// Turns to the east, less those to the west, from one vertex to the next.
int leap(const Point3d& from, const Point3d& to) {
    const double step = to.x - from.x;
    if (std::abs(step) <= kHalfTurn) return 0;
    return step < 0 ? 1 : -1;
}

/// Whether the ring was changed. One that winds about a pole does not come back to its start, and
/// stays as it is.
bool straighten(Ring& ring) {
    std::vector<int> turns(ring.size(), 0);
    for (std::size_t index = 1; index < ring.size(); ++index) {
        turns[index] = turns[index - 1] + leap(ring[index - 1], ring[index]);
    }
    const auto [least, most] = std::minmax_element(turns.begin(), turns.end());
    if (turns.back() != 0 || *least == *most) return false;

    const int westernmost = *least;
    for (std::size_t index = 0; index < ring.size(); ++index) {
        ring[index].x += kFullTurn * (turns[index] - westernmost);
    }
    return true;
}

/// A polygon of these rings, or a multipolygon of one polygon a ring.
Geometry geometryOf(std::uint32_t type, const std::vector<Ring>& rings) {
    const bool isPolygon = type == VEXA_POLYGON;
    const auto create = isPolygon ? vexaWKB_createPolygon : vexaWKB_createMultiPolygon;
    const auto append = isPolygon ? vexaWKB_addRingToPolygon : vexaWKB_addPolyToMultiPoly;

    Geometry geometry;
    for (const Ring& ring : rings) {
        const auto count = static_cast<std::uint32_t>(ring.size());
        GeometryBuffer* handle = geometry.release();
        const std::uint32_t status =
            handle ? append(ring.data(), count, &handle) : create(ring.data(), count, &handle);
        geometry.reset(handle);  // grown, and perhaps moved
        check(status == VEXA_SUCCESS, "the rings make no geometry");
    }
    return geometry;
}

}  // namespace

void check(bool holds, const char* failure) {
    if (!holds) throw Error(failure);
}

Geometry parse(const char* text) {
    GeometryBuffer* geometry = nullptr;
    const std::uint32_t status = vexaParse_string(text, &geometry);
    if (status != VEXA_SUCCESS) throw Error(parseFailure(status));
    return Geometry{geometry};
}

std::uint32_t fullSize(const GeometryBuffer& geometry) {
    std::uint32_t size = 0;
    check(vexaWKB_calculateSize(&geometry, &size) == VEXA_SUCCESS, "the buffer has no size");
    return size;
}

std::vector<Ring> ringsOf(const GeometryBuffer& geometry) {
    std::vector<Ring> rings;
    if (geometry.type == VEXA_POLYGON) {
        splitRings(polygonVertices(geometry), rings);
        return rings;
    }
    std::uint32_t polygons = 0;
    check(vexaWKB_mpolygonGetPolyCount(&geometry, &polygons) == VEXA_SUCCESS,
          "a country is a polygon or a multipolygon");
    for (std::uint32_t index = 0; index < polygons; ++index) {
        splitRings(memberVertices(geometry, index), rings);
    }
    return rings;
}

std::vector<Country> readCountries(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Error(path + ": cannot be opened");

    std::vector<Country> countries;
    for (std::string line; std::getline(file, line);) {
        onLine(path, countries.size() + 1, [&] { countries.push_back(splitLine(line)); });
    }
    if (file.bad()) throw Error(path + ": cannot be read");
    if (countries.empty()) throw Error(path + ": has no countries");
    return countries;
}

PlaneCountry planeCountry(const Country& country) {
    Geometry geometry = parse(country.text.c_str());
    std::vector<Ring> rings = ringsOf(*geometry);
    const std::size_t merePoints = std::erase_if(rings, isMerePoint);
    const auto straightened =
        static_cast<std::size_t>(std::count_if(rings.begin(), rings.end(), straighten));

    if (merePoints + straightened != 0) geometry = geometryOf(geometry->type, rings);
    return {std::move(geometry), straightened, merePoints};
}

std::size_t codePoints(std::string_view utf8) {
    const auto startsCharacter = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    };
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), startsCharacter));
}

}  // namespace world
