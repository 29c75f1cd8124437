#include "tests/support/numeric_locale.h"
#include "tests/support/parse_support.h"

#include <array>

namespace vexa::test {

namespace {

// ---- Statuses ----------------------------------------------------------------------------------

struct Outcome {
    const char* name;
    const char* text;
    std::uint32_t status;
};

constexpr Outcome kOutcomes[] = {
    {"Geometry", "POINT(1 2 3)", 0},
    {"Collection", "GEOMETRYCOLLECTION(POINT(1 2 3))", 0},
    {"SyntaxError", "POINT(1 2)", 1},
    {"ErrorBehindTheGeometry", "POINT(1 2 3))", 1},
    {"EmptyText", "", 1},
    {"NullText", nullptr, 0xFFFFFFFF},
};

class ParseString : public testing::TestWithParam<Outcome> {};

TEST_P(ParseString, WritesTheResultOnSuccessOnly) {
    const Outcome& row = GetParam();
    GeometryBuffer untouched{};
    GeometryBuffer* result = &untouched;

    EXPECT_EQ(vexaParse_string(row.text, &result), row.status);

    EXPECT_EQ(result != &untouched, row.status == 0);
    if (row.status == 0) {
        EXPECT_EQ(vexaWKB_destroyGeom(&result), 0U);
    }
}

TEST_P(ParseString, WithoutAResultPointerTellsOfTheTextFirst) {
    const Outcome& row = GetParam();

    EXPECT_EQ(vexaParse_string(row.text, nullptr), row.status == 0 ? 0x8000U : row.status);
}

INSTANTIATE_TEST_SUITE_P(Table, ParseString, testing::ValuesIn(kOutcomes), kRowName);

TEST(ParseString, MakesAPointOf40Bytes) {
    const Parsed result = parsed("POINT(1 2 3)");

    ASSERT_EQ(result.status, 0U);
    EXPECT_EQ(result.geometry->size, 40U);
    EXPECT_EQ(result.error, "");
}

TEST(ParseString, LeavesTheTextAlone) {
    std::string text = "POINT(1e+999 -- 5 6)";
    const std::string before = text;
    outputOf([&] { parsed(text); });

    EXPECT_EQ(text, before);
}

TEST(ParseString, MakesANewBufferEachTime) {
    const Parsed first = parsed("POINT(1 2 3)");
    const Parsed second = parsed("POINT(4 5 6)");

    EXPECT_NE(first.geometry, second.geometry);
    EXPECT_EQ(contentsOf(*first.geometry), contentsOf(*parsed("POINT(1 2 3)").geometry));
}

// ---- The error text ----------------------------------------------------------------------------

TEST(ParseErrorString, IsOneArrayForTheWholeProcess) {
    const char* const text = vexaParse_errorString();
    parsed("POINT(");
    EXPECT_EQ(vexaParse_errorString(), text);
    parsed("POINT(1 2 3)");
    EXPECT_EQ(vexaParse_errorString(), text);
}

TEST(ParseErrorString, StaysUntilTheNextParse) {
    parsed("POINT(1 2)");
    EXPECT_EQ(vexaParse_initialize(), 0U);
    EXPECT_EQ(vexaParse_uninitialize(), 0U);

    EXPECT_EQ(std::string{vexaParse_errorString()}, errorAt(")"));
    EXPECT_EQ(std::string{vexaParse_errorString()}, errorAt(")"));
}

TEST(ParseErrorString, IsEmptyAfterASuccess) {
    parsed("POINT(1 2)");
    parsed("POINT(1 2 3)");

    EXPECT_STREQ(vexaParse_errorString(), "");
}

TEST(ParseErrorString, IsEmptyAfterANullText) {
    parsed("POINT(1 2)");
    vexaParse_string(nullptr, nullptr);

    EXPECT_STREQ(vexaParse_errorString(), "");
}

TEST(ParseErrorString, TellsOfTheLastParseWhicheverDoorItCameThrough) {
    std::uint32_t size = 0;
    std::array<std::byte, 64> out{};

    EXPECT_EQ(vexaWKB_getSizeFromTextGeom(widened("POINT(1 2 3 4)").c_str(), &size), 1);
    EXPECT_EQ(std::string{vexaParse_errorString()}, errorAt("4"));
    EXPECT_EQ(vexaWKB_convertTextToBinary(widened("POLYGON(,").c_str(), out.data(), 64), 1);
    EXPECT_EQ(std::string{vexaParse_errorString()}, errorAt(","));
    EXPECT_EQ(vexaWKB_convertTextToBinary(widened("POINT(1 2 3)").c_str(), out.data(), 64), 0);
    EXPECT_STREQ(vexaParse_errorString(), "");
}

// A process of its own has parsed nothing yet.
TEST(ParseErrorStringDeathTest, IsEmptyAtFirst) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(*vexaParse_errorString() == '\0' ? 3 : 4), testing::ExitedWithCode(3),
                "");
}

// ---- Initialising ------------------------------------------------------------------------------

TEST(ParseInitialize, IsOneFunctionUnderTwoNames) {
    std::uint32_t (*const initialize)() = vexaParse_initialize;
    std::uint32_t (*const uninitialize)() = vexaParse_uninitialize;

    EXPECT_EQ(initialize, uninitialize);
}

TEST(ParseInitialize, GivesZeroInAnyOrderAndChangesNothing) {
    EXPECT_EQ(vexaParse_uninitialize(), 0U);
    EXPECT_EQ(vexaParse_uninitialize(), 0U);
    EXPECT_EQ(parsed("POINT(1 2 3)").status, 0U);
    EXPECT_EQ(vexaParse_initialize(), 0U);
    EXPECT_EQ(vexaParse_initialize(), 0U);
    EXPECT_EQ(vexaParse_uninitialize(), 0U);
    EXPECT_EQ(parsed("POINT(1 2 3)").status, 0U);
}

// ---- The locale --------------------------------------------------------------------------------

Point3d pointIn(const char* text) {
    const Parsed result = parsed(text);
    Point3d point{-1, -1, -1};
    EXPECT_EQ(vexaWKB_pointGetPoint(result.geometry.get(), &point), 0U);
    return point;
}

TEST(ParseString, ReadsTheDecimalPointOfTheLocaleOfTheMoment) {
    constexpr const char* kText = "POINT(1.5 2.25e+2 -3.75)";
    EXPECT_EQ(pointIn(kText).x, 1.5);
    {
        const NumericLocale commas;
        ASSERT_TRUE(commas.isSet());

        const Point3d point = pointIn(kText);
        EXPECT_EQ(point.x, 1);
        EXPECT_EQ(point.y, 2);
        EXPECT_EQ(point.z, -3);
    }
    EXPECT_EQ(pointIn(kText).y, 225);
}

TEST(ParseString, TakesACommaForATokenInEveryLocale) {
    const NumericLocale commas;
    ASSERT_TRUE(commas.isSet());

    EXPECT_EQ(parsed("POINT(1,5 2 3)").error, errorAt(","));
}

// The point is part of the token where it is no part of the number.
TEST(ParseString, SplitsTheTextAlikeInEveryLocale) {
    const NumericLocale commas;
    ASSERT_TRUE(commas.isSet());

    EXPECT_EQ(tokensOf("1.5e+3 -0.5"),
              (std::vector<Token>{{TOK_REAL, "1.5e+3", 1}, {TOK_REAL, "-0.5", -0.0}, {0, ""}}));
}

}  // namespace

}  // namespace vexa::test
