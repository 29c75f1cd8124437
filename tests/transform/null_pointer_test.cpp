#include "tests/support/transform_model.h"
#include "vexakit/transform.h"

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

using namespace vexa::test;

namespace {

/// What the functions might write. Every row leaves out one pointer and offers all others.
struct Outputs {
    Transform transform = kUnwritten;
    Point3d point = {1, 2, 3};
};

struct NullCase {
    const char* name;
    std::function<std::uint32_t(Outputs&)> call;
};

void PrintTo(const NullCase& row, std::ostream* out) {
    *out << row.name;
}

constexpr Point3d kPoint = {3, 5, 7};
constexpr Transform kSome = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};

const NullCase kNullCases[] = {
    {"Radians2DegreesResult", [](Outputs&) { return transform_radians2degrees(1, nullptr); }},
    {"Degrees2RadiansResult", [](Outputs&) { return transform_degrees2radians(1, nullptr); }},
    {"InitIdentity", [](Outputs&) { return transform_initIdentity(nullptr); }},
    {"InitTranslation", [](Outputs&) { return transform_initTranslation(nullptr, &kPoint); }},
    {"InitTranslationDelta",
     [](Outputs& out) { return transform_initTranslation(&out.transform, nullptr); }},
    {"InitScale", [](Outputs&) { return transform_initScale(nullptr, &kPoint, &kPoint); }},
    {"InitScaleScale",
     [](Outputs& out) { return transform_initScale(&out.transform, nullptr, &kPoint); }},
    {"InitScaleFixedPoint",
     [](Outputs& out) { return transform_initScale(&out.transform, &kPoint, nullptr); }},
    {"InitRotation",
     [](Outputs&) { return transform_initRotation(nullptr, 1, 2, 3, 4, 5, 6, 7, 8, 9); }},
    {"InitRotationAboutLine",
     [](Outputs&) { return transform_initRotationAboutLine(nullptr, &kPoint, &kPoint, 1); }},
    {"InitRotationAboutLineFirst",
     [](Outputs& out) {
         return transform_initRotationAboutLine(&out.transform, nullptr, &kPoint, 1);
     }},
    {"InitRotationAboutLineSecond",
     [](Outputs& out) {
         return transform_initRotationAboutLine(&out.transform, &kPoint, nullptr, 1);
     }},
    {"InitMirror", [](Outputs&) { return transform_initMirror(nullptr, &kPoint, &kPoint); }},
    {"InitMirrorPoint",
     [](Outputs& out) { return transform_initMirror(&out.transform, nullptr, &kPoint); }},
    {"InitMirrorNormal",
     [](Outputs& out) { return transform_initMirror(&out.transform, &kPoint, nullptr); }},
    {"SetFixedPoint", [](Outputs&) { return transform_setFixedPoint(nullptr, &kPoint); }},
    {"SetFixedPointPoint",
     [](Outputs& out) { return transform_setFixedPoint(&out.transform, nullptr); }},
    {"MultiplyFirst",
     [](Outputs& out) { return transform_multiply(nullptr, &kSome, &out.transform); }},
    {"MultiplySecond",
     [](Outputs& out) { return transform_multiply(&kSome, nullptr, &out.transform); }},
    {"MultiplyResult", [](Outputs&) { return transform_multiply(&kSome, &kSome, nullptr); }},
    {"Point", [](Outputs& out) { return transform_point(nullptr, &out.point); }},
    {"PointPoint", [](Outputs&) { return transform_point(&kSome, nullptr); }},
    {"PointArray", [](Outputs& out) { return transform_pointArray(nullptr, 1, &out.point); }},
    {"PointArrayPoints", [](Outputs&) { return transform_pointArray(&kSome, 1, nullptr); }},
    {"PointArrayOfNone", [](Outputs& out) { return transform_pointArray(nullptr, 0, &out.point); }},
};

class TransformNull : public testing::TestWithParam<NullCase> {};

TEST_P(TransformNull, FailsAndWritesNothing) {
    Outputs outputs;
    EXPECT_EQ(GetParam().call(outputs), 0x8000U);
    EXPECT_TRUE(areSame(outputs.transform, kUnwritten));
    EXPECT_TRUE(areSame(outputs.point, {1, 2, 3}));
}

INSTANTIATE_TEST_SUITE_P(Table, TransformNull, testing::ValuesIn(kNullCases),
                         [](const auto& row) { return std::string{row.param.name}; });

}  // namespace
