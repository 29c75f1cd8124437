#pragma once

#include "platform/posix/mutex_state.h"
#include "platform/posix/object_path.h"

#include <cstdint>
#include <sys/types.h>

namespace vexa::platform {

/// A named mutex as this process has it: once, whichever handles it has, so that it is known which
/// thread holds it.
class NamedMutex;

/// The mutex of a name, with one handle more; null where that is not possible.
NamedMutex* openNamedMutex(const ObjectPath& path, mode_t mode) noexcept;

/// One handle less. With the last one the process leaves the mutex. Its memory stays as long as a thread
/// of the process holds it.
void closeNamedMutex(NamedMutex* mutex) noexcept;

WaitResult waitForNamed(NamedMutex& mutex, std::uint32_t milliseconds) noexcept;
bool releaseNamed(NamedMutex& mutex) noexcept;

}  // namespace vexa::platform
