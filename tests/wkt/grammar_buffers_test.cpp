#include "tests/support/parse_support.h"

#include <random>

namespace vexa::test {

namespace {

// ---- What the constructors and appends leave, by table ------------------------------------------

struct Buffer {
    const char* name;
    const char* text;
    VexaGeometryType type;
    Parts parts;
    std::uint32_t sizeWord;
    std::size_t contents;
};

const Buffer kBuffers[] = {
    {"Point", "POINT(1 2 3)", VEXA_POINT, {{{1, 2, 3}}}, 40, 40},
    {"PointOfFractions", "point ( -1.5 2.25e+1 --3 )", VEXA_POINT, {{{-1.5, 22.5, 0}}}, 40, 40},
    {"LineOfOneVertex", "LINESTRING(7 8 9)", VEXA_LINESTRING, {{{7, 8, 9}}}, 56, 56},
    {"LineOfTwoVertices",
     "LINESTRING(0 0 0,1 1 1)",
     VEXA_LINESTRING,
     {{{0, 0, 0}, {1, 1, 1}}},
     80,
     80},
    {"PolygonOfOneRing",
     "POLYGON((0 0 0,4 0 0,4 4 0,0 0 0))",
     VEXA_POLYGON,
     {{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 0, 0}}},
     136,
     136},
    // The word tells of the first ring, as the append leaves it.
    {"PolygonOfTwoRings",
     "POLYGON((0 0 0,1 0 0,1 1 0,0 0 0),(0 0 1,1 0 1,1 1 1,0 0 1))",
     VEXA_POLYGON,
     {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}}, {{0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 0, 1}}},
     136,
     136 + 112},
    {"PolygonOfUnequalRings",
     "POLYGON((1 1 1,2 2 2),(3 3 3),(4 4 4,5 5 5,6 6 6))",
     VEXA_POLYGON,
     {{{1, 1, 1}, {2, 2, 2}}, {{3, 3, 3}}, {{4, 4, 4}, {5, 5, 5}, {6, 6, 6}}},
     88,
     88 + 40 + 88},
    {"MultiPointOfOnePoint", "MULTIPOINT((1 2 3))", VEXA_MULTIPOINT, {{{1, 2, 3}}}, 48, 48},
    {"MultiPointOfThreePoints",
     "MULTIPOINT((1 2 3),(4 5 6),(7 8 9))",
     VEXA_MULTIPOINT,
     {{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}},
     96,
     96},
    {"MultiLineOfOneLine",
     "MULTILINESTRING((0 0 0,1 1 1))",
     VEXA_MULTILINESTRING,
     {{{0, 0, 0}, {1, 1, 1}}},
     88,
     88},
    {"MultiLineOfThreeLines",
     "MULTILINESTRING((0 0 0,1 1 1),(2 2 2),(3 3 3,4 4 4))",
     VEXA_MULTILINESTRING,
     {{{0, 0, 0}, {1, 1, 1}}, {{2, 2, 2}}, {{3, 3, 3}, {4, 4, 4}}},
     88,
     88 + 40 + 64},
    // Made without a size, which the first append computes.
    {"MultiPolygonOfOneRing",
     "MULTIPOLYGON(((0 0 0,4 0 0,0 0 0)))",
     VEXA_MULTIPOLYGON,
     {{{0, 0, 0}, {4, 0, 0}, {0, 0, 0}}},
     0,
     120},
    {"MultiPolygonOfTwoPolygons",
     "MULTIPOLYGON(((0 0 0,4 0 0)),((1 1 1)))",
     VEXA_MULTIPOLYGON,
     {{{0, 0, 0}, {4, 0, 0}}, {{1, 1, 1}}},
     96 + 48,
     96 + 48},
    // A hole becomes a polygon of its own.
    {"MultiPolygonWithAHole",
     "MULTIPOLYGON(((0 0 0,4 0 0,4 4 0,0 0 0),(1 1 0,2 1 0,2 2 0,1 1 0)))",
     VEXA_MULTIPOLYGON,
     {{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 0, 0}}, {{1, 1, 0}, {2, 1, 0}, {2, 2, 0}, {1, 1, 0}}},
     144 + 120,
     144 + 120},
    {"MultiPolygonWithHolesEverywhere",
     "MULTIPOLYGON(((1 0 0),(2 0 0),(3 0 0)),((4 0 0)),((5 0 0),(6 0 0)))",
     VEXA_MULTIPOLYGON,
     {{{1, 0, 0}}, {{2, 0, 0}}, {{3, 0, 0}}, {{4, 0, 0}}, {{5, 0, 0}}, {{6, 0, 0}}},
     72 + 5 * 48,
     72 + 5 * 48},
};

class GrammarBuffers : public testing::TestWithParam<Buffer> {};

TEST_P(GrammarBuffers, AreThoseOfTheConstructors) {
    const Buffer& row = GetParam();
    const Block expected = builtFrom(row.type, row.parts);

    const Parsed result = parsedByGrammar(row.text);

    ASSERT_EQ(result.status, 0U) << result.error;
    EXPECT_EQ(result.geometry->size, row.sizeWord);
    EXPECT_EQ(contentsOf(*result.geometry).size(), row.contents / sizeof(std::uint32_t));
    EXPECT_EQ(contentsOf(*result.geometry), contentsOf(*expected));
}

