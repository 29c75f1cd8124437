#include "locks/thread_lock.h"

#include <atomic>
#include <latch>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

static_assert(std::is_polymorphic_v<ThreadLock> && std::has_virtual_destructor_v<ThreadLock>);
static_assert(!std::is_copy_constructible_v<ThreadLock>);
static_assert(std::is_same_v<ThreadLockGuard,
                             Oreval::ScopedResource<ThreadLock*, ThreadLockRelease<ThreadLock*>,
                                                    ThreadLockObtain<ThreadLock*>>>);

constexpr int kThreads = 8;

/// Runs an action in all threads at once.
template <class Action>
void inAllThreads(Action action) {
    std::latch start{kThreads};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            action();
        });
    }
    for (std::thread& thread : threads) thread.join();
}

/// Something that two threads inside at once spoil. The yield is where another would slip in.
struct Fragile {
    int inside = 0;
    int visits = 0;
    bool isSpoilt = false;

    void visit() {
        if (++inside != 1) isSpoilt = true;
        const int before = visits;
        std::this_thread::yield();
        visits = before + 1;
        if (--inside != 0) isSpoilt = true;
    }
};

TEST(ThreadLockGuard, LetsOneThreadInAtATime) {
    constexpr int kVisits = 2'000;
    ThreadLock lock;
    Fragile fragile;

    inAllThreads([&] {
        for (int i = 0; i < kVisits; ++i) {
            const ThreadLockGuard guard{&lock};
            fragile.visit();
        }
    });

    EXPECT_FALSE(fragile.isSpoilt);
    EXPECT_EQ(fragile.visits, kThreads * kVisits);
}

TEST(ThreadLockGuard, LetsItsOwnerInAgain) {
    constexpr int kVisits = 1'000;
    ThreadLock lock;
    Fragile fragile;

    inAllThreads([&] {
        for (int i = 0; i < kVisits; ++i) {
            const ThreadLockGuard outer{&lock};
            fragile.visit();
            {
                const ThreadLockGuard middle{&lock};
                const ThreadLockGuard inner{&lock};
                fragile.visit();
            }
            fragile.visit();  // still the only one: each leave undoes one enter
        }
    });

    EXPECT_FALSE(fragile.isSpoilt);
    EXPECT_EQ(fragile.visits, kThreads * kVisits * 3);
}

TEST(ThreadLockGuard, OpensTheLockEarlyForOthers) {
    ThreadLock lock;
    ThreadLockGuard guard{&lock};
    guard.Release();
    bool gotIn = false;

    // Joined here: a lock still held would keep this thread for ever.
    std::thread{[&] {
        const ThreadLockGuard other{&lock};
        gotIn = true;
    }}.join();

    EXPECT_TRUE(gotIn);
}

TEST(ThreadLockGuard, DoesNotOpenAgainWhatAnotherHolds) {
    ThreadLock lock;
    Fragile fragile;
    constexpr int kRounds = 500;

    inAllThreads([&] {
        for (int i = 0; i < kRounds; ++i) {
            ThreadLockGuard early{&lock};
            early.Release();
            const ThreadLockGuard guard{&lock};
            early.Release();  // would open the lock under the second guard
            fragile.visit();
        }
    });

    EXPECT_FALSE(fragile.isSpoilt);
    EXPECT_EQ(fragile.visits, kThreads * kRounds);
}

TEST(ThreadLockGuard, OpensTheLockOnAnException) {
    ThreadLock lock;
    try {
        const ThreadLockGuard outer{&lock};
        const ThreadLockGuard inner{&lock};
        throw std::runtime_error("work failed");
    } catch (const std::runtime_error&) {
        bool gotIn = false;
        std::thread{[&] {
            const ThreadLockGuard other{&lock};
            gotIn = true;
        }}.join();
        EXPECT_TRUE(gotIn);
    }
}

TEST(ThreadLockGuard, OfOneLockDoesNotWaitForAnother) {
    ThreadLock first;
    ThreadLock second;
    const ThreadLockGuard guard{&first};
    bool gotIn = false;

    std::thread{[&] {
        const ThreadLockGuard other{&second};
        gotIn = true;
    }}.join();

    EXPECT_TRUE(gotIn);
}

// The waiting thread gets in at the last leave and not before: it says so under the lock.
TEST(ThreadLockGuard, KeepsOthersOutUntilTheLastLeave) {
    ThreadLock lock;
    constexpr int kRounds = 200;
    for (int round = 0; round < kRounds; ++round) {
        bool gotIn = false;
        std::atomic<bool> isAtTheDoor = false;
        std::thread other;
        {
            const ThreadLockGuard outer{&lock};
            const ThreadLockGuard middle{&lock};
            other = std::thread{[&] {
                isAtTheDoor = true;
                const ThreadLockGuard guard{&lock};
                gotIn = true;
            }};
            while (!isAtTheDoor) std::this_thread::yield();
            { const ThreadLockGuard inner{&lock}; }
            for (int i = 0; i < 20; ++i) std::this_thread::yield();
            EXPECT_FALSE(gotIn);
        }
        other.join();
        EXPECT_TRUE(gotIn);
    }
}

}  // namespace

}  // namespace vexa::test
