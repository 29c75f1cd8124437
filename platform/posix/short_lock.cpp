#include "platform/short_lock.h"

#include "platform/kernel_objects.h"
#include "platform/posix/futex.h"

#include <atomic>

namespace vexa::platform {

namespace {

enum State : std::uint32_t { Free, Held, HeldAndWaitedFor };

std::atomic<std::uint32_t>& stateIn(std::uint32_t& word) {
    return reinterpret_cast<std::atomic<std::uint32_t>&>(word);
}

}  // namespace

ShortLockGuard::ShortLockGuard(std::uint32_t& word) noexcept : word_(word) {
    std::atomic<std::uint32_t>& state = stateIn(word_);
    std::uint32_t expected = Free;
    if (state.compare_exchange_strong(expected, Held, std::memory_order_acquire)) return;

    const Deadline never(kNoTimeLimit);
    while (state.exchange(HeldAndWaitedFor, std::memory_order_acquire) != Free) {
        futexWait(state, HeldAndWaitedFor, never, Sharing::Process);
    }
}

ShortLockGuard::~ShortLockGuard() {
    std::atomic<std::uint32_t>& state = stateIn(word_);
    if (state.exchange(Free, std::memory_order_release) == HeldAndWaitedFor) {
        futexWake(state, 1, Sharing::Process);
    }
}

}  // namespace vexa::platform
