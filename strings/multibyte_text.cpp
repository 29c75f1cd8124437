#include "strings/multibyte_text.h"

#include <cstring>

namespace vexa {

namespace {

// The first start of a character at or behind `place`, from a start before it.
const char* stepTo(const char* place, const char* at) {
    while (at < place) at += firstCharacter(at).bytes;
    return at;
}

}  // namespace

std::size_t characterCount(const char* text) {
    if (!platform::isDoubleBytePage()) return std::strlen(text);

    std::size_t count = 0;
    while (*text != '\0') {
        const MultibyteCharacter character = firstCharacter(text);
        if (character.bytes == 1 && platform::isLeadByte(*text)) break;
        text += character.bytes;
        ++count;
    }
    return count;
}

// A byte is a trail where an odd number of lead bytes stands before it: each two of them are a
// character, and the one that is left over is its lead byte.
const char* previousCharacter(const char* start, const char* at) {
    const char* const last = at - 1;
    const char* firstLead = last;
    while (firstLead > start && platform::isLeadByte(firstLead[-1])) --firstLead;
    return (last - firstLead) % 2 == 1 ? last - 1 : last;
}

const char* findCharacter(const char* text, unsigned code) {
    if (!platform::isDoubleBytePage()) return std::strchr(text, static_cast<char>(code));

    while (*text != '\0') {
        const MultibyteCharacter character = firstCharacter(text);
        if (character.code == code) return text;
        text += character.bytes;
    }
    return code == 0 ? text : nullptr;
}

const char* findLastCharacter(const char* text, unsigned code) {
    if (!platform::isDoubleBytePage()) return std::strrchr(text, static_cast<char>(code));

    const char* last = nullptr;
    while (*text != '\0') {
        const MultibyteCharacter character = firstCharacter(text);
        if (character.code == code) last = text;
        text += character.bytes;
    }
    return code == 0 ? text : last;
}

const char* findText(const char* text, const char* part) {
    if (!platform::isDoubleBytePage()) return std::strstr(text, part);

    // Where the bytes begin or end inside a character, the search goes on behind it.
    const std::size_t size = std::strlen(part);
    for (const char* at = text; const char* const found = std::strstr(at, part);) {
        at = stepTo(found, at);
        if (at != found) continue;
        if (stepTo(found + size, found) == found + size) return found;
        at += firstCharacter(at).bytes;
    }
    return nullptr;
}

}  // namespace vexa
