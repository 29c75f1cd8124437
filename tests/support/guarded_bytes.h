#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include <gtest/gtest.h>

/// Multibyte text in an array of its own, between guard bytes that nobody may touch.
namespace vexa::test {

/// A byte that nobody wrote, unless a test says otherwise.
constexpr char kGuardByte = '\x7F';

class GuardedBytes {
public:
    /// Room for so many bytes, none of them written.
    explicit GuardedBytes(std::size_t room, char guard = kGuardByte)
        : guard_(guard), cells_(kGuard + room + kGuard, guard) {}

    /// The text and its terminator, and spare bytes behind them.
    explicit GuardedBytes(std::string_view text, std::size_t spare = 0, char guard = kGuardByte)
        : GuardedBytes(text.size() + 1 + spare, guard) {
        *std::copy(text.begin(), text.end(), data()) = '\0';
    }

    char* data() { return cells_.data() + kGuard; }

    /// The whole room, whatever it holds.
    std::string bytes() const { return cells_.substr(kGuard, cells_.size() - 2 * kGuard); }

    /// What stands before the first zero; everything where there is none.
    std::string text() const { return bytes().substr(0, bytes().find('\0')); }

    bool areGuardsUntouched() const {
        const auto isGuard = [this](char byte) { return byte == guard_; };
        return std::all_of(cells_.begin(), cells_.begin() + kGuard, isGuard) &&
               std::all_of(cells_.end() - kGuard, cells_.end(), isGuard);
    }

private:
    static constexpr std::ptrdiff_t kGuard = 64;

    char guard_;
    std::string cells_;
};

/// What may lie around a text in memory: blanks, letters, separators, lead bytes. It must not matter.
constexpr char kSurroundings[] = {kGuardByte, ' ', 'a', '\\', ',', '\x83', '\0'};

/// The answer of `ask(GuardedBytes&)`, which has to be the same whatever lies around the text.
template <typename Ask>
auto whateverIsAround(std::string_view text, std::size_t spare, Ask ask) {
    std::optional<std::invoke_result_t<Ask, GuardedBytes&>> answer;
    for (const char guard : kSurroundings) {
        GuardedBytes bytes(text, spare, guard);
        const auto answered = ask(bytes);
        EXPECT_TRUE(bytes.areGuardsUntouched());
        EXPECT_EQ(answered, answer.value_or(answered)) << "surrounded by " << int{guard};
        answer = answered;
    }
    return *answer;
}

/// What an editing function leaves of a text in an array that holds the text and `spare` bytes more.
template <typename... Arguments>
std::string editedWithRoom(std::size_t spare, char* (*edit)(char*, Arguments...),
                           std::string_view text, std::type_identity_t<Arguments>... arguments) {
    return whateverIsAround(text, spare, [&](GuardedBytes& bytes) {
        EXPECT_EQ(static_cast<void*>(edit(bytes.data(), arguments...)), bytes.data());
        return bytes.text();
    });
}

/// What an editing function leaves of a text in an array that holds just that.
template <typename... Arguments>
std::string edited(char* (*edit)(char*, Arguments...), std::string_view text,
                   std::type_identity_t<Arguments>... arguments) {
    return editedWithRoom(0, edit, text, arguments...);
}

constexpr std::ptrdiff_t kNowhere = -1;

/// Where in the text a function's result points; `kNowhere` for null.
template <typename... Arguments>
std::ptrdiff_t found(char* (*search)(const char*, Arguments...), std::string_view text,
                     std::type_identity_t<Arguments>... arguments) {
    return whateverIsAround(text, 0, [&](GuardedBytes& bytes) {
        const char* const result = search(bytes.data(), arguments...);
        EXPECT_EQ(bytes.text(), text);
        return result ? result - bytes.data() : kNowhere;
    });
}

/// What a counting function says of a text.
template <typename... Arguments>
std::size_t counted(std::size_t (*count)(const char*, Arguments...), std::string_view text,
                    std::type_identity_t<Arguments>... arguments) {
    return whateverIsAround(text, 0,
                            [&](GuardedBytes& bytes) { return count(bytes.data(), arguments...); });
}

}  // namespace vexa::test
