#include "tests/support/wide_text.h"
#include "vexakit/strings.h"

#include <cstddef>
#include <cstdint>
#include <cwctype>
#include <ostream>
#include <random>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::ptrdiff_t kNowhere = -1;

std::ptrdiff_t indexIn(const WideString& text, const VexaWChar* found) {
    return found ? found - text.c_str() : kNowhere;
}

/// The white space of the runtime's "C" locale.
bool isWhiteSpace(unsigned unit) {
#ifdef _WIN32
    return std::iswspace(static_cast<std::wint_t>(unit)) != 0;
#else
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20 || unit == 0xA0 || unit == 0x1680 ||
           (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 || unit == 0x2029 ||
           unit == 0x202F || unit == 0x205F || unit == 0x3000;
#endif
}

struct LengthCase {
    const char* name;
    std::size_t (*length)(const VexaWChar* text);
};

void PrintTo(const LengthCase& row, std::ostream* out) {
    *out << row.name;
}

class WideLength : public testing::TestWithParam<LengthCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideLength,
                         testing::Values(LengthCase{"numChars", &string_numCharsW},
                                         LengthCase{"safeLength", &string_safeLengthW}),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideLength, IsTheNumberOfUnits) {
    const auto length = GetParam().length;

    EXPECT_EQ(length(wide("").c_str()), 0U);
    EXPECT_EQ(length(wide("abc").c_str()), 3U);
    EXPECT_EQ(length(wide("a\xFF").c_str()), 2U);
    EXPECT_EQ(length(WideString(100'000, 'x').c_str()), 100'000U);
}

TEST_P(WideLength, CountsBothUnitsOfAPairAndLoneOnes) {
    const WideString text = {0xD83D, 0xDE00, 0xDC00, 0xD800, 0xFFFF, 0x0100};
    EXPECT_EQ(GetParam().length(text.c_str()), 6U);
}

TEST_P(WideLength, OfNullIsZero) {
    EXPECT_EQ(GetParam().length(nullptr), 0U);
}

struct StepCase {
    const char* name;
    VexaWChar* (*step)(const VexaWChar* position);
};

void PrintTo(const StepCase& row, std::ostream* out) {
    *out << row.name;
}

class WideStep : public testing::TestWithParam<StepCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideStep,
                         testing::Values(StepCase{"increment", &string_incrementW},
                                         StepCase{"nextChar", &string_nextCharW}),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideStep, GoesOneUnitOn) {
    const WideString text = {'a', 0xD83D, 0xDE00, 0xFFFF};
    for (std::size_t index = 0; index < text.size(); ++index) {
        EXPECT_EQ(GetParam().step(text.c_str() + index), text.c_str() + index + 1);
    }
}

TEST_P(WideStep, DoesNotStopAtTheTerminator) {
    const WideString text = wide("a");
    EXPECT_EQ(GetParam().step(text.c_str() + 1), text.c_str() + 2);
}

TEST_P(WideStep, OfNullIsNull) {
    EXPECT_EQ(GetParam().step(nullptr), nullptr);
}

TEST(StringDecrementW, GoesOneUnitBack) {
    const WideString text = {'a', 0xD83D, 0xDE00, 0xFFFF};
    for (std::size_t index = 1; index <= text.size(); ++index) {
        EXPECT_EQ(indexIn(text, string_decrementW(text.c_str(), text.c_str() + index)),
                  static_cast<std::ptrdiff_t>(index) - 1);
    }
}

TEST(StringDecrementW, IsNullAtTheStartAndBeforeIt) {
    const WideString text = wide("abc");
    const VexaWChar* const middle = text.c_str() + 1;

    EXPECT_EQ(string_decrementW(middle, middle), nullptr);
    EXPECT_EQ(string_decrementW(middle, text.c_str()), nullptr);
}

TEST(StringDecrementW, IsNullForNull) {
    const WideString text = wide("abc");

    EXPECT_EQ(string_decrementW(nullptr, text.c_str()), nullptr);
    EXPECT_EQ(string_decrementW(text.c_str(), nullptr), nullptr);
    EXPECT_EQ(string_decrementW(nullptr, nullptr), nullptr);
}

TEST(StringGetLastCharW, IsTheLastUnit) {
    const WideString one = wide("a");
    const WideString three = {'a', 0xD83D, 0xDE00};

    EXPECT_EQ(indexIn(one, string_getLastCharW(one.c_str())), 0);
    EXPECT_EQ(indexIn(three, string_getLastCharW(three.c_str())), 2);
}

TEST(StringGetLastCharW, IsNullWithoutOne) {
    EXPECT_EQ(string_getLastCharW(nullptr), nullptr);
    EXPECT_EQ(string_getLastCharW(wide("").c_str()), nullptr);
}

struct CharacterCase {
    const char* name;
    WideString text;
    VexaWChar character;
    std::ptrdiff_t first;
    std::ptrdiff_t last;
    std::size_t count;
};

void PrintTo(const CharacterCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const CharacterCase kCharacters[] = {
    {"Once", wide("abc"), 'b', 1, 1, 1},
    {"AtTheStart", wide("abc"), 'a', 0, 0, 1},
    {"AtTheEnd", wide("abc"), 'c', 2, 2, 1},
    {"SeveralTimes", wide("abcabca"), 'a', 0, 6, 3},
    {"SideBySide", wide("xaaax"), 'a', 1, 3, 3},
    {"Everywhere", wide("aaaa"), 'a', 0, 3, 4},
    {"Never", wide("abc"), 'x', kNowhere, kNowhere, 0},
    {"InTheOtherCase", wide("abc"), 'B', kNowhere, kNowhere, 0},
    {"InEmptyText", wide(""), 'a', kNowhere, kNowhere, 0},
    {"TheTerminator", wide("abc"), 0, 3, 3, 0},
    {"TheTerminatorOfEmptyText", wide(""), 0, 0, 0, 0},
    {"WholeUnitsAreCompared", {0x0161, 0x6100, 'a'}, 'a', 2, 2, 1},
    {"LoneSurrogate", {'a', 0xD800, 'b', 0xD800}, 0xD800, 1, 3, 2},
    {"HalfOfAPair", {0xD83D, 0xDE00}, 0xDE00, 1, 1, 1},
    {"GreatestUnit", {0xFFFE, 0xFFFF, 0x00FF}, 0xFFFF, 1, 1, 1},
    {"AboveTheSigns", {0x7FFF, 0x8000}, 0x8000, 1, 1, 1},
};

class WideCharacter : public testing::TestWithParam<CharacterCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideCharacter, testing::ValuesIn(kCharacters),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideCharacter, IsFoundFirstAndLastAndCounted) {
    const CharacterCase& row = GetParam();

    EXPECT_EQ(indexIn(row.text, string_strchrW(row.text.c_str(), row.character)), row.first);
    EXPECT_EQ(indexIn(row.text, string_strrchrW(row.text.c_str(), row.character)), row.last);
    EXPECT_EQ(string_getCharCountW(row.text.c_str(), row.character), row.count);
}

TEST(WideCharacter, OfNullIsNotFound) {
    EXPECT_EQ(string_strchrW(nullptr, 'a'), nullptr);
    EXPECT_EQ(string_strrchrW(nullptr, 'a'), nullptr);
    EXPECT_EQ(string_getCharCountW(nullptr, 'a'), 0U);
    EXPECT_EQ(string_strchrW(nullptr, 0), nullptr);
    EXPECT_EQ(string_strrchrW(nullptr, 0), nullptr);
    EXPECT_EQ(string_getCharCountW(nullptr, 0), 0U);
}

struct PartCase {
    const char* name;
    WideString text;
    WideString part;
    std::ptrdiff_t index;
};

void PrintTo(const PartCase& row, std::ostream* out) {
    *out << readable(row.part) << " in " << readable(row.text);
}

const PartCase kParts[] = {
    {"AtTheStart", wide("abcabc"), wide("abc"), 0},
    {"InTheMiddle", wide("xxabcxx"), wide("abc"), 2},
    {"AtTheEnd", wide("xxabc"), wide("abc"), 2},
    {"TheWholeText", wide("abc"), wide("abc"), 0},
    {"OneUnit", wide("abc"), wide("c"), 2},
    {"BehindAFalseStart", wide("aaab"), wide("aab"), 1},
    {"BehindALongFalseStart", wide("abababac"), wide("ababac"), 2},
    {"CutOffByTheEnd", wide("xxab"), wide("abc"), kNowhere},
    {"LongerThanTheText", wide("abc"), wide("abcd"), kNowhere},
    {"InTheOtherCase", wide("ABC"), wide("abc"), kNowhere},
    {"EmptyPart", wide("abc"), wide(""), kNowhere},
    {"EmptyText", wide(""), wide("abc"), kNowhere},
    {"BothEmpty", wide(""), wide(""), kNowhere},
    {"LoneSurrogate", {0xD83D, 0xDE00, 0xDE00}, {0xDE00, 0xDE00}, 1},
    {"WholeUnitsAreCompared", {0x0161, 0xFFFF, 'a'}, {'a'}, 2},
};

class StringStrstrW : public testing::TestWithParam<PartCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringStrstrW, testing::ValuesIn(kParts),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringStrstrW, FindsThePart) {
    const PartCase& row = GetParam();
    EXPECT_EQ(indexIn(row.text, string_strstrW(row.text.c_str(), row.part.c_str())), row.index);
}

