#pragma once

#include <array>
#include <cstddef>
#include <memory_resource>

namespace vexa {

/// Working arrays: on the stack while they are small, on the heap beyond.
class WorkMemory {  // NOLINT(*-member-init)
public:
    std::pmr::memory_resource* resource() { return &memory_; }

private:
    static constexpr std::size_t kOnStack = 16384;
    std::array<std::byte, kOnStack> room_;  // not worth clearing
    std::pmr::monotonic_buffer_resource memory_{room_.data(), room_.size()};
};

}  // namespace vexa
