#include "tests/support/allocations.h"
#include "tests/support/transform_model.h"
#include "transform/matrix.h"
#include "vexakit/transform.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

constexpr Transform kSome = {{1, 2, 3, 4, -5, 6, 7, 8, 9, -10, 11, 12}};

/// An array between guards that already holds these points.
GuardedPoints filledWith(const Points& points) {
    GuardedPoints array(points.size());
    std::copy(points.begin(), points.end(), array.data());
    return array;
}

// ---- One point ----------------------------------------------------------------------------------

TEST(TransformPoint, TakesItsCoordinatesByRows) {
    Point3d point = {100, 10, 1};
    EXPECT_EQ(transform_point(&kSome, &point), 0U);
    EXPECT_TRUE(areSame(point, {127, -425, 823}));
}

TEST(TransformPoint, FollowsTheFormulaBitForBit) {
    for (const auto kind : {RandomNumbers::ORDINARY, RandomNumbers::WITH_ODD_ONES}) {
        for (std::uint32_t seed = 1; seed <= 5000; ++seed) {
            RandomNumbers random(seed, kind);
            const Transform transform = random.transform();
            const Point3d point = random.point();
            Point3d actual = point;
            EXPECT_EQ(transform_point(&transform, &actual), 0U);
            EXPECT_TRUE(areSame(actual, MatrixModel::of(transform).applied(point)))
                << seedText(seed);
        }
    }
}

// -0 times 1 and three zeros: the translation comes last and decides.
TEST(TransformPoint, AddsTheTranslationLast) {
    const Transform still = {{1, 0, 0, -0.0, 0, 1, 0, 0, 0, 0, 1, -0.0}};
    Point3d point = {-0.0, -0.0, -0.0};
    EXPECT_EQ(transform_point(&still, &point), 0U);
    EXPECT_TRUE(areSame(point, MatrixModel::of(still).applied({-0.0, -0.0, -0.0})));

    const Transform cancelling = {{1e16, 1, -1e16, 1, 0, 0, 0, 0, 0, 0, 0, 0}};
    point = {1, 1, 1};
    EXPECT_EQ(transform_point(&cancelling, &point), 0U);
    EXPECT_EQ(point.x, 1) << "1e16 + 1 is 1e16, less 1e16 is 0, and 1";
}

TEST(TransformPoint, MayLieInItsTransform) {
    for (const int first : {0, 1, 3, 7, 9}) {
        Transform transform = kSome;
        const auto at = [first](int k) { return kSome.m[first + k]; };
        const Point3d expected = MatrixModel::of(kSome).applied({at(0), at(1), at(2)});
        auto* const point = reinterpret_cast<Point3d*>(&transform.m[first]);
        EXPECT_EQ(transform_point(&transform, point), 0U);
        EXPECT_TRUE(areSame(*point, expected)) << "at entry " << first;
    }
}

TEST(ApplyTransformToPoint, LeavesTheSourceAlone) {
    const Point3d in = {100, 10, 1};
    Point3d out = {0, 0, 0};
    applyTransformToPoint(kSome, &out, &in);
    EXPECT_TRUE(areSame(out, {127, -425, 823}));
    EXPECT_TRUE(areSame(in, {100, 10, 1}));
}

// ---- Arrays -------------------------------------------------------------------------------------

// Every remainder of a loop that takes several points at a time.
TEST(TransformPointArray, TransformsEachPointOfAnyCountAndNoOther) {
    for (std::uint32_t count = 0; count <= 41; ++count) {
        const Points points = RandomNumbers(count).points(count);
        GuardedPoints array = filledWith(points);
        EXPECT_EQ(transform_pointArray(&kSome, count, array.data()), 0U);
        EXPECT_TRUE(array.holdOnly(modelApplied(kSome, points))) << count << " points";
    }
}

TEST(TransformPointArray, TransformsTheFirstPointsOnly) {
    for (std::uint32_t count = 0; count <= 9; ++count) {
        Points points = trail(12);
        GuardedPoints array = filledWith(points);
        EXPECT_EQ(transform_pointArray(&kSome, count, array.data()), 0U);

        for (std::uint32_t i = 0; i != count; ++i) points[i] = modelApplied(kSome, {points[i]})[0];
        EXPECT_TRUE(array.holdOnly(points)) << count << " points";
    }
}

