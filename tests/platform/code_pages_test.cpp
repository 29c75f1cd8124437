#include "platform/posix/code_pages.h"

#include "tests/support/code_page_text.h"
#include "tests/support/wide_text.h"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::findCodePage;

constexpr int kToTerminator = -1;

TEST(FindCodePage, KnowsThePagesOfTheLibraryAlone) {
    for (const unsigned page : kAllCodePages) EXPECT_TRUE(findCodePage(page)) << page;
    for (const unsigned page : {0U, 437U, 875U, 951U, 1249U, 1259U, 65000U, 65536U + 1252U}) {
        EXPECT_FALSE(findCodePage(page)) << page;
    }
}

struct PageCase {
    const char* name;
    unsigned page;
    WideString text;
    std::string bytes;
};

void PrintTo(const PageCase& row, std::ostream* out) {
    *out << row.name;
}

class WideToCodePage : public testing::TestWithParam<PageCase> {};

TEST_P(WideToCodePage, GivesTheBytesOfThePage) {
    const PageCase& row = GetParam();

    EXPECT_EQ(inPage(row.page, row.text), row.bytes);
}

// Text of the units given by their numbers.
template <typename... Units>
WideString units(Units... numbers) {
    return {static_cast<VexaWChar>(numbers)...};
}

const PageCase kPageCases[] = {
    {"FullWidthDigitFitsItsPlainOne", 1252, units(0xFF11), "1"},
    {"FullWidthLetterFitsItsPlainOne", 874, units(0xFF21), "A"},
    {"MinusSignFitsTheHyphen", 1252, units(0x2212), "-"},
    {"InfinityFitsAnEight", 1252, units(0x221E), "8"},
    {"AccentIsLostWhereThePageLacksIt", 1252, units(0x0101), "a"},
    {"AccentIsKeptWhereThePageHasIt", 1257, units(0x0101), "\xE2"},
    {"CurlyQuotesOfWesternPages", 1252, units(0x201C, 0x2019, 0x201D), "\x93\x92\x94"},
    {"EuroSignOfWesternPages", 1252, units(0x20AC), "\x80"},
    {"EuroSignOfCyrillicPages", 1251, units(0x20AC), "\x88"},
    {"Latin1LettersAreThemselves", 1252, units(0xE9, 0xFF, 0xA0), "\xE9\xFF\xA0"},
    {"ControlsOfTheUpperHalfAreThemselves", 1252, units(0x81, 0x8D), "\x81\x8D"},
    {"CentralEuropean", 1250, units(0x141, 0x17A), "\xA3\x9F"},
    {"Cyrillic", 1251, units(0x416, 0x44F), "\xC6\xFF"},
    {"Greek", 1253, units(0x3A9, 0x3C0), "\xD9\xF0"},
    {"Turkish", 1254, units(0x130, 0x15F), "\xDD\xFE"},
    {"Hebrew", 1255, units(0x5D0, 0x5EA), "\xE0\xFA"},
    {"Arabic", 1256, units(0x627, 0x64A), "\xC7\xED"},
    {"Vietnamese", 1258, units(0x1B0, 0x20AB), "\xFD\xFE"},
    {"Thai", 874, units(0xE01, 0xE5B), "\xA1\xFB"},
    {"WhatThePageLacksIsAQuestionMark", 1252, units(0x4E00, 0x416), "??"},
    {"SurrogatesAreConvertedOneByOne", 1252, units(0xD83D, 0xDE00), "??"},
    {"SurrogatesAreOneByteEachInJapanese", 932, units(0xD83D, 0xDE00, 0xDE00), "???"},
    {"Japanese", 932, units('a', 0x3042, 'b'),
     "a\x82\xA0"
     "b"},
    {"JapaneseHalfWidthIsOneByte", 932, units(0xFF71), "\xB1"},
    {"JapaneseHasFullWidthDigits", 932, units(0xFF11), "\x82\x50"},
    {"JapaneseTrailMayBeABackslash", 932, units(0x8868), "\x95\\"},
    {"JapanesePrivateUse", 932, units(0xE000), "\xF0\x40"},
    {"SimplifiedChinese", 936, units(0x4E2D, 0x20AC), "\xD6\xD0\x80"},
    {"Korean", 949, units(0xD55C, 0xD79D), "\xC7\xD1\xC8\xFE"},
    {"KoreanBeyondTheStandardSet", 949, units(0xD7A3), "\xC6\x52"},
    {"TraditionalChinese", 950, units(0x4E2D), "\xA4\xA4"},
    {"Utf8TwoBytes", 65001, units(0x80, 0x7FF), "\xC2\x80\xDF\xBF"},
    {"Utf8ThreeBytes", 65001, units(0x800, 0xFFFF), "\xE0\xA0\x80\xEF\xBF\xBF"},
    {"Utf8KeepsFullWidthDigits", 65001, units(0xFF11), "\xEF\xBC\x91"},
    {"Utf8LowestPair", 65001, units(0xD800, 0xDC00), "\xF0\x90\x80\x80"},
    {"Utf8HighestPair", 65001, units(0xDBFF, 0xDFFF), "\xF4\x8F\xBF\xBF"},
    {"Utf8HighSurrogateAtTheEnd", 65001, units('a', 0xD83D), "a\xEF\xBF\xBD"},
    {"Utf8HighSurrogateBeforeALetter", 65001, units(0xD83D, 'a'),
     "\xEF\xBF\xBD"
     "a"},
    {"Utf8LowSurrogateAlone", 65001, units(0xDE00, 'a'),
     "\xEF\xBF\xBD"
     "a"},
    {"Utf8PairBehindAHighSurrogate", 65001, units(0xD83D, 0xD83D, 0xDE00),
     "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
    {"Utf8LowSurrogateBehindALetter", 65001, units('a', 0xDE00), "a\xEF\xBF\xBD"},
    {"Utf8TwoLowSurrogates", 65001, units(0xDC00, 0xDC01), "\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"Utf8SurrogatesInWrongOrder", 65001, units(0xDE00, 0xD83D), "\xEF\xBF\xBD\xEF\xBF\xBD"},
};
INSTANTIATE_TEST_SUITE_P(Table, WideToCodePage, testing::ValuesIn(kPageCases),
                         [](const auto& row) { return row.param.name; });

class EveryCodePage : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Table, EveryCodePage, testing::ValuesIn(kAllCodePages),
                         [](const auto& row) { return std::to_string(row.param); });

// Units of one, two, three and (as a pair) four bytes, and runs of ASCII of several lengths.
WideString mixedText() {
    return wide("POINT Z (1 2 3), a longer run of plain text") +
           units(0x3042, 0xE9, 0xD83D, 0xDE00, 'x', 0xFF11, 0x4E2D) + wide("1234567") +
           units(0x416) + wide("12345678") + units(0xD55C);
}

TEST_P(EveryCodePage, LeavesAsciiAsItIs) {
    std::string ascii;
    for (int c = 1; c < 0x80; ++c) ascii += static_cast<char>(c);

    for (std::size_t first = 0; first < ascii.size(); ++first) {
        const std::string tail = ascii.substr(first);
        EXPECT_EQ(inPage(GetParam(), wide(tail)), tail);
    }
}

TEST_P(EveryCodePage, ConvertsAUnitAlikeWhereverItStands) {
    const std::string e = inPage(GetParam(), units(0x416));

    for (std::size_t before = 0; before < 20; ++before) {
        const WideString text = WideString(before, 'a') + units(0x416) + WideString(9, 'b');
        EXPECT_EQ(inPage(GetParam(), text), std::string(before, 'a') + e + std::string(9, 'b'));
    }
}

TEST_P(EveryCodePage, ConvertsEachUnitBelowTheSurrogatesByItself) {
    // Whole blocks of units in one text, against the same units one by one.
    for (unsigned first = 0; first < 0xD800; first += 0x100) {
        WideString text;
        std::string oneByOne;
        for (unsigned unit = first; unit < first + 0x100; ++unit) {
            text += static_cast<VexaWChar>(unit);
            oneByOne += inPage(GetParam(), units(unit));
        }
        EXPECT_EQ(inPage(GetParam(), text), oneByOne) << "from unit " << first;
    }
}

TEST_P(EveryCodePage, ToTheTerminatorIncludesIt) {
    const WideString text = mixedText();
    const std::string expected = inPage(GetParam(), text) + '\0';
    const int size = static_cast<int>(expected.size());

    EXPECT_EQ(toPage(GetParam())(text.c_str(), kToTerminator, nullptr, 0), size);
    const Converted converted = convertedInto(size, text, kToTerminator, toPage(GetParam()));

    EXPECT_EQ(converted.returned, size);
    EXPECT_EQ(converted.room, expected);
    EXPECT_TRUE(converted.guardsUntouched);
}

TEST_P(EveryCodePage, FindsTheTerminatorWhereverTheTextStartsAndEnds) {
    const WideString storage(64, 'a');
    for (std::size_t start = 0; start < 10; ++start) {
        for (std::size_t size = 0; size < 30; ++size) {
            WideString text = storage;
            text[start + size] = 0;
            EXPECT_EQ(toPage(GetParam())(&text[start], kToTerminator, nullptr, 0),
                      static_cast<int>(size) + 1)
                << start << ' ' << size;
        }
    }
}

TEST_P(EveryCodePage, TerminatesAnEmptyText) {
    const Converted converted = convertedInto(4, {}, kToTerminator, toPage(GetParam()));

    EXPECT_EQ(converted.returned, 1);
    EXPECT_EQ(converted.room, std::string("\0\x7F\x7F\x7F", 4));
}

TEST_P(EveryCodePage, AnExplicitLengthEndsTheTextAndPassesZeros) {
    const WideString text = units('a', 0, 'b', 'c');

    const Converted converted = convertedInto(8, text, 3, toPage(GetParam()));

    EXPECT_EQ(converted.returned, 3);
    EXPECT_EQ(converted.room, std::string("a\0b\x7F\x7F\x7F\x7F\x7F", 8));
    EXPECT_TRUE(converted.guardsUntouched);
}

TEST_P(EveryCodePage, TouchesNothingBehindTheConvertedText) {
    const WideString text = mixedText();
    const std::string expected = inPage(GetParam(), text);
    const int room = static_cast<int>(expected.size()) + 40;

    const Converted converted =
        convertedInto(room, text, static_cast<int>(text.size()), toPage(GetParam()));

    EXPECT_EQ(converted.returned, static_cast<int>(expected.size()));
    EXPECT_EQ(converted.room, expected + std::string(40, kUntouchedByte));
}

// The bytes of the longest beginning of the text whose whole characters fit.
std::string whatFits(unsigned page, const WideString& text, std::size_t room) {
    std::string fitting;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPair = page == 65001 && (text[i] & 0xFC00) == 0xD800;
        const std::string next = inPage(page, text.substr(i, isPair ? 2 : 1));
        if (fitting.size() + next.size() > room) break;
        fitting += next;
        i += isPair ? 1 : 0;
    }
    return fitting + std::string(room - fitting.size(), kUntouchedByte);
}

