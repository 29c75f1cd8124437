#include "tests/support/wide_text.h"
#include "vexakit/strings.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cwctype>
#include <iterator>
#include <limits>
#include <ostream>
#include <random>
#include <utility>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::uint32_t kAll = std::numeric_limits<std::uint32_t>::max();

GuardedText holding(const WideString& text) {
    GuardedText array(text.size() + 1);
    std::copy_n(text.c_str(), text.size() + 1, array.data());
    return array;
}

/// The text after an edit that has to return what it was given and to stay within it.
template <class Edit, class... Arguments>
WideString edited(Edit edit, const WideString& text, Arguments... arguments) {
    GuardedText array = holding(text);
    EXPECT_EQ(edit(array.data(), arguments...), array.data()) << readable(text);
    EXPECT_TRUE(array.areGuardsUntouched()) << readable(text);
    return array.text();
}

/// The control characters of the runtime's "C" locale.
bool isControl(unsigned unit) {
#ifdef _WIN32
    return std::iswcntrl(static_cast<std::wint_t>(unit)) != 0;
#else
    constexpr std::pair<unsigned, unsigned> kControls[] = {
        {0x0000, 0x001F}, {0x007F, 0x009F}, {0x0600, 0x0605}, {0x061C, 0x061C}, {0x06DD, 0x06DD},
        {0x070F, 0x070F}, {0x0890, 0x0891}, {0x08E2, 0x08E2}, {0x180E, 0x180E}, {0x200B, 0x200F},
        {0x202A, 0x202E}, {0x2060, 0x2064}, {0x2066, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB},
    };
    return std::any_of(std::begin(kControls), std::end(kControls), [unit](const auto& range) {
        return range.first <= unit && unit <= range.second;
    });
#endif
}

struct SpaceCase {
    const char* name;
    WideString text;
    WideString withoutLead;
    WideString withoutTrail;
    WideString withoutAny;
};

void PrintTo(const SpaceCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const SpaceCase kSpaces[] = {
    {"None", wide("abc"), wide("abc"), wide("abc"), wide("abc")},
    {"Empty", wide(""), wide(""), wide(""), wide("")},
    {"One", wide(" "), wide(""), wide(""), wide("")},
    {"Alone", wide(" \t\n\v\f\r "), wide(""), wide(""), wide("")},
    {"AtBothEnds", wide("  a b  "), wide("a b  "), wide("  a b"), wide("ab")},
    {"SideBySideInside", wide("a  b"), wide("a  b"), wide("a  b"), wide("ab")},
    {"ManySideBySide", wide("   a   b   "), wide("a   b   "), wide("   a   b"), wide("ab")},
    {"EveryAsciiOne", wide("\t\n\v\f\r x\t\n\v\f\r "), wide("x\t\n\v\f\r "), wide("\t\n\v\f\r x"),
     wide("x")},
    {"OtherControlsStay", wide("\x01 a \x1F"), wide("\x01 a \x1F"), wide("\x01 a \x1F"),
     wide("\x01"
          "a\x1F")},
    {"Ideographic",
     {0x3000, 'a', 0x3000, 'b', 0x3000},
     {'a', 0x3000, 'b', 0x3000},
     {0x3000, 'a', 0x3000, 'b'},
     {'a', 'b'}},
    {"LowByteOfABlank",
     {0x0120, 0x2020, 0x0120},
     {0x0120, 0x2020, 0x0120},
     {0x0120, 0x2020, 0x0120},
     {0x0120, 0x2020, 0x0120}},
    {"LoneSurrogates",
     {' ', 0xD800, ' ', 0xFFFF, ' '},
     {0xD800, ' ', 0xFFFF, ' '},
     {' ', 0xD800, ' ', 0xFFFF},
     {0xD800, 0xFFFF}},
};

class WideWhiteSpace : public testing::TestWithParam<SpaceCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideWhiteSpace, testing::ValuesIn(kSpaces),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideWhiteSpace, IsStrippedFromTheStart) {
    EXPECT_EQ(edited(string_stripLeadWhiteSpaceW, GetParam().text), GetParam().withoutLead);
}

TEST_P(WideWhiteSpace, IsStrippedFromTheEnd) {
    EXPECT_EQ(edited(string_stripTrailWhiteSpaceW, GetParam().text), GetParam().withoutTrail);
}

TEST_P(WideWhiteSpace, IsStrippedEverywhere) {
    EXPECT_EQ(edited(string_stripWhiteSpaceW, GetParam().text), GetParam().withoutAny);
}

