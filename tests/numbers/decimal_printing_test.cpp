#include "numbers/decimal_printing.h"

#include "numbers/powers_of_ten.h"
#include "tests/support/decimal_text.h"
#include "tests/support/slow_build.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <ostream>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using std::chars_format;
using Limits = std::numeric_limits<double>;

/// The text that is printed, if any is; in a room whose neighbours nobody may touch.
std::optional<std::string> quickText(double value, int precision) {
    constexpr char kUntouched = '#';
    constexpr std::size_t kGuard = 32;
    std::array<char, kQuickRoom + 2 * kGuard> cells{};
    cells.fill(kUntouched);
    char* const first = cells.data() + kGuard;
    char* const last = printQuickly(first, value, precision);

    const auto isUntouched = [](char cell) { return cell == kUntouched; };
    EXPECT_TRUE(std::all_of(cells.begin(), cells.begin() + kGuard, isUntouched));
    EXPECT_TRUE(std::all_of(cells.end() - kGuard, cells.end(), isUntouched));
    if (!last) return std::nullopt;
    return std::string{first, last};
}

/// Whether nothing is printed or the right text.
testing::AssertionResult isRightOrNothing(double value, int precision) {
    const std::optional<std::string> actual = quickText(value, precision);
    const std::string expected = text(value, chars_format::general, precision);
    if (!actual || *actual == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << expected << " with " << precision << " digits, not " << *actual;
}

/// A number of either sign at all precisions.
testing::AssertionResult isRightOrNothing(double value) {
    for (int precision = 1; precision <= kMostQuickDigits; ++precision) {
        for (const double each : {value, -value}) {
            const testing::AssertionResult result = isRightOrNothing(each, precision);
            if (!result) return result;
        }
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult isRightOrNothingAround(double value) {
    for (const double each : {value, std::nextafter(value, 0), std::nextafter(value, 2 * value)}) {
        const testing::AssertionResult result = isRightOrNothing(each);
        if (!result) return result;
    }
    return testing::AssertionSuccess();
}

// ---- Random numbers ----------------------------------------------------------------------------

class PrintedQuickly : public testing::Test {
protected:
    template <class Make>
    static void checkMany(Make make) {
        const std::uint64_t seed = std::random_device{}();
        Random random(seed);
        constexpr int kNumbers = kIsSlowBuild ? 5'000 : 100'000;
        for (int i = 0; i < kNumbers; ++i) {
            ASSERT_TRUE(isRightOrNothing(make(random))) << "seed " << seed;
        }
    }
};

TEST_F(PrintedQuickly, AreNumbersOfAnyBits) {
    checkMany(anyDouble);
}

TEST_F(PrintedQuickly, AreNumbersNearOne) {
    checkMany([](Random& random) { return doubleOfMagnitude(random, -30, 38); });
}

TEST_F(PrintedQuickly, AreCoordinates) {
    checkMany(coordinate);
}

TEST_F(PrintedQuickly, AreDecimalsOfFewDigits) {
    checkMany([](Random& random) {
        const std::size_t digits = 1 + below(random, 17);
        const auto number = static_cast<double>(random() % kIntegerPowersOfTen[digits]);
        return number / static_cast<double>(kIntegerPowersOfTen[below(random, 20)]);
    });
}

// Short binary fractions have few decimals: at one of the precisions each is an exact half.
TEST_F(PrintedQuickly, AreHalvesAtAPrecision) {
    checkMany([](Random& random) {
        const auto odd =
            static_cast<double>(2 * below(random, std::size_t{1} << below(random, 52)) + 1);
        return std::ldexp(odd, static_cast<int>(below(random, 80)) - 40);
    });
}

// ---- Numbers of all magnitudes -----------------------------------------------------------------

TEST_F(PrintedQuickly, ArePowersOfTwoAndTheirNeighbours) {
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        ASSERT_TRUE(isRightOrNothingAround(std::ldexp(1, exponent)));
    }
}

/// The double nearest to a decimal.
double scaled(std::string digits, int power) {
    digits += 'e';
    digits += std::to_string(power);
    return std::strtod(digits.c_str(), nullptr);
}

TEST_F(PrintedQuickly, ArePowersOfTenAndTheirNeighbours) {
    for (int power = -40; power <= 60; ++power) {
        for (int digit = 1; digit <= 9; ++digit) {
            ASSERT_TRUE(isRightOrNothingAround(scaled(std::to_string(digit), power)));
        }
    }
}

TEST_F(PrintedQuickly, AreNinesThatRoundToAPowerOfTen) {
    for (int power = -40; power <= 40; ++power) {
        std::string nines = "9.";
        for (int digits = 1; digits <= 20; ++digits) {
            nines += '9';
            for (const char* const last : {"", "4", "5", "6"}) {
                ASSERT_TRUE(isRightOrNothingAround(scaled(nines + last, power)));
            }
        }
    }
}

// ---- Which are printed -------------------------------------------------------------------------

struct TextCase {
    const char* name;
    double value;
    int precision;
    const char* text;
};

void PrintTo(const TextCase& row, std::ostream* out) {
    *out << row.name;
}

constexpr TextCase kTexts[] = {
    {"Zero", 0.0, 6, "0"},
    {"ZeroWithAllDigits", 0.0, 17, "0"},
    {"NegativeZero", -0.0, 6, "-0"},
    {"One", 1, 1, "1"},
    {"WholeNumber", 1234, 6, "1234"},
    {"WholeNumberWithZeros", 120000, 6, "120000"},
    {"Fraction", -1.5, 6, "-1.5"},
    {"AllDigits", 0.1, 17, "0.10000000000000001"},
    {"SixteenDigits", 0.1, 16, "0.1"},
    {"TheLeastFixed", 0.0001, 6, "0.0001"},
    {"BelowTheLeastFixed", 0.00001, 6, "1e-05"},
    {"RoundsUpToTheLeastFixed", 0.0000999999999, 6, "0.0001"},
    {"TheMostFixed", 123456, 6, "123456"},
    {"BeyondTheMostFixed", 1234567, 6, "1.23457e+06"},
    {"RoundsUpToAnExponent", 999999.6, 6, "1e+06"},
    {"RoundsUpToMoreDigits", 9.9999999, 6, "10"},
    {"TwoDigitExponent", -1.25e30, 6, "-1.25e+30"},
    {"SmallExponent", 1.25e-20, 6, "1.25e-20"},
    {"SeventeenDigitsAndAnExponent", 1.2345678901234567e-7, 17, "1.2345678901234566e-07"},
    {"SeventeenDigitsFixed", 12345678901234568.0, 17, "12345678901234568"},
    {"OneDigit", 0.36, 1, "0.4"},
    {"OneDigitAndAnExponent", 36, 1, "4e+01"},
};

class QuickText : public testing::TestWithParam<TextCase> {};

TEST_P(QuickText, IsRounded) {
    const TextCase& row = GetParam();
    EXPECT_EQ(quickText(row.value, row.precision), row.text);
}

INSTANTIATE_TEST_SUITE_P(Table, QuickText, testing::ValuesIn(kTexts),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(PrintQuickly, LeavesOddNumbersToOthers) {
    for (const double value :
         {Limits::infinity(), Limits::quiet_NaN(), Limits::signaling_NaN(), Limits::denorm_min(),
          Limits::min() / 2, Limits::max(), 1e-60, 1e60}) {
        for (int precision = 1; precision <= kMostQuickDigits; ++precision) {
            EXPECT_EQ(quickText(value, precision), std::nullopt) << value;
            EXPECT_EQ(quickText(-value, precision), std::nullopt) << value;
        }
    }
}

TEST(PrintQuickly, LeavesExactHalvesToOthers) {
    EXPECT_EQ(quickText(2.5, 1), std::nullopt);
    EXPECT_EQ(quickText(0.125, 2), std::nullopt);
    EXPECT_EQ(quickText(12345, 4), std::nullopt);
    EXPECT_EQ(quickText(-1234565, 6), std::nullopt);
}

TEST(PrintQuickly, PrintsNearlyAllCoordinates) {
    Random random(3);
    for (int precision = 1; precision <= kMostQuickDigits; ++precision) {
        constexpr int kNumbers = 5'000;
        int rounded = 0;
        int full = 0;
        for (int i = 0; i < kNumbers; ++i) {
            // With few digits a rounded coordinate is often a half.
            if (precision >= 10) rounded += quickText(coordinate(random), precision) ? 1 : 0;
            full += quickText(doubleOfMagnitude(random, -8, 12), precision) ? 1 : 0;
        }
        EXPECT_GE(full, kNumbers * 99 / 100) << precision << " digits";
        EXPECT_TRUE(precision < 10 || rounded >= kNumbers * 99 / 100) << precision << " digits";
    }
}

}  // namespace

}  // namespace vexa::test
