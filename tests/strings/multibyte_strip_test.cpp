#include "tests/support/active_page.h"
#include "tests/support/allocations.h"
#include "tests/support/guarded_bytes.h"
#include "vexakit/strings.h"

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr std::uint32_t kAll = std::numeric_limits<std::uint32_t>::max();

// ---- The way through wide text ------------------------------------------------------------------

struct WideStrip {
    const char* name;
    // removes "x" or U+0001, up to two of them where there is a limit
    char* (*strip)(char* text);
};

void PrintTo(const WideStrip& row, std::ostream* out) {
    *out << row.name;
}

class StringStripThroughWideTextA : public testing::TestWithParam<WideStrip> {};
INSTANTIATE_TEST_SUITE_P(
    Table, StringStripThroughWideTextA,
    testing::Values(WideStrip{"Char", [](char* text) { return string_stripCharA(text, 'x'); }},
                    WideStrip{"CtlChar", [](char* text) { return string_stripCtlCharA(text); }},
                    WideStrip{"LeadingChar",
                              [](char* text) { return string_stripLeadingCharA(text, 'x', 2); }},
                    WideStrip{"TrailingChar",
                              [](char* text) { return string_stripTrailingCharA(text, 'x', 2); }},
                    WideStrip{"LeadingCtlChar",
                              [](char* text) { return string_stripLeadingCtlCharA(text, 2); }},
                    WideStrip{"TrailingCtlChar",
                              [](char* text) { return string_stripTrailingCtlCharA(text, 2); }}),
    [](const auto& row) { return row.param.name; });

TEST_P(StringStripThroughWideTextA, GivesNullForNull) {
    EXPECT_EQ(GetParam().strip(nullptr), nullptr);
}

TEST_P(StringStripThroughWideTextA, LeavesEmptyText) {
    EXPECT_EQ(edited(GetParam().strip, ""), "");
}

TEST_P(StringStripThroughWideTextA, LeavesTextWithNothingToRemove) {
    EXPECT_EQ(edited(GetParam().strip, " ~X! "), " ~X! ");
    EXPECT_EQ(edited(GetParam().strip, std::string(100'000, 'y')), std::string(100'000, 'y'));
}

TEST_P(StringStripThroughWideTextA, LeavesTheTextWhenMemoryIsShort) {
    for (const std::string& text :
         {std::string("\x01x\x01y\x01x\x01"), "x\x01" + std::string(100'000, 'y') + "\x01x"}) {
        int refusals = 0;
        for (bool isRefused = true; isRefused; refusals += isRefused) {
            GuardedBytes bytes(text);
            const char* result = nullptr;
            {
                const AllocationFailure failure(refusals + 1);
                result = GetParam().strip(bytes.data());
                isRefused = failure.happened();
            }

            EXPECT_EQ(static_cast<const void*>(result), isRefused ? nullptr : bytes.data());
            if (isRefused) {
                EXPECT_EQ(bytes.text(), text);
            }
            EXPECT_TRUE(bytes.areGuardsUntouched());
        }
        EXPECT_GT(refusals, 0);
    }
}

TEST_P(StringStripThroughWideTextA, GivesItsMemoryBack) {
    GuardedBytes bytes("x\x01" + std::string(10'000, 'y') + "\x01x");
    const AllocationWatch watch;

    GetParam().strip(bytes.data());

    EXPECT_EQ(watch.blocksInUse(), 0);
}

class StringStripThroughWideTextAInPage932 : public StringStripThroughWideTextA {};
INSTANTIATE_TEST_SUITE_P(
    Table, StringStripThroughWideTextAInPage932,
    testing::Values(WideStrip{"CtlChar", string_stripCtlCharA},
                    WideStrip{"LeadingChar",
                              [](char* text) { return string_stripLeadingCharA(text, 'x', 0); }},
                    WideStrip{"TrailingCtlChar",
                              [](char* text) { return string_stripTrailingCtlCharA(text, 0); }}),
    [](const auto& row) { return row.param.name; });

TEST_P(StringStripThroughWideTextAInPage932, LeavesDoubleByteText) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(GetParam().strip, "\x83\x5C\xB1\x83\x61\x81\x40"),
              "\x83\x5C\xB1\x83\x61\x81\x40");
}

// the page has some characters at two or three places, and only one of them is the way back
TEST_P(StringStripThroughWideTextAInPage932, MovesCharactersToTheirOnePlace) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(GetParam().strip, "a\xFA\x4Az"), "a\x87\x54z");
    EXPECT_EQ(edited(GetParam().strip, "\xEE\xEF\xEE\xF9"), "\xFA\x40\x81\xCA");
}

// the lead byte becomes a middle dot of two bytes
TEST_P(StringStripThroughWideTextAInPage932, LeavesALoneLeadByteThatWouldMakeItLonger) {
    VEXA_NEEDS_PAGE(932);
    GuardedBytes bytes("a\x83");

    EXPECT_EQ(GetParam().strip(bytes.data()), nullptr);
    EXPECT_EQ(bytes.text(), "a\x83");
    EXPECT_TRUE(bytes.areGuardsUntouched());
}

class StringStripThroughWideTextAInPage65001 : public StringStripThroughWideTextA {};
INSTANTIATE_TEST_SUITE_P(
    Table, StringStripThroughWideTextAInPage65001,
    testing::Values(WideStrip{"Char", [](char* text) { return string_stripCharA(text, 'x'); }},
                    WideStrip{"CtlChar", string_stripCtlCharA},
                    WideStrip{"TrailingChar",
                              [](char* text) { return string_stripTrailingCharA(text, 'x', 0); }}),
    [](const auto& row) { return row.param.name; });

TEST_P(StringStripThroughWideTextAInPage65001, LeavesWellFormedText) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(GetParam().strip, "\xC3\xA9\xE3\x82\xBD\xF0\x9F\x98\x80"),
              "\xC3\xA9\xE3\x82\xBD\xF0\x9F\x98\x80");
}

