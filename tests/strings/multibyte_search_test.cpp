#include "tests/support/active_page.h"
#include "tests/support/guarded_bytes.h"
#include "vexakit/strings.h"

#include <cstddef>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

// ---- Measuring ----------------------------------------------------------------------------------

TEST(StringNumCharsA, CountsAsciiByBytes) {
    EXPECT_EQ(string_numCharsA(nullptr), 0U);
    EXPECT_EQ(counted(string_numCharsA, ""), 0U);
    EXPECT_EQ(counted(string_numCharsA, "a"), 1U);
    EXPECT_EQ(counted(string_numCharsA, "C:\\dir\t\n"), 8U);
    EXPECT_EQ(counted(string_numCharsA, std::string(100'000, 'x')), 100'000U);
}

TEST(StringNumCharsAInPage932, CountsTwoBytesOnce) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(counted(string_numCharsA, "\x83\x5C"), 1U);
    EXPECT_EQ(counted(string_numCharsA, "a\x83\x5C\x83\x61z"), 4U);
    EXPECT_EQ(counted(string_numCharsA, "\x83\x83\x5C"), 2U);
    EXPECT_EQ(counted(string_numCharsA, "\xB1\xDF"), 2U) << "half-width kana";
}

TEST(StringNumCharsAInPage932, LeavesOutALeadByteBeforeTheTerminator) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(counted(string_numCharsA, "\x83"), 0U);
    EXPECT_EQ(counted(string_numCharsA, "a\x83"), 1U);
    EXPECT_EQ(counted(string_numCharsA, "\x83\x5C\x83"), 1U);
}

TEST(StringNumCharsAInPage1252, CountsEveryByte) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(counted(string_numCharsA, "\x83\x5C\xE9\x83"), 4U);
}

TEST(StringNumCharsAInPage65001, CountsEveryByte) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(counted(string_numCharsA, "a\xC3\xA9\xE3\x82\xBD\xF0"), 7U);
}

TEST(StringSafeLengthA, CountsBytesInEveryPage) {
    EXPECT_EQ(string_safeLengthA(nullptr), 0U);
    EXPECT_EQ(counted(string_safeLengthA, ""), 0U);
    EXPECT_EQ(counted(string_safeLengthA, "abc"), 3U);
    EXPECT_EQ(counted(string_safeLengthA, "\x83\x5C\xC3\xA9\x83"), 5U);
}

TEST(StringGetCharCountA, CountsTheCharacter) {
    EXPECT_EQ(string_getCharCountA(nullptr, 'a'), 0U);
    EXPECT_EQ(counted(string_getCharCountA, "", 'a'), 0U);
    EXPECT_EQ(counted(string_getCharCountA, "bcd", 'a'), 0U);
    EXPECT_EQ(counted(string_getCharCountA, "banana", 'a'), 3U);
    EXPECT_EQ(counted(string_getCharCountA, "aaaa", 'a'), 4U);
    EXPECT_EQ(counted(string_getCharCountA, "banana", 'A'), 0U);
}

TEST(StringGetCharCountA, DoesNotTakeTheTerminatorForACharacter) {
    EXPECT_EQ(string_getCharCountA(nullptr, '\0'), 0U);
    EXPECT_EQ(counted(string_getCharCountA, "", '\0'), 0U);
    EXPECT_EQ(counted(string_getCharCountA, "abc", '\0'), 0U);
}

TEST(StringGetCharCountAInPage932, SeesWholeCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(counted(string_getCharCountA, "a\x83\x61za", 'a'), 2U);
    EXPECT_EQ(counted(string_getCharCountA, "\x83\x5C\\\x83\x5C", '\\'), 1U);
    EXPECT_EQ(counted(string_getCharCountA, "\x83\x5C\\\x83\x5C", 0x835C), 2U);
    EXPECT_EQ(counted(string_getCharCountA, "\x83\x83\x5C", 0x835C), 0U);
    EXPECT_EQ(counted(string_getCharCountA, "\x83\x83\x83\x5C", 0x8383), 1U);
    EXPECT_EQ(counted(string_getCharCountA, "\x83\x5C", 0x83), 0U);
    EXPECT_EQ(counted(string_getCharCountA, "\xB1\x83\xB1", 0xB1), 1U);
}

TEST(StringGetCharCountAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    for (const unsigned character : {unsigned{' '}, unsigned{'a'}, unsigned{'\\'}, 0x8361U}) {
        EXPECT_EQ(counted(string_getCharCountA, "x\x83", character), 0U) << character;
    }
}

