#include "tests/support/active_page.h"
#include "tests/support/guarded_bytes.h"
#include "vexakit/strings.h"

#include <cstddef>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using namespace std::string_literals;

// Two bytes from a character's number.
std::string doubleByte(unsigned character) {
    return {static_cast<char>(character >> 8), static_cast<char>(character & 0xFF)};
}

std::string bytesFrom128() {
    std::string bytes;
    for (int byte = 0x80; byte <= 0xFF; ++byte) bytes += static_cast<char>(byte);
    return bytes;
}

// ---- Case ---------------------------------------------------------------------------------------

TEST(StringToUpperA, ChangesAsciiLetters) {
    EXPECT_EQ(string_toUpperA(nullptr), nullptr);
    EXPECT_EQ(edited(string_toUpperA, ""), "");
    EXPECT_EQ(edited(string_toUpperA, "azAZ09 [`{@"), "AZAZ09 [`{@");
    EXPECT_EQ(edited(string_toUpperA, "i\x1F\x7F"), "I\x1F\x7F");
}

TEST(StringToLowerA, ChangesAsciiLetters) {
    EXPECT_EQ(string_toLowerA(nullptr), nullptr);
    EXPECT_EQ(edited(string_toLowerA, ""), "");
    EXPECT_EQ(edited(string_toLowerA, "azAZ09 [`{@"), "azaz09 [`{@");
    EXPECT_EQ(edited(string_toLowerA, "I\x1F\x7F"), "i\x1F\x7F");
}

TEST(StringToUpperAInPage932, LeavesTrailBytesThatLookLikeLetters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_toUpperA, "a\x83\x61z\x83\x7A"), "A\x83\x61Z\x83\x7A");
    EXPECT_EQ(edited(string_toLowerA, "A\x83\x41Z\x83\x5A"), "a\x83\x41z\x83\x5A");
    EXPECT_EQ(edited(string_toUpperA, "a\xB1z\xDF"), "A\xB1Z\xDF");
}

TEST(StringToUpperAInPage932, LeavesALoneLeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_toUpperA, "a\x82"), "A\x82");
    EXPECT_EQ(edited(string_toLowerA, "A\x82"), "a\x82");
}

TEST(StringToUpperAInPage932, ChangesFullWidthLetters) {
    VEXA_NEEDS_PAGE(932);
    for (unsigned letter = 0; letter < 26; ++letter) {
        const std::string upper = doubleByte(0x8260 + letter);
        const std::string lower = doubleByte(0x8281 + letter);
        EXPECT_EQ(edited(string_toUpperA, lower + upper), upper + upper);
        EXPECT_EQ(edited(string_toLowerA, lower + upper), lower + lower);
    }
}

TEST(StringToUpperAInPage932, ChangesLettersOfBothWidths) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_toUpperA, "a\x82\x81z"), "A\x82\x60Z");
    EXPECT_EQ(edited(string_toLowerA, "A\x82\x60Z"), "a\x82\x81z");
}

TEST(StringToUpperAInPage932, ChangesGreekLetters) {
    VEXA_NEEDS_PAGE(932);
    for (unsigned letter = 0; letter < 24; ++letter) {
        const std::string upper = doubleByte(0x839F + letter);
        const std::string lower = doubleByte(0x83BF + letter);
        EXPECT_EQ(edited(string_toUpperA, lower + upper), upper + upper);
        EXPECT_EQ(edited(string_toLowerA, lower + upper), lower + lower);
    }
}

// 0x7F is no trail byte, so the small letters have a gap there
TEST(StringToUpperAInPage932, ChangesCyrillicLetters) {
    VEXA_NEEDS_PAGE(932);
    for (unsigned letter = 0; letter < 33; ++letter) {
        const std::string upper = doubleByte(0x8440 + letter);
        const std::string lower = doubleByte(0x8470 + letter + (letter < 15 ? 0 : 1));
        EXPECT_EQ(edited(string_toUpperA, lower + upper), upper + upper);
        EXPECT_EQ(edited(string_toLowerA, lower + upper), lower + lower);
    }
}

