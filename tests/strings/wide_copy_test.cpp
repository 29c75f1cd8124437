#include "tests/support/wide_text.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::uint32_t kSuccess = VEXA_SUCCESS;
constexpr std::uint32_t kFailure = VEXA_FAILURE;

/// Every cell of an array.
WideString cellsOf(const GuardedText& array) {
    WideString cells;
    for (std::size_t index = 0; index < array.size(); ++index) cells += array[index];
    return cells;
}

struct CopyCase {
    const char* name;
    WideString source;
    std::size_t size;
    WideString copy;
};

void PrintTo(const CopyCase& row, std::ostream* out) {
    *out << readable(row.source) << " into " << row.size;
}

const CopyCase kCopies[] = {
    {"Cut", wide("abcdef"), 4, wide("abc")},
    {"Fits", wide("abc"), 8, wide("abc")},
    {"FitsExactly", wide("abc"), 4, wide("abc")},
    {"OneTooLong", wide("abcd"), 4, wide("abc")},
    {"OneCell", wide("abc"), 1, wide("")},
    {"TwoCells", wide("abc"), 2, wide("a")},
    {"Empty", wide(""), 4, wide("")},
    {"EmptyIntoOneCell", wide(""), 1, wide("")},
    {"WholeUnits", {0xD800, 0xFFFF, 0xDC00, 0x0100}, 8, {0xD800, 0xFFFF, 0xDC00, 0x0100}},
    {"CutsThroughAPair", {0xD83D, 0xDE00}, 2, {0xD83D}},
};

class StringSafeCopyW : public testing::TestWithParam<CopyCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringSafeCopyW, testing::ValuesIn(kCopies),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringSafeCopyW, CopiesWhatFitsAndFillsTheRestWithZeros) {
    const CopyCase& row = GetParam();
    GuardedText array(row.size);
    WideString cells = row.copy;
    cells.resize(row.size);

    EXPECT_EQ(string_safeCopyW(row.source.c_str(), array.data(), row.size), kSuccess);
    EXPECT_EQ(cellsOf(array), cells);
    EXPECT_TRUE(array.areGuardsUntouched());
}

TEST(StringSafeCopyW, ReadsNoMoreOfTheSourceThanFits) {
    const std::vector<VexaWChar> unterminated = {'a', 'b', 'c'};
    GuardedText array(4);

    EXPECT_EQ(string_safeCopyW(unterminated.data(), array.data(), 4), kSuccess);
    EXPECT_EQ(array.text(), wide("abc"));
}

TEST(StringSafeCopyW, WritesNothingForASizeOfZero) {
    GuardedText array(4);

    EXPECT_EQ(string_safeCopyW(wide("abc").c_str(), array.data(), 0), kFailure);
    EXPECT_TRUE(array.isUntouchedFrom(0));
}

TEST(StringSafeCopyW, RefusesNull) {
    GuardedText array(4);

    EXPECT_EQ(string_safeCopyW(nullptr, array.data(), 4), kFailure);
    EXPECT_TRUE(array.isUntouchedFrom(0));
    EXPECT_EQ(string_safeCopyW(wide("abc").c_str(), nullptr, 4), kFailure);
    EXPECT_EQ(string_safeCopyW(nullptr, nullptr, 4), kFailure);
    EXPECT_EQ(string_safeCopyW(nullptr, nullptr, 0), kFailure);
}

struct ConcatenationCase {
    const char* name;
    WideString source;
    WideString destination;
    std::size_t size;
    WideString result;
};

void PrintTo(const ConcatenationCase& row, std::ostream* out) {
    *out << readable(row.source) << " behind " << readable(row.destination) << " in " << row.size;
}

