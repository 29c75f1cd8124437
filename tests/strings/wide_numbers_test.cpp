#include "tests/support/wide_text.h"
#include "vexakit/strings.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();
constexpr std::ptrdiff_t kNowhere = -1;

struct NumberCase {
    const char* name;
    WideString text;
    std::int32_t value;
    std::ptrdiff_t next;
};

void PrintTo(const NumberCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const NumberCase kNumbers[] = {
    {"Alone", wide("42"), 42, 2},
    {"OneDigit", wide("7"), 7, 1},
    {"Zero", wide("0"), 0, 1},
    {"LeadingZeros", wide("007"), 7, 3},
    {"EveryDigit", wide("1234567890"), 1234567890, 10},
    {"NextNumberFollows", wide("  42 7"), 42, 5},
    {"WhiteSpaceAtBothEnds", wide(" \t\n42\r\v\f "), 42, 9},
    {"TextBehindABlank", wide("42 abc"), 42, 3},
    {"Empty", wide(""), 0, 0},
    {"WhiteSpaceAlone", wide(" \t "), 0, 3},

    {"Greatest", wide("2147483647"), kGreatest, 10},
    {"OneAboveTheGreatest", wide("2147483648"), kGreatest, 10},
    {"WouldWrapToZero", wide("4294967296"), kGreatest, 10},
    {"WouldWrapToOne", wide("4294967297 5"), kGreatest, 11},
    {"TenNines", wide("9999999999"), kGreatest, 10},
    {"TenDigitsWithZeros", wide("0000000042"), 42, 10},
    {"ElevenDigits", wide("12345678901"), 0, kNowhere},
    {"ElevenDigitsWithZeros", wide("00000000042"), 0, kNowhere},
    {"ElevenZeros", wide("00000000000"), 0, kNowhere},

    {"MinusSign", wide("-5"), 0, kNowhere},
    {"PlusSign", wide("+5"), 0, kNowhere},
    {"LettersBehind", wide("12a"), 0, kNowhere},
    {"LettersAlone", wide("abc"), 0, kNowhere},
    {"LettersBehindWhiteSpace", wide("  abc"), 0, kNowhere},
    {"DecimalPoint", wide("1.5"), 0, kNowhere},
    {"CommaBehind", wide("1,2"), 0, kNowhere},
    {"SignBehind", wide("1-2"), 0, kNowhere},
    {"BesideTheDigitsBelow", wide("/"), 0, kNowhere},
    {"BesideTheDigitsAbove", wide(":"), 0, kNowhere},
    {"BesideTheBlank", wide("42!"), 0, kNowhere},

    {"ControlBehindMayStay", wide("42\x01"), 42, 2},
    {"ControlBehindIsNoWhiteSpace", wide("42 \x01 7"), 42, 3},
    {"ControlInFront",
     wide("\x01"
          "42"),
     0, kNowhere},
    {"UnitSeparatorBehind",
     wide("42\x1F"
          "7"),
     42, 2},
    {"DeleteBehind", wide("42\x7F"), 0, kNowhere},
    {"HardBlankInFront",
     wide("\xA0"
          "42"),
     42, 3},
    {"HardBlankBehind", wide("42\xA0"), 0, kNowhere},
    {"IdeographicSpaceInFront", {0x3000, '4', '2'}, 42, 3},
    {"IdeographicSpaceBehind", {'4', '2', 0x3000}, 0, kNowhere},
    {"IdeographicSpaceBehindABlank", {'4', '2', ' ', 0x3000, '7'}, 42, 4},
    {"FullWidthDigits", {0xFF14, 0xFF12}, 0, kNowhere},
    {"FullWidthDigitBehind", {'4', 0xFF12}, 0, kNowhere},
    {"LowByteOfADigit", {0x0134, '2'}, 0, kNowhere},
    {"LowByteOfADigitBehind", {'4', 0x0132}, 0, kNowhere},
    {"LowByteOfABlankBehind", {'4', 0x0120}, 0, kNowhere},
    {"LoneSurrogateBehind", {'4', 0xD800}, 0, kNowhere},
    {"LoneSurrogateBehindABlank", {'4', ' ', 0xD800}, 4, 2},
    {"GreatestUnitBehind", {'4', 0xFFFF}, 0, kNowhere},
};

class StringReadLongW : public testing::TestWithParam<NumberCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringReadLongW, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringReadLongW, StoresTheNumberAndGivesThePlaceBehind) {
    const NumberCase& row = GetParam();
    std::int32_t value = 99;

    const VexaWChar* const next = string_readLongW(row.text.c_str(), &value);
    EXPECT_EQ(next ? next - row.text.c_str() : kNowhere, row.next);
    EXPECT_EQ(value, row.value);
}

TEST(StringReadLongW, ReadsAListOfNumbers) {
    const WideString text = wide(" 1\t22\n333  4444 ");
    std::vector<std::int32_t> values;

    const VexaWChar* next = text.c_str();
    while (next && *next) {
        std::int32_t value = 99;
        next = string_readLongW(next, &value);
        values.push_back(value);
    }
    EXPECT_EQ(values, (std::vector<std::int32_t>{1, 22, 333, 4444}));
    EXPECT_EQ(next, text.c_str() + text.size());
}

// The text may lie in memory that cannot be written, or be read by others at the same time.
constexpr VexaWChar kConstantText[] = {' ', '4', '2', ' ', '7', 0};

TEST(StringReadLongW, DoesNotWriteToTheText) {
    std::int32_t value = 99;

    EXPECT_EQ(string_readLongW(kConstantText, &value), kConstantText + 4);
    EXPECT_EQ(value, 42);
}

TEST(StringReadLongW, IsNullForNull) {
    std::int32_t value = 99;

    EXPECT_EQ(string_readLongW(nullptr, &value), nullptr);
    EXPECT_EQ(value, 99);
    EXPECT_EQ(string_readLongW(wide("42").c_str(), nullptr), nullptr);
    EXPECT_EQ(string_readLongW(wide("").c_str(), nullptr), nullptr);
    EXPECT_EQ(string_readLongW(nullptr, nullptr), nullptr);
}

TEST(StringReadLongW, ReadsRandomNumbers) {
    const std::uint32_t seed = std::random_device()();
    std::mt19937 random(seed);
    for (int round = 0; round < 10'000; ++round) {
        const auto expected = static_cast<std::int32_t>((random() & 0x7FFFFFFF) >> (random() % 31));
        const std::string digits = std::to_string(expected);
        const WideString text = wide(digits);
        std::int32_t value = -1;

        ASSERT_EQ(string_readLongW(text.c_str(), &value), text.c_str() + text.size())
            << "seed " << seed << ": " << digits;
        ASSERT_EQ(value, expected) << "seed " << seed;
    }
}

TEST(StringReadLongW, RefusesAVeryLongRunOfDigits) {
    std::int32_t value = 99;

    EXPECT_EQ(string_readLongW(WideString(100'000, '1').c_str(), &value), nullptr);
    EXPECT_EQ(value, 0);
}

}  // namespace
}  // namespace vexa::test
