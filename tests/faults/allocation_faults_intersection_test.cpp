#include "tests/faults/allocation_faults.h"
#include "tests/support/intersection_asking.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vexa::test {

namespace {

// ---- Shapes beyond the working memory on the stack ----------------------------------------------

/// Even numbers of vertices, so that each has one right across. Boxes over stretches of the fewer fit the
/// stack.
constexpr int kMany = 3002;
constexpr int kVeryMany = 20002;
constexpr double kTurn = 6.283185307179586;

/// A circle, from a part of a turn on.
Points circle(int count, double radius, double firstTurn = 0, double centre = 0) {
    Points points;
    const int first = static_cast<int>(firstTurn * count);
    for (int i = 0; i < count; ++i) {
        const double angle = kTurn * ((first + i) % count) / count;
        points.push_back({centre + radius * std::cos(angle), radius * std::sin(angle), 0});
    }
    return points;
}

Points tilted(Points points) {
    for (Point3d& point : points) point.z = point.x;
    return points;
}

Points upright(Points points) {
    for (Point3d& point : points) point = {point.x, 0, point.y};
    return points;
}

Shape shapeOf(std::uint32_t type, const Points& points) {
    switch (type) {
        case VEXA_POINT: return pointShape(points.front());
        case VEXA_LINESTRING: return lineShape({points});
        case VEXA_POLYGON: return polygonShape({{points}});
        case VEXA_MULTIPOINT: return multipointShape(points);
        case VEXA_MULTILINESTRING: return multilineShape({{points}});
        default: return multipolygonShape({{{points}}});
    }
}

// ---- The call -----------------------------------------------------------------------------------

class Intersecting : public FaultyCall {
public:
    struct Row {
        IntersectionTest test;
        Bytes first;
        Bytes second;
        std::uint32_t answer;
        std::uint32_t statusWithoutMemory;
    };

    explicit Intersecting(std::shared_ptr<const Row> row)
        : row_(std::move(row)), first_(row_->first), second_(row_->second) {}

    void make() override {
        result_ = kUntouched;
        status_ = row_->test(first_.geometry(), second_.geometry(), kTolerance, &result_);
    }
    bool isDone() override { return result_ != kUntouched; }
    void expectDone() override {
        EXPECT_EQ(status_, VEXA_SUCCESS);
        EXPECT_EQ(result_, row_->answer);
        expectUnchanged();
    }
    void expectTold() override {
        EXPECT_EQ(status_, row_->statusWithoutMemory);
        expectUnchanged();
    }

private:
    static constexpr std::uint32_t kUntouched = 7;
    static constexpr double kTolerance = 1e-9;

    void expectUnchanged() const {
        EXPECT_EQ(std::memcmp(first_.data(), row_->first.data(), first_.size()), 0);
        EXPECT_EQ(std::memcmp(second_.data(), row_->second.data(), second_.size()), 0);
    }