TEST_P(StringStripThroughWideTextAInPage65001, LeavesTextThatItWouldMakeLonger) {
    VEXA_NEEDS_PAGE(65001);
    for (const std::string_view text : {"\xFF", "\xC3", "ab\xFFyz", "\xE3\x82", "\xC3\xA9\x80"}) {
        GuardedBytes bytes(text);

        EXPECT_EQ(GetParam().strip(bytes.data()), nullptr);
        EXPECT_EQ(bytes.text(), text);
        EXPECT_TRUE(bytes.areGuardsUntouched());
    }
}

// the first three bytes of a character of four: as long as what replaces them
TEST_P(StringStripThroughWideTextAInPage65001, ReplacesIllFormedTextWhereThereIsRoom) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(GetParam().strip, "a\xF0\x9F\x98z"), "a\xEF\xBF\xBDz");
}

TEST(StringStripCharAInPage65001, RemovingMakesRoomForReplacements) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripCharA, "\xFFzxyx", 'x'), "\xEF\xBF\xBDzy");
}

// ---- string_stripCharA --------------------------------------------------------------------------

TEST(StringStripCharA, RemovesTheCharacterEverywhere) {
    EXPECT_EQ(edited(string_stripCharA, "xaxbx", 'x'), "ab");
    EXPECT_EQ(edited(string_stripCharA, "C:\\dir\\", '\\'), "C:dir");
    EXPECT_EQ(edited(string_stripCharA, "a\tb", '\t'), "ab");
    EXPECT_EQ(edited(string_stripCharA, "aXb", 'x'), "aXb");
    EXPECT_EQ(edited(string_stripCharA, "ab", '\0'), "ab");
}

// what moved into the place of a removed character is kept unseen
TEST(StringStripCharA, KeepsEverySecondSideBySide) {
    EXPECT_EQ(edited(string_stripCharA, "axxb", 'x'), "axb");
    EXPECT_EQ(edited(string_stripCharA, "axxxb", 'x'), "axb");
    EXPECT_EQ(edited(string_stripCharA, "axxxxb", 'x'), "axxb");
    EXPECT_EQ(edited(string_stripCharA, "xx", 'x'), "x");
    EXPECT_EQ(edited(string_stripCharA, "xxx", 'x'), "x");
}

TEST(StringStripCharA, StopsAtTheTerminator) {
    EXPECT_EQ(edited(string_stripCharA, "x", 'x'), "");
    EXPECT_EQ(edited(string_stripCharA, "ax", 'x'), "a");
    EXPECT_EQ(edited(string_stripCharA, "axx", 'x'), "ax");
}

TEST(StringStripCharAInPage932, LooksAtCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripCharA, "\x83\x5C\\z", '\\'), "\x83\x5Cz");
    EXPECT_EQ(edited(string_stripCharA, "a\x83\x61", 'a'), "\x83\x61");
    EXPECT_EQ(edited(string_stripCharA, "a\x83\x61", '\x83'), "a\x83\x61");
}

// the byte is taken for U+00B1, which is 0x817D here, and not for the half-width kana of that byte
TEST(StringStripCharAInPage932, TakesTheByteForTheWideCharacterOfItsValue) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripCharA, "a\xB1z", '\xB1'), "a\xB1z");
    EXPECT_EQ(edited(string_stripCharA, "a\x81\x7Dz", '\xB1'), "az");
}

TEST(StringStripCharAInPage1252, TakesTheByteForTheWideCharacterOfItsValue) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripCharA, "\xE9t\xE9", '\xE9'), "t");
    EXPECT_EQ(edited(string_stripCharA, "1 \x80", '\x80'), "1 \x80") << "the euro is U+20AC";
}

