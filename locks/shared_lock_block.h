#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace vexa {

/// The state of an inter-process lock, in memory that all who use its name share. It is all zeros at
/// first. Everybody may read it at any time; only `TryLock`, `ObtainLock` and the releases write it.
struct SharedLockBlock {
    /// How often an attempt is repeated.
    std::atomic<std::uint32_t> spinCount;
    /// Acquisitions that are not given back yet, and threads that wait.
    std::atomic<std::int32_t> lockCount;
    std::atomic<std::uint32_t> ownerThread;
    std::atomic<std::uint32_t> ownerProcess;
    /// Address of the owner's object in its own process; only compared.
    std::atomic<std::uint64_t> ownerLock;
    std::atomic<std::int32_t> recursion;
    std::uint32_t unused;
};

static_assert(sizeof(SharedLockBlock) == 32, "all processes have the same layout");
static_assert(offsetof(SharedLockBlock, lockCount) == 4);
static_assert(offsetof(SharedLockBlock, ownerThread) == 8);
static_assert(offsetof(SharedLockBlock, ownerProcess) == 12);
static_assert(offsetof(SharedLockBlock, ownerLock) == 16);
static_assert(offsetof(SharedLockBlock, recursion) == 24);
static_assert(std::atomic<std::uint64_t>::is_always_lock_free,
              "a lock of its own would not be shared");

}  // namespace vexa
