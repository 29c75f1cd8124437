#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "vexakit/wkt.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

struct MultiWriter {
    const char* name;
    std::int64_t (*write)(const GeometryBuffer*, VexaWChar*, std::int64_t);
    std::string keyword;
    Bytes geometry;
    std::string text;
    Bytes empty;
};

class MultiWriters : public testing::TestWithParam<MultiWriter> {
protected:
    Written written(std::int64_t capacity) const {
        return writtenBy(GetParam().write, GetParam().geometry.geometry(), capacity);
    }
};

TEST_P(MultiWriters, JoinTheirElementsByCommas) {
    const Written written = this->written(200);

    EXPECT_EQ(written.text.text(), wide(GetParam().text));
    EXPECT_EQ(written.result, static_cast<std::int64_t>(GetParam().text.size()));
    EXPECT_TRUE(written.text.isUntouchedFrom(GetParam().text.size() + 1)) << "one terminator";
}

TEST_P(MultiWriters, WriteNoElementsAsAPairOfParentheses) {
    const Written written = writtenBy(GetParam().write, GetParam().empty.geometry(), 100);

    EXPECT_EQ(written.text.text(), wide(GetParam().keyword + ")"));
    EXPECT_EQ(written.result, static_cast<std::int64_t>(GetParam().keyword.size()) + 1);
}

TEST_P(MultiWriters, TerminateBehindTheCapacityThatTheTextFills) {
    const std::size_t length = GetParam().text.size();

    const Written written = this->written(static_cast<std::int64_t>(length));

    EXPECT_EQ(written.result, static_cast<std::int64_t>(length));
    EXPECT_EQ(written.text.text(), wide(GetParam().text));
    EXPECT_EQ(written.text[length], 0);
    EXPECT_TRUE(written.text.areGuardsUntouched());
}

TEST_P(MultiWriters, GiveNothingWhereTheKeywordDoesNotFit) {
    const auto length = static_cast<std::int64_t>(GetParam().keyword.size());
    for (const std::int64_t capacity :
         {length, length - 1, std::int64_t{1}, std::int64_t{0}, std::int64_t{-1},
          std::numeric_limits<std::int64_t>::min()}) {
        GuardedText text(GetParam().keyword.size() + 1);
        EXPECT_EQ(GetParam().write(GetParam().geometry.geometry(), text.data(), capacity), 0)
            << "capacity " << capacity;
        EXPECT_TRUE(text.isUntouchedFrom(0)) << "capacity " << capacity;
    }
}

TEST_P(MultiWriters, FailWhereTheFirstElementDoesNotFit) {
    const Written written = this->written(static_cast<std::int64_t>(GetParam().keyword.size()) + 3);

    EXPECT_EQ(written.result, -1);
    EXPECT_TRUE(written.text.areGuardsUntouched());
}

TEST_P(MultiWriters, TakeTheLargestCapacity) {
    GuardedText text(200);

    EXPECT_EQ(GetParam().write(GetParam().geometry.geometry(), text.data(),
                               std::numeric_limits<std::int64_t>::max()),
              static_cast<std::int64_t>(GetParam().text.size()));
    EXPECT_EQ(text.text(), wide(GetParam().text));
}

TEST_P(MultiWriters, LookAtNoTypeWord) {
    Bytes geometry = GetParam().geometry;
    geometry.setWord(8, 99);

    EXPECT_EQ(writtenBy(GetParam().write, geometry.geometry(), 200).text.text(),
              wide(GetParam().text));
}

TEST_P(MultiWriters, FailForANullPointer) {
    GuardedText text(200);

    EXPECT_EQ(GetParam().write(nullptr, text.data(), 200), -1);
    EXPECT_EQ(GetParam().write(GetParam().geometry.geometry(), nullptr, 200), -1);
}

