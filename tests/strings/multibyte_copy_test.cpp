#include "tests/support/guarded_bytes.h"
#include "tests/support/wide_text.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using namespace std::string_literals;

constexpr auto kSuccess = static_cast<std::uint32_t>(VEXA_SUCCESS);
constexpr auto kFailure = static_cast<std::uint32_t>(VEXA_FAILURE);

std::string untouched(std::size_t bytes) {
    std::string result(bytes, kGuardByte);
    return result;
}

// ---- string_safeCopyA ---------------------------------------------------------------------------

// What the copy leaves in an array of that size.
std::string copied(std::string_view source, std::size_t size) {
    GuardedBytes destination(size);
    const std::string text(source);

    EXPECT_EQ(string_safeCopyA(text.c_str(), destination.data(), size), kSuccess);
    EXPECT_TRUE(destination.areGuardsUntouched());
    return destination.bytes();
}

TEST(StringSafeCopyA, CopiesTextThatFits) {
    EXPECT_EQ(copied("abc", 4), "abc\0"s);
    EXPECT_EQ(copied("", 1), "\0"s);
}

TEST(StringSafeCopyA, CutsTextThatDoesNotFit) {
    EXPECT_EQ(copied("abcdef", 4), "abc\0"s);
    EXPECT_EQ(copied("abcd", 4), "abc\0"s);
    EXPECT_EQ(copied("abc", 1), "\0"s);
    EXPECT_EQ(copied("a\x83\x5C", 3), "a\x83\0"s);
}

TEST(StringSafeCopyA, FillsTheRestWithZeros) {
    EXPECT_EQ(copied("ab", 6), "ab\0\0\0\0"s);
    EXPECT_EQ(copied("", 5), "\0\0\0\0\0"s);
}

TEST(StringSafeCopyA, RefusesNullPointersAndASizeOfZero) {
    GuardedBytes destination(4);

    EXPECT_EQ(string_safeCopyA(nullptr, destination.data(), 4), kFailure);
    EXPECT_EQ(string_safeCopyA("abc", nullptr, 4), kFailure);
    EXPECT_EQ(string_safeCopyA("abc", destination.data(), 0), kFailure);
    EXPECT_EQ(string_safeCopyA(nullptr, nullptr, 0), kFailure);
    EXPECT_EQ(destination.bytes(), untouched(4));
}

// ---- string_safeSprintfA and string_safeVsprintfA -----------------------------------------------

std::uint32_t printThroughAList(char* destination, std::size_t size, const char* format, ...) {
    va_list values;
    va_start(values, format);
    const std::uint32_t status = string_safeVsprintfA(destination, size, format, values);
    va_end(values);
    return status;
}

struct Printer {
    const char* name;
    std::uint32_t (*print)(char* destination, std::size_t size, const char* format, ...);
};

void PrintTo(const Printer& row, std::ostream* out) {
    *out << row.name;
}

class StringSafePrintA : public testing::TestWithParam<Printer> {
protected:
    static std::uint32_t print(char* destination, std::size_t size, const char* format,
                               auto... values) {
        return GetParam().print(destination, size, format, values...);
    }

    // The text in an array that is large enough.
    static std::string printed(const char* format, auto... values) {
        GuardedBytes destination(1000);
        EXPECT_EQ(print(destination.data(), 1000, format, values...), kSuccess);
        EXPECT_EQ(destination.bytes().back(), '\0');
        EXPECT_TRUE(destination.areGuardsUntouched());
        return destination.text();
    }
};
INSTANTIATE_TEST_SUITE_P(Table, StringSafePrintA,
                         testing::Values(Printer{"Values", &string_safeSprintfA},
                                         Printer{"List", &printThroughAList}),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringSafePrintA, PrintsTextThatFits) {
    GuardedBytes destination(8);

    EXPECT_EQ(print(destination.data(), 8, "%d-%s", 42, "ab"), kSuccess);
    EXPECT_EQ(destination.text(), "42-ab");
    EXPECT_EQ(destination.bytes().back(), '\0');
    EXPECT_TRUE(destination.areGuardsUntouched());
}

TEST_P(StringSafePrintA, TerminatesTextThatJustFits) {
    GuardedBytes destination(6);

    EXPECT_EQ(print(destination.data(), 6, "%d-%s", 42, "ab"), kSuccess);
    EXPECT_EQ(destination.bytes(), "42-ab\0"s);
    EXPECT_TRUE(destination.areGuardsUntouched());
}

TEST_P(StringSafePrintA, LeavesTextThatDoesNotFitUnterminated) {
    for (const char* const value : {"abc", "abcd", "abundantly longer text"}) {
        GuardedBytes destination(6);

        EXPECT_EQ(print(destination.data(), 6, "%d-%s", 42, value), kFailure);
        EXPECT_EQ(destination.bytes(), "42-ab" + untouched(1));
        EXPECT_TRUE(destination.areGuardsUntouched());
    }
}

