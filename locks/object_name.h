#pragma once

#include "vexakit/types.h"

#include <array>
#include <cstddef>

namespace vexa {

/// Room for the name of a kernel object, terminator included.
constexpr std::size_t kObjectNameRoom = 260;
using ObjectName = std::array<VexaWChar, kObjectNameRoom>;

/// The name of a kernel object: an ASCII format with "%s" for the name that the caller gave, cut to the
/// room.
ObjectName formatObjectName(const char* format, const VexaWChar* name) noexcept;

}  // namespace vexa
