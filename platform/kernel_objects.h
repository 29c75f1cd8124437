#pragma once

#include "vexakit/types.h"

#include <cstdint>

namespace vexa::platform {

/// Events, mutexes and shared memory of the system. Those with a name are shared by all processes of
/// the machine that use the name; they are made by the first of them and go with the last. Names
/// with a backslash make no object. `sa` says who may use a named object; it counts for who makes it,
/// and null stands for the same user alone.
///
/// A handle that is null or closed is no object: operations on it fail, and nothing is touched.
using Handle = void*;

enum class Reset { Manual, Automatic };

enum class WaitResult {
    Signalled,
    /// The mutex is owned now; its last owner ended without releasing it.
    Abandoned,
    TimedOut,
    Failed
};

constexpr std::uint32_t kNoTimeLimit = 0xFFFFFFFF;

/// Make an object, or open that of the name. A null name makes an event or a mutex that is not shared.
/// @return null where that is not possible
Handle createEvent(Reset reset, bool isSignalled, const VexaWChar* name,
                   SECURITY_ATTRIBUTES* sa) noexcept;
/// Re-entrant, owned by a thread, and abandoned where that ends.
Handle createMutex(const VexaWChar* name, SECURITY_ATTRIBUTES* sa) noexcept;
/// Shared memory of `size` bytes, which are 0 at first. Off Windows the event, whose users open it before
/// the memory and close it after, is made unsignalled where the memory is new: what a killed user left
/// signalled means nothing to those who start with zeros.
Handle createMapping(std::uint32_t size, const VexaWChar* name, SECURITY_ATTRIBUTES* sa,
                     Handle event = nullptr) noexcept;

/// The address of shared memory in this process; null where that is not possible.
void* mapView(Handle mapping) noexcept;
/// Whether the address is that of the mapping, which is open.
bool isMapped(Handle mapping, const void* view) noexcept;
/// Gives the address up; does nothing where it is not that of the mapping.
void unmapView(Handle mapping, void* view) noexcept;

bool setEvent(Handle event) noexcept;
bool resetEvent(Handle event) noexcept;
/// @return whether the calling thread owned the mutex
bool releaseMutex(Handle mutex) noexcept;

/// Waits for an event or a mutex.
WaitResult waitFor(Handle object, std::uint32_t milliseconds) noexcept;

bool closeHandle(Handle object) noexcept;

}  // namespace vexa::platform
