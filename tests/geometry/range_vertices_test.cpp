#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

using TellRange = std::uint32_t (*)(const GeometryBuffer*, Point3d*, Point3d*);

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Point3d kEmptyLow = {kInfinity, kInfinity, kInfinity};
constexpr Point3d kEmptyHigh = {-kInfinity, -kInfinity, -kInfinity};

/// Both corners between guards, and the buffer as it was.
void expectRange(TellRange tell, const Words& geometry, const Point3d& low, const Point3d& high) {
    const Block block = blockOf(geometry);
    GuardedPoints toldLow(1);
    GuardedPoints toldHigh(1);
    EXPECT_EQ(tell(block.get(), toldLow.data(), toldHigh.data()), kSuccess);
    EXPECT_TRUE(toldLow.holdOnly({low}));
    EXPECT_TRUE(toldHigh.holdOnly({high}));
    EXPECT_EQ(wordsOf(block, bytesOf(geometry)), geometry) << "the buffer was written";
}

struct RangeCase {
    const char* name;
    std::uint32_t type;
    TellRange tell;
    Words body;
    Point3d low;
    Point3d high;
};

void PrintTo(const RangeCase& row, std::ostream* out) {
    *out << row.name;
}

Words ring(const Points& points) {
    return listWords({runWords(points)}, 0xDD);
}

// One vertex a part, so that a part that is not visited is missed in the box.
const Words kLeft = runWords({{-9, 1, 1}}, 3);
const Words kRight = runWords({{9, 1, 1}}, 3);
const Words kFront = runWords({{1, -8, 1}}, 3);
const Words kBack = runWords({{1, 8, 1}}, 3);
const Words kDown = runWords({{1, 1, -7}}, 3);
const Words kUp = runWords({{1, 1, 7}}, 3);
constexpr Point3d kLeast = {-9, -8, -7};
constexpr Point3d kMost = {9, 8, 7};

const Words kAllRuns = listWords({kLeft, kRight, kFront, kBack, kDown, kUp}, 0xDD);
const Words kAllPaths = listWords({listWords({kLeft, kRight}, 0xDD), listWords({kFront}, 0xDD),
                                   listWords({kBack, kDown, kUp}, 0xDD)},
                                  0xDD);
const Words kAllPolygons = listWords(
    {listWords({listWords({kLeft}), listWords({kRight, kFront})}), listWords({listWords({kBack})}),
     listWords({listWords({kDown}), listWords({kUp})}, 0xDD)},
    0xDD);

const Points kOuter = {{0, 0, 0}, {9, 0, 1}, {9, 9, 2}, {0, 9, 1}, {0, 0, 0}};
const Points kHole = {{2, 2, 1}, {4, 2, 1}, {4, 4, 1}, {2, 2, 1}};