TEST(StringToUpperAInPage932, LeavesDoubleByteCharactersWithoutCase) {
    VEXA_NEEDS_PAGE(932);
    for (const unsigned character : {0x8140U, 0x825FU, 0x827AU, 0x8280U, 0x829BU, 0x829FU, 0x8340U,
                                     0x835CU, 0x839EU, 0x83B7U, 0x83BEU, 0x83D7U, 0x889FU}) {
        const std::string text = doubleByte(character);
        EXPECT_EQ(edited(string_toUpperA, text), text) << character;
        EXPECT_EQ(edited(string_toLowerA, text), text) << character;
    }
}

TEST(StringToUpperAInPage1252, LeavesBytesAbove127) {
    VEXA_NEEDS_PAGE(1252);
    const std::string bytes = bytesFrom128();
    EXPECT_EQ(edited(string_toUpperA, "a" + bytes), "A" + bytes);
    EXPECT_EQ(edited(string_toLowerA, "A" + bytes), "a" + bytes);
}

TEST(StringToUpperAInPage65001, LeavesBytesAbove127) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_toUpperA, "a\xC3\xA9\xEF\xBD\x81z"), "A\xC3\xA9\xEF\xBD\x81Z");
    EXPECT_EQ(edited(string_toLowerA, "A\xC3\x89\xEF\xBC\xA1Z"), "a\xC3\x89\xEF\xBC\xA1z");
    const std::string bytes = bytesFrom128();
    EXPECT_EQ(edited(string_toUpperA, "a" + bytes), "A" + bytes);
    EXPECT_EQ(edited(string_toLowerA, "A" + bytes), "a" + bytes);
}

// ---- Replacing a character ----------------------------------------------------------------------

TEST(StringReplaceCharA, ReplacesEveryOccurrence) {
    EXPECT_EQ(string_replaceCharA(nullptr, 'a', 'b'), nullptr);
    EXPECT_EQ(edited(string_replaceCharA, "", 'a', 'b'), "");
    EXPECT_EQ(edited(string_replaceCharA, "banana", 'a', 'o'), "bonono");
    EXPECT_EQ(edited(string_replaceCharA, "aaa", 'a', 'b'), "bbb");
    EXPECT_EQ(edited(string_replaceCharA, "banana", 'A', 'o'), "banana");
    EXPECT_EQ(edited(string_replaceCharA, "a/b/c/", '/', '\\'), "a\\b\\c\\");
    EXPECT_EQ(edited(string_replaceCharA, "banana", 'a', 'a'), "banana");
}

TEST(StringReplaceCharA, LeavesTheTerminator) {
    EXPECT_EQ(edited(string_replaceCharA, "abc", '\0', 'x'), "abc");
    EXPECT_EQ(edited(string_replaceCharA, "", '\0', 'x'), "");
}

TEST(StringReplaceCharA, PutsTerminatorsForEveryOccurrence) {
    GuardedBytes list("a.b.c");

    EXPECT_EQ(string_replaceCharA(list.data(), '.', '\0'), list.data());
    EXPECT_EQ(list.bytes(), "a\0b\0c\0"s);
    EXPECT_TRUE(list.areGuardsUntouched());
}

TEST(StringReplaceCharAInPage932, LeavesTheBytesOfDoubleByteCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_replaceCharA, "\\\x83\x5C\\", '\\', '/'), "/\x83\x5C/");
    EXPECT_EQ(edited(string_replaceCharA, "a\x83\x61za", 'a', 'o'), "o\x83\x61zo");
    EXPECT_EQ(edited(string_replaceCharA, "a\x83\x61", '\x83', 'o'), "a\x83\x61");
    EXPECT_EQ(edited(string_replaceCharA, "\x83\x83\x5C", '\\', '/'), "\x83\x83/");
    EXPECT_EQ(edited(string_replaceCharA, "\xB1\x83\xB1", '\xB1', 'o'), "o\x83\xB1");
}

TEST(StringReplaceCharAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_replaceCharA, "a\x83", 'a', 'o'), "o\x83");
}

