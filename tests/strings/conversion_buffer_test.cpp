#include "tests/support/active_page.h"
#include "tests/support/conversion_check.h"
#include "tests/support/huge_room.h"
#include "tests/support/wide_text.h"
#include "vexakit/conversion.h"
#include "vexakit/types.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

// ---- From the code page -------------------------------------------------------------------------

/// One function of a kind, its length in the type that holds those of all.
template <class Source, class Result>
struct BufferForm {
    const char* name;
    std::uint32_t (*convert)(const Source* source, Result* destination, std::int64_t length);
};

template <class Form>
std::string nameOf(const testing::TestParamInfo<Form>& row) {
    return row.param.name;
}

using MbsForm = BufferForm<char, VexaWChar>;

class BufferMbsToWide : public testing::TestWithParam<MbsForm> {
protected:
    static std::uint32_t convert(const std::string& source, GuardedRoom<VexaWChar>& room) {
        return GetParam().convert(ExactText(source).get(), room.data(),
                                  static_cast<std::int64_t>(room.size()));
    }
};

TEST_P(BufferMbsToWide, RefusesNullPointers) {
    GuardedRoom<VexaWChar> room(4);

    EXPECT_EQ(GetParam().convert(nullptr, room.data(), 4), kFailure);
    EXPECT_EQ(GetParam().convert("a", nullptr, 4), kFailure);
    EXPECT_EQ(GetParam().convert(nullptr, nullptr, 4), kFailure);
    EXPECT_TRUE(room.isUntouched());
}

TEST_P(BufferMbsToWide, RefusesALengthOfZero) {
    GuardedRoom<VexaWChar> room(4);

    EXPECT_EQ(GetParam().convert("abc", room.data(), 0), kFailure);
    EXPECT_EQ(GetParam().convert("", room.data(), 0), kFailure);
    EXPECT_TRUE(room.isUntouched());
}

TEST_P(BufferMbsToWide, FillsRoomThatFitsExactly) {
    GuardedRoom<VexaWChar> room(8);

    EXPECT_EQ(convert("abc def", room), kSuccess);
    EXPECT_EQ(room.cells(), roomWith(wide("abc def"), 8));
    EXPECT_TRUE(room.areGuardsUntouched());
}

TEST_P(BufferMbsToWide, FailsInEveryRoomThatIsTooSmallAndStaysInIt) {
    const std::string source = "The quick brown fox jumps over the lazy dog";
    for (std::size_t size = 1; size <= source.size(); ++size) {
        GuardedRoom<VexaWChar> room(size);

        EXPECT_EQ(convert(source, room), kFailure) << size;
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
        EXPECT_TRUE(holdsPartOf(wide(source), room.cells())) << size;
    }
}

TEST_P(BufferMbsToWide, WritesTheTextItsTerminatorAndTheLastElementAlone) {
    for (std::size_t size = 4; size <= 40; ++size) {
        WideString expected = roomWith(wide("abc"), size);
        expected.back() = 0;
        GuardedRoom<VexaWChar> room(size);

        EXPECT_EQ(convert("abc", room), kSuccess) << size;
        EXPECT_EQ(room.cells(), expected) << size;
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
    }
}