TEST_P(EveryCodePage, ATooSmallRoomFailsAndHoldsWholeCharacters) {
    const WideString text = mixedText();
    const int length = static_cast<int>(text.size());
    const int size = toPage(GetParam())(text.data(), length, nullptr, 0);

    for (int room = 1; room < size; ++room) {
        const Converted converted = convertedInto(room, text, length, toPage(GetParam()));

        EXPECT_EQ(converted.returned, 0) << room;
        EXPECT_EQ(converted.room, whatFits(GetParam(), text, static_cast<std::size_t>(room)));
        EXPECT_TRUE(converted.guardsUntouched) << room;
    }
}

TEST_P(EveryCodePage, RefusesLengthsAndRoomsThatAreNone) {
    const WideString text = wide("abc");
    char untouched[] = "????????";

    EXPECT_EQ(toPage(GetParam())(text.c_str(), 0, untouched, 8), 0);
    EXPECT_EQ(toPage(GetParam())(text.c_str(), 0, nullptr, 0), 0);
    EXPECT_EQ(toPage(GetParam())(text.c_str(), -2, untouched, 8), 0);
    EXPECT_EQ(toPage(GetParam())(text.c_str(), 3, untouched, -1), 0);
    EXPECT_STREQ(untouched, "????????");
}

TEST(WideToCodePageUtf8, LooksAtNothingOutsideTheText) {
    const WideString pair = units(0xD83D, 0xDE00);
    const std::string replacement = "\xEF\xBF\xBD";

    for (const VexaWChar* half : {pair.data(), pair.data() + 1}) {
        std::string bytes(3, kUntouchedByte);
        EXPECT_EQ(toPage(65001)(half, 1, nullptr, 0), 3);
        EXPECT_EQ(toPage(65001)(half, 1, bytes.data(), 3), 3);
        EXPECT_EQ(bytes, replacement);
    }
}

TEST(WideToCodePageStraddling, ALeadByteIsNotWrittenWithoutItsTrail) {
    const Converted converted =
        convertedInto(2, units('a', 0x3042, 'b'), kToTerminator, toPage(932));

    EXPECT_EQ(converted.returned, 0);
    EXPECT_EQ(converted.room, std::string("a") + kUntouchedByte);
    EXPECT_TRUE(converted.guardsUntouched);
}

}  // namespace

}  // namespace vexa::test
