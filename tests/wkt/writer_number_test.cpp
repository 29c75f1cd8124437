#include "tests/support/numeric_locale.h"
#include "tests/support/runtime_print.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_check.h"
#include "vexakit/wkt.h"

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

using Limits = std::numeric_limits<double>;

WideString pointText(const Point3d& point, bool inParentheses = false) {
    GuardedText text(4096);
    const auto write = inParentheses ? vexaWKT_multipointList : vexaWKT_pointList;
    write(1, &point, text.data(), 4096);
    return text.text();
}

WideString numberText(double value) {
    const WideString text = pointText({value, 0, 0});
    return text.substr(0, text.find(VexaWChar{' '}));
}

// Numbers at which prints differ if they differ anywhere.
const std::vector<double> kDelicate = {
    0.0,
    -0.0,
    1.0,
    -1.0,
    2.5,
    0.5,
    1.5,
    0.125,
    0.375,
    12.5,
    1.0625,
    1e15 + 0.5,
    5e22,
    1e22,
    1e23,
    9.5,
    99.5,
    999999.5,
    9999995,
    0.0001,
    0.00001,
    0.000099999951,
    99999.95,
    123456.5,
    1234567,
    1e5,
    1e6,
    1e16,
    1e17,
    9007199254740993.0,
    Limits::max(),
    -Limits::max(),
    Limits::min(),
    Limits::denorm_min(),
    -Limits::denorm_min(),
    Limits::min() - Limits::denorm_min(),
    Limits::epsilon(),
    Limits::infinity(),
    -Limits::infinity(),
    Limits::quiet_NaN(),
    -Limits::quiet_NaN(),
    1e99,
    1e100,
    1e-99,
    1e-100,
    9.999999999999999e22,
};

TEST(Numbers, PrintAsTheRuntimePrintsThem) {
    for (const std::int32_t precision : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 15, 16, 17, 18, 25, 60}) {
        const PrecisionScope scope(precision);
        for (const double value : kDelicate) {
            const Point3d point = {value, -value, value / 8};
            EXPECT_EQ(readable(pointText(point)), readable(runtimePoint(point, precision)))
                << "precision " << precision;
            EXPECT_EQ(readable(pointText(point, true)),
                      readable(runtimePoint(point, precision, true)))
                << "precision " << precision;
        }
    }
}

