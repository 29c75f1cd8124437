#include "tests/support/active_page.h"
#include "tests/support/guarded_bytes.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr auto kSuccess = static_cast<std::uint32_t>(VEXA_SUCCESS);
constexpr auto kFailure = static_cast<std::uint32_t>(VEXA_FAILURE);

struct Token {
    std::string text;
    std::ptrdiff_t next = kNowhere;

    bool operator==(const Token&) const = default;
};

void PrintTo(const Token& token, std::ostream* out) {
    *out << testing::PrintToString(token.text) << " next " << token.next;
}

// The first token of the list, taken into an array that holds just that.
Token firstToken(std::string_view list, const char* delimiters, std::size_t tokenBytes) {
    return whateverIsAround(list, 0, [&](GuardedBytes& source) {
        GuardedBytes token(tokenBytes + 1);
        char* next = nullptr;

        EXPECT_EQ(string_getTokenA(source.data(), delimiters, token.data(), &next), kSuccess);
        EXPECT_EQ(source.text(), list);
        EXPECT_TRUE(token.areGuardsUntouched());
        return Token{token.text(), next ? next - source.data() : kNowhere};
    });
}

// All tokens of the list, taken one after another.
std::vector<std::string> allTokens(std::string_view list, const char* delimiters) {
    return whateverIsAround(list, 0, [&](GuardedBytes& source) {
        std::vector<std::string> tokens;
        const char* position = source.data();
        while (position) {
            GuardedBytes token(list.size() + 1);
            char* next = nullptr;
            if (string_getTokenA(position, delimiters, token.data(), &next) != kSuccess) break;
            tokens.push_back(token.text());
            position = next;
        }
        return tokens;
    });
}

using Tokens = std::vector<std::string>;

// ---- string_getTokenA ---------------------------------------------------------------------------

TEST(StringGetTokenA, TakesUpToTheDelimiter) {
    EXPECT_EQ(firstToken("ab,c", ",", 2), (Token{"ab", 3}));
    EXPECT_EQ(firstToken("ab;c,d", ",;", 2), (Token{"ab", 3}));
    EXPECT_EQ(firstToken("a b", "\t ", 1), (Token{"a", 2}));
}

TEST(StringGetTokenA, TakesUpToTheEnd) {
    EXPECT_EQ(firstToken("ab", ",", 2), (Token{"ab", kNowhere}));
    EXPECT_EQ(firstToken("a b;c", ",", 5), (Token{"a b;c", kNowhere}));
}

TEST(StringGetTokenA, LeavesNextAtTheEmptyStringBehindALastDelimiter) {
    EXPECT_EQ(firstToken("ab,", ",", 2), (Token{"ab", 3}));
}

TEST(StringGetTokenA, SkipsOneDelimiterInFront) {
    EXPECT_EQ(firstToken(",a", ",", 1), (Token{"a", kNowhere}));
    EXPECT_EQ(firstToken(",a,b", ",", 1), (Token{"a", 3}));
    EXPECT_EQ(firstToken(",,a", ",", 0), (Token{"", 2}));
    EXPECT_EQ(firstToken(";,a", ",;", 0), (Token{"", 2}));
    EXPECT_EQ(firstToken(",", ",", 0), (Token{"", kNowhere}));
    EXPECT_EQ(firstToken(",,", ",", 0), (Token{"", 2}));
}

TEST(StringGetTokenA, TakesADoubledDelimiterForOne) {
    EXPECT_EQ(allTokens("a,b", ","), (Tokens{"a", "b"}));
    EXPECT_EQ(allTokens("a,,b", ","), (Tokens{"a", "b"}));
    EXPECT_EQ(allTokens("a,;b", ",;"), (Tokens{"a", "b"}));
    EXPECT_EQ(allTokens("a,,,b", ","), (Tokens{"a", "", "b"}));
    EXPECT_EQ(allTokens("a,,,,b", ","), (Tokens{"a", "", "b"}));
    EXPECT_EQ(allTokens(",a,", ","), (Tokens{"a"}));
    EXPECT_EQ(allTokens("a,,", ","), (Tokens{"a", ""}));
    EXPECT_EQ(allTokens(",,,", ","), (Tokens{"", ""}));
}

