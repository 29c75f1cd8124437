#include "tests/support/conversion_check.h"
#include "tests/support/wide_text.h"
#include "vexakit/conversion.h"
#include "vexakit/types.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr std::size_t kLengthsBeyond31Bits[] = {INT_MAX,     0x80000000,  0xFFFFFFFF,
                                                0x100000000, 0x100000001, SIZE_MAX};

const WideString kEAcute = {0xE9};
const WideString kEuro = {0x20AC};
const WideString kGrin = {0xD83D, 0xDE00};

// ---- To UTF-8 -----------------------------------------------------------------------------------

struct ToUtf8Case {
    const char* name;
    WideString source;
    std::size_t length;
    std::uint32_t status;
    std::string cells;  // of a room of just the length; those of a failure are not looked at
};
void PrintTo(const ToUtf8Case& row, std::ostream* out) {
    *out << row.name;
}

class WcsToUtf8 : public testing::TestWithParam<ToUtf8Case> {};

using namespace std::string_literals;

const ToUtf8Case kToUtf8Cases[] = {
    {"ThreeOfSixUnitsInARoomOfFour", wide("abcdef"), 4, kSuccess, "abc\0"s},
    {"NothingInARoomOfOne", wide("abcdef"), 1, kSuccess, "\0"s},
    {"OneUnitInARoomOfTwo", wide("abcdef"), 2, kSuccess, "a\0"s},
    {"AllButOneUnit", wide("abcdef"), 6, kSuccess, "abcde\0"s},
    {"ExactlyAll", wide("abcdef"), 7, kSuccess, "abcdef\0"s},
    {"NothingOfALongCharacterInARoomOfOne", kEuro, 1, kSuccess, "\0"s},

    {"TheTerminatorCutsAFullOutput", kEAcute, 2, kSuccess, "\xC3\0"s},
    {"ATwoByteCharacterAndItsTerminator", kEAcute, 3, kSuccess, "\xC3\xA9\0"s},
    {"TwoThatAreTooLong", kEAcute + kEAcute, 3, kFailure, {}},
    {"TwoThatFillTheRoom", kEAcute + kEAcute, 4, kSuccess, "\xC3\xA9\xC3\0"s},
    {"TwoAndTheirTerminator", kEAcute + kEAcute, 5, kSuccess, "\xC3\xA9\xC3\xA9\0"s},
    {"ThreeUnitsThatExpandBeyondARoomOfFour", kEAcute + kEAcute + kEAcute, 4, kFailure, {}},
    {"TheLimitCountsUnitsSoTheThirdIsLeftOut", wide("a") + kEAcute + kEAcute, 3, kSuccess,
     "a\xC3\0"s},

    {"AThreeByteCharacterInTwo", kEuro, 2, kFailure, {}},
    {"AThreeByteCharacterCut", kEuro, 3, kSuccess, "\xE2\x82\0"s},
    {"AThreeByteCharacterAndItsTerminator", kEuro, 4, kSuccess, "\xE2\x82\xAC\0"s},

    {"HalfOfAPairIsTooLongForTwo", kGrin, 2, kFailure, {}},
    {"APairInThree", kGrin, 3, kFailure, {}},
    {"APairCutByItsTerminator", kGrin, 4, kSuccess, "\xF0\x9F\x98\0"s},
    {"APairAndItsTerminator", kGrin, 5, kSuccess, "\xF0\x9F\x98\x80\0"s},
    {"APairThatTheLimitHalves", wide("abc") + kGrin, 5, kFailure, {}},
    {"APairThatTheLimitLeavesOut", wide("abc") + kGrin, 4, kSuccess, "abc\0"s},

    {"ALoneHighSurrogate", {0xD83D, 'x', 'y', 'z'}, 7, kSuccess, "\xEF\xBF\xBDxyz\0"s},
    {"ALoneLowSurrogate", {0xDE00, 'x', 'y', 'z'}, 7, kSuccess, "\xEF\xBF\xBDxyz\0"s},
    {"SurrogatesInTheWrongOrder", {0xDE00, 0xD83D}, 7, kSuccess, "\xEF\xBF\xBD\xEF\xBF\xBD\0"s},
};

