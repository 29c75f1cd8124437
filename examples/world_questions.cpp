// Asks the world's countries three kinds of questions - who holds this city, who lies under this
// flight, who meets whom - asks them all again of a world turned upright, checks that every answer
// stays, and draws what it was told.
//
//     world_questions examples/data/countries-110m.wkt demo.svg

#include "great_circle.h"
#include "map.h"
#include "questions.h"
#include "vexakit/vexakit.h"
#include "world.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using world::AllAnswers;
using world::check;
using world::Error;
using world::Scene;

// ---- What is asked ------------------------------------------------------------------------------

struct City {
    const char* name;  // UTF-8
    double longitude;
    double latitude;
};

/// Well inside their countries, which are drawn coarsely. Maseru is the capital of Lesotho, and so
/// lies in the hole of South Africa.
constexpr City kCities[] = {
    {"Abuja", 7.49, 9.06},       {"Alice Springs", 133.88, -23.70},
    {"Ankara", 32.86, 39.93},    {"Astana", 71.45, 51.17},
    {"Bamako", -8.00, 12.65},    {"Bangkok", 100.52, 13.75},
    {"Beijing", 116.40, 39.90},  {"Berlin", 13.40, 52.52},
    {"Bogotá", -74.07, 4.61},    {"Brasília", -47.88, -15.79},
    {"Cairo", 31.24, 30.04},     {"Canberra", 149.13, -35.28},
    {"Córdoba", -64.18, -31.42}, {"Delhi", 77.21, 28.61},
    {"Denver", -104.99, 39.74},  {"Johannesburg", 28.05, -26.20},
    {"Khartoum", 32.53, 15.59},  {"Kyiv", 30.52, 50.45},
    {"Lusaka", 28.28, -15.42},   {"Madrid", -3.70, 40.42},
    {"Maseru", 27.48, -29.32},   {"Mexico City", -99.13, 19.43},
    {"Moscow", 37.62, 55.76},    {"Nairobi", 36.82, -1.29},
    {"Riyadh", 46.72, 24.63},    {"Santiago", -70.65, -33.45},
    {"Tehran", 51.39, 35.69},    {"Tokyo", 139.69, 35.69},
    {"Winnipeg", -97.14, 49.90}, {"Yakutsk", 129.73, 62.03},
};

struct Flight {
    const char* from;  // names of cities above
    const char* to;
};

constexpr Flight kFlights[] = {{"Madrid", "Tokyo"}, {"Santiago", "Cairo"}};
constexpr std::uint32_t kFlightVertices = 200;

constexpr const char* kNeighboursShown[] = {"Brazil",  "France",   "Germany",     "Kenya",
                                            "Lesotho", "Mongolia", "South Africa"};

Point3d placeOf(const City& city) {
    return {city.longitude, city.latitude, 0};
}

Point3d placeOf(const std::string& name) {
    const auto isNamed = [&](const City& city) { return city.name == name; };
    const auto* const city = std::find_if(std::begin(kCities), std::end(kCities), isNamed);
    check(city != std::end(kCities), "a flight goes to a city that is not in the list");
    return placeOf(*city);
}

using Names = std::vector<std::string>;

struct World {
    Names names;  // of the countries, in the order of the scene's
    Scene scene;
    std::size_t straightened = 0;  // rings
    std::size_t merePoints = 0;    // rings left out
};

void addCountry(const world::Country& country, World& result) {
    world::PlaneCountry plane = world::planeCountry(country);
    result.names.push_back(country.name);
    result.scene.countries.push_back(std::move(plane.geometry));
    result.straightened += plane.straightened;
    result.merePoints += plane.merePoints;
}

World readWorld(const std::string& path) {
    World result;
    for (const world::Country& country : world::readCountries(path)) {
        world::onLine(path, result.names.size() + 1, [&] { addCountry(country, result); });
    }
    for (const City& city : kCities) {
        result.scene.cities.push_back(world::pointGeometry(city.longitude, city.latitude));
    }
    for (const Flight& flight : kFlights) {
        result.scene.flights.push_back(
            world::greatCircle(placeOf(flight.from), placeOf(flight.to), kFlightVertices));
    }
    return result;
}

// ---- What is told -------------------------------------------------------------------------------

/// "Kenya, Uganda", or "nobody".
std::string listOf(const std::vector<std::size_t>& countries, const Names& names) {
    std::string list;
    for (const std::size_t country : countries) {
        if (!list.empty()) list += ", ";
        list += names[country];
    }
    return list.empty() ? "nobody" : list;
}

void print(const std::string& asked, std::size_t width, const std::string& told) {
    std::cout << "  " << asked << std::string(width - world::codePoints(asked), ' ') << told
              << '\n';
}

