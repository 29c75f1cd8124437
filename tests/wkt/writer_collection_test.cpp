#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "tests/support/writer_model.h"
#include "vexakit/wkt.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::size_t kSkipped = 32768;
constexpr std::int64_t kAmple = 100'000;
const std::string kKeyword = "geometrycollection(";
const std::string kPointText = "point(1 2 3)";
const Bytes kPoint = pointOf({1, 2, 3});
const Bytes kNested = sized(collectionOf({pointOf({7, 8, 9})}));
const Bytes kReserved = header(VEXA_RESERVED, 16);

Written written(const std::vector<Bytes>& members, std::int64_t capacity = 200) {
    return writtenBy(vexaWKT_geometryCollection, collectionOf(members).geometry(), capacity);
}

WideString cellsOf(const Written& written, std::size_t first, std::size_t count) {
    WideString cells;
    for (std::size_t index = first; index < first + count; ++index) cells += written.text[index];
    return cells;
}

WideString untouched(std::size_t count) {
    return WideString(count, kUntouchedCell);
}

TEST(GeometryCollection, WritesMembersOfEveryType) {
    const Points line = {{0, 0, 0}, {1, 1, 1}};

    EXPECT_EQ(written({pointOf({1, 2, 3}), lineOf({line}), polygonOf({{line}}), multipointOf(line),
                       multilineOf({{line}}), multipolygonOf({{{line}}})},
                      300)
                  .text.text(),
              wide("geometrycollection(point(1 2 3),linestring(0 0 0,1 1 1),"
                   "polygon((0 0 0,1 1 1)),multipoint((0 0 0),(1 1 1)),"
                   "multilinestring((0 0 0,1 1 1)),multipolygon(((0 0 0,1 1 1))))"));
}

TEST(GeometryCollection, FailsWhereAMemberFails) {
    EXPECT_EQ(written({kPoint, lineOf({{}})}).result, -1);
    EXPECT_EQ(written({multipointOf({}), kPoint}).result, -1);
    EXPECT_EQ(written({polygonOf({})}).result, -1);
}

TEST(GeometryCollection, HoldsEmptyMultiGeometries) {
    EXPECT_EQ(written({multilineOf({}), multipolygonOf({})}).text.text(),
              wide("geometrycollection(multilinestring(),multipolygon())"));
}

TEST(GeometryCollection, FailsWhereAMultiGeometryHasNoRoomForItsKeyword) {
    EXPECT_EQ(written({multilineOf({})}, static_cast<std::int64_t>(kKeyword.size()) + 16).result,
              -1);
    EXPECT_EQ(written({multipolygonOf({})}, static_cast<std::int64_t>(kKeyword.size()) + 13).result,
              -1);
}

TEST(GeometryCollection, DropsItsClosingBehindAMultiGeometryThatFillsTheRoom) {
    const std::string open = kKeyword + "multilinestring()";
    const auto length = static_cast<std::int64_t>(open.size());

    const Written text = written({multilineOf({})}, length);

    EXPECT_EQ(text.result, length);
    EXPECT_EQ(text.text.text(), wide(open));
    EXPECT_TRUE(text.text.areGuardsUntouched());
}

TEST(GeometryCollection, FailsForASimpleMemberThatFillsTheRoom) {
    EXPECT_EQ(written({kPoint}, static_cast<std::int64_t>((kKeyword + kPointText).size())).result,
              -1);
}

// ---- Finding the next member --------------------------------------------------------------------

TEST(GeometryCollection, StepsByTheSizeWordOfAMember) {
    Bytes stretched = sized(kPoint, 40 + 24);
    stretched.points({{-1, -1, -1}});

    EXPECT_EQ(written({stretched, pointOf({4, 5, 6})}).text.text(),
              wide("geometrycollection(point(1 2 3),point(4 5 6))"));
}

