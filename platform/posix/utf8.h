#pragma once

#include "vexakit/types.h"

#include <cstddef>
#include <span>

namespace vexa::platform {

/// Bytes of the text in UTF-8. A lone surrogate counts as U+FFFD, which takes its place.
std::size_t utf8Size(std::span<const VexaWChar> text) noexcept;

/// Units of UTF-8 as wide text. Each maximal part of a character that is not whole, and each byte that
/// is no part of any, counts as U+FFFD, which takes its place.
std::size_t wideSize(std::span<const char> text) noexcept;

/// Write the text in the other encoding.
///
/// @return the bytes or units written; 0 where the room is too small: it then holds the whole
///         characters before the first that does not fit
std::size_t wideToUtf8(std::span<const VexaWChar> text, std::span<char> room) noexcept;
std::size_t utf8ToWide(std::span<const char> text, std::span<VexaWChar> room) noexcept;

}  // namespace vexa::platform