const ConcatenationCase kConcatenations[] = {
    {"Cut", wide("cd"), wide("ab"), 4, wide("abc")},
    {"FitsExactly", wide("cd"), wide("ab"), 5, wide("abcd")},
    {"Fits", wide("cd"), wide("ab"), 10, wide("abcd")},
    {"NoRoomLeft", wide("cd"), wide("abc"), 4, wide("abc")},
    {"BehindNothing", wide("cd"), wide(""), 4, wide("cd")},
    {"BehindNothingCut", wide("cdef"), wide(""), 3, wide("cd")},
    {"Nothing", wide(""), wide("ab"), 4, wide("ab")},
    {"NothingBehindNothing", wide(""), wide(""), 4, wide("")},
    {"OneCell", wide("cd"), wide(""), 1, wide("")},
    {"WholeUnits", {0xD800, 0xFFFF}, {0xFFFF, 0xDC00}, 6, {0xFFFF, 0xDC00, 0xD800, 0xFFFF}},
    {"CutsThroughAPair", {0xD83D, 0xDE00}, {'a'}, 3, {'a', 0xD83D}},
};

class StringSafeConcatenateW : public testing::TestWithParam<ConcatenationCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringSafeConcatenateW, testing::ValuesIn(kConcatenations),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringSafeConcatenateW, AppendsWhatFitsAndEndsTheArray) {
    const ConcatenationCase& row = GetParam();
    GuardedText array(row.size);
    std::copy_n(row.destination.c_str(), row.destination.size() + 1, array.data());
    // Between the text's terminator and the array's last cell nothing is written.
    WideString cells = row.result + VexaWChar{0};
    cells.resize(row.size, kUntouchedCell);
    cells.back() = 0;

    EXPECT_EQ(string_safeConcatenateW(row.source.c_str(), array.data(), row.size), kSuccess);
    EXPECT_EQ(cellsOf(array), cells);
    EXPECT_TRUE(array.areGuardsUntouched());
}

TEST(StringSafeConcatenateW, ReadsNoMoreOfTheSourceThanFits) {
    const std::vector<VexaWChar> unterminated = {'c', 'd'};
    GuardedText array(5);
    std::copy_n(wide("ab").c_str(), 3, array.data());

    EXPECT_EQ(string_safeConcatenateW(unterminated.data(), array.data(), 5), kSuccess);
    EXPECT_EQ(array.text(), wide("abcd"));
}

TEST(StringSafeConcatenateW, LeavesADestinationThatIsTooLong) {
    for (const std::size_t size : {1U, 2U, 4U}) {
        GuardedText array(8);
        std::copy_n(wide("abcd").c_str(), 5, array.data());
        const WideString before = cellsOf(array);

        EXPECT_EQ(string_safeConcatenateW(wide("xy").c_str(), array.data(), size), kFailure);
        EXPECT_EQ(cellsOf(array), before) << "size " << size;
    }
}

TEST(StringSafeConcatenateW, DoesNotLookForTheEndBeyondTheArray) {
    std::vector<VexaWChar> unterminated = {'a', 'b', 'c'};

    EXPECT_EQ(string_safeConcatenateW(wide("xy").c_str(), unterminated.data(), 3), kFailure);
    EXPECT_EQ(unterminated, (std::vector<VexaWChar>{'a', 'b', 'c'}));
}

TEST(StringSafeConcatenateW, WritesNothingForASizeOfZero) {
    GuardedText array(4);
    array.data()[0] = 0;

    EXPECT_EQ(string_safeConcatenateW(wide("ab").c_str(), array.data(), 0), kFailure);
    EXPECT_EQ(array.text(), wide(""));
    EXPECT_TRUE(array.isUntouchedFrom(1));
}

TEST(StringSafeConcatenateW, RefusesNull) {
    GuardedText array(4);
    array.data()[0] = 0;

    EXPECT_EQ(string_safeConcatenateW(nullptr, array.data(), 4), kFailure);
    EXPECT_TRUE(array.isUntouchedFrom(1));
    EXPECT_EQ(string_safeConcatenateW(wide("ab").c_str(), nullptr, 4), kFailure);
    EXPECT_EQ(string_safeConcatenateW(nullptr, nullptr, 4), kFailure);
    EXPECT_EQ(string_safeConcatenateW(nullptr, nullptr, 0), kFailure);
}

}  // namespace
}  // namespace vexa::test
