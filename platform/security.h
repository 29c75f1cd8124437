#pragma once

#include "vexakit/types.h"

namespace vexa::platform {

/// Attributes that open a named object to everybody; null where memory is short.
SECURITY_ATTRIBUTES* makeOpenSecurity() noexcept;

/// Frees attributes made so; null is nothing.
void freeSecurity(SECURITY_ATTRIBUTES* sa) noexcept;

}  // namespace vexa::platform
