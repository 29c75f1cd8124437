#include "platform/posix/code_pages.h"
#include "tests/support/code_page_text.h"
#include "tests/support/wide_text.h"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::codePageToWide;
using platform::findCodePage;

constexpr int kToTerminator = -1;

// The whole text without a terminator, from a page.
WideString fromPage(unsigned number, const std::string& bytes) {
    const platform::CodePage page = findCodePage(number).value();
    const int length = static_cast<int>(bytes.size());
    const int size = codePageToWide(page, bytes.data(), length, nullptr, 0);
    WideString text(static_cast<std::size_t>(size), kUntouchedCell);
    const int written = codePageToWide(page, bytes.data(), length, text.data(), size);
    return written == size ? text : wide("conversion failed");
}

struct ReadCase {
    const char* name;
    unsigned page;
    std::string bytes;
    WideString text;
};

void PrintTo(const ReadCase& row, std::ostream* out) {
    *out << row.name;
}

class CodePageToWide : public testing::TestWithParam<ReadCase> {};

TEST_P(CodePageToWide, GivesTheUnitsOfTheBytes) {
    const ReadCase& row = GetParam();

    EXPECT_EQ(readable(fromPage(row.page, row.bytes)), readable(row.text));
}

const ReadCase kReadCases[] = {
    {"Western", 1252, "\x80\xE9\xA0", {0x20AC, 0xE9, 0xA0}},
    {"WesternControlsOfTheUpperHalf", 1252, "\x81\x8D", {0x81, 0x8D}},
    {"CentralEuropean", 1250, "\xA3\x9F", {0x141, 0x17A}},
    {"Cyrillic", 1251, "\xC6\xFF", {0x416, 0x44F}},
    {"Greek", 1253, "\xD9\xF0", {0x3A9, 0x3C0}},
    {"Turkish", 1254, "\xDD\xFE", {0x130, 0x15F}},
    {"Hebrew", 1255, "\xE0\xFA", {0x5D0, 0x5EA}},
    {"Arabic", 1256, "\xC7\xED", {0x627, 0x64A}},
    {"Baltic", 1257, "\xE2", {0x101}},
    {"Vietnamese", 1258, "\xFD\xFE", {0x1B0, 0x20AB}},
    {"Thai", 874, "\xA1\xFB", {0xE01, 0xE5B}},
    {"Japanese", 932, "a\x82\xA0z", {'a', 0x3042, 'z'}},
    {"JapaneseHalfWidth", 932, "\xB1", {0xFF71}},
    {"JapaneseTrailThatIsABackslash", 932, "\x95\\\\", {0x8868, '\\'}},
    {"JapanesePrivateUse", 932, "\xF0\x40", {0xE000}},
    {"JapaneseLeadByteAtTheEnd", 932, "a\x83", {'a', 0x30FB}},
    {"JapaneseLeadByteBeforeAZero", 932, std::string("\x83\0z", 3), {0x30FB, 0, 'z'}},
    {"JapaneseTrailThatIsNone", 932, "\x83\x01z", {0x30FB, 'z'}},
    {"SimplifiedChinese", 936, "\xD6\xD0\x80", {0x4E2D, 0x20AC}},
    {"ChineseLeadByteAtTheEnd", 936, "\xD6", {'?'}},
    {"Korean", 949, "\xC7\xD1\xC8\xFE\xC6\x52", {0xD55C, 0xD79D, 0xD7A3}},
    {"TraditionalChinese", 950, "\xA4\xA4", {0x4E2D}},
    {"Utf8", 65001, "\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80", {0x80, 0x800, 0xD800, 0xDC00}},
    {"Utf8CutOff", 65001, "a\xF0\x9F\x98", {'a', 0xFFFD}},
};
INSTANTIATE_TEST_SUITE_P(Table, CodePageToWide, testing::ValuesIn(kReadCases),
                         [](const auto& row) { return row.param.name; });

class EveryPageRead : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Table, EveryPageRead, testing::ValuesIn(kAllCodePages),
                         [](const auto& row) { return std::to_string(row.param); });

// A page may have a character at several codes: it is written at one of them, and read alike.
TEST_P(EveryPageRead, ReadsWhatItWroteOfWhatItRead) {
    for (unsigned code = 0; code < 0x10000; ++code) {
        const std::string bytes =
            code < 0x100 ? std::string{static_cast<char>(code)}
                         : std::string{static_cast<char>(code >> 8), static_cast<char>(code)};
        const WideString text = fromPage(GetParam(), bytes);
        ASSERT_EQ(fromPage(GetParam(), inPage(GetParam(), text)), text) << "code " << code;
    }
}

