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
/// gets it alone has found what killed users left, and puts a new file in its place.
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
    /// Whether it was new, or made anew, when it was opened.
    [[nodiscard]] bool isNew() const noexcept { return isNew_; }
    [[nodiscard]] bool isSameFile(const SharedFile& other) const noexcept;
    /// Whether this process opened it, and did not inherit it.
    [[nodiscard]] bool isOwn() const noexcept;

    /// Maps the memory where it is not.
    bool map() noexcept;
    /// Ends the use of the file. The memory stays until it is unmapped.
    void leave() noexcept;
    void unmap() noexcept;

    /// Keeps others from coming and going while this object lives.
    class Gate {
    public:
        explicit Gate(const SharedFile& file) noexcept;
        Gate(const Gate&) = delete;
        Gate& operator=(const Gate&) = delete;
        ~Gate();
        explicit operator bool() const noexcept { return file_ >= 0; }

    private:
        int file_;
    };

    /// The use of the file by itself, without the memory, for another to end; null where memory is short.
    std::unique_ptr<SharedFile> detachUse() noexcept;

    /// Uses the file through what the other opened, which is of the same file; the memory stays.
    void adopt(SharedFile& other) noexcept;

private:
    enum class Outcome { Opened, Again, Impossible };

    /// What a new file starts with.
    struct Start {
        mode_t mode;
        Initialise initialise;
        const void* how;
    };

    SharedFile(const ObjectPath& path, std::size_t size) noexcept : path_(path), size_(size) {}

    Outcome openExisting(const Start& start) noexcept;
    Outcome create(const Start& start) noexcept;
    Outcome join(const Start& start) noexcept;
    Outcome replaceLeftover(const Start& start) noexcept;
    bool fill(const Start& start) noexcept;
    bool remember() noexcept;
    [[nodiscard]] bool isThatOfThePath() const noexcept;
    void close() noexcept;

    ObjectPath path_;
    std::size_t size_;
    int file_ = -1;
    bool isNew_ = false;
    pid_t process_ = 0;
    dev_t device_ = 0;
    ino_t inode_ = 0;
    void* memory_ = nullptr;
};

}  // namespace vexa::platform
