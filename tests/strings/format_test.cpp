#include "tests/support/bounded_print.h"
#include "tests/support/conversion_check.h"
#include "tests/support/wide_text.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ostream>
#include <string>
#include <string_view>
#include <variant>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

// ---- One value ----------------------------------------------------------------------------------

using Value = std::variant<int, long long, double, const void*>;

struct FormatCase {
    const char* name;
    const char* format;
    Value value;
    const char* expected;
};
void PrintTo(const FormatCase& row, std::ostream* out) {
    *out << row.format;
}

class StringSafeSprintf : public testing::TestWithParam<FormatCase> {
protected:
    template <class Family>
    static std::string printedBy() {
        return std::visit([](auto value) { return printed<Family>(GetParam().format, value); },
                          GetParam().value);
    }
};

TEST_P(StringSafeSprintf, PrintsNarrow) {
    EXPECT_EQ(printedBy<NarrowPrint>(), GetParam().expected);
}

TEST_P(StringSafeSprintf, PrintsWide) {
    EXPECT_EQ(printedBy<WidePrint>(), GetParam().expected);
}

#ifndef _WIN32
// Not on Windows, where the compilers and the runtime do not agree on what a long double is.
TEST(StringSafeSprintfOfLongDoubles, PrintsAllTheirDigits) {
    constexpr long double kThird = 1.0L / 3;
    char expected[32];
    std::snprintf(expected, sizeof expected, "%.19Lf", kThird);
    EXPECT_EQ(printed<NarrowPrint>("%.19Lf", kThird), expected);
    EXPECT_EQ(printed<WidePrint>("%.19Lf", kThird), expected);
    EXPECT_NE(printed<NarrowPrint>("%.19f", static_cast<double>(kThird)), expected);
    EXPECT_EQ(printed<NarrowPrint>("%+Lg|%d", -2.5L, 7), "-2.5|7");
}
#endif

std::string nameOf(const testing::TestParamInfo<FormatCase>& info) {
    return info.param.name;
}

const void* const kAddress = reinterpret_cast<const void*>(0x1234ABCDU);  // NOLINT