TEST(StringStripCharAInPage1252, KeepsEveryByte) {
    VEXA_NEEDS_PAGE(1252);
    std::string text;
    for (int byte = 1; byte <= 0xFF; ++byte) text += static_cast<char>(byte);
    EXPECT_EQ(edited(string_stripCharA, text, '\0'), text);
}

TEST(StringStripCharAInPage65001, TakesTheByteForTheWideCharacterOfItsValue) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripCharA, "\xC3\xA9t\xC3\xA9", '\xE9'), "t");
    EXPECT_EQ(edited(string_stripCharA, "\xC3\xA9", '\xC3'), "\xC3\xA9");
}

// ---- string_stripCtlCharA -----------------------------------------------------------------------

TEST(StringStripCtlCharA, RemovesControlCharacters) {
    for (int control = 1; control < ' '; ++control) {
        const std::string text = {'a', static_cast<char>(control), 'b'};
        EXPECT_EQ(edited(string_stripCtlCharA, text), "ab") << control;
    }
    EXPECT_EQ(edited(string_stripCtlCharA, "y\x7Fz"), "yz");
    EXPECT_EQ(edited(string_stripCtlCharA, "\ta\r b\n"), "a b");
}

TEST(StringStripCtlCharA, KeepsEverySecondSideBySide) {
    EXPECT_EQ(edited(string_stripCtlCharA, "a\r\nb"), "a\nb");
    EXPECT_EQ(edited(string_stripCtlCharA, "\x01\x02\x03z"), "\x02z");
    EXPECT_EQ(edited(string_stripCtlCharA, "a\x01\x02"), "a\x02");
    EXPECT_EQ(edited(string_stripCtlCharA, "a\x01\x02\x03"), "a\x02");
}

TEST(StringStripCtlCharA, StopsAtTheTerminator) {
    EXPECT_EQ(edited(string_stripCtlCharA, "\x01"), "");
    EXPECT_EQ(edited(string_stripCtlCharA, "a\x01"), "a");
}

TEST(StringStripCtlCharAInPage932, LooksAtWideCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripCtlCharA, "\x83\x5C\x01\x83\x61"), "\x83\x5C\x83\x61");
}

TEST(StringStripCtlCharAInPage1252, LooksAtWideCharacters) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripCtlCharA, "a\x81z\x9D"), "az") << "U+0081 and U+009D";
    EXPECT_EQ(edited(string_stripCtlCharA, "a\x80z\x85"), "a\x80z\x85") << "euro and ellipsis";
}

TEST(StringStripCtlCharAInPage65001, LooksAtWideCharacters) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripCtlCharA, "a\xC2\x85z\xC3\xA9"), "az\xC3\xA9");
}

// ---- At one end ---------------------------------------------------------------------------------

TEST(StringStripLeadingCharA, RemovesUpToCount) {
    EXPECT_EQ(edited(string_stripLeadingCharA, "xxxaxx", 'x', 0), "xxxaxx");
    EXPECT_EQ(edited(string_stripLeadingCharA, "xxxaxx", 'x', 1), "xxaxx");
    EXPECT_EQ(edited(string_stripLeadingCharA, "xxxaxx", 'x', 2), "xaxx");
    EXPECT_EQ(edited(string_stripLeadingCharA, "xxxaxx", 'x', 3), "axx");
    EXPECT_EQ(edited(string_stripLeadingCharA, "xxxaxx", 'x', 4), "axx");
    EXPECT_EQ(edited(string_stripLeadingCharA, "xxxaxx", 'x', kAll), "axx");
    EXPECT_EQ(edited(string_stripLeadingCharA, "axx", 'x', kAll), "axx");
}

TEST(StringStripTrailingCharA, RemovesUpToCount) {
    EXPECT_EQ(edited(string_stripTrailingCharA, "xxaxxx", 'x', 0), "xxaxxx");
    EXPECT_EQ(edited(string_stripTrailingCharA, "xxaxxx", 'x', 1), "xxaxx");
    EXPECT_EQ(edited(string_stripTrailingCharA, "xxaxxx", 'x', 2), "xxax");
    EXPECT_EQ(edited(string_stripTrailingCharA, "xxaxxx", 'x', 3), "xxa");
    EXPECT_EQ(edited(string_stripTrailingCharA, "xxaxxx", 'x', 4), "xxa");
    EXPECT_EQ(edited(string_stripTrailingCharA, "xxaxxx", 'x', kAll), "xxa");
    EXPECT_EQ(edited(string_stripTrailingCharA, "xxa", 'x', kAll), "xxa");
}