TEST(StringStrstrW, IsNullForNull) {
    const WideString text = wide("abc");

    EXPECT_EQ(string_strstrW(nullptr, text.c_str()), nullptr);
    EXPECT_EQ(string_strstrW(text.c_str(), nullptr), nullptr);
    EXPECT_EQ(string_strstrW(nullptr, nullptr), nullptr);
}

TEST(StringStrstrW, FindsRandomParts) {
    const std::uint32_t seed = std::random_device()();
    std::mt19937 random(seed);
    const auto randomText = [&](std::size_t most) {
        WideString text(1 + random() % most, 'a');
        for (VexaWChar& unit : text) unit = random() % 2 ? VexaWChar{'a'} : VexaWChar{0xFFFF};
        return text;
    };
    for (int round = 0; round < 5000; ++round) {
        const WideString text = randomText(24);
        const WideString part = randomText(5);
        const std::size_t index = text.find(part);
        const std::ptrdiff_t expected =
            index == WideString::npos ? kNowhere : static_cast<std::ptrdiff_t>(index);
        ASSERT_EQ(indexIn(text, string_strstrW(text.c_str(), part.c_str())), expected)
            << "seed " << seed << ": " << readable(part) << " in " << readable(text);
    }
}

TEST(StringIsSpaceW, KnowsEveryUnit) {
    for (unsigned unit = 1; unit <= 0xFFFF; ++unit) {
        ASSERT_EQ(string_isSpaceW(static_cast<VexaWChar>(unit)) != 0, isWhiteSpace(unit))
            << "unit " << unit;
    }
}