TEST(WideWhiteSpace, OfNullIsNull) {
    EXPECT_EQ(string_stripLeadWhiteSpaceW(nullptr), nullptr);
    EXPECT_EQ(string_stripTrailWhiteSpaceW(nullptr), nullptr);
    EXPECT_EQ(string_stripWhiteSpaceW(nullptr), nullptr);
}

TEST(WideWhiteSpace, AtTheEndBecomesTerminators) {
    GuardedText text = holding(wide("ab \t "));
    string_stripTrailWhiteSpaceW(text.data());

    EXPECT_EQ(text.text(), wide("ab"));
    for (std::size_t index = 2; index < text.size(); ++index) EXPECT_EQ(text[index], 0);
}

struct CharacterCase {
    const char* name;
    WideString text;
    VexaWChar character;
    WideString result;
};

void PrintTo(const CharacterCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const CharacterCase kCharacters[] = {
    {"Every", wide("a.b.c"), '.', wide("abc")},
    {"FirstAndLast", wide(".abc."), '.', wide("abc")},
    {"OfTwoTheFirst", wide("a..b"), '.', wide("a.b")},
    {"OfThreeTheFirstAndTheThird", wide("a...b"), '.', wide("a.b")},
    {"OfFourEverySecond", wide("a....b"), '.', wide("a..b")},
    {"OfTwoAlone", wide(".."), '.', wide(".")},
    {"OfThreeAlone", wide("..."), '.', wide(".")},
    {"Alone", wide("."), '.', wide("")},
    {"OfTwoAtTheEnd", wide("a.."), '.', wide("a.")},
    {"OfTwoAtTheStart", wide("..a"), '.', wide(".a")},
    {"WithOneBetween", wide(".a.a."), '.', wide("aa")},
    {"None", wide("abc"), '.', wide("abc")},
    {"Empty", wide(""), '.', wide("")},
    {"TheTerminator", wide("abc"), 0, wide("abc")},
    {"TheTerminatorOfEmptyText", wide(""), 0, wide("")},
    {"WholeUnitsAreCompared", {0x0161, 'a', 0x6161}, 'a', {0x0161, 0x6161}},
    {"HalfOfAPair", {0xD83D, 0xDE00, 'a'}, 0xDE00, {0xD83D, 'a'}},
    {"GreatestUnit", {'a', 0xFFFF, 0xD800}, 0xFFFF, {'a', 0xD800}},
};

class StringStripCharW : public testing::TestWithParam<CharacterCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringStripCharW, testing::ValuesIn(kCharacters),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringStripCharW, StepsPastTheUnitThatMovedIntoPlace) {
    const CharacterCase& row = GetParam();
    EXPECT_EQ(edited(string_stripCharW, row.text, row.character), row.result);
}

TEST(StringStripCharW, OfNullIsNull) {
    EXPECT_EQ(string_stripCharW(nullptr, 'a'), nullptr);
}

struct ControlCase {
    const char* name;
    WideString text;
    WideString result;
};

void PrintTo(const ControlCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const ControlCase kControls[] = {
    {"None", wide("abc"), wide("abc")},
    {"Empty", wide(""), wide("")},
    {"One", wide("\x01"), wide("")},
    {"Alone", wide("\x01\x02\x03"), wide("")},
    {"AtTheEnd", wide("ab\x01"), wide("ab")},
    {"RunAtTheEnd", wide("ab\x01\x02\x03"), wide("ab")},
    {"InsideLeavesTheOldTail",
     wide("ab\x01"
          "c"),
     wide("abcc")},
    {"AtTheStartLeavesTheOldTail",
     wide("\x01"
          "ab"),
     wide("abb")},
    {"OneCharacterBehind",
     wide("\x01"
          "a"),
     wide("aa")},
    {"RunLeavesAsLongATail",
     wide("a\x01\x02"
          "bcd"),
     wide("abcdcd")},
    {"TailMayBeginWithAControl",
     wide("a\x01\x02"
          "b"),
     wide("ab\x02"
          "b")},
    {"TwoRunsWithAnOrdinaryEnd",
     wide("a\x01"
          "b\x01"
          "c"),
     wide("abc\x01"
          "c")},
    {"InsideAndAtTheEnd",
     wide("a\x01"
          "b\x02"),
     wide("ab")},
    {"EverywhereAndAtTheEnd",
     wide("\x01"
          "a\x02\x03"
          "b\x04\x05"),
     wide("ab")},
    {"WhiteSpaceThatControls", wide("a\tb\r\n"), wide("ab")},
    {"DeleteAndAbove", {'a', 0x7F, 0x80, 0x9F, 'b', 0x1F}, {'a', 'b'}},
    {"BlanksStay", {' ', 'a', 0xA0, 0x01}, {' ', 'a', 0xA0}},
    {"LowByteOfAControl", {0x0101, 0x0201, 0x01}, {0x0101, 0x0201}},
    {"LoneSurrogates", {0xD800, 0x01, 0xFFFF, 0xDC01, 0x01}, {0xD800, 0xFFFF, 0xDC01}},
};

class StringStripCtlCharW : public testing::TestWithParam<ControlCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringStripCtlCharW, testing::ValuesIn(kControls),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringStripCtlCharW, LeavesWhatStoodBehindAnOrdinaryEnd) {
    EXPECT_EQ(edited(string_stripCtlCharW, GetParam().text), GetParam().result);
}