TEST(StringGetCharCountAInPage1252, LooksAtTheLowEightBits) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(counted(string_getCharCountA, "\x83\x5C\xE9\xE9", 0xE9), 2U);
    EXPECT_EQ(counted(string_getCharCountA, "\x83\x5C", 0x835C), 1U);
    EXPECT_EQ(counted(string_getCharCountA, "abc", 0x100), 0U);
}

// ---- Stepping -----------------------------------------------------------------------------------

TEST(StringIncrementA, StepsOverOneCharacter) {
    EXPECT_EQ(string_incrementA(nullptr), nullptr);
    EXPECT_EQ(found(string_incrementA, "ab"), 1);
    EXPECT_EQ(found(string_incrementA, "b"), 1);
}

TEST(StringIncrementA, StepsPastTheTerminator) {
    EXPECT_EQ(found(string_incrementA, ""), 1);
}

TEST(StringIncrementAInPage932, StepsOverTwoBytes) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(found(string_incrementA, "\x83\x5Cz"), 2);
    EXPECT_EQ(found(string_incrementA, "\x83\x83\x5C"), 2);
    EXPECT_EQ(found(string_incrementA, "\xB1\x5C"), 1);
}

TEST(StringIncrementAInPage932, StepsOneOverALeadByteBeforeTheTerminator) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(found(string_incrementA, "\x83"), 1);
}

TEST(StringIncrementAInPage1252, StepsByBytes) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(found(string_incrementA, "\x83\x5C"), 1);
}

TEST(StringIncrementAInPage65001, StepsByBytes) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(found(string_incrementA, "\xC3\xA9"), 1);
    EXPECT_EQ(found(string_incrementA, "\xE3\x82\xBD"), 1);
}

// The index of the character before the one at `position`, in the text from `start` on.
std::ptrdiff_t before(std::string_view text, std::ptrdiff_t position, std::ptrdiff_t start = 0) {
    return whateverIsAround(text, 0, [&](GuardedBytes& bytes) {
        const char* const result = string_decrementA(bytes.data() + start, bytes.data() + position);
        return result ? result - bytes.data() : kNowhere;
    });
}

TEST(StringDecrementA, StepsBackOneCharacter) {
    EXPECT_EQ(before("abc", 1), 0);
    EXPECT_EQ(before("abc", 3), 2);
    EXPECT_EQ(before("abc", 3, 2), 2);
}

TEST(StringDecrementA, GivesNullForNullAndForAPositionThatIsNotBehindTheStart) {
    const char text[] = "abc";
    EXPECT_EQ(string_decrementA(nullptr, text), nullptr);
    EXPECT_EQ(string_decrementA(text, nullptr), nullptr);
    EXPECT_EQ(string_decrementA(nullptr, nullptr), nullptr);
    EXPECT_EQ(before("abc", 0), kNowhere);
    EXPECT_EQ(before("abc", 2, 2), kNowhere);
    EXPECT_EQ(before("abc", 1, 2), kNowhere);
    EXPECT_EQ(before("", 0), kNowhere);
}

TEST(StringDecrementAInPage932, FindsTheStartOfACharacter) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(before("a\x83\x5C", 3), 1);
    EXPECT_EQ(before("a\x83\x5C", 1), 0);
    EXPECT_EQ(before("\x83\x5C\x83\x61", 4), 2);
    EXPECT_EQ(before("\x83\x5C\x83\x61", 2), 0);
    EXPECT_EQ(before("\xB1\xB1", 2), 1);
}

TEST(StringDecrementAInPage932, TellsTrailBytesThatLookLikeLeadBytes) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(before("\x83\x83\x5C", 3), 2);
    EXPECT_EQ(before("\x83\x83\x5C", 2), 0);
    EXPECT_EQ(before("a\x83\x83\x83\x83", 5), 3);
    EXPECT_EQ(before("a\x83\x83\x83\x83\x5C", 6), 5);
    EXPECT_EQ(before("a\x83\x83\x83\x83\x5C", 5, 3), 3);
}

TEST(StringDecrementAInPage932, StepsOneOverALeadByteBeforeTheTerminator) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(before("\x83", 1), 0);
    EXPECT_EQ(before("a\x83", 2), 1);
    EXPECT_EQ(before("\x83\x5C\x83", 3), 2);
}

