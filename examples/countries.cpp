// Reads countries from a file of well-known text, one "name<tab>text" a line, prints what their
// geometry buffers hold, and takes every buffer to text and back again to see that it is the same.
//
//     countries examples/data/countries-110m.wkt

#include "vexakit/vexakit.h"
#include "world.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using world::check;
using world::codePoints;
using world::Country;
using world::Error;
using world::fullSize;
using world::Geometry;

// ---- Buffers and their texts --------------------------------------------------------------------

struct FreeText {
    void operator()(char* text) const noexcept { string_freeA(text); }
};
using NarrowText = std::unique_ptr<char, FreeText>;

using WideText = std::basic_string<VexaWChar>;

bool sameBytes(const GeometryBuffer& left, const GeometryBuffer& right) {
    const std::uint32_t size = fullSize(left);
    return size == fullSize(right) && std::memcmp(&left, &right, size) == 0;
}

/// Writes into ever larger arrays until the text fits.
WideText write(const GeometryBuffer& geometry) {
    constexpr std::size_t kFirstRoom = 4096;
    constexpr std::size_t kMostRoom = std::size_t{1} << 29;  // its bytes fit the 32-bit capacity

    WideText text;
    for (std::size_t room = kFirstRoom; room <= kMostRoom; room *= 2) {
        text.resize(room + 1);  // the writer may put its terminator behind the room it was given
        const auto bytes = static_cast<std::int32_t>(room * sizeof(VexaWChar));
        const std::int64_t length = vexaWKB_convertBinaryToText(&geometry, text.data(), bytes);
        // A text that takes all the room may lack its last parenthesis.
        if (length > 0 && static_cast<std::size_t>(length) < room) {
            text.resize(static_cast<std::size_t>(length));
            return text;
        }
    }
    throw Error("the geometry cannot be written as text");
}

NarrowText narrow(const WideText& text) {
    char* result = nullptr;
    check(stringCnv_wcsToMbsAlloc(text.c_str(), &result) == VEXA_SUCCESS,
          "the written text cannot be narrowed");
    return NarrowText{result};
}

// ---- The two ways back --------------------------------------------------------------------------

void checkParsedAgain(const GeometryBuffer& geometry, const WideText& text) {
    const Geometry again = world::parse(narrow(text).get());
    check(sameBytes(geometry, *again), "the text came back as another buffer");
}

/// The wide door hands out as many bytes as the size word tells, those of the first ring where a
/// polygon has holes.
void checkWideDoor(const GeometryBuffer& geometry, const WideText& text) {
    std::uint32_t told = 0;
    check(vexaWKB_getSize(&geometry, &told) == VEXA_SUCCESS, "the buffer has no size");

    std::uint32_t needed = 0;
    check(vexaWKB_getSizeFromTextGeom(text.c_str(), &needed) == VEXA_SUCCESS,
          "the wide text does not parse");
    check(needed == told, "the wide text tells another size");

    std::vector<std::byte> image(needed);
    check(vexaWKB_convertTextToBinary(text.c_str(), image.data(), needed) == VEXA_SUCCESS,
          "the wide text does not convert");
    check(std::memcmp(image.data(), &geometry, needed) == 0,
          "the wide text came back as other bytes");
}

void checkRoundTrip(const GeometryBuffer& geometry) {
    const WideText text = write(geometry);
    checkParsedAgain(geometry, text);
    checkWideDoor(geometry, text);
}

// ---- What a buffer holds ------------------------------------------------------------------------

struct Contents {
    std::uint64_t polygons = 0;
    std::uint64_t vertices = 0;
    std::uint64_t bytes = 0;

    Contents& operator+=(const Contents& other) {
        polygons += other.polygons;
        vertices += other.vertices;
        bytes += other.bytes;
        return *this;
    }
};

const char* typeName(const GeometryBuffer& geometry) {
    switch (geometry.type) {
        case VEXA_POLYGON: return "polygon";
        case VEXA_MULTIPOLYGON: return "multipolygon";
        default: throw Error("a country is a polygon or a multipolygon");
    }
}

Contents polygonContents(const GeometryBuffer& polygon) {
    std::uint32_t vertices = 0;
    check(vexaWKB_polygonGetPointCount(&polygon, &vertices) == VEXA_SUCCESS,
          "the polygon's vertices cannot be counted");
    return {1, vertices, fullSize(polygon)};
}

/// Every ring that was parsed is a polygon here, a hole too.
Contents multiPolygonContents(const GeometryBuffer& multiPolygon) {
    std::uint32_t polygons = 0;
    check(vexaWKB_mpolygonGetPolyCount(&multiPolygon, &polygons) == VEXA_SUCCESS,
          "the polygons cannot be counted");

    Contents contents{polygons, 0, fullSize(multiPolygon)};
    for (std::uint32_t index = 0; index < polygons; ++index) {
        std::uint32_t vertices = 0;
        check(vexaWKB_mpolygonGetPointCount(&multiPolygon, index, &vertices) == VEXA_SUCCESS,
              "a polygon's vertices cannot be counted");
        contents.vertices += vertices;
    }
    return contents;
}

Contents contentsOf(const GeometryBuffer& geometry) {
    return geometry.type == VEXA_POLYGON ? polygonContents(geometry)
                                         : multiPolygonContents(geometry);
}

// ---- The table ----------------------------------------------------------------------------------

std::size_t widestName(const std::vector<Country>& countries) {
    std::size_t widest = 0;
    for (const Country& country : countries) widest = std::max(widest, codePoints(country.name));
    return widest;
}

struct Row {
    std::string name;
    std::string type;
    std::string parts;
    std::string vertices;
    std::string bytes;
};

void print(const Row& row, std::size_t nameWidth) {
    std::cout << row.name << std::string(nameWidth - codePoints(row.name), ' ')  //
              << "  " << std::left << std::setw(12) << row.type                  //
              << std::right << std::setw(7) << row.parts                         //
              << std::setw(10) << row.vertices << std::setw(9) << row.bytes << '\n';
}

Contents showCountry(const Country& country, std::size_t nameWidth) {
    const Geometry geometry = world::parse(country.text.c_str());
    const char* const type = typeName(*geometry);
    const Contents contents = contentsOf(*geometry);
    print({country.name, type, std::to_string(contents.polygons), std::to_string(contents.vertices),
           std::to_string(contents.bytes)},
          nameWidth);
    checkRoundTrip(*geometry);
    return contents;
}

void showCountries(const std::string& path) {
    const std::vector<Country> countries = world::readCountries(path);
    const Row titles{"country", "type", "parts", "vertices", "bytes"};
    const std::size_t nameWidth = std::max(widestName(countries), titles.name.size());
    print(titles, nameWidth);

    Contents total;
    std::size_t number = 0;
    for (const Country& country : countries) {
        world::onLine(path, ++number, [&] { total += showCountry(country, nameWidth); });
    }
    std::cout << countries.size() << " countries, " << total.polygons << " polygons, "
              << total.vertices << " vertices, " << total.bytes
              << " bytes: every text came back as the same buffer.\n";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::cerr << "usage: countries FILE\n";
        return EXIT_FAILURE;
    }
    try {
        // So many digits tell every double from its neighbours.
        vexaWKT_setPrecision(std::numeric_limits<double>::max_digits10);
        showCountries(arguments[1]);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cout.flush();  // the rows before the failure stand before its message
        std::cerr << "countries: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
