#pragma once

#include "platform/posix/object_path.h"

#include <cstddef>
#include <memory>
#include <sys/types.h>

namespace vexa::platform {

/// The memory that all users of a name share: a file in memory, which comes with the first user and
/// goes with the last, be they killed or not.
///
/// Two byte-range locks of the file, which end with the open file, order its life. The first byte is the
/// gate: held while somebody comes or goes. The second is held, shared, by each user. Who comes and
/// gets it alone finds a file that nobody uses, be it new or left by a killed user, and makes it anew.
class SharedFile {
public:
    /// Fills the memory of a file that is new; it is all zeros.
    /// @return whether that was possible
    using Initialise = bool (*)(void* memory, const void* how) noexcept;

    /// Opens the file of a name or makes it, with `mode` for its permissions, and maps it.
    /// @return null where that is not possible
    static std::unique_ptr<SharedFile> open(const ObjectPath& path, std::size_t size, mode_t mode,
                                            Initialise initialise, const void* how) noexcept;

    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;
    ~SharedFile();

    [[nodiscard]] void* memory() const noexcept { return memory_; }
    [[nodiscard]] bool isSameFile(const SharedFile& other) const noexcept;
    /// Whether this process opened it, and did not inherit it.
    [[nodiscard]] bool isOwn() const noexcept;

    /// Ends the use of the file. The memory stays until it is unmapped.
    void leave() noexcept;
    void unmap() noexcept;

    /// Uses the file through what the other opened, which is of the same file; the memory stays.
    void adopt(SharedFile& other) noexcept;

private:
    enum class Outcome { Opened, Again, Impossible };

    SharedFile(const ObjectPath& path, std::size_t size) noexcept : path_(path), size_(size) {}

    static bool create(const ObjectPath& path, std::size_t size, mode_t mode) noexcept;
    Outcome enter(mode_t mode, Initialise initialise, const void* how) noexcept;
    Outcome prepare(mode_t mode, Initialise initialise, const void* how) noexcept;
    bool map() noexcept;
    [[nodiscard]] bool isThatOfThePath() const noexcept;
    void close() noexcept;

    ObjectPath path_;
    std::size_t size_;
    int file_ = -1;
    pid_t process_ = 0;
    dev_t device_ = 0;
    ino_t inode_ = 0;
    void* memory_ = nullptr;
};

}  // namespace vexa::platform