TEST_P(StringSafePrintA, HasRoomForNothingInASizeOfOne) {
    GuardedBytes destination(1);

    EXPECT_EQ(print(destination.data(), 1, "%s", "a"), kFailure);
    EXPECT_EQ(destination.bytes(), untouched(1));
    EXPECT_EQ(print(destination.data(), 1, "%s", ""), kSuccess);
    EXPECT_EQ(destination.bytes(), "\0"s);
    EXPECT_TRUE(destination.areGuardsUntouched());
}

TEST_P(StringSafePrintA, PrintsTextOfAnyLength) {
    const std::string text(100'000, 't');
    GuardedBytes destination(text.size() + 3);

    EXPECT_EQ(print(destination.data(), text.size() + 3, "<%s>", text.c_str()), kSuccess);
    EXPECT_EQ(destination.text(), "<" + text + ">");
    EXPECT_TRUE(destination.areGuardsUntouched());
}

TEST_P(StringSafePrintA, RefusesNullPointersAndASizeOfZero) {
    GuardedBytes destination(4);

    EXPECT_EQ(print(nullptr, 4, "%s", "a"), kFailure);
    EXPECT_EQ(print(destination.data(), 4, nullptr, "a"), kFailure);
    EXPECT_EQ(print(destination.data(), 0, "%s", "a"), kFailure);
    EXPECT_EQ(print(destination.data(), 0, "%s", ""), kFailure);
    EXPECT_EQ(destination.bytes(), untouched(4));
}

TEST_P(StringSafePrintA, PrintsTheFormatItself) {
    EXPECT_EQ(printed(""), "");
    EXPECT_EQ(printed("100%% \x83\x5C"), "100% \x83\x5C");
}

TEST_P(StringSafePrintA, PrintsWholeNumbers) {
    EXPECT_EQ(printed("%d %i %u", -1, -2, 4294967295U), "-1 -2 4294967295");
    EXPECT_EQ(printed("%05d|%-5d|%+d|% d|%5d|%.3d", 42, 42, 42, 42, 42, 42),
              "00042|42   |+42| 42|   42|042");
    EXPECT_EQ(printed("%*d|%-*d|%.*d", 4, 7, 4, 7, 4, 7), "   7|7   |0007");
    EXPECT_EQ(printed("%x %X %#x %o %#o", 255U, 255U, 255U, 8U, 8U), "ff FF 0xff 10 010");
    EXPECT_EQ(printed("%hd %hu", 65535, 65535), "-1 65535");
}

TEST_P(StringSafePrintA, TakesALongFor32Bits) {
    EXPECT_EQ(printed("%ld %lu %lx|%s", -1, 4294967295U, 0xFFFFFFFFU, "next"),
              "-1 4294967295 ffffffff|next");
}

TEST_P(StringSafePrintA, PrintsSizedNumbers) {
    constexpr std::int64_t kLeast = INT64_MIN;
    EXPECT_EQ(printed("%lld %I64d", kLeast, kLeast), "-9223372036854775808 -9223372036854775808");
    EXPECT_EQ(printed("%llu %I64u %I64x", UINT64_MAX, UINT64_MAX, UINT64_MAX),
              "18446744073709551615 18446744073709551615 ffffffffffffffff");
    EXPECT_EQ(printed("%I32d %I32u %I32X|%d", -1, 4294967295U, 0xABCDU, 7), "-1 4294967295 ABCD|7");
    EXPECT_EQ(printed("%08I64d|%-8I32d|", std::int64_t{-5}, -5), "-0000005|-5      |");
}

TEST_P(StringSafePrintA, PrintsNarrowText) {
    EXPECT_EQ(printed("%s|%5s|%-5s|%.2s|%.*s", "abc", "abc", "abc", "abc", 1, "abc"),
              "abc|  abc|abc  |ab|a");
    EXPECT_EQ(printed("%hs %hc %c", "abc", 'd', 'e'), "abc d e");
    EXPECT_EQ(printed("%3c|%-3c|", 'a', 'b'), "  a|b  |");
    EXPECT_EQ(printed("%s", "\xE9\x83\x5C"), "\xE9\x83\x5C");
}

TEST_P(StringSafePrintA, PrintsWideText) {
    const WideString text = wide("abc");
    EXPECT_EQ(printed("%S %ls %ws", text.c_str(), text.c_str(), text.c_str()), "abc abc abc");
    EXPECT_EQ(printed("%5S|%-5ls|%.2S", text.c_str(), text.c_str(), text.c_str()),
              "  abc|abc  |ab");
    EXPECT_EQ(printed("%C%lc", VexaWChar{'a'}, VexaWChar{'b'}), "ab");
}

TEST_P(StringSafePrintA, TakesAWideCharacterForTheByteOfItsValue) {
    const WideString text = {'a', 0xE9, 'z'};
    EXPECT_EQ(printed("%S|%C", text.c_str(), VexaWChar{0xE9}), "a\xE9z|\xE9");
}

TEST_P(StringSafePrintA, HasNoByteForAWideCharacterAbove255) {
    const WideString text = {'a', 0x20AC};
    GuardedBytes destination(20);

    EXPECT_EQ(print(destination.data(), 20, "%S", text.c_str()), kFailure);
    EXPECT_TRUE(destination.areGuardsUntouched());
    EXPECT_EQ(printed("<%C>", VexaWChar{0x20AC}), "<>");
}

TEST_P(StringSafePrintA, PrintsNullText) {
    const char* const narrow = nullptr;
    const VexaWChar* const none = nullptr;
    EXPECT_EQ(printed("%s %S %ls", narrow, none, none), "(null) (null) (null)");
}

TEST_P(StringSafePrintA, PrintsFractions) {
    EXPECT_EQ(printed("%f %.2f %8.3f|%-8.1f|%g", 1.5, -2.25, 3.14159, 4.0, 0.5),
              "1.500000 -2.25    3.142|4.0     |0.5");
}

TEST_P(StringSafePrintA, PrintsPointersInSixteenDigits) {
    const int here = 0;
    const void* const address = &here;
    std::ostringstream digits;
    digits << std::hex << std::uppercase << std::setw(16) << std::setfill('0')
           << reinterpret_cast<std::uintptr_t>(address);

    EXPECT_EQ(printed("%p", address), digits.str());
    EXPECT_EQ(printed("%p", static_cast<const void*>(nullptr)), "0000000000000000");
}

TEST_P(StringSafePrintA, PrintsSizesOfAPointersWidth) {
    EXPECT_EQ(printed("%zu %Id %td", SIZE_MAX, std::ptrdiff_t{-1}, std::ptrdiff_t{-2}),
              "18446744073709551615 -1 -2");
}

#ifndef _WIN32
TEST_P(StringSafePrintA, RefusesToCountCharacters) {
    GuardedBytes destination(8);
    int count = 99;

    EXPECT_EQ(print(destination.data(), 8, "abc%n", &count), kFailure);
    EXPECT_EQ(count, 99);
    EXPECT_TRUE(destination.areGuardsUntouched());
}
#endif

// ---- string_getConfigVarA -----------------------------------------------------------------------

constexpr const char* kName = "VEXAKIT_TEST_VARIABLE";

/// A variable of the C runtime's environment while this object lives.
class EnvironmentVariable {
public:
    explicit EnvironmentVariable(const char* value) { set(value); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

    // NOLINTBEGIN(concurrency-mt-unsafe): the tests run in one thread
#ifdef _WIN32
    ~EnvironmentVariable() {
        set("");
    }

private:
    static void set(const char* value) {
        _putenv_s(kName, value);
    }
#else
    ~EnvironmentVariable() {
        unsetenv(kName);
    }

private:
    static void set(const char* value) {
        setenv(kName, value, 1);
    }
#endif
    // NOLINTEND(concurrency-mt-unsafe)
};

// What the function leaves in an array of that size.
std::string configured(std::size_t size) {
    GuardedBytes destination(size);

    EXPECT_EQ(string_getConfigVarA(destination.data(), kName, size), kSuccess);
    EXPECT_TRUE(destination.areGuardsUntouched());
    return destination.bytes();
}

TEST(StringGetConfigVarA, CopiesTheValue) {
    const EnvironmentVariable variable("C:\\dir");
    EXPECT_EQ(configured(7), "C:\\dir\0"s);
    EXPECT_EQ(configured(9), "C:\\dir\0\0\0"s);
}

TEST(StringGetConfigVarA, CutsAValueThatDoesNotFit) {
    const EnvironmentVariable variable("C:\\dir");
    EXPECT_EQ(configured(6), "C:\\di\0"s);
    EXPECT_EQ(configured(1), "\0"s);
}

TEST(StringGetConfigVarA, SeesEveryChange) {
    GuardedBytes destination(4);
    {
        const EnvironmentVariable variable("one");
        EXPECT_EQ(configured(4), "one\0"s);
    }
    {
        const EnvironmentVariable variable("two");
        EXPECT_EQ(configured(4), "two\0"s);
    }
    EXPECT_EQ(string_getConfigVarA(destination.data(), kName, 4), kFailure);
}

#ifndef _WIN32
// on Windows a variable without a value is none
TEST(StringGetConfigVarA, CopiesAnEmptyValue) {
    const EnvironmentVariable variable("");
    EXPECT_EQ(configured(3), "\0\0\0"s);
}
#endif

TEST(StringGetConfigVarA, RefusesAVariableThatIsNotSet) {
    GuardedBytes destination(8);

    EXPECT_EQ(string_getConfigVarA(destination.data(), kName, 8), kFailure);
    EXPECT_EQ(destination.bytes(), untouched(8));
}

TEST(StringGetConfigVarA, RefusesNullPointersAnEmptyNameAndASizeOfZero) {
    const EnvironmentVariable variable("value");
    GuardedBytes destination(8);

    EXPECT_EQ(string_getConfigVarA(nullptr, kName, 8), kFailure);
    EXPECT_EQ(string_getConfigVarA(destination.data(), nullptr, 8), kFailure);
    EXPECT_EQ(string_getConfigVarA(destination.data(), "", 8), kFailure);
    EXPECT_EQ(string_getConfigVarA(destination.data(), kName, 0), kFailure);
    EXPECT_EQ(destination.bytes(), untouched(8));
}

}  // namespace

}  // namespace vexa::test