    std::shared_ptr<const Row> row_;
    Bytes first_;
    Bytes second_;
    std::uint32_t status_ = 0xBAD;
    std::uint32_t result_ = kUntouched;
};

FaultCase intersectionCase(const std::string& name, const Intersecting::Row& row, Lack lack) {
    const auto shared = std::make_shared<const Intersecting::Row>(row);
    return {"vexaWKB_intersect" + name, [=] { return std::make_unique<Intersecting>(shared); },
            lack};
}

// ---- The table ----------------------------------------------------------------------------------

constexpr std::uint32_t kTold = VEXA_FAILURE;
constexpr std::uint32_t kPassedOver = VEXA_SUCCESS;

struct CircleCase {
    const char* name;
    IntersectionTest test;
    std::uint32_t first;
    std::uint32_t second;
    double firstRadius;
    double secondRadius;
    std::uint32_t answer;
    std::uint32_t statusWithoutMemory;
    Lack lack;
};

constexpr auto kIsTold = Lack::IsTold;
constexpr auto kSometimes = Lack::IsSometimesMadeUpFor;
constexpr auto kIsMadeUpFor = Lack::IsMadeUpFor;

// A circle in another is far from it everywhere, and yet its range overlaps: all pairs are looked at. Of
// equal ones the first pairs meet. A point lies on the circle.
constexpr CircleCase kCircleCases[] = {
    {"PointLineString", vexaWKB_intersectPointLineString, 1, 2, 1, 1, 1, kTold, kSometimes},
    {"PointPolygon", vexaWKB_intersectPointPolygon, 1, 3, 1, 1, 1, kTold, kIsTold},
    {"PointMultiPoint", vexaWKB_intersectPointMultiPoint, 1, 4, 1, 1, 1, kTold, kIsMadeUpFor},
    {"PointMultiLineString", vexaWKB_intersectPointMultiLineString, 1, 5, 1, 1, 1, kTold,
     kSometimes},
    {"PointMultiPolygon", vexaWKB_intersectPointMultiPolygon, 1, 6, 1, 1, 1, kTold, kIsTold},
    {"LineStringLineString", vexaWKB_intersectLineStringLineString, 2, 2, 1, 1, 1, kTold,
     kIsMadeUpFor},
    {"LineStringPolygon", vexaWKB_intersectLineStringPolygon, 2, 3, 2, 1, 0, kPassedOver,
     kIsMadeUpFor},
    {"LineStringMultiPoint", vexaWKB_intersectLineStringMultiPoint, 2, 4, 1, 2, 0, kTold,
     kSometimes},
    {"LineStringMultiLineString", vexaWKB_intersectLineStringMultiLineString, 2, 5, 1, 1, 1, kTold,
     kIsMadeUpFor},
    {"LineStringMultiPolygon", vexaWKB_intersectLineStringMultiPolygon, 2, 6, 0.5, 1, 1,
     kPassedOver, kSometimes},
    {"PolygonMultiPoint", vexaWKB_intersectPolygonMultiPoint, 3, 4, 1, 2, 0, kTold, kSometimes},
    {"PolygonMultiLineString", vexaWKB_intersectPolygonMultiLineString, 3, 5, 1, 0.5, 1,
     kPassedOver, kSometimes},
    {"MultiPointMultiPoint", vexaWKB_intersectMultiPointMultiPoint, 4, 4, 1, 1, 1, kTold,
     kIsMadeUpFor},
    {"MultiPointMultiLineString", vexaWKB_intersectMultiPointMultiLineString, 4, 5, 1, 1, 1,
     kPassedOver, kSometimes},
    {"MultiPointMultiPolygon", vexaWKB_intersectMultiPointMultiPolygon, 4, 6, 2, 1, 0, kPassedOver,
     kSometimes},
    {"MultiLineStringMultiLineString", vexaWKB_intersectMultiLineStringMultiLineString, 5, 5, 1, 1,
     1, kTold, kIsMadeUpFor},
    {"MultiLineStringMultiPolygon", vexaWKB_intersectMultiLineStringMultiPolygon, 5, 6, 2, 1, 0,
     kPassedOver, kIsMadeUpFor},
    {"Geometry", vexaWKB_intersectGeometry, 3, 4, 1, 2, 0, kTold, kSometimes},
    {"GeometryPoint", vexaWKB_intersectGeometryPoint, 3, 1, 1, 1, 1, kTold, kIsTold},
    {"GeometryLineString", vexaWKB_intersectGeometryLineString, 1, 2, 1, 1, 1, kTold, kSometimes},
    {"GeometryPolygon", vexaWKB_intersectGeometryPolygon, 1, 3, 1, 1, 1, kTold, kIsTold},
    {"GeometryMultiPoint", vexaWKB_intersectGeometryMultiPoint, 3, 4, 1, 2, 0, kTold, kSometimes},
    {"GeometryMultiLineString", vexaWKB_intersectGeometryMultiLineString, 1, 5, 1, 1, 1, kTold,
     kSometimes},
    {"GeometryMultiPolygon", vexaWKB_intersectGeometryMultiPolygon, 1, 6, 1, 1, 1, kTold, kIsTold},
};

struct PolygonCase {
    const char* name;
    IntersectionTest test;
    std::uint32_t first;
    std::uint32_t second;
    std::uint32_t statusWithoutMemory;
};

constexpr PolygonCase kPolygonCases[] = {
    {"PolygonPolygon", vexaWKB_intersectPolygonPolygon, 3, 3, kTold},
    {"PolygonMultiPolygon", vexaWKB_intersectPolygonMultiPolygon, 3, 6, kPassedOver},
    {"MultiPolygonMultiPolygon", vexaWKB_intersectMultiPolygonMultiPolygon, 6, 6, kTold},
};

/// Lines before lines and polygons are searched by stretches.
bool needsVeryMany(std::uint32_t first, std::uint32_t second) {
    const auto isOfPoints = [](std::uint32_t type) {
        return type == VEXA_POINT || type == VEXA_MULTIPOINT;
    };
    return !isOfPoints(first) && !isOfPoints(second);
}

std::vector<FaultCase> intersectionCases() {
    std::vector<FaultCase> cases;
    for (const CircleCase& row : kCircleCases) {
        const int count = needsVeryMany(row.first, row.second) ? kVeryMany : kMany;
        const Bytes first = bufferOf(shapeOf(row.first, circle(count, row.firstRadius)));
        const Bytes second = bufferOf(shapeOf(row.second, circle(count, row.secondRadius)));
        cases.push_back(intersectionCase(
            row.name, {row.test, first, second, row.answer, row.statusWithoutMemory}, row.lack));
    }
    // Neither has its first vertex in the other: only the edges tell, or the many points of one that lie
    // in the plane of the other.
    const Points left = circle(kVeryMany, 1, 0.5);
    const Points right = circle(kVeryMany, 1, 0, 1.5);
    const Points across = upright(circle(kMany, 3));
    for (const PolygonCase& row : kPolygonCases) {
        const Bytes first = bufferOf(shapeOf(row.first, left));
        const std::uint32_t status = row.statusWithoutMemory;
        cases.push_back(intersectionCase(
            row.name + std::string{"_Crossing"},
            {row.test, first, bufferOf(shapeOf(row.second, right)), 1, status}, kIsMadeUpFor));
        cases.push_back(intersectionCase(row.name + std::string{"_TiltedCrossing"},
                                         {row.test, bufferOf(shapeOf(row.first, tilted(left))),
                                          bufferOf(shapeOf(row.second, tilted(right))), 1, status},
                                         kSometimes));
        cases.push_back(intersectionCase(
            row.name + std::string{"_Upright"},
            {row.test, first, bufferOf(shapeOf(row.second, across)), 1, status}, kIsTold));
    }
    const Bytes holed = bufferOf(polygonShape({{circle(kMany, 2)}, {circle(kMany, 1)}}));
    cases.push_back(intersectionCase(
        "PolygonMultiPoint_InAHole",
        {vexaWKB_intersectPolygonMultiPoint, holed, multipointOf(circle(kMany, 0.5)), 0, kTold},
        kSometimes));
    return cases;
}

class IntersectionFaults : public AllocationFaults {};

TEST_P(IntersectionFaults, AreMadeUpForOrTold) {
    expectFaultsTaken(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, IntersectionFaults, testing::ValuesIn(intersectionCases()),
                         kFaultCaseName);

}  // namespace

}  // namespace vexa::test
