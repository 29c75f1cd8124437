#include "tests/locks/lock_fields.h"
#include "tests/locks/lock_threads.h"
#include "tests/support/allocations.h"
#include "vexakit/locks.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using testing::ThrowsMessage;

constexpr std::uint32_t kNoId = std::numeric_limits<std::uint32_t>::max();

/// What another thread gets that gives it back at once.
std::int32_t tryElsewhere(CThreadLock& locks, std::uint32_t lockId) {
    return inAnotherThread([&] {
        const std::int32_t isTaken = locks.TryLock(lockId);
        if (isTaken != 0) locks.ReleaseLock(lockId);
        return isTaken;
    });
}

// ---- One lock -----------------------------------------------------------------------------------

bool tryElsewhere(ThreadLock& lock) {
    return inAnotherThread([&] {
        const bool isTaken = lock.TryEnter();
        if (isTaken) lock.Leave();
        return isTaken;
    });
}

TEST(ThreadLock, IsFreeAtFirst) {
    ThreadLock lock;

    EXPECT_TRUE(tryElsewhere(lock));
}

TEST(ThreadLock, IsEnteredByOneThread) {
    ThreadLock lock;
    lock.Enter();

    EXPECT_FALSE(tryElsewhere(lock));
    lock.Leave();
    EXPECT_TRUE(tryElsewhere(lock));
}

TEST(ThreadLock, IsFreeWhenEachEntryIsUndone) {
    ThreadLock lock;
    lock.Enter();
    EXPECT_TRUE(lock.TryEnter());
    lock.Enter();

    lock.Leave();
    EXPECT_FALSE(tryElsewhere(lock));
    lock.Leave();
    EXPECT_FALSE(tryElsewhere(lock));
    lock.Leave();
    EXPECT_TRUE(tryElsewhere(lock));
}

// ---- A set: its ids -----------------------------------------------------------------------------

class CThreadLockOfCount : public testing::TestWithParam<std::uint32_t> {};

TEST_P(CThreadLockOfCount, KnowsItsSize) {
    const CThreadLock locks{GetParam()};

    EXPECT_EQ(locks.GetLocksSize(), GetParam());
}

TEST_P(CThreadLockOfCount, RefusesIdsFromTheCountOn) {
    CThreadLock locks{GetParam()};
    const std::uint32_t middle = GetParam() + (kNoId - GetParam()) / 2;

    for (const std::uint32_t lockId : {GetParam(), GetParam() + 1, middle, kNoId}) {
        SCOPED_TRACE(lockId);
        EXPECT_THAT([&] { locks.ObtainLock(lockId); }, ThrowsMessage<std::out_of_range>("lockId"));
        EXPECT_THAT([&] { locks.TryLock(lockId); }, ThrowsMessage<std::out_of_range>("lockId"));
        EXPECT_THAT([&] { locks.ReleaseLock(lockId); }, ThrowsMessage<std::out_of_range>("lockId"));
    }
    EXPECT_EQ(locks.GetLocksSize(), GetParam());
}

