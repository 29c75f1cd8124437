#pragma once

#include <atomic>
#include <cstdint>
#include <ctime>

namespace vexa::platform {

/// Who may wait on a word: the threads of this process, or of all processes that map it.
enum class Sharing { Process, Machine };

/// A point on the monotonic clock, or none.
class Deadline {
public:
    /// @param milliseconds  from now; `kNoTimeLimit` is never
    explicit Deadline(std::uint32_t milliseconds) noexcept;

    /// Null for never.
    [[nodiscard]] const std::timespec* time() const noexcept { return isSet_ ? &time_ : nullptr; }

private:
    std::timespec time_{};
    bool isSet_;
};

/// Sleeps while the word has that value, until a wake or the deadline; may also wake for no reason.
/// @return false once the deadline has passed
bool futexWait(std::atomic<std::uint32_t>& word, std::uint32_t value, const Deadline& deadline,
               Sharing sharing) noexcept;

void futexWake(std::atomic<std::uint32_t>& word, int sleepers, Sharing sharing) noexcept;

}  // namespace vexa::platform
