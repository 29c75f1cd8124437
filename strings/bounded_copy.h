#pragma once

#include "platform/wide_characters.h"
#include "vexakit/types.h"

#include <cstddef>
#include <cstring>

namespace vexa {

/// Characters before the terminator, `most` where there is none among so many.
inline std::size_t lengthWithin(const char* text, std::size_t most) noexcept {
    const void* const end = std::memchr(text, '\0', most);
    return end ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : most;
}

inline std::size_t lengthWithin(const VexaWChar* text, std::size_t most) noexcept {
    return platform::wideLengthWithin(text, most);
}

/// Copies `count` characters, fewer than `size`, and fills the output up to `size` with zeros. The
/// output may overlap the source.
template <typename Character>
void copyAndFill(const Character* source, std::size_t count, Character* out,
                 std::size_t size) noexcept {
    std::memmove(out, source, count * sizeof(Character));
    std::memset(out + count, 0, (size - count) * sizeof(Character));
}

}  // namespace vexa
