#include "numbers/decimal_reading.h"

#include "tests/support/decimal_text.h"
#include "tests/support/slow_build.h"
#include "tests/support/vector_widths.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using namespace std::string_literals;
using std::chars_format;

constexpr std::ptrdiff_t kRefused = -1;

/// How many characters a number has, and its bits.
struct Reading {
    std::ptrdiff_t length = kRefused;
    std::uint64_t bits = 0;

    friend bool operator==(const Reading&, const Reading&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Reading& reading) {
        return out << reading.length << " characters: " << std::bit_cast<double>(reading.bits);
    }
};

Reading readingOf(const char* first, const char* last, double value) {
    if (!last) return {};
    return {last - first, std::bit_cast<std::uint64_t>(value)};
}

Reading byFromChars(std::string_view text) {
    double value = 0;
    const auto [last, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    EXPECT_EQ(error, std::errc{}) << text;
    return readingOf(text.data(), last, value);
}

/// Reads a block of the heap that ends with the text.
Reading byAny(std::string_view text) {
    const std::unique_ptr<char[]> block{new char[text.size()]};
    std::copy(text.begin(), text.end(), block.get());
    double value = 0;
    const char* const last = readAnyDecimal(block.get(), block.get() + text.size(), value);
    return readingOf(block.get(), last, value);
}

#if VEXAKIT_HAS_WIDE_VECTORS

VEXAKIT_AVX2 const char* readByVectors(const char* first, double& value) {
    return readDecimalByVectors(first, value);
}

/// Reads a text with a blank behind it, and behind that what would make it longer.
Reading byVectors(std::string_view text) {
    const std::unique_ptr<char[]> block{new char[text.size() + kDecimalLookahead]};
    char* const behind = std::copy(text.begin(), text.end(), block.get());
    std::fill_n(behind, kDecimalLookahead, '9');
    *behind = ' ';
    double value = 0;
    const char* const last = readByVectors(block.get(), value);
    return readingOf(block.get(), last, value);
}

bool hasVectors() {
    return platform::vectorWidth() >= VectorWidth::Avx2;
}

#else

Reading byVectors(std::string_view) {
    return {};
}

constexpr bool hasVectors() {
    return false;
}

#endif

/// Whether all of a text of digits is read, as from_chars reads it, or by the vectors not at all.
testing::AssertionResult isReadRight(std::string_view text) {
    const Reading expected = byFromChars(text);
    const auto whole = static_cast<std::ptrdiff_t>(text.size());
    if (expected.length != whole) return testing::AssertionFailure() << text << " is no number";

    const Reading any = byAny(text);
    if (any != expected) {
        return testing::AssertionFailure() << text << " is " << expected << ", not " << any;
    }
    if (!hasVectors()) return testing::AssertionSuccess();

    const Reading vectors = byVectors(text);
    if (vectors != expected && vectors.length != kRefused) {
        return testing::AssertionFailure()
               << text << " is " << expected << ", not by vectors " << vectors;
    }
    return testing::AssertionSuccess();
}

/// The number, with and without a sign, and with zeros on both sides of it.
testing::AssertionResult isReadRightInAnyForm(const std::string& text) {
    const std::string zeros = text.find('.') == std::string::npos ? ".00" : "000";
    for (const std::string& form : {text, "-" + text, "00" + text, text + zeros}) {
        const testing::AssertionResult result = isReadRight(form);
        if (!result) return result;
    }
    return testing::AssertionSuccess();
}

// ---- Random texts ------------------------------------------------------------------------------

std::string randomDigits(Random& random) {
    std::string text;
    if (below(random, 4) == 0) text += '-';
    if (below(random, 8) == 0) text.append(below(random, 6), '0');
    const std::size_t digits = 1 + below(random, 25);
    const std::size_t point = 1 + below(random, 2 * digits);
    for (std::size_t i = 0; i < digits; ++i) {
        if (i == point) text += '.';
        text += static_cast<char>('0' + below(random, 10));
    }
    if (point < digits && below(random, 8) == 0) text.append(below(random, 6), '0');
    if (point == digits) text += '.';
    return text;
}

TEST(DecimalReading, IsRightForRandomDigits) {
    const std::uint64_t seed = std::random_device{}();
    Random random(seed);
    constexpr int kTexts = kIsSlowBuild ? 300'000 : 3'000'000;
    for (int i = 0; i < kTexts; ++i) {
        ASSERT_TRUE(isReadRight(randomDigits(random))) << "seed " << seed;
    }
}

TEST(DecimalReading, IsRightForTheTextsOfDoubles) {
    const std::uint64_t seed = std::random_device{}();
    Random random(seed);
    constexpr int kNumbers = kIsSlowBuild ? 20'000 : 200'000;
    for (int i = 0; i < kNumbers; ++i) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const double any = anyDouble(random);
        const double near = doubleOfMagnitude(random, -8, 17);
        ASSERT_TRUE(isReadRight(shortestText(any, chars_format::scientific)));
        ASSERT_TRUE(isReadRight(text(any, chars_format::scientific, 16)));
        ASSERT_TRUE(isReadRight(shortestText(near, chars_format::fixed)));
        ASSERT_TRUE(isReadRight(text(near, chars_format::general, 17)));
        ASSERT_TRUE(isReadRight(text(near, chars_format::fixed, static_cast<int>(i % 20))));
    }
}