const FormatCase kIntegerCases[] = {
    {"Signed", "%d", 42, "42"},
    {"Negative", "%i", -42, "-42"},
    {"Least", "%d", INT_MIN, "-2147483648"},
    {"Unsigned", "%u", -1, "4294967295"},
    {"Octal", "%o", 8, "10"},
    {"LowerHex", "%x", 0xBEEF, "beef"},
    {"UpperHex", "%X", 0xBEEF, "BEEF"},
    {"HexOfANegative", "%x", -1, "ffffffff"},
    {"TextAround", "<%d>", 7, "<7>"},
    {"Zero", "%d", 0, "0"},
    {"ZeroWithoutDigits", "[%.0d]", 0, "[]"},
    {"ZeroWithoutDigitsButASign", "[%+.0d]", 0, "[+]"},

    {"Plus", "%+d", 42, "+42"},
    {"PlusOfANegative", "%+d", -42, "-42"},
    {"Blank", "% d", 42, " 42"},
    {"PlusWinsOverBlank", "% +d", 42, "+42"},
    {"PlusMeansNothingUnsigned", "%+u", 42, "42"},
    {"AlternateOctal", "%#o", 8, "010"},
    {"AlternateOctalOfZero", "%#o", 0, "0"},
    {"AlternateHex", "%#x", 255, "0xff"},
    {"AlternateUpperHex", "%#X", 255, "0XFF"},
    {"AlternateHexOfZero", "%#x", 0, "0"},

    {"Width", "[%6d]", 42, "[    42]"},
    {"WidthSmallerThanTheNumber", "[%2d]", 12345, "[12345]"},
    {"Left", "[%-6d]", 42, "[42    ]"},
    {"Zeros", "[%06d]", 42, "[000042]"},
    {"ZerosBehindTheSign", "[%06d]", -42, "[-00042]"},
    {"ZerosBehindThePrefix", "[%#08x]", 255, "[0x0000ff]"},
    {"LeftWinsOverZeros", "[%-06d]", 42, "[42    ]"},
    {"Precision", "[%.5d]", 42, "[00042]"},
    {"PrecisionBehindTheSign", "[%.5d]", -42, "[-00042]"},
    {"PrecisionBehindThePrefix", "[%#.4x]", 5, "[0x0005]"},
    {"WidthAndPrecision", "[%8.5d]", 42, "[   00042]"},
    {"LeftWithWidthAndPrecision", "[%-8.5d]", 42, "[00042   ]"},

    {"ShortIsCut", "%hd", 70000, "4464"},
    {"ShortTakesItsSign", "%hd", 0xFFFF, "-1"},
    {"UnsignedShort", "%hu", -1, "65535"},
    {"ShortHex", "%hx", -1, "ffff"},
    {"LongIs32Bits", "%ld", -7, "-7"},
    {"LongHexIs32Bits", "%lx", -1, "ffffffff"},
    {"LongCutsTo32Bits", "%ld", 0x100000005LL, "5"},
    {"UnsignedLongCutsTo32Bits", "%lu", -1LL, "4294967295"},
    {"I32", "%I32d", -7, "-7"},
    {"UnsignedI32", "%I32u", -1, "4294967295"},
    {"I32CutsTo32Bits", "%I32x", 0x123456789LL, "23456789"},

    {"LongLong", "%lld", -5000000000LL, "-5000000000"},
    {"UnsignedLongLong", "%llu", -1LL, "18446744073709551615"},
    {"LongLongHex", "%llX", 0xABCDEF0123LL, "ABCDEF0123"},
    {"I64", "%I64d", -5000000000LL, "-5000000000"},
    {"I64Least", "%I64i", INT64_MIN, "-9223372036854775808"},
    {"I64Greatest", "%I64u", -1LL, "18446744073709551615"},
    {"I64Octal", "%I64o", -1LL, "1777777777777777777777"},
    {"I64Hex", "%I64x", -1LL, "ffffffffffffffff"},
    {"I64WithFlags", "[%+020I64d]", 5000000000LL, "[+0000000005000000000]"},
    {"SizeOfAPointer", "%Id", -5000000000LL, "-5000000000"},
    {"UnsignedSizeOfAPointer", "%Iu", 5000000000LL, "5000000000"},
    {"Size", "%zu", -1LL, "18446744073709551615"},
    {"SignedSize", "%zd", -5LL, "-5"},
    {"SizeHex", "%zx", 5000000000LL, "12a05f200"},
    {"Difference", "%td", -5000000000LL, "-5000000000"},

    {"Pointer", "%p", kAddress, "000000001234ABCD"},
    {"NullPointer", "%p", static_cast<const void*>(nullptr), "0000000000000000"},
    {"PointerInAWidth", "[%20p]", kAddress, "[    000000001234ABCD]"},
    {"PointerAtTheLeft", "[%-20p]", kAddress, "[000000001234ABCD    ]"},
    {"PointerBelowItsWidth", "[%4p]", kAddress, "[000000001234ABCD]"},
};

INSTANTIATE_TEST_SUITE_P(Integers, StringSafeSprintf, testing::ValuesIn(kIntegerCases), nameOf);

const FormatCase kCharacterCases[] = {
    {"Own", "[%c]", 'x', "[x]"},
    {"Other", "[%C]", 'x', "[x]"},
    {"Narrow", "[%hc]", 'x', "[x]"},
    {"Wide", "[%lc]", 'x', "[x]"},
    {"ByItsValue", "[%c]", 0xE9, "[\xE9]"},
    {"OtherByItsValue", "[%C]", 0xE9, "[\xE9]"},
    {"Width", "[%4c]", 'x', "[   x]"},
    {"Left", "[%-4c]", 'x', "[x   ]"},
};

INSTANTIATE_TEST_SUITE_P(Characters, StringSafeSprintf, testing::ValuesIn(kCharacterCases), nameOf);

