#include "platform/identity.h"

#include <windows.h>

namespace vexa::platform {

std::uint32_t currentThreadId() noexcept {
    return GetCurrentThreadId();
}

std::uint32_t currentProcessId() noexcept {
    return GetCurrentProcessId();
}

std::uint32_t processorCount() noexcept {
    SYSTEM_INFO system{};
    GetSystemInfo(&system);
    return system.dwNumberOfProcessors;
}

}  // namespace vexa::platform
