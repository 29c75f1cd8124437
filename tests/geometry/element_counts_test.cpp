#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

using Count = std::uint32_t (*)(const GeometryBuffer*, std::uint32_t*);
using CountAt = std::uint32_t (*)(const GeometryBuffer*, std::uint32_t, std::uint32_t*);

std::uint32_t told(Count count, const Words& geometry) {
    const Block block = blockOf(geometry);
    std::uint32_t number = kUntouchedNumber;
    EXPECT_EQ(count(block.get(), &number), kSuccess);
    return number;
}

std::uint32_t toldAt(CountAt count, std::uint32_t index, const Words& geometry) {
    const Block block = blockOf(geometry);
    std::uint32_t number = kUntouchedNumber;
    EXPECT_EQ(count(block.get(), index, &number), kSuccess);
    return number;
}

void expectPastTheEnd(CountAt count, std::uint32_t index, const Words& geometry) {
    const Block block = blockOf(geometry);
    std::uint32_t number = kUntouchedNumber;
    EXPECT_EQ(count(block.get(), index, &number), kFailure) << "index " << index;
    EXPECT_EQ(number, kUntouchedNumber);
}

/// A run that tells this many vertices and has none: for the last of a list, which nothing skips.
Words runTelling(std::uint32_t count) {
    return {0, count};
}

