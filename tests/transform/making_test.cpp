#include "tests/support/transform_model.h"
#include "vexakit/transform.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

using namespace vexa::test;

namespace {

// ---- Angles -------------------------------------------------------------------------------------

TEST(TransformDegrees2Radians, GivesPiForAHalfTurn) {
    double radians = 0;
    EXPECT_EQ(transform_degrees2radians(180, &radians), 0U);
    EXPECT_EQ(radians, 3.141592653589793);
}

TEST(TransformRadians2Degrees, GivesAHalfTurnForPi) {
    double degrees = 0;
    EXPECT_EQ(transform_radians2degrees(3.141592653589793, &degrees), 0U);
    EXPECT_EQ(degrees, 180.0);
}

// A division by pi/180 or a product by a quotient would differ in the last bit here and there.
TEST(TransformAngles, AreProductsWithOneConstant) {
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        const double angle = RandomNumbers(seed, RandomNumbers::WITH_ODD_ONES).number();
        double degrees = 99;
        double radians = 99;
        EXPECT_EQ(transform_radians2degrees(angle, &degrees), 0U);
        EXPECT_EQ(transform_degrees2radians(angle, &radians), 0U);

        EXPECT_TRUE(isSame(degrees, angle * 57.29577951308232)) << seedText(seed);
        EXPECT_TRUE(isSame(radians, angle * 0.017453292519943295)) << seedText(seed);
    }
}

// ---- Identity, translation, scale, matrix -------------------------------------------------------

TEST(TransformInitIdentity, WritesAllTwelveEntries) {
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initIdentity(&transform), 0U);
    EXPECT_TRUE(areSame(transform, {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}}));
}

TEST(TransformInitTranslation, PutsTheDeltaIntoTheFourthColumn) {
    const Point3d delta = {3, -4.5, 1e300};
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initTranslation(&transform, &delta), 0U);
    EXPECT_TRUE(areSame(transform, {{1, 0, 0, 3, 0, 1, 0, -4.5, 0, 0, 1, 1e300}}));
}

TEST(TransformInitTranslation, KeepsTheSignOfAZeroAndTheNumberThatIsNone) {
    const Point3d delta = {-0.0, kNaN, -kInfinity};
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initTranslation(&transform, &delta), 0U);
    EXPECT_TRUE(areSame(transform, {{1, 0, 0, -0.0, 0, 1, 0, kNaN, 0, 0, 1, -kInfinity}}));
}

TEST(TransformInitScale, KeepsTheFixedPointAndDoublesTheDistancesFromIt) {
    const Point3d scale = {2, 2, 2};
    const Point3d fixedPoint = {1, 1, 1};
    Transform transform = kUnwritten;
    ASSERT_EQ(transform_initScale(&transform, &scale, &fixedPoint), 0U);

    Point3d still = {1, 1, 1};
    Point3d moved = {2, 1, 1};
    transform_point(&transform, &still);
    transform_point(&transform, &moved);
    EXPECT_TRUE(areSame(still, {1, 1, 1}));
    EXPECT_TRUE(areSame(moved, {3, 1, 1}));
}

TEST(TransformInitScale, PutsEachFactorOnItsOwnAxis) {
    const Point3d scale = {2, -3, 0.5};
    const Point3d fixedPoint = {10, 20, 40};
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initScale(&transform, &scale, &fixedPoint), 0U);
    EXPECT_TRUE(areSame(transform, {{2, 0, 0, -10, 0, -3, 0, 80, 0, 0, 0.5, 20}}));
}

TEST(TransformInitScale, FollowsTheFormulaBitForBit) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        RandomNumbers random(seed, RandomNumbers::WITH_ODD_ONES);
        const Point3d scale = random.point();
        const Point3d fixedPoint = random.point();
        Transform transform = kUnwritten;
        EXPECT_EQ(transform_initScale(&transform, &scale, &fixedPoint), 0U);
        EXPECT_TRUE(areSame(transform, modelScale(scale, fixedPoint))) << seedText(seed);
    }
}

TEST(TransformInitRotation, TakesTheMatrixRowByRowAsItIs) {
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initRotation(&transform, 1, 2, 3, 4, 5, 6, 7, 8, 9), 0U);
    EXPECT_TRUE(areSame(transform, {{1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0}}));
}

