#include "tests/support/allocations.h"
#include "tests/support/numeric_locale.h"
#include "tests/support/wide_text.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <array>
#include <bit>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <ostream>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::uint32_t kSuccess = VEXA_SUCCESS;
constexpr std::uint32_t kFailure = VEXA_FAILURE;

std::uint32_t printByList(VexaWChar* destination, std::size_t size, const VexaWChar* format, ...) {
    std::va_list values;
    va_start(values, format);
    const std::uint32_t status = string_safeVsprintfW(destination, size, format, values);
    va_end(values);
    return status;
}

using Print = std::uint32_t (*)(VexaWChar* destination, std::size_t size, const VexaWChar* format,
                                ...);

struct FreeBlock {
    void operator()(VexaWChar* block) const noexcept { std::free(block); }
};
using Block = std::unique_ptr<VexaWChar, FreeBlock>;

/// What all three ways to print give for a format and its values.
template <class... Values>
WideString printed(const char* format, Values... values) {
    const WideString wideFormat = wide(format);
    GuardedText text(64);
    EXPECT_EQ(string_safeSprintfW(text.data(), text.size(), wideFormat.c_str(), values...),
              kSuccess);
    EXPECT_EQ(text[text.size() - 1], 0);
    EXPECT_TRUE(text.areGuardsUntouched());

    GuardedText byList(64);
    EXPECT_EQ(printByList(byList.data(), byList.size(), wideFormat.c_str(), values...), kSuccess);
    EXPECT_EQ(byList.text(), text.text());

    const Block block(string_sprintfAllocW(std::malloc, wideFormat.c_str(), values...));
    EXPECT_TRUE(block && WideString(block.get()) == text.text());
    return text.text();
}

struct FormatCase {
    const char* name;
    WideString (*print)();
    WideString text;
};

void PrintTo(const FormatCase& row, std::ostream* out) {
    *out << readable(row.text);
}

const WideString kWideWord = wide("wide");
const WideString kWholeUnits = {0xD800, 0x3042, 0xFFFF};
constexpr std::array<VexaWChar, 2> kUnterminated = {'a', 'b'};

