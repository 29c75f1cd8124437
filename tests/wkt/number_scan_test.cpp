#include "wkt/number_scan.h"

#include "tests/support/allocations.h"
#include "tests/support/parse_support.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace vexa::test {

namespace {

constexpr char kBehind = '7';  // a digit, which a reader without an end would take along

// The number of a token in the midst of a text.
double numberIn(const std::string& token, bool isPoint = true) {
    const std::string text = token + kBehind;
    std::string scanned = text;
    const double value = numberOf({scanned.data(), token.size()}, isPoint);
    EXPECT_EQ(scanned, text);
    return value;
}

std::uint64_t bitsOf(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

struct Number {
    const char* name;
    const char* token;
    double value;
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
constexpr double kSmallestNormal = std::numeric_limits<double>::min();

constexpr Number kNumbers[] = {
    {"Zero", "0", 0.0},
    {"MinusZero", "-0", -0.0},
    {"MinusZeroWithAFraction", "-0.000", -0.0},
    {"ZeroWithAnExponent", "0e+999", 0.0},
    {"TwoMinusSigns", "--1", 0.0},
    {"TwoMinusSignsBeforeZero", "--0", 0.0},
    {"ThreeMinusSigns", "---2.5e+3", 0.0},
    {"OneMinusSign", "-1", -1.0},
    {"OneDigit", "5", 5.0},
    {"TrailingPoint", "1.", 1.0},
    {"TrailingPointAndExponent", "12.e-1", 1.2},
    {"LeadingZeros", "000012.50", 12.5},
    {"LowerCaseExponent", "1e+5", 1e5},
    {"UpperCaseExponent", "1.5E-3", 1.5e-3},
    {"ExponentOfZero", "7e+0", 7.0},
    {"MinusZeroExponent", "7e-000", 7.0},

    {"LargestNumber", "1.7976931348623157e+308", kLargest},
    {"JustBelowTheHalfwayToInfinity", "1.7976931348623158079e+308", kLargest},
    {"JustAboveTheHalfwayToInfinity", "1.797693134862315808e+308", kInfinity},
    {"TooLarge", "1e+309", kInfinity},
    {"TooLargeAndNegative", "-1e+309", -kInfinity},
    {"MuchTooLarge", "1e+99999999999999999999", kInfinity},
    {"SmallestNormal", "2.2250738585072014e-308", kSmallestNormal},
    {"LargestSubnormal", "2.2250738585072009e-308", 2.2250738585072009e-308},
    {"BetweenNormalAndSubnormal", "2.2250738585072011e-308", 2.2250738585072011e-308},
    {"Smallest", "5e-324", kSmallest},
    {"JustAboveTheHalfwayToZero", "2.4703282292062328e-324", kSmallest},
    {"JustBelowTheHalfwayToZero", "2.4703282292062327e-324", 0.0},
    {"TooSmall", "1e-400", 0.0},
    {"TooSmallAndNegative", "-1e-400", -0.0},
    {"MuchTooSmall", "1e-99999999999999999999", 0.0},

    {"HalfwayToEvenBelow", "9007199254740993", 9007199254740992.0},
    {"HalfwayToEvenAbove", "9007199254740995", 9007199254740996.0},
    {"JustAboveHalfway", "9007199254740993.00000000000000000000000001", 9007199254740994.0},
    {"JustBelowHalfway", "9007199254740992.99999999999999999999999999", 9007199254740992.0},
    {"HalfwayBehindOne", "1.00000000000000011102230246251565404236316680908203125", 1.0},
    {"JustAboveHalfwayBehindOne", "1.00000000000000011102230246251565404236316680908203126",
     1.0000000000000002},
};

class NumberOf : public testing::TestWithParam<Number> {};

TEST_P(NumberOf, RoundsOnceAndCorrectly) {
    const Number& row = GetParam();

    EXPECT_EQ(bitsOf(numberIn(row.token)), bitsOf(row.value)) << numberIn(row.token);
}

INSTANTIATE_TEST_SUITE_P(Table, NumberOf, testing::ValuesIn(kNumbers), kRowName);

// ---- Against the runtime -----------------------------------------------------------------------

std::string randomDigits(std::mt19937& random, int least, int most) {
    std::uniform_int_distribution<int> count(least, most);
    std::uniform_int_distribution<int> digit('0', '9');
    std::string digits(static_cast<std::size_t>(count(random)), '0');
    std::generate(digits.begin(), digits.end(), [&] { return static_cast<char>(digit(random)); });
    return digits;
}

std::string randomToken(std::mt19937& random) {
    const auto oneIn = [&](int n) { return std::uniform_int_distribution<int>(1, n)(random) == 1; };
    std::string token = oneIn(3) ? "-" : "";
    if (oneIn(20)) token += "-";
    token += randomDigits(random, 1, oneIn(10) ? 60 : 9);
    if (!oneIn(3)) token.append(".").append(randomDigits(random, 0, oneIn(10) ? 400 : 18));
    if (oneIn(2)) {
        token += oneIn(2) ? "e" : "E";
        token += oneIn(2) ? "+" : "-";
        token += randomDigits(random, 1, oneIn(10) ? 6 : 3);
    }
    return token;
}

TEST(NumberOf, GivesWhatTheRuntimeGives) {
    constexpr unsigned kSeed = 314159;
    SCOPED_TRACE(kSeed);
    std::mt19937 random{kSeed};
    for (int i = 0; i < 100'000; ++i) {
        const std::string token = randomToken(random);
        ASSERT_EQ(bitsOf(numberIn(token)), bitsOf(runtimeNumber(token))) << token;
    }
}

TEST(NumberOf, ReadsEveryNumberBackThatItWasPrintedFrom) {
    constexpr unsigned kSeed = 271828;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random{kSeed};
    for (int i = 0; i < 100'000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) continue;
        char token[64];
        std::snprintf(token, sizeof token, "%.17g", value);
        ASSERT_EQ(bitsOf(numberIn(token)), bitsOf(value)) << token;
    }
}

// ---- Long tokens -------------------------------------------------------------------------------

TEST(NumberOf, ReadsTenThousandDigits) {
    const std::string zeros(10'000, '0');
    const std::string nines(10'000, '9');

    EXPECT_EQ(numberIn(nines), kInfinity);
    EXPECT_EQ(numberIn(zeros + "12"), 12.0);
    EXPECT_EQ(numberIn("0." + nines), 1.0);
    EXPECT_EQ(numberIn("1." + zeros + "1"), 1.0);
    EXPECT_EQ(numberIn("0." + zeros + "1"), 0.0);
    EXPECT_EQ(numberIn("0." + zeros + "1e+10001"), 1.0);
    EXPECT_EQ(numberIn("1" + zeros + "e-10000"), 1.0);
    EXPECT_EQ(numberIn("9007199254740993." + zeros + "1"), 9007199254740994.0);
}

TEST(NumberOf, NeedsNoMemory) {
    std::string token = std::string(10'000, '9') + "x";
    const AllocationWatch heap;
    const double value = numberOf({token.data(), token.size() - 1}, true);

    EXPECT_EQ(heap.requests(), 0);
    EXPECT_EQ(value, kInfinity);
}

// ---- A locale whose decimal point is no "." ----------------------------------------------------

constexpr Number kCommaNumbers[] = {
    {"Whole", "15", 15.0},
    {"WholeWithAnExponent", "12e+3", 12000.0},
    {"Fraction", "1.5", 1.0},
    {"FractionWithAnExponent", "1.5e+3", 1.0},
    {"NegativeFraction", "-2.75", -2.0},
    {"NegativeFractionOfZero", "-0.5", -0.0},
    {"TrailingPoint", "3.", 3.0},
    {"TrailingPointAndExponent", "3.e+2", 3.0},
    {"TwoMinusSigns", "--4.5", 0.0},
    {"TooLarge", "1e+400", kInfinity},
    {"TooSmall", "1e-400", 0.0},
};

class NumberOfCommaLocale : public testing::TestWithParam<Number> {};

TEST_P(NumberOfCommaLocale, EndsAtThePoint) {
    const Number& row = GetParam();

    EXPECT_EQ(bitsOf(numberIn(row.token, false)), bitsOf(row.value)) << numberIn(row.token, false);
}

INSTANTIATE_TEST_SUITE_P(Table, NumberOfCommaLocale, testing::ValuesIn(kCommaNumbers), kRowName);

TEST(NumberOfCommaLocale, MayBeTooLargeBeforeItsPoint) {
    EXPECT_EQ(numberIn(std::string(400, '9') + ".5", false), kInfinity);
    EXPECT_EQ(numberIn('-' + std::string(400, '9') + ".5", false), -kInfinity);
}

}  // namespace

}  // namespace vexa::test
