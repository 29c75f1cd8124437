#pragma once

#include "tests/support/lock_image.h"
#include "tests/support/processes.h"
#include "tests/support/wide_text.h"
#include "vexakit/locks.h"

#include <atomic>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vexa::test {

/// A name that no other test has, in this run or another.
inline std::string uniqueName() {
    static int uses = 0;
    return "test" + std::to_string(kernelProcessId()) + "-" + std::to_string(++uses) + "-";
}

/// The files of objects whose names begin so; elsewhere than on Linux there are none.
inline std::vector<std::filesystem::path> filesOf(const std::string& name) {
    std::vector<std::filesystem::path> files;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm", none)) {
        if (entry.path().string().find('_' + name) != std::string::npos) {
            files.push_back(entry.path());
        }
    }
    return files;
}

/// A test with a name of its own, of which nothing may be left.
class NamedLockTest : public testing::Test {
protected:
    // Locks that are members of a test have gone by now.
    ~NamedLockTest() override { EXPECT_THAT(filesOf(name), testing::IsEmpty()); }

    const std::string name = uniqueName();
    const WideString wideName = wide(name);
};

template <class Lock>
std::unique_ptr<Lock> makeLock(const VexaWChar* name, SECURITY_ATTRIBUTES* sa = nullptr) {
    if constexpr (std::is_same_v<Lock, MutexLock>) {
        return std::make_unique<MutexLock>(name, sa);
    } else {
        return std::make_unique<InterProcessLock>(name, sa, 0);
    }
}

template <class Lock>
std::unique_ptr<Lock> makeLock(const WideString& name, SECURITY_ATTRIBUTES* sa = nullptr) {
    return makeLock<Lock>(name.c_str(), sa);
}

/// Both locks that have names, for tests of either.
using NamedLocks = testing::Types<MutexLock, InterProcessLock>;

struct NamedLocksNames {
    template <class Lock>
    static std::string GetName(int) {
        return std::is_same_v<Lock, MutexLock> ? "MutexLock" : "InterProcessLock";
    }
};

/// Runs an action in a thread of its own, to its end.
template <class Action>
auto inOtherThread(Action action) {
    std::packaged_task<decltype(action())()> task{std::move(action)};
    auto result = task.get_future();
    std::thread{std::move(task)}.join();
    return result.get();
}

/// Whether another thread gets the lock at once; it gives it back.
template <class Lock>
bool isFreeForOthers(Lock& lock) {
    return inOtherThread([&lock] {
        const bool isFree = lock.TryLock();
        if (isFree) lock.ReleaseLock();
        return isFree;
    });
}

/// A thread that obtains a lock and keeps it until it is told to give it back.
template <class Lock>
class Contender {
public:
    explicit Contender(Lock& lock) : thread_([this, &lock] { contend(lock); }) {
        while (!isAtTheDoor_) std::this_thread::yield();
    }
    Contender(const Contender&) = delete;
    Contender& operator=(const Contender&) = delete;
    ~Contender() { giveBack(); }

    [[nodiscard]] bool isInside() const { return isInside_; }
    [[nodiscard]] bool comesIn() const {
        return becomesTrue([this] { return isInside(); });
    }
    [[nodiscard]] std::uint32_t threadId() const { return threadId_; }

    void giveBack() {
        mayLeave_ = true;
        if (thread_.joinable()) thread_.join();
    }

private:
    void contend(Lock& lock) {
        threadId_ = kernelThreadId();
        isAtTheDoor_ = true;
        lock.ObtainLock();
        isInside_ = true;
        while (!mayLeave_) std::this_thread::yield();
        lock.ReleaseLock();
    }

    std::atomic<bool> isAtTheDoor_ = false;
    std::atomic<bool> isInside_ = false;
    std::atomic<bool> mayLeave_ = false;
    std::atomic<std::uint32_t> threadId_ = 0;
    std::thread thread_;
};

}  // namespace vexa::test
