#pragma once

#include "vexakit/types.h"

#include <string_view>

namespace vexa::platform {

/// The decimal point of the locale that the C runtime uses now, as its narrow and as its wide
/// functions read and print it.
std::string_view decimalPoint() noexcept;
VexaWChar wideDecimalPoint() noexcept;

}  // namespace vexa::platform
