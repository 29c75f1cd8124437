#include "tests/support/numeric_locale.h"
#include "tests/support/wide_text.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::uint32_t kSuccess = VEXA_SUCCESS;
constexpr std::uint32_t kFailure = VEXA_FAILURE;

// "-2147483648 -0.999990" and its terminator.
constexpr std::size_t kRoom = 22;

using DoubleLimits = std::numeric_limits<double>;
using FloatLimits = std::numeric_limits<float>;

std::uint32_t convert(double value, char* result) {
    return string_convertDoubleToFracA(value, result);
}
std::uint32_t convert(double value, VexaWChar* result) {
    return string_convertDoubleToFracW(value, result);
}
std::uint32_t convert(float value, char* result) {
    return string_convertFloatToFracA(value, result);
}
std::uint32_t convert(float value, VexaWChar* result) {
    return string_convertFloatToFracW(value, result);
}

/// A number's text, the same in both families and within its room. A double has the rules of the
/// doubles, a float those of the floats.
template <class Number>
std::string fractionOf(Number value) {
    std::array<char, kRoom + 42> text{};
    text.fill('~');
    EXPECT_EQ(convert(value, text.data()), kSuccess) << value;
    EXPECT_TRUE(std::all_of(text.begin() + kRoom, text.end(), [](char cell) {
        return cell == '~';
    })) << value;

    GuardedText wideText(kRoom);
    EXPECT_EQ(convert(value, wideText.data()), kSuccess) << value;
    EXPECT_TRUE(wideText.areGuardsUntouched()) << value;

    std::string result(text.data(), std::find(text.begin(), text.end(), '\0'));
    EXPECT_EQ(wideText.text(), wide(result)) << value;
    return result;
}

struct FractionCase {
    const char* name;
    double value;
    const char* doubleText;
    const char* floatText;
};

void PrintTo(const FractionCase& row, std::ostream* out) {
    *out << row.value;
}

constexpr FractionCase kFractions[] = {
    {"Half", 0.5, "1/2", "1/2"},
    {"OneQuarter", 0.25, "1/4", "1/4"},
    {"ThreeQuarters", 0.75, "3/4", "3/4"},
    {"OneEighth", 0.125, "1/8", "1/8"},
    {"SevenEighths", 0.875, "7/8", "7/8"},
    {"OneSixteenth", 0.0625, "1/16", "1/16"},
    {"SevenSixteenths", 0.4375, "7/16", "7/16"},
    {"OneThirtySecond", 0.03125, "1/32", "1/32"},
    {"LastThirtySecond", 0.96875, "31/32", "31/32"},
    {"LowestTerms", 0.375, "3/8", "3/8"},
    {"OneSixtyFourthIsNoStep", 0.015625, "0.015625", "0.015625"},
    {"WholeAndHalf", 3.5, "3 1/2", "3 1/2"},
    {"WholeAndThirtySecond", 2.03125, "2 1/32", "2 1/32"},
    {"LargeWholeAndStep", 123456.8125, "123456 13/16", "123456 13/16"},
    {"Whole", 5, "5", "5 "},
    {"Zero", 0, "", ""},
    {"NegativeZero", -0.0, "", ""},
    {"Decimal", 0.1, "0.100000", "0.100000"},
    {"WholeAndDecimal", 3.1, "3.100000", "3 0.100000"},
    {"WholeAndFloatBelowItsDecimal", 3.3, "3.300000", "3 0.300000"},
    {"FiveDecimalPlaces", 0.12345, "0.123450", "0.123450"},
    {"SixthDecimalPlaceIsCutToFindTheStep", 0.500009, "1/2", "1/2"},
    {"SixthDecimalPlaceIsPrinted", 0.999995, "0.999995", "0.999995"},
    {"JustBelowAStep", 0.499999, "0.499999", "0.499999"},
    {"RoundsUpToAStep", 0.49999999, "0.500000", "1/2"},
    {"RoundsUpToOne", 0.9999999, "1.000000", "1.000000"},
    {"WholeAndRoundsUpToOne", 3.9999998, "3 1.000000", "3 1.000000"},
    {"SmallestThatCountsIsTooSmallAsAFloat", 0.00001, "0.000010", ""},
    {"AboveTheSmallest", 0.000011, "0.000011", "0.000011"},
    {"TooSmall", 0.000009, "", ""},
    {"WholeAndTooSmall", 7.000009, "7", "7 "},
    {"SmallestNumber", DoubleLimits::denorm_min(), "", ""},
    {"NegativeHalf", -0.5, "-2/4", "-2/4"},
    {"NegativeWholeAndHalf", -2.5, "-2 -2/4", "-2 -2/4"},
    {"NegativeQuarter", -0.25, "-1/4", "-1/4"},
    {"NegativeWholeAndThirtySecond", -7.84375, "-7 -27/32", "-7 -27/32"},
    {"NegativeWhole", -5, "-5", "-5 "},
    {"NegativeDecimal", -0.1, "-0.100000", "-0.100000"},
    {"NegativeWholeAndDecimal", -2.3, "-2 -0.300000", "-2 -0.300000"},
    {"NegativeTooSmall", -0.000009, "", ""},
    {"NegativeWholeAndRoundsUpToOne", -3.9999998, "-3 -1.000000", "-3 -1.000000"},
    {"Lowest", -2147483648.0, "-2147483648", "-2147483648 "},
};