TEST(TransformInitRotation, ChecksNothing) {
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initRotation(&transform, kNaN, kInfinity, -0.0, 0, 0, 0, -kInfinity, 1e300,
                                     5e-324),
              0U);
    EXPECT_TRUE(
        areSame(transform, {{kNaN, kInfinity, -0.0, 0, 0, 0, 0, 0, -kInfinity, 1e300, 5e-324, 0}}));
}

// ---- Fixed point --------------------------------------------------------------------------------

TEST(TransformSetFixedPoint, MakesATranslationTheIdentity) {
    const Point3d delta = {5, -6, 7};
    const Point3d point = {1, 2, 3};
    Transform transform = kUnwritten;
    transform_initTranslation(&transform, &delta);
    EXPECT_EQ(transform_setFixedPoint(&transform, &point), 0U);
    EXPECT_TRUE(areSame(transform, {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}}));
}

TEST(TransformSetFixedPoint, KeepsTheLinearPartAndDiscardsTheTranslation) {
    Transform transform = {{1, 2, 3, 1e10, 4, 5, 6, kNaN, 7, 8, 9, kInfinity}};
    const Point3d point = {1, 10, 100};
    EXPECT_EQ(transform_setFixedPoint(&transform, &point), 0U);
    EXPECT_TRUE(areSame(transform, {{1, 2, 3, -320, 4, 5, 6, -644, 7, 8, 9, -887}}));
}

TEST(TransformSetFixedPoint, FollowsTheFormulaBitForBit) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        RandomNumbers random(seed, RandomNumbers::WITH_ODD_ONES);
        Transform transform = random.transform();
        const Point3d point = random.point();
        MatrixModel model = MatrixModel::of(transform);
        model.fix(point);
        EXPECT_EQ(transform_setFixedPoint(&transform, &point), 0U);
        EXPECT_TRUE(areSame(transform, model)) << seedText(seed);
    }
}

TEST(TransformSetFixedPoint, ReadsAPointThatLiesInTheTransform) {
    Transform transform = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};
    MatrixModel model = MatrixModel::of(transform);
    model.fix({3, 4, 5});
    EXPECT_EQ(transform_setFixedPoint(&transform, reinterpret_cast<Point3d*>(&transform.m[2])), 0U);
    EXPECT_TRUE(areSame(transform, model));
}

// Zeros take part: zero times infinity is no number, in every row.
struct InfiniteCase {
    const char* name;
    Point3d point;
};

constexpr InfiniteCase kInfiniteCases[] = {
    {"X", {kInfinity, 1, 2}},
    {"Y", {1, -kInfinity, 2}},
    {"Z", {1, 2, kInfinity}},
    {"NaN", {1, kNaN, 2}},
};

class InfiniteFixedPoint : public testing::TestWithParam<InfiniteCase> {
protected:
    static void expectNoTranslation(const Transform& transform) {
        EXPECT_TRUE(std::isnan(transform.m[3]));
        EXPECT_TRUE(std::isnan(transform.m[7]));
        EXPECT_TRUE(std::isnan(transform.m[11]));
    }
};

TEST_P(InfiniteFixedPoint, SpoilsTheWholeTranslationOfAnIdentity) {
    Transform transform = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}};
    EXPECT_EQ(transform_setFixedPoint(&transform, &GetParam().point), 0U);
    expectNoTranslation(transform);
}

TEST_P(InfiniteFixedPoint, SpoilsTheWholeTranslationOfAScale) {
    const Point3d scale = {2, 3, 4};
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initScale(&transform, &scale, &GetParam().point), 0U);
    expectNoTranslation(transform);
    EXPECT_EQ(transform.m[0], 2);
    EXPECT_EQ(transform.m[5], 3);
    EXPECT_EQ(transform.m[10], 4);
}

TEST_P(InfiniteFixedPoint, SpoilsTheWholeTranslationOfARotation) {
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initRotationAboutLine(&transform, &GetParam().point, &GetParam().point, 1),
              0U);
    expectNoTranslation(transform);
    EXPECT_EQ(transform.m[0], 1);
    EXPECT_EQ(transform.m[1], 0);
}

INSTANTIATE_TEST_SUITE_P(Table, InfiniteFixedPoint, testing::ValuesIn(kInfiniteCases),
                         [](const auto& row) { return std::string{row.param.name}; });

}  // namespace