const RangeCase kRangeCases[] = {
    {"Point", 1, vexaWKB_getPointRange, wordsOf({{1, -2, 3}}), {1, -2, 3}, {1, -2, 3}},
    {"LineOfOneVertex", 2, vexaWKB_getLineRange, ring({{1, -2, 3}}), {1, -2, 3}, {1, -2, 3}},
    {"LineOfOneRun",
     2,
     vexaWKB_getLineRange,
     ring({{1, 5, 0}, {3, 2, -1}, {2, 4, 7}}),
     {1, 2, -1},
     {3, 5, 7}},
    {"LineOfManyRuns", 2, vexaWKB_getLineRange, kAllRuns, kLeast, kMost},
    {"PolygonWithAHole",
     3,
     vexaWKB_getPolygonRange,
     listWords({ring(kOuter), ring(kHole)}),
     {0, 0, 0},
     {9, 9, 2}},
    {"PolygonWithItsHoleFirst",
     3,
     vexaWKB_getPolygonRange,
     listWords({ring(kHole), ring(kOuter)}),
     {0, 0, 0},
     {9, 9, 2}},
    {"PolygonOfManyParts", 3, vexaWKB_getPolygonRange, kAllPaths, kLeast, kMost},
    {"MultiPoint",
     4,
     vexaWKB_getMultiPointRange,
     joined({{3, 0xDD}, wordsOf({{1, 5, 0}, {3, 2, -1}, {2, 4, 7}})}),
     {1, 2, -1},
     {3, 5, 7}},
    {"MultiPointOfOne",
     4,
     vexaWKB_getMultiPointRange,
     joined({{1, 0xDD}, wordsOf({{4, 5, 6}})}),
     {4, 5, 6},
     {4, 5, 6}},
    {"MultiLineOfManyParts", 5, vexaWKB_getMultiLineRange, kAllPaths, kLeast, kMost},
    {"MultiPolygonOfManyParts", 6, vexaWKB_getMultiPolygonRange, kAllPolygons, kLeast, kMost},

    {"LineOfNoRuns", 2, vexaWKB_getLineRange, listWords({}), kEmptyLow, kEmptyHigh},
    {"LineOfAnEmptyRun", 2, vexaWKB_getLineRange, ring({}), kEmptyLow, kEmptyHigh},
    {"PolygonOfNoRings", 3, vexaWKB_getPolygonRange, listWords({}), kEmptyLow, kEmptyHigh},
    {"PolygonOfAnEmptyRing", 3, vexaWKB_getPolygonRange, listWords({listWords({})}), kEmptyLow,
     kEmptyHigh},
    {"MultiPointOfNone", 4, vexaWKB_getMultiPointRange, {0, 0xDD}, kEmptyLow, kEmptyHigh},
    {"MultiLineOfNoLines", 5, vexaWKB_getMultiLineRange, listWords({}), kEmptyLow, kEmptyHigh},
    {"MultiLineOfEmptyLines", 5, vexaWKB_getMultiLineRange, listWords({listWords({}), ring({})}),
     kEmptyLow, kEmptyHigh},
    {"MultiPolygonOfNone", 6, vexaWKB_getMultiPolygonRange, listWords({}), kEmptyLow, kEmptyHigh},
    {"MultiPolygonOfAnEmptyPolygon", 6, vexaWKB_getMultiPolygonRange, listWords({listWords({})}),
     kEmptyLow, kEmptyHigh},
};

class RangeOf : public testing::TestWithParam<RangeCase> {};

TEST_P(RangeOf, CoversEveryVertex) {
    const RangeCase& row = GetParam();
    expectRange(row.tell, joined({headerWords(row.type), row.body}), row.low, row.high);
}

TEST_P(RangeOf, IsDispatchedOnTheType) {
    const RangeCase& row = GetParam();
    expectRange(vexaWKB_getRange, joined({headerWords(row.type), row.body}), row.low, row.high);
}

TEST_P(RangeOf, DependsOnNoHeaderWordWhereTheNameTellsTheLayout) {
    const RangeCase& row = GetParam();
    for (const std::uint32_t word : {0U, 1U, 3U, 7U, 24U, 0xFFFF'FFFFU}) {
        expectRange(row.tell, joined({{word, word, word, word}, row.body}), row.low, row.high);
    }
}

TEST_P(RangeOf, IsRefusedForNullPointersAndNothingIsWritten) {
    const Block block = blockOf(joined({headerWords(GetParam().type), GetParam().body}));
    for (const TellRange tell : {GetParam().tell, &vexaWKB_getRange}) {
        GuardedPoints low(1);
        GuardedPoints high(1);
        EXPECT_EQ(tell(nullptr, low.data(), high.data()), kFailure);
        EXPECT_EQ(tell(block.get(), nullptr, high.data()), kFailure);
        EXPECT_EQ(tell(block.get(), low.data(), nullptr), kFailure);
        EXPECT_EQ(tell(nullptr, nullptr, nullptr), kFailure);
        EXPECT_TRUE(low.areUntouched());
        EXPECT_TRUE(high.areUntouched());
    }
}

INSTANTIATE_TEST_SUITE_P(Table, RangeOf, testing::ValuesIn(kRangeCases),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(GetRange, RefusesACollectionAndEveryUnknownType) {
    const Words member = joined({headerWords(1, 40), wordsOf({{1, 2, 3}})});
    for (const std::uint32_t type : {7U, 0U, 8U, 9U, 0x8000'0001U, 0x1'0001U, 0xFFFF'FFFFU}) {
        const Block block = blockOf(joined({headerWords(type), listWords({member})}));
        GuardedPoints low(1);
        GuardedPoints high(1);
        EXPECT_EQ(vexaWKB_getRange(block.get(), low.data(), high.data()), kFailure) << type;
        EXPECT_TRUE(low.areUntouched());
        EXPECT_TRUE(high.areUntouched());
    }
}

}  // namespace
