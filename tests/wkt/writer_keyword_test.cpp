#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "vexakit/geometry.h"
#include "vexakit/wkt.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

const Points kLine = {{0, 0, 0}, {1.5, 2, -3}};

struct KeywordWriter {
    const char* name;
    std::int64_t (*write)(const GeometryBuffer*, VexaWChar*, std::int64_t);
    std::string keyword;
    Bytes geometry;
    std::string text;
};

class KeywordWriters : public testing::TestWithParam<KeywordWriter> {
protected:
    Written written(std::int64_t capacity) const {
        return writtenBy(GetParam().write, GetParam().geometry.geometry(), capacity);
    }
};

TEST_P(KeywordWriters, WrapTheirPoints) {
    const Written written = this->written(100);

    EXPECT_EQ(written.text.text(), wide(GetParam().text));
    EXPECT_EQ(written.result, static_cast<std::int64_t>(GetParam().text.size()));
    EXPECT_TRUE(written.text.isUntouchedFrom(GetParam().text.size() + 1)) << "one terminator";
}

TEST_P(KeywordWriters, NeedRoomForTheTerminator) {
    const auto length = static_cast<std::int64_t>(GetParam().text.size());

    EXPECT_EQ(written(length).result, -1);
    EXPECT_EQ(written(length + 1).result, length);
    EXPECT_EQ(written(length + 1).text.text(), wide(GetParam().text));
}

TEST_P(KeywordWriters, LeaveTheTextWithoutItsClosingWhereThatDoesNotFit) {
    const std::size_t length = GetParam().text.size();

    const Written written = this->written(static_cast<std::int64_t>(length));

    EXPECT_EQ(written.text.text(), wide(GetParam().text.substr(0, length - 1)));
    EXPECT_TRUE(written.text.isUntouchedFrom(length));
}

TEST_P(KeywordWriters, FailAndWriteNothingWhereTheKeywordDoesNotFit) {
    const auto length = static_cast<std::int64_t>(GetParam().keyword.size());
    for (const std::int64_t capacity :
         {length, length - 1, std::int64_t{1}, std::int64_t{0}, std::int64_t{-1},
          std::numeric_limits<std::int64_t>::min()}) {
        GuardedText text(GetParam().keyword.size() + 1);
        EXPECT_EQ(GetParam().write(GetParam().geometry.geometry(), text.data(), capacity), -1)
            << "capacity " << capacity;
        EXPECT_TRUE(text.isUntouchedFrom(0)) << "capacity " << capacity;
    }
}

TEST_P(KeywordWriters, WriteTheKeywordBeforeTheyFail) {
    const Written written = this->written(static_cast<std::int64_t>(GetParam().keyword.size()) + 1);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(WideString(written.text.text(), 0, GetParam().keyword.size()),
              wide(GetParam().keyword));
}

TEST_P(KeywordWriters, TakeTheLargestCapacity) {
    GuardedText text(100);

    EXPECT_EQ(GetParam().write(GetParam().geometry.geometry(), text.data(),
                               std::numeric_limits<std::int64_t>::max()),
              static_cast<std::int64_t>(GetParam().text.size()));
    EXPECT_EQ(text.text(), wide(GetParam().text));
}

TEST_P(KeywordWriters, LookAtNoTypeWord) {
    Bytes geometry = GetParam().geometry;
    geometry.setWord(8, 99);

    EXPECT_EQ(writtenBy(GetParam().write, geometry.geometry(), 100).text.text(),
              wide(GetParam().text));
}

TEST_P(KeywordWriters, FailForANullPointer) {
    GuardedText text(100);

    EXPECT_EQ(GetParam().write(nullptr, text.data(), 100), -1);
    EXPECT_EQ(GetParam().write(GetParam().geometry.geometry(), nullptr, 100), -1);
    EXPECT_EQ(GetParam().write(nullptr, text.data(), 0), -1);
}

