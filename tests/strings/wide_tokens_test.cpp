#include "tests/support/wide_text.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {
namespace {

constexpr std::uint32_t kSuccess = VEXA_SUCCESS;
constexpr std::uint32_t kFailure = VEXA_FAILURE;
constexpr std::ptrdiff_t kNowhere = -1;
constexpr std::size_t kLongestToken = 255;

struct TokenCase {
    const char* name;
    WideString source;
    WideString delimiters;
    WideString token;
    std::ptrdiff_t next;
};

void PrintTo(const TokenCase& row, std::ostream* out) {
    *out << readable(row.source) << " by " << readable(row.delimiters);
}

const TokenCase kTokens[] = {
    {"First", wide("a,b"), wide(","), wide("a"), 2},
    {"Only", wide("abc"), wide(","), wide("abc"), kNowhere},
    {"DelimiterLast", wide("abc,"), wide(","), wide("abc"), 4},
    {"TwoDelimitersBehind", wide("a,,b"), wide(","), wide("a"), 2},
    {"SkipsALeadingDelimiter", wide(",a"), wide(","), wide("a"), kNowhere},
    {"SkipsAllLeadingDelimiters", wide(",,,a,b"), wide(","), wide("a"), 5},
    {"SkipsLeadingDelimitersOfAnyKind", wide(",;,a;b"), wide(",;"), wide("a"), 5},
    {"DelimiterAlone", wide(","), wide(","), wide(""), kNowhere},
    {"DelimitersAlone", wide(",,,"), wide(","), wide(""), kNowhere},
    {"AnyOfSeveralDelimiters", wide("ab;c,d"), wide(",;"), wide("ab"), 3},
    {"SetIsNoString", wide("a;b,;c"), wide(",;"), wide("a"), 2},
    {"RepeatedInTheSet", wide("a,b"), wide(",,"), wide("a"), 2},
    {"BlanksArePartOfTheToken", wide(" a b ,c"), wide(","), wide(" a b "), 6},
    {"WholeUnitsAreCompared", {0x012C, 0x2C2C, ',', 'a'}, wide(","), {0x012C, 0x2C2C}, 3},
    {"LoneSurrogateAsDelimiter", {'a', 0xD800, 0xDC00}, {0xD800}, {'a'}, 2},
    {"HalfOfAPairAsDelimiter", {0xD83D, 0xDE00, 'b'}, {0xDE00}, {0xD83D}, 2},
    {"GreatestUnitAsDelimiter", {0xFFFF, 'a', 0xFFFF, 'b'}, {0xFFFF}, {'a'}, 3},
    {"WholeUnitsPass", {0xD800, 0xFFFF, 0xDC00, ','}, wide(","), {0xD800, 0xFFFF, 0xDC00}, 4},
};

class StringGetTokenW : public testing::TestWithParam<TokenCase> {};
INSTANTIATE_TEST_SUITE_P(Table, StringGetTokenW, testing::ValuesIn(kTokens),
                         [](const auto& row) { return row.param.name; });

TEST_P(StringGetTokenW, TakesTheFirstToken) {
    const TokenCase& row = GetParam();
    GuardedText token(row.token.size() + 8);
    VexaWChar* next = token.data();

    EXPECT_EQ(string_getTokenW(row.source.c_str(), row.delimiters.c_str(), token.size(),
                               token.data(), &next),
              kSuccess);
    EXPECT_EQ(token.text(), row.token);
    EXPECT_TRUE(token.isUntouchedFrom(row.token.size() + 1));
    EXPECT_EQ(next ? next - row.source.c_str() : kNowhere, row.next);
}

TEST_P(StringGetTokenW, NeedsRoomForTheTokenAndItsTerminator) {
    const TokenCase& row = GetParam();
    GuardedText token(row.token.size() + 1);

    EXPECT_EQ(string_getTokenW(row.source.c_str(), row.delimiters.c_str(), token.size(),
                               token.data(), nullptr),
              kSuccess);
    EXPECT_EQ(token.text(), row.token);
    EXPECT_TRUE(token.areGuardsUntouched());
}

TEST_P(StringGetTokenW, WritesNothingWhereTheTokenDoesNotFit) {
    const TokenCase& row = GetParam();
    GuardedText token(row.token.size() + 1);
    VexaWChar* next = token.data();
    for (std::size_t size = 0; size <= row.token.size(); ++size) {
        EXPECT_EQ(
            string_getTokenW(row.source.c_str(), row.delimiters.c_str(), size, token.data(), &next),
            kFailure);
        EXPECT_TRUE(token.isUntouchedFrom(0));
        EXPECT_EQ(next, token.data());
    }
}

TEST(StringGetTokenW, RefusesNullAndEmptyText) {
    const WideString source = wide("a,b");
    const WideString delimiters = wide(",");
    const WideString empty;
    GuardedText token(8);
    VexaWChar* next = token.data();
    const auto statusOf = [&](const VexaWChar* from, const VexaWChar* by, VexaWChar* into) {
        return string_getTokenW(from, by, 8, into, &next);
    };

    EXPECT_EQ(statusOf(nullptr, delimiters.c_str(), token.data()), kFailure);
    EXPECT_EQ(statusOf(empty.c_str(), delimiters.c_str(), token.data()), kFailure);
    EXPECT_EQ(statusOf(source.c_str(), nullptr, token.data()), kFailure);
    EXPECT_EQ(statusOf(source.c_str(), empty.c_str(), token.data()), kFailure);
    EXPECT_EQ(statusOf(source.c_str(), delimiters.c_str(), nullptr), kFailure);
    EXPECT_TRUE(token.isUntouchedFrom(0));
    EXPECT_EQ(next, token.data());
}

struct ListCase {
    const char* name;
    WideString source;
    WideString delimiters;
    std::vector<WideString> tokens;
};

void PrintTo(const ListCase& row, std::ostream* out) {
    *out << readable(row.source) << " by " << readable(row.delimiters);
}

const ListCase kLists[] = {
    {"One", wide("a"), wide(","), {wide("a")}},
    {"Two", wide("a,b"), wide(","), {wide("a"), wide("b")}},
    {"Three", wide("a,b,c"), wide(","), {wide("a"), wide("b"), wide("c")}},
    {"DoubledDelimiter", wide("a,,b"), wide(","), {wide("a"), wide("b")}},
    {"TripledDelimiter", wide("a,,,b"), wide(","), {wide("a"), wide("b")}},
    {"LeadingDelimiters", wide(",,a"), wide(","), {wide("a")}},
    {"DelimiterLast", wide("a,b,"), wide(","), {wide("a"), wide("b")}},
    {"TwoDelimitersLast", wide("a,b,,"), wide(","), {wide("a"), wide("b"), wide("")}},
    {"ManyDelimitersLast", wide("a,,,,"), wide(","), {wide("a"), wide("")}},
    {"DelimiterAlone", wide(","), wide(","), {wide("")}},
    {"DelimitersAlone", wide(",,"), wide(","), {wide("")}},
    {"SeveralDelimiters",
     wide("one two\tthree"),
     wide(" \t"),
     {wide("one"), wide("two"), wide("three")}},
    {"NothingToSplit", wide("a,b"), wide(";"), {wide("a,b")}},
    {"Empty", wide(""), wide(","), {}},
    {"NoDelimiters", wide("a,b"), wide(""), {}},
    {"WholeUnits", {0xD800, 0x012C, ',', 0xFFFF}, wide(","), {{0xD800, 0x012C}, {0xFFFF}}},
};

class WideTokens : public testing::TestWithParam<ListCase> {};
INSTANTIATE_TEST_SUITE_P(Table, WideTokens, testing::ValuesIn(kLists),
                         [](const auto& row) { return row.param.name; });

TEST_P(WideTokens, AreCounted) {
    const ListCase& row = GetParam();
    std::uint32_t count = 99;

    EXPECT_EQ(string_getTokenCountW(row.source.c_str(), row.delimiters.c_str(), &count), kSuccess);
    EXPECT_EQ(count, row.tokens.size());
}

TEST_P(WideTokens, AreTakenByTheirIndex) {
    const ListCase& row = GetParam();
    for (std::size_t index = 0; index < row.tokens.size(); ++index) {
        GuardedText token(16);
        WideString cells = row.tokens[index];
        cells.resize(16);

        EXPECT_EQ(string_getTokenByIndexW(row.source.c_str(), row.delimiters.c_str(),
                                          static_cast<std::int32_t>(index), token.data(), 16),
                  kSuccess);
        EXPECT_EQ(readable({token.data(), 16}), readable(cells)) << "index " << index;
        EXPECT_TRUE(token.areGuardsUntouched());
    }
}

TEST_P(WideTokens, EndBehindTheLast) {
    const ListCase& row = GetParam();
    const auto end = static_cast<std::int32_t>(row.tokens.size());
    for (const std::int32_t index : {end, end + 1, std::numeric_limits<std::int32_t>::max(), -1,
                                     std::numeric_limits<std::int32_t>::min()}) {
        GuardedText token(16);
        EXPECT_EQ(string_getTokenByIndexW(row.source.c_str(), row.delimiters.c_str(), index,
                                          token.data(), 16),
                  kFailure)
            << "index " << index;
        EXPECT_TRUE(token.isUntouchedFrom(0));
    }
}

TEST(WideTokens, AreTakenOneAfterAnother) {
    const WideString source = wide(",,one,,two,");
    GuardedText token(4);
    VexaWChar* next = nullptr;

    ASSERT_EQ(string_getTokenW(source.c_str(), wide(",").c_str(), 4, token.data(), &next),
              kSuccess);
    EXPECT_EQ(token.text(), wide("one"));
    ASSERT_EQ(string_getTokenW(next, wide(",").c_str(), 4, token.data(), &next), kSuccess);
    EXPECT_EQ(token.text(), wide("two"));
    EXPECT_EQ(next, source.c_str() + source.size());
    EXPECT_EQ(string_getTokenW(next, wide(",").c_str(), 4, token.data(), &next), kFailure);
}

std::vector<WideString> tokensOf(const WideString& source, const WideString& delimiters) {
    std::vector<WideString> tokens;
    for (std::size_t position = 0; position < source.size();) {
        const std::size_t start =
            std::min(source.find_first_not_of(delimiters, position), source.size());
        const std::size_t end = std::min(source.find_first_of(delimiters, start), source.size());
        tokens.push_back(source.substr(start, end - start));
        position = end + 1;
    }
    return tokens;
}

TEST(WideTokens, OfRandomListsAreThoseOfAPlainWalk) {
    const std::uint32_t seed = std::random_device()();
    std::mt19937 random(seed);
    const WideString alphabet = {',', ';', 'a', 'b', 0x012C, 0xFFFF};
    const WideString delimiters = wide(",;");
    for (int round = 0; round < 2000; ++round) {
        WideString source(random() % 14, 'a');
        for (VexaWChar& unit : source) unit = alphabet[random() % alphabet.size()];
        const std::vector<WideString> tokens = tokensOf(source, delimiters);

        std::uint32_t count = 99;
        ASSERT_EQ(string_getTokenCountW(source.c_str(), delimiters.c_str(), &count), kSuccess);
        ASSERT_EQ(count, tokens.size()) << "seed " << seed << ": " << readable(source);
        for (std::uint32_t index = 0; index < count; ++index) {
            GuardedText token(16);
            ASSERT_EQ(string_getTokenByIndexW(source.c_str(), delimiters.c_str(),
                                              static_cast<std::int32_t>(index), token.data(), 16),
                      kSuccess);
            ASSERT_EQ(token.text(), tokens[index])
                << "seed " << seed << ": " << readable(source) << ", index " << index;
        }
    }
}

TEST(StringGetTokenCountW, EndsAtATokenThatIsTooLong) {
    const WideString longest(kLongestToken, 'x');
    std::uint32_t count = 99;

    EXPECT_EQ(string_getTokenCountW((wide("a,") + longest + wide(",b")).c_str(), wide(",").c_str(),
                                    &count),
              kSuccess);
    EXPECT_EQ(count, 3U);
    EXPECT_EQ(string_getTokenCountW((wide("a,x") + longest + wide(",b")).c_str(), wide(",").c_str(),
                                    &count),
              kSuccess);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(string_getTokenCountW(WideString(100'000, 'x').c_str(), wide(",").c_str(), &count),
              kSuccess);
    EXPECT_EQ(count, 0U);
}

TEST(StringGetTokenCountW, CountsMany) {
    constexpr std::uint32_t kTokenCount = 70'000;
    WideString source;
    for (std::uint32_t index = 0; index < kTokenCount; ++index) source += wide("ab,");
    std::uint32_t count = 0;

    EXPECT_EQ(string_getTokenCountW(source.c_str(), wide(",").c_str(), &count), kSuccess);
    EXPECT_EQ(count, kTokenCount);
}

TEST(StringGetTokenCountW, RefusesNull) {
    const WideString source = wide("a,b");
    const WideString delimiters = wide(",");
    std::uint32_t count = 99;

    EXPECT_EQ(string_getTokenCountW(nullptr, delimiters.c_str(), &count), kFailure);
    EXPECT_EQ(string_getTokenCountW(source.c_str(), nullptr, &count), kFailure);
    EXPECT_EQ(count, 99U);
    EXPECT_EQ(string_getTokenCountW(source.c_str(), delimiters.c_str(), nullptr), kFailure);
}

std::uint32_t tokenByIndex(const char* source, std::int32_t index, GuardedText& token) {
    return string_getTokenByIndexW(wide(source).c_str(), wide(",").c_str(), index, token.data(),
                                   token.size());
}

TEST(StringGetTokenByIndexW, NeedsRoomForTheToken) {
    GuardedText tooShort(3);
    EXPECT_EQ(tokenByIndex("a,bcd,e", 1, tooShort), kFailure);
    EXPECT_TRUE(tooShort.isUntouchedFrom(0));

    GuardedText exact(4);
    EXPECT_EQ(tokenByIndex("a,bcd,e", 1, exact), kSuccess);
    EXPECT_EQ(exact.text(), wide("bcd"));
    EXPECT_TRUE(exact.areGuardsUntouched());
}

TEST(StringGetTokenByIndexW, NeedsRoomForTheTokensBefore) {
    GuardedText token(3);
    EXPECT_EQ(tokenByIndex("a,bcd,e", 2, token), kFailure);
    EXPECT_TRUE(token.isUntouchedFrom(0));
    EXPECT_EQ(tokenByIndex("a,bcd,e", 0, token), kSuccess);
    EXPECT_EQ(token.text(), wide("a"));
}

TEST(StringGetTokenByIndexW, TakesLongTokens) {
    const WideString longToken(100'000, 0xFFFF);
    GuardedText token(longToken.size() + 1);

    EXPECT_EQ(string_getTokenByIndexW((wide("a,") + longToken).c_str(), wide(",").c_str(), 1,
                                      token.data(), token.size()),
              kSuccess);
    EXPECT_TRUE(token.text() == longToken);
    EXPECT_TRUE(token.areGuardsUntouched());
}

TEST(StringGetTokenByIndexW, WritesNothingForASizeOfZero) {
    GuardedText token(4);

    EXPECT_EQ(string_getTokenByIndexW(wide("a,b").c_str(), wide(",").c_str(), 0, token.data(), 0),
              kFailure);
    EXPECT_EQ(string_getTokenByIndexW(wide(",").c_str(), wide(",").c_str(), 0, token.data(), 0),
              kFailure);
    EXPECT_TRUE(token.isUntouchedFrom(0));
}

TEST(StringGetTokenByIndexW, RefusesNull) {
    const WideString source = wide("a,b");
    const WideString delimiters = wide(",");
    GuardedText token(4);

    EXPECT_EQ(string_getTokenByIndexW(nullptr, delimiters.c_str(), 0, token.data(), 4), kFailure);
    EXPECT_EQ(string_getTokenByIndexW(source.c_str(), nullptr, 0, token.data(), 4), kFailure);
    EXPECT_TRUE(token.isUntouchedFrom(0));
    EXPECT_EQ(string_getTokenByIndexW(source.c_str(), delimiters.c_str(), 0, nullptr, 4), kFailure);
}

}  // namespace
}  // namespace vexa::test
