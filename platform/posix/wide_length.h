#pragma once

#include "vexakit/types.h"

#include <cstddef>
#include <limits>

namespace vexa::platform {

constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

/// Units of the text before its terminator, at most `most`.
std::size_t unitsBeforeTerminator(const VexaWChar* text, std::size_t most = kUnlimited) noexcept;

}  // namespace vexa::platform
