#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "vexakit/wkt.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

struct Sample {
    const char* name;
    Bytes geometry;
    std::string text;  // what ample room holds; empty where the writer fails
};

const Points kOne = {{1, 2, 3}};
const Points kTwo = {{4, 5, 6}, {-7, 0.25, 9e-9}};
const Runs kRuns = {kOne, kOne, {{8, 8, 8}}};

const Sample kSamples[] = {
    {"Point", pointOf({1.5, -2, 1234.5}), "point(1.5 -2 1234.5)"},
    {"Linestring", lineOf({{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}}), "linestring(0 0 0,1 1 1,2 2 2)"},
    {"LinestringOfTwoRuns", lineOf({kOne, {{4, 5, 6}}}), "linestring(1 2 3)"},
    {"EmptyLinestring", lineOf({{}}), ""},
    {"Polygon", polygonOf({{kOne}, {{{7, 7, 7}, {8, 8, 8}}}}), "polygon((1 2 3),(7 7 7,8 8 8))"},
    {"PolygonOfRuns", polygonOf({{kRuns}, {{{4, 4, 4}}, {{5, 5, 5}}}}),
     "polygon((1 2 3))(1 2 3))(8 8 8),(4 4 4))(5 5 5))"},
    {"PolygonWithEmptyRing", polygonOf({{kRuns}, {}, {kOne}}), ""},
    {"EmptyPolygon", polygonOf({}), ""},
    {"Multipoint", multipointOf({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}),
     "multipoint((1 2 3),(4 5 6),(7 8 9))"},
    {"EmptyMultipoint", multipointOf({}), ""},
    {"Multilinestring", multilineOf({{kOne}, {kOne}, {kOne}}),
     "multilinestring((1 2 3),(1 2 3),(1 2 3))"},
    {"MultilinestringOfRuns", multilineOf({kRuns, kRuns}),
     "multilinestring((1 2 3))(1 2 3))(8 8 8),(1 2 3))(1 2 3))(8 8 8))"},
    {"MultilinestringWithEmptyLine", multilineOf({kRuns, {}}), ""},
    {"EmptyMultilinestring", multilineOf({}), "multilinestring()"},
    {"Multipolygon", multipolygonOf({{{kOne}, {kOne}}, {{kOne}}}),
     "multipolygon(((1 2 3),(1 2 3)),((1 2 3)))"},
    {"MultipolygonOfRuns", multipolygonOf({{kRuns}, {kRuns, {kOne}}}),
     "multipolygon(((1 2 3))(1 2 3))(8 8 8)),((1 2 3))(1 2 3))(8 8 8),(1 2 3)))"},
    {"MultipolygonWithEmptyPolygon", multipolygonOf({{{kOne}}, {}}), ""},
    {"EmptyMultipolygon", multipolygonOf({}), "multipolygon()"},
    {"EmptyCollection", collectionOf({}), "geometrycollection()"},
    {"CollectionOfSimple", collectionOf({pointOf({1, 2, 3}), lineOf({kOne}), multipointOf(kOne)}),
     "geometrycollection(point(1 2 3),linestring(1 2 3),multipoint((1 2 3)))"},
    {"CollectionOfMulti",
     collectionOf({multipolygonOf({{{kOne}}}), polygonOf({kRuns}), multilineOf({kRuns, {kOne}})}),
     "geometrycollection(multipolygon(((1 2 3))),polygon((1 2 3))(1 2 3))(8 8 8)),"
     "multilinestring((1 2 3))(1 2 3))(8 8 8),(1 2 3)))"},
};

class EveryCapacity : public testing::TestWithParam<Sample> {};

TEST_P(EveryCapacity, AmpleRoomHoldsTheWholeText) {
    const Bytes& geometry = GetParam().geometry;
    GuardedText text(300);

    const std::int64_t result = WriterPair::of(geometry).write(geometry.data(), text.data(), 300);

    if (GetParam().text.empty()) {
        EXPECT_EQ(result, -1);
    } else {
        EXPECT_EQ(readable(text.text()), GetParam().text);
        EXPECT_EQ(result, static_cast<std::int64_t>(GetParam().text.size()));
    }
}

TEST_P(EveryCapacity, WritesWhatTheStepsSay) {
    const Bytes& geometry = GetParam().geometry;
    const WriterPair pair = WriterPair::of(geometry);
    for (const std::int32_t precision : {6, 1, 2, 17, 0, -1}) {
        const PrecisionScope scope(precision);
        for (std::int64_t capacity = -3; capacity < 200; ++capacity) {
            EXPECT_TRUE(agree(pair, geometry.data(), capacity)) << "precision " << precision;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Table, EveryCapacity, testing::ValuesIn(kSamples),
                         [](const auto& row) { return std::string(row.param.name); });

/// Geometries of all types, with empty and many-run parts among them.
class RandomGeometry {
public:
    explicit RandomGeometry(std::uint32_t seed) : random_(seed) {}

    Bytes simple() {
        switch (upTo(5)) {
            case 0: return pointOf(point());
            case 1: return lineOf({points(), points()});
            case 2: return polygonOf(paths());
            case 3: return multipointOf(points());
            case 4: return multilineOf(paths());
            default: return multipolygonOf(polygons());
        }
    }
    Bytes any() {
        if (upTo(3) > 0) return simple();
        std::vector<Bytes> members;
        for (int left = upTo(3); left > 0; --left) members.push_back(member());
        return collectionOf(members);
    }
    std::int32_t precision() { return upTo(19) - 2; }

private:
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }
    // Most lists have an element: an empty one ends the text.
    std::size_t count(int most) {
        return static_cast<std::size_t>(upTo(9) == 0 ? 0 : 1 + upTo(most - 1));
    }

    double coordinate() {
        if (upTo(2) > 0) return upTo(9);
        return std::uniform_real_distribution<double>(-1, 1)(random_) * std::pow(10, upTo(20) - 10);
    }
    Point3d point() { return {coordinate(), coordinate(), coordinate()}; }
    Points points() {
        Points points;
        for (std::size_t left = count(3); left > 0; --left) points.push_back(point());
        return points;
    }
    Paths paths() {
        Paths paths(count(3));
        for (Runs& runs : paths) {
            runs.resize(count(2));
            for (Points& run : runs) run = points();
        }
        return paths;
    }
    Polygons polygons() {
        Polygons polygons(count(2));
        for (Paths& rings : polygons) rings = paths();
        return polygons;
    }
    Bytes member() {
        switch (upTo(9)) {
            case 0: return sized(collectionOf({simple()}));
            case 1: return header(VEXA_RESERVED, 16);
            case 2: return header(9);
            case 3:
            case 4: return sized(simple(), 0);
            default: return simple();
        }
    }

    std::mt19937 random_;
};

TEST(RandomGeometries, AreWrittenAtEveryCapacityAsTheStepsSay) {
    const std::uint32_t seed = std::random_device()();
    RandomGeometry random(seed);
    for (int round = 0; round < 60; ++round) {
        const Bytes geometry = random.any();
        const PrecisionScope scope(random.precision());
        const WriterPair pair = WriterPair::of(geometry);
        for (std::int64_t capacity = -2; capacity < 260; ++capacity) {
            ASSERT_TRUE(agree(pair, geometry.data(), capacity))
                << "seed " << seed << ", round " << round;
        }
        ASSERT_TRUE(agree(pair, geometry.data(), 140'000))
            << "seed " << seed << ", round " << round;
    }
}

}  // namespace
}  // namespace vexa::test
