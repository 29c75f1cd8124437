#pragma once

#include "platform/wide_characters.h"
#include "vexakit/types.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vexa {

inline auto equals(VexaWChar character) {
    return [=](VexaWChar unit) { return unit == character; };
}

/// Moves what starts at `rest` and its terminator to the start of the text.
inline void keepFrom(VexaWChar* text, const VexaWChar* rest) {
    if (rest == text) return;
    std::memmove(text, rest, (platform::wideLength(rest) + 1) * sizeof(VexaWChar));
}

/// Removes the units that `isStripped` names. What moves into the place of one is kept unseen, so of
/// two side by side the second stays.
template <typename IsStripped>
void stripEverySecond(VexaWChar* text, IsStripped isStripped) {
    VexaWChar* out = text;
    for (const VexaWChar* at = text; *at != 0; ++at) {
        if (isStripped(*at) && *++at == 0) break;
        *out++ = *at;
    }
    *out = 0;
}

/// Removes up to `count` leading units that `isStripped` names.
template <typename IsStripped>
void stripLeading(VexaWChar* text, std::uint32_t count, IsStripped isStripped) {
    const VexaWChar* rest = text;
    for (; count > 0 && *rest != 0 && isStripped(*rest); --count) ++rest;
    keepFrom(text, rest);
}

/// Puts terminators for up to `count` trailing units that `isStripped` names.
template <typename IsStripped>
void stripTrailing(VexaWChar* text, std::uint32_t count, IsStripped isStripped) {
    std::size_t end = platform::wideLength(text);
    for (; count > 0 && end > 0 && isStripped(text[end - 1]); --count) text[--end] = 0;
}

}  // namespace vexa
