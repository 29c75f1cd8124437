#include "platform/posix/shared_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vexa::platform {

namespace {

constexpr mode_t kPermissionBits = 0777;

// Takes or gives back the lock of one byte.
bool lockByte(int file, int command, short kind, off_t byte) {
    struct flock lock {};
    lock.l_type = kind;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    int result = 0;
    do {
        result = fcntl(file, command, &lock);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

constexpr off_t kGate = 0;
constexpr off_t kUsers = 1;

bool enterGate(int file) {
    return lockByte(file, F_OFD_SETLKW, F_WRLCK, kGate);
}

void leaveGate(int file) {
    lockByte(file, F_OFD_SETLK, F_UNLCK, kGate);
}

bool becomeOnlyUser(int file) {
    return lockByte(file, F_OFD_SETLK, F_WRLCK, kUsers);
}

bool becomeUser(int file) {
    return lockByte(file, F_OFD_SETLK, F_RDLCK, kUsers);
}

void endUse(int file) {
    lockByte(file, F_OFD_SETLK, F_UNLCK, kUsers);
}

// Memory is reserved now: where there is none, that is told here and not by a signal later.
bool reserve(int file, std::size_t size) {
    const auto bytes = static_cast<off_t>(size);
    return ftruncate(file, bytes) == 0 && posix_fallocate(file, 0, bytes) == 0;
}

// The path of an open file that has no name yet.
std::array<char, 32> pathOfOpenFile(int file) {
    std::array<char, 32> path{};
    std::snprintf(path.data(), path.size(), "/proc/self/fd/%d", file);
    return path;
}

}  // namespace

std::unique_ptr<SharedFile> SharedFile::open(const ObjectPath& path, std::size_t size, mode_t mode,
                                             Initialise initialise, const void* how) noexcept {
    std::unique_ptr<SharedFile> shared{new (std::nothrow) SharedFile(path, size)};
    if (!shared) return nullptr;

    for (;;) {
        // Not with O_CREAT: sticky folders refuse it for the files of other users. A pipe in the
        // file's place must not keep the open waiting.
        constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
        shared->file_ = ::open(path.data(), kFlags);
        if (shared->file_ < 0) {
            if (errno == EINTR) continue;
            if (errno != ENOENT || !create(path, size, mode)) return nullptr;
            continue;
        }
        const Outcome outcome = shared->enter(mode, initialise, how);
        if (outcome == Outcome::Opened) return shared;
        shared->close();
        shared->unmap();
        if (outcome == Outcome::Impossible) return nullptr;
    }
}

// The file appears whole and with its permissions. Who else makes it at the same time may be first.
bool SharedFile::create(const ObjectPath& path, std::size_t size, mode_t mode) noexcept {
    const int file = ::open(kSharedMemoryFolder, O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (file < 0) return false;

    const bool isMade = fchmod(file, mode & kPermissionBits) == 0 && reserve(file, size) &&
                        (linkat(AT_FDCWD, pathOfOpenFile(file).data(), AT_FDCWD, path.data(),
                                AT_SYMLINK_FOLLOW) == 0 ||
                         errno == EEXIST);
    ::close(file);
    return isMade;
}

SharedFile::Outcome SharedFile::enter(mode_t mode, Initialise initialise,
                                      const void* how) noexcept {
    struct stat status {};
    if (fstat(file_, &status) != 0 || !S_ISREG(status.st_mode)) return Outcome::Impossible;
    device_ = status.st_dev;
    inode_ = status.st_ino;
    process_ = getpid();

    if (!enterGate(file_)) return Outcome::Impossible;
    const Outcome outcome = isThatOfThePath() ? prepare(mode, initialise, how) : Outcome::Again;
    leaveGate(file_);
    return outcome;
}

SharedFile::Outcome SharedFile::prepare(mode_t mode, Initialise initialise,
                                        const void* how) noexcept {
    if (becomeOnlyUser(file_)) {
        fchmod(file_,
               mode & kPermissionBits);  // fails for the file of another user, which it stays
        if (!reserve(file_, size_) || !map()) return Outcome::Impossible;
        // Not by cutting the file to nothing: that would end a forked child that still has it mapped.
        std::memset(memory_, 0, size_);
        if (!initialise(memory_, how)) return Outcome::Impossible;
        return becomeUser(file_) ? Outcome::Opened : Outcome::Impossible;
    }
    if (!becomeUser(file_)) return Outcome::Impossible;

    // A file of another size is none of ours: touching what it lacks would end the process.
    struct stat status {};
    const bool isWhole = fstat(file_, &status) == 0 && status.st_size == static_cast<off_t>(size_);
    return isWhole && map() ? Outcome::Opened : Outcome::Impossible;
}

bool SharedFile::map() noexcept {
    void* const memory = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
    if (memory == MAP_FAILED) return false;
    memory_ = memory;
    return true;
}

bool SharedFile::isThatOfThePath() const noexcept {
    struct stat status {};
    return lstat(path_.data(), &status) == 0 && status.st_dev == device_ && status.st_ino == inode_;
}

bool SharedFile::isSameFile(const SharedFile& other) const noexcept {
    return device_ == other.device_ && inode_ == other.inode_;
}

bool SharedFile::isOwn() const noexcept {
    return process_ == getpid();
}

void SharedFile::leave() noexcept {
    if (file_ < 0) return;

    // A forked child shares the open file with its parent, and with it the parent's locks.
    if (isOwn() && enterGate(file_)) {
        // The file of another user in a sticky folder stays: who comes next makes it anew.
        if (becomeOnlyUser(file_) && isThatOfThePath()) unlink(path_.data());
        endUse(file_);
        leaveGate(file_);
    }
    close();
}

void SharedFile::unmap() noexcept {
    if (memory_) munmap(std::exchange(memory_, nullptr), size_);
}

void SharedFile::adopt(SharedFile& other) noexcept {
    close();
    file_ = std::exchange(other.file_, -1);
    process_ = other.process_;
}

void SharedFile::close() noexcept {
    if (file_ >= 0) ::close(std::exchange(file_, -1));
}

SharedFile::~SharedFile() {
    leave();
    unmap();
}

}  // namespace vexa::platform
