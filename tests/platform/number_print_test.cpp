#include "platform/number_print.h"

#include "tests/support/allocations.h"
#include "tests/support/numeric_locale.h"
#include "tests/support/runtime_print.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

using Limits = std::numeric_limits<double>;

std::string printed(double value, int precision) {
    constexpr std::size_t kGuard = 32;
    std::array<char, platform::kLongestNumber + kGuard> room{};
    room.fill('~');
    const char* const end = platform::printGeneral(room.data(), value, precision);
    const auto length = static_cast<std::size_t>(end - room.data());
    EXPECT_LE(length, std::size_t{platform::kLongestNumber});
    for (std::size_t index = platform::kLongestNumber; index < room.size(); ++index) {
        EXPECT_EQ(room[index], '~') << "written beyond the room";
    }
    return {room.data(), length};
}

struct NumberCase {
    const char* name;
    double value;
    int precision;
    const char* text;
};

class PrintedNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(PrintedNumber, IsTheText) {
    EXPECT_EQ(printed(GetParam().value, GetParam().precision), GetParam().text);
    EXPECT_EQ(runtimeNumber(GetParam().value, GetParam().precision), GetParam().text);
}

constexpr NumberCase kNumbers[] = {
    {"Whole", 1, 6, "1"},
    {"DropsTrailingZeros", 1.50, 6, "1.5"},
    {"RoundsToSixDigits", 1.23456789, 6, "1.23457"},
    {"NegativePrecisionIsSix", 1.23456789, -1, "1.23457"},
    {"VeryNegativePrecisionIsSix", 1.23456789, std::numeric_limits<int>::min(), "1.23457"},
    {"PrecisionZeroIsOne", 0.78, 0, "0.8"},
    {"Seventeen", 0.1, 17, "0.10000000000000001"},
    {"LargestExponentWithoutE", 123456, 6, "123456"},
    {"SmallestExponentWithoutE", 0.000123456, 6, "0.000123456"},
    {"ThreeDigitExponent", 1.5e300, 6, "1.5e+300"},
    {"NegativeThreeDigitExponent", 1.5e-300, 6, "1.5e-300"},
    {"Largest", Limits::max(), 6, "1.79769e+308"},
    {"SmallestNormal", Limits::min(), 6, "2.22507e-308"},
    {"SmallestOfAll", Limits::denorm_min(), 6, "4.94066e-324"},
    {"NegativeZero", -0.0, 6, "-0"},
    {"RoundsUpToTheNextPower", 9.9999999, 6, "10"},
#ifdef _WIN32
    {"Exponent", 1234567, 6, "1.23457e+006"},
    {"NegativeExponent", -1e-7, 6, "-1e-007"},
    {"RoundsUpToAnExponent", 999999.5, 6, "1e+006"},
    {"HalfAboveAnEvenDigit", 2.5, 1, "3"},
    {"HalfAboveAnEvenDigitNegative", -2.5, 1, "-3"},
    {"HalfInFractions", 0.125, 2, "0.13"},
    {"HalfInWholeDigits", 12345, 4, "1.235e+004"},
    {"HalfWithSixDigits", 1234565, 6, "1.23457e+006"},
    {"HalfOfOne", 0.5, 0, "0.5"},
    {"NegativePrecisionOfAPowerOfTwo", 0x1p100, -2, "1.26765e+030"},
#else
    {"Exponent", 1234567, 6, "1.23457e+06"},
    {"NegativeExponent", -1e-7, 6, "-1e-07"},
    {"RoundsUpToAnExponent", 999999.5, 6, "1e+06"},
    {"HalfAboveAnEvenDigit", 2.5, 1, "2"},
    {"HalfAboveAnOddDigit", 3.5, 1, "4"},
    {"HalfInFractions", 0.125, 2, "0.12"},
    {"HalfInWholeDigits", 12345, 4, "1.234e+04"},
    {"NegativePrecisionOfAPowerOfTwo", 0x1p100, -2, "1.26765e+30"},
    {"Infinity", Limits::infinity(), 6, "inf"},
    {"NegativeInfinity", -Limits::infinity(), 6, "-inf"},
    {"NotANumber", Limits::quiet_NaN(), 6, "nan"},
#endif
};

INSTANTIATE_TEST_SUITE_P(Table, PrintedNumber, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PrintGeneral, PrintsRandomBitsAsTheRuntime) {
    const std::uint64_t seed = std::random_device()();
    std::mt19937_64 random(seed);
    for (int round = 0; round < 50'000; ++round) {
        const auto value = std::bit_cast<double>(random());
        const int precision = static_cast<int>(random() % 22) - 2;
        ASSERT_EQ(printed(value, precision), runtimeNumber(value, precision))
            << "seed " << seed << ", precision " << precision;
    }
}

