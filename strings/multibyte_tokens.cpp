#include "strings/delimiters.h"
#include "strings/multibyte_text.h"
#include "strings/short_tokens.h"
#include "vexakit/strings.h"
#include "vexakit/types.h"

#include <cstring>

using namespace vexa;

namespace {

bool isEmpty(const char* text) {
    return !text || *text == '\0';
}

struct Token {
    const char* start;
    /// The delimiter, or the terminator of the list.
    const char* end;

    [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(end - start); }
    [[nodiscard]] bool isLast() const { return *end == '\0'; }
};

/// @param list  not empty
Token firstToken(const char* list, Delimiters delimiters) {
    const char* end = delimiters.endOfToken(list);
    // One only: of two delimiters that follow each other the second starts an empty token.
    if (end == list && firstCharacter(list).bytes == 1) end = delimiters.endOfToken(++list);
    return {list, end};
}

// By itself, so that the way of short tokens keeps its few values in registers.
[[gnu::noinline]] TokenEnd takeTokenOfAnyLength(const char* list, Delimiters delimiters,
                                                char* token) {
    const Token first = firstToken(list, delimiters);
    // The token may come to lie over the end.
    const TokenEnd end = {first.end, first.isLast()};
    std::memmove(token, first.start, first.size());
    token[first.size()] = '\0';
    return end;
}

/// @param list  not empty
TokenEnd takeToken(const char* list, Delimiters delimiters, char* token) {
    if (delimiters.areSimple()) {
        const TokenEnd end = takeShortToken(list, delimiters.four(), token);
        if (end.at) [[likely]]
            return end;
    }
    return takeTokenOfAnyLength(list, delimiters, token);
}

}  // namespace

uint32_t string_getTokenA(const char* source, const char* delimiters, char* token, char** next) {
    if (isEmpty(source) || isEmpty(delimiters) || !token) return VEXA_FAILURE;

    const TokenEnd end = takeToken(source, Delimiters(delimiters), token);
    // A branch that is foreseen: the next call need not wait for the byte at the end.
    constexpr double kHardlyEver = 0.995;
    if (next && __builtin_expect_with_probability(end.isEndOfList, false, kHardlyEver)) {
        *next = nullptr;
    } else if (next) {
        *next = const_cast<char*>(end.at + 1);
    }
    return VEXA_SUCCESS;
}

uint32_t string_getTokenCountA(const char* source, const char* delimiters, uint32_t* count) {
    if (!source || !count) return VEXA_FAILURE;

    uint32_t tokens = 0;
    if (!isEmpty(delimiters)) {
        const Delimiters set(delimiters);
        for (const char* rest = source; !isEmpty(rest); ++tokens) {
            const Token token = firstToken(rest, set);
            rest = token.isLast() ? nullptr : token.end + 1;
        }
    }
    *count = tokens;
    return VEXA_SUCCESS;
}
