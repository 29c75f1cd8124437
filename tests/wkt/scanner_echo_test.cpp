#include "tests/support/parse_support.h"

namespace vexa::test {

namespace {

TEST(ScannerEcho, ComesInTheOrderOfTheText) {
    std::uint32_t status = 99;
    const std::string echo = outputOf([&] { status = parsed("aPOINT#b(1x2 c3)+d").status; });

    EXPECT_EQ(status, 0U);
    EXPECT_EQ(echo, "a#bxc+d");
}

TEST(ScannerEcho, ComesBeforeTheTokenBehindItIsHandedOut) {
    const ScanBufferHandle buffer = scanBytes("ab(cd)");
    Scanner scanner{*buffer};

    EXPECT_EQ(outputOf([&] { nextOf(scanner); }), "ab");
    EXPECT_EQ(outputOf([&] { nextOf(scanner); }), "cd");
    EXPECT_EQ(outputOf([&] { nextOf(scanner); }), "");
}

TEST(ScannerEcho, HasNothingBehindTheOffendingToken) {
    std::string error;
    const std::string echo = outputOf([&] { error = parsed("POINTa(1 2 b)c d").error; });

    EXPECT_EQ(error, errorAt(")"));
    EXPECT_EQ(echo, "ab");
}

TEST(ScannerEcho, HasWhatFollowsTheGeometry) {
    EXPECT_EQ(outputOf([] { EXPECT_EQ(parsed("POINT(1 2 3) ;\r\n").status, 0U); }), ";\r");
}

TEST(ScannerEcho, KeepsADimensionLetterFromChangingTheGeometry) {
    std::vector<std::uint32_t> plain;
    std::vector<std::uint32_t> lettered;
    outputOf([&] {
        plain = contentsOf(*parsed("POINT (1 2 3)").geometry);
        lettered = contentsOf(*parsed("POINT Z (1 2 3)").geometry);
    });

    EXPECT_EQ(plain, lettered);
}

TEST(ScannerEcho, OfWindowsLineEndsIsTheirCarriageReturns) {
    std::uint32_t status = 99;
    const std::string echo =
        outputOf([&] { status = parsed("LINESTRING(\r\n0 0 0,\r\n1 1 1\r\n)\r\n").status; });

    EXPECT_EQ(status, 0U);
    EXPECT_EQ(echo, "\r\r\r\r");
}

// ---- Long texts: what is looked through again at every character never comes to its end ---------

struct Repeated {
    const char* name;
    const char* fragment;
    const char* echo;
    int tokens;
};

constexpr Repeated kRepeated[] = {
    {"MinusSigns", "-", "-", 0},
    {"MinusSignsAndPoints", "--.", "--.", 0},
    {"KeywordsCutShort", "MULTIPOLYGO", "MULTIPOLYGO", 0},
    {"KeywordLetters", "PLMG", "PLMG", 0},
    {"Strays", "?", "?", 0},
    {"ExponentsWithoutDigits", "1e+ ", "e+", 1},
    {"Spaces", " ", "", 0},
    {"Points", "1..", ".", 1},
};

class ScannerOfLongTexts : public testing::TestWithParam<Repeated> {};

TEST_P(ScannerOfLongTexts, EchoesEveryStrayOfThemInLinearTime) {
    const Repeated& row = GetParam();
    constexpr std::size_t kLength = 2'000'000;
    const std::size_t times = kLength / std::string_view{row.fragment}.size();
    std::string text;
    std::string expected;
    for (std::size_t i = 0; i < times; ++i) {
        text += row.fragment;
        expected += row.echo;
    }

    std::vector<Token> tokens;
    const std::string echo = outputOf([&] { tokens = tokensOf(text); });

    EXPECT_TRUE(echo == expected) << echo.size() << " bytes, not " << expected.size();
    EXPECT_EQ(tokens.size(), times * static_cast<std::size_t>(row.tokens) + 1);
}

INSTANTIATE_TEST_SUITE_P(Table, ScannerOfLongTexts, testing::ValuesIn(kRepeated), kRowName);

TEST(ScannerOfLongTexts, EchoesMinusSignsBeforeTheTokenBehindThem) {
    const std::string run(20'000, '-');
    std::vector<Token> tokens;

    EXPECT_EQ(outputOf([&] { tokens = tokensOf(run + "(" + run); }), run + run);
    EXPECT_EQ(tokens, (std::vector<Token>{{TOK_LPAREN, "("}, {0, ""}}));
}

TEST(ScannerOfLongTexts, TakesMinusSignsBeforeADigitForOneToken) {
    const std::string text = std::string(2'000'000, '-') + "7";
    std::vector<Token> tokens;

    EXPECT_EQ(outputOf([&] { tokens = tokensOf(text); }), "");
    ASSERT_EQ(tokens.size(), 2U);
    EXPECT_TRUE(tokens[0].text == text);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(tokens[0].value), 0U);
}

}  // namespace

}  // namespace vexa::test
