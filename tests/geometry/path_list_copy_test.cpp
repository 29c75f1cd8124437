#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

using CopyRings = std::uint32_t (*)(const Words& rings, std::uint32_t capacity, Point3d* points,
                                    std::uint32_t* copied);

std::uint32_t copyOfPolygon(const Words& rings, std::uint32_t capacity, Point3d* points,
                            std::uint32_t* copied) {
    const Block polygon = blockOf(joined({headerWords(VEXA_POLYGON), rings}));
    return vexaWKB_polygonGetPoints(polygon.get(), capacity, points, copied);
}

/// As the third of four polygons, so that it has to be found and its neighbours may not show.
std::uint32_t copyOfMember(const Words& rings, std::uint32_t capacity, Point3d* points,
                           std::uint32_t* copied) {
    const Words twoRings = listWords({listWords({runWords(trail(3, 700)), runWords(trail(1))}),
                                      listWords({runWords(trail(2, 750))})});
    const Words behind = listWords({listWords({runWords(trail(2, 800))})});
    const Block polygons = blockOf(joined(
        {headerWords(VEXA_MULTIPOLYGON), listWords({twoRings, listWords({}), rings, behind})}));
    return vexaWKB_mpolygonGetPoints(polygons.get(), 2, capacity, points, copied);
}

class CopyRingsOf : public testing::TestWithParam<CopyRings> {
protected:
    /// `written` may be more than what is counted: runs of a ring that did not fit whole.
    void expect(const Words& rings, std::uint32_t capacity, std::uint32_t status,
                std::uint32_t counted, const Points& written) {
        SCOPED_TRACE(testing::Message() << "capacity " << capacity);
        std::uint32_t copied = kUntouchedNumber;
        GuardedPoints room{std::min(capacity, 16U)};

        EXPECT_EQ(GetParam()(rings, capacity, room.data(), &copied), status);
        EXPECT_EQ(copied, counted);
        EXPECT_TRUE(room.holdOnly(written));
    }
};

TEST_P(CopyRingsOf, CopiesARingAndAHole) {
    const Points outer = trail(5, 10);
    const Points hole = trail(4, 20);
    const Words rings = listWords({listWords({runWords(outer)}), listWords({runWords(hole)})});

    expect(rings, 9, kSuccess, 9, outer + hole);
    expect(rings, 8, kFailure, 5, outer);
    expect(rings, 7, kFailure, 5, outer);
    expect(rings, 5, kFailure, 5, outer);
    expect(rings, 4, kFailure, 0, {});
}

