#include "tests/support/allocations.h"
#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <iterator>
#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

constexpr std::uint32_t kDirty = 0xDDDD'DDDD;

/// An append, the constructor that it goes with, and what it writes.
struct Growing {
    const char* name;
    Build create;
    Build append;
    std::uint32_t type;
    /// The new element without its vertices.
    Words (*elementHeader)(std::uint32_t count);
    /// Bytes at the end of the grown block that no element uses.
    std::uint32_t reserve;
    /// Two elements of several parts and of none, with words that the library never writes.
    Words (*irregularElements)();
    /// One element that tells more bytes than 32 bits hold.
    Words hugeElement;
};

const Growing kGrowing[] = {
    {"LineToLine", vexaWKB_createLine, vexaWKB_addLineToLine, VEXA_LINESTRING,
     [](std::uint32_t count) {
         return Words{0, count};
     },
     8,
     [] {
         return joined({runWords(trail(3, 10), 7), runWords({}, 8)});
     },
     Words{0, 178'956'971}},
    {"RingToPolygon", vexaWKB_createPolygon, vexaWKB_addRingToPolygon, VEXA_POLYGON,
     [](std::uint32_t count) {
         return Words{1, 0, 0, count};
     },
     0,
     [] {
         return joined(
             {listWords({runWords(trail(3, 10), 7), runWords({}), runWords(trail(1, 20))}, kDirty),
              listWords({}, kDirty)});
     },
     Words{1, 0, 0, 178'956'971}},
    {"LineToMultiLine", vexaWKB_createMultiLine, vexaWKB_addLineToMultiLine, VEXA_MULTILINESTRING,
     [](std::uint32_t count) {
         return Words{1, 0, 0, count};
     },
     0,
     [] {
         return joined({listWords({}, kDirty),
                        listWords({runWords(trail(2, 10), 7), runWords(trail(1, 20))}, kDirty)});
     },
     Words{1, 0, 0, 178'956'971}},
    {"PolyToMultiPoly", vexaWKB_createMultiPolygon, vexaWKB_addPolyToMultiPoly, VEXA_MULTIPOLYGON,
     [](std::uint32_t count) { return Words{1, 0, 1, 0, 0, count}; }, 0,
     [] {
         return joined(
             {listWords({listWords({runWords(trail(2, 10), 7), runWords(trail(1, 20))}, kDirty),
                         listWords({}, kDirty), listWords({runWords(trail(1, 30))}, kDirty)},
                        kDirty),
              listWords({}, kDirty)});
     },
     Words{1, 0, 1, 0, 0, 178'956'971}},
};

class AppendToGeometry : public testing::TestWithParam<Growing> {
protected:
    static Words element(const Points& points) {
        return joined({GetParam().elementHeader(countOf(points)), wordsOf(points)});
    }

    /// The one append that brings the size word up to date.
    static bool keepsSize() { return GetParam().append == vexaWKB_addPolyToMultiPoly; }

    static std::uint32_t sizeAfter(std::uint32_t before, std::uint32_t actual) {
        return keepsSize() ? actual : before;
    }
};

std::string nameOf(const testing::TestParamInfo<Growing>& info) {
    return info.param.name;
}

TEST_P(AppendToGeometry, WritesEveryWordOfTheNewElement) {
    const Points first = trail(2);
    const Points second = trail(3, 50);
    Block geometry = made(GetParam().create, first);
    const std::uint32_t sizeBefore = geometry->size;
    Words expected =
        joined({headerWords(GetParam().type), {2, 0}, element(first), element(second)});
    expected[3] = sizeAfter(sizeBefore, bytesOf(expected));
    dirtyHeap(bytesOf(expected) + GetParam().reserve);

    EXPECT_EQ(grow(GetParam().append, geometry, second), kSuccess);

    EXPECT_EQ(wordsOf(geometry, bytesOf(expected)), expected);
}

TEST_P(AppendToGeometry, GrowsAsOftenAsItIsAsked) {
    Points points = trail(4);
    Block geometry = made(GetParam().create, points);
    const std::uint32_t sizeBefore = geometry->size;
    Words expected = joined({headerWords(GetParam().type), {1, 0}, element(points)});

    for (std::uint32_t round = 1; round <= 60; ++round) {
        points = trail(1 + round * 7 % 13, 100.0 * round);
        ASSERT_EQ(grow(GetParam().append, geometry, points), kSuccess);

        expected = joined({expected, element(points)});
        ++expected[4];
        expected[3] = sizeAfter(sizeBefore, bytesOf(expected));
        ASSERT_EQ(wordsOf(geometry, bytesOf(expected)), expected) << "round " << round;
    }
}

