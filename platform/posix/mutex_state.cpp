#include "platform/posix/mutex_state.h"

#include "platform/identity.h"

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

namespace vexa::platform {

namespace {

int lockWithin(pthread_mutex_t& mutex, std::uint32_t milliseconds) {
    if (milliseconds == 0) return pthread_mutex_trylock(&mutex);

    const Deadline deadline(milliseconds);
    if (!deadline.time()) return pthread_mutex_lock(&mutex);
    return pthread_mutex_clocklock(&mutex, CLOCK_MONOTONIC, deadline.time());
}

std::uint64_t callersSerial() {
    static std::atomic<std::uint64_t> last{0};
    [[gnu::tls_model("initial-exec")]] thread_local std::uint64_t serial = 0;
    if (serial == 0) serial = last.fetch_add(1, std::memory_order_relaxed) + 1;
    return serial;
}

bool isThreadAlive(std::uint32_t thread) {
    return syscall(SYS_tgkill, getpid(), thread, 0) == 0;
}

}  // namespace

// Only the holder writes. A child process may have inherited what its parent's thread left here.
void MutexHolder::taken() noexcept {
    if (!isCaller()) depth_.store(0, std::memory_order_relaxed);
    depth_.store(depth_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    serial_.store(callersSerial(), std::memory_order_relaxed);
    thread_.store(currentThreadId(), std::memory_order_release);
}

void MutexHolder::released() noexcept {
    const std::uint32_t depth = depth_.load(std::memory_order_relaxed) - 1;
    depth_.store(depth, std::memory_order_relaxed);
    if (depth == 0) thread_.store(0, std::memory_order_release);
}

bool MutexHolder::isAlive() const noexcept {
    const std::uint32_t thread = thread_.load(std::memory_order_acquire);
    return thread != 0 && isThreadAlive(thread);
}

bool MutexHolder::isCaller() const noexcept {
    return thread_.load(std::memory_order_relaxed) == currentThreadId() &&
           serial_.load(std::memory_order_relaxed) == callersSerial();
}

void MutexHolder::reset() noexcept {
    depth_.store(0, std::memory_order_relaxed);
    thread_.store(0, std::memory_order_relaxed);
}

// Nothing here can fail on Linux: the mutex is all in its memory, and the kernel is not asked.
void MutexState::initialise(Sharing sharing) noexcept {
    const int sharedBy =
        sharing == Sharing::Machine ? PTHREAD_PROCESS_SHARED : PTHREAD_PROCESS_PRIVATE;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutexattr_setpshared(&attributes, sharedBy);
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

WaitResult MutexState::wait(std::uint32_t milliseconds, MutexHolder& holder) noexcept {
    switch (lockWithin(mutex, milliseconds)) {
        case 0: holder.taken(); return WaitResult::Signalled;
        case EOWNERDEAD:
            pthread_mutex_consistent(&mutex);
            holder.reset();
            holder.taken();
            return WaitResult::Abandoned;
        case EBUSY:
        case ETIMEDOUT: return WaitResult::TimedOut;
        default: return WaitResult::Failed;
    }
}

bool MutexState::isFree(const MutexHolder& holder) noexcept {
    if (holder.isCaller()) return false;
    const int result = pthread_mutex_trylock(&mutex);
    if (result == EOWNERDEAD) pthread_mutex_consistent(&mutex);
    const bool isTaken = result == 0 || result == EOWNERDEAD;
    return isTaken && pthread_mutex_unlock(&mutex) == 0;
}

bool MutexState::release(MutexHolder& holder) noexcept {
    if (!holder.isCaller()) return false;

    holder.released();  // as long as nobody else can hold it
    return pthread_mutex_unlock(&mutex) == 0;
}

}  // namespace vexa::platform
