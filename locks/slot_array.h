#pragma once

#include "vexakit/locks.h"

#include <cstdint>

namespace vexa {

/// The locks of a set, which copies of the set share: an array that counts its users. Null is none.

/// @throws std::bad_alloc
ThreadLock* makeSlots(std::uint32_t count);

/// One user more.
ThreadLock* shareSlots(ThreadLock* slots) noexcept;

/// One user less; the last destroys the locks, the last one first.
void dropSlots(ThreadLock* slots) noexcept;

}  // namespace vexa
