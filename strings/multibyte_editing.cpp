#include "platform/multibyte.h"
#include "strings/multibyte_text.h"
#include "vexakit/strings.h"

#include <cstring>

using namespace vexa;

namespace {

constexpr char kBackslash = '\\';

bool isSpace(const char* text) {
    return platform::isSpace(firstCharacter(text).code);
}

// A lead byte at the end is kept from whoever might take the terminator for its trail.
void changeCase(char* text, void (*change)(char* text) noexcept) {
    const size_t size = std::strlen(text);
    char* const last = size > 0 ? text + (previousCharacter(text, text + size) - text) : text;
    const char kept = *last;
    const bool endsWithLead = platform::isLeadByte(kept) && last + 1 == text + size;
    if (endsWithLead) *last = '\0';
    change(text);
    if (endsWithLead) *last = kept;
}

char* copyBytes(const char* from, size_t count, char* to) {
    std::memmove(to, from, count);
    return to + count;
}

}  // namespace

char* string_toUpperA(char* text) {
    if (text) changeCase(text, &platform::toUpper);
    return text;
}

char* string_toLowerA(char* text) {
    if (text) changeCase(text, &platform::toLower);
    return text;
}

char* string_replaceCharA(char* text, char from, char to) {
    if (!text) return nullptr;

    for (char* at = text; *at != '\0';) {
        const MultibyteCharacter character = firstCharacter(at);
        if (character.isByte(from)) *at = to;
        at += character.bytes;
    }
    return text;
}

char* string_replaceCRA(char* text) {
    if (!text) return nullptr;

    char* out = text;
    for (const char* at = text; *at != '\0';) {
        const MultibyteCharacter character = firstCharacter(at);
        if (character.isByte(kBackslash) && (at[1] == 'n' || at[1] == 'N')) {
            *out++ = '\n';
            at += 2;
        } else {
            out = copyBytes(at, character.bytes, out);
            at += character.bytes;
        }
    }
    *out = '\0';
    return text;
}

char* string_addFileSeperatorA(char* path) {
    if (!path) return nullptr;

    const size_t size = std::strlen(path);
    // A byte, not a character: a trail byte of that value will do, too.
    if (size > 0 && path[size - 1] == kBackslash) return path;

    path[size] = kBackslash;
    path[size + 1] = '\0';
    return path;
}

char* string_stripLeadWhiteSpaceA(char* text) {
    if (!text) return nullptr;

    const char* rest = text;
    while (*rest != '\0' && isSpace(rest)) rest += firstCharacter(rest).bytes;
    if (rest != text) std::memmove(text, rest, std::strlen(rest) + 1);
    return text;
}

char* string_stripTrailWhiteSpaceA(char* text) {
    if (!text) return nullptr;

    char* end = text + std::strlen(text);
    while (end > text) {
        const size_t last = static_cast<size_t>(previousCharacter(text, end) - text);
        if (!isSpace(text + last)) break;
        std::memset(text + last, 0, static_cast<size_t>(end - text) - last);
        end = text + last;
    }
    return text;
}

char* string_stripWhiteSpaceA(char* text) {
    if (!text) return nullptr;

    char* out = text;
    for (const char* at = text; *at != '\0';) {
        // One byte goes, whatever the character has, and what moves into its place is kept unseen.
        if (isSpace(at) && *++at == '\0') break;
        const size_t bytes = firstCharacter(at).bytes;
        out = copyBytes(at, bytes, out);
        at += bytes;
    }
    *out = '\0';
    return text;
}
