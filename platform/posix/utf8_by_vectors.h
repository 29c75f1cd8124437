#pragma once

#include "vexakit/types.h"

#include <cstddef>

namespace vexa::platform {

/// How far two conversions have come.
template <typename From, typename To>
struct Progress {
    const From* from;
    To* to;
};

/// Whether the machine has vectors that the functions below are made for; without them they do nothing.
bool hasUtf8Vectors() noexcept;

/// Converts text by the widest vectors of the machine, up to its end or to a block of it that has no room;
/// of lone surrogates each is replaced.
Progress<VexaWChar, char> wideToUtf8ByVectors(const VexaWChar* from, const VexaWChar* end, char* to,
                                              const char* limit) noexcept;

/// The same the other way. Stops as well before bytes that are no character.
Progress<char, VexaWChar> utf8ToWideByVectors(const char* from, const char* end, VexaWChar* to,
                                              const VexaWChar* limit) noexcept;

}  // namespace vexa::platform
