// The yes/no tests beside an independent library of another design, on data in the plane z = 0 where
// the two mean the same: points and polygons with holes, lines that cross properly, polygons that
// overlap or lie apart.
#include "vexakit/vexakit.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <fstream>
#include <geos_c.h>
#include <iostream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

// ---- One geometry in both libraries -------------------------------------------------------------

struct Destroy {
    void operator()(GeometryBuffer* geometry) const { vexaWKB_destroyGeom(&geometry); }
    void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy(geometry); }
};

void ignore(const char*, ...) {}

class Library {
public:
    Library() { initGEOS(ignore, ignore); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { finishGEOS(); }
};

/// The same text read by both.
struct Both {
    explicit Both(const std::string& text) {
        GeometryBuffer* buffer = nullptr;
        EXPECT_EQ(vexaParse_string(text.c_str(), &buffer), 0U) << text;
        ours.reset(buffer);
        GEOSWKTReader* const reader = GEOSWKTReader_create();
        theirs.reset(GEOSWKTReader_read(reader, text.c_str()));
        GEOSWKTReader_destroy(reader);
        EXPECT_NE(theirs, nullptr) << text;
    }

    std::unique_ptr<GeometryBuffer, Destroy> ours;
    std::unique_ptr<GEOSGeometry, Destroy> theirs;
};

struct Answers {
    bool ours;
    bool theirs;
};

Answers ask(const Both& first, const Both& second, double tolerance) {
    std::uint32_t result = 0;
    EXPECT_EQ(vexaWKB_intersectGeometry(first.ours.get(), second.ours.get(), tolerance, &result),
              0U);
    const char theirs = GEOSIntersects(first.theirs.get(), second.theirs.get());
    EXPECT_LE(theirs, 1) << "no answer";
    return {result == 1, theirs == 1};
}

/// How two libraries agreed over many questions.
struct Tally {
    int hits = 0;
    int misses = 0;
    int disagreements = 0;

