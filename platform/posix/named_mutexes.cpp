#include "platform/posix/named_mutexes.h"

#include "platform/posix/handle_table.h"
#include "platform/posix/shared_file.h"

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace vexa::platform {

namespace {

constexpr std::uint32_t kMark = 0x58455656;

// What the users of a name share. The mark tells it from the garbage of others.
struct SharedMutex {
    std::uint32_t mark;
    MutexState state;
};

bool initialise(void* memory, const void* /*how*/) noexcept {
    auto* const shared = std::construct_at(static_cast<SharedMutex*>(memory));
    shared->mark = kMark;
    shared->state.initialise(Sharing::Machine);
    return true;
}

}  // namespace

class NamedMutex {
public:
    explicit NamedMutex(std::unique_ptr<SharedFile> file) noexcept : file_(std::move(file)) {}
    NamedMutex(const NamedMutex&) = delete;
    NamedMutex& operator=(const NamedMutex&) = delete;
    ~NamedMutex() { file_->unmap(); }

    [[nodiscard]] SharedMutex& shared() const noexcept {
        return *static_cast<SharedMutex*>(file_->memory());
    }
    [[nodiscard]] SharedFile& file() const noexcept { return *file_; }
    MutexHolder& holder() noexcept { return holder_; }

    std::size_t handles = 0;
    NamedMutex* next = nullptr;

private:
    std::unique_ptr<SharedFile> file_;
    MutexHolder holder_;
};

namespace {

// All that are mapped: also those that have no handle any more but a thread that holds them. Changed
// under the objects' lock.
NamedMutex* known = nullptr;

NamedMutex* findSame(const SharedFile& file) {
    NamedMutex* mutex = known;
    while (mutex && !mutex->file().isSameFile(file)) mutex = mutex->next;
    return mutex;
}

void forgetUnusedOnes() {
    for (NamedMutex** link = &known; *link;) {
        NamedMutex* const mutex = *link;
        if (mutex->handles > 0 || mutex->holder().isAlive()) {
            link = &mutex->next;
        } else {
            *link = mutex->next;
            delete mutex;
        }
    }
}

// The file of a mutex that was left, or that a parent process opened, is used through the new one.
void takeOver(NamedMutex& mutex, SharedFile& file) {
    const bool isInherited = !mutex.file().isOwn() && mutex.handles > 0;
    if (mutex.handles == 0 || isInherited) mutex.file().adopt(file);
}

}  // namespace

NamedMutex* openNamedMutex(const ObjectPath& path, mode_t mode) noexcept {
    std::unique_ptr<SharedFile> file =
        SharedFile::open(path, sizeof(SharedMutex), mode, &initialise, nullptr);
    if (!file) return nullptr;

    const auto* const shared = static_cast<const SharedMutex*>(file->memory());
    if (shared->mark != kMark) return nullptr;

    std::unique_ptr<SharedFile> surplus;  // left when the lock is free again
    const ObjectsGuard guard;
    forgetUnusedOnes();
    NamedMutex* mutex = findSame(*file);
    if (mutex) {
        takeOver(*mutex, *file);
        surplus = std::move(file);
    } else {
        mutex = new (std::nothrow) NamedMutex(std::move(file));
        if (!mutex) return nullptr;
        mutex->next = std::exchange(known, mutex);
    }
    ++mutex->handles;
    return mutex;
}

void closeNamedMutex(NamedMutex* mutex) noexcept {
    std::unique_ptr<SharedFile> use;  // ended when the lock is free again: others may hold the gate
    const ObjectsGuard guard;
    if (--mutex->handles > 0) return;
    use = mutex->file().detachUse();
    if (!use) mutex->file().leave();
    forgetUnusedOnes();
}

WaitResult waitForNamed(NamedMutex& mutex, std::uint32_t milliseconds) noexcept {
    return mutex.shared().state.wait(milliseconds, mutex.holder());
}

bool releaseNamed(NamedMutex& mutex) noexcept {
    return mutex.shared().state.release(mutex.holder());
}

}  // namespace vexa::platform