TEST(GeometryCollection, RoundsTheSizeWordUpToEight) {
    for (std::uint32_t size = 33; size <= 40; ++size) {
        EXPECT_EQ(written({sized(kPoint, size), pointOf({4, 5, 6})}).text.text(),
                  wide("geometrycollection(point(1 2 3),point(4 5 6))"))
            << "size word " << size;
    }
}

TEST(GeometryCollection, StepsByTheComputedSizeWhereTheWordIsZero) {
    const Points line = {{0, 0, 0}, {1, 1, 1}};
    const Bytes members[] = {
        pointOf({1, 2, 3}),
        lineOf({line, line}),
        polygonOf({{line}, {line, line}}),
        multipointOf(line),
        multilineOf({{line}, {line}}),
        multipolygonOf({{{line}, {line}}, {{line}}}),
    };
    for (const Bytes& member : members) {
        const Written text = written({sized(member, 0), pointOf({4, 5, 6})}, 300);
        EXPECT_TRUE(readable(text.text.text()).ends_with("),point(4 5 6))"))
            << readable(text.text.text());
    }
}

// A size word from 0xFFFFFFF9 on rounds up to 2^32, which is 0 in 32 bits.
TEST(GeometryCollection, StaysAtAMemberWhoseSizeWordRoundsToZero) {
    EXPECT_EQ(written({sized(kPoint, 0xFFFFFFF9), pointOf({4, 5, 6})}).text.text(),
              wide("geometrycollection(point(1 2 3),point(1 2 3))"));
    EXPECT_EQ(written({sized(kPoint, 0xFFFFFFFF), pointOf({4, 5, 6})}).text.text(),
              wide("geometrycollection(point(1 2 3),point(1 2 3))"));
}

// ---- Members that count as 32768 characters -----------------------------------------------------

TEST(GeometryCollection, FailsWhereMembersFollowANestedOne) {
    EXPECT_EQ(written({kNested, kPoint}).result, -1);
    EXPECT_EQ(written({kPoint, kNested, kPoint}).result, -1);
    EXPECT_EQ(written({kReserved, kPoint}).result, -1);
    EXPECT_EQ(written({header(9, 16), kPoint}).result, -1);
    EXPECT_EQ(written({header(0, 16), kPoint}).result, -1);
}

TEST(GeometryCollection, CountsALastNestedMemberAndStaysOpen) {
    for (const Bytes& last : {kNested, kReserved, header(9, 16), header(0)}) {
        const Written text = written({kPoint, last});
        EXPECT_EQ(text.result,
                  static_cast<std::int64_t>(kKeyword.size() + kPointText.size() + 1 + kSkipped));
        EXPECT_EQ(text.text.text(), wide(kKeyword + kPointText + ","));
        EXPECT_TRUE(text.text.isUntouchedFrom(kKeyword.size() + kPointText.size() + 2));
    }
}

TEST(GeometryCollection, CountsAnOnlyNestedMemberAndStaysOpen) {
    const Written text = written({kNested}, static_cast<std::int64_t>(kKeyword.size()) + 1);

    EXPECT_EQ(text.result, static_cast<std::int64_t>(kKeyword.size() + kSkipped));
    EXPECT_EQ(text.text.text(), wide(kKeyword));
    EXPECT_TRUE(text.text.isUntouchedFrom(kKeyword.size() + 1));
}

TEST(GeometryCollection, SkipsTheCellsOfANestedFirstMember) {
    const Written text = written({kNested, kPoint}, kAmple);
    const std::size_t behind = kKeyword.size() + kSkipped;

    EXPECT_EQ(text.result, static_cast<std::int64_t>(behind + kPointText.size() + 2));
    EXPECT_EQ(text.text.text(), wide(kKeyword));
    EXPECT_EQ(cellsOf(text, kKeyword.size() + 1, kSkipped - 1), untouched(kSkipped - 1));
    EXPECT_EQ(cellsOf(text, behind, 15), wide("," + kPointText + ")") + VexaWChar{0});
    EXPECT_TRUE(text.text.isUntouchedFrom(behind + 15));
}