TEST(StringGetTokenA, TakesTokensOfAnyLength) {
    const std::string token(100'000, 't');
    EXPECT_EQ(firstToken(token + ",z", ",", token.size()), (Token{token, 100'001}));
}

TEST(StringGetTokenA, NeedsNoNext) {
    GuardedBytes token(2);

    EXPECT_EQ(string_getTokenA("a,b", ",", token.data(), nullptr), kSuccess);
    EXPECT_EQ(token.text(), "a");
    EXPECT_TRUE(token.areGuardsUntouched());
}

TEST(StringGetTokenA, MayPutTheTokenOverTheList) {
    for (const std::string_view list : {"abcdef,g", ",abcdef,g"}) {
        GuardedBytes bytes(list);
        char* next = nullptr;

        EXPECT_EQ(string_getTokenA(bytes.data(), ",", bytes.data(), &next), kSuccess);
        EXPECT_EQ(bytes.text(), "abcdef");
        EXPECT_STREQ(next, "g");
        EXPECT_TRUE(bytes.areGuardsUntouched());
    }
}

struct RefusedList {
    const char* name;
    const char* source;
    const char* delimiters;
};

void PrintTo(const RefusedList& row, std::ostream* out) {
    *out << row.name;
}

class StringGetTokenARefused : public testing::TestWithParam<RefusedList> {};
INSTANTIATE_TEST_SUITE_P(Table, StringGetTokenARefused,
                         testing::Values(RefusedList{"NullSource", nullptr, ","},
                                         RefusedList{"EmptySource", "", ","},
                                         RefusedList{"NullDelimiters", "a", nullptr},
                                         RefusedList{"EmptyDelimiters", "a", ""}),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringGetTokenARefused, WritesNothing) {
    const auto [name, source, delimiters] = GetParam();
    GuardedBytes token(4);
    const std::string untouched = token.bytes();
    char marker = 0;
    char* next = &marker;

    EXPECT_EQ(string_getTokenA(source, delimiters, token.data(), &next), kFailure);
    EXPECT_EQ(string_getTokenA(source, delimiters, token.data(), nullptr), kFailure);
    EXPECT_EQ(token.bytes(), untouched);
    EXPECT_EQ(next, &marker);
}

TEST(StringGetTokenA, RefusesANullToken) {
    char marker = 0;
    char* next = &marker;

    EXPECT_EQ(string_getTokenA("a,b", ",", nullptr, &next), kFailure);
    EXPECT_EQ(next, &marker);
}

TEST(StringGetTokenAInPage932, StepsOverTrailBytes) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(firstToken("\x83\x5C\\z", "\\", 2), (Token{"\x83\x5C", 3}));
    EXPECT_EQ(firstToken("z\x83\x61za", "a", 4), (Token{"z\x83\x61z", 5}));
    EXPECT_EQ(firstToken("\x83\x83\\z", "\\", 2), (Token{"\x83\x83", 3}));
    EXPECT_EQ(allTokens("\x83\x5C\\\x83\x61\\", "\\"), (Tokens{"\x83\x5C", "\x83\x61"}));
}

// the delimiters are bytes, so a double-byte one is two
TEST(StringGetTokenAInPage932, EndsATokenAtEachByteOfADoubleByteDelimiter) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(firstToken("a\\b", "\x83\x5C", 1), (Token{"a", 2}));
    EXPECT_EQ(firstToken("a\x83\x5Cz", "\x83\x5C", 1), (Token{"a", 2}));
    EXPECT_EQ(firstToken("a\x83\x61z", "\x83\x5C", 1), (Token{"a", 2}));
    EXPECT_EQ(firstToken("a\x82\x83z", "\x83\x5C", 4), (Token{"a\x82\x83z", kNowhere}));
}

// only a single-byte delimiter is skipped
TEST(StringGetTokenAInPage932, HasAnEmptyTokenBeforeALeadByteThatIsADelimiter) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(firstToken("\x83\x61z", "\x83\x5C", 0), (Token{"", 1}));
    EXPECT_EQ(firstToken("\\b", "\x83\x5C", 1), (Token{"b", kNowhere}));
}

TEST(StringGetTokenAInPage932, StopsAtTheTerminatorBehindALeadByte) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(firstToken("a\x83", ",", 2), (Token{"a\x83", kNowhere}));
    EXPECT_EQ(firstToken("\x83", ",", 1), (Token{"\x83", kNowhere}));
    EXPECT_EQ(firstToken(",\x83", ",", 1), (Token{"\x83", kNowhere}));
}

