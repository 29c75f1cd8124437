#include "tests/support/allocations.h"
#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

// Whatever its type word says, the buffer below is walked and grown as a multipolygon; only the
// size word of the outcome is computed as the type word tells.

constexpr std::uint32_t kSizeBefore = 0xABCD;

/// Two polygons of one ring of one vertex, as the second append leaves them.
Words grownWords(std::uint32_t type, std::uint32_t size) {
    return joined({headerWords(type, size),
                   {2, 0},
                   {1, 0, 1, 0, 0, 1},
                   wordsOf(trail(1, 1)),
                   {1, 0, 1, 0, 0, 1},
                   wordsOf(trail(1, 2))});
}

Block onePolygon(std::uint32_t type) {
    Block geometry = made(vexaWKB_createMultiPolygon, trail(1, 1));
    geometry->type = type;
    geometry->size = kSizeBefore;
    return geometry;
}

struct SizedAs {
    const char* name;
    std::uint32_t type;
    std::uint32_t size;
};

const SizedAs kSizedAs[] = {
    {"Point", 1, 40},
    // Two runs: each takes the padding after a count of 1 for its number of vertices.
    {"Line", 2, 24 + 8 + 8},
    // The first ring has one such run; the second starts at a flag word and so has none.
    {"Polygon", 3, 24 + 16 + 8},
    {"MultiPoint", 4, 24 + 2 * 24},
    {"MultiLine", 5, 24 + 16 + 8},
    {"MultiPolygon", 6, 24 + 2 * 48},
    // Two members that read as points: the word at their 8th byte is a count of 1.
    {"Collection", 7, 24 + 2 * 40},
    {"Reserved", 8, kSizeBefore},
};

class AddPolyToSizedType : public testing::TestWithParam<SizedAs> {};

TEST_P(AddPolyToSizedType, FillsTheSizeWordAsTheTypeTells) {
    Block geometry = onePolygon(GetParam().type);
    const Words expected = grownWords(GetParam().type, GetParam().size);

    EXPECT_EQ(grow(vexaWKB_addPolyToMultiPoly, geometry, trail(1, 2)), kSuccess);

    EXPECT_EQ(wordsOf(geometry, bytesOf(expected)), expected);
}

INSTANTIATE_TEST_SUITE_P(Table, AddPolyToSizedType, testing::ValuesIn(kSizedAs),
                         [](const auto& row) { return std::string{row.param.name}; });

class AddPolyToUnknownType : public testing::TestWithParam<std::uint32_t> {};

TEST_P(AddPolyToUnknownType, RefusesBeforeTheBufferChanges) {
    const Block geometry = onePolygon(GetParam());
    const Words before = wordsOf(geometry, 72);
    GeometryBuffer* handle = geometry.get();
    const Points points = trail(1, 2);
    const AllocationWatch watch;

    EXPECT_EQ(vexaWKB_addPolyToMultiPoly(points.data(), 1, &handle), kFailure);
    EXPECT_EQ(watch.requests(), 0);
    EXPECT_EQ(watch.blocksInUse(), 0);
    EXPECT_EQ(handle, geometry.get());
    EXPECT_EQ(wordsOf(geometry, 72), before);
}

INSTANTIATE_TEST_SUITE_P(Types, AddPolyToUnknownType,
                         testing::Values(0, 9, 10, 0x106, 0x7FFF'FFFF, 0x8000'0000, 0x8000'0006,
                                         0xFFFF'FFFF));

TEST(AddPolyToMultiPoly, CountsPolygonsOfSeveralRingsAndRunsInTheSize) {
    const Words rings = listWords(
        {listWords({runWords(trail(4)), runWords(trail(2))}), listWords({runWords(trail(3))})});
    Block geometry = blockOf(joined({headerWords(VEXA_MULTIPOLYGON), listWords({rings})}));

    ASSERT_EQ(grow(vexaWKB_addPolyToMultiPoly, geometry, trail(5)), kSuccess);

    EXPECT_EQ(geometry->size, 24 + bytesOf(rings) + 24 + 24 * 5);
}

}  // namespace
