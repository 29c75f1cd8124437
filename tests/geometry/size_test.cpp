#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

using TellSize = std::uint32_t (*)(const GeometryBuffer*, std::uint32_t*);

std::uint32_t told(TellSize tell, const Words& geometry) {
    const Block block = blockOf(geometry);
    std::uint32_t size = kUntouchedNumber;
    EXPECT_EQ(tell(block.get(), &size), kSuccess);
    EXPECT_EQ(wordsOf(block, bytesOf(geometry)), geometry) << "the buffer was written";
    return size;
}

/// A run whose vertices are missing: for the last of a buffer, whose size is told without them.
Words runTelling(std::uint32_t count) {
    return {0, count};
}

struct SizeCase {
    const char* name;
    std::uint32_t type;
    TellSize tell;
    Words body;
    std::uint32_t size;
};

const Words kTwoRuns = listWords({runWords(trail(2), 3), runWords(trail(3))}, 0xDD);  // 144 bytes
const Words kNoRuns = listWords({}, 0xDD);
const Words kEmptyRuns = listWords({runWords({}), runWords({})});            // 24 bytes
const Words kThreePaths = listWords({kTwoRuns, kNoRuns, kEmptyRuns}, 0xDD);  // 184 bytes

// A run of 178956971 vertices is 16 bytes and a whole turn; one of 2^32 - 1 is 16 bytes short of
// whole turns.
constexpr std::uint32_t kTurn = 178'956'971;
constexpr std::uint32_t kMost = 0xFFFF'FFFF;