TEST(DecimalReading, IsRightForHugeAndTinyNumbersWrittenOut) {
    Random random(1);
    constexpr int kNumbers = kIsSlowBuild ? 2'000 : 20'000;
    for (int i = 0; i < kNumbers; ++i) {
        ASSERT_TRUE(isReadRight(shortestText(anyDouble(random), chars_format::fixed)));
    }
}

// ---- Halves ------------------------------------------------------------------------------------

/// An exact half, and what differs from it in the last of any number of digits.
void checkHalfAbove(double value) {
    const std::string half = textOfHalfAbove(value);
    ASSERT_TRUE(isReadRightInAnyForm(half));
    ASSERT_TRUE(isReadRightInAnyForm(besideInLastDigit(half)));
    ASSERT_TRUE(isReadRight(half + (half.find('.') == std::string::npos ? ".0001" : "0001")));
    for (std::size_t digits = 15; digits <= 20; ++digits) {
        const std::string near = cutBehindDigits(half, digits);
        ASSERT_TRUE(isReadRightInAnyForm(near));
        ASSERT_TRUE(isReadRightInAnyForm(besideInLastDigit(near)));
    }
}

TEST(DecimalReading, RoundsExactHalvesAndTheirNeighbours) {
    const std::uint64_t seed = std::random_device{}();
    Random random(seed);
    constexpr int kNumbers = kIsSlowBuild ? 5'000 : 50'000;
    for (int i = 0; i < kNumbers; ++i) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        checkHalfAbove(std::fabs(doubleOfMagnitude(random, -6, 18)));
        if (testing::Test::HasFatalFailure()) return;
    }
}

// Halves that have no more than nineteen digits, which vectors read.
TEST(DecimalReading, RoundsExactHalvesOfFewDigits) {
    const std::uint64_t seed = std::random_device{}();
    Random random(seed);
    for (int exponent = 50; exponent <= 63; ++exponent) {
        for (int i = 0; i < 3'000; ++i) {
            const double value =
                std::ldexp(1 + std::ldexp(static_cast<double>(random() >> 12), -52), exponent);
            const std::string half = textOfHalfAbove(value);
            ASSERT_TRUE(isReadRightInAnyForm(half)) << "seed " << seed;
            ASSERT_TRUE(isReadRightInAnyForm(besideInLastDigit(half))) << "seed " << seed;
        }
    }
}

// ---- Powers ------------------------------------------------------------------------------------

TEST(DecimalReading, IsRightForPowersOfTenAndTheirNeighbours) {
    for (int power = 0; power <= 40; ++power) {
        for (std::size_t decimals = 0; decimals <= 30; ++decimals) {
            const auto size = static_cast<std::size_t>(power) + 1;
            const std::string nines(size, '9');
            std::string digits(size, '0');
            digits[0] = '1';
            for (const std::string& number : {digits, besideInLastDigit(digits), nines}) {
                ASSERT_TRUE(isReadRightInAnyForm(withPoint(number, decimals)));
            }
        }
    }
}

TEST(DecimalReading, IsRightForPowersOfTwoAndTheirNeighbours) {
    for (int exponent = -1022; exponent <= 1023; ++exponent) {
        const double power = std::ldexp(1, exponent);
        for (const double value :
             {power, std::nextafter(power, 0), std::nextafter(power, 2 * power)}) {
            ASSERT_TRUE(isReadRight(shortestText(value, chars_format::fixed)));
            ASSERT_TRUE(isReadRight(shortestText(value, chars_format::scientific)));
        }
        if (std::abs(exponent) < 70) {
            ASSERT_TRUE(isReadRightInAnyForm(exactText(1, exponent)));
        }
    }
}

// ---- What is a number --------------------------------------------------------------------------

struct TextCase {
    const char* name;
    std::string text;
    /// How much of the text is the number.
    std::ptrdiff_t length;
    /// Whether vectors read it, where they can read anything.
    bool isForVectors;
};

void PrintTo(const TextCase& row, std::ostream* out) {
    *out << row.name;
}