TEST_P(WcsToUtf8, ConvertsAsManyUnitsAsTheLengthLessOne) {
    const ToUtf8Case& row = GetParam();
    GuardedRoom<char> room(row.length);

    EXPECT_EQ(stringCnv_wcsToUTF8(ExactText(row.source).get(), room.data(), row.length),
              row.status);
    EXPECT_TRUE(room.areGuardsUntouched());
    if (row.status == kSuccess) {
        EXPECT_EQ(room.cells(), row.cells);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, WcsToUtf8, testing::ValuesIn(kToUtf8Cases),
                         [](const auto& row) { return row.param.name; });

TEST(WcsToUtf8Buffer, RefusesNullPointersAndALengthOfZero) {
    const WideString source = wide("a");
    GuardedRoom<char> room(4);

    EXPECT_EQ(stringCnv_wcsToUTF8(nullptr, room.data(), 4), kFailure);
    EXPECT_EQ(stringCnv_wcsToUTF8(source.c_str(), nullptr, 4), kFailure);
    EXPECT_EQ(stringCnv_wcsToUTF8(nullptr, nullptr, 4), kFailure);
    EXPECT_EQ(stringCnv_wcsToUTF8(source.c_str(), room.data(), 0), kFailure);
    EXPECT_EQ(stringCnv_wcsToUTF8(WideString{}.c_str(), room.data(), 0), kFailure);
    EXPECT_TRUE(room.isUntouched());
}

TEST(WcsToUtf8Buffer, ConvertsAnEmptyTextToAnEmptyString) {
    for (std::size_t size = 1; size <= 3; ++size) {
        GuardedRoom<char> room(size);

        EXPECT_EQ(stringCnv_wcsToUTF8(WideString{}.c_str(), room.data(), size), kSuccess);
        EXPECT_EQ(room.cells(), roomWith(std::string{}, size));
        EXPECT_TRUE(room.areGuardsUntouched());
    }
}

TEST(WcsToUtf8Buffer, CutsAsciiToEveryRoomAndWritesNothingBeyondTheTerminator) {
    const std::string text = "The quick brown fox jumps over the lazy dog";
    for (std::size_t size = 1; size <= 64; ++size) {
        GuardedRoom<char> room(size);

        EXPECT_EQ(stringCnv_wcsToUTF8(wide(text).c_str(), room.data(), size), kSuccess) << size;
        EXPECT_EQ(room.cells(), roomWith(text.substr(0, size - 1), size)) << size;
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
    }
}

TEST(WcsToUtf8Buffer, ALengthBeyond31BitsIsClampedAndNotCut) {
    const WideString source = wide("ab") + kEuro;
    for (const std::size_t length : kLengthsBeyond31Bits) {
        GuardedRoom<char> room(10);

        EXPECT_EQ(stringCnv_wcsToUTF8(source.c_str(), room.data(), length), kSuccess) << length;
        EXPECT_EQ(room.cells(), roomWith("ab\xE2\x82\xAC"s, 10)) << length;
        EXPECT_TRUE(room.areGuardsUntouched()) << length;
    }
}

// ---- From UTF-8 ---------------------------------------------------------------------------------

struct FromUtf8Case {
    const char* name;
    std::string source;
    std::size_t length;
    WideString text;
};
void PrintTo(const FromUtf8Case& row, std::ostream* out) {
    *out << row.name;
}

class Utf8ToWcs : public testing::TestWithParam<FromUtf8Case> {};

const FromUtf8Case kFromUtf8Cases[] = {
    {"ThreeOfSixBytesInARoomOfFour", "abcdef", 4, wide("abc")},
    {"NothingInARoomOfOne", "abcdef", 1, {}},
    {"AllButOneByte", "abcdef", 6, wide("abcde")},
    {"ExactlyAll", "abcdef", 7, wide("abcdef")},
    {"MoreRoomThanText", "abcdef", 12, wide("abcdef")},
    {"TwoBytesCut", "\xC3\xA9", 2, {0xFFFD}},
    {"TwoBytesWhole", "\xC3\xA9", 3, {0xE9}},
    {"ThreeBytesCutBehindTheFirst", "\xE2\x82\xAC", 2, {0xFFFD}},
    {"ThreeBytesCutBehindTheSecond", "\xE2\x82\xAC", 3, {0xFFFD}},
    {"ThreeBytesWhole", "\xE2\x82\xAC", 4, {0x20AC}},
    {"TheLimitCountsBytesSoTheSecondIsLeftOut", "\xC3\xA9\xC3\xA9", 3, {0xE9}},
    {"TheLimitCutsTheSecond", "\xC3\xA9\xC3\xA9", 4, {0xE9, 0xFFFD}},
    {"FourBytesCutBehindTheFirst", "\xF0\x9F\x98\x80", 2, {0xFFFD}},
    {"FourBytesCutBehindTheSecond", "\xF0\x9F\x98\x80", 3, {0xFFFD}},
    {"FourBytesCutBehindTheThird", "\xF0\x9F\x98\x80", 4, {0xFFFD}},
    {"FourBytesWhole", "\xF0\x9F\x98\x80", 5, {0xD83D, 0xDE00}},
};

TEST_P(Utf8ToWcs, ConvertsAsManyBytesAsTheLengthLessOne) {
    const FromUtf8Case& row = GetParam();
    GuardedRoom<VexaWChar> room(row.length);

    EXPECT_EQ(stringCnv_utf8ToWcs(ExactText(row.source).get(), room.data(), row.length), kSuccess);
    EXPECT_EQ(room.cells(), roomWith(row.text, row.length));
    EXPECT_TRUE(room.areGuardsUntouched());
}

INSTANTIATE_TEST_SUITE_P(Table, Utf8ToWcs, testing::ValuesIn(kFromUtf8Cases),
                         [](const auto& row) { return row.param.name; });

TEST(Utf8ToWcsBuffer, RefusesNullPointersAndALengthOfZero) {
    GuardedRoom<VexaWChar> room(4);

    EXPECT_EQ(stringCnv_utf8ToWcs(nullptr, room.data(), 4), kFailure);
    EXPECT_EQ(stringCnv_utf8ToWcs("a", nullptr, 4), kFailure);
    EXPECT_EQ(stringCnv_utf8ToWcs(nullptr, nullptr, 4), kFailure);
    EXPECT_EQ(stringCnv_utf8ToWcs("a", room.data(), 0), kFailure);
    EXPECT_EQ(stringCnv_utf8ToWcs("", room.data(), 0), kFailure);
    EXPECT_TRUE(room.isUntouched());
}

TEST(Utf8ToWcsBuffer, ConvertsAnEmptyTextToAnEmptyString) {
    for (std::size_t size = 1; size <= 3; ++size) {
        GuardedRoom<VexaWChar> room(size);

        EXPECT_EQ(stringCnv_utf8ToWcs("", room.data(), size), kSuccess);
        EXPECT_EQ(room.cells(), roomWith(WideString{}, size));
        EXPECT_TRUE(room.areGuardsUntouched());
    }
}

TEST(Utf8ToWcsBuffer, CutsAsciiToEveryRoomAndWritesNothingBeyondTheTerminator) {
    const std::string text = "The quick brown fox jumps over the lazy dog";
    for (std::size_t size = 1; size <= 64; ++size) {
        GuardedRoom<VexaWChar> room(size);

        EXPECT_EQ(stringCnv_utf8ToWcs(text.c_str(), room.data(), size), kSuccess) << size;
        EXPECT_EQ(room.cells(), roomWith(wide(text.substr(0, size - 1)), size)) << size;
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
    }
}

TEST(Utf8ToWcsBuffer, ALengthBeyond31BitsIsClampedAndNotCut) {
    for (const std::size_t length : kLengthsBeyond31Bits) {
        GuardedRoom<VexaWChar> room(10);

        EXPECT_EQ(stringCnv_utf8ToWcs("ab\xE2\x82\xAC", room.data(), length), kSuccess) << length;
        EXPECT_EQ(room.cells(), roomWith(wide("ab") + kEuro, 10)) << length;
        EXPECT_TRUE(room.areGuardsUntouched()) << length;
    }
}

}  // namespace

}  // namespace vexa::test
