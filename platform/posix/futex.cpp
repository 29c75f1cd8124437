#include "platform/posix/futex.h"

#include "platform/kernel_objects.h"

#include <cerrno>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vexa::platform {

namespace {

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t) &&
              std::atomic<std::uint32_t>::is_always_lock_free);

int operation(int plain, Sharing sharing) {
    return sharing == Sharing::Process ? plain | FUTEX_PRIVATE_FLAG : plain;
}

}  // namespace

Deadline::Deadline(std::uint32_t milliseconds) noexcept : isSet_(milliseconds != kNoTimeLimit) {
    constexpr long kPerSecond = 1000;
    constexpr long kNanosecondsOfOne = 1000000;
    constexpr long kSecond = kPerSecond * kNanosecondsOfOne;
    if (!isSet_) return;

    clock_gettime(CLOCK_MONOTONIC, &time_);
    time_.tv_sec += milliseconds / kPerSecond;
    time_.tv_nsec += static_cast<long>(milliseconds % kPerSecond) * kNanosecondsOfOne;
    if (time_.tv_nsec >= kSecond) {
        time_.tv_nsec -= kSecond;
        ++time_.tv_sec;
    }
}

bool futexWait(std::atomic<std::uint32_t>& word, std::uint32_t value, const Deadline& deadline,
               Sharing sharing) noexcept {
    const long result = syscall(SYS_futex, &word, operation(FUTEX_WAIT_BITSET, sharing), value,
                                deadline.time(), nullptr, FUTEX_BITSET_MATCH_ANY);
    return result == 0 || errno != ETIMEDOUT;
}

void futexWake(std::atomic<std::uint32_t>& word, int sleepers, Sharing sharing) noexcept {
    syscall(SYS_futex, &word, operation(FUTEX_WAKE, sharing), sleepers, nullptr, nullptr, 0);
}

}  // namespace vexa::platform
