#include "tests/support/active_page.h"
#include "tests/support/guarded_bytes.h"
#include "vexakit/strings.h"

#include <string>

#include <gtest/gtest.h>

#ifdef _WIN32
#include <mbstring.h>
#endif

namespace vexa::test {

namespace {

using namespace std::string_literals;

constexpr char kAllWhiteSpace[] = " \t\n\v\f\r";

// ASCII that is close to white space, controls among it
constexpr char kNoWhiteSpace[] = "\x01\x08\x0E\x1B\x1C\x1F!\x7F";

// Whether the byte of the no-break space counts. On Windows the runtime decides.
bool isNoBreakSpaceBlank() {
#ifdef _WIN32
    return _ismbcspace(0xA0) != 0;
#else
    return false;
#endif
}

// ---- Leading ------------------------------------------------------------------------------------

TEST(StringStripLeadWhiteSpaceA, RemovesAllInFront) {
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, " a"), "a");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, "   a b "), "a b ");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, kAllWhiteSpace + "a"s), "a");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, std::string(10'000, ' ') + "a"), "a");
}

TEST(StringStripLeadWhiteSpaceA, EmptiesTextOfWhiteSpace) {
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, " "), "");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, kAllWhiteSpace), "");
}

TEST(StringStripLeadWhiteSpaceA, LeavesTheRest) {
    EXPECT_EQ(string_stripLeadWhiteSpaceA(nullptr), nullptr);
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, ""), "");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, "a  b  "), "a  b  ");
    for (const char first : std::string(kNoWhiteSpace)) {
        const std::string text = first + " a"s;
        EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, text), text) << int{first};
    }
}

TEST(StringStripLeadWhiteSpaceAInPage932, RemovesIdeographicSpaces) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, "\x81\x40z"), "z");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, " \x81\x40\t\x81\x40\x83\x5C "), "\x83\x5C ");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, "\x81\x40\x81\x40"), "");
}

TEST(StringStripLeadWhiteSpaceAInPage932, LeavesOtherDoubleByteCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, "\x81\x41 a"), "\x81\x41 a");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, "\x83\x40 a"), "\x83\x40 a");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, "@a"), "@a");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, " \x81"), "\x81");
}

TEST(StringStripLeadWhiteSpaceAInPage1252, LeavesBytesAbove127) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, "\x85 a"), "\x85 a");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, " \x81\x40"), "\x81\x40");
}

TEST(StringStripLeadWhiteSpaceAInPage65001, LeavesBytesAbove127) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, " \xE3\x80\x80z"), "\xE3\x80\x80z");
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, " \xC2\xA0 a"), "\xC2\xA0 a");
}

// ---- Trailing -----------------------------------------------------------------------------------

TEST(StringStripTrailWhiteSpaceA, CutsAllAtTheEnd) {
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a "), "a");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, " a b   "), " a b");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a"s + kAllWhiteSpace), "a");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a" + std::string(10'000, ' ')), "a");
}

TEST(StringStripTrailWhiteSpaceA, PutsATerminatorForEach) {
    GuardedBytes text("a b \t\n");

    EXPECT_EQ(string_stripTrailWhiteSpaceA(text.data()), text.data());
    EXPECT_EQ(text.bytes(), "a b\0\0\0\0"s);
}

// the surroundings of blanks would go, too, if the walk did not end at the start
TEST(StringStripTrailWhiteSpaceA, EmptiesTextOfWhiteSpace) {
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, " "), "");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, kAllWhiteSpace), "");
}

TEST(StringStripTrailWhiteSpaceA, LeavesTheRest) {
    EXPECT_EQ(string_stripTrailWhiteSpaceA(nullptr), nullptr);
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, ""), "");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "  a  b"), "  a  b");
    for (const char last : std::string(kNoWhiteSpace)) {
        const std::string text = "a "s + last;
        EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, text), text) << int{last};
    }
}

TEST(StringStripTrailWhiteSpaceAInPage932, CutsIdeographicSpaces) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a\x81\x40"), "a");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, " \x83\x5C\x81\x40\t\x81\x40 "), " \x83\x5C");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "\x81\x40\x81\x40"), "");
}

TEST(StringStripTrailWhiteSpaceAInPage932, SeesWholeCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a \x81\x41"), "a \x81\x41");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "\x83\x81@ "), "\x83\x81@");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "\x83\x81\x81\x40"), "\x83\x81");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a \x83"), "a \x83");
}

TEST(StringStripTrailWhiteSpaceAInPage1252, LeavesBytesAbove127) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a \x85"), "a \x85");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "\x81\x40 "), "\x81\x40");
}

TEST(StringStripTrailWhiteSpaceAInPage65001, LeavesBytesAbove127) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a\xE3\x80\x80 "), "a\xE3\x80\x80");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a \xC2\xA0 "), "a \xC2\xA0");
}

// ---- Anywhere -----------------------------------------------------------------------------------

TEST(StringStripWhiteSpaceA, RemovesWhatStandsAlone) {
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a b c"), "abc");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, " a b "), "ab");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "\ta\nb\vc\fd\re"), "abcde");
}

// what moved into the place of a removed blank is kept unseen
TEST(StringStripWhiteSpaceA, KeepsEverySecondSideBySide) {
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a  b"), "a b");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a   b"), "a b");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a    b"), "a  b");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a \t\n b"), "a\t b");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "  a"), " a");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a  "), "a ");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "  "), " ");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "   "), " ");
}

// the blanks behind the terminator would be next
TEST(StringStripWhiteSpaceA, StopsAtTheTerminator) {
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a "), "a");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, " "), "");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a   "), "a ");
}

TEST(StringStripWhiteSpaceA, LeavesTheRest) {
    EXPECT_EQ(string_stripWhiteSpaceA(nullptr), nullptr);
    EXPECT_EQ(edited(string_stripWhiteSpaceA, ""), "");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, kNoWhiteSpace), kNoWhiteSpace);
}

TEST(StringStripWhiteSpaceAInPage932, RemovesTheFirstByteOfAnIdeographicSpace) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "\x81\x40z"), "@z");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a\x81\x40"), "a@");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "\x81\x40\x81\x40"), "@@");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "\x81\x40 z"), "@z");
}

TEST(StringStripWhiteSpaceAInPage932, KeepsTheWholeCharacterThatMovedIntoPlace) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a \x83\x5C z"), "a\x83\x5Cz");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a \x81\x40 z"), "a\x81\x40z");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "\x83\x83 \x83\x5C"), "\x83\x83\x83\x5C");
}

TEST(StringStripWhiteSpaceAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a \x83"), "a\x83");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a\x83"), "a\x83");
}

TEST(StringStripWhiteSpaceAInPage1252, LeavesBytesAbove127) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "\x85 \x81\x40"), "\x85\x81\x40");
}

TEST(StringStripWhiteSpaceAInPage1252, TakesNoBreakSpacesAsTheRuntimeDoes) {
    VEXA_NEEDS_PAGE(1252);
    const bool isBlank = isNoBreakSpaceBlank();
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceA, "\xA0 a"), isBlank ? "a" : "\xA0 a");
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceA, "a \xA0"), isBlank ? "a" : "a \xA0");
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a\xA0z"), isBlank ? "az" : "a\xA0z");
}

TEST(StringStripWhiteSpaceAInPage65001, LeavesBytesAbove127) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(edited(string_stripWhiteSpaceA, "a\xE3\x80\x80 \xC2\xA0"), "a\xE3\x80\x80\xC2\xA0");
}

}  // namespace

}  // namespace vexa::test