TEST(StringStripLeadingCtlCharA, RemovesUpToCount) {
    EXPECT_EQ(edited(string_stripLeadingCtlCharA, "\x01\x1F\x7F z\x01", 0), "\x01\x1F\x7F z\x01");
    EXPECT_EQ(edited(string_stripLeadingCtlCharA, "\x01\x1F\x7F z\x01", 2), "\x7F z\x01");
    EXPECT_EQ(edited(string_stripLeadingCtlCharA, "\x01\x1F\x7F z\x01", 3), " z\x01");
    EXPECT_EQ(edited(string_stripLeadingCtlCharA, "\x01\x1F\x7F z\x01", kAll), " z\x01");
}

TEST(StringStripTrailingCtlCharA, RemovesUpToCount) {
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x01z \x01\x1F\x7F", 0), "\x01z \x01\x1F\x7F");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x01z \x01\x1F\x7F", 2), "\x01z \x01");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x01z \x01\x1F\x7F", 3), "\x01z ");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x01z \x01\x1F\x7F", kAll), "\x01z ");
}

// the surroundings hold such characters, too
TEST(StringStripAtOneEndA, EmptiesTextOfNothingElse) {
    EXPECT_EQ(edited(string_stripLeadingCharA, "aaa", 'a', kAll), "");
    EXPECT_EQ(edited(string_stripTrailingCharA, "aaa", 'a', kAll), "");
    EXPECT_EQ(edited(string_stripLeadingCtlCharA, "\x7F\x7F", kAll), "");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x7F\x7F", kAll), "");
}

TEST(StringStripAtOneEndA, LeavesTheTerminatorAlone) {
    EXPECT_EQ(edited(string_stripLeadingCharA, "ab", '\0', kAll), "ab");
    EXPECT_EQ(edited(string_stripTrailingCharA, "ab", '\0', kAll), "ab");
    EXPECT_EQ(edited(string_stripLeadingCharA, "", '\0', kAll), "");
    EXPECT_EQ(edited(string_stripTrailingCharA, "", '\0', kAll), "");
}

TEST(StringStripAtOneEndAInPage932, LooksAtCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripTrailingCharA, "\\\x83\x5C\\\\", '\\', kAll), "\\\x83\x5C");
    EXPECT_EQ(edited(string_stripTrailingCharA, "\x83\x78xx", 'x', kAll), "\x83\x78");
    EXPECT_EQ(edited(string_stripLeadingCharA, "\\\x83\x5C", '\\', kAll), "\x83\x5C");
    EXPECT_EQ(edited(string_stripLeadingCharA, "\x83\x61", '\x83', kAll), "\x83\x61");
    EXPECT_EQ(edited(string_stripLeadingCtlCharA, "\x01\x01\x83\x5C", kAll), "\x83\x5C");
}

TEST(StringStripAtOneEndAInPage1252, TakesTheByteForTheWideCharacterOfItsValue) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripLeadingCharA, "\xE9\xE9t", '\xE9', 1), "\xE9t");
    EXPECT_EQ(edited(string_stripTrailingCharA, "t\xE9\xE9", '\xE9', 1), "t\xE9");
    EXPECT_EQ(edited(string_stripTrailingCharA, "t\x80", '\x80', 1), "t\x80");
    EXPECT_EQ(edited(string_stripLeadingCtlCharA, "\x81\x9Dt", kAll), "t");
}

// callers see a byte further in front judged for the character at the end
TEST(StringStripTrailingCtlCharAInPage932, AsksTheByteOfTheSameIndex) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x83\x5C\x01", kAll), "\x83\x5C\x01");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x83\x5C\x01z", kAll), "\x83\x5C\x01");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x83\x5Cy\x01\x02z", kAll), "\x83\x5Cy\x01");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x83\x5Cy\x01\x02z", 1), "\x83\x5Cy\x01\x02");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x83\x5C\x83\x5C\x01\x02\x03z", kAll),
              "\x83\x5C\x83\x5C\x01\x02");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\x01\x02\x83\x5C", kAll), "\x01\x02\x83\x5C");
}

TEST(StringStripTrailingCtlCharAInPage65001, AsksTheByteOfTheSameIndex) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\xC3\xA9\x01", kAll), "\xC3\xA9\x01");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\xC3\xA9\x01z", kAll), "\xC3\xA9\x01");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "\xC3\xA9\x01\x02\x03z", 2), "\xC3\xA9\x01\x02");
}

// 0x81 reads as U+FF81 with its sign, and that is a letter
TEST(StringStripTrailingCtlCharAInPage1252, TakesTheByteWithItsSign) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "a\x81", kAll), "a\x81");
    EXPECT_EQ(edited(string_stripTrailingCtlCharA, "a\x01\x81", kAll), "a\x01\x81");
}

}  // namespace

}  // namespace vexa::test