const Words kLineOfSix = listWords({runWords(trail(2), 9), runWords({}), runWords(trail(4))}, 0xDD);
const Words kLineOfOne = listWords({runWords(trail(1))});
const Words kWrappingLine = listWords({runWords(trail(3)), runTelling(0xFFFF'FFFF)});

TEST(LineGetPointCount, SumsTheRuns) {
    EXPECT_EQ(told(vexaWKB_lineGetPointCount, joined({headerWords(2), kLineOfSix})), 6U);
    EXPECT_EQ(told(vexaWKB_lineGetPointCount, joined({headerWords(2), kLineOfOne})), 1U);
    EXPECT_EQ(told(vexaWKB_lineGetPointCount, joined({headerWords(2), listWords({})})), 0U);
}

TEST(LineGetPointCount, WrapsAt32Bits) {
    EXPECT_EQ(told(vexaWKB_lineGetPointCount, joined({headerWords(2), kWrappingLine})), 2U);
}

TEST(PolygonGetPointCount, SumsTheRunsOfAllRings) {
    const Words ringAndHole =
        listWords({listWords({runWords(trail(5))}), listWords({runWords(trail(4))})});

    EXPECT_EQ(told(vexaWKB_polygonGetPointCount, joined({headerWords(3), ringAndHole})), 9U);
    EXPECT_EQ(told(vexaWKB_polygonGetPointCount,
                   joined({headerWords(3), listWords({kLineOfSix, listWords({}), kLineOfOne})})),
              7U);
    EXPECT_EQ(told(vexaWKB_polygonGetPointCount, joined({headerWords(3), listWords({})})), 0U);
}

TEST(PolygonGetPointCount, WrapsAt32Bits) {
    const Words rings = listWords({kLineOfSix, kWrappingLine});

    EXPECT_EQ(told(vexaWKB_polygonGetPointCount, joined({headerWords(3), rings})), 8U);
}

TEST(MpointGetPointCount, TellsTheCountAndReadsNoPoint) {
    EXPECT_EQ(told(vexaWKB_mpointGetPointCount, joined({headerWords(4), {0, 9}})), 0U);
    EXPECT_EQ(told(vexaWKB_mpointGetPointCount, joined({headerWords(4), {3, 9}})), 3U);
    EXPECT_EQ(told(vexaWKB_mpointGetPointCount, joined({headerWords(4), {0xFFFF'FFFF, 9}})),
              0xFFFF'FFFFU);
}

TEST(MpointGetPoint, GivesThePointOfTheIndex) {
    const Points points = trail(4);
    const Block geometry = made(vexaWKB_createMultiPoint, points);

    for (std::uint32_t index = 0; index != 4; ++index) {
        GuardedPoints room{1};
        EXPECT_EQ(vexaWKB_mpointGetPoint(geometry.get(), index, room.data()), kSuccess);
        EXPECT_TRUE(room.holdOnly({points[index]}));
    }
}

TEST(MpointGetPoint, RefusesAnIndexPastTheEnd) {
    const Block geometry = made(vexaWKB_createMultiPoint, trail(4));
    const Block none = blockOf(joined({headerWords(4), {0, 0}}));
    GuardedPoints room{1};

    for (const std::uint32_t index : {4U, 5U, 0x8000'0000U, 0xFFFF'FFFFU}) {
        EXPECT_EQ(vexaWKB_mpointGetPoint(geometry.get(), index, room.data()), kFailure);
    }
    EXPECT_EQ(vexaWKB_mpointGetPoint(none.get(), 0, room.data()), kFailure);
    EXPECT_TRUE(room.areUntouched());
}

TEST(MpointGetPoints, CopiesAllPoints) {
    const Points points = trail(3);
    const Block geometry = blockOf(joined({headerWords(4), {3, 0xDDDD}, wordsOf(points)}));

    for (const std::uint32_t capacity : {3U, 4U, 0xFFFF'FFFFU}) {
        std::uint32_t copied = kUntouchedNumber;
        GuardedPoints room{4};
        EXPECT_EQ(vexaWKB_mpointGetPoints(geometry.get(), capacity, room.data(), &copied),
                  kSuccess);
        EXPECT_EQ(copied, 3U);
        EXPECT_TRUE(room.holdOnly(points));
    }
}

TEST(MpointGetPoints, WritesNothingWhenTheRoomIsTooSmall) {
    const Block geometry = made(vexaWKB_createMultiPoint, trail(3));
    const Block huge = blockOf(joined({headerWords(4), {0xFFFF'FFFF, 0}}));
    std::uint32_t copied = kUntouchedNumber;
    GuardedPoints room{3};

    for (const std::uint32_t capacity : {0U, 1U, 2U}) {
        EXPECT_EQ(vexaWKB_mpointGetPoints(geometry.get(), capacity, room.data(), &copied),
                  kFailure);
    }
    EXPECT_EQ(vexaWKB_mpointGetPoints(huge.get(), 0xFFFF'FFFE, room.data(), &copied), kFailure);
    EXPECT_EQ(copied, kUntouchedNumber);
    EXPECT_TRUE(room.areUntouched());
}

TEST(MpointGetPoints, CopiesNoneOfNone) {
    const Block geometry = blockOf(joined({headerWords(4), {0, 0}}));
    std::uint32_t copied = kUntouchedNumber;
    GuardedPoints room{0};

    EXPECT_EQ(vexaWKB_mpointGetPoints(geometry.get(), 0, room.data(), &copied), kSuccess);
    EXPECT_EQ(copied, 0U);
    EXPECT_TRUE(room.areUntouched());
}

TEST(MlineGetLineCount, TellsTheCountAndReadsNoLine) {
    EXPECT_EQ(told(vexaWKB_mlineGetLineCount, joined({headerWords(5), {0, 9}})), 0U);
    EXPECT_EQ(told(vexaWKB_mlineGetLineCount, joined({headerWords(5), {0xFFFF'FFFF, 9}})),
              0xFFFF'FFFFU);
}

TEST(MlineGetPointCount, SumsTheRunsOfTheLine) {
    const Words lines = joined(
        {headerWords(5), listWords({kLineOfSix, listWords({}), kLineOfOne, kWrappingLine}, 0xDD)});

    EXPECT_EQ(toldAt(vexaWKB_mlineGetPointCount, 0, lines), 6U);
    EXPECT_EQ(toldAt(vexaWKB_mlineGetPointCount, 1, lines), 0U);
    EXPECT_EQ(toldAt(vexaWKB_mlineGetPointCount, 2, lines), 1U);
    EXPECT_EQ(toldAt(vexaWKB_mlineGetPointCount, 3, lines), 2U);  // wrapped
    expectPastTheEnd(vexaWKB_mlineGetPointCount, 4, lines);
    expectPastTheEnd(vexaWKB_mlineGetPointCount, 0xFFFF'FFFF, lines);
    expectPastTheEnd(vexaWKB_mlineGetPointCount, 0, joined({headerWords(5), {0, 0}}));
}

TEST(MlineGetPointCount, ReadsNothingBehindTheLine) {
    const Words lines = joined({headerWords(5), {0xFFFF'FFFF, 0}, kLineOfOne, kLineOfSix});

    EXPECT_EQ(toldAt(vexaWKB_mlineGetPointCount, 1, lines), 6U);
}

TEST(MpolygonGetPolyCount, TellsTheCountAndReadsNoPolygon) {
    EXPECT_EQ(told(vexaWKB_mpolygonGetPolyCount, joined({headerWords(6), {0, 9}})), 0U);
    EXPECT_EQ(told(vexaWKB_mpolygonGetPolyCount, joined({headerWords(6), {0xFFFF'FFFF, 9}})),
              0xFFFF'FFFFU);
}

TEST(MpolygonGetPointCount, SumsTheRunsOfAllRingsOfThePolygon) {
    const Words polygons =
        joined({headerWords(6),
                listWords({listWords({kLineOfSix, kLineOfOne}, 0xDD), listWords({}),
                           listWords({kLineOfOne}), listWords({kLineOfOne, kWrappingLine})},
                          0xDD)});

    EXPECT_EQ(toldAt(vexaWKB_mpolygonGetPointCount, 0, polygons), 7U);
    EXPECT_EQ(toldAt(vexaWKB_mpolygonGetPointCount, 1, polygons), 0U);
    EXPECT_EQ(toldAt(vexaWKB_mpolygonGetPointCount, 2, polygons), 1U);
    EXPECT_EQ(toldAt(vexaWKB_mpolygonGetPointCount, 3, polygons), 3U);  // wrapped
    expectPastTheEnd(vexaWKB_mpolygonGetPointCount, 4, polygons);
    expectPastTheEnd(vexaWKB_mpolygonGetPointCount, 0xFFFF'FFFF, polygons);
    expectPastTheEnd(vexaWKB_mpolygonGetPointCount, 0, joined({headerWords(6), {0, 0}}));
}

TEST(MpolygonGetPointCount, ReadsNothingBehindThePolygon) {
    const Words polygons = joined(
        {headerWords(6), {0xFFFF'FFFF, 0}, listWords({kLineOfOne}), listWords({kLineOfSix})});

    EXPECT_EQ(toldAt(vexaWKB_mpolygonGetPointCount, 1, polygons), 6U);
}

}  // namespace
