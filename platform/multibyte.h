#pragma once

#include "vexakit/types.h"

#include <cstddef>

namespace vexa::platform {

/// Characters of text in the ANSI code page: one or two bytes in the East Asian pages, one byte in all
/// others. A character's code is its byte, or its lead byte times 256 plus its trail byte. All text is
/// zero-terminated, and a lead byte right before the terminator is a character of one byte to those
/// that step and none to those that count.

/// Whether the byte starts a character of two bytes.
bool isLeadByte(char byte) noexcept;

/// Whether a character is white space, by its code.
bool isSpace(unsigned code) noexcept;

/// Characters of the text.
std::size_t characterCount(const char* text) noexcept;

/// The start of the character behind the one at `at`, which is not the terminator.
const char* nextCharacter(const char* at) noexcept;

/// The start of the character before `at`, which lies behind `start`; both are starts of characters.
const char* previousCharacter(const char* start, const char* at) noexcept;

/// The first or last character of that code, the terminator for 0; null where there is none.
const char* findCharacter(const char* text, unsigned code) noexcept;
const char* findLastCharacter(const char* text, unsigned code) noexcept;

/// The first place of `part` at whole characters; null where there is none. Neither text is empty.
const char* findText(const char* text, const char* part) noexcept;

/// Change the case of letters where they are.
void toUpper(char* text) noexcept;
void toLower(char* text) noexcept;

/// The wide character that a byte by itself stands for in the "C" locale: that of its value.
VexaWChar wideFromByte(char byte) noexcept;

}  // namespace vexa::platform
