#pragma once

#include <cstdint>

namespace vexa::platform {

/// Numbers that no other thread or process of the machine has at the time.
std::uint32_t currentThreadId() noexcept;
std::uint32_t currentProcessId() noexcept;

/// Processors of the machine, whichever of them this process may use.
std::uint32_t processorCount() noexcept;

}  // namespace vexa::platform
