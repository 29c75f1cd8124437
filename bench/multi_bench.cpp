// Geometries of many parts, and the outlines of the world's countries, each against each.
#include "bench/fail.h"
#include "bench/questions.h"
#include "bench/samples.h"
#include "bench/works.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>

namespace vexa::bench {

namespace {

constexpr double kReach = 0.3;

// Of the world's 177, those that all peers take for valid.
constexpr std::size_t kCountries = 174;
constexpr std::size_t kCountryPairs = kCountries * (kCountries - 1) / 2;
constexpr std::size_t kNeighbours = 301;

void add(Works& works, const std::string& name, MakePair make, std::size_t size) {
    works.add({"parts and parts", name, size, true}, [=](Contest& contest) {
        const Questions questions = question(make(size));
        enterQuestions(contest, questions, 0, kReach,
                       {geosPeers(questions), boostPeers(questions)});
    });
}

/// Numbers three by three, up to the next parenthesis that closes.
std::vector<Point3d> ringAt(const char*& at) {
    std::vector<Point3d> ring;
    while (*at != ')') {
        Point3d point{};
        for (double* const number : {&point.x, &point.y, &point.z}) {
            ++at;  // "(", "," or a blank
            char* end = nullptr;
            *number = std::strtod(at, &end);
            at = end;
        }
        ring.push_back(point);
    }
    ++at;
    return ring;
}

/// A line of the file: a name, a tab, a polygon or multipolygon.
Shape countryOf(const std::string& line) {
    const std::string text = line.substr(line.find('\t') + 1);
    Shape shape = {text.starts_with("MULTI") ? VEXA_MULTIPOLYGON : VEXA_POLYGON, {}};
    for (const char* at = text.c_str(); *at != 0;) {
        const bool isRing = *at == '(' && at[1] != '(';
        if (isRing) {
            shape.parts.push_back(ringAt(at));
        } else {
            ++at;
        }
    }
    return shape;
}

/// Rings that leap across the date line are no valid polygons, and not all peers take them.
bool leaps(const std::vector<Point3d>& ring) {
    constexpr double kHalfTurn = 180;
    return std::adjacent_find(ring.begin(), ring.end(), [](const Point3d& a, const Point3d& b) {
               return std::abs(a.x - b.x) > kHalfTurn;
           }) != ring.end();
}

std::vector<Shape> countries() {
    std::ifstream file{VEXAKIT_BENCH_COUNTRIES};
    std::vector<Shape> result;
    for (std::string line; std::getline(file, line);) {
        Shape country = countryOf(line);
        if (std::none_of(country.parts.begin(), country.parts.end(), leaps)) {
            result.push_back(std::move(country));
        }
    }
    if (result.size() != kCountries) fail(VEXAKIT_BENCH_COUNTRIES " is not as expected");
    return result;
}

void enterCountries(Contest& contest) {
    Questions questions{countries(), {}};
    for (std::size_t i = 0; i < questions.shapes.size(); ++i) {
        for (std::size_t k = i + 1; k < questions.shapes.size(); ++k) {
            questions.pairs.emplace_back(i, k);
        }
    }
    enterQuestions(contest, questions, kNeighbours, kReach,
                   {geosPeers(questions), boostPeers(questions)});
}

}  // namespace

void addMultiIntersections(Works& works) {
    for (const std::size_t parts : {100UL, 1000UL, 10000UL}) {
        add(works, "multilinestrings", linesOnGrids, parts);
    }
    for (const std::size_t parts : {100UL, 1000UL, 10000UL}) {
        add(works, "multipolygons", polygonsOnGrids, parts);
    }
    for (const std::size_t parts : {100UL, 1000UL, 10000UL}) {
        add(works, "multipolygon and multilinestring", polygonsAndLinesOnGrids, parts);
    }
    for (const std::size_t points : {10UL, 100UL, 1000UL, 10000UL, 100000UL}) {
        add(works, "multipoints", multipointsApart, points);
    }
    works.add({"countries", "pairs of the world's countries", kCountryPairs}, enterCountries);
}

}  // namespace vexa::bench