TEST(StringDecrementAInPage65001, StepsByBytes) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(before("\xE3\x82\xBD", 3), 2);
    EXPECT_EQ(before("\xE3\x82\xBD", 2), 1);
}

TEST(StringGetLastCharA, PointsAtTheLastOfSingleByteText) {
    EXPECT_EQ(string_getLastCharA(nullptr), nullptr);
    EXPECT_EQ(found(string_getLastCharA, ""), kNowhere);
    EXPECT_EQ(found(string_getLastCharA, "a"), 0);
    EXPECT_EQ(found(string_getLastCharA, "abc"), 2);
}

// callers see an offset in bytes made of a number of characters
TEST(StringGetLastCharAInPage932, IsOneByteTooFarInFrontForEachDoubleByteCharacter) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(found(string_getLastCharA, "\x83\x5C"), 0);
    EXPECT_EQ(found(string_getLastCharA, "\x83\x5Cz"), 1);
    EXPECT_EQ(found(string_getLastCharA, "ab\x83\x61"), 2);
    EXPECT_EQ(found(string_getLastCharA, "\x83\x5C\x83\x61z"), 2);
}

TEST(StringGetLastCharAInPage932, GivesNullForALoneLeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(found(string_getLastCharA, "\x83"), kNowhere);
    EXPECT_EQ(found(string_getLastCharA, "ab\x83"), 1);
}

TEST(StringGetLastCharAInPage65001, PointsAtTheLastByte) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(found(string_getLastCharA, "a\xC3\xA9"), 2);
}

// ---- Searching ----------------------------------------------------------------------------------

TEST(StringStrchrA, FindsTheFirst) {
    EXPECT_EQ(string_strchrA(nullptr, 'a'), nullptr);
    EXPECT_EQ(found(string_strchrA, "", 'a'), kNowhere);
    EXPECT_EQ(found(string_strchrA, "bcd", 'a'), kNowhere);
    EXPECT_EQ(found(string_strchrA, "banana", 'a'), 1);
    EXPECT_EQ(found(string_strchrA, "banana", 'b'), 0);
}

TEST(StringStrrchrA, FindsTheLast) {
    EXPECT_EQ(string_strrchrA(nullptr, 'a'), nullptr);
    EXPECT_EQ(found(string_strrchrA, "", 'a'), kNowhere);
    EXPECT_EQ(found(string_strrchrA, "bcd", 'a'), kNowhere);
    EXPECT_EQ(found(string_strrchrA, "banana", 'a'), 5);
    EXPECT_EQ(found(string_strrchrA, "banana", 'b'), 0);
}

TEST(StringStrchrA, FindsTheTerminator) {
    EXPECT_EQ(found(string_strchrA, "", '\0'), 0);
    EXPECT_EQ(found(string_strchrA, "abc", '\0'), 3);
    EXPECT_EQ(found(string_strrchrA, "", '\0'), 0);
    EXPECT_EQ(found(string_strrchrA, "abc", '\0'), 3);
}

TEST(StringStrchrAInPage932, SeesWholeCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(found(string_strchrA, "\x83\x5C\\", '\\'), 2);
    EXPECT_EQ(found(string_strchrA, "\x83\x61", 'a'), kNowhere);
    EXPECT_EQ(found(string_strchrA, "\x83\x5C\x83\x61\x83\x61", 0x8361), 2);
    EXPECT_EQ(found(string_strchrA, "\x83\x83\x5C", 0x835C), kNowhere);
    EXPECT_EQ(found(string_strchrA, "\x83\x5C", 0x83), kNowhere);
    EXPECT_EQ(found(string_strchrA, "\x83\x5C", '\0'), 2);
}

TEST(StringStrrchrAInPage932, SeesWholeCharacters) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(found(string_strrchrA, "\\\x83\x5C", '\\'), 0);
    EXPECT_EQ(found(string_strrchrA, "\x83\x61", 'a'), kNowhere);
    EXPECT_EQ(found(string_strrchrA, "\x83\x61\x83\x61\x83\x5C", 0x8361), 2);
    EXPECT_EQ(found(string_strrchrA, "\x83\x83\x5C", 0x835C), kNowhere);
    EXPECT_EQ(found(string_strrchrA, "\x83\x5C", '\0'), 2);
}

TEST(StringStrchrAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    for (const unsigned character : {unsigned{' '}, unsigned{'a'}, unsigned{'\\'}, 0x8361U}) {
        EXPECT_EQ(found(string_strchrA, "x\x83", character), kNowhere) << character;
        EXPECT_EQ(found(string_strrchrA, "x\x83", character), kNowhere) << character;
    }
    EXPECT_EQ(found(string_strchrA, "x\x83", 'x'), 0);
    EXPECT_EQ(found(string_strrchrA, "x\x83", 'x'), 0);
}