TEST_P(CopyRingsOf, CountsWholeRingsOnly) {
    const Points a = trail(2, 10);
    const Points b = trail(1, 20);
    const Points c = trail(2, 30);
    const Points d = trail(3, 40);
    const Points e = trail(1, 50);
    const Words rings = listWords(
        {listWords({runWords(a, 1), runWords(b, 2)}, 0xDDDD),
         listWords({runWords(c, 3), runWords(d, 4)}, 0xDDDD), listWords({runWords(e, 5)}, 0xDDDD)},
        0xDDDD);

    expect(rings, 0, kFailure, 0, {});
    expect(rings, 1, kFailure, 0, {});
    expect(rings, 2, kFailure, 0, a);
    expect(rings, 3, kFailure, 3, a + b);
    expect(rings, 4, kFailure, 3, a + b);  // the last ring would fit, but comes after
    expect(rings, 5, kFailure, 3, a + b + c);
    expect(rings, 6, kFailure, 3, a + b + c);
    expect(rings, 7, kFailure, 3, a + b + c);
    expect(rings, 8, kFailure, 8, a + b + c + d);
    expect(rings, 9, kSuccess, 9, a + b + c + d + e);
    expect(rings, 10, kSuccess, 9, a + b + c + d + e);
    expect(rings, 0xFFFF'FFFF, kSuccess, 9, a + b + c + d + e);
}

TEST_P(CopyRingsOf, CopiesNothingOfAPolygonWithoutRings) {
    expect(listWords({}), 0, kSuccess, 0, {});
    expect(listWords({}), 5, kSuccess, 0, {});
}

TEST_P(CopyRingsOf, PassesOverRingsWithoutRunsAndRunsWithoutVertices) {
    const Points points = trail(2, 10);
    const Words rings = listWords({listWords({}), listWords({runWords({}), runWords(points)}),
                                   listWords({runWords({})}), listWords({})});

    expect(rings, 2, kSuccess, 2, points);
    expect(rings, 1, kFailure, 0, {});
    expect(listWords({listWords({}), listWords({runWords({})})}), 0, kSuccess, 0, {});
}

INSTANTIATE_TEST_SUITE_P(PathLists, CopyRingsOf, testing::Values(copyOfPolygon, copyOfMember),
                         [](const auto& row) {
                             return std::string{row.index == 0 ? "Polygon"
                                                               : "PolygonOfMultiPolygon"};
                         });

TEST(PolygonGetPoints, GivesTheRingsOfAppendsInTheirOrder) {
    Block polygon = made(vexaWKB_createPolygon, trail(5, 10));
    ASSERT_EQ(grow(vexaWKB_addRingToPolygon, polygon, trail(4, 20)), kSuccess);
    ASSERT_EQ(grow(vexaWKB_addRingToPolygon, polygon, trail(3, 30)), kSuccess);
    std::uint32_t copied = kUntouchedNumber;
    GuardedPoints room{12};

    EXPECT_EQ(vexaWKB_polygonGetPoints(polygon.get(), 12, room.data(), &copied), kSuccess);
    EXPECT_EQ(copied, 12U);
    EXPECT_TRUE(room.holdOnly(trail(5, 10) + trail(4, 20) + trail(3, 30)));
}

TEST(MpolygonGetPoints, FindsEveryPolygon) {
    Block polygons = made(vexaWKB_createMultiPolygon, trail(2, 10));
    ASSERT_EQ(grow(vexaWKB_addPolyToMultiPoly, polygons, trail(3, 20)), kSuccess);
    ASSERT_EQ(grow(vexaWKB_addPolyToMultiPoly, polygons, trail(1, 30)), kSuccess);
    const Points expected[] = {trail(2, 10), trail(3, 20), trail(1, 30)};

    for (std::uint32_t index = 0; index != 3; ++index) {
        std::uint32_t copied = kUntouchedNumber;
        GuardedPoints room{3};

        EXPECT_EQ(vexaWKB_mpolygonGetPoints(polygons.get(), index, 3, room.data(), &copied),
                  kSuccess);
        EXPECT_EQ(copied, countOf(expected[index]));
        EXPECT_TRUE(room.holdOnly(expected[index]));
    }
}

TEST(MpolygonGetPoints, RefusesAnIndexPastTheEnd) {
    const Words rings = listWords({listWords({runWords(trail(2))})});
    const Block polygons = blockOf(joined({headerWords(6), listWords({rings, rings})}));
    const Block none = blockOf(joined({headerWords(6), {0, 0}}));
    std::uint32_t copied = kUntouchedNumber;
    GuardedPoints room{8};

    for (const std::uint32_t index : {2U, 3U, 0x8000'0000U, 0xFFFF'FFFFU}) {
        EXPECT_EQ(vexaWKB_mpolygonGetPoints(polygons.get(), index, 8, room.data(), &copied),
                  kFailure);
    }
    EXPECT_EQ(vexaWKB_mpolygonGetPoints(none.get(), 0, 8, room.data(), &copied), kFailure);
    EXPECT_EQ(copied, kUntouchedNumber);
    EXPECT_TRUE(room.areUntouched());
}

TEST(MpolygonGetPoints, ReadsNothingBehindThePolygonItGives) {
    const Words rings = listWords({listWords({runWords(trail(2))})});
    const Block polygons = blockOf(joined({headerWords(6), {0xFFFF'FFFF, 0}, rings}));
    std::uint32_t copied = kUntouchedNumber;
    GuardedPoints room{2};

    EXPECT_EQ(vexaWKB_mpolygonGetPoints(polygons.get(), 0, 2, room.data(), &copied), kSuccess);
    EXPECT_EQ(copied, 2U);
    EXPECT_TRUE(room.holdOnly(trail(2)));
}

}  // namespace
