#include "strings/multibyte_text.h"
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
    size_t size;
    /// Behind the delimiter; null where the list ended the token.
    const char* next;
};

// The bytes that end a token.
class Delimiters {
public:
    explicit Delimiters(const char* bytes) : bytes_(bytes) {}

    [[nodiscard]] bool contain(char byte) const {
        return byte != '\0' && std::strchr(bytes_, byte) != nullptr;
    }

private:
    const char* bytes_;
};

/// @param list  not empty
Token firstToken(const char* list, const Delimiters& delimiters) {
    // One only: of two delimiters that follow each other the second starts an empty token.
    if (delimiters.contain(*list) && firstCharacter(list).bytes == 1) ++list;

    const char* end = list;
    while (*end != '\0' && !delimiters.contain(*end)) end += firstCharacter(end).bytes;
    return {list, static_cast<size_t>(end - list), *end == '\0' ? nullptr : end + 1};
}

}  // namespace

uint32_t string_getTokenA(const char* source, const char* delimiters, char* token, char** next) {
    if (isEmpty(source) || isEmpty(delimiters) || !token) return VEXA_FAILURE;

    const Token first = firstToken(source, Delimiters(delimiters));
    std::memmove(token, first.start, first.size);
    token[first.size] = '\0';
    if (next) *next = const_cast<char*>(first.next);
    return VEXA_SUCCESS;
}

uint32_t string_getTokenCountA(const char* source, const char* delimiters, uint32_t* count) {
    if (!source || !count) return VEXA_FAILURE;

    uint32_t tokens = 0;
    if (!isEmpty(delimiters)) {
        const Delimiters set(delimiters);
        for (const char* rest = source; !isEmpty(rest); rest = firstToken(rest, set).next) ++tokens;
    }
    *count = tokens;
    return VEXA_SUCCESS;
}