const FormatCase kFormats[] = {
    {"NoDirective", [] { return printed("plain"); }, wide("plain")},
    {"Empty", [] { return printed(""); }, wide("")},
    {"Percent", [] { return printed("100%%"); }, wide("100%")},
    {"WideString", [] { return printed("<%s>", kWideWord.c_str()); }, wide("<wide>")},
    {"WideStringByLs", [] { return printed("%ls", kWideWord.c_str()); }, wide("wide")},
    {"WideStringByWs", [] { return printed("%ws", kWideWord.c_str()); }, wide("wide")},
    {"NarrowString", [] { return printed("%S", "narrow"); }, wide("narrow")},
    {"NarrowStringByHs", [] { return printed("%hs", "narrow"); }, wide("narrow")},
    {"NarrowBytesByValue", [] { return printed("%S|%hs", "\x82\xA0", "\xE9"); },
     wide("\x82\xA0|\xE9")},
    {"WholeUnits", [] { return printed("%s", kWholeUnits.c_str()); }, kWholeUnits},
    {"PartOfAString", [] { return printed("%.3s|%.2S", kWideWord.c_str(), "narrow"); },
     wide("wid|na")},
    {"PartWithoutATerminator", [] { return printed("%.2s", kUnterminated.data()); }, wide("ab")},
    {"PaddedStrings",
     [] { return printed("%6s|%-6s|%6S|", kWideWord.c_str(), kWideWord.c_str(), "to"); },
     wide("  wide|wide  |    to|")},
    {"WideCharacter", [] { return printed("%c%lc", 0x3042, 0xFFFF); }, {0x3042, 0xFFFF}},
    {"NarrowCharacter", [] { return printed("%C%hc", 'n', 0xE9); }, wide("n\xE9")},
    {"PaddedCharacters", [] { return printed("%3c|%-3c|", 'a', 'b'); }, wide("  a|b  |")},
    {"NullStrings",
     [] {
         const VexaWChar* none = nullptr;
         const char* narrowNone = nullptr;
         return printed("%s %S %hs %ls", none, narrowNone, narrowNone, none);
     },
     wide("(null) (null) (null) (null)")},
    {"PartOfANullString",
     [] {
         const VexaWChar* none = nullptr;
         return printed("%.3s", none);
     },
     wide("(nu")},
    {"Integers", [] { return printed("%d %i %u", -5, 6, 0xFFFFFFFFU); }, wide("-5 6 4294967295")},
    {"Limits", [] { return printed("%d %d", INT32_MIN, INT32_MAX); },
     wide("-2147483648 2147483647")},
    {"LongIsThirtyTwoBits", [] { return printed("%ld %lu", -5, 0xFFFFFFFFU); },
     wide("-5 4294967295")},
    {"LongOfAWiderValue", [] { return printed("%ld", std::int64_t{0x1'0000'0007}); }, wide("7")},
    {"SixtyFourBits", [] { return printed("%lld %I64d", INT64_MIN, std::int64_t{-5'000'000'000}); },
     wide("-9223372036854775808 -5000000000")},
    {"SixtyFourBitsUnsigned", [] { return printed("%llu %I64X", UINT64_MAX, UINT64_MAX); },
     wide("18446744073709551615 FFFFFFFFFFFFFFFF")},
    {"ThirtyTwoBits", [] { return printed("%I32d %I32u", -7, 0xFFFFFFFFU); },
     wide("-7 4294967295")},
    {"SixteenBits", [] { return printed("%hd %hu", 70'000, -1); }, wide("4464 65535")},
    {"SizesOfAPointer",
     [] {
         const std::size_t size = 5'000'000'000;
         const std::ptrdiff_t difference = -5'000'000'000;
         return printed("%zu %Id %td", size, difference, difference);
     },
     wide("5000000000 -5000000000 -5000000000")},
    {"OtherBases", [] { return printed("%x %X %o %#x %#o", 255, 255, 8, 255, 8); },
     wide("ff FF 10 0xff 010")},
    {"Flags", [] { return printed("%5d|%-5d|%05d|%+d|% d", 1, 2, 3, 4, 5); },
     wide("    1|2    |00003|+4| 5")},
    {"DigitsOfAnInteger", [] { return printed("%.3d|%6.3d", 5, 7); }, wide("005|   007")},
    {"WidthsFromValues", [] { return printed("%*d|%-*d|%.*f", 5, 1, 4, 2, 2, 1.5); },
     wide("    1|2   |1.50")},
    {"Pointer", [] { return printed("%p", std::bit_cast<void*>(std::uintptr_t{0xABC})); },
     wide("0000000000000ABC")},
    {"FixedPoint", [] { return printed("%f %.0f %8.3f|", 1.5, 3.0, 3.14159); },
     wide("1.500000 3    3.142|")},
    {"General", [] { return printed("%g %G", 0.5, 1e-3); }, wide("0.5 0.001")},
    {"SeveralKinds",
     [] { return printed("%s=%d (%S, %.2f)", kWideWord.c_str(), 42, "narrow", 0.25); },
     wide("wide=42 (narrow, 0.25)")},
#ifdef _WIN32
    {"Exponents", [] { return printed("%e %G", 1.5, 1.5e10); }, wide("1.500000e+000 1.5E+010")},
#else
    {"Exponents", [] { return printed("%e %G", 1.5, 1.5e10); }, wide("1.500000e+00 1.5E+10")},
#endif
};

class WideFormat : public testing::TestWithParam<FormatCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideFormat, testing::ValuesIn(kFormats),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideFormat, PrintsTheText) {
    EXPECT_EQ(readable(GetParam().print()), readable(GetParam().text));
}

TEST(WideFormat, HasTheDecimalPointOfTheLocale) {
    const NumericLocale locale;
    ASSERT_TRUE(locale.isSet());
    EXPECT_EQ(printed("%.2f %g", 1.5, -0.25), wide("1,50 -0,25"));
}

struct PrintCase {
    const char* name;
    Print print;
};

void PrintTo(const PrintCase& row, std::ostream* out) {
    *out << row.name;
}

class WideSafePrint : public testing::TestWithParam<PrintCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideSafePrint,
                         testing::Values(PrintCase{"safeSprintf", &string_safeSprintfW},
                                         PrintCase{"safeVsprintf", &printByList}),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideSafePrint, EndsTheTextAndTheArrayAndWritesNothingBetween) {
    GuardedText text(8);

    EXPECT_EQ(GetParam().print(text.data(), 8, wide("a%db").c_str(), 12), kSuccess);
    EXPECT_EQ(readable({text.data(), 8}),
              readable({'a', '1', '2', 'b', 0, kUntouchedCell, kUntouchedCell, 0}));
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST_P(WideSafePrint, FillsTheWholeArray) {
    GuardedText text(5);

    EXPECT_EQ(GetParam().print(text.data(), 5, wide("%d").c_str(), 1234), kSuccess);
    EXPECT_EQ(readable({text.data(), 5}), readable({'1', '2', '3', '4', 0}));
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST_P(WideSafePrint, PrintsAZeroUnit) {
    GuardedText text(4);

    EXPECT_EQ(GetParam().print(text.data(), 4, wide("a%cb").c_str(), 0), kSuccess);
    EXPECT_EQ(readable({text.data(), 4}), readable({'a', 0, 'b', 0}));
    EXPECT_EQ(GetParam().print(text.data(), 3, wide("a%cb").c_str(), 0), kFailure);
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST_P(WideSafePrint, PrintsNothingIntoOneCell) {
    GuardedText text(1);

    EXPECT_EQ(GetParam().print(text.data(), 1, wide("").c_str()), kSuccess);
    EXPECT_EQ(text[0], 0);
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST_P(WideSafePrint, KeepsTheLastCellWhereTheTextDoesNotFit) {
    const WideString units = {0xD800, 0xFFFF, 'c', 'd', 'e'};
    for (std::size_t size = 1; size <= units.size(); ++size) {
        GuardedText text(size);

        EXPECT_EQ(GetParam().print(text.data(), size, wide("%s").c_str(), units.c_str()), kFailure);
        EXPECT_EQ(WideString(text.data(), size), units.substr(0, size - 1) + kUntouchedCell);
        EXPECT_TRUE(text.areGuardsUntouched());
    }
}

TEST_P(WideSafePrint, CutsTheTextAnywhere) {
    const WideString whole = wide("ab   12|-0.50|narrow|x|7   ");
    for (std::size_t size = 1; size <= whole.size(); ++size) {
        GuardedText text(size);

        EXPECT_EQ(GetParam().print(text.data(), size, wide("ab%5d|%.2f|%S|%c|%-4d").c_str(), 12,
                                   -0.5, "narrow", 'x', 7),
                  kFailure);
        EXPECT_EQ(readable({text.data(), size}),
                  readable(whole.substr(0, size - 1) + kUntouchedCell));
        EXPECT_TRUE(text.areGuardsUntouched());
    }
}

TEST_P(WideSafePrint, PrintsLongText) {
    const WideString longText(100'000, 0xFFFF);
    GuardedText text(longText.size() + 5'001);

    EXPECT_EQ(
        GetParam().print(text.data(), text.size(), wide("%s%5000d").c_str(), longText.c_str(), 7),
        kSuccess);
    EXPECT_TRUE(text.text() == longText + WideString(4'999, ' ') + VexaWChar{'7'});
    EXPECT_TRUE(text.areGuardsUntouched());
}

TEST_P(WideSafePrint, WritesNothingForASizeOfZero) {
    GuardedText text(4);

    EXPECT_EQ(GetParam().print(text.data(), 0, wide("a").c_str()), kFailure);
    EXPECT_EQ(GetParam().print(text.data(), 0, wide("").c_str()), kFailure);
    EXPECT_TRUE(text.isUntouchedFrom(0));
}

TEST_P(WideSafePrint, RefusesNull) {
    GuardedText text(4);
    const WideString format = wide("a");

    EXPECT_EQ(GetParam().print(nullptr, 4, format.c_str()), kFailure);
    EXPECT_EQ(GetParam().print(text.data(), 4, nullptr), kFailure);
    EXPECT_EQ(GetParam().print(nullptr, 4, nullptr), kFailure);
    EXPECT_TRUE(text.isUntouchedFrom(0));
}

#ifndef _WIN32
TEST_P(WideSafePrint, RefusesToWriteThroughAValue) {
    int written = 99;
    GuardedText text(8);

    EXPECT_EQ(GetParam().print(text.data(), 8, wide("ab%n").c_str(), &written), kFailure);
    EXPECT_EQ(written, 99);
    EXPECT_EQ(text[7], kUntouchedCell);
    EXPECT_TRUE(text.areGuardsUntouched());
}
#endif

// What the allocation function was asked for. It has no argument for a place of its own.
int requests;
std::size_t requestedBytes;

void* countingMalloc(std::size_t bytes) {
    ++requests;
    requestedBytes = bytes;
    return std::malloc(bytes);
}

void* refuse(std::size_t) {
    ++requests;
    return nullptr;
}

class StringSprintfAllocW : public testing::Test {
protected:
    StringSprintfAllocW() {
        requests = 0;
        requestedBytes = 0;
    }
};

TEST_F(StringSprintfAllocW, AsksOnceForWhatTheTextNeeds) {
    const Block block(
        string_sprintfAllocW(countingMalloc, wide("%s%d").c_str(), kWholeUnits.c_str(), 12));

    ASSERT_TRUE(block);
    EXPECT_EQ(WideString(block.get()), kWholeUnits + wide("12"));
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(requestedBytes, 6 * sizeof(VexaWChar));
}

TEST_F(StringSprintfAllocW, AsksForTheTerminatorOfEmptyText) {
    const Block block(string_sprintfAllocW(countingMalloc, wide("").c_str()));

    ASSERT_TRUE(block);
    EXPECT_EQ(*block, 0);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(requestedBytes, sizeof(VexaWChar));
}

TEST_F(StringSprintfAllocW, HandsOutABlockForTheLibraryToRelease) {
    const AllocationWatch watch;
    const WideString format = wide("%d");
    VexaWChar* const block = string_sprintfAllocW(countingMalloc, format.c_str(), 5);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(watch.blocksInUse(), 1);

    EXPECT_EQ(string_freeW(block), kSuccess);
    EXPECT_EQ(watch.blocksInUse(), 0);
}

TEST_F(StringSprintfAllocW, PrintsLongText) {
    const WideString text(300'000, 0xD800);
    const Block block(string_sprintfAllocW(countingMalloc, wide("%s").c_str(), text.c_str()));

    ASSERT_TRUE(block);
    EXPECT_TRUE(WideString(block.get()) == text);
    EXPECT_EQ(requestedBytes, (text.size() + 1) * sizeof(VexaWChar));
}

TEST_F(StringSprintfAllocW, IsNullWithoutABlock) {
    EXPECT_EQ(string_sprintfAllocW(refuse, wide("%d").c_str(), 5), nullptr);
    EXPECT_EQ(requests, 1);
}

TEST_F(StringSprintfAllocW, IsNullForNull) {
    EXPECT_EQ(string_sprintfAllocW(countingMalloc, nullptr), nullptr);
    EXPECT_EQ(string_sprintfAllocW(nullptr, wide("a").c_str()), nullptr);
    EXPECT_EQ(string_sprintfAllocW(nullptr, nullptr), nullptr);
    EXPECT_EQ(requests, 0);
}

#ifndef _WIN32
TEST_F(StringSprintfAllocW, AsksForNothingWhereTheFormatFails) {
    int written = 99;
    EXPECT_EQ(string_sprintfAllocW(countingMalloc, wide("ab%n").c_str(), &written), nullptr);
    EXPECT_EQ(written, 99);
    EXPECT_EQ(requests, 0);
}
#endif

// A text that changes between being measured and being printed.
std::array<VexaWChar, 8> changing;

void* growTheText(std::size_t bytes) {
    changing = {'a', 'b', 'c', 'd', 'e'};
    return countingMalloc(bytes);
}

void* shrinkTheText(std::size_t bytes) {
    changing = {'a'};
    return countingMalloc(bytes);
}

TEST_F(StringSprintfAllocW, GivesTheBlockBackWhereTheTextNoLongerFits) {
    changing = {'a'};
    const WideString format = wide("%s");
    const AllocationWatch watch;

    EXPECT_EQ(string_sprintfAllocW(growTheText, format.c_str(), changing.data()), nullptr);
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(requestedBytes, 2 * sizeof(VexaWChar));
    EXPECT_EQ(watch.blocksInUse(), 0);
}

TEST_F(StringSprintfAllocW, GivesTheShorterTextWhereItShrank) {
    changing = {'a', 'b', 'c'};
    const Block block(string_sprintfAllocW(shrinkTheText, wide("%s").c_str(), changing.data()));

    ASSERT_TRUE(block);
    EXPECT_EQ(WideString(block.get()), wide("a"));
    EXPECT_EQ(requestedBytes, 4 * sizeof(VexaWChar));
}

}  // namespace
}  // namespace vexa::test