INSTANTIATE_TEST_SUITE_P(
    Table, MultiWriters,
    testing::Values(
        MultiWriter{"Multilinestring", vexaWKT_multilinestring, "multilinestring(",
                    multilineOf({{{{0, 0, 0}, {1, 1, 1}}}, {{{2, 2, 2}, {3, 3, 3}}}}),
                    "multilinestring((0 0 0,1 1 1),(2 2 2,3 3 3))", multilineOf({})},
        MultiWriter{"Multipolygon", vexaWKT_multipolygon, "multipolygon(",
                    multipolygonOf({{{{{0, 0, 0}, {1, 0, 0}, {0, 0, 0}}}, {{{7, 7, 7}}}},
                                    {{{{5, 5, 0}, {6, 5, 0}, {5, 5, 0}}}}}),
                    "multipolygon(((0 0 0,1 0 0,0 0 0),(7 7 7)),((5 5 0,6 5 0,5 5 0)))",
                    multipolygonOf({})},
        MultiWriter{"Collection", vexaWKT_geometryCollection, "geometrycollection(",
                    collectionOf({pointOf({1, 2, 3}), lineOf({{{0, 0, 0}, {1, 1, 1}}})}),
                    "geometrycollection(point(1 2 3),linestring(0 0 0,1 1 1))", collectionOf({})}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Multilinestring, GivesNothingWithSixteenCells) {
    const Bytes lines = multilineOf({{{{1, 2, 3}}}});

    EXPECT_EQ(writtenBy(vexaWKT_multilinestring, lines.geometry(), 16).result, 0);
    EXPECT_EQ(writtenBy(vexaWKT_multilinestring, lines.geometry(), 17).result, -1);
}

TEST(Multilinestring, ClosesALineOnceMoreBetweenItsRuns) {
    const Bytes lines = multilineOf({{{{0, 0, 0}, {1, 1, 1}}, {{2, 2, 2}, {3, 3, 3}}}});

    EXPECT_EQ(writtenBy(vexaWKT_multilinestring, lines.geometry(), 100).text.text(),
              wide("multilinestring((0 0 0,1 1 1))(2 2 2,3 3 3))"));
}

TEST(Multilinestring, DropsItsClosingWhereTheLastLineTakesTheLastCell) {
    const Bytes lines = multilineOf({{{{1, 2, 3}}}, {{{4, 5, 6}}}});
    const std::string open = "multilinestring((1 2 3),(4 5 6)";
    const auto length = static_cast<std::int64_t>(open.size());

    const Written written = writtenBy(vexaWKT_multilinestring, lines.geometry(), length);

    EXPECT_EQ(written.result, length);
    EXPECT_EQ(written.text.text(), wide(open));
    EXPECT_EQ(written.text[open.size()], 0);
    EXPECT_TRUE(written.text.areGuardsUntouched());
}

TEST(Multilinestring, WritesAnOpenTextWhereTheRoomEndsBetweenTwoRuns) {
    const Bytes lines = multilineOf({{{{1, 2, 3}}, {{4, 5, 6}}}});
    const std::string open = "multilinestring((1 2 3))";
    const auto length = static_cast<std::int64_t>(open.size());

    const Written written = writtenBy(vexaWKT_multilinestring, lines.geometry(), length);

    EXPECT_EQ(written.result, length);
    EXPECT_EQ(written.text.text(), wide(open));
}

TEST(Multilinestring, WithAnEmptyLineFails) {
    const Points points = {{1, 1, 1}};

    EXPECT_EQ(writtenBy(vexaWKT_multilinestring, multilineOf({{}}).geometry(), 100).result, -1);
    EXPECT_EQ(writtenBy(vexaWKT_multilinestring, multilineOf({{{}}}).geometry(), 100).result, -1);
    EXPECT_EQ(
        writtenBy(vexaWKT_multilinestring, multilineOf({{points}, {}}).geometry(), 100).result, -1);
}

TEST(Multilinestring, FailsWhereACommaWouldTakeTheLastCell) {
    const Bytes lines = multilineOf({{{{1, 2, 3}}}, {{{4, 5, 6}}}});
    const std::string first = "multilinestring((1 2 3)";

    const Written written = writtenBy(vexaWKT_multilinestring, lines.geometry(),
                                      static_cast<std::int64_t>(first.size()) + 1);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(written.text.text(), wide(first)) << "the text so far, and no comma";
}

TEST(Multipolygon, AlwaysHasItsClosing) {
    const Bytes polygons = multipolygonOf({{{{{1, 2, 3}}}}});
    const std::string text = "multipolygon(((1 2 3)))";
    const auto length = static_cast<std::int64_t>(text.size());

    EXPECT_EQ(writtenBy(vexaWKT_multipolygon, polygons.geometry(), length).text.text(), wide(text));
    EXPECT_EQ(writtenBy(vexaWKT_multipolygon, polygons.geometry(), length - 1).result, -1);
}

TEST(Multipolygon, WithAnEmptyPolygonFails) {
    const Paths polygon = {{{{1, 1, 1}}}};

    EXPECT_EQ(writtenBy(vexaWKT_multipolygon, multipolygonOf({{}}).geometry(), 100).result, -1);
    EXPECT_EQ(writtenBy(vexaWKT_multipolygon, multipolygonOf({polygon, {}}).geometry(), 100).result,
              -1);
}

TEST(Multipolygon, ClosesARingOnceMoreBetweenItsRuns) {
    const Bytes polygons =
        multipolygonOf({{{{{0, 0, 0}}, {{1, 1, 1}}}}, {{{{2, 2, 2}}}, {{{3, 3, 3}}}}});

    EXPECT_EQ(writtenBy(vexaWKT_multipolygon, polygons.geometry(), 100).text.text(),
              wide("multipolygon(((0 0 0))(1 1 1)),((2 2 2),(3 3 3)))"));
}

}  // namespace
}  // namespace vexa::test