INSTANTIATE_TEST_SUITE_P(
    Table, KeywordWriters,
    testing::Values(
        KeywordWriter{"Point", vexaWKT_point, "point(", pointOf({1, 2, 3}), "point(1 2 3)"},
        KeywordWriter{"Linestring", vexaWKT_linestring, "linestring(", lineOf({kLine}),
                      "linestring(0 0 0,1.5 2 -3)"},
        KeywordWriter{"Polygon", vexaWKT_polygon, "polygon(",
                      polygonOf({{{{0, 0, 0}, {9, 0, 0}, {0, 0, 0}}}, {{{2, 2, 0}, {3, 3, 0}}}}),
                      "polygon((0 0 0,9 0 0,0 0 0),(2 2 0,3 3 0))"},
        KeywordWriter{"Multipoint", vexaWKT_multipoint, "multipoint(", multipointOf(kLine),
                      "multipoint((0 0 0),(1.5 2 -3))"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Point, NeedsThirteenCellsForTwelveCharacters) {
    const Bytes point = pointOf({1, 2, 3});

    EXPECT_EQ(writtenBy(vexaWKT_point, point.geometry(), 13).result, 12);
    EXPECT_EQ(writtenBy(vexaWKT_point, point.geometry(), 12).result, -1);
}

TEST(Linestring, FailsWithElevenCells) {
    EXPECT_EQ(writtenBy(vexaWKT_linestring, lineOf({kLine}).geometry(), 11).result, -1);
}

TEST(Linestring, WritesItsFirstRunOnly) {
    const Points first = {{0, 0, 0}, {1, 1, 1}};
    const Points second = {{2, 2, 2}, {3, 3, 3}};
    GeometryBuffer* line = nullptr;
    ASSERT_EQ(vexaWKB_createLine(first.data(), 2, &line), 0U);
    ASSERT_EQ(vexaWKB_addLineToLine(second.data(), 2, &line), 0U);

    EXPECT_EQ(
        writtenBy(vexaWKT_linestring, static_cast<const GeometryBuffer*>(line), 100).text.text(),
        wide("linestring(0 0 0,1 1 1)"));
    vexaWKB_destroyGeom(&line);
}

TEST(Linestring, DoesNotLookAtTheRunCount) {
    Bytes line = lineOf({{{1, 2, 3}}});
    line.setWord(kBodyOffset, 0);

    EXPECT_EQ(writtenBy(vexaWKT_linestring, line.geometry(), 100).text.text(),
              wide("linestring(1 2 3)"));
}

TEST(Linestring, WithoutPointsFails) {
    const Written written = writtenBy(vexaWKT_linestring, lineOf({{}}).geometry(), 100);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(written.text.text(), wide("linestring("));
}

TEST(Multipoint, WithoutPointsFails) {
    const Written written = writtenBy(vexaWKT_multipoint, multipointOf({}).geometry(), 100);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(written.text.text(), wide("multipoint("));
}

TEST(Polygon, WithoutRingsFails) {
    const Written written = writtenBy(vexaWKT_polygon, polygonOf({}).geometry(), 100);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(written.text.text(), wide("polygon("));
}

TEST(Polygon, WithAnEmptyRingFails) {
    const Points points = {{1, 1, 1}};

    EXPECT_EQ(writtenBy(vexaWKT_polygon, polygonOf({{}}).geometry(), 100).result, -1);
    EXPECT_EQ(writtenBy(vexaWKT_polygon, polygonOf({{{}}}).geometry(), 100).result, -1);
    EXPECT_EQ(writtenBy(vexaWKT_polygon, polygonOf({{points}, {}}).geometry(), 100).result, -1);
    EXPECT_EQ(writtenBy(vexaWKT_polygon, polygonOf({{points, {}}}).geometry(), 100).result, -1);
}

TEST(Polygon, ClosesARingOnceMoreBetweenItsRuns) {
    const Bytes polygon = polygonOf({{{{0, 0, 0}}, {{1, 1, 1}}}, {{{2, 2, 2}}}});

    EXPECT_EQ(writtenBy(vexaWKT_polygon, polygon.geometry(), 100).text.text(),
              wide("polygon((0 0 0))(1 1 1),(2 2 2))"));
}

// "polygon((1 2 3" takes 14 cells and the ring's ")" the last: the tests before that ask for one
// cell, and its terminator comes behind the capacity.
TEST(Polygon, TerminatesBehindTheCapacityWhereARingEndsThere) {
    const Bytes polygon = polygonOf({{{{1, 2, 3}}}});

    const Written written = writtenBy(vexaWKT_polygon, polygon.geometry(), 15);

    EXPECT_EQ(written.result, -1);
    EXPECT_EQ(written.text.text(), wide("polygon((1 2 3)"));
    EXPECT_EQ(written.text[15], 0);
    EXPECT_TRUE(written.text.areGuardsUntouched());
}

}  // namespace
}  // namespace vexa::test
