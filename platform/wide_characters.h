#pragma once

#include "vexakit/types.h"

#include <cstddef>

namespace vexa::platform {

/// Units before the terminator; in the second form at most `most`, and none behind them is looked at.
std::size_t wideLength(const VexaWChar* text) noexcept;
std::size_t wideLengthWithin(const VexaWChar* text, std::size_t most) noexcept;

/// Classes of the Windows runtime's "C" locale.
bool isWideSpace(VexaWChar unit) noexcept;
bool isWideControl(VexaWChar unit) noexcept;

/// Change the case of letters where they are.
void toWideUpper(VexaWChar* text) noexcept;
void toWideLower(VexaWChar* text) noexcept;

}  // namespace vexa::platform