TEST(StringReplaceCharAInPage1252, ReplacesBytesAbove127) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_replaceCharA, "\x83\x5C\xE9", '\\', '/'), "\x83/\xE9");
    EXPECT_EQ(edited(string_replaceCharA, "\xE9t\xE9", '\xE9', 'e'), "ete");
    EXPECT_EQ(edited(string_replaceCharA, "ete", 'e', '\xE9'), "\xE9t\xE9");
}

TEST(StringReplaceCharAInPage65001, ReplacesBytes) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_replaceCharA, "\xC3\xA9", '\xA9', '\xA8'), "\xC3\xA8");
}

// ---- Line feeds ---------------------------------------------------------------------------------

TEST(StringReplaceCRA, PutsALineFeedForABackslashAndItsLetter) {
    EXPECT_EQ(string_replaceCRA(nullptr), nullptr);
    EXPECT_EQ(edited(string_replaceCRA, "\\n"), "\n");
    EXPECT_EQ(edited(string_replaceCRA, "\\N"), "\n");
    EXPECT_EQ(edited(string_replaceCRA, "one\\ntwo\\Nthree"), "one\ntwo\nthree");
    EXPECT_EQ(edited(string_replaceCRA, "\\n\\n\\N"), "\n\n\n");
    EXPECT_EQ(edited(string_replaceCRA, "\\nn"), "\nn");
}

TEST(StringReplaceCRA, LeavesOtherBackslashes) {
    EXPECT_EQ(edited(string_replaceCRA, ""), "");
    EXPECT_EQ(edited(string_replaceCRA, "\\"), "\\");
    EXPECT_EQ(edited(string_replaceCRA, "n\\"), "n\\");
    EXPECT_EQ(edited(string_replaceCRA, "\\t\\r\\0"), "\\t\\r\\0");
    EXPECT_EQ(edited(string_replaceCRA, "\\\\"), "\\\\");
    EXPECT_EQ(edited(string_replaceCRA, "nN\n"), "nN\n");
    EXPECT_EQ(edited(string_replaceCRA, "/n"), "/n");
    EXPECT_EQ(edited(string_replaceCRA, "\\ n"), "\\ n");
}

TEST(StringReplaceCRA, ABackslashDoesNotProtectTheNextOne) {
    EXPECT_EQ(edited(string_replaceCRA, "\\\\n"), "\\\n");
    EXPECT_EQ(edited(string_replaceCRA, "\\\\\\nn"), "\\\\\nn");
}

TEST(StringReplaceCRA, DoesNotReadBehindABackslashAtTheEnd) {
    GuardedBytes text("a\\", 0, 'n');

    EXPECT_EQ(string_replaceCRA(text.data()), text.data());
    EXPECT_EQ(text.text(), "a\\");
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST(StringReplaceCRAInPage932, SeesWholeCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_replaceCRA, "\x83\x5Cn"), "\x83\x5Cn");
    EXPECT_EQ(edited(string_replaceCRA, "\\\x83\x6E"), "\\\x83\x6E");
    EXPECT_EQ(edited(string_replaceCRA, "\\\x83\x4E"), "\\\x83\x4E");
    EXPECT_EQ(edited(string_replaceCRA, "\x83\x5C\\n\x83\x6E"), "\x83\x5C\n\x83\x6E");
    EXPECT_EQ(edited(string_replaceCRA, "\x83\x83\\n"), "\x83\x83\n");
}

TEST(StringReplaceCRAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_replaceCRA, "\\n\x83"), "\n\x83");
    EXPECT_EQ(edited(string_replaceCRA, "\\\x83"), "\\\x83");
}

TEST(StringReplaceCRAInPage1252, SeesEveryByte) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_replaceCRA, "\x83\x5Cn"), "\x83\n");
}

TEST(StringReplaceCRAInPage65001, SeesEveryByte) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_replaceCRA, "\xC3\\n\xC3\xA9"), "\xC3\n\xC3\xA9");
}

}  // namespace

}  // namespace vexa::test
