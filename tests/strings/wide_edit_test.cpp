#include "tests/support/wide_text.h"
#include "vexakit/strings.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

/// The text, editable, in an array that ends with it unless some room is left behind.
GuardedText holding(const WideString& text, std::size_t room = 0) {
    GuardedText array(text.size() + 1 + room);
    std::copy_n(text.c_str(), text.size() + 1, array.data());
    return array;
}

struct LetterCase {
    const char* name;
    WideString text;
    WideString upper;
    WideString lower;
};

void PrintTo(const LetterCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const LetterCase kLetters[] = {
    {"Ascii", wide("Hello, World 12"), wide("HELLO, WORLD 12"), wide("hello, world 12")},
    {"WholeAlphabet", wide("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"),
     wide("ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHIJKLMNOPQRSTUVWXYZ"),
     wide("abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz")},
    {"BesideTheLetters", wide("@[`{"), wide("@[`{"), wide("@[`{")},
    {"Empty", wide(""), wide(""), wide("")},
    {"BeyondAscii",
     {0xE9, 0xC9, 0x3B1, 0x391, 0x430, 0x410, 0xFF41, 0xFF21},
     {0xE9, 0xC9, 0x3B1, 0x391, 0x430, 0x410, 0xFF41, 0xFF21},
     {0xE9, 0xC9, 0x3B1, 0x391, 0x430, 0x410, 0xFF41, 0xFF21}},
    {"LoneSurrogates",
     {'a', 0xD800, 'B', 0xDC61, 0xFFFF},
     {'A', 0xD800, 'B', 0xDC61, 0xFFFF},
     {'a', 0xD800, 'b', 0xDC61, 0xFFFF}},
};

class WideLetters : public testing::TestWithParam<LetterCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideLetters, testing::ValuesIn(kLetters),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideLetters, BecomeUpper) {
    GuardedText text = holding(GetParam().text);