    void add(const Answers& answers) {
        ++(answers.theirs ? hits : misses);
        if (answers.ours != answers.theirs) ++disagreements;
    }
};

void report(const std::string& what, const Tally& tally) {
    std::cout << what << ": " << tally.hits << " hits, " << tally.misses << " misses, "
              << tally.disagreements << " disagreements\n";
}

// ---- Random texts -------------------------------------------------------------------------------

using Random = std::mt19937_64;
constexpr unsigned kSeed = 7;

double between(Random& random, double low, double high) {
    return std::uniform_real_distribution<double>{low, high}(random);
}

std::string number(double value) {
    std::ostringstream text;
    text.precision(17);
    text << std::fixed << value;
    return text.str();
}

std::string vertex(double x, double y) {
    return number(x) + ' ' + number(y) + " 0";
}

/// A ring that sees its centre from everywhere, closed by its first vertex.
std::string starRing(Random& random, double x, double y, double inner, double outer, int spikes) {
    constexpr double kTurn = 6.283185307179586;
    std::string text = "(";
    std::string first;
    for (int i = 0; i < spikes; ++i) {
        const double angle = kTurn * i / spikes;
        const double radius = between(random, inner, outer);
        const std::string next = vertex(x + radius * std::cos(angle), y + radius * std::sin(angle));
        if (i == 0) first = next;
        text += next;
        text += ',';
    }
    text += first;
    text += ')';
    return text;
}

std::string line(Random& random, int vertices, double size) {
    std::string text = "LINESTRING(";
    double x = between(random, -size, size);
    double y = between(random, -size, size);
    for (int i = 0; i < vertices; ++i) {
        if (i > 0) text += ',';
        text += vertex(x, y);
        x += between(random, -1, 1);
        y += between(random, -1, 1);
    }
    text += ')';
    return text;
}

// ---- Random questions ---------------------------------------------------------------------------

TEST(ComparedOnRandomData, PointsAndPolygonsWithHoles) {
    const Library library;
    Random random{kSeed};
    Tally tally;
    for (int polygons = 0; polygons < 50; ++polygons) {
        const Both polygon{"POLYGON(" + starRing(random, 0, 0, 4, 9, 40) + ',' +
                           starRing(random, 0.5, 0, 1, 3, 12) + ')'};
        for (int points = 0; points < 200; ++points) {
            const Both point{"POINT(" + vertex(between(random, -9, 9), between(random, -9, 9)) +
                             ')'};
            tally.add(ask(point, polygon, 0));
        }
    }
    report("points and polygons with holes", tally);
    EXPECT_EQ(tally.disagreements, 0);
    EXPECT_GT(std::min(tally.hits, tally.misses), 1000);
}

// The tolerance makes up for the rounding of a crossing's place.
TEST(ComparedOnRandomData, LinesThatCross) {
    const Library library;
    Random random{kSeed};
    Tally tally;
    for (int pairs = 0; pairs < 5000; ++pairs) {
        const Both first{line(random, 12, 4)};
        const Both second{line(random, 12, 4)};
        tally.add(ask(first, second, 1e-13));
    }
    report("lines and lines", tally);
    EXPECT_EQ(tally.disagreements, 0);
    EXPECT_GT(std::min(tally.hits, tally.misses), 500);
}

TEST(ComparedOnRandomData, LinesAndPolygons) {
    const Library library;
    Random random{kSeed};
    Tally tally;
    for (int pairs = 0; pairs < 5000; ++pairs) {
        const Both polygon{"POLYGON(" + starRing(random, 0, 0, 1, 3, 20) + ')'};
        const Both path{line(random, 6, 6)};
        tally.add(ask(path, polygon, 0));
    }
    report("lines and polygons", tally);
    EXPECT_EQ(tally.disagreements, 0);
    EXPECT_GT(std::min(tally.hits, tally.misses), 500);
}

TEST(ComparedOnRandomData, Polygons) {
    const Library library;
    Random random{kSeed};
    Tally tally;
    for (int pairs = 0; pairs < 5000; ++pairs) {
        const Both first{"POLYGON(" + starRing(random, 0, 0, 1, 3, 20) + ')'};
        const Both second{
            "POLYGON(" +
            starRing(random, between(random, -6, 6), between(random, -6, 6), 0.5, 3, 16) + ')'};
        tally.add(ask(first, second, 0));
    }
    report("polygons and polygons", tally);
    EXPECT_EQ(tally.disagreements, 0);
    EXPECT_GT(std::min(tally.hits, tally.misses), 500);
}

// ---- The countries of the world -----------------------------------------------------------------

struct Country {
    std::string name;
    Both both;
};

/// Those whose outlines are valid where they stand: rings that leap over the date line or are one
/// point are nothing that the two libraries have to agree on.
std::vector<Country> validCountries() {
    std::vector<Country> countries;
    std::ifstream file{VEXAKIT_COUNTRIES};
    for (std::string text; std::getline(file, text);) {
        const std::size_t tab = text.find('\t');
        Country country{text.substr(0, tab), Both{text.substr(tab + 1)}};
        if (GEOSisValid(country.both.theirs.get()) == 1) countries.push_back(std::move(country));
    }
    return countries;
}

TEST(ComparedOnTheCountries, PointsOfAGrid) {
    const Library library;
    const std::vector<Country> countries = validCountries();
    ASSERT_GT(countries.size(), 170U);
    Tally tally;
    for (double longitude = -179.37; longitude < 180; longitude += 5.03) {
        for (double latitude = -85.41; latitude < 85; latitude += 5.07) {
            const Both point{"POINT(" + vertex(longitude, latitude) + ')'};
            for (const Country& country : countries) tally.add(ask(point, country.both, 0));
        }
    }
    report("points and countries", tally);
    EXPECT_EQ(tally.disagreements, 0);
    EXPECT_GT(tally.hits, 300);
}

// A hole does not count between outlines to us: the one country that fills another's hole meets it by
// lying inside the outline, to them by the border.
TEST(ComparedOnTheCountries, EachPairOfOutlines) {
    const Library library;
    const std::vector<Country> countries = validCountries();
    Tally tally;
    for (std::size_t i = 0; i < countries.size(); ++i) {
        for (std::size_t j = i + 1; j < countries.size(); ++j) {
            const Answers answers = ask(countries[i].both, countries[j].both, 0);
            tally.add(answers);
            EXPECT_EQ(answers.ours, answers.theirs)
                << countries[i].name << " and " << countries[j].name;
        }
    }
    report("countries and countries", tally);
    EXPECT_GT(tally.hits, 250);
}

}  // namespace

}  // namespace vexa::test
