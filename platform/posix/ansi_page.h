#pragma once

#include "platform/posix/code_pages.h"

namespace vexa::platform {

/// The ANSI code page: the one that fits the charset of the environment's locale as it was when the
/// library was loaded.
const CodePage& ansiPage() noexcept;

}  // namespace vexa::platform
