#pragma once

#include "platform/multibyte.h"

#include <cstddef>

namespace vexa {

/// The character that multibyte text starts with.
struct MultibyteCharacter {
    unsigned code;
    std::size_t bytes;

    [[nodiscard]] bool isByte(char byte) const {
        return bytes == 1 && code == static_cast<unsigned char>(byte);
    }
};

/// A lead byte right before the terminator is a character of one byte, but none that equals a byte.
inline MultibyteCharacter firstCharacter(const char* text) {
    const unsigned first = static_cast<unsigned char>(text[0]);
    if (!platform::isLeadByte(text[0])) return {first, 1};
    const unsigned second = static_cast<unsigned char>(text[1]);
    return {first << 8 | second, text[1] == '\0' ? 1U : 2U};
}

/// Characters of the text, without a lead byte right before the terminator.
std::size_t characterCount(const char* text);

/// The start of the character before `at`, which lies behind `start`; both are starts of characters.
const char* previousCharacter(const char* start, const char* at);

/// The first or last character of that code, the terminator for 0; null where there is none.
const char* findCharacter(const char* text, unsigned code);
const char* findLastCharacter(const char* text, unsigned code);

/// The first place of `part` at whole characters; null where there is none. Neither text is empty.
const char* findText(const char* text, const char* part);

}  // namespace vexa