TEST(StringGetTokenAInPage1252, LooksAtEveryByte) {
    VEXA_NEEDS_PAGE(1252);
    EXPECT_EQ(firstToken("\x83\x5Cz", "\\", 1), (Token{"\x83", 2}));
    EXPECT_EQ(firstToken("a\xA7z", "\xA7", 1), (Token{"a", 2}));
}

TEST(StringGetTokenAInPage65001, LooksAtEveryByte) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(firstToken("a\xC3\xA9z", "\xC3\xA9", 1), (Token{"a", 2}));
    EXPECT_EQ(firstToken("\xA9z", "\xC3\xA9", 1), (Token{"z", kNowhere}));
    EXPECT_EQ(allTokens("a\xC3\xA9z", "\xC3\xA9"), (Tokens{"a", "z"}));
    EXPECT_EQ(allTokens("a\xC3\xA8z", "\xC3\xA9"), (Tokens{"a", "\xA8z"}));
}

// ---- string_getTokenCountA ----------------------------------------------------------------------

std::uint32_t tokenCount(std::string_view list, const char* delimiters) {
    return whateverIsAround(list, 0, [&](GuardedBytes& source) {
        std::uint32_t count = 99;
        EXPECT_EQ(string_getTokenCountA(source.data(), delimiters, &count), kSuccess);
        EXPECT_EQ(source.text(), list);
        return count;
    });
}

TEST(StringGetTokenCountA, CountsWhatIsTakenOneAfterAnother) {
    EXPECT_EQ(tokenCount("a", ","), 1U);
    EXPECT_EQ(tokenCount("a,b", ","), 2U);
    EXPECT_EQ(tokenCount("a,b,", ","), 2U);
    EXPECT_EQ(tokenCount(",a,b", ","), 2U);
    EXPECT_EQ(tokenCount("a,,b", ","), 2U);
    EXPECT_EQ(tokenCount("a,,,b", ","), 3U);
    EXPECT_EQ(tokenCount("a;b c", ";, "), 3U);
    EXPECT_EQ(tokenCount(",", ","), 1U);
    EXPECT_EQ(tokenCount(",,", ","), 1U);
    EXPECT_EQ(tokenCount(",,,", ","), 2U);
}

TEST(StringGetTokenCountA, IsZeroForAnEmptyListOrNoDelimiters) {
    EXPECT_EQ(tokenCount("", ","), 0U);
    EXPECT_EQ(tokenCount("a,b", ""), 0U);
    EXPECT_EQ(tokenCount("a,b", nullptr), 0U);
    EXPECT_EQ(tokenCount("", nullptr), 0U);
}

TEST(StringGetTokenCountA, RefusesNullPointers) {
    std::uint32_t count = 99;

    EXPECT_EQ(string_getTokenCountA(nullptr, ",", &count), kFailure);
    EXPECT_EQ(string_getTokenCountA("a,b", ",", nullptr), kFailure);
    EXPECT_EQ(string_getTokenCountA(nullptr, nullptr, nullptr), kFailure);
    EXPECT_EQ(count, 99U);
}

TEST(StringGetTokenCountA, CountsTokensOfAnyLength) {
    for (const std::size_t length : {126U, 127U, 128U, 129U, 1000U, 1'000'000U}) {
        const std::string token(length, 't');
        EXPECT_EQ(tokenCount(token, ","), 1U) << length;
        EXPECT_EQ(tokenCount("a," + token, ","), 2U) << length;
        EXPECT_EQ(tokenCount(token + ",a,b", ","), 3U) << length;
    }
}

TEST(StringGetTokenCountA, CountsLongLists) {
    std::string list;
    for (int i = 0; i < 100'000; ++i) list += "t;";
    EXPECT_EQ(tokenCount(list, ",;"), 100'000U);
}

TEST(StringGetTokenCountAInPage932, StepsOverTrailBytes) {
    VEXA_NEEDS_PAGE(932);
    EXPECT_EQ(tokenCount("\x83\x5C\\\x83\x5C", "\\"), 2U);
    EXPECT_EQ(tokenCount("a\x83", "\\"), 1U);
    EXPECT_EQ(tokenCount("a\\\x83", "\\"), 2U);
}

TEST(StringGetTokenCountAInPage65001, LooksAtEveryByte) {
    VEXA_NEEDS_PAGE(65001);
    EXPECT_EQ(tokenCount("a\xC3\xA9z", "\xC3\xA9"), 2U);
    EXPECT_EQ(tokenCount("a\xC3\xA9z", "\xA9"), 2U);
}

}  // namespace

}  // namespace vexa::test