    EXPECT_EQ(string_toUpperW(text.data()), text.data());
    EXPECT_EQ(text.text(), GetParam().upper);
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST_P(WideLetters, BecomeLower) {
    GuardedText text = holding(GetParam().text);

    EXPECT_EQ(string_toLowerW(text.data()), text.data());
    EXPECT_EQ(text.text(), GetParam().lower);
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST(WideLetters, AreTheAsciiOnesAmongAllUnits) {
    WideString every;
    for (unsigned unit = 1; unit <= 0xFFFF; ++unit) every += static_cast<VexaWChar>(unit);
    WideString upper = every;
    WideString lower = every;
    for (int letter = 0; letter < 26; ++letter) {
        upper[static_cast<std::size_t>('a' + letter - 1)] = static_cast<VexaWChar>('A' + letter);
        lower[static_cast<std::size_t>('A' + letter - 1)] = static_cast<VexaWChar>('a' + letter);
    }

    WideString text = every;
    string_toUpperW(text.data());
    EXPECT_TRUE(text == upper);

    text = every;
    string_toLowerW(text.data());
    EXPECT_TRUE(text == lower);
}

TEST(WideLetters, OfNullAreNull) {
    EXPECT_EQ(string_toUpperW(nullptr), nullptr);
    EXPECT_EQ(string_toLowerW(nullptr), nullptr);
}

struct ReplacementCase {
    const char* name;
    WideString text;
    VexaWChar from;
    VexaWChar to;
    WideString result;
};

void PrintTo(const ReplacementCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const ReplacementCase kReplacements[] = {
    {"Every", wide("a.b.c"), '.', ',', wide("a,b,c")},
    {"FirstAndLast", wide("xax"), 'x', 'y', wide("yay")},
    {"SideBySide", wide("aaa"), 'a', 'b', wide("bbb")},
    {"None", wide("abc"), 'x', 'y', wide("abc")},
    {"ByItself", wide("abc"), 'b', 'b', wide("abc")},
    {"InTheOtherCase", wide("aAa"), 'A', 'b', wide("aba")},
    {"Empty", wide(""), 'a', 'b', wide("")},
    {"NotTheTerminator", wide("abc"), 0, 'x', wide("abc")},
    {"NotTheTerminatorOfEmptyText", wide(""), 0, 'x', wide("")},
    {"ByATerminator", wide("abc"), 'b', 0, wide("a")},
    {"WholeUnitsAreCompared", {0x0161, 0x6100, 'a'}, 'a', 'b', {0x0161, 0x6100, 'b'}},
    {"HalfOfAPair", {0xD83D, 0xDE00}, 0xDE00, 0xDE01, {0xD83D, 0xDE01}},
    {"ByTheGreatestUnit", wide("a"), 'a', 0xFFFF, {0xFFFF}},
    {"TheGreatestUnit", {0xFFFF, 0x00FF}, 0xFFFF, 'a', {'a', 0x00FF}},
};

class StringReplaceCharW : public testing::TestWithParam<ReplacementCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringReplaceCharW, testing::ValuesIn(kReplacements),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringReplaceCharW, PutsOneUnitForAnother) {
    const ReplacementCase& row = GetParam();
    GuardedText text = holding(row.text);

    EXPECT_EQ(string_replaceCharW(text.data(), row.from, row.to), text.data());
    EXPECT_EQ(text.text(), row.result);
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST(StringReplaceCharW, OfNullIsNull) {
    EXPECT_EQ(string_replaceCharW(nullptr, 'a', 'b'), nullptr);
}

struct EditCase {
    const char* name;
    WideString text;
    WideString result;
};

void PrintTo(const EditCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const EditCase kNewlines[] = {
    {"SmallLetter", wide(R"(a\nb)"), wide("a\nb")},
    {"CapitalLetter", wide(R"(a\Nb)"), wide("a\nb")},
    {"Alone", wide(R"(\n)"), wide("\n")},
    {"AtTheEnd", wide(R"(ab\n)"), wide("ab\n")},
    {"SideBySide", wide(R"(\n\N\n)"), wide("\n\n\n")},
    {"RemovesOneLetterOnly", wide(R"(\nn)"), wide("\nn")},
    {"BackslashAtTheEndStays", wide(R"(ab\)"), wide(R"(ab\)")},
    {"BackslashAloneStays", wide(R"(\)"), wide(R"(\)")},
    {"OtherLettersStay", wide(R"(a\tb\r)"), wide(R"(a\tb\r)")},
    {"OfTwoBackslashesTheSecondCounts", wide(R"(\\n)"), wide("\\\n")},
    {"BackslashesAloneStay", wide(R"(\\\)"), wide(R"(\\\)")},
    {"LettersAloneStay", wide("nNn"), wide("nNn")},
    {"NothingNewIsReadWhereTextMoved", wide(R"(\\nn)"), wide("\\\nn")},
    {"Several", wide(R"(one\ntwo\Nthree)"), wide("one\ntwo\nthree")},
    {"Empty", wide(""), wide("")},
    {"LowByteOfALetter", {'\\', 0x016E, 0x5C5C, 'n'}, {'\\', 0x016E, 0x5C5C, 'n'}},
    {"LoneSurrogatesMove", {'\\', 'n', 0xD800, '\\', 'N', 0xFFFF}, {'\n', 0xD800, '\n', 0xFFFF}},
};

class StringReplaceCRW : public testing::TestWithParam<EditCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringReplaceCRW, testing::ValuesIn(kNewlines),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringReplaceCRW, PutsLineFeedsForTheTwoCharacters) {
    GuardedText text = holding(GetParam().text);

    EXPECT_EQ(string_replaceCRW(text.data()), text.data());
    EXPECT_EQ(text.text(), GetParam().result);
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST(StringReplaceCRW, OfNullIsNull) {
    EXPECT_EQ(string_replaceCRW(nullptr), nullptr);
}

TEST(StringReplaceCRW, ReplacesManyInOneGo) {
    constexpr std::size_t kLines = 50'000;
    WideString text;
    for (std::size_t line = 0; line < kLines; ++line) text += wide(R"(x\n)");
    WideString result;
    for (std::size_t line = 0; line < kLines; ++line) result += wide("x\n");
    GuardedText array = holding(text);

    string_replaceCRW(array.data());
    EXPECT_TRUE(array.text() == result);
}

const EditCase kSeparators[] = {
    {"Appended", wide(R"(C:\dir)"), wide(R"(C:\dir\)")},
    {"Already", wide(R"(C:\dir\)"), wide(R"(C:\dir\)")},
    {"OneOfSeveral", wide(R"(C:\dir\\)"), wide(R"(C:\dir\\)")},
    {"Empty", wide(""), wide(R"(\)")},
    {"BackslashAlone", wide(R"(\)"), wide(R"(\)")},
    {"OneCharacter", wide("a"), wide(R"(a\)")},
    {"SlashIsNone", wide("dir/"), wide(R"(dir/\)")},
    {"LowByteOfABackslash", {'a', 0x015C}, {'a', 0x015C, '\\'}},
    {"LoneSurrogate", {0xDC5C}, {0xDC5C, '\\'}},
};

class StringAddFileSeperatorW : public testing::TestWithParam<EditCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringAddFileSeperatorW, testing::ValuesIn(kSeparators),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringAddFileSeperatorW, AppendsAMissingBackslash) {
    const std::size_t added = GetParam().result.size() - GetParam().text.size();
    GuardedText text = holding(GetParam().text, added);

    EXPECT_EQ(string_addFileSeperatorW(text.data()), text.data());
    EXPECT_EQ(text.text(), GetParam().result);
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST(StringAddFileSeperatorW, OfNullIsNull) {
    EXPECT_EQ(string_addFileSeperatorW(nullptr), nullptr);
}

}  // namespace
}  // namespace vexa::test