const FormatCase kFloatCases[] = {
    {"Fixed", "%f", 1.5, "1.500000"},
    {"LongFixed", "%lf", 1.5, "1.500000"},
    {"Negative", "%.2f", -1.126, "-1.13"},
    {"NegativeZero", "%.1f", -0.0, "-0.0"},
    {"WithoutDigits", "%.0f", 2.0, "2"},
    {"WithoutDigitsButAPoint", "%#.0f", 2.0, "2."},
    {"Shortest", "%g", 0.5, "0.5"},
    {"ShortestKeepsNoZeros", "%g", 100.0, "100"},
    {"ShortestWithItsZeros", "%#g", 100.0, "100.000"},
    {"UpperShortest", "%G", 0.25, "0.25"},
    {"Width", "[%8.2f]", 3.14159, "[    3.14]"},
    {"Left", "[%-8.2f]", 3.14159, "[3.14    ]"},
    {"Zeros", "[%08.2f]", -3.14159, "[-0003.14]"},
    {"Plus", "[%+.1f]", 3.0, "[+3.0]"},
    {"Blank", "[% .1f]", 3.0, "[ 3.0]"},
#ifdef _WIN32
    {"Exponent", "%e", 1500.0, "1.500000e+003"},
    {"UpperExponent", "%.2E", 0.0015, "1.50E-003"},
    {"ShortestWithAnExponent", "%g", 1e20, "1e+020"},
#else
    {"Exponent", "%e", 1500.0, "1.500000e+03"},
    {"UpperExponent", "%.2E", 0.0015, "1.50E-03"},
    {"ShortestWithAnExponent", "%g", 1e20, "1e+20"},
    {"UpperFixed", "%F", 1.5, "1.500000"},
    {"Hexadecimal", "%a", 1.5, "0x1.8p+0"},
    {"UpperHexadecimal", "%A", 10.0, "0X1.4P+3"},
#endif
};

INSTANTIATE_TEST_SUITE_P(Floats, StringSafeSprintf, testing::ValuesIn(kFloatCases), nameOf);

#ifndef _WIN32
// The runtime of Windows has no such size, or mistakes a precision for none.
const FormatCase kOtherCases[] = {
    {"ByteIsCut", "%hhd", 300, "44"},
    {"ByteTakesItsSign", "%hhd", 0xFF, "-1"},
    {"UnsignedByte", "%hhu", -1, "255"},
    {"PrecisionWinsOverZeros", "[%08.3d]", 5, "[     005]"},
};

INSTANTIATE_TEST_SUITE_P(WithoutTheWindowsRuntime, StringSafeSprintf,
                         testing::ValuesIn(kOtherCases), nameOf);
#endif

// ---- Several values, and texts ------------------------------------------------------------------

template <class Family>
class StringSafeSprintfOf : public testing::Test {
protected:
    using Character = typename Family::Character;
    using Other = typename Family::Other;

    template <class... Values>
    static std::string print(std::string_view format, Values... values) {
        return printed<Family>(format, values...);
    }

    const std::basic_string<Character> own_ = Family::text("own");
    const std::basic_string<Other> other_ = Family::other("other");
    const std::string narrow_ = "narrow";
    const WideString wide_ = wide("wide");
    static constexpr const Character* kNull = nullptr;
    static constexpr const Other* kOtherNull = nullptr;
};

struct FamilyNames {
    template <class>
    static std::string GetName(int index) {
        return index == 0 ? "A" : "W";
    }
};

using Families = testing::Types<NarrowPrint, WidePrint>;
TYPED_TEST_SUITE(StringSafeSprintfOf, Families, FamilyNames);

TYPED_TEST(StringSafeSprintfOf, PrintsAFormatWithoutValues) {
    EXPECT_EQ(this->print(""), "");
    EXPECT_EQ(this->print("plain text"), "plain text");
    EXPECT_EQ(this->print("100%%"), "100%");
    EXPECT_EQ(this->print("%%%%d"), "%%d");
}

TYPED_TEST(StringSafeSprintfOf, TakesTextOfItsOwnKindAndOfTheOther) {
    EXPECT_EQ(this->print("%s|%S", this->own_.c_str(), this->other_.c_str()), "own|other");
    EXPECT_EQ(
        this->print("%hs|%ls|%ws", this->narrow_.c_str(), this->wide_.c_str(), this->wide_.c_str()),
        "narrow|wide|wide");
}

TYPED_TEST(StringSafeSprintfOf, PadsAndCutsText) {
    const auto* const text = this->own_.c_str();
    const auto* const other = this->other_.c_str();

    EXPECT_EQ(this->print("[%5s]", text), "[  own]");
    EXPECT_EQ(this->print("[%-5s]", text), "[own  ]");
    EXPECT_EQ(this->print("[%2s]", text), "[own]");
    EXPECT_EQ(this->print("[%.2s]", text), "[ow]");
    EXPECT_EQ(this->print("[%.0s]", text), "[]");
    EXPECT_EQ(this->print("[%.9s]", text), "[own]");
    EXPECT_EQ(this->print("[%5.1s]", text), "[    o]");
    EXPECT_EQ(this->print("[%-7.3S]", other), "[oth    ]");
    EXPECT_EQ(this->print("[%7S]", other), "[  other]");
    EXPECT_EQ(this->print("[%*.*s]", -5, 2, text), "[ow   ]");
}

