#include "tests/support/allocations.h"
#include "tests/support/intersection_asking.h"
#include "vexakit/vexakit.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

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

constexpr uint32_t kNeverTold = 7;

/// In many runs: of a line in one piece the boxes alone would fit the stack.
Runs piecesOf(double radius) {
    Runs runs;
    const std::vector<Point3d> points = circle(radius);
    for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
        runs.push_back({points[i], points[i + 1]});
    }
    return runs;
}

using MakeShape = Shape (*)(double radius);

constexpr MakeShape kLine = [](double radius) { return lineShape(piecesOf(radius)); };
constexpr MakeShape kLines = [](double radius) { return multilineShape({piecesOf(radius)}); };
constexpr MakeShape kWholeLine = [](double radius) { return lineShape({circle(radius)}); };
constexpr MakeShape kWholeLines = [](double radius) { return multilineShape({{circle(radius)}}); };
constexpr MakeShape kPoints = [](double radius) { return multipointShape(circle(radius)); };
/// Outside of what the second shape surrounds: of these more than the first few are asked.
constexpr MakeShape kPointsAround = [](double radius) {
    return multipointShape(circle(radius * 1.1));
};
constexpr MakeShape kPolygon = [](double radius) { return polygonShape({{circle(radius)}}); };
constexpr MakeShape kPolygons = [](double radius) {
    return multipolygonShape({{{circle(radius)}}});
};

/// Of level polygons these are sure without memory.
std::vector<Point3d> tilted(std::vector<Point3d> points) {
    for (Point3d& point : points) point.z = point.x;
    return points;
}
constexpr MakeShape kTiltedPolygon = [](double radius) {
    return polygonShape({{tilted(circle(radius))}});
};
constexpr MakeShape kTiltedPolygons = [](double radius) {
    return multipolygonShape({{{tilted(circle(radius))}}});
};

struct MemoryCase {
    const char* name;
    MakeShape first;
    MakeShape second;
    /// What the test tells where memory is lacking and there is no way without; 7 where there always is
    /// one.
    uint32_t status;
};

class IntersectionMemory : public testing::TestWithParam<MemoryCase> {};

// Either the failure is told as the pair tells it, or a slower way was found and the answer is right.
TEST_P(IntersectionMemory, IsDoneWithoutOrToldAsLacking) {
    const Bytes inner = bufferOf(GetParam().first(1));
    const Bytes outer = bufferOf(GetParam().second(1.001));
    uint32_t answer = 7;
    ASSERT_EQ(vexaWKB_intersectGeometry(inner.geometry(), outer.geometry(), 1e-9, &answer), 0U);

    bool wasToldOnce = false;
    int nth = 0;
    for (bool happened = true; happened;) {
        const NewFailure failure{++nth};
        uint32_t result = 7;
        const uint32_t status =
            vexaWKB_intersectGeometry(inner.geometry(), outer.geometry(), 1e-9, &result);
        happened = failure.happened();
        const bool isTold = result == 7;
        wasToldOnce |= isTold;
        EXPECT_EQ(status, isTold ? GetParam().status : 0U) << "request " << nth;
        EXPECT_EQ(result, isTold ? 7U : answer) << "request " << nth;
    }
    EXPECT_GT(nth, 1) << "no memory was asked for";
    EXPECT_EQ(wasToldOnce, GetParam().status != kNeverTold);

    uint32_t result = 7;
    EXPECT_EQ(vexaWKB_intersectGeometry(inner.geometry(), outer.geometry(), 1e-9, &result), 0U);
    EXPECT_EQ(result, answer);
}

const MemoryCase kCases[] = {
    {"LineAndLine", kLine, kLine, kNeverTold},
    {"LineAndMultiLine", kLine, kLines, kNeverTold},
    {"PointsAndLine", kPoints, kWholeLine, 0x8000},
    {"PointsAndLines", kPoints, kWholeLines, 0},
    {"PointsAndPolygon", kPointsAround, kPolygon, 0x8000},
    {"PointsAndPolygons", kPointsAround, kPolygons, 0},
    {"LineAndPolygon", kLine, kPolygon, 0},
    {"LinesAndPolygons", kLines, kPolygons, 0},
    {"PolygonAndPolygon", kTiltedPolygon, kTiltedPolygon, 0x8000},
    {"PolygonAndPolygons", kTiltedPolygon, kTiltedPolygons, 0},
    {"PolygonsAndPolygons", kTiltedPolygons, kTiltedPolygons, 0x8000},
};
INSTANTIATE_TEST_SUITE_P(Table, IntersectionMemory, testing::ValuesIn(kCases),
                         [](const auto& row) { return row.param.name; });

// Points are compared one by one where there is no memory to sort them in.
TEST(IntersectMultiPointMultiPoint, NeedsNoMemory) {
    const Bytes first = bufferOf(kPoints(1));
    const Bytes second = bufferOf(kPoints(1));
    const NewFailure failure{1};
    uint32_t result = 0;

    EXPECT_EQ(
        vexaWKB_intersectMultiPointMultiPoint(first.geometry(), second.geometry(), 0, &result), 0U);
    EXPECT_EQ(result, 1U);
    EXPECT_TRUE(failure.happened());
}

}  // namespace

}  // namespace vexa::test