TEST(GeometryCollection, SkipsTheCellsOfANestedMemberInTheMiddle) {
    const Written text = written({kPoint, kNested, kPoint}, kAmple);
    const std::size_t first = kKeyword.size() + kPointText.size() + 1;
    const std::size_t behind = first + kSkipped;

    EXPECT_EQ(text.result, static_cast<std::int64_t>(behind + kPointText.size() + 2));
    EXPECT_EQ(text.text.text(), wide(kKeyword + kPointText + ","));
    EXPECT_EQ(cellsOf(text, first + 1, kSkipped - 1), untouched(kSkipped - 1));
    EXPECT_EQ(cellsOf(text, behind, 15), wide("," + kPointText + ")") + VexaWChar{0});
}

TEST(GeometryCollection, ClosesBehindTheCellsOfANestedLastMember) {
    const Written text = written({kPoint, kNested}, kAmple);
    const std::size_t behind = kKeyword.size() + kPointText.size() + 1 + kSkipped;

    EXPECT_EQ(text.result, static_cast<std::int64_t>(behind + 1));
    EXPECT_EQ(cellsOf(text, behind, 2), wide(")") + VexaWChar{0});
    EXPECT_TRUE(text.text.isUntouchedFrom(behind + 2));
}

TEST(GeometryCollection, TreatsAMemberBehindAnUnmeasurableOneAsMissing) {
    const Written text = written({header(9), kPoint, kPoint}, kAmple);
    const std::size_t behind = kKeyword.size() + kSkipped;

    EXPECT_EQ(text.result, static_cast<std::int64_t>(behind + 2 * (1 + kSkipped) + 1));
    EXPECT_EQ(cellsOf(text, behind, 3), wide(",") + VexaWChar{0} + kUntouchedCell);
    EXPECT_EQ(cellsOf(text, behind + 1 + kSkipped, 2), wide(",") + VexaWChar{0});
    EXPECT_EQ(cellsOf(text, behind + 2 * (1 + kSkipped), 2), wide(")") + VexaWChar{0});
}

TEST(GeometryCollection, FailsBehindAnUnmeasurableMemberWithOrdinaryRoom) {
    EXPECT_EQ(written({header(9), kPoint}).result, -1);
    EXPECT_EQ(written({header(0), kPoint}).result, -1);
}

TEST(GeometryCollection, WritesAroundTheSkippedCellsWhatTheStepsSay) {
    const std::vector<Bytes> lists[] = {
        {kNested, kPoint},       {kPoint, kReserved, kPoint},         {kPoint, kNested},
        {header(9), kPoint},     {kNested, kNested, multilineOf({})}, {sized(kNested, 0), kPoint},
        {kNested, lineOf({{}})}, {header(9, 16), header(0), kPoint},
    };
    const WriterPair pair = WriterPair::ofType(VEXA_GEOMETRYCOLLECTION);
    for (const std::vector<Bytes>& members : lists) {
        const Bytes collection = collectionOf(members);
        for (const std::int64_t skips : {1, 2}) {
            const std::int64_t skipped = skips * static_cast<std::int64_t>(kSkipped);
            for (std::int64_t beyond = 15; beyond < 70; ++beyond) {
                EXPECT_TRUE(agree(pair, collection.data(), skipped + beyond));
            }
        }
    }
}

TEST(GeometryCollection, TakesTheLargestCapacityAroundSkippedCells) {
    const Bytes collection = collectionOf({kNested, kPoint});

    EXPECT_TRUE(agree(WriterPair::ofType(VEXA_GEOMETRYCOLLECTION), collection.data(),
                      std::numeric_limits<std::int64_t>::max(), 40'000));
}

// A reserved member without a size word has the computed size 0: it is met again and again.
TEST(GeometryCollection, StaysAtAReservedMemberWithoutSizeWord) {
    const Written text = written({header(VEXA_RESERVED), kPoint}, kAmple);

    EXPECT_EQ(text.result,
              static_cast<std::int64_t>(kKeyword.size() + kSkipped + 1 + kSkipped + 1));
}

}  // namespace
}  // namespace vexa::test
