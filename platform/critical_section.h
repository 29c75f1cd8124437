#pragma once

#include <array>
#include <cstddef>

namespace vexa::platform {

/// A re-entrant lock of one process, owned by a thread: each `enter` of the owner is undone by one
/// `leave`. Making one cannot fail.
class CriticalSection {
public:
    CriticalSection() noexcept;
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    ~CriticalSection();

    void enter() noexcept;
    /// @return whether the calling thread now owns the lock; does not wait
    bool tryEnter() noexcept;
    void leave() noexcept;

private:
#if defined(__aarch64__)
    static constexpr std::size_t kSize = 48;
#else
    static constexpr std::size_t kSize = 40;
#endif
    alignas(8) std::array<std::byte, kSize> section_{};
};

}  // namespace vexa::platform
