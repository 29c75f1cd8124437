#pragma once

#include "vexakit/types.h"

#include <array>
#include <optional>
#include <string_view>

namespace vexa::platform {

/// The file of a named object in the folder of shared memory. Each name has a file of its own, in each
/// PID namespace: what a lock keeps of threads means nothing in another one.
class ObjectPath {
public:
    /// Nothing for a name with a backslash.
    static std::optional<ObjectPath> ofName(std::basic_string_view<VexaWChar> name) noexcept;

    [[nodiscard]] const char* data() const noexcept { return path_.data(); }

private:
    ObjectPath() = default;

    void add(char character) noexcept { path_[size_++] = character; }
    void add(std::string_view text) noexcept;
    void addHex(unsigned long long number, int digits) noexcept;
    void addEscaped(VexaWChar unit) noexcept;

    std::array<char, 272> path_{};
    std::size_t size_ = 0;
};

/// Where named objects live.
inline constexpr const char* kSharedMemoryFolder = "/dev/shm";

}  // namespace vexa::platform
