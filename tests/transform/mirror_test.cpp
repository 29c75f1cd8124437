#include "tests/support/transform_model.h"
#include "vexakit/transform.h"

#include <cmath>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

using namespace vexa::test;

namespace {

constexpr Transform kStill = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}};

Transform mirrorIn(const Point3d& planePoint, const Point3d& normal) {
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initMirror(&transform, &planePoint, &normal), 0U);
    return transform;
}

TEST(TransformInitMirror, ReflectsInAPlaneBesideTheOrigin) {
    const Transform transform = mirrorIn({0, 0, 5}, {0, 0, 2});
    Point3d point = {1, 2, 3};
    EXPECT_EQ(transform_point(&transform, &point), 0U);
    EXPECT_TRUE(areSame(point, {1, 2, 7}));
}

// Each entry is a difference, and 0 minus a zero of either sign is +0.
TEST(TransformInitMirror, HasPositiveZerosBesideTheDiagonal) {
    for (const double side : {2.0, -2.0}) {
        EXPECT_TRUE(
            areSame(mirrorIn({3, 0, 0}, {side, 0, -0.0}), {{-1, 0, 0, 6,                     //
                                                            0, 1, 0, side > 0 ? 0.0 : -0.0,  //
                                                            0, 0, 1, side > 0 ? -0.0 : 0.0}}));
        EXPECT_TRUE(areSame(mirrorIn({0, 0, 0}, {0, side, 0}),
                            {{1, 0, 0, 0, 0, -1, 0, side > 0 ? 0.0 : -0.0, 0, 0, 1, 0}}));
    }
}

TEST(TransformInitMirror, SwapsTwoAxesInTheirDiagonalPlane) {
    const Transform transform = mirrorIn({0, 0, 0}, {1, -1, 0});
    Point3d point = {1, 2, 3};
    transform_point(&transform, &point);
    EXPECT_NEAR(point.x, 2, 1e-15);
    EXPECT_NEAR(point.y, 1, 1e-15);
    EXPECT_EQ(point.z, 3);
}

TEST(TransformInitMirror, FollowsTheFormulaBitForBit) {
    for (std::uint32_t seed = 1; seed <= 5000; ++seed) {
        RandomNumbers random(seed);
        const Point3d planePoint = random.point();
        const Point3d normal = random.point();
        EXPECT_TRUE(areSame(mirrorIn(planePoint, normal), modelMirror(planePoint, normal)))
            << seedText(seed);
    }
}

TEST(TransformInitMirror, FollowsTheFormulaWithOddNumbers) {
    for (std::uint32_t seed = 1; seed <= 5000; ++seed) {
        RandomNumbers random(seed, RandomNumbers::WITH_ODD_ONES);
        const Point3d planePoint = random.point();
        const Point3d normal = random.point();
        EXPECT_TRUE(areSame(mirrorIn(planePoint, normal), modelMirror(planePoint, normal)))
            << seedText(seed);
    }
}

struct DegenerateCase {
    const char* name;
    Point3d normal;
};

constexpr DegenerateCase kDegenerateCases[] = {
    {"Zero", {0, 0, 0}},
    {"NegativeZero", {-0.0, -0.0, -0.0}},
    {"NaN", {0, kNaN, 1}},
    {"NaNBesideInfinity", {kInfinity, 0, kNaN}},
    {"ShorterThanItsSquareCanTell", {1e-170, -1e-170, 0}},
};

class DegenerateMirror : public testing::TestWithParam<DegenerateCase> {};

// No fixed-point formula here: the plane point leaves no trace, whatever it is.
TEST_P(DegenerateMirror, IsTheIdentity) {
    for (const Point3d& planePoint : {Point3d{1, 2, 3}, {kInfinity, 0, 0}, {0, kNaN, 0}}) {
        EXPECT_TRUE(areSame(mirrorIn(planePoint, GetParam().normal), kStill));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, DegenerateMirror, testing::ValuesIn(kDegenerateCases),
                         [](const auto& row) { return std::string{row.param.name}; });

// The length overflows, its reciprocal is 0: nothing is left of the normal.
TEST(TransformInitMirror, LosesANormalWhoseLengthOverflows) {
    EXPECT_TRUE(areSame(mirrorIn({1, 1, 1}, {1e200, 0, 0}), kStill));
}

// Twice the plane's distance overflows before the normal's small component could shrink it.
TEST(TransformInitMirror, DoublesThePlanesDistanceBeforeItScalesTheNormal) {
    const Transform transform = mirrorIn({0, 1e308, 0}, {1, 10, 0});
    EXPECT_EQ(transform.m[3], kInfinity);
    EXPECT_EQ(transform.m[7], kInfinity);
    EXPECT_TRUE(std::isnan(transform.m[11])) << "zero times infinity";
}

TEST(TransformInitMirror, IsNoNumberForAnInfiniteNormal) {
    const Transform transform = mirrorIn({1, 1, 1}, {kInfinity, 0, 0});
    EXPECT_TRUE(areSame(transform, {{kNaN, kNaN, kNaN, kNaN,  //
                                     kNaN, 1, 0, kNaN,        //
                                     kNaN, 0, 1, kNaN}}));
}

TEST(TransformInitMirror, ReadsArgumentsThatLieInTheTransform) {
    Transform transform = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};
    const Transform expected = modelMirror({3, 4, 5}, {8, 9, 10});
    EXPECT_EQ(transform_initMirror(&transform, reinterpret_cast<const Point3d*>(&transform.m[2]),
                                   reinterpret_cast<const Point3d*>(&transform.m[7])),
              0U);
    EXPECT_TRUE(areSame(transform, expected));
}

}  // namespace
