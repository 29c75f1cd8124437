#include "tests/support/transform_model.h"
#include "transform/matrix.h"
#include "vexakit/transform.h"

#include <cstdint>

#include <gtest/gtest.h>

using namespace vexa;
using namespace vexa::test;

namespace {

constexpr Transform kStepAlongX = {{1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0}};
constexpr Transform kDouble = {{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0}};

constexpr Transform kFirst = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};
constexpr Transform kSecond = {{2, -1, 0, 3, 1, 4, -2, 5, 0, 3, 1, -6}};
constexpr Transform kFirstTimesSecond = {{4, 16, -1, -1, 16, 40, -5, 11, 28, 64, -9, 23}};

Transform product(const Transform& first, const Transform& second) {
    Transform result = kUnwritten;
    EXPECT_EQ(transform_multiply(&first, &second, &result), 0U);
    return result;
}

TEST(TransformMultiply, AppliesTheSecondFirst) {
    Point3d point = {1, 0, 0};
    const Transform scaleThenStep = product(kStepAlongX, kDouble);
    transform_point(&scaleThenStep, &point);
    EXPECT_TRUE(areSame(point, {3, 0, 0}));

    point = {1, 0, 0};
    const Transform stepThenScale = product(kDouble, kStepAlongX);
    transform_point(&stepThenScale, &point);
    EXPECT_TRUE(areSame(point, {4, 0, 0}));
}

TEST(TransformMultiply, GivesTheProductByHand) {
    EXPECT_TRUE(areSame(product(kFirst, kSecond), kFirstTimesSecond));
}

TEST(TransformMultiply, FollowsTheFormulaBitForBit) {
    for (const auto kind : {RandomNumbers::ORDINARY, RandomNumbers::WITH_ODD_ONES}) {
        for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
            RandomNumbers random(seed, kind);
            const Transform first = random.transform();
            const Transform second = random.transform();
            EXPECT_TRUE(areSame(product(first, second),
                                modelProduct(MatrixModel::of(first), MatrixModel::of(second))))
                << seedText(seed);
        }
    }
}

TEST(TransformMultiply, LeavesItsFactorsAlone) {
    Transform first = kFirst;
    Transform second = kSecond;
    Transform result = kUnwritten;
    EXPECT_EQ(transform_multiply(&first, &second, &result), 0U);
    EXPECT_TRUE(areSame(first, kFirst));
    EXPECT_TRUE(areSame(second, kSecond));
}

TEST(TransformMultiply, MayStoreIntoItsFirstFactor) {
    Transform first = kFirst;
    EXPECT_EQ(transform_multiply(&first, &kSecond, &first), 0U);
    EXPECT_TRUE(areSame(first, kFirstTimesSecond));
}

TEST(TransformMultiply, MayStoreIntoItsSecondFactor) {
    Transform second = kSecond;
    EXPECT_EQ(transform_multiply(&kFirst, &second, &second), 0U);
    EXPECT_TRUE(areSame(second, kFirstTimesSecond));
}

TEST(TransformMultiply, MaySquareInPlace) {
    Transform transform = kFirst;
    EXPECT_EQ(transform_multiply(&transform, &transform, &transform), 0U);
    EXPECT_TRUE(areSame(transform, {{38, 44, 50, 60, 98, 116, 134, 160, 158, 188, 218, 260}}));
}

// ---- Rigid inverse and frame --------------------------------------------------------------------

TEST(InvertRigidTransform, TransposesAndTurnsTheTranslationBack) {
    // A quarter turn about z, then a step.
    const Transform transform = {{0, -1, 0, 5, 1, 0, 0, 6, 0, 0, 1, 7}};
    const Transform inverse = invertRigidTransform(transform);

    Point3d point = {2, 3, 4};
    transform_point(&transform, &point);
    EXPECT_TRUE(areSame(point, {2, 8, 11}));
    transform_point(&inverse, &point);
    EXPECT_TRUE(areSame(point, {2, 3, 4}));
}

TEST(InvertRigidTransform, ChecksNothing) {
    EXPECT_TRUE(
        areSame(invertRigidTransform(kFirst), {{1, 5, 9, -152, 2, 6, 10, -176, 3, 7, 11, -200}}));
}

TEST(InvertRigidTransform, FollowsTheFormulaBitForBit) {
    for (const auto kind : {RandomNumbers::ORDINARY, RandomNumbers::WITH_ODD_ONES}) {
        for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
            const Transform transform = RandomNumbers(seed, kind).transform();
            EXPECT_TRUE(
                areSame(invertRigidTransform(transform), modelInverse(MatrixModel::of(transform))))
                << seedText(seed);
        }
    }
}

TEST(FrameFromAxes, HasTheAxesAsColumnsAndTheOriginAsTranslation) {
    const Transform frame = frameFromAxes({10, 20, 30}, {1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    EXPECT_TRUE(areSame(frame, {{1, 4, 7, 10, 2, 5, 8, 20, 3, 6, 9, 30}}));
}

TEST(FrameFromAxes, TakesFrameCoordinatesToTheWorld) {
    const Transform frame = frameFromAxes({10, 20, 30}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0});
    Point3d point = {1, 2, 3};
    transform_point(&frame, &point);
    EXPECT_TRUE(areSame(point, {13, 21, 32}));
}

TEST(FrameFromAxes, KeepsEveryBit) {
    EXPECT_TRUE(
        areSame(frameFromAxes({-0.0, kInfinity, kNaN}, {0, -0.0, 1}, {-0.0, 0, 2}, {3, 4, -0.0}),
                {{0, -0.0, 3, -0.0, -0.0, 0, 4, kInfinity, 1, 2, -0.0, kNaN}}));
}

}  // namespace