class Fraction : public testing::TestWithParam<FractionCase> {};
INSTANTIATE_TEST_SUITE_P(Table, Fraction, testing::ValuesIn(kFractions),
                         [](const auto& row) { return row.param.name; });

TEST_P(Fraction, OfADouble) {
    EXPECT_EQ(fractionOf(GetParam().value), GetParam().doubleText);
}

TEST_P(Fraction, OfAFloat) {
    EXPECT_EQ(fractionOf(static_cast<float>(GetParam().value)), GetParam().floatText);
}

TEST(Fraction, OfDoublesAtTheLimitsOfTheRange) {
    EXPECT_EQ(fractionOf(2147483647.0), "2147483647");
    EXPECT_EQ(fractionOf(2147483647.75), "2147483647 3/4");
    EXPECT_EQ(fractionOf(std::nextafter(2147483648.0, 0.0)), "2147483647 1.000000");
    EXPECT_EQ(fractionOf(-2147483648.5), "-2147483648 -2/4");
    EXPECT_EQ(fractionOf(-2147483648.3), "-2147483648 -0.300000");
    EXPECT_EQ(fractionOf(std::nextafter(-2147483649.0, 0.0)), "-2147483648 -1.000000");
}

TEST(Fraction, OfFloatsAtTheLimitsOfTheRange) {
    EXPECT_EQ(fractionOf(std::nextafter(2147483648.0F, 0.0F)), "2147483520 ");
    EXPECT_EQ(fractionOf(std::nextafter(8388608.0F, 0.0F)), "8388607 1/2");
}

// The algorithm as it is told, on the runtime's own print.

std::string runtimeFixed(double value) {
    std::array<char, 64> text{};
#ifdef _WIN32
    _snprintf(text.data(), text.size(), "%lf", value);
#else
    std::snprintf(text.data(), text.size(), "%lf", value);
#endif
    return text.data();
}

template <class Number>
bool isInRange(Number value) {
    return static_cast<double>(value) > -2147483649.0 && static_cast<double>(value) < 2147483648.0;
}

std::string modelFraction(double fraction) {
    const int parts = static_cast<int>(fraction * 100000.0);
    if (parts == 0) return "";
    if (parts == 50000) return "1/2";
    for (const int denominator : {4, 8, 16, 32}) {
        const int step = 100000 / denominator;
        if (parts % step == 0) {
            return std::to_string(parts / step) + "/" + std::to_string(denominator);
        }
    }
    return runtimeFixed(fraction);
}

