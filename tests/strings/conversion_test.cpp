#include "vexakit/conversion.h"

#include "platform/ansi_code_page.h"
#include "tests/support/allocations.h"
#include "tests/support/wide_text.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstddef>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr auto kSuccess = static_cast<std::uint32_t>(VEXA_SUCCESS);
constexpr auto kFailure = static_cast<std::uint32_t>(VEXA_FAILURE);

struct FreeText {
    void operator()(char* text) const { string_freeA(text); }
};
using Text = std::unique_ptr<char, FreeText>;

// The new string; null where the function says that it failed.
Text convert(const WideString& source) {
    char* result = nullptr;
    return Text{stringCnv_wcsToMbsAlloc(source.c_str(), &result) == kSuccess ? result : nullptr};
}

TEST(WcsToMbsAlloc, RefusesNullPointers) {
    char untouched = 0;
    char* result = &untouched;

    EXPECT_EQ(stringCnv_wcsToMbsAlloc(nullptr, &result), kFailure);
    EXPECT_EQ(stringCnv_wcsToMbsAlloc(wide("a").c_str(), nullptr), kFailure);
    EXPECT_EQ(stringCnv_wcsToMbsAlloc(nullptr, nullptr), kFailure);
    EXPECT_EQ(result, &untouched);
}

TEST(WcsToMbsAlloc, ConvertsAnEmptyTextToAnEmptyString) {
    const Text text = convert({});

    ASSERT_TRUE(text);
    EXPECT_STREQ(text.get(), "");
}

TEST(WcsToMbsAlloc, KeepsAsciiOfAnyLength) {
    std::string ascii;
    for (std::size_t size = 1; size <= 5000; size += 1 + size / 7) {
        while (ascii.size() < size) ascii += static_cast<char>(1 + ascii.size() % 0x7F);
        const Text text = convert(wide(ascii));

        ASSERT_TRUE(text) << size;
        EXPECT_EQ(text.get(), ascii);
    }
}

TEST(WcsToMbsAlloc, GivesWhatTheAnsiCodePageGives) {
    const WideString source = {'a', 0xE9, 0xFF11, 0x3042, 0x2019, 0xD83D, 0xDE00, 'z'};
    std::string expected(64, '\0');
    const int size = platform::wideToAnsi(source.c_str(), -1, expected.data(), 64);
    ASSERT_GT(size, static_cast<int>(source.size()));
    expected.resize(static_cast<std::size_t>(size) - 1);

    const Text text = convert(source);

    ASSERT_TRUE(text);
    EXPECT_EQ(text.get(), expected);
}

TEST(WcsToMbsAlloc, TheCallerOwnsOneBlockOfTheStringsBytesAndOneMore) {
    const WideString source = wide("LINESTRING Z (0 0 0, 1 1 1)");
    const AllocationWatch watch;

    char* text = nullptr;
    ASSERT_EQ(stringCnv_wcsToMbsAlloc(source.c_str(), &text), kSuccess);

    EXPECT_EQ(watch.requests(), 1);
    EXPECT_EQ(watch.bytes(), source.size() + 2);
    EXPECT_EQ(watch.blocksInUse(), 1);
    EXPECT_EQ(string_freeA(text), kSuccess);
    EXPECT_EQ(watch.blocksInUse(), 0);
}

TEST(WcsToMbsAlloc, AFailedAllocationLeavesTheResultUntouched) {
    const WideString source = wide("POINT Z (1 2 3)");
    char untouched = 0;
    char* result = &untouched;
    std::uint32_t status = kSuccess;
    bool refused = false;
    int blocksInUse = -1;
    {
        const AllocationFailure failure(1);
        status = stringCnv_wcsToMbsAlloc(source.c_str(), &result);
        refused = failure.happened();
        blocksInUse = failure.blocksInUse();
    }

    EXPECT_TRUE(refused);
    EXPECT_EQ(status, kFailure);
    EXPECT_EQ(result, &untouched);
    EXPECT_EQ(blocksInUse, 0);
}

}  // namespace

}  // namespace vexa::test
