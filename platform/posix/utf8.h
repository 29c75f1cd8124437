#pragma once

#include "vexakit/types.h"

#include <cstddef>
#include <span>

namespace vexa::platform {

/// Bytes of the text in UTF-8. A lone surrogate counts as U+FFFD, which takes its place.
std::size_t utf8Size(std::span<const VexaWChar> text) noexcept;

/// Writes the text as UTF-8.
///
/// @return the bytes written; 0 where the room is too small: it then holds the whole characters
///         before the first that does not fit
std::size_t wideToUtf8(std::span<const VexaWChar> text, std::span<char> room) noexcept;

}  // namespace vexa::platform
