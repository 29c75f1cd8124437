#include "tests/support/transform_model.h"
#include "vexakit/transform.h"

#include <cmath>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

using namespace vexa::test;

namespace {

constexpr double kPi = 3.141592653589793;

Transform rotationAbout(const Point3d& from, const Point3d& to, double angle) {
    Transform transform = kUnwritten;
    EXPECT_EQ(transform_initRotationAboutLine(&transform, &from, &to, angle), 0U);
    return transform;
}

Point3d turned(const Transform& transform, Point3d point) {
    EXPECT_EQ(transform_point(&transform, &point), 0U);
    return point;
}

void expectNear(const Point3d& actual, const Point3d& expected) {
    EXPECT_NEAR(actual.x, expected.x, 1e-14);
    EXPECT_NEAR(actual.y, expected.y, 1e-14);
    EXPECT_NEAR(actual.z, expected.z, 1e-14);
}

struct TurnCase {
    const char* name;
    Point3d from;
    Point3d to;
    double angle;
    Point3d point;
    Point3d turned;
};

constexpr TurnCase kTurnCases[] = {
    {"AboutZTakesXToY", {0, 0, 0}, {0, 0, 1}, kPi / 2, {1, 0, 0}, {0, 1, 0}},
    {"AboutXTakesYToZ", {0, 0, 0}, {1, 0, 0}, kPi / 2, {0, 1, 0}, {0, 0, 1}},
    {"AboutYTakesZToX", {0, 0, 0}, {0, 1, 0}, kPi / 2, {0, 0, 1}, {1, 0, 0}},
    {"AgainstZTakesYToX", {0, 0, 1}, {0, 0, 0}, kPi / 2, {0, 1, 0}, {1, 0, 0}},
    {"BackwardsTakesYToX", {0, 0, 0}, {0, 0, 1}, -kPi / 2, {0, 1, 0}, {1, 0, 0}},
    {"TheLengthOfTheLineDoesNotMatter", {0, 0, 0}, {0, 0, 250}, kPi / 2, {1, 0, 0}, {0, 1, 0}},
    {"AboutALineBesideTheOrigin", {1, 1, 5}, {1, 1, 6}, kPi / 2, {2, 1, 9}, {1, 2, 9}},
    {"TheDiagonalPermutesTheAxes", {0, 0, 0}, {1, 1, 1}, 2 * kPi / 3, {1, 2, 3}, {3, 1, 2}},
    {"AHalfTurn", {0, 0, 0}, {0, 1, 0}, kPi, {1, 2, 3}, {-1, 2, -3}},
    {"TheSecondPointOfTheLineStays", {1, 2, 3}, {2, 4, 4}, 1.25, {2, 4, 4}, {2, 4, 4}},
};

class RotationAboutLine : public testing::TestWithParam<TurnCase> {};

TEST_P(RotationAboutLine, TurnsRightHanded) {
    const TurnCase& row = GetParam();
    expectNear(turned(rotationAbout(row.from, row.to, row.angle), row.point), row.turned);
}

INSTANTIATE_TEST_SUITE_P(Table, RotationAboutLine, testing::ValuesIn(kTurnCases),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(TransformInitRotationAboutLine, FollowsTheFormulaBitForBit) {
    for (std::uint32_t seed = 1; seed <= 5000; ++seed) {
        RandomNumbers random(seed);
        const Point3d from = random.point();
        const Point3d to = random.point();
        const double angle = random.number();
        EXPECT_TRUE(
            areSame(rotationAbout(from, to, angle), modelRotationAboutLine(from, to, angle)))
            << seedText(seed);
    }
}

TEST(TransformInitRotationAboutLine, FollowsTheFormulaWithOddNumbers) {
    for (std::uint32_t seed = 1; seed <= 5000; ++seed) {
        RandomNumbers random(seed, RandomNumbers::WITH_ODD_ONES);
        const Point3d from = random.point();
        const Point3d to = random.point();
        const double angle = random.number();
        EXPECT_TRUE(
            areSame(rotationAbout(from, to, angle), modelRotationAboutLine(from, to, angle)))
            << seedText(seed);
    }
}

// Axes whose products vanish show the signs of their zeros.
TEST(TransformInitRotationAboutLine, FollowsTheFormulaAboutTheAxes) {
    for (const double angle : {0.0, -0.0, 0.5, -0.5, kPi / 2, kPi, -kPi, 2 * kPi, 1e22}) {
        for (const double far : {1.0, -1.0, 3.0, 1e-160, 1e160}) {
            for (const Point3d& to :
                 {Point3d{far, 0, 0}, {0, far, 0}, {0, 0, far}, {far, far, 0}}) {
                const Point3d from = {0, -0.0, 0};
                EXPECT_TRUE(areSame(rotationAbout(from, to, angle),
                                    modelRotationAboutLine(from, to, angle)))
                    << "angle " << angle << ", to (" << to.x << ", " << to.y << ", " << to.z << ")";
            }
        }
    }
}

TEST(TransformInitRotationAboutLine, IsTheIdentityForTwoEqualPoints) {
    const Point3d point = {3, -4, 5.5};
    EXPECT_TRUE(areSame(rotationAbout(point, point, 1), {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}}));
}

// The square of the distance counts: it may vanish where the distance does not.
TEST(TransformInitRotationAboutLine, IsTheIdentityWhereTheLengthVanishes) {
    EXPECT_TRUE(areSame(rotationAbout({0, 0, 0}, {1e-170, 0, 0}, 1),
                        {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}}));
}

TEST(TransformInitRotationAboutLine, HasAnIdentityLinearPartForALineThatIsNoNumber) {
    const Transform transform = rotationAbout({1, 2, 3}, {1, kNaN, 4}, 1);
    EXPECT_TRUE(areSame(transform, {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}}));
}

// The length overflows, its reciprocal is 0, and of the axis nothing is left.
TEST(TransformInitRotationAboutLine, LosesAnAxisWhoseLengthOverflows) {
    const double c = std::cos(1.0);
    const Transform transform = rotationAbout({0, 0, 0}, {0, 0, 1e200}, 1);
    EXPECT_TRUE(areSame(transform, {{c, 0, 0, 0, 0, c, 0, 0, 0, 0, c, 0}}));
}

TEST(TransformInitRotationAboutLine, ReadsPointsThatLieInTheTransform) {
    Transform transform = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};
    const auto* const from = reinterpret_cast<const Point3d*>(&transform.m[2]);
    const auto* const to = reinterpret_cast<const Point3d*>(&transform.m[7]);
    const Transform expected = modelRotationAboutLine({3, 4, 5}, {8, 9, 10.0}, 0.75);
    EXPECT_EQ(transform_initRotationAboutLine(&transform, from, to, 0.75), 0U);
    EXPECT_TRUE(areSame(transform, expected));
}

}  // namespace