TEST(TransformPointArray, FollowsTheFormulaBitForBit) {
    for (std::uint32_t seed = 1; seed <= 1000; ++seed) {
        RandomNumbers random(seed, RandomNumbers::WITH_ODD_ONES);
        const Transform transform = random.transform();
        const Points points = random.points(1 + random.below(20));
        Points actual = points;
        EXPECT_EQ(transform_pointArray(&transform, actual.size(), actual.data()), 0U);
        for (std::size_t i = 0; i != points.size(); ++i) {
            EXPECT_TRUE(areSame(actual[i], MatrixModel::of(transform).applied(points[i])))
                << seedText(seed) << ", point " << i;
        }
    }
}

// Far more than a stack holds.
TEST(TransformPointArray, TransformsAMillionPointsWithoutTheHeap) {
    Points points = trail(1'000'003);
    const Points expected = modelApplied(kSome, points);
    const AllocationWatch watch;
    EXPECT_EQ(transform_pointArray(&kSome, points.size(), points.data()), 0U);
    EXPECT_EQ(watch.requests(), 0);
    EXPECT_TRUE(std::equal(points.begin(), points.end(), expected.begin(),
                           [](const Point3d& a, const Point3d& b) { return areSame(a, b); }));
}

struct CountCase {
    const char* name;
    std::uint64_t count;
    std::uint32_t transformed;
};

constexpr std::uint64_t kTwoTo32 = std::uint64_t{1} << 32;

constexpr CountCase kCountCases[] = {
    {"None", 0, 0},
    {"TwoTo31", kTwoTo32 / 2, 0},
    {"TwoTo31AndTwo", kTwoTo32 / 2 + 2, 0},
    {"MostOf32Bits", kTwoTo32 - 1, 0},
    {"TwoTo32", kTwoTo32, 0},
    {"TwoTo32AndTwo", kTwoTo32 + 2, 2},
    {"ThreeTimesTwoTo32AndFive", 3 * kTwoTo32 + 5, 5},
    {"TwoTo32AndTwoTo31", kTwoTo32 + kTwoTo32 / 2, 0},
    {"TwoTo63AndOne", (std::uint64_t{1} << 63) + 1, 1},
    {"MostOf64Bits", ~std::uint64_t{0}, 0},
};

class PointArrayCount : public testing::TestWithParam<CountCase> {};

TEST_P(PointArrayCount, IsTheLow32BitsAsASignedNumber) {
    Points points = trail(8);
    GuardedPoints array = filledWith(points);
    EXPECT_EQ(transform_pointArray(&kSome, GetParam().count, array.data()), 0U);

    for (std::uint32_t i = 0; i != GetParam().transformed; ++i) {
        points[i] = modelApplied(kSome, {points[i]})[0];
    }
    EXPECT_TRUE(array.holdOnly(points));
}

INSTANTIATE_TEST_SUITE_P(Table, PointArrayCount, testing::ValuesIn(kCountCases),
                         [](const auto& row) { return std::string{row.param.name}; });

// The transform lies among the numbers that it changes: each point sees it as it was.
TEST(TransformPointArray, ReadsATransformAmongThePointsOnce) {
    constexpr std::size_t kPoints = 10;
    for (std::size_t place = 0; place + 12 <= 3 * kPoints; ++place) {
        std::vector<double> numbers(3 * kPoints);
        for (std::size_t i = 0; i != numbers.size(); ++i) {
            numbers[i] = 1 + static_cast<double>(i) / 8;
        }
        Points expected(kPoints);
        std::memcpy(expected.data(), numbers.data(), sizeof(double) * numbers.size());
        Transform transform{};
        std::memcpy(&transform, &numbers[place], sizeof transform);
        expected = modelApplied(transform, expected);

        EXPECT_EQ(transform_pointArray(reinterpret_cast<const Transform*>(&numbers[place]), kPoints,
                                       reinterpret_cast<Point3d*>(numbers.data())),
                  0U);
        EXPECT_EQ(std::memcmp(numbers.data(), expected.data(), sizeof(double) * numbers.size()), 0)
            << "transform at number " << place;
    }
}

TEST(ApplyTransformToPoints, WritesBesideTheSource) {
    for (std::int32_t count = -2; count <= 9; ++count) {
        const Points in = trail(10);
        GuardedPoints out(10);
        applyTransformToPoints(kSome, out.data(), in.data(), count);

        const auto done = static_cast<std::size_t>(std::max(count, 0));
        EXPECT_TRUE(out.holdOnly(modelApplied(kSome, {in.data(), in.data() + done}))) << count;
        EXPECT_EQ(wordsOf(in), wordsOf(trail(10)));
    }
}

TEST(ApplyTransformToPoints, DoesNothingForTheLeastCount) {
    const Points in = trail(2);
    GuardedPoints out(2);
    applyTransformToPoints(kSome, out.data(), in.data(), INT32_MIN);
    EXPECT_TRUE(out.areUntouched());
}

}  // namespace