TEST_P(BufferMbsToWide, ConvertsAnEmptyTextToAnEmptyString) {
    for (std::size_t size = 1; size <= 5; ++size) {
        WideString expected = roomWith(WideString{}, size);
        expected.back() = 0;
        GuardedRoom<VexaWChar> room(size);

        EXPECT_EQ(convert("", room), kSuccess) << size;
        EXPECT_EQ(room.cells(), expected) << size;
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Functions, BufferMbsToWide,
    testing::Values(MbsForm{"mbsToWcs",
                            [](const char* source, VexaWChar* destination, std::int64_t length) {
                                return stringCnv_mbsToWcs(source, destination,
                                                          static_cast<int>(length));
                            }},
                    MbsForm{"mbsToTcs",
                            [](const char* source, VexaWChar* destination, std::int64_t length) {
                                return stringCnv_mbsToTcs(source, destination,
                                                          static_cast<std::size_t>(length));
                            }}),
    nameOf<MbsForm>);

TEST(MbsToWcs, RefusesANegativeLength) {
    for (const int length : {-1, -4, INT_MIN}) {
        GuardedRoom<VexaWChar> room(4);

        EXPECT_EQ(stringCnv_mbsToWcs("abc", room.data(), length), kFailure) << length;
        EXPECT_TRUE(room.isUntouched()) << length;
    }
}

TEST(MbsToTcs, ALengthBeyond31BitsIsClampedAndNotCut) {
    constexpr std::size_t kLongest = INT_MAX;
    for (const std::size_t length : {kLongest - 1, kLongest, kLongest + 1, std::size_t{0xFFFFFFFF},
                                     std::size_t{0x100000002}, std::size_t{SIZE_MAX}}) {
        const std::size_t last = std::min(length, kLongest) - 1;
        HugeRoom<VexaWChar> room(kLongest);
        if (!room) GTEST_SKIP() << "the system has no address range of 4 GiB to give";
        room[0] = room[3] = room[last] = kUnwritten<VexaWChar>;

        ASSERT_EQ(stringCnv_mbsToTcs("ab", room.data(), length), kSuccess) << length;
        EXPECT_EQ(WideString(room.data()), wide("ab")) << length;
        EXPECT_EQ(room[3], kUnwritten<VexaWChar>) << length;
        EXPECT_EQ(room[last], 0) << length;
    }
}

// ---- To the code page ---------------------------------------------------------------------------

using MbsSizeForm = BufferForm<VexaWChar, char>;

class BufferWideToMbs : public testing::TestWithParam<MbsSizeForm> {
protected:
    static std::uint32_t convert(const WideString& source, GuardedRoom<char>& room) {
        return GetParam().convert(ExactText(source).get(), room.data(),
                                  static_cast<std::int64_t>(room.size()));
    }
};

TEST_P(BufferWideToMbs, RefusesNullPointersAndALengthOfZero) {
    const WideString source = wide("a");
    GuardedRoom<char> room(4);

    EXPECT_EQ(GetParam().convert(nullptr, room.data(), 4), kFailure);
    EXPECT_EQ(GetParam().convert(source.c_str(), nullptr, 4), kFailure);
    EXPECT_EQ(GetParam().convert(nullptr, nullptr, 4), kFailure);
    EXPECT_EQ(GetParam().convert(source.c_str(), room.data(), 0), kFailure);
    EXPECT_EQ(GetParam().convert(WideString{}.c_str(), room.data(), 0), kFailure);
    EXPECT_TRUE(room.isUntouched());
}

TEST_P(BufferWideToMbs, WritesTheTextAndItsTerminatorAlone) {
    const std::string text = "The quick brown fox";
    for (std::size_t size = text.size() + 1; size <= 64; ++size) {
        GuardedRoom<char> room(size);

        EXPECT_EQ(convert(wide(text), room), kSuccess) << size;
        EXPECT_EQ(room.cells(), roomWith(text, size)) << size;
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
    }
}

TEST_P(BufferWideToMbs, FailsInEveryRoomThatIsTooSmallAndStaysInIt) {
    const std::string text = "The quick brown fox jumps over the lazy dog";
    for (std::size_t size = 1; size <= text.size(); ++size) {
        GuardedRoom<char> room(size);

        EXPECT_EQ(convert(wide(text), room), kFailure) << size;
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
        std::string cells = room.cells();
        EXPECT_NE(cells.front(), kUnwritten<char>) << size;
        if (cells.front() == '\0') cells.front() = text.front();
        EXPECT_TRUE(holdsPartOf(text, cells)) << size << ": " << cells;
    }
}

TEST_P(BufferWideToMbs, ConvertsAnEmptyTextToAnEmptyString) {
    for (std::size_t size = 1; size <= 3; ++size) {
        GuardedRoom<char> room(size);

        EXPECT_EQ(convert({}, room), kSuccess) << size;
        EXPECT_EQ(room.cells(), roomWith(std::string{}, size)) << size;
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
    }
}

TEST_P(BufferWideToMbs, ALengthBeyond31BitsIsClampedAndNotCut) {
    const WideString source = wide("abc");
    for (const std::int64_t length :
         {std::int64_t{INT_MAX}, std::int64_t{0x80000000}, std::int64_t{0xFFFFFFFF},
          std::int64_t{0x100000000}, std::int64_t{0x100000001}, std::int64_t{-1}}) {
        GuardedRoom<char> room(10);

        EXPECT_EQ(GetParam().convert(source.c_str(), room.data(), length), kSuccess) << length;
        EXPECT_EQ(room.cells(), roomWith(std::string("abc"), 10)) << length;
        EXPECT_TRUE(room.areGuardsUntouched()) << length;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Functions, BufferWideToMbs,
    testing::Values(
        MbsSizeForm{"wcsToMbs",
                    [](const VexaWChar* source, char* destination, std::int64_t length) {
                        return stringCnv_wcsToMbs(source, destination,
                                                  static_cast<std::size_t>(length));
                    }},
        MbsSizeForm{"tcsToMbs",
                    [](const VexaWChar* source, char* destination, std::int64_t length) {
                        return stringCnv_tcsToMbs(source, destination,
                                                  static_cast<std::size_t>(length));
                    }}),
    nameOf<MbsSizeForm>);

// ---- Characters of more than one byte -----------------------------------------------------------

const WideString kHiraganaText = {'a', 0x3042, 'z'};

/// The text needs a room of its bytes and one more, and fits no smaller one.
void fitsExactly(const WideString& text, const std::string& bytes) {
    for (std::size_t size = 1; size <= bytes.size() + 2; ++size) {
        GuardedRoom<char> room(size);
        const bool fits = size > bytes.size();

        EXPECT_EQ(stringCnv_wcsToMbs(text.c_str(), room.data(), size), fits ? kSuccess : kFailure);
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
        if (fits) {
            EXPECT_EQ(room.cells(), roomWith(bytes, size));
        }
    }
    for (std::size_t size = 1; size <= text.size() + 2; ++size) {
        GuardedRoom<VexaWChar> room(size);
        const bool fits = size > text.size();

        EXPECT_EQ(stringCnv_mbsToTcs(bytes.c_str(), room.data(), size), fits ? kSuccess : kFailure);
        EXPECT_TRUE(room.areGuardsUntouched()) << size;
        if (fits) {
            EXPECT_EQ(WideString(room.data()), text);
        }
    }
}

TEST(BufferFormsInPage932, CountBytesOneWayAndCharactersTheOther) {
    VEXA_NEEDS_PAGE(932);
    fitsExactly(kHiraganaText, "a\x82\xA0z");
    fitsExactly({0x3042}, "\x82\xA0");
}

TEST(BufferFormsInPage65001, CountBytesOneWayAndCharactersTheOther) {
    VEXA_NEEDS_PAGE(65001);
    fitsExactly(kHiraganaText, "a\xE3\x81\x82z");
    fitsExactly({0xD83D, 0xDE00}, "\xF0\x9F\x98\x80");
}

TEST(BufferFormsInPage1252, ALackingCharacterIsAQuestionMark) {
    VEXA_NEEDS_PAGE(1252);
    GuardedRoom<char> room(6);

    EXPECT_EQ(stringCnv_wcsToMbs(kHiraganaText.c_str(), room.data(), room.size()), kSuccess);
    EXPECT_EQ(room.cells(), roomWith(std::string("a?z"), 6));
    fitsExactly({'a', 0x20AC, 0xE9}, "a\x80\xE9");
}

// ---- Wide to wide -------------------------------------------------------------------------------

using CopyForm = std::uint32_t (*)(const VexaWChar*, VexaWChar*, int);

class BufferCopy : public testing::TestWithParam<CopyForm> {};

TEST_P(BufferCopy, RefusesNullPointers) {
    const WideString source = wide("a");
    GuardedRoom<VexaWChar> room(4);

    EXPECT_EQ(GetParam()(nullptr, room.data(), 4), kFailure);
    EXPECT_EQ(GetParam()(source.c_str(), nullptr, 4), kFailure);
    EXPECT_EQ(GetParam()(nullptr, nullptr, 4), kFailure);
    EXPECT_TRUE(room.isUntouched());
}

TEST_P(BufferCopy, RefusesALengthBelowOneAndOneBelowTheCharacters) {
    const WideString source = wide("abc");
    for (const int length : {INT_MIN, -1, 0, 1, 2}) {
        GuardedRoom<VexaWChar> room(4);

        EXPECT_EQ(GetParam()(source.c_str(), room.data(), length), kFailure) << length;
        EXPECT_TRUE(room.isUntouched()) << length;
    }
}

TEST_P(BufferCopy, ALengthOfJustTheCharactersPutsTheTerminatorBehindIt) {
    const WideString source = wide("abc");
    GuardedRoom<VexaWChar> room(5);

    EXPECT_EQ(GetParam()(source.c_str(), room.data(), 3), kSuccess);
    EXPECT_EQ(room.cells(), roomWith(source, 5));
    EXPECT_TRUE(room.areGuardsUntouched());
}

TEST_P(BufferCopy, WritesTheTextAndItsTerminatorAlone) {
    const WideString source = {'a', 0xD83D, 0xFFFF, 0xDE00, 1};
    for (const int length : {6, 7, 9, INT_MAX}) {
        GuardedRoom<VexaWChar> room(9);

        EXPECT_EQ(GetParam()(ExactText(source).get(), room.data(), length), kSuccess) << length;
        EXPECT_EQ(room.cells(), roomWith(source, 9)) << length;
        EXPECT_TRUE(room.areGuardsUntouched()) << length;
    }
}

TEST_P(BufferCopy, CopiesAnEmptyText) {
    GuardedRoom<VexaWChar> room(2);

    EXPECT_EQ(GetParam()(WideString{}.c_str(), room.data(), 1), kSuccess);
    EXPECT_EQ(room.cells(), roomWith(WideString{}, 2));
    EXPECT_EQ(GetParam()(WideString{}.c_str(), room.data(), 0), kFailure);
}

INSTANTIATE_TEST_SUITE_P(Functions, BufferCopy,
                         testing::Values(&stringCnv_tcsToWcs, &stringCnv_wcsToTcs),
                         [](const auto& row) { return row.index == 0 ? "tcsToWcs" : "wcsToTcs"; });

}  // namespace

}  // namespace vexa::test
