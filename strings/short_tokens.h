#pragma once

#include "platform/vector_width.h"

#include <cstdint>

namespace vexa {

struct TokenEnd {
    /// The delimiter, or the terminator of the list.
    const char* at;
    bool isEndOfList;
};

/// Takes the first token of a list where one vector holds all of it, with the delimiter in front that
/// is left out and the one at its end: on machines with AVX-512 alone.
///
/// @param list        not empty
/// @param delimiters  four, a byte each; zero ends a token in any case
/// @param token       takes the token and its terminator, no byte more; may lie over the list
/// @return where the token ends; null where the token is longer, and then nothing is written
TokenEnd takeShortToken(const char* list, std::uint32_t delimiters, char* token) noexcept;

}  // namespace vexa