TEST(StringIsSpaceW, IsNotTheTerminator) {
    EXPECT_EQ(string_isSpaceW(0), 0);
}

struct SkipCase {
    const char* name;
    WideString text;
    std::ptrdiff_t index;
};

void PrintTo(const SkipCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const SkipCase kSkips[] = {
    {"NoWhiteSpace", wide("abc"), 0},
    {"EachAsciiWhiteSpace", wide(" \t\n\v\f\rabc"), 6},
    {"StaysAtTheFirstOther", wide("  a b"), 2},
    {"WhiteSpaceAlone", wide("   "), 3},
    {"EmptyText", wide(""), 0},
    {"IdeographicSpace", {0x3000, 0x2003, 'a'}, 2},
    {"OtherControlCharacter", wide(" \x01 a"), 1},
    {"LoneSurrogate", {' ', 0xD820, ' '}, 1},
    {"LowByteOfABlank", {0x0120, 'a'}, 0},
};

class StringSkipWhiteSpaceW : public testing::TestWithParam<SkipCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringSkipWhiteSpaceW, testing::ValuesIn(kSkips),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringSkipWhiteSpaceW, GivesTheFirstOtherUnit) {
    const SkipCase& row = GetParam();
    EXPECT_EQ(indexIn(row.text, string_skipWhiteSpaceW(row.text.c_str())), row.index);
}

TEST(StringSkipWhiteSpaceW, OfNullIsNull) {
    EXPECT_EQ(string_skipWhiteSpaceW(nullptr), nullptr);
}

}  // namespace
}  // namespace vexa::test