TEST_P(GrammarBuffers, CanBeGrownAndFreedByTheirOwner) {
    const Buffer& row = GetParam();
    GeometryBuffer* geometry = parsedByGrammar(row.text).geometry.release();
    constexpr Point3d kVertex = {5, 5, 5};

    if (row.type == VEXA_POLYGON) {
        EXPECT_EQ(vexaWKB_addRingToPolygon(&kVertex, 1, &geometry), 0U);
        EXPECT_EQ(contentsOf(*geometry).size() * sizeof(std::uint32_t), row.contents + 40);
    }
    EXPECT_EQ(vexaWKB_destroyGeom(&geometry), 0U);
    EXPECT_EQ(geometry, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Table, GrammarBuffers, testing::ValuesIn(kBuffers), kRowName);

// ---- Word for word, laid out by hand ------------------------------------------------------------

TEST(GrammarBuffers, HaveZeroInTheirPadding) {
    // Every padding word lies beside a count.
    const std::vector<std::uint32_t> words =
        contentsOf(*parsedByGrammar("POLYGON((0 0 0),(0 0 0))").geometry);

    EXPECT_EQ(words, (std::vector<std::uint32_t>{1, 1, 3, 64, 2, 0,              //
                                                 1, 0, 0, 1,  0, 0, 0, 0, 0, 0,  //
                                                 1, 0, 0, 1,  0, 0, 0, 0, 0, 0}));
}

TEST(GrammarBuffers, HaveTheMultiPolygonLaidOutRingByRing) {
    const std::vector<std::uint32_t> words =
        contentsOf(*parsedByGrammar("MULTIPOLYGON(((0 0 0),(0 0 0)))").geometry);

    EXPECT_EQ(words, (std::vector<std::uint32_t>{1, 1, 6, 120, 2, 0,                    //
                                                 1, 0, 1, 0,   0, 1, 0, 0, 0, 0, 0, 0,  //
                                                 1, 0, 1, 0,   0, 1, 0, 0, 0, 0, 0, 0}));
}

TEST(GrammarBuffers, KeepEveryBitOfTheirCoordinates) {
    const Parsed result = parsedByGrammar("POINT(-0 0.1 1e+999)");
    ASSERT_EQ(result.status, 0U);
    Point3d point;
    ASSERT_EQ(vexaWKB_pointGetPoint(result.geometry.get(), &point), 0U);

    EXPECT_EQ(std::bit_cast<std::uint64_t>(point.x), 0x8000000000000000U);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(point.y), 0x3FB999999999999AU);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(point.z), 0x7FF0000000000000U);
}

// ---- Random geometries -------------------------------------------------------------------------

class RandomGeometry {
public:
    explicit RandomGeometry(unsigned seed) : random_(seed) {}

    int upTo(int most) { return std::uniform_int_distribution<int>(1, most)(random_); }

    Points points() {
        std::uniform_real_distribution<double> coordinate(-1000, 1000);
        Points points(static_cast<std::size_t>(upTo(6)));
        for (Point3d& point : points) {
            point = {coordinate(random_), coordinate(random_), coordinate(random_)};
        }
        return points;
    }

private:
    std::mt19937 random_;
};

std::string textOf(const Point3d& point) {
    char text[128];
    std::snprintf(text, sizeof text, "%.17g %.17g %.17g", point.x, point.y, point.z);
    return text;
}

/// Texts in parentheses, joined by ",".
template <class Items, class TextOfItem>
std::string listOf(const Items& items, TextOfItem textOfItem) {
    std::string text;
    for (const auto& item : items) {
        text += text.empty() ? '(' : ',';
        text += textOfItem(item);
    }
    return text += ')';
}

std::string textOf(const Points& points) {
    return listOf(points, [](const Point3d& point) { return textOf(point); });
}

std::string textOf(const Parts& parts) {
    return listOf(parts, [](const Points& part) { return textOf(part); });
}

std::string parenthesised(const Points& points) {
    return listOf(points, [](const Point3d& point) { return textOf(Points{point}); });
}

TEST(GrammarBuffers, AreThoseOfTheConstructorsForRandomGeometries) {
    constexpr unsigned kSeed = 161803;
    SCOPED_TRACE(kSeed);
    RandomGeometry random{kSeed};
    for (int i = 0; i < 300; ++i) {
        const Points points = random.points();
        Parts parts;
        std::string polygons;  // the same rings, put into polygons at random
        for (int left = random.upTo(8); left > 0; --left) {
            parts.push_back(random.points());
            const char* const between = polygons.empty() ? "(" : random.upTo(2) == 1 ? "," : "),(";
            polygons += between + textOf(parts.back());
        }

        const auto expectSame = [](const std::string& text, VexaGeometryType type,
                                   const Parts& of) {
            const Parsed result = parsedByGrammar(text);
            ASSERT_EQ(result.status, 0U) << text << '\n' << result.error;
            EXPECT_EQ(contentsOf(*result.geometry), contentsOf(*builtFrom(type, of))) << text;
        };
        expectSame("POINT(" + textOf(points[0]) + ")", VEXA_POINT, {points});
        expectSame("LINESTRING" + textOf(points), VEXA_LINESTRING, {points});
        expectSame("POLYGON" + textOf(parts), VEXA_POLYGON, parts);
        expectSame("MULTIPOINT" + parenthesised(points), VEXA_MULTIPOINT, {points});
        expectSame("MULTILINESTRING" + textOf(parts), VEXA_MULTILINESTRING, parts);
        expectSame("MULTIPOLYGON(" + polygons + "))", VEXA_MULTIPOLYGON, parts);
    }
}

}  // namespace

}  // namespace vexa::test
