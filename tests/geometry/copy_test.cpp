#include "tests/support/allocations.h"
#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

struct Copied {
    std::uint32_t status = kFailure;
    Block block;
    int requests = 0;
    std::size_t bytes = 0;
};

Copied copyOf(const Block& source) {
    Copied copied;
    GeometryBuffer* result = nullptr;
    {
        const AllocationWatch watch;
        copied.status = vexaWKB_copy(source.get(), &result);
        copied.requests = watch.requests();
        copied.bytes = watch.bytes();
    }
    copied.block.reset(result);
    return copied;
}

struct CopyCase {
    const char* name;
    Words source;
    std::uint32_t bytes;
};

const Points kThree = trail(3);

const CopyCase kCopyCases[] = {
    {"Point", joined({headerWords(1, 40), wordsOf(trail(1))}), 40},
    {"PointOfUnknownSize", joined({headerWords(1), wordsOf(trail(1))}), 40},
    {"LineOfTwoRuns",
     joined({headerWords(2), listWords({runWords(kThree, 5), runWords(kThree)}, 0xDD)}),
     24 + 2 * 80},
    {"Polygon", joined({headerWords(3), listWords({listWords({runWords(kThree)})})}), 112},
    {"MultiPoint", joined({headerWords(4), {3, 0xDD}, wordsOf(kThree)}), 96},
    {"MultiLine", joined({headerWords(5), listWords({listWords({runWords(kThree)})})}), 112},
    {"MultiPolygon",
     joined({headerWords(6), listWords({listWords({listWords({runWords(kThree)})})})}), 120},
    {"Collection",
     joined({headerWords(7), listWords({joined({headerWords(1), wordsOf(trail(1))}),
                                        joined({headerWords(1, 40), wordsOf(trail(1))})})}),
     24 + 80},
    {"EmptyCollection", joined({headerWords(7), {0, 0}}), 24},
    {"StaleSize", joined({headerWords(2, 56), listWords({runWords(kThree), runWords(kThree)})}),
     56},
    {"SizeBeyondTheContents", joined({headerWords(1, 56), wordsOf(trail(2))}), 56},
    {"OddSize", joined({headerWords(1, 37), wordsOf(trail(1))}), 37},
    {"SizeWithinTheHeader", joined({headerWords(1, 5), wordsOf(trail(1))}), 5},
    {"SizeOfOneByte", joined({headerWords(1, 1), wordsOf(trail(1))}), 1},
    {"ReservedTypeOfKnownSize", headerWords(8, 16), 16},
    {"UnknownTypeOfKnownSize", joined({headerWords(9, 24), {1, 2}}), 24},
    {"NegativeTypeOfKnownSize", joined({headerWords(0xFFFF'FFFF, 24), {1, 2}}), 24},
    // 24 + 24 * 178956971 is 32 beyond a whole turn.
    {"SizeThatWraps", joined({headerWords(4), {178'956'971, 0}, {1, 2, 3, 4}}), 32},
    {"HeaderWordsOfOthers", joined({{8, 9, 1, 40}, wordsOf(trail(1))}), 40},
};

class CopyGeometry : public testing::TestWithParam<CopyCase> {};

TEST_P(CopyGeometry, CopiesAsManyBytesAsTheSizeTells) {
    const Block source = blockOf(GetParam().source);

    const Copied copied = copyOf(source);

    ASSERT_EQ(copied.status, kSuccess);
    EXPECT_NE(copied.block.get(), source.get());
    EXPECT_EQ(copied.requests, 1);
    EXPECT_EQ(copied.bytes, GetParam().bytes);
    EXPECT_EQ(std::memcmp(copied.block.get(), source.get(), GetParam().bytes), 0);
    EXPECT_EQ(wordsOf(source, bytesOf(GetParam().source)), GetParam().source);
}

TEST_P(CopyGeometry, LeavesTheResultWhenTheHeapRefuses) {
    const Block source = blockOf(GetParam().source);
    GeometryBuffer mark{};
    GeometryBuffer* result = &mark;
    const AllocationFailure failure{1};

    EXPECT_EQ(vexaWKB_copy(source.get(), &result), kFailure);
    EXPECT_TRUE(failure.happened());
    EXPECT_EQ(failure.blocksInUse(), 0);
    EXPECT_EQ(result, &mark);
}

INSTANTIATE_TEST_SUITE_P(Table, CopyGeometry, testing::ValuesIn(kCopyCases),
                         [](const auto& row) { return std::string{row.param.name}; });

class CopyWithoutSize : public testing::TestWithParam<std::uint32_t> {};

TEST_P(CopyWithoutSize, FailsAndWritesNothing) {
    const Block source = blockOf(joined({headerWords(GetParam()), {1, 0}}));
    GeometryBuffer mark{};
    GeometryBuffer* result = &mark;
    const AllocationWatch watch;

    EXPECT_EQ(vexaWKB_copy(source.get(), &result), kFailure);
    EXPECT_EQ(result, &mark);
    EXPECT_EQ(watch.blocksInUse(), 0);
}

INSTANTIATE_TEST_SUITE_P(Types, CopyWithoutSize,
                         testing::Values(0, 8, 9, 0x8000'0001, 0xFFFF'FFFF));

TEST(Copy, RefusesNullPointers) {
    const Block source = made(vexaWKB_createLine, trail(2));
    GeometryBuffer mark{};
    GeometryBuffer* result = &mark;
    const AllocationWatch watch;

    EXPECT_EQ(vexaWKB_copy(nullptr, &result), kFailure);
    EXPECT_EQ(vexaWKB_copy(source.get(), nullptr), kFailure);
    EXPECT_EQ(vexaWKB_copy(nullptr, nullptr), kFailure);
    EXPECT_EQ(result, &mark);
    EXPECT_EQ(watch.requests(), 0);
}

TEST(Copy, CutsALineThatGrewToItsOldSize) {
    Block line = made(vexaWKB_createLine, trail(2));
    ASSERT_EQ(grow(vexaWKB_addLineToLine, line, trail(3, 50)), kSuccess);

    const Copied copied = copyOf(line);

    ASSERT_EQ(copied.status, kSuccess);
    EXPECT_EQ(copied.bytes, 80U);
    EXPECT_EQ(wordsOf(copied.block, 80), wordsOf(line, 80));
    EXPECT_EQ(wordAt(copied.block.get(), 16), 2U);
}

TEST(Copy, CopiesALineThatGrewOnceItsSizeIsBroughtUpToDate) {
    Block line = made(vexaWKB_createLine, trail(2));
    ASSERT_EQ(grow(vexaWKB_addLineToLine, line, trail(3, 50)), kSuccess);
    ASSERT_EQ(vexaWKB_calculateSize(line.get(), &line->size), kSuccess);

    const Copied copied = copyOf(line);

    ASSERT_EQ(copied.status, kSuccess);
    EXPECT_EQ(copied.bytes, 160U);
    EXPECT_EQ(wordsOf(copied.block, 160), wordsOf(line, 160));
}

TEST(Copy, LeavesOutTheReserveOfAMultiPoint) {
    const Block points = made(vexaWKB_createMultiPoint, trail(2));

    const Copied copied = copyOf(points);

    ASSERT_EQ(copied.status, kSuccess);
    EXPECT_EQ(copied.bytes, 72U);
    EXPECT_EQ(wordsOf(copied.block, 72), wordsOf(points, 72));
}

TEST(Copy, KeepsASizeWordOfZero) {
    const Block polygons = made(vexaWKB_createMultiPolygon, trail(3));

    const Copied copied = copyOf(polygons);

    ASSERT_EQ(copied.status, kSuccess);
    EXPECT_EQ(copied.block->size, 0U);
    EXPECT_EQ(wordsOf(copied.block, 120), wordsOf(polygons, 120));
}

TEST(Copy, IsIndependentOfItsSource) {
    Block line = made(vexaWKB_createLine, trail(2));
    const Words before = wordsOf(line, 80);
    const Copied copied = copyOf(line);

    line->type = VEXA_RESERVED;
    line.reset();

    EXPECT_EQ(wordsOf(copied.block, 80), before);
}

}  // namespace
