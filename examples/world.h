#pragma once

#include "vexakit/vexakit.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// What the programs about the world's countries share: their buffers, their file, their failures.
namespace world {

// ---- What goes wrong ----------------------------------------------------------------------------

using Error = std::runtime_error;

void check(bool holds, const char* failure);

/// Says which line of the file it was that `work` failed on.
template <class Work>
void onLine(const std::string& path, std::size_t number, Work work) {
    try {
        work();
    } catch (const Error& error) {
        throw Error(path + ":" + std::to_string(number) + ": " + error.what());
    }
}

// ---- Geometry buffers ---------------------------------------------------------------------------

struct DestroyGeometry {
    void operator()(GeometryBuffer* geometry) const noexcept { vexaWKB_destroyGeom(&geometry); }
};
using Geometry = std::unique_ptr<GeometryBuffer, DestroyGeometry>;

/// Throws the parser's message where the text is wrong.
Geometry parse(const char* text);

/// All bytes. The buffer's own size word tells of the first ring only where a polygon has holes.
std::uint32_t fullSize(const GeometryBuffer& geometry);

using Ring = std::vector<Point3d>;

/// All rings of a polygon or multipolygon, holes too. Each has to be closed.
std::vector<Ring> ringsOf(const GeometryBuffer& geometry);

// ---- The file, one "name<tab>text" a line -------------------------------------------------------

struct Country {
    std::string name;  // UTF-8
    std::string text;
};

std::vector<Country> readCountries(const std::string& path);

struct PlaneCountry {
    Geometry geometry;
    std::size_t straightened;  // rings
    std::size_t merePoints;    // rings left out
};

/// The country's buffer for questions on the plane of longitude and latitude.
///
/// A ring that crosses the date line leaps there from one edge of that plane to the other, and would
/// take in the whole world between: here it goes on beyond 180 degrees. A ring that is a point has
/// no plane of its own, so the library looks at its x and y alone, whichever way the map is turned:
/// it is left out.
PlaneCountry planeCountry(const Country& country);

/// Characters, not bytes.
std::size_t codePoints(std::string_view utf8);

}  // namespace world
