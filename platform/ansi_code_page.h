#pragma once

#include "vexakit/types.h"

namespace vexa::platform {

/// Converts wide text to the ANSI code page: the system's on Windows; elsewhere the one that fits
/// the charset of the environment's locale when the library is loaded.
///
/// @param source  `length` units, or text up to and with its terminator where `length` is -1
/// @param out     room for `room` bytes; with a `room` of 0 nothing is written
/// @return the bytes of the whole conversion; 0 for a length of 0 or below -1, where the room is
///         too small (what fits may have been written), and where an `int` cannot tell the bytes
int wideToAnsi(const VexaWChar* source, int length, char* out, int room) noexcept;

}  // namespace vexa::platform