TEST_P(EveryPageRead, KeepsAsciiOfAnyLength) {
    std::string ascii;
    for (int c = 1; c < 0x80; ++c) ascii += static_cast<char>(c);

    for (std::size_t first = 0; first < ascii.size(); ++first) {
        const std::string tail = ascii.substr(first);
        ASSERT_EQ(fromPage(GetParam(), tail), wide(tail));
    }
}

TEST_P(EveryPageRead, ReadsACharacterAlikeWhereverItStands) {
    const std::string letter = inPage(GetParam(), {0xE9});
    const WideString unit = fromPage(GetParam(), letter);
    for (std::size_t before = 0; before < 70; ++before) {
        const std::string bytes = std::string(before, 'a') + letter + std::string(40, 'b');
        ASSERT_EQ(fromPage(GetParam(), bytes),
                  WideString(before, 'a') + unit + WideString(40, 'b'));
    }
}

TEST_P(EveryPageRead, RefusesRoomThatIsTooSmallAndWritesNothingBehindIt) {
    const platform::CodePage page = findCodePage(GetParam()).value();
    const std::string bytes = inPage(GetParam(), {'a', 0xE9, 0x3042, 'b', 0x416, 'c'});
    const int size = codePageToWide(page, bytes.c_str(), kToTerminator, nullptr, 0);
    for (int room = 1; room <= size + 2; ++room) {
        GuardedText text(static_cast<std::size_t>(room));
        const int written = codePageToWide(page, bytes.c_str(), kToTerminator, text.data(), room);

        EXPECT_EQ(written, room < size ? 0 : size) << room;
        EXPECT_TRUE(text.areGuardsUntouched()) << room;
    }
}

TEST_P(EveryPageRead, RefusesLengthsThatAreNone) {
    const platform::CodePage page = findCodePage(GetParam()).value();
    VexaWChar room[4] = {};

    EXPECT_EQ(codePageToWide(page, "ab", 0, room, 4), 0);
    EXPECT_EQ(codePageToWide(page, "ab", -2, room, 4), 0);
    EXPECT_EQ(codePageToWide(page, "ab", 2, room, -1), 0);
    EXPECT_EQ(room[0], 0);
}

TEST(LeadBytes, AreThoseOfThePage) {
    const platform::CodePage japanese = findCodePage(932).value();
    for (unsigned byte = 0; byte < 0x100; ++byte) {
        const bool isLead = (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
        EXPECT_EQ(isLeadByte(japanese, static_cast<char>(byte)), isLead) << byte;
        EXPECT_FALSE(isLeadByte(findCodePage(1252).value(), static_cast<char>(byte)));
        EXPECT_FALSE(isLeadByte(findCodePage(65001).value(), static_cast<char>(byte)));
    }
}

TEST(DoubleByteCase, ChangesLettersThatThePageHasInBothCases) {
    const platform::CodePage japanese = findCodePage(932).value();

    EXPECT_EQ(upperCase(japanese, 0x8281), 0x8260U);  // full-width Latin
    EXPECT_EQ(lowerCase(japanese, 0x8279), 0x829AU);
    EXPECT_EQ(upperCase(japanese, 0x83BF), 0x839FU);  // Greek
    EXPECT_EQ(lowerCase(japanese, 0x8440), 0x8470U);  // Cyrillic
    EXPECT_EQ(upperCase(japanese, 0x82A0), 0x82A0U);  // has no case
    EXPECT_EQ(upperCase(japanese, 'a'), unsigned{'A'});
    EXPECT_EQ(upperCase(japanese, 0xE9), 0xE9U);
    EXPECT_EQ(lowerCase(findCodePage(936).value(), 0xA3C1), 0xA3E1U);
    EXPECT_EQ(upperCase(findCodePage(949).value(), 0xA3E1), 0xA3C1U);
    EXPECT_EQ(lowerCase(findCodePage(950).value(), 0xA2CF), 0xA2E9U);
    EXPECT_EQ(upperCase(findCodePage(1252).value(), 0x8281), 0x8281U);
}

TEST(CodePageNumber, IsThatOfThePage) {
    for (const unsigned number : kAllCodePages) {
        EXPECT_EQ(numberOf(findCodePage(number).value()), number);
    }
}

}  // namespace

}  // namespace vexa::test
