#pragma once

#include "world.h"

#include <ostream>
#include <string>
#include <vector>

/// Draws a map of the world as SVG: longitude to the right, latitude up, a degree as wide as high.
namespace world {

enum class Shade { plain, holdsCity, flownOver, both };

struct MapCountry {
    std::string name;
    std::vector<Ring> rings;
    Shade shade = Shade::plain;
};

struct MapCity {
    std::string name;
    Point3d place;
};

struct Map {
    std::string title;
    std::string subtitle;
    std::vector<MapCountry> countries;
    std::vector<std::vector<Point3d>> flights;
    std::vector<MapCity> cities;
};

void draw(const Map& map, std::ostream& svg);

}  // namespace world
