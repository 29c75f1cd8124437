#include "tests/support/allocations.h"
#include "tests/support/geometry_samples.h"
#include "vexakit/geometry.h"

#include <string>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

using Destroy = std::uint32_t (*)(GeometryBuffer**);

class DestroyGeometry : public testing::TestWithParam<Destroy> {};

TEST_P(DestroyGeometry, FreesTheBlockAndClearsTheHandle) {
    const Points points = trail(4);
    GeometryBuffer* geometry = nullptr;
    const AllocationWatch watch;
    ASSERT_EQ(vexaWKB_createPolygon(points.data(), 4, &geometry), kSuccess);
    ASSERT_EQ(watch.blocksInUse(), 1);

    EXPECT_EQ(GetParam()(&geometry), kSuccess);
    EXPECT_EQ(geometry, nullptr);
    EXPECT_EQ(watch.blocksInUse(), 0);
}

TEST_P(DestroyGeometry, RefusesANullHandle) {
    GeometryBuffer* geometry = nullptr;

    EXPECT_EQ(GetParam()(nullptr), kFailure);
    EXPECT_EQ(GetParam()(&geometry), kFailure);
    EXPECT_EQ(geometry, nullptr);
}

TEST_P(DestroyGeometry, RefusesWhatItHasDestroyed) {
    GeometryBuffer* geometry = made(vexaWKB_createLine, trail(2)).release();

    EXPECT_EQ(GetParam()(&geometry), kSuccess);
    EXPECT_EQ(GetParam()(&geometry), kFailure);
}

TEST_P(DestroyGeometry, LooksAtNoWordOfTheBuffer) {
    const Words words = joined({{0, 0, 0xFFFF'FFFF, 0xFFFF'FFFF}, {0xFFFF'FFFF, 0}});
    GeometryBuffer* geometry = blockOf(words).release();

    EXPECT_EQ(GetParam()(&geometry), kSuccess);
    EXPECT_EQ(geometry, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Names, DestroyGeometry,
                         testing::Values(vexaWKB_destroyGeom, vexaWKB_destroyGeomCollection),
                         [](const auto& row) {
                             return std::string{row.index == 0 ? "Geom" : "GeomCollection"};
                         });

TEST(DestroyGeom, IsOneFunctionUnderTwoNames) {
    // Read through volatile: a compiler takes two names for two addresses.
    const volatile Destroy first = vexaWKB_destroyGeom;
    const volatile Destroy second = vexaWKB_destroyGeomCollection;

    EXPECT_EQ(reinterpret_cast<void*>(first), reinterpret_cast<void*>(second));
}

}  // namespace
