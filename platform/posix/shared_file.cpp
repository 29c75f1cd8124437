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
    if (ftruncate(file, bytes) != 0) return false;
    int error = 0;
    do {
        error = posix_fallocate(file, 0, bytes);
    } while (error == EINTR);
    return error == 0;
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

    const Start start = {mode & kPermissionBits, initialise, how};
    for (;;) {
        const Outcome outcome = shared->openExisting(start);
        if (outcome == Outcome::Opened) return shared;
        shared->close();
        shared->unmap();
        if (outcome == Outcome::Impossible) return nullptr;
    }
}

SharedFile::Outcome SharedFile::openExisting(const Start& start) noexcept {
    // Not with O_CREAT: sticky folders refuse it for the files of other users. A pipe in the file's
    // place must not keep the open waiting.
    file_ = ::open(path_.data(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    isNew_ = false;
    if (file_ < 0 && errno == EINTR) return Outcome::Again;
    if (file_ < 0) return errno == ENOENT ? create(start) : Outcome::Impossible;
    if (!remember() || !enterGate(file_)) return Outcome::Impossible;

    const Outcome outcome = isThatOfThePath() ? join(start) : Outcome::Again;
    leaveGate(file_);
    return outcome;
}

// The file appears whole, with its permissions and its first user. Who else makes it at the same time
// may be first.
SharedFile::Outcome SharedFile::create(const Start& start) noexcept {
    constexpr mode_t kUntilItIsReady = 0600;
    file_ = ::open(kSharedMemoryFolder, O_TMPFILE | O_RDWR | O_CLOEXEC, kUntilItIsReady);
    if (file_ < 0 && errno == EINTR) return Outcome::Again;
    if (file_ < 0 || !remember() || !becomeUser(file_) || !fill(start)) return Outcome::Impossible;

    const auto source = pathOfOpenFile(file_);
    if (linkat(AT_FDCWD, source.data(), AT_FDCWD, path_.data(), AT_SYMLINK_FOLLOW) == 0) {
        return Outcome::Opened;
    }
    return errno == EEXIST ? Outcome::Again : Outcome::Impossible;
}

SharedFile::Outcome SharedFile::join(const Start& start) noexcept {
    if (becomeOnlyUser(file_)) return replaceLeftover(start);
    const bool isInUse = errno == EAGAIN || errno == EACCES;
    if (!isInUse || !becomeUser(file_)) return Outcome::Impossible;

    // A file of another size is none of ours, and one with holes may find no memory for them: touching
    // what is missing would end the process.
    struct stat status {};
    const bool isWhole = fstat(file_, &status) == 0 &&
                         status.st_size == static_cast<off_t>(size_) && reserve(file_, size_);
    return isWhole && map() ? Outcome::Opened : Outcome::Impossible;
}

// What is left may still be mapped, by a forked child or by a thread that holds a mutex in it: it is left
// to them. Only the file of another user in a sticky folder cannot be removed and is used again.
SharedFile::Outcome SharedFile::replaceLeftover(const Start& start) noexcept {
    if (unlink(path_.data()) == 0) return Outcome::Again;
    return fill(start) && becomeUser(file_) ? Outcome::Opened : Outcome::Impossible;
}

bool SharedFile::fill(const Start& start) noexcept {
    fchmod(file_, start.mode);  // fails for the file of another user alone
    if (!reserve(file_, size_) || !map()) return false;
    std::memset(memory_, 0, size_);
    isNew_ = true;
    return start.initialise(memory_, start.how);
}

bool SharedFile::map() noexcept {
    if (memory_) return true;
    void* const memory = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
    if (memory == MAP_FAILED) return false;
    memory_ = memory;
    return true;
}

bool SharedFile::remember() noexcept {
    struct stat status {};
    if (fstat(file_, &status) != 0 || !S_ISREG(status.st_mode)) return false;
    device_ = status.st_dev;
    inode_ = status.st_ino;
    process_ = getpid();
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

SharedFile::Gate::Gate(const SharedFile& file) noexcept
    : file_(enterGate(file.file_) ? file.file_ : -1) {}

SharedFile::Gate::~Gate() {
    if (file_ >= 0) leaveGate(file_);
}

std::unique_ptr<SharedFile> SharedFile::detachUse() noexcept {
    std::unique_ptr<SharedFile> use{new (std::nothrow) SharedFile(path_, size_)};
    if (!use) return nullptr;
    use->device_ = device_;
    use->inode_ = inode_;
    use->adopt(*this);
    return use;
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
