#include "platform/multibyte.h"
#include "tests/support/fenced_block.h"
#include "tests/support/vector_widths.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr auto kSuccess = static_cast<std::uint32_t>(VEXA_SUCCESS);
constexpr std::size_t kNoNext = SIZE_MAX;

struct Token {
    std::string text;
    std::size_t next = kNoNext;

    bool operator==(const Token&) const = default;
};

// ---- Byte by byte ------------------------------------------------------------------------------

bool endsToken(char byte, const std::string& delimiters) {
    return byte != '\0' && delimiters.find(byte) != std::string::npos;
}

/// Bytes of the character at a place; a lead byte at the end is one by itself.
std::size_t bytesAt(const std::string& list, std::size_t place) {
    return platform::isLeadByte(list[place]) && place + 1 < list.size() ? 2 : 1;
}

Token modelOfFirst(const std::string& list, const std::string& delimiters) {
    std::size_t start = 0;
    if (endsToken(list[0], delimiters) && bytesAt(list, 0) == 1) start = 1;
    std::size_t end = start;
    while (end < list.size() && !endsToken(list[end], delimiters)) end += bytesAt(list, end);
    return {list.substr(start, end - start), end < list.size() ? end + 1 : kNoNext};
}

std::uint32_t modelOfCount(std::string list, const std::string& delimiters) {
    std::uint32_t count = 0;
    while (!list.empty()) {
        ++count;
        const std::size_t next = modelOfFirst(list, delimiters).next;
        list = next == kNoNext ? std::string{} : list.substr(next);
    }
    return count;
}

// ---- Checks ------------------------------------------------------------------------------------

/// The first token, of a list that ends where its memory does, into room that ends with the token.
Token firstOf(const std::string& list, const std::string& delimiters, std::size_t tokenBytes) {
    const FencedBlock source{list.c_str(), list.size() + 1, Fence::Behind};
    const FencedBlock ends{delimiters.c_str(), delimiters.size() + 1, Fence::Behind};
    const FencedBlock token{tokenBytes + 1, Fence::Behind};
    auto* const before = token.as<char>() - 1;
    *before = '\x5A';
    char* next = nullptr;

    EXPECT_EQ(string_getTokenA(source.as<char>(), ends.as<char>(), token.as<char>(), &next),
              kSuccess);
    EXPECT_EQ(*before, '\x5A');
    EXPECT_EQ(std::memcmp(source.as<char>(), list.c_str(), list.size() + 1), 0);
    return {token.as<char>(), next ? static_cast<std::size_t>(next - source.as<char>()) : kNoNext};
}

void agreeOn(const std::string& list, const std::string& delimiters) {
    const Token expected = modelOfFirst(list, delimiters);
    const std::uint32_t expectedCount = modelOfCount(list, delimiters);
    atEachWidth([&] {
        ASSERT_EQ(firstOf(list, delimiters, expected.text.size()), expected)
            << testing::PrintToString(list) << " by " << testing::PrintToString(delimiters);
        std::uint32_t count = 99;
        ASSERT_EQ(string_getTokenCountA(list.c_str(), delimiters.c_str(), &count), kSuccess);
        ASSERT_EQ(count, expectedCount) << testing::PrintToString(list);
    });
}

/// Lead and trail bytes of page 932 and UTF-8 are among the bytes, and delimiters now and then.
class RandomLists {
public:
    explicit RandomLists(std::uint32_t seed) : engine_(seed) {}

    std::size_t below(std::size_t bound) { return engine_() % bound; }

    std::string bytes(std::size_t count, std::string_view among) {
        std::string text(count, '\0');
        for (char& byte : text) byte = among[below(among.size())];
        return text;
    }

    std::string list(std::size_t most, const std::string& delimiters) {
        std::string text =
            bytes(1 + below(most), "abcxyz\\\x5C\x81\x83\x9F\xE0\xC3\xA9\x40\x7F\xFF");
        for (std::size_t left = below(4); left > 0; --left) {
            text[below(text.size())] = delimiters[below(delimiters.size())];
        }
        return text;
    }

private:
    std::mt19937 engine_;
};