void showWorld(const World& world) {
    std::cout << world.names.size() << " countries; " << world.straightened
              << " rings go on across the date line, " << world.merePoints
              << " that is a mere point is left out.\n\n";
}

void showCities(const AllAnswers& answers, const Names& names) {
    constexpr std::size_t kNameWidth = 16;
    std::cout << "Which country holds the city?\n";
    for (std::size_t city = 0; city < std::size(kCities); ++city) {
        print(kCities[city].name, kNameWidth,
              listOf(answers.cityInCountry.columnsOfRow(city), names));
    }
}

void showFlights(const AllAnswers& answers, const Names& names) {
    std::cout << "\nWhich countries lie under the flight?\n";
    for (std::size_t flight = 0; flight < std::size(kFlights); ++flight) {
        std::cout << "  " << kFlights[flight].from << " to " << kFlights[flight].to << ": "
                  << listOf(answers.flightOverCountry.columnsOfRow(flight), names) << '\n';
    }
}

void showNeighbours(const AllAnswers& answers, const Names& names) {
    constexpr std::size_t kNameWidth = 16;
    std::cout << "\nWhich countries meet?\n"
              << "  " << answers.rangesOverlap.yesCount() / 2 << " pairs by their ranges, "
              << answers.outlinesMeet.yesCount() / 2 << " by their outlines\n";
    for (const char* const shown : kNeighboursShown) {
        const auto country = std::find(names.begin(), names.end(), shown);
        check(country != names.end(), "a country is missing whose neighbours are to be shown");
        const auto row = static_cast<std::size_t>(country - names.begin());
        print(shown, kNameWidth, listOf(answers.outlinesMeet.columnsOfRow(row), names));
    }
}

// ---- What has to hold ---------------------------------------------------------------------------

/// Takes (x, y, z) to (z, x, y): the plane of the map then stands upright, and no coordinate is
/// rounded.
Transform uprightTurn() {
    Transform turn{};
    check(transform_initRotation(&turn, 0, 0, 1, 1, 0, 0, 0, 1, 0) == VEXA_SUCCESS, "no rotation");
    return turn;
}

void checkSameUpright(const AllAnswers& answers, const Scene& scene) {
    const AllAnswers upright = world::askAll(world::moved(scene, uprightTurn()));
    const std::size_t differences = answers.differencesFrom(upright);
    if (differences != 0) {
        throw Error(std::to_string(differences) + " of " + std::to_string(answers.size()) +
                    " answers changed when the world was turned upright");
    }
    std::cout << "\nAll " << answers.size()
              << " answers stayed the same when the world was turned upright.\n";
}

void checkBothOrders(const AllAnswers& answers) {
    check(answers.rangesOverlap.asymmetries() == 0, "ranges overlap in one order only");
    check(answers.outlinesMeet.asymmetries() == 0, "outlines meet in one order only");
}

// ---- The picture --------------------------------------------------------------------------------

world::Shade shadeOf(const AllAnswers& answers, std::size_t country) {
    const bool holdsCity = answers.cityInCountry.anyInColumn(country);
    const bool flownOver = answers.flightOverCountry.anyInColumn(country);
    if (holdsCity && flownOver) return world::Shade::both;
    if (holdsCity) return world::Shade::holdsCity;
    return flownOver ? world::Shade::flownOver : world::Shade::plain;
}

world::Map mapOf(const World& world, const AllAnswers& answers) {
    world::Map map;
    map.title = "Which country holds the city, which ones lie under the flight?";
    map.subtitle = "answered by vexaWKB_intersectGeometry";
    for (std::size_t country = 0; country < world.names.size(); ++country) {
        map.countries.push_back({world.names[country],
                                 world::ringsOf(*world.scene.countries[country]),
                                 shadeOf(answers, country)});
    }
    for (const world::Geometry& flight : world.scene.flights) {
        map.flights.push_back(world::verticesOf(*flight));
    }
    for (const City& city : kCities) map.cities.push_back({city.name, placeOf(city)});
    return map;
}

void writeMap(const world::Map& map, const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    world::draw(map, file);
    file.close();
    if (!file) throw Error(path + ": cannot be written");
    std::cout << "The map is in " << path << ".\n";
}

void askTheWorld(const std::string& data, const std::string& picture) {
    const World world = readWorld(data);
    const AllAnswers answers = world::askAll(world.scene);
    showWorld(world);
    showCities(answers, world.names);
    showFlights(answers, world.names);
    showNeighbours(answers, world.names);
    checkBothOrders(answers);
    checkSameUpright(answers, world.scene);
    writeMap(mapOf(world, answers), picture);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::cerr << "usage: world_questions DATA SVG\n";
        return EXIT_FAILURE;
    }
    try {
        askTheWorld(arguments[1], arguments[2]);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cout.flush();  // the answers before the failure stand before its message
        std::cerr << "world_questions: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