TEST_P(AppendToGeometry, AsksTheHeapOnceAndForTheGrownSizeOnly) {
    const Points first = trail(2);
    Block geometry = made(GetParam().create, first);
    std::size_t used = bytesOf(joined({headerWords(0), {1, 0}, element(first)}));

    for (std::uint32_t round = 1; round <= 40; ++round) {
        const Points points = trail(1 + round % 5);
        used += bytesOf(element(points));
        std::uint32_t status = kFailure;
        int requests = 0;
        int blocks = 0;
        std::size_t bytes = 0;
        {
            const AllocationWatch watch;
            status = grow(GetParam().append, geometry, points);
            requests = watch.requests();
            blocks = watch.blocksInUse();
            bytes = watch.bytes();
        }

        ASSERT_EQ(status, kSuccess);
        ASSERT_EQ(requests, 1) << "round " << round;
        ASSERT_EQ(blocks, 0) << "round " << round;
        ASSERT_EQ(bytes, used + GetParam().reserve) << "round " << round;
    }
}

TEST_P(AppendToGeometry, GoesByTheContentsAndNotByTheSizeWord) {
    const Points first = trail(2);
    const Points second = trail(3, 50);
    for (const std::uint32_t size : {0U, 8U, 41U, 1000U, 0xFFFF'FFF0U}) {
        Words expected = joined({headerWords(GetParam().type), {1, 0}, element(first)});
        expected[3] = size;
        Block geometry = blockOf(expected);
        expected = joined({expected, element(second)});
        expected[4] = 2;
        expected[3] = sizeAfter(size, bytesOf(expected));

        EXPECT_EQ(grow(GetParam().append, geometry, second), kSuccess);

        EXPECT_EQ(wordsOf(geometry, bytesOf(expected)), expected) << "size word " << size;
    }
}

TEST_P(AppendToGeometry, StartsAnEmptyList) {
    const Points points = trail(2);
    Block geometry = blockOf(joined({headerWords(GetParam().type), {0, 0}}));
    Words expected = joined({headerWords(GetParam().type), {1, 0}, element(points)});
    expected[3] = sizeAfter(0, bytesOf(expected));

    EXPECT_EQ(grow(GetParam().append, geometry, points), kSuccess);

    EXPECT_EQ(wordsOf(geometry, bytesOf(expected)), expected);
}

TEST_P(AppendToGeometry, LeavesEveryOtherWordOfTheBufferAlone) {
    const Words elements = GetParam().irregularElements();
    Block geometry = blockOf(joined({{77, 78, GetParam().type, 33}, {2, kDirty}, elements}));
    const Points points = trail(3, 70);
    Words expected =
        joined({{77, 78, GetParam().type, 33}, {3, kDirty}, elements, element(points)});
    expected[3] = sizeAfter(33, bytesOf(expected));

    EXPECT_EQ(grow(GetParam().append, geometry, points), kSuccess);

    EXPECT_EQ(wordsOf(geometry, bytesOf(expected)), expected);
}

TEST_P(AppendToGeometry, LeavesEverythingWhenTheHeapRefuses) {
    Block geometry = made(GetParam().create, trail(2));
    ASSERT_EQ(grow(GetParam().append, geometry, trail(1)), kSuccess);
    const std::uint32_t bytes = 16 + 8 + bytesOf(element(trail(2))) + bytesOf(element(trail(1)));
    const Words before = wordsOf(geometry, bytes);
    GeometryBuffer* handle = geometry.get();
    const Points points = trail(5);
    std::uint32_t status = kSuccess;
    int blocks = 99;
    bool happened = false;
    {
        const AllocationFailure failure{1};
        status = GetParam().append(points.data(), 5, &handle);
        blocks = failure.blocksInUse();
        happened = failure.happened();
    }

    EXPECT_TRUE(happened);
    EXPECT_EQ(status, kFailure);
    EXPECT_EQ(blocks, 0);
    EXPECT_EQ(handle, geometry.get());
    EXPECT_EQ(wordsOf(geometry, bytes), before);
}

TEST_P(AppendToGeometry, RefusesNullPointersAndNoPoints) {
    const Words words = joined({headerWords(GetParam().type, 5), {0, kDirty}});
    const Block geometry = blockOf(words);
    GeometryBuffer* handle = geometry.get();
    GeometryBuffer* none = nullptr;
    const Points points = trail(2);
    const Build append = GetParam().append;
    const AllocationWatch watch;

    EXPECT_EQ(append(nullptr, 2, &handle), kFailure);
    EXPECT_EQ(append(points.data(), 0, &handle), kFailure);
    EXPECT_EQ(append(points.data(), 2, nullptr), kFailure);
    EXPECT_EQ(append(points.data(), 2, &none), kFailure);
    EXPECT_EQ(watch.requests(), 0);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(handle, geometry.get());
    EXPECT_EQ(wordsOf(geometry, bytesOf(words)), words);
}

TEST_P(AppendToGeometry, RefusesMoreBytesThan32BitsTell) {
    const Words words = joined({headerWords(GetParam().type, 5), {0, 0}});
    const Block geometry = blockOf(words);
    GeometryBuffer* handle = geometry.get();
    const Points points = trail(1);
    const AllocationWatch watch;

    // From 178956971 on, the vertices alone wrap to a few bytes.
    for (const std::uint32_t count : {178'956'970U, 178'956'971U, 0x8000'0000U, 0xFFFF'FFFFU}) {
        EXPECT_EQ(GetParam().append(points.data(), count, &handle), kFailure) << count;
    }
    EXPECT_EQ(watch.bytes(), 0U);
    EXPECT_EQ(handle, geometry.get());
    EXPECT_EQ(wordsOf(geometry, bytesOf(words)), words);
}

TEST_P(AppendToGeometry, RefusesToGrowWhatIsTooLargeAlready) {
    const Words words = joined({headerWords(GetParam().type, 5), {1, 0}, GetParam().hugeElement});
    const Block geometry = blockOf(words);
    GeometryBuffer* handle = geometry.get();
    const Points points = trail(1);
    const AllocationWatch watch;

    EXPECT_EQ(GetParam().append(points.data(), 1, &handle), kFailure);
    EXPECT_EQ(watch.bytes(), 0U);
    EXPECT_EQ(handle, geometry.get());
    EXPECT_EQ(wordsOf(geometry, bytesOf(words)), words);
}

INSTANTIATE_TEST_SUITE_P(Table, AppendToGeometry, testing::ValuesIn(kGrowing), nameOf);

/// The appends that look at no type at all.
class AppendToAnyType : public AppendToGeometry {};

TEST_P(AppendToAnyType, WalksTheBufferAsItsOwnLayout) {
    const Points first = trail(2);
    const Points second = trail(3, 50);
    for (const std::uint32_t type : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 0xFFFF'FFFFU}) {
        Block geometry = blockOf(joined({headerWords(type, 17), {1, 0}, element(first)}));
        const Words expected =
            joined({headerWords(type, 17), {2, 0}, element(first), element(second)});

        EXPECT_EQ(grow(GetParam().append, geometry, second), kSuccess) << "type " << type;

        EXPECT_EQ(wordsOf(geometry, bytesOf(expected)), expected) << "type " << type;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, AppendToAnyType,
                         testing::ValuesIn(std::begin(kGrowing), std::end(kGrowing) - 1), nameOf);

TEST(AddLineToLine, KeepsTheOldSizeSoThatACopyIsShorter) {
    Block line = made(vexaWKB_createLine, trail(2));
    ASSERT_EQ(grow(vexaWKB_addLineToLine, line, trail(3, 50)), kSuccess);
    std::uint32_t vertices = kUntouchedNumber;
    std::uint32_t size = kUntouchedNumber;

    EXPECT_EQ(wordAt(line.get(), 16), 2U);
    EXPECT_EQ(vexaWKB_lineGetPointCount(line.get(), &vertices), kSuccess);
    EXPECT_EQ(vertices, 5U);
    EXPECT_EQ(vexaWKB_getSize(line.get(), &size), kSuccess);
    EXPECT_EQ(size, 80U);
    EXPECT_EQ(vexaWKB_calculateSize(line.get(), &size), kSuccess);
    EXPECT_EQ(size, 80U + 8 + 24 * 3);
}

}  // namespace