TEST(StringStrchrAInPage1252, LooksAtTheLowEightBits) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(found(string_strchrA, "\x83\x5C", '\\'), 1);
    EXPECT_EQ(found(string_strchrA, "ab", 0x8362), 1);
    EXPECT_EQ(found(string_strchrA, "a\xE9", 0xE9), 1);
    EXPECT_EQ(found(string_strchrA, "a\xE9", 0xFFFFFFE9), 1);
    EXPECT_EQ(found(string_strrchrA, "bab", 0x8362), 2);
    EXPECT_EQ(found(string_strrchrA, "\xE9z\xE9", 0xFFFFFFE9), 2);
}

TEST(StringStrchrAInPage65001, FindsBytes) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(found(string_strchrA, "\xC3\xA9\xC3\xA9", 0xA9), 1);
    EXPECT_EQ(found(string_strrchrA, "\xC3\xA9\xC3\xA9", 0xC3), 2);
}

TEST(StringStrstrA, FindsTheFirst) {
    EXPECT_EQ(found(string_strstrA, "banana", "ana"), 1);
    EXPECT_EQ(found(string_strstrA, "banana", "banana"), 0);
    EXPECT_EQ(found(string_strstrA, "banana", "a"), 1);
    EXPECT_EQ(found(string_strstrA, "aaab", "aab"), 1);
    EXPECT_EQ(found(string_strstrA, "banana", "Ana"), kNowhere);
    EXPECT_EQ(found(string_strstrA, "ban", "banana"), kNowhere);
    EXPECT_EQ(found(string_strstrA, "xban", "ana"), kNowhere);
}

TEST(StringStrstrA, GivesNullForNullAndEmptyText) {
    EXPECT_EQ(string_strstrA(nullptr, "a"), nullptr);
    EXPECT_EQ(string_strstrA("a", nullptr), nullptr);
    EXPECT_EQ(string_strstrA(nullptr, nullptr), nullptr);
    EXPECT_EQ(found(string_strstrA, "", "a"), kNowhere);
    EXPECT_EQ(found(string_strstrA, "a", ""), kNowhere);
    EXPECT_EQ(found(string_strstrA, "", ""), kNowhere);
}

TEST(StringStrstrAInPage932, FindsDoubleByteText) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(found(string_strstrA, "a\x83\x5C\x83\x61z", "\x83\x61"), 3);
    EXPECT_EQ(found(string_strstrA, "a\x83\x5C\x83\x61z", "\x83\x61z"), 3);
    EXPECT_EQ(found(string_strstrA, "\x83\x61\x83\x61\x83\x5C", "\x83\x61\x83\x5C"), 2);
}

struct WholeCase {
    const char* text;
    const char* part;
    std::ptrdiff_t place;
};

TEST(StringStrstrAInPage932, MatchesWholeCharacters) {
    VEXA_NEEDS_PAGE(932);
    constexpr WholeCase kCases[] = {{"\x83\x61", "a", kNowhere},
                                    {"\x83\x5C\\", "\\", 2},
                                    {"\x83\x83\x5C", "\x83\x5C", kNowhere},
                                    {"\x83\x83\x5C\x83\x5C", "\x83\x5C", 3},
                                    {"a\x83\x5C", "a\x83", kNowhere},
                                    {"a\x83\x5C"
                                     "a\x83",
                                     "a\x83", 3}};
    for (const auto& [text, part, place] : kCases) {
        EXPECT_EQ(found(string_strstrA, text, part), place)
            << testing::PrintToString(text) << ' ' << testing::PrintToString(part);
    }
}

TEST(StringStrstrAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(found(string_strstrA, "x\x83", "a"), kNowhere);
    EXPECT_EQ(found(string_strstrA, "x\x83", "\\\\"), kNowhere);
    EXPECT_EQ(found(string_strstrA, "x\x83", "\x83\x83"), kNowhere);
}

TEST(StringStrstrAInPage65001, FindsBytes) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(found(string_strstrA, "a\xC3\xA9z", "\xC3\xA9"), 1);
    EXPECT_EQ(found(string_strstrA, "a\xC3\xA9z", "\xA9z"), 2);
}

}  // namespace

}  // namespace vexa::test