TEST_P(CThreadLockOfCount, TakesEachIdBelowTheCount) {
    CThreadLock locks{GetParam()};
    for (std::uint32_t lockId = 0; lockId < GetParam(); ++lockId) {
        SCOPED_TRACE(lockId);
        EXPECT_EQ(locks.TryLock(lockId), 1);
        EXPECT_NO_THROW(locks.ObtainLock(lockId));
        EXPECT_NO_THROW(locks.ReleaseLock(lockId));
        EXPECT_NO_THROW(locks.ReleaseLock(lockId));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, CThreadLockOfCount, testing::Values(0, 1, 2, 3, 64, 20'000),
                         testing::PrintToStringParamName());

TEST(CThreadLock, IsNotTouchedByARefusedId) {
    CThreadLock locks{2};
    locks.ObtainLock(1);
    EXPECT_THROW(locks.ObtainLock(2), std::out_of_range);
    EXPECT_THROW(locks.ReleaseLock(2), std::out_of_range);

    EXPECT_EQ(tryElsewhere(locks, 0), 1);
    EXPECT_EQ(tryElsewhere(locks, 1), 0);
    locks.ReleaseLock(1);
    EXPECT_EQ(tryElsewhere(locks, 1), 1);
}

TEST(CThreadLock, ThrowsWhereItsMemoryIsRefused) {
    const NewFailure failure{1};

    EXPECT_THROW(CThreadLock{4}, std::bad_alloc);
    EXPECT_TRUE(failure.happened());
}

TEST(CThreadLock, NeedsNoMemoryOnceItIsMade) {
    CThreadLock locks{3};
    const AllocationWatch watch;
    const NewFailure failure{1};
    for (std::uint32_t lockId = 0; lockId < 3; ++lockId) {
        locks.ObtainLock(lockId);
        locks.TryLock(lockId);
        locks.ReleaseLock(lockId);
        locks.ReleaseLock(lockId);
    }

    EXPECT_EQ(watch.requests(), 0);
    EXPECT_FALSE(failure.happened());
}

// ---- Owning one ---------------------------------------------------------------------------------

TEST(CThreadLock, ObtainedByItsOwnerIsReleasedAsOften) {
    CThreadLock locks{1};
    for (int i = 0; i < 3; ++i) locks.ObtainLock(0);

    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(tryElsewhere(locks, 0), 0);
        locks.ReleaseLock(0);
    }
    EXPECT_EQ(tryElsewhere(locks, 0), 1);
}

TEST(CThreadLock, TriedByItsOwnerIsReleasedOnceMore) {
    CThreadLock locks{1};
    locks.ObtainLock(0);
    EXPECT_EQ(locks.TryLock(0), 1);

    locks.ReleaseLock(0);
    EXPECT_EQ(tryElsewhere(locks, 0), 0);
    locks.ReleaseLock(0);
    EXPECT_EQ(tryElsewhere(locks, 0), 1);
}

TEST(CThreadLock, TriedWhileFreeIsOwned) {
    CThreadLock locks{1};
    EXPECT_EQ(locks.TryLock(0), 1);

    EXPECT_EQ(tryElsewhere(locks, 0), 0);
    locks.ReleaseLock(0);
    EXPECT_EQ(tryElsewhere(locks, 0), 1);
}

TEST(CThreadLock, TriedInVainOwesNothing) {
    CThreadLock locks{1};
    locks.ObtainLock(0);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(tryElsewhere(locks, 0), 0);
    locks.ReleaseLock(0);

    EXPECT_EQ(tryElsewhere(locks, 0), 1);
    EXPECT_EQ(locks.TryLock(0), 1);
    locks.ReleaseLock(0);
}

TEST(CThreadLock, IsWaitedForUntilTheLastRelease) {
    CThreadLock locks{2};
    locks.ObtainLock(1);
    locks.ObtainLock(1);
    const Worker other{[&] {
        locks.ObtainLock(1);
        locks.ReleaseLock(1);
    }};

    EXPECT_TRUE(other.waits());
    locks.ReleaseLock(1);
    EXPECT_TRUE(other.waits());
    locks.ReleaseLock(1);
    EXPECT_TRUE(other.isDoneInTime());
}

TEST(CThreadLock, OfOneIdDoesNotWaitForTheOthers) {
    constexpr std::uint32_t kCount = 5;
    CThreadLock locks{kCount};
    for (std::uint32_t free = 0; free < kCount; ++free) {
        for (std::uint32_t lockId = 0; lockId < kCount; ++lockId) {
            if (lockId != free) locks.ObtainLock(lockId);
        }
        for (std::uint32_t lockId = 0; lockId < kCount; ++lockId) {
            EXPECT_EQ(tryElsewhere(locks, lockId), lockId == free ? 1 : 0) << free << lockId;
        }
        for (std::uint32_t lockId = 0; lockId < kCount; ++lockId) {
            if (lockId != free) locks.ReleaseLock(lockId);
        }
    }
}

TEST(CThreadLock, OfOneSetDoesNotWaitForAnother) {
    CThreadLock first{1};
    CThreadLock second{1};
    first.ObtainLock(0);

    EXPECT_EQ(tryElsewhere(second, 0), 1);
    first.ReleaseLock(0);
}

TEST(CThreadLock, IsReleasedInAnyOrder) {
    CThreadLock locks{3};
    for (const std::uint32_t lockId : {0U, 1U, 2U}) locks.ObtainLock(lockId);

    locks.ReleaseLock(1);
    EXPECT_EQ(tryElsewhere(locks, 0), 0);
    EXPECT_EQ(tryElsewhere(locks, 1), 1);
    EXPECT_EQ(tryElsewhere(locks, 2), 0);
    locks.ReleaseLock(0);
    locks.ReleaseLock(2);
}

// ---- Under load ---------------------------------------------------------------------------------

/// A counter that no more than one thread may be at; the yield is where another would slip in.
struct Counter {
    int value = 0;

    void increment() {
        const int before = value;
        std::this_thread::yield();
        value = before + 1;
    }
};

TEST(CThreadLock, LetsOneThreadToEachOfSomeCounters) {
    constexpr std::uint32_t kCount = 3;
    constexpr int kRounds = 600;
    CThreadLock locks{kCount};
    std::array<Counter, kCount> counters;

    inAllThreads([&](int number) {
        for (int round = 0; round < kRounds; ++round) {
            const auto lockId = static_cast<std::uint32_t>(number + round) % kCount;
            locks.ObtainLock(lockId);
            locks.ObtainLock(lockId);
            counters.at(lockId).increment();
            locks.ReleaseLock(lockId);
            counters.at(lockId).increment();
            locks.ReleaseLock(lockId);
        }
    });

    for (const Counter& counter : counters) EXPECT_EQ(counter.value, 2 * kThreads * kRounds / 3);
}

TEST(CThreadLock, LetsOneOfThoseThatTryIn) {
    constexpr int kRounds = 500;
    CThreadLock locks{1};
    Counter counter;
    std::atomic<int> successes = 0;

    inAllThreads([&](int) {
        for (int round = 0; round < kRounds; ++round) {
            if (locks.TryLock(0) == 0) continue;
            counter.increment();
            ++successes;
            locks.ReleaseLock(0);
        }
    });

    EXPECT_EQ(counter.value, successes);
    EXPECT_GT(counter.value, 0);
}

}  // namespace

}  // namespace vexa::test
