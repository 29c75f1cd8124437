#pragma once

#include "vexakit/types.h"

#include <cstdarg>
#include <cstddef>

namespace vexa::platform {

/// Print values by a format of the Windows runtime.
///
/// @param out   room for `room` characters
/// @return the characters of the text, which is terminated unless it fills the room; negative where it
///         does not fit (the room then holds its first characters) and where the format fails
int printNarrow(char* out, std::size_t room, const char* format, va_list values) noexcept;
int printWide(VexaWChar* out, std::size_t room, const VexaWChar* format, va_list values) noexcept;

/// The characters that `printWide` would print; negative where the format fails.
int printedWideLength(const VexaWChar* format, va_list values) noexcept;

}  // namespace vexa::platform