/// Random numbers of three kinds: any bits, short decimals and short binary fractions.
double randomNumber(std::mt19937_64& random) {
    const std::uint64_t bits = random();
    switch (bits % 3) {
        case 0: return std::bit_cast<double>(random());
        case 1: {
            const auto digits =
                static_cast<double>(static_cast<std::int64_t>(random() % 2'000'001) - 1'000'000);
            return digits / std::pow(10, static_cast<int>(bits >> 8 & 15));
        }
        default: {
            const auto quarters =
                static_cast<double>(static_cast<std::int64_t>(random() % 200'001) - 100'000);
            return std::ldexp(quarters, static_cast<int>(bits >> 8 & 31) - 24);
        }
    }
}

TEST(Numbers, PrintAsTheRuntimePrintsRandomOnes) {
    const std::uint64_t seed = std::random_device()();
    std::mt19937_64 random(seed);
    for (int round = 0; round < 20'000; ++round) {
        const auto precision = static_cast<std::int32_t>(random() % 24) - 2;
        const PrecisionScope scope(precision);
        const Point3d point = {randomNumber(random), randomNumber(random), randomNumber(random)};
        ASSERT_EQ(readable(pointText(point)), readable(runtimePoint(point, precision)))
            << "seed " << seed << ", precision " << precision;
    }
}

TEST(Numbers, HaveASignedExponent) {
    const std::string zero = exponentDigits() == 3 ? "0" : "";

    EXPECT_EQ(numberText(1234567), wide("1.23457e+" + zero + "06"));
    EXPECT_EQ(numberText(-1e-7), wide("-1e-" + zero + "07"));
    EXPECT_EQ(numberText(1e100), wide("1e+100"));
}

TEST(Numbers, TurnToExponentsAtThePrecision) {
    const std::string zero = exponentDigits() == 3 ? "0" : "";

    EXPECT_EQ(numberText(999999), wide("999999"));
    EXPECT_EQ(numberText(999999.5), wide("1e+" + zero + "06"));
    EXPECT_EQ(numberText(0.0001), wide("0.0001"));
    EXPECT_EQ(numberText(0.00001), wide("1e-" + zero + "05"));
}

TEST(Numbers, KeepTheSignOfZero) {
    EXPECT_EQ(numberText(-0.0), wide("-0"));
    EXPECT_EQ(numberText(0.0), wide("0"));
}

TEST(Numbers, NameWhatIsNotFiniteAsTheRuntimeDoes) {
    for (const double value :
         {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN()}) {
        EXPECT_EQ(numberText(value), wide(runtimeNumber(value, 6)));
    }
#ifndef _WIN32
    EXPECT_EQ(numberText(Limits::infinity()), wide("inf"));
    EXPECT_EQ(numberText(-Limits::infinity()), wide("-inf"));
    EXPECT_EQ(numberText(Limits::quiet_NaN()), wide("nan"));
    EXPECT_EQ(numberText(std::copysign(Limits::quiet_NaN(), -1.0)), wide("-nan"));
#endif
}

// ---- The decimal point --------------------------------------------------------------------------

TEST(DecimalPoint, FollowsTheLocale) {
    const NumericLocale locale;
    ASSERT_TRUE(locale.isSet());
    ASSERT_EQ(runtimeNumber(1.5, 6), "1,5");

    EXPECT_EQ(pointText({1.5, -0.25, 3}), wide("1,5 -0,25 3"));
    EXPECT_EQ(pointText({1.5, -0.25, 3}, true), wide("(1,5 -0,25 3)"));
    EXPECT_EQ(pointText({1e300 / 3, 1.25e-7, 3}), runtimePoint({1e300 / 3, 1.25e-7, 3}, 6));
}

TEST(DecimalPoint, FollowsTheLocaleAtEveryNumberAndPrecision) {
    const NumericLocale locale;
    ASSERT_TRUE(locale.isSet());
    for (const std::int32_t precision : {-1, 0, 1, 3, 6, 17, 30}) {
        const PrecisionScope scope(precision);
        for (const double value : kDelicate) {
            const Point3d point = {value, value / 3, 0.75};
            EXPECT_EQ(readable(pointText(point)), readable(runtimePoint(point, precision)))
                << "precision " << precision;
        }
    }
}

TEST(DecimalPoint, IsTheLocalesAtEachCall) {
    const Point3d point = {1.5, 2.5, 3.5};
    {
        const NumericLocale locale;
        ASSERT_TRUE(locale.isSet());
        EXPECT_EQ(pointText(point), wide("1,5 2,5 3,5"));
    }
    EXPECT_EQ(pointText(point), wide("1.5 2.5 3.5"));
}

TEST(DecimalPoint, LeavesTheCommasBetweenPointsAlone) {
    const NumericLocale locale;
    ASSERT_TRUE(locale.isSet());
    const Bytes line = lineOf({{{0.5, 1, 2}, {3, 4.5, 5}}});

    EXPECT_EQ(writtenBy(vexaWKT_linestring, line.geometry(), 100).text.text(),
              wide("linestring(0,5 1 2,3 4,5 5)"));
}

#ifndef _WIN32
constexpr const char* kArabicPoint = "\xD9\xAB";
const WideString kArabicNumbers = {u'1',  0x66B, u'5', u' ', u'-', u'0',
                                   0x66B, u'2',  u'5', u' ', u'3'};

TEST(DecimalPoint, MayBeACharacterBeyondAscii) {
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    const NumericLocale locale(kArabicPoint, 0x66B);
    ASSERT_TRUE(locale.isSet());
    ASSERT_EQ(runtimePoint({1.5, -0.25, 3}, 6), kArabicNumbers);

    EXPECT_EQ(readable(pointText({1.5, -0.25, 3})), readable(kArabicNumbers));
    std::setlocale(LC_CTYPE, "C");
}

// A program may set the numbers' locale and leave that of the characters alone.
TEST(DecimalPoint, NeedsNoLocaleForCharacters) {
    const NumericLocale locale(kArabicPoint, 0x66B);
    ASSERT_TRUE(locale.isSet());
    ASSERT_EQ(runtimePoint({1.5, -0.25, 3}, 6), kArabicNumbers);

    EXPECT_EQ(readable(pointText({1.5, -0.25, 3})), readable(kArabicNumbers));
}
#endif

}  // namespace
}  // namespace vexa::test
