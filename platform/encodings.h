#pragma once

#include "vexakit/types.h"

namespace vexa::platform {

/// The number of the ANSI code page: the system's on Windows; elsewhere the one that fits the charset
/// of the environment's locale when the library is loaded.
unsigned ansiCodePage() noexcept;

/// The conversions between wide text and the ANSI code page or UTF-8. Characters that the other side
/// lacks become its best fit or its replacement character.
///
/// @param source  `length` characters, or text up to and with its terminator where `length` is -1
/// @param out     room for `room` characters; with a `room` of 0 nothing is written
/// @return the characters of the whole conversion; 0 for a length of 0 or below -1, where the room is
///         too small (what fits may have been written), and where an `int` cannot tell their number
int wideToAnsi(const VexaWChar* source, int length, char* out, int room) noexcept;
int ansiToWide(const char* source, int length, VexaWChar* out, int room) noexcept;
int wideToUtf8(const VexaWChar* source, int length, char* out, int room) noexcept;
int utf8ToWide(const char* source, int length, VexaWChar* out, int room) noexcept;

}  // namespace vexa::platform
