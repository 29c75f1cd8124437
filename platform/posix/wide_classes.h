#pragma once

#include "vexakit/types.h"

#include <cstdint>
#include <span>

namespace vexa::platform {

namespace tables {

struct UnitRange {
    std::uint16_t first;
    std::uint16_t last;
};

/// In rising order, without what is ASCII.
extern const std::span<const UnitRange> kWideSpaces;
extern const std::span<const UnitRange> kWideControls;

}  // namespace tables

/// Classes of the Windows runtime's "C" locale.
bool isSpaceUnit(VexaWChar unit) noexcept;
bool isControlUnit(VexaWChar unit) noexcept;

}  // namespace vexa::platform
