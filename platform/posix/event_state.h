#pragma once

#include "platform/kernel_objects.h"
#include "platform/posix/futex.h"

#include <atomic>
#include <cstdint>

namespace vexa::platform {

/// An event, in memory of this process or of several. The signal is in the state and never in a wake:
/// a waiter that is killed takes none along.
struct EventState {
    std::atomic<std::uint32_t> isSignalled;
    std::atomic<std::uint32_t> waiters;
    std::atomic<std::uint32_t> isManual;

    void initialise(Reset reset, bool signalled) noexcept;
    void set(Sharing sharing) noexcept;
    void reset() noexcept;
    WaitResult wait(std::uint32_t milliseconds, Sharing sharing) noexcept;

private:
    bool take() noexcept;
};

}  // namespace vexa::platform
