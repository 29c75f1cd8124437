#include "tests/support/allocations.h"
#include "tests/support/parse_support.h"
#include "wkt/scan_buffer.h"

#include <array>

#include <gmock/gmock.h>

namespace vexa::test {

namespace {

using namespace std::string_view_literals;

// ---- Blocks ------------------------------------------------------------------------------------

TEST(ScanBytes, CopiesTheTextWithTwoZeroBytesBehindIt) {
    std::string text = "POINT(1 2 3)";
    const ScanBufferHandle buffer = scanBytes(text);
    ASSERT_TRUE(buffer);
    EXPECT_NE(buffer->block, text.data());
    text.assign(text.size(), '#');

    EXPECT_EQ(buffer->size, 14U);
    EXPECT_EQ((std::string_view{buffer->block, 14}), "POINT(1 2 3)\0\0"sv);
    EXPECT_TRUE(buffer->owned);
}

TEST(ScanBytes, TakesAnEmptyText) {
    const ScanBufferHandle buffer = scanBytes("");
    ASSERT_TRUE(buffer);

    EXPECT_EQ(buffer->size, 2U);
    EXPECT_EQ((std::string_view{buffer->block, 2}), "\0\0"sv);
}

TEST(ScanBytes, AsksForTwoBytesMoreThanTheTextAndForTheRecord) {
    const AllocationWatch heap;
    const ScanBufferHandle buffer = scanBytes("12345");

    EXPECT_EQ(heap.requests(), 2);
    EXPECT_EQ(heap.bytes(), 7U + sizeof(ScanBuffer));
}

TEST(ScanBytes, GivesBlockAndRecordBack) {
    const AllocationWatch heap;
    scanBytes("12345").reset();

    EXPECT_EQ(heap.blocksInUse(), 0);
}

TEST(ScanBuffer, TakesABlockAsItStands) {
    std::array<char, 4> block = {'(', ')', '\0', '\0'};
    const AllocationWatch heap;
    {
        const ScanBufferHandle buffer = scanBuffer(block.data(), block.size());
        ASSERT_TRUE(buffer);

        EXPECT_EQ(buffer->block, block.data());
        EXPECT_EQ(buffer->size, 4U);
        EXPECT_FALSE(buffer->owned);
        EXPECT_EQ(heap.blocksInUse(), 1);
    }
    EXPECT_EQ(heap.blocksInUse(), 0);
    EXPECT_EQ((std::string_view{block.data(), 4}), "()\0\0"sv);
}

TEST(ScanBuffer, IsScannedUpToItsZeroBytes) {
    std::array<char, 4> block = {'(', ')', '\0', '\0'};
    const ScanBufferHandle buffer = scanBuffer(block.data(), block.size());
    Scanner scanner{*buffer};

    EXPECT_EQ(nextOf(scanner), (Token{TOK_LPAREN, "("}));
    EXPECT_EQ(nextOf(scanner), (Token{TOK_RPAREN, ")"}));
    EXPECT_EQ(nextOf(scanner), (Token{0, ""}));
}

struct BlockCase {
    const char* name;
    std::array<char, 4> block;
    std::size_t size;
    bool accepted;
};

constexpr BlockCase kBlocks[] = {
    {"NoBytes", {'\0', '\0', '\0', '\0'}, 0, false},
    {"OneByte", {'\0', '\0', '\0', '\0'}, 1, false},
    {"TwoZeroBytes", {'\0', '\0', 'x', 'x'}, 2, true},
    {"NoZeroByte", {'(', '(', '(', '('}, 4, false},
    {"LastByteAlone", {'(', '(', '(', '\0'}, 4, false},
    {"LastButOneAlone", {'(', '(', '\0', '('}, 4, false},
    {"ZeroBytesBehindTheSize", {'(', '(', '\0', '\0'}, 3, false},
    {"ZeroBytesAtTheEnd", {'(', '(', '\0', '\0'}, 4, true},
};

class ScanBufferRules : public testing::TestWithParam<BlockCase> {};

TEST_P(ScanBufferRules, WantTwoZeroBytesAtTheEnd) {
    BlockCase row = GetParam();

    EXPECT_EQ(scanBuffer(row.block.data(), row.size) != nullptr, row.accepted);
}

INSTANTIATE_TEST_SUITE_P(Table, ScanBufferRules, testing::ValuesIn(kBlocks), kRowName);

// ---- No memory: the process ends ---------------------------------------------------------------

// Without a blank between two numbers the text is none that is read without the scanner. The room that
// its geometry would have needed then is asked for first.
constexpr const char* kTextForTheScanner = "POINT(1 2-3)";
constexpr int kOfThePlainReader = 1;

struct Fatal {
    const char* name;
    int nth;
    const char* message;
};

constexpr Fatal kFatal[] = {
    {"ForTheCopy", 1, "out of dynamic memory in yy_scan_bytes()"},
    {"ForTheRecord", 2, "out of dynamic memory in yy_scan_buffer()"},
};

class ScannerDeathTest : public testing::TestWithParam<Fatal> {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    // The message and its line feed, and nothing else.
    static auto isMessage() {
        using testing::AnyOf;
        using testing::Eq;
        const std::string message = GetParam().message;
        return testing::Matcher<const std::string&>(
            AnyOf(Eq(message + "\n"), Eq(message + "\r\n")));
    }
    static auto hasStatusTwo() { return testing::ExitedWithCode(2); }
};

TEST_P(ScannerDeathTest, EndsTheProcessWithItsMessage) {
    EXPECT_EXIT(
        {
            const AllocationFailure failure{GetParam().nth};
            scanBytes("POINT(1 2 3)");
        },
        hasStatusTwo(), isMessage());
}

TEST_P(ScannerDeathTest, EndsTheProcessFromWithinAParse) {
    EXPECT_EXIT(
        {
            GeometryBuffer* geometry = nullptr;
            const AllocationFailure failure{kOfThePlainReader + GetParam().nth};
            vexaParse_string(kTextForTheScanner, &geometry);
        },
        hasStatusTwo(), isMessage());
}

TEST_P(ScannerDeathTest, EndsTheProcessFromWithinAConversion) {
    EXPECT_EXIT(
        {
            const WideText text = widened(kTextForTheScanner);
            std::uint32_t size = 0;
            // The first allocation is that of the narrow text.
            const AllocationFailure failure{1 + kOfThePlainReader + GetParam().nth};
            vexaWKB_getSizeFromTextGeom(text.c_str(), &size);
        },
        hasStatusTwo(), isMessage());
}

INSTANTIATE_TEST_SUITE_P(Table, ScannerDeathTest, testing::ValuesIn(kFatal), kRowName);

TEST(ScanBufferDeathTest, EndsTheProcessWithoutMemoryForTheRecord) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            char block[2] = {};
            const AllocationFailure failure{1};
            scanBuffer(block, sizeof block);
        },
        testing::ExitedWithCode(2),
        testing::HasSubstr("out of dynamic memory in yy_scan_buffer()"));
}

}  // namespace

}  // namespace vexa::test
