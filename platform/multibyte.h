#pragma once

#include "vexakit/types.h"

namespace vexa::platform {

/// Characters of the ANSI code page: one or two bytes in the East Asian pages, one byte in all others.
/// A character's code is its byte, or its lead byte times 256 plus its trail byte.

/// Whether the page has characters of two bytes.
bool isDoubleBytePage() noexcept;

/// Whether the byte starts a character of two bytes.
bool isLeadByte(char byte) noexcept;

/// Whether a character is white space, by its code.
bool isSpace(unsigned code) noexcept;

/// Change the case of letters where they are. The text is zero-terminated and does not end with a lead
/// byte.
void toUpper(char* text) noexcept;
void toLower(char* text) noexcept;

/// The wide character that a byte by itself stands for in the "C" locale: that of its value.
VexaWChar wideFromByte(char byte) noexcept;

}  // namespace vexa::platform