const SizeCase kSizeCases[] = {
    {"Point", 1, vexaWKB_getPointSize, wordsOf(trail(1)), 40},

    {"LineOfNoRuns", 2, vexaWKB_getLineSize, listWords({}), 24},
    {"LineOfOneRun", 2, vexaWKB_getLineSize, listWords({runWords(trail(2))}), 80},
    {"LineOfTwoRuns", 2, vexaWKB_getLineSize, kTwoRuns, 16 + 144},
    {"LineOfEmptyRuns", 2, vexaWKB_getLineSize, kEmptyRuns, 40},
    {"LineWithoutItsVertices", 2, vexaWKB_getLineSize, listWords({runTelling(1000)}), 24'032},
    {"LineThatWraps", 2, vexaWKB_getLineSize, listWords({runTelling(kTurn)}), 40},
    {"LineOfMostVertices", 2, vexaWKB_getLineSize, listWords({runTelling(kMost)}), 8},

    {"PolygonOfNoRings", 3, vexaWKB_getPolygonSize, listWords({}), 24},
    {"PolygonOfOneRing", 3, vexaWKB_getPolygonSize, listWords({listWords({runWords(trail(4))})}),
     136},
    {"PolygonOfManyParts", 3, vexaWKB_getPolygonSize, kThreePaths, 16 + 184},
    {"PolygonThatWraps", 3, vexaWKB_getPolygonSize,
     listWords({kTwoRuns, listWords({runTelling(kTurn)})}), 16 + 8 + 144 + 8 + 16},

    {"MultiPointOfNone", 4, vexaWKB_getMultiPointSize, {0, 0xDD}, 24},
    {"MultiPointOfTwo", 4, vexaWKB_getMultiPointSize, {2, 0xDD}, 72},
    {"MultiPointThatJustFits", 4, vexaWKB_getMultiPointSize, {178'956'969, 0}, 4'294'967'280},
    {"MultiPointThatWraps", 4, vexaWKB_getMultiPointSize, {kTurn, 0}, 32},
    {"MultiPointThatWrapsToNothing", 4, vexaWKB_getMultiPointSize, {0x1FFF'FFFF, 0}, 0},
    {"MultiPointOfMost", 4, vexaWKB_getMultiPointSize, {kMost, 0}, 0},

    {"MultiLineOfNoLines", 5, vexaWKB_getMultiLineSize, listWords({}), 24},
    {"MultiLineOfOneLine", 5, vexaWKB_getMultiLineSize,
     listWords({listWords({runWords(trail(4))})}), 136},
    {"MultiLineOfManyParts", 5, vexaWKB_getMultiLineSize, kThreePaths, 16 + 184},
    {"MultiLineThatWraps", 5, vexaWKB_getMultiLineSize,
     listWords({kTwoRuns, listWords({runTelling(kTurn)})}), 16 + 8 + 144 + 8 + 16},

    {"MultiPolygonOfNoPolygons", 6, vexaWKB_getMultiPolygonSize, listWords({}), 24},
    {"MultiPolygonOfOneRing", 6, vexaWKB_getMultiPolygonSize,
     listWords({listWords({listWords({runWords(trail(4))})})}), 48 + 96},
    {"MultiPolygonOfManyParts", 6, vexaWKB_getMultiPolygonSize,
     listWords({kThreePaths, listWords({}), kThreePaths}, 0xDD), 24 + 184 + 8 + 184},
    {"MultiPolygonThatWraps", 6, vexaWKB_getMultiPolygonSize,
     listWords({kThreePaths, listWords({listWords({runTelling(kTurn)})})}), 24 + 184 + 8 + 8 + 16},
};

class SizeOf : public testing::TestWithParam<SizeCase> {};

TEST_P(SizeOf, IsToldByTheContents) {
    for (const std::uint32_t sizeWord : {0U, 1U, 40U, kMost}) {
        const Words geometry = joined({headerWords(GetParam().type, sizeWord), GetParam().body});

        EXPECT_EQ(told(GetParam().tell, geometry), GetParam().size);
        EXPECT_EQ(told(vexaWKB_calculateSize, geometry), GetParam().size);
    }
}

TEST_P(SizeOf, DependsOnNoTypeWordWhereTheNameTellsTheLayout) {
    for (const std::uint32_t type : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, kMost}) {
        EXPECT_EQ(told(GetParam().tell, joined({headerWords(type), GetParam().body})),
                  GetParam().size);
    }
}

TEST_P(SizeOf, IsComputedWhenTheSizeWordIsZero) {
    EXPECT_EQ(told(vexaWKB_getSize, joined({headerWords(GetParam().type), GetParam().body})),
              GetParam().size);
}

TEST_P(SizeOf, IsTheSizeWordWhenItIsNot) {
    for (const std::uint32_t sizeWord : {1U, 41U, 1000U, kMost}) {
        EXPECT_EQ(told(vexaWKB_getSize,
                       joined({headerWords(GetParam().type, sizeWord), GetParam().body})),
                  sizeWord);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, SizeOf, testing::ValuesIn(kSizeCases),
                         [](const auto& row) { return std::string{row.param.name}; });

class SizeFunction : public testing::TestWithParam<TellSize> {};

TEST_P(SizeFunction, RefusesNullPointers) {
    const Block geometry = blockOf(joined({headerWords(1), wordsOf(trail(1))}));
    std::uint32_t size = kUntouchedNumber;

    EXPECT_EQ(GetParam()(nullptr, &size), kFailure);
    EXPECT_EQ(GetParam()(geometry.get(), nullptr), kFailure);
    EXPECT_EQ(GetParam()(nullptr, nullptr), kFailure);
    EXPECT_EQ(size, kUntouchedNumber);
}

INSTANTIATE_TEST_SUITE_P(All, SizeFunction,
                         testing::Values(vexaWKB_getPointSize, vexaWKB_getLineSize,
                                         vexaWKB_getPolygonSize, vexaWKB_getMultiPointSize,
                                         vexaWKB_getMultiLineSize, vexaWKB_getMultiPolygonSize,
                                         vexaWKB_calculateSize, vexaWKB_getSize));

TEST(GetPointSize, ReadsNoByteOfTheBuffer) {
    // An address that no program can read.
    // NOLINTNEXTLINE(performance-no-int-to-ptr): no object lies there
    const auto* const nowhere = reinterpret_cast<const GeometryBuffer*>(std::uintptr_t{16});
    std::uint32_t size = kUntouchedNumber;

    EXPECT_EQ(vexaWKB_getPointSize(nowhere, &size), kSuccess);
    EXPECT_EQ(size, 40U);
}

TEST(CalculateSize, WritesNothingForTheReservedType) {
    const Block geometry = blockOf(headerWords(8));
    std::uint32_t size = kUntouchedNumber;

    EXPECT_EQ(vexaWKB_calculateSize(geometry.get(), &size), kSuccess);
    EXPECT_EQ(vexaWKB_getSize(geometry.get(), &size), kSuccess);
    EXPECT_EQ(size, kUntouchedNumber);
}

class SizeOfUnknownType : public testing::TestWithParam<std::uint32_t> {};

TEST_P(SizeOfUnknownType, CannotBeComputed) {
    const Block geometry = blockOf(joined({headerWords(GetParam()), {0, 0}}));
    std::uint32_t size = kUntouchedNumber;

    EXPECT_EQ(vexaWKB_calculateSize(geometry.get(), &size), kFailure);
    EXPECT_EQ(vexaWKB_getSize(geometry.get(), &size), kFailure);
    geometry->size = 24;
    EXPECT_EQ(vexaWKB_calculateSize(geometry.get(), &size), kFailure);
    EXPECT_EQ(size, kUntouchedNumber);
}

TEST_P(SizeOfUnknownType, IsTheSizeWordWhenThereIsOne) {
    EXPECT_EQ(told(vexaWKB_getSize, headerWords(GetParam(), 77)), 77U);
}

INSTANTIATE_TEST_SUITE_P(Types, SizeOfUnknownType,
                         testing::Values(0, 9, 10, 0x101, 0x7FFF'FFFF, 0x8000'0000, 0x8000'0001,
                                         0xFFFF'FFFF));

TEST(CalculateSize, BringsAStaleSizeWordUpToDate) {
    Block polygon = made(vexaWKB_createPolygon, trail(4));
    ASSERT_EQ(grow(vexaWKB_addRingToPolygon, polygon, trail(3)), kSuccess);
    std::uint32_t size = kUntouchedNumber;
    EXPECT_EQ(vexaWKB_getSize(polygon.get(), &size), kSuccess);
    EXPECT_EQ(size, 136U);

    EXPECT_EQ(vexaWKB_calculateSize(polygon.get(), &polygon->size), kSuccess);

    EXPECT_EQ(vexaWKB_getSize(polygon.get(), &size), kSuccess);
    EXPECT_EQ(size, 136U + 16 + 24 * 3);
}

}  // namespace
