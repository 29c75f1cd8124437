#include "platform/identity.h"

#include <algorithm>
#include <atomic>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vexa::platform {

namespace {

// The kernel is asked once: a system call costs more than the locks that need the numbers. 0 is no
// thread's and no process's.
[[gnu::tls_model("initial-exec")]] thread_local std::uint32_t threadId = 0;
std::atomic<std::uint32_t> processId = 0;

// A forked child is another process, and its one thread another thread.
void forget() {
    threadId = 0;
    processId.store(0, std::memory_order_relaxed);
}

[[maybe_unused]] const int kForgetsInChildren = pthread_atfork(nullptr, nullptr, &forget);

}  // namespace

std::uint32_t currentThreadId() noexcept {
    if (threadId == 0) threadId = static_cast<std::uint32_t>(syscall(SYS_gettid));
    return threadId;
}

std::uint32_t currentProcessId() noexcept {
    std::uint32_t id = processId.load(std::memory_order_relaxed);
    if (id == 0) {
        id = static_cast<std::uint32_t>(getpid());
        processId.store(id, std::memory_order_relaxed);
    }
    return id;
}

std::uint32_t processorCount() noexcept {
    static const auto kCount =
        static_cast<std::uint32_t>(std::max(sysconf(_SC_NPROCESSORS_ONLN), 1L));
    return kCount;
}

}  // namespace vexa::platform