// ---- string_getTokenA, string_getTokenCountA ---------------------------------------------------

TEST(StringGetTokenASearch, IsTheSameForTokensOfEveryLength) {
    for (std::size_t length = 0; length <= 100; ++length) {
        const std::string token(length, 't');
        agreeOn(token + ",z", ",");
        agreeOn("," + token + ",z", ",");
        agreeOn(",," + token, ",");
        if (length > 0) agreeOn(token, ",;");
        if (testing::Test::HasFailure()) return;
    }
}

TEST(StringGetTokenASearch, KnowsEachOfItsDelimiters) {
    for (const std::string all : {",", ",;", ",;|", ",;|\xA7", ",;|\xA7 ", ",;|\xA7 \t\x01\xFF"}) {
        for (const char one : all) {
            agreeOn(std::string("abc") + one + "z", all);
            agreeOn(std::string(40, 'a') + one + "z", all);
            agreeOn(one + std::string(20, 'a') + one, all);
        }
        agreeOn("ab\x02zz", all);
    }
}

TEST(StringGetTokenASearch, IsTheSameForRandomLists) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        RandomLists random{seed};
        const std::string delimiters =
            random.bytes(1 + random.below(7), ",;|/\t\\ \x5C\x83\x81\xA7\xFF\x01\x80");
        agreeOn(random.list(seed % 2 == 0 ? 20 : 90, delimiters), delimiters);
        if (testing::Test::HasFailure()) return;
    }
}

TEST(StringGetTokenASearch, IsTheSameWhereverTheListLies) {
    constexpr std::size_t kPlaces = 80;
    alignas(64) char room[3 * kPlaces];
    for (std::size_t place = 1; place < kPlaces; ++place) {
        for (std::size_t length = 0; length < 40; ++length) {
            // Delimiters before the list and behind its terminator do not count.
            std::memset(room, ',', sizeof room);
            std::memset(room + place, 't', length);
            std::memcpy(room + place + length, ";z", 3);
            atEachWidth([&] {
                char token[41];
                char* next = nullptr;
                ASSERT_EQ(string_getTokenA(room + place, ";", token, &next), kSuccess);
                ASSERT_EQ(std::string_view(token), length > 0 ? std::string(length, 't') : "z");
                ASSERT_EQ(next, length > 0 ? room + place + length + 1 : nullptr);
            });
        }
    }
}

TEST(StringGetTokenASearch, MayPutTheTokenAnywhereOverTheList) {
    const std::string list = ",abcdefghijklmno,g";
    for (std::size_t place = 0; place <= list.size(); ++place) {
        atEachWidth([&] {
            std::string room = list + std::string(20, '.');
            room[list.size()] = '\0';
            char* next = nullptr;
            ASSERT_EQ(string_getTokenA(room.data(), ",", room.data() + place, &next), kSuccess);
            EXPECT_STREQ(room.data() + place, "abcdefghijklmno") << "at " << place;
            EXPECT_EQ(next, room.data() + list.size() - 1);
        });
    }
}

// What the token is written over may have ended the list.
TEST(StringGetTokenASearch, KnowsTheEndOfAListThatTheTokenLiesOver) {
    for (const std::size_t length : {1U, 7U, 15U, 16U, 31U, 32U, 60U}) {
        for (std::size_t place = 0; place <= length; ++place) {
            atEachWidth([&] {
                std::string room = std::string(length, 'a') + std::string(2 * length + 2, '\0');
                char* next = room.data();
                ASSERT_EQ(string_getTokenA(room.data(), ",", room.data() + place, &next), kSuccess);
                EXPECT_EQ(std::string_view(room.data() + place), std::string(length, 'a'));
                EXPECT_EQ(next, nullptr) << length << " bytes at " << place;
            });
        }
    }
}

}  // namespace

}  // namespace vexa::test