std::string modelOf(double value) {
    const double whole = std::trunc(value);
    std::string fraction = modelFraction(value - whole);
    if (whole == 0) return fraction;

    std::string text = std::to_string(static_cast<std::int64_t>(whole));
    if (fraction.empty()) return text;
    if (fraction[0] == '0') return text + fraction.substr(1);
    return text + " " + fraction;
}

std::string modelOf(float value) {
    const double whole = std::trunc(static_cast<double>(value));
    std::string fraction = modelFraction(static_cast<double>(value) - whole);
    if (whole == 0) return fraction;
    return std::to_string(static_cast<std::int64_t>(whole)) + " " + fraction;
}

/// Whether a value has the text of the model, or is refused with nothing written.
template <class Number>
testing::AssertionResult isAsTheModel(Number value) {
    std::string text = "refused";
    std::string expected = text;
    if (isInRange(value)) {
        text = fractionOf(value);
        expected = modelOf(value);
    } else {
        std::array<char, 2> narrow = {'~', '~'};
        GuardedText wideText(2);
        if (convert(value, narrow.data()) != kFailure || narrow[0] != '~' ||
            convert(value, wideText.data()) != kFailure || !wideText.isUntouchedFrom(0)) {
            text = "accepted";
        }
    }
    if (text == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "\"" << text << "\" for " << runtimeFixed(static_cast<double>(value))
           << ", expected \"" << expected << "\"";
}

template <class Number>
class FractionModel : public testing::Test {};

using Numbers = testing::Types<double, float>;
TYPED_TEST_SUITE(FractionModel, Numbers);

TYPED_TEST(FractionModel, HoldsAtAllStepsAndBesideThem) {
    constexpr auto kInfinity = std::numeric_limits<TypeParam>::infinity();
    for (const int whole : {0, 1, 2, 9, 10, 999, 100'000, 2'147'483'647}) {
        for (int step = 0; step <= 64; ++step) {
            const auto exact = static_cast<TypeParam>(whole + step / 64.0);
            for (const TypeParam value :
                 {exact, std::nextafter(exact, kInfinity), std::nextafter(exact, -kInfinity)}) {
                ASSERT_TRUE(isAsTheModel(value));
                ASSERT_TRUE(isAsTheModel(-value));
            }
        }
    }
}

TYPED_TEST(FractionModel, HoldsForEveryNumberOfFiveDecimalPlaces) {
    for (int parts = 0; parts <= 100'000;
         parts += parts % 3125 < 3 || parts % 3125 > 3121 ? 1 : 37) {
        for (const int whole : {0, 3}) {
            const auto value = static_cast<TypeParam>(whole + parts / 100'000.0);
            ASSERT_TRUE(isAsTheModel(value));
            ASSERT_TRUE(isAsTheModel(-value));
        }
    }
}

TYPED_TEST(FractionModel, HoldsForRandomNumbers) {
    const std::uint32_t seed = std::random_device()();
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> mantissa(-1, 1);
    for (int round = 0; round < 20'000; ++round) {
        const int exponent = static_cast<int>(random() % 54) - 20;
        const auto value = static_cast<TypeParam>(std::ldexp(mantissa(random), exponent));
        ASSERT_TRUE(isAsTheModel(value)) << "seed " << seed;
    }
}

TYPED_TEST(FractionModel, HoldsForRandomBits) {
    using Bits = std::conditional_t<sizeof(TypeParam) == 8, std::uint64_t, std::uint32_t>;
    const std::uint64_t seed = std::random_device()();
    std::mt19937_64 random(seed);
    for (int round = 0; round < 20'000; ++round) {
        const auto value = std::bit_cast<TypeParam>(static_cast<Bits>(random()));
        ASSERT_TRUE(isAsTheModel(value)) << "seed " << seed;
    }
}

// Exact halves of the sixth decimal place: where runtimes round in their own ways.
TYPED_TEST(FractionModel, HoldsForHalvesOfTheLastPlace) {
    for (int parts = 1; parts < 4096; parts += 2) {
        for (const int denominator : {128, 256, 1024, 4096}) {
            const auto value = static_cast<TypeParam>(1.0 * parts / denominator);
            ASSERT_TRUE(isAsTheModel(value));
            ASSERT_TRUE(isAsTheModel(-value));
        }
    }
}

template <class Number>
void expectRefused(Number value) {
    std::array<char, 2> text = {'~', '~'};
    EXPECT_EQ(convert(value, text.data()), kFailure) << value;
    EXPECT_EQ(text[0], '~') << value;

    GuardedText wideText(2);
    EXPECT_EQ(convert(value, wideText.data()), kFailure) << value;
    EXPECT_TRUE(wideText.isUntouchedFrom(0)) << value;
}

TEST(Fraction, OfWhatIsOutOfRangeIsRefused) {
    for (const double value :
         {2147483648.0, 2147483648.5, -2147483649.0, -2147483649.5, 4294967296.5, 1e18, -1e300,
          DoubleLimits::max(), DoubleLimits::infinity(), -DoubleLimits::infinity(),
          DoubleLimits::quiet_NaN(), -DoubleLimits::quiet_NaN()}) {
        expectRefused(value);
    }
    for (const float value :
         {2147483648.0F, -2147483904.0F, 1e18F, -1e30F, FloatLimits::max(), FloatLimits::infinity(),
          -FloatLimits::infinity(), FloatLimits::quiet_NaN(), -FloatLimits::quiet_NaN()}) {
        expectRefused(value);
    }
}

TEST(Fraction, IsRefusedWithoutAPlaceForIt) {
    for (const double value : {0.0, 3.5, 3.1, 1e30, DoubleLimits::quiet_NaN()}) {
        EXPECT_EQ(string_convertDoubleToFracA(value, nullptr), kFailure);
        EXPECT_EQ(string_convertDoubleToFracW(value, nullptr), kFailure);
        EXPECT_EQ(string_convertFloatToFracA(static_cast<float>(value), nullptr), kFailure);
        EXPECT_EQ(string_convertFloatToFracW(static_cast<float>(value), nullptr), kFailure);
    }
}

TEST(Fraction, HasTheDecimalPointOfTheLocale) {
    {
        const NumericLocale locale;
        ASSERT_TRUE(locale.isSet());

        EXPECT_EQ(fractionOf(0.1), "0,100000");
        EXPECT_EQ(fractionOf(3.1), "3,100000");
        EXPECT_EQ(fractionOf(-2.3), "-2 -0,300000");
        EXPECT_EQ(fractionOf(3.9999998), "3 1,000000");
        EXPECT_EQ(fractionOf(3.5), "3 1/2");
        EXPECT_EQ(fractionOf(0.1F), "0,100000");
        EXPECT_EQ(fractionOf(3.3F), "3 0,300000");
        EXPECT_TRUE(isAsTheModel(-123.45678));
    }
    EXPECT_EQ(fractionOf(3.1), "3.100000");
}

#ifndef _WIN32
TEST(Fraction, MayHaveADecimalPointBeyondAscii) {
    const NumericLocale locale("\xD9\xAB", 0x66B);
    ASSERT_TRUE(locale.isSet());
    std::array<char, kRoom + 1> text{};
    GuardedText wideText(kRoom);

    EXPECT_EQ(string_convertDoubleToFracA(3.1, text.data()), kSuccess);
    EXPECT_STREQ(text.data(),
                 "3\xD9\xAB"
                 "100000");
    EXPECT_EQ(string_convertDoubleToFracW(3.1, wideText.data()), kSuccess);
    EXPECT_EQ(wideText.text(), (WideString{'3', 0x66B} + wide("100000")));

    EXPECT_EQ(string_convertFloatToFracA(-3.1F, text.data()), kSuccess);
    EXPECT_STREQ(text.data(),
                 "-3 -0\xD9\xAB"
                 "100000");
    EXPECT_EQ(string_convertFloatToFracW(-3.1F, wideText.data()), kSuccess);
    EXPECT_EQ(wideText.text(), (wide("-3 -0") + WideString{0x66B} + wide("100000")));
}
#endif

}  // namespace
}  // namespace vexa::test