TEST(PrintGeneral, PrintsShortDecimalsAsTheRuntime) {
    const std::uint64_t seed = std::random_device()();
    std::mt19937_64 random(seed);
    for (int round = 0; round < 50'000; ++round) {
        const auto digits = static_cast<double>(random() % 100'000'000);
        const double value = digits / std::pow(10, static_cast<int>(random() % 13));
        const int precision = static_cast<int>(random() % 18) + 1;
        ASSERT_EQ(printed(value, precision), runtimeNumber(value, precision))
            << "seed " << seed << ", precision " << precision;
    }
}

// Halves of the last digit kept: where runtimes differ from each other.
TEST(PrintGeneral, RoundsExactHalvesAsTheRuntime) {
    for (int exponent = -20; exponent <= 60; ++exponent) {
        for (int odd = 1; odd < 500; odd += 2) {
            const double value = std::ldexp(odd, exponent);
            for (int precision = 1; precision <= 17; ++precision) {
                ASSERT_EQ(printed(value, precision), runtimeNumber(value, precision))
                    << odd << " * 2^" << exponent << ", precision " << precision;
            }
        }
    }
}

TEST(PrintGeneral, PrintsNumbersBesideHalvesAsTheRuntime) {
    for (int exponent = -12; exponent <= 12; ++exponent) {
        for (int odd = 1; odd < 200; odd += 2) {
            const double half = std::ldexp(odd, exponent);
            for (const double value :
                 {std::nextafter(half, 0.0), std::nextafter(half, Limits::infinity())}) {
                for (int precision = 1; precision <= 17; ++precision) {
                    ASSERT_EQ(printed(value, precision), runtimeNumber(value, precision))
                        << "beside " << odd << " * 2^" << exponent << ", precision " << precision;
                }
            }
        }
    }
}

TEST(PrintGeneral, PrintsPowersAsTheRuntime) {
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        const double value = std::ldexp(1.0, exponent);
        for (const int precision : {1, 2, 6, 15, 16, 17, 18}) {
            ASSERT_EQ(printed(value, precision), runtimeNumber(value, precision))
                << "2^" << exponent << ", precision " << precision;
        }
    }
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::pow(10, exponent);
        for (const double value : {power, std::nextafter(power, 0.0), 9.5 * power, -5 * power}) {
            for (const int precision : {1, 2, 6, 17}) {
                ASSERT_EQ(printed(value, precision), runtimeNumber(value, precision))
                    << "1e" << exponent << ", precision " << precision;
            }
        }
    }
}

TEST(PrintGeneral, PrintsWhatIsNotFiniteAsTheRuntime) {
    for (const double value : {Limits::infinity(), Limits::quiet_NaN(), Limits::signaling_NaN(),
                               std::bit_cast<double>(0x7FF8000000000123U)}) {
        for (const int precision : {-1, 0, 1, 2, 3, 6, 17, 40}) {
            EXPECT_EQ(printed(value, precision), runtimeNumber(value, precision))
                << "precision " << precision;
            EXPECT_EQ(printed(std::copysign(value, -1.0), precision),
                      runtimeNumber(std::copysign(value, -1.0), precision))
                << "precision " << precision;
        }
    }
}

TEST(PrintGeneral, FitsItsRoomAtEveryPrecision) {
    const double longest = -Limits::min() * 0.9999999999999998;
    for (const double value : {longest, Limits::denorm_min(), Limits::max(), 0.1, -1e-4}) {
        for (const int precision : {50, 300, 700, 766, 767, 768, 800, 1500}) {
            EXPECT_EQ(printed(value, precision), runtimeNumber(value, precision))
                << "precision " << precision;
        }
    }
}

TEST(PrintGeneral, KeepsThePointInEveryLocale) {
    const NumericLocale locale;
    ASSERT_TRUE(locale.isSet());
    ASSERT_EQ(runtimeNumber(1.5, 6), "1,5");

    for (const int precision : {2, 6, 17, 30}) {
        EXPECT_EQ(printed(1.5, precision), "1.5") << "precision " << precision;
        EXPECT_EQ(printed(2.5e300, precision).substr(0, 3), "2.5") << "precision " << precision;
    }
    EXPECT_EQ(printed(0.5, 1), "0.5");
    EXPECT_EQ(printed(0.25, 2), "0.25");
}

TEST(PrintGeneral, AllocatesNothing) {
    std::array<char, platform::kLongestNumber> room{};
    const AllocationWatch watch;
    for (const double value : {0.1, 1e300 / 3, Limits::denorm_min(), Limits::max(), 2.5}) {
        for (int precision = -1; precision <= 17; ++precision) {
            platform::printGeneral(room.data(), value, precision);
        }
    }
    EXPECT_EQ(watch.requests(), 0);
}

}  // namespace
}  // namespace vexa::test
