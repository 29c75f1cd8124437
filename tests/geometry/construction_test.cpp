#include "tests/support/allocations.h"
#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <cstring>
#include <iterator>
#include <limits>
#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

/// A constructor and what it makes of `points`.
struct Constructor {
    const char* name;
    Build create;
    std::uint32_t allocatedBeyondVertices;
    Words (*words)(const Points& points);
    /// The most vertices whose block can be told in 32 bits; 0 where there is one vertex always.
    std::uint32_t mostVertices;
};

const Constructor kConstructors[] = {
    {"Point",
     [](const Point3d* point, std::uint32_t, GeometryBuffer** result) {
         return vexaWKB_createPoint(point, result);
     },
     16,
     [](const Points& points) {
         return joined({{1, 1, 1, 40}, wordsOf({points[0]})});
     },
     0},
    {"Line", vexaWKB_createLine, 32,
     [](const Points& points) {
         const std::uint32_t n = countOf(points);
         return joined({{1, 1, 2, 32 + 24 * n, 1, 0, 0, n}, wordsOf(points)});
     },
     178'956'969},
    {"Polygon", vexaWKB_createPolygon, 40,
     [](const Points& points) {
         const std::uint32_t n = countOf(points);
         return joined({{1, 1, 3, 40 + 24 * n, 1, 0, 1, 0, 0, n}, wordsOf(points)});
     },
     178'956'968},
    {"MultiPoint", vexaWKB_createMultiPoint, 48,
     [](const Points& points) {
         const std::uint32_t n = countOf(points);
         return joined({{1, 1, 4, 24 + 24 * n, n, 0}, wordsOf(points)});
     },
     178'956'968},
    {"MultiLine", vexaWKB_createMultiLine, 40,
     [](const Points& points) {
         const std::uint32_t n = countOf(points);
         return joined({{1, 1, 5, 40 + 24 * n, 1, 0, 1, 0, 0, n}, wordsOf(points)});
     },
     178'956'968},
    {"MultiPolygon", vexaWKB_createMultiPolygon, 48,
     [](const Points& points) {
         const std::uint32_t n = countOf(points);
         return joined({{1, 1, 6, 0, 1, 0, 1, 0, 1, 0, 0, n}, wordsOf(points)});
     },
     178'956'968},
};

std::string nameOf(const testing::TestParamInfo<Constructor>& info) {
    return info.param.name;
}

class CreateGeometry : public testing::TestWithParam<Constructor> {
protected:
    /// An address that is no block: reading or freeing it would be seen.
    GeometryBuffer mark_{};
    GeometryBuffer* result_ = &mark_;
};

TEST_P(CreateGeometry, WritesEveryWordOfTheLayout) {
    const bool onePoint = GetParam().mostVertices == 0;
    for (const std::uint32_t count : {1U, 2U, 5U, 100U}) {
        const Points points = trail(onePoint ? 1 : count);
        const Words expected = GetParam().words(points);
        // Padding words are written too, whatever the block held before.
        dirtyHeap(GetParam().allocatedBeyondVertices + 24 * points.size());

        const Block geometry = made(GetParam().create, points);

        EXPECT_EQ(wordsOf(geometry, bytesOf(expected)), expected) << points.size() << " points";
    }
}

TEST_P(CreateGeometry, TakesOneBlockOfTheBytesItNeeds) {
    const Points points = trail(GetParam().mostVertices == 0 ? 1 : 7);
    Block geometry;
    int requests = 0;
    int blocks = 0;
    std::size_t bytes = 0;
    {
        const AllocationWatch watch;
        geometry = made(GetParam().create, points);
        requests = watch.requests();
        blocks = watch.blocksInUse();
        bytes = watch.bytes();
    }

    EXPECT_EQ(requests, 1);
    EXPECT_EQ(blocks, 1);
    EXPECT_EQ(bytes, GetParam().allocatedBeyondVertices + 24 * points.size());
}

TEST_P(CreateGeometry, CopiesCoordinatesBitForBit) {
    const std::uint64_t signallingNan = 0x7FF4'0000'DEAD'BEEF;
    Point3d odd{-0.0, std::numeric_limits<double>::infinity(), 0};
    std::memcpy(&odd.z, &signallingNan, sizeof odd.z);
    const Points points{odd};
    const Words vertex = wordsOf(points);

    const Block geometry = made(GetParam().create, points);

    const std::size_t offset = bytesOf(GetParam().words(points)) - sizeof(Point3d);
    EXPECT_EQ(wordsAt(reinterpret_cast<std::byte*>(geometry.get()) + offset, 24), vertex);
}

TEST_P(CreateGeometry, KeepsNothingOfTheCallersArray) {
    Points points = trail(1);
    const Words expected = GetParam().words(points);

    const Block geometry = made(GetParam().create, points);
    points[0] = {0, 0, 0};

    EXPECT_EQ(wordsOf(geometry, bytesOf(expected)), expected);
}

