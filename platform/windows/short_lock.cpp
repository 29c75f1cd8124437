#include "platform/short_lock.h"

#include <windows.h>

#include <atomic>

namespace vexa::platform {

namespace {

constexpr std::uint32_t kFree = 0;
constexpr std::uint32_t kHeld = 1;

}  // namespace

ShortLockGuard::ShortLockGuard(std::uint32_t& word) noexcept : word_(word) {
    constexpr int kTriesBeforeYielding = 100;
    constexpr int kTriesBeforeSleeping = 200;
    std::atomic_ref<std::uint32_t> state(word_);
    for (int tries = 0; state.exchange(kHeld, std::memory_order_acquire) != kFree; ++tries) {
        if (tries < kTriesBeforeYielding) {
            YieldProcessor();
        } else {
            // A holder of lower priority gets its turn in the sleep alone.
            Sleep(tries < kTriesBeforeSleeping ? 0 : 1);
        }
    }
}

ShortLockGuard::~ShortLockGuard() {
    std::atomic_ref<std::uint32_t>(word_).store(kFree, std::memory_order_release);
}

}  // namespace vexa::platform
