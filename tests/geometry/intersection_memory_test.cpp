#include "tests/support/allocations.h"
#include "vexakit/vexakit.h"

#include <cmath>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

struct Destroy {
    void operator()(GeometryBuffer* geometry) const { vexaWKB_destroyGeom(&geometry); }
};
using Geometry = std::unique_ptr<GeometryBuffer, Destroy>;

using Create = uint32_t (*)(const Point3d*, uint32_t, GeometryBuffer**);

Geometry made(Create create, const std::vector<Point3d>& points) {
    GeometryBuffer* geometry = nullptr;
    create(points.data(), static_cast<uint32_t>(points.size()), &geometry);
    return Geometry{geometry};
}

/// More vertices than the working memory on the stack holds.
constexpr int kMany = 3000;
constexpr double kTurn = 6.283185307179586;

std::vector<Point3d> circle(double radius) {
    std::vector<Point3d> points;
    for (int i = 0; i < kMany; ++i) {
        const double angle = kTurn * i / kMany;
        points.push_back({radius * std::cos(angle), radius * std::sin(angle), 0});
    }
    return points;
}

struct MemoryCase {
    const char* name;
    Create first;
    Create second;
    /// What the test tells where memory is lacking and there is no way without.
    uint32_t status;
};

class IntersectionMemory : public testing::TestWithParam<MemoryCase> {};

// Either the failure is told as the pair tells it, or a slower way was found and the answer is right.
TEST_P(IntersectionMemory, IsDoneWithoutOrToldAsLacking) {
    const Geometry inner = made(GetParam().first, circle(1));
    const Geometry outer = made(GetParam().second, circle(2));
    uint32_t answer = 7;
    ASSERT_EQ(vexaWKB_intersectGeometry(inner.get(), outer.get(), 1e-9, &answer), 0U);

    bool wasToldOnce = false;
    int nth = 0;
    for (bool happened = true; happened;) {
        const NewFailure failure{++nth};
        uint32_t result = 7;
        const uint32_t status = vexaWKB_intersectGeometry(inner.get(), outer.get(), 1e-9, &result);
        happened = failure.happened();
        const bool isTold = result == 7;
        wasToldOnce |= isTold;
        EXPECT_EQ(status, isTold ? GetParam().status : 0U) << "request " << nth;
        EXPECT_EQ(result, isTold ? 7U : answer) << "request " << nth;
    }
    EXPECT_TRUE(wasToldOnce);

    uint32_t result = 7;
    EXPECT_EQ(vexaWKB_intersectGeometry(inner.get(), outer.get(), 1e-9, &result), 0U);
    EXPECT_EQ(result, answer);
}

constexpr MemoryCase kCases[] = {
    {"LineAndLine", vexaWKB_createLine, vexaWKB_createLine, 0x8000},
    {"LineAndMultiLine", vexaWKB_createLine, vexaWKB_createMultiLine, 0x8000},
    {"PointsAndLine", vexaWKB_createMultiPoint, vexaWKB_createLine, 0x8000},
    {"PointsAndLines", vexaWKB_createMultiPoint, vexaWKB_createMultiLine, 0},
    {"PointsAndPolygon", vexaWKB_createMultiPoint, vexaWKB_createPolygon, 0x8000},
    {"PointsAndPolygons", vexaWKB_createMultiPoint, vexaWKB_createMultiPolygon, 0},
    {"LineAndPolygon", vexaWKB_createLine, vexaWKB_createPolygon, 0},
    {"LinesAndPolygons", vexaWKB_createMultiLine, vexaWKB_createMultiPolygon, 0},
    {"PolygonAndPolygon", vexaWKB_createPolygon, vexaWKB_createPolygon, 0x8000},
    {"PolygonAndPolygons", vexaWKB_createPolygon, vexaWKB_createMultiPolygon, 0},
    {"PolygonsAndPolygons", vexaWKB_createMultiPolygon, vexaWKB_createMultiPolygon, 0x8000},
};
INSTANTIATE_TEST_SUITE_P(Table, IntersectionMemory, testing::ValuesIn(kCases),
                         [](const auto& row) { return row.param.name; });

// Points are compared one by one where there is no memory to sort them in.
TEST(IntersectMultiPointMultiPoint, NeedsNoMemory) {
    const Geometry first = made(vexaWKB_createMultiPoint, circle(1));
    const Geometry second = made(vexaWKB_createMultiPoint, circle(1));
    const NewFailure failure{1};
    uint32_t result = 0;

    EXPECT_EQ(vexaWKB_intersectMultiPointMultiPoint(first.get(), second.get(), 0, &result), 0U);
    EXPECT_EQ(result, 1U);
    EXPECT_TRUE(failure.happened());
}

}  // namespace

}  // namespace vexa::test