TYPED_TEST(StringSafeSprintfOf, ReadsTextNoFurtherThanThePrecision) {
    const typename TestFixture::Character unterminated[] = {'a', 'b', 'c'};
    const typename TestFixture::Other unterminatedOther[] = {'x', 'y'};

    EXPECT_EQ(this->print("[%.3s]", &unterminated[0]), "[abc]");
    EXPECT_EQ(this->print("[%.2S]", &unterminatedOther[0]), "[xy]");
}

TYPED_TEST(StringSafeSprintfOf, ANullStringIsWrittenAsSuch) {
    EXPECT_EQ(this->print("%s|%S", this->kNull, this->kOtherNull), "(null)|(null)");
    EXPECT_EQ(this->print("[%8s][%-8S]", this->kNull, this->kOtherNull), "[  (null)][(null)  ]");
    EXPECT_EQ(this->print("[%.3s]", this->kNull), "[(nu]");
}

TYPED_TEST(StringSafeSprintfOf, TakesWidthAndPrecisionFromTheValues) {
    EXPECT_EQ(this->print("[%*d]", 6, 42), "[    42]");
    EXPECT_EQ(this->print("[%*d]", -6, 42), "[42    ]");
    EXPECT_EQ(this->print("[%0*d]", 6, 42), "[000042]");
    EXPECT_EQ(this->print("[%.*d]", 4, 42), "[0042]");
    EXPECT_EQ(this->print("[%*.*d]", 6, 4, 42), "[  0042]");
    EXPECT_EQ(this->print("[%*.*f]", 8, 2, 3.14159), "[    3.14]");
}

TYPED_TEST(StringSafeSprintfOf, ANegativePrecisionFromTheValuesIsNone) {
    EXPECT_EQ(this->print("[%.*d]", -1, 42), "[42]");
    EXPECT_EQ(this->print("[%.*s]", -1, this->own_.c_str()), "[own]");
#ifndef _WIN32
    EXPECT_EQ(this->print("[%.*f]", -1, 1.5), "[1.500000]");
    EXPECT_EQ(this->print("[%.*s]", -7, this->own_.c_str()), "[own]");
#endif
}

TYPED_TEST(StringSafeSprintfOf, TakesEachValueInItsTurn) {
    EXPECT_EQ(this->print("%d %s %lld %.1f %c %x %I64u", 1, this->own_.c_str(), 5000000000LL, 0.5,
                          'c', 0xAU, 6000000000LL),
              "1 own 5000000000 0.5 c a 6000000000");
    // More than the registers hold, of both kinds.
    EXPECT_EQ(this->print("%d%d%d%d%d%d%d%d%d%d", 0, 1, 2, 3, 4, 5, 6, 7, 8, 9), "0123456789");
    EXPECT_EQ(
        this->print("%g %g %g %g %g %g %g %g %g %g %d", 0., 1., 2., 3., 4., 5., 6., 7., 8., 9., 10),
        "0 1 2 3 4 5 6 7 8 9 10");
    EXPECT_EQ(this->print("%d %g %d %g %d %g %d %g %d %g %s", 1, 1.5, 2, 2.5, 3, 3.5, 4, 4.5, 5,
                          5.5, this->own_.c_str()),
              "1 1.5 2 2.5 3 3.5 4 4.5 5 5.5 own");
}

TYPED_TEST(StringSafeSprintfOf, PrintsNumbersOfHundredsOfDigits) {
    EXPECT_EQ(this->print("%.0f", 1e300).size(), 301U);
    EXPECT_EQ(this->print("%1000d", 7), std::string(999, ' ') + "7");
    EXPECT_EQ(this->print("%-1000d|", 7), "7" + std::string(999, ' ') + "|");
    EXPECT_EQ(this->print("%1000.2f", 0.5), std::string(996, ' ') + "0.50");
    EXPECT_EQ(this->print("%.500f", 0.5), "0.5" + std::string(499, '0'));
#ifndef _WIN32
    // Wine's runtime ruins its heap with so many digits of a wide integer.
    EXPECT_EQ(this->print("%.400d", 7), std::string(399, '0') + "7");
#endif
}

}  // namespace

}  // namespace vexa::test