TEST(StringStripCtlCharW, OfNullIsNull) {
    EXPECT_EQ(string_stripCtlCharW(nullptr), nullptr);
}

TEST(StringStripCtlCharW, KnowsEveryUnit) {
    for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
        const auto character = static_cast<VexaWChar>(unit);
        const WideString expected = isControl(unit) ? WideString() : WideString(1, character);
        ASSERT_EQ(edited(string_stripCtlCharW, WideString(1, character)), expected)
            << "unit " << unit;
    }
}

TEST(StringStripCtlCharW, KeepsTheRandomOthersInOrder) {
    const std::uint32_t seed = std::random_device()();
    std::mt19937 random(seed);
    for (int round = 0; round < 2000; ++round) {
        WideString text(random() % 12, 'a');
        for (VexaWChar& unit : text) {
            unit =
                static_cast<VexaWChar>(random() % 3 == 0 ? 1 + random() % 9 : 'a' + random() % 9);
        }
        WideString kept = text;
        std::erase_if(kept, [](VexaWChar unit) { return isControl(unit); });
        const bool endsOrdinary = !text.empty() && !isControl(text.back());
        const WideString tail = endsOrdinary ? text.substr(kept.size()) : WideString();

        ASSERT_EQ(edited(string_stripCtlCharW, text), kept + tail)
            << "seed " << seed << ": " << readable(text);
    }
}

struct CountedCase {
    const char* name;
    WideString text;
    VexaWChar character;
    std::uint32_t count;
    WideString withoutLeading;
    WideString withoutTrailing;
};

void PrintTo(const CountedCase& row, std::ostream* out) {
    *out << readable(row.text) << " by " << row.count;
}

const CountedCase kCounted[] = {
    {"FewerThanThere", wide("...a..."), '.', 2, wide(".a..."), wide("...a.")},
    {"AsManyAsThere", wide("...a..."), '.', 3, wide("a..."), wide("...a")},
    {"MoreThanThere", wide("...a..."), '.', 9, wide("a..."), wide("...a")},
    {"AllOfThem", wide("...a..."), '.', kAll, wide("a..."), wide("...a")},
    {"One", wide("..a.."), '.', 1, wide(".a.."), wide("..a.")},
    {"NoneAskedFor", wide("..a.."), '.', 0, wide("..a.."), wide("..a..")},
    {"NoneThere", wide("a..a"), '.', 9, wide("a..a"), wide("a..a")},
    {"NothingElse", wide("..."), '.', kAll, wide(""), wide("")},
    {"NothingElseButOneLeft", wide("..."), '.', 2, wide("."), wide(".")},
    {"Empty", wide(""), '.', 3, wide(""), wide("")},
    {"TheTerminator", wide("abc"), 0, 2, wide("abc"), wide("abc")},
    {"TheTerminatorOfEmptyText", wide(""), 0, 2, wide(""), wide("")},
    {"InsideStays", wide(".a.b."), '.', kAll, wide("a.b."), wide(".a.b")},
    {"WholeUnitsAreCompared", {'a', 0x0161, 'a'}, 'a', kAll, {0x0161, 'a'}, {'a', 0x0161}},
    {"HalfOfAPair",
     {0xDE00, 'x', 0xD83D, 0xDE00},
     0xDE00,
     kAll,
     {'x', 0xD83D, 0xDE00},
     {0xDE00, 'x', 0xD83D}},
    {"GreatestUnit", {0xFFFF, 'a', 0xFFFF}, 0xFFFF, 1, {'a', 0xFFFF}, {0xFFFF, 'a'}},
};

