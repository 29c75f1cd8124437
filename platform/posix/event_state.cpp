#include "platform/posix/event_state.h"

#include <limits>

namespace vexa::platform {

// The waiters are counted on: memory is 0 at first, and who still waits for an event that was here before
// counts himself out.
void EventState::initialise(Reset reset, bool signalled) noexcept {
    isManual.store(reset == Reset::Manual ? 1 : 0, std::memory_order_relaxed);
    isSignalled.store(signalled ? 1 : 0, std::memory_order_release);
}

// A waiter counts itself in before it looks at the state for the last time, and the state is set
// before the waiters are counted: one of the two sees the other.
void EventState::set(Sharing sharing) noexcept {
    isSignalled.exchange(1);
    if (waiters.load() == 0) return;

    const bool letsAllPass = isManual.load(std::memory_order_relaxed) != 0;
    futexWake(isSignalled, letsAllPass ? std::numeric_limits<int>::max() : 1, sharing);
}

void EventState::reset() noexcept {
    isSignalled.store(0, std::memory_order_release);
}

bool EventState::take() noexcept {
    if (isManual.load(std::memory_order_relaxed) != 0) return isSignalled.load() != 0;
    std::uint32_t expected = 1;
    return isSignalled.compare_exchange_strong(expected, 0);
}

WaitResult EventState::wait(std::uint32_t milliseconds, Sharing sharing) noexcept {
    if (take()) return WaitResult::Signalled;
    if (milliseconds == 0) return WaitResult::TimedOut;

    const Deadline deadline(milliseconds);
    for (;;) {
        waiters.fetch_add(1);
        const bool goesOn = futexWait(isSignalled, 0, deadline, sharing);
        waiters.fetch_sub(1);
        if (take()) return WaitResult::Signalled;
        if (!goesOn) return WaitResult::TimedOut;
    }
}

}  // namespace vexa::platform
