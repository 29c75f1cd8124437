#pragma once

#include "platform/kernel_objects.h"
#include "platform/posix/futex.h"

#include <atomic>
#include <cstdint>
#include <pthread.h>

namespace vexa::platform {

/// Who of this process holds a mutex. The kernel finds the mutexes of a thread that ends through their
/// addresses: the memory of one that is held must stay where it is.
class MutexHolder {
public:
    void taken() noexcept;
    void released() noexcept;
    [[nodiscard]] bool isCaller() const noexcept;
    /// Whether a living thread of this process holds the mutex.
    [[nodiscard]] bool isAlive() const noexcept;
    void reset() noexcept;

private:
    /// A thread's number of the system may be another's later; its serial number is its own, but for
    /// forked children, which inherit it.
    std::atomic<std::uint32_t> thread_{0};
    std::atomic<std::uint64_t> serial_{0};
    std::atomic<std::uint32_t> depth_{0};
};

/// A mutex, in memory of this process or of several: re-entrant, owned by a thread, and abandoned where
/// that ends.
struct MutexState {
    pthread_mutex_t mutex;

    void initialise(Sharing sharing) noexcept;
    WaitResult wait(std::uint32_t milliseconds, MutexHolder& holder) noexcept;
    /// Whether nobody holds it; an abandoned one is made so.
    bool isFree(const MutexHolder& holder) noexcept;
    /// @return whether the calling thread owned it
    bool release(MutexHolder& holder) noexcept;
};

}  // namespace vexa::platform