class WideCountedCharacter : public testing::TestWithParam<CountedCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideCountedCharacter, testing::ValuesIn(kCounted),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideCountedCharacter, IsStrippedFromTheStart) {
    const CountedCase& row = GetParam();
    EXPECT_EQ(edited(string_stripLeadingCharW, row.text, row.character, row.count),
              row.withoutLeading);
}

TEST_P(WideCountedCharacter, IsStrippedFromTheEnd) {
    const CountedCase& row = GetParam();
    EXPECT_EQ(edited(string_stripTrailingCharW, row.text, row.character, row.count),
              row.withoutTrailing);
}

TEST(WideCountedCharacter, OfNullIsNull) {
    EXPECT_EQ(string_stripLeadingCharW(nullptr, 'a', 1), nullptr);
    EXPECT_EQ(string_stripTrailingCharW(nullptr, 'a', 1), nullptr);
}

struct CountedControlCase {
    const char* name;
    WideString text;
    std::uint32_t count;
    WideString withoutLeading;
    WideString withoutTrailing;
};

void PrintTo(const CountedControlCase& row, std::ostream* out) {
    *out << readable(row.text) << " by " << row.count;
}

const CountedControlCase kCountedControls[] = {
    {"FewerThanThere",
     wide("\x01\x02\x03"
          "a\x04\x05\x06"),
     2,
     wide("\x03"
          "a\x04\x05\x06"),
     wide("\x01\x02\x03"
          "a\x04")},
    {"AsManyAsThere",
     wide("\x01\x02"
          "a\x04\x05"),
     2, wide("a\x04\x05"),
     wide("\x01\x02"
          "a")},
    {"AllOfThem",
     wide("\x01\x02"
          "a\x04\x05"),
     kAll, wide("a\x04\x05"),
     wide("\x01\x02"
          "a")},
    {"NoneAskedFor",
     wide("\x01"
          "a\x02"),
     0,
     wide("\x01"
          "a\x02"),
     wide("\x01"
          "a\x02")},
    {"NoneThere",
     wide("a\x01"
          "b"),
     9,
     wide("a\x01"
          "b"),
     wide("a\x01"
          "b")},
    {"NothingElse", wide("\x01\x02\x03"), kAll, wide(""), wide("")},
    {"NothingElseButOneLeft", wide("\x01\x02\x03"), 2, wide("\x03"), wide("\x01")},
    {"Empty", wide(""), 3, wide(""), wide("")},
    {"WhiteSpaceThatControls", wide("\t\r\n a \t\r\n"), kAll, wide(" a \t\r\n"), wide("\t\r\n a ")},
    {"DeleteAndAbove",
     {0x7F, 0x9F, 0xA0, 0x80, 0x7F},
     kAll,
     {0xA0, 0x80, 0x7F},
     {0x7F, 0x9F, 0xA0}},
    {"ByteOrderMark", {0xFEFF, 'a', 0xFEFF}, kAll, {'a', 0xFEFF}, {0xFEFF, 'a'}},
    {"LowByteOfAControl",
     {0x0101, 'a', 0x0201},
     kAll,
     {0x0101, 'a', 0x0201},
     {0x0101, 'a', 0x0201}},
    {"LoneSurrogates", {0x01, 0xD801, 0x01}, kAll, {0xD801, 0x01}, {0x01, 0xD801}},
};

class WideCountedControl : public testing::TestWithParam<CountedControlCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideCountedControl, testing::ValuesIn(kCountedControls),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideCountedControl, IsStrippedFromTheStart) {
    const CountedControlCase& row = GetParam();
    EXPECT_EQ(edited(string_stripLeadingCtlCharW, row.text, row.count), row.withoutLeading);
}

TEST_P(WideCountedControl, IsStrippedFromTheEnd) {
    const CountedControlCase& row = GetParam();
    EXPECT_EQ(edited(string_stripTrailingCtlCharW, row.text, row.count), row.withoutTrailing);
}

TEST(WideCountedControl, OfNullIsNull) {
    EXPECT_EQ(string_stripLeadingCtlCharW(nullptr, 1), nullptr);
    EXPECT_EQ(string_stripTrailingCtlCharW(nullptr, 1), nullptr);
}

}  // namespace
}  // namespace vexa::test