const TextCase kTexts[] = {
    {"Zero", "0", 1, true},
    {"NegativeZero", "-0", 2, true},
    {"NegativeZeroWithDecimals", "-0.000", 6, true},
    {"NothingBehindThePoint", "1.", 2, true},
    {"NegativeWithNothingBehindThePoint", "-7.", 3, true},
    {"LeadingZeros", "000120.5", 8, true},
    {"FifteenDigitsBeforeThePoint", "123456789012345.25", 18, true},
    {"SixteenDigitsBeforeThePoint", "1234567890123456.5", 18, false},
    {"NineteenDigits", "1.234567890123456789", 20, true},
    {"TwentyDigits", "12.345678901234567890", 21, false},
    {"PositiveExponent", "1.5e+3", 6, false},
    {"NegativeExponent", "15E-3", 5, false},
    {"ExponentBehindThePoint", "1.e+3", 5, false},
    {"TheLargest", "1.7976931348623157e+308", 23, false},
    {"TheSmallest", "5e-324", 6, false},
    {"EndsAtABlank", "12 34", 2, true},
    {"EndsAtAComma", "1.5,2.5", 3, true},
    {"EndsAtAParenthesis", "1)", 1, true},
    {"EndsAtALetter", "1x", 1, true},
    {"EndsAtTheXOfHexadecimals", "0x10", 1, true},
    {"EndsAtASecondPoint", "1.2.3", 3, true},
    {"EndsAtAMinus", "1-2", 1, true},
    {"EndsAtAPlus", "1+2", 1, true},
    {"EndsAtAZeroByte", "12\0003"s, 2, true},
    {"EndsAtABytePastAscii", "12\xB3", 2, true},
    {"EndsBeforeASlash", "12/3", 2, true},
    {"EndsBeforeAColon", "1.2:3", 3, true},
    {"Empty", "", kRefused, false},
    {"PointFirst", ".5", kRefused, false},
    {"MinusAndPoint", "-.5", kRefused, false},
    {"MinusAlone", "-", kRefused, false},
    {"TwoMinusSigns", "--1", kRefused, false},
    {"Plus", "+1", kRefused, false},
    {"BlankFirst", " 1", kRefused, false},
    {"MinusAndBlank", "- 1", kRefused, false},
    {"ExponentWithoutSign", "1e5", kRefused, false},
    {"UpperExponentWithoutSign", "1E5", kRefused, false},
    {"ExponentWithoutSignBehindDecimals", "1.25e12", kRefused, false},
    {"ExponentWithoutSignBehindThePoint", "1.e5", kRefused, false},
    {"ExponentWithoutDigits", "1e+", kRefused, false},
    {"ExponentWithALetter", "1e-x", kRefused, false},
    {"ExponentMarkAlone", "1e", kRefused, false},
    {"ExponentMarkAndBlank", "1.5E 3", kRefused, false},
    {"Letters", "abc", kRefused, false},
    {"Infinity", "inf", kRefused, false},
    {"NegativeInfinity", "-inf", kRefused, false},
    {"LongInfinity", "infinity", kRefused, false},
    {"NotANumber", "nan", kRefused, false},
    {"NegativeNotANumber", "-nan", kRefused, false},
    {"BeyondTheLargest", "1e+309", kRefused, false},
    {"BelowTheSmallest", "1e-400", kRefused, false},
    {"FourHundredDigits", std::string(400, '7'), kRefused, false},
};

class DecimalText : public testing::TestWithParam<TextCase> {};

TEST_P(DecimalText, IsReadAsFarAsItIsANumber) {
    const TextCase& row = GetParam();
    const Reading any = byAny(row.text);
    ASSERT_EQ(any.length, row.length);
    if (row.length == kRefused) return;

    EXPECT_EQ(any, byFromChars(
                       std::string_view{row.text}.substr(0, static_cast<std::size_t>(row.length))));
}

TEST_P(DecimalText, IsReadByVectorsOrRefused) {
    if (!hasVectors()) GTEST_SKIP() << "the machine has no AVX2";

    const TextCase& row = GetParam();
    EXPECT_EQ(byVectors(row.text), row.isForVectors ? byAny(row.text) : Reading{});
}

INSTANTIATE_TEST_SUITE_P(Table, DecimalText, testing::ValuesIn(kTexts),
                         [](const auto& row) { return std::string{row.param.name}; });

TEST(ReadAnyDecimal, TakesNoDigitFromBehindTheEnd) {
    const std::string text = "-123456.789e+12";
    for (const std::size_t size : {2U, 4U, 7U, 8U, 9U, 11U, 15U}) {
        double value = 0;
        const char* const last = readAnyDecimal(text.data(), text.data() + size, value);
        EXPECT_EQ(readingOf(text.data(), last, value), byFromChars(text.substr(0, size))) << size;
    }
    for (const std::size_t size : {0U, 1U, 12U, 13U}) {
        double value = 0;
        EXPECT_FALSE(readAnyDecimal(text.data(), text.data() + size, value)) << size;
    }
}

TEST(ReadDecimalByVectors, ReadsNearlyAllCoordinates) {
    if (!hasVectors()) GTEST_SKIP() << "the machine has no AVX2";

    Random random(5);
    constexpr int kNumbers = 20'000;
    int shortest = 0;
    int full = 0;
    for (int i = 0; i < kNumbers; ++i) {
        const double value = coordinate(random);
        const double digits = doubleOfMagnitude(random, -3, 6);
        shortest += byVectors(shortestText(value, chars_format::fixed)).length != kRefused ? 1 : 0;
        full += byVectors(text(digits, chars_format::fixed, 10)).length != kRefused ? 1 : 0;
    }
    EXPECT_GE(shortest, kNumbers * 99 / 100);
    EXPECT_GE(full, kNumbers * 99 / 100);
}

}  // namespace

}  // namespace vexa::test
