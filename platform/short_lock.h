#pragma once

#include <cstdint>

namespace vexa::platform {

/// A lock of this process in one word, which is 0 at first. It is for a few steps at a time; it is
/// not re-entrant.
class ShortLockGuard {
public:
    explicit ShortLockGuard(std::uint32_t& word) noexcept;
    ShortLockGuard(const ShortLockGuard&) = delete;
    ShortLockGuard& operator=(const ShortLockGuard&) = delete;
    ~ShortLockGuard();

private:
    std::uint32_t& word_;
};

}  // namespace vexa::platform