TEST_P(CreateGeometry, RefusesNullPoints) {
    const AllocationWatch watch;

    EXPECT_EQ(GetParam().create(nullptr, 1, &result_), kFailure);
    EXPECT_EQ(result_, &mark_);
    EXPECT_EQ(watch.requests(), 0);
}

TEST_P(CreateGeometry, RefusesANullResult) {
    const Points points = trail(2);
    const AllocationWatch watch;

    EXPECT_EQ(GetParam().create(points.data(), 2, nullptr), kFailure);
    EXPECT_EQ(GetParam().create(nullptr, 2, nullptr), kFailure);
    EXPECT_EQ(watch.requests(), 0);
}

TEST_P(CreateGeometry, LeavesTheResultWhenTheHeapRefuses) {
    const Points points = trail(3);
    const AllocationFailure failure{1};

    EXPECT_EQ(GetParam().create(points.data(), 3, &result_), kFailure);
    EXPECT_TRUE(failure.happened());
    EXPECT_EQ(result_, &mark_);
    EXPECT_EQ(failure.blocksInUse(), 0);
}

INSTANTIATE_TEST_SUITE_P(Table, CreateGeometry, testing::ValuesIn(kConstructors), nameOf);

/// The constructors that take a count.
class CreateFromArray : public CreateGeometry {};

TEST_P(CreateFromArray, RefusesACountOfZero) {
    const Points points = trail(1);
    const AllocationWatch watch;

    EXPECT_EQ(GetParam().create(points.data(), 0, &result_), kFailure);
    EXPECT_EQ(result_, &mark_);
    EXPECT_EQ(watch.requests(), 0);
}

TEST_P(CreateFromArray, AsksTheHeapForAsManyBytesAs32BitsTell) {
    const Points points = trail(1);  // the heap refuses before more of them is read
    const AllocationFailure failure{1};

    EXPECT_EQ(GetParam().create(points.data(), GetParam().mostVertices, &result_), kFailure);
    EXPECT_TRUE(failure.happened());
    EXPECT_EQ(result_, &mark_);
}

TEST_P(CreateFromArray, RefusesMoreBytesThan32BitsTell) {
    const Points points = trail(1);
    const std::uint32_t most = GetParam().mostVertices;
    const AllocationWatch watch;

    // The third count is the first whose vertices alone wrap to a few bytes.
    for (const std::uint32_t count :
         {most + 1, most + 2, 178'956'971U, 0x8000'0000U, 0xFFFF'FFFFU}) {
        EXPECT_EQ(GetParam().create(points.data(), count, &result_), kFailure) << count;
        EXPECT_EQ(result_, &mark_) << count;
    }
    EXPECT_EQ(watch.bytes(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Table, CreateFromArray,
                         testing::ValuesIn(std::begin(kConstructors) + 1, std::end(kConstructors)),
                         nameOf);

TEST(CreateMultiPoint, AllocatesOnePointMoreThanItsSizeTells) {
    const Points points = trail(2);
    Block geometry;
    std::size_t bytes = 0;
    {
        const AllocationWatch watch;
        geometry = made(vexaWKB_createMultiPoint, points);
        bytes = watch.bytes();
    }

    EXPECT_EQ(bytes, 96U);
    EXPECT_EQ(geometry->size, 72U);
}

TEST(CreateMultiPolygon, LeavesItsSizeToBeComputed) {
    const Block geometry = made(vexaWKB_createMultiPolygon, trail(4));
    std::uint32_t size = kUntouchedNumber;

    EXPECT_EQ(geometry->size, 0U);
    EXPECT_EQ(vexaWKB_getSize(geometry.get(), &size), kSuccess);
    EXPECT_EQ(size, 48U + 24 * 4);
}

TEST(CreatePolygon, HasTheBodyOfAMultiLine) {
    const Points points = trail(6);
    Block polygon = made(vexaWKB_createPolygon, points);
    Block lines = made(vexaWKB_createMultiLine, points);
    ASSERT_EQ(grow(vexaWKB_addRingToPolygon, polygon, trail(3, 50)), kSuccess);
    ASSERT_EQ(grow(vexaWKB_addLineToMultiLine, lines, trail(3, 50)), kSuccess);

    constexpr std::size_t kBytes = 40 + 24 * 6 + 16 + 24 * 3;
    Words expected = wordsOf(polygon, kBytes);
    expected[2] = VEXA_MULTILINESTRING;
    EXPECT_EQ(wordsOf(lines, kBytes), expected);
}

// Programs written in other languages hold these numbers.
static_assert(VEXA_POINT == 1 && VEXA_LINESTRING == 2 && VEXA_POLYGON == 3);
static_assert(VEXA_MULTIPOINT == 4 && VEXA_MULTILINESTRING == 5 && VEXA_MULTIPOLYGON == 6);
static_assert(VEXA_GEOMETRYCOLLECTION == 7 && VEXA_RESERVED == 8);
static_assert(VEXA_SUCCESS == 0 && VEXA_FAILURE == 0x8000);

}  // namespace
