#include "platform/security.h"
#include "tests/support/allocations.h"
#include "tests/support/named_locks.h"
#include "vexakit/locks.h"

#include <memory>
#include <optional>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

static_assert(std::is_polymorphic_v<MutexLock> && std::has_virtual_destructor_v<MutexLock>);
static_assert(std::is_default_constructible_v<MutexLock>);
static_assert(std::is_constructible_v<MutexLock, const VexaWChar*>);
static_assert(std::is_constructible_v<MutexLock, const VexaWChar*, SECURITY_ATTRIBUTES*>);
static_assert(std::is_copy_constructible_v<MutexLock> && std::is_copy_assignable_v<MutexLock>);
static_assert(std::is_void_v<decltype(std::declval<MutexLock&>().ObtainLock())>);
static_assert(std::is_same_v<decltype(std::declval<MutexLock&>().TryLock()), bool>);
static_assert(std::is_void_v<decltype(std::declval<MutexLock&>().ReleaseLock())>);

// ---- With a name and without ------------------------------------------------------------------

/// The parameter: whether the lock has a name.
class MutexLockOfEitherKind : public NamedLockTest, public testing::WithParamInterface<bool> {
protected:
    MutexLock lock{GetParam() ? wideName.c_str() : nullptr};

    /// Leaves the lock with a thread that has ended, so many times obtained.
    void abandon(int depth = 1) {
        inOtherThread([&] {
            for (int i = 0; i < depth; ++i) lock.ObtainLock();
        });
    }
};

INSTANTIATE_TEST_SUITE_P(Kinds, MutexLockOfEitherKind, testing::Bool(),
                         [](const auto& row) { return row.param ? "Named" : "Unnamed"; });

TEST_P(MutexLockOfEitherKind, IsFreeAtFirst) {
    EXPECT_TRUE(isFreeForOthers(lock));
    EXPECT_TRUE(lock.TryLock());
    lock.ReleaseLock();
}

TEST_P(MutexLockOfEitherKind, IsNotHadByTryingWhileAnotherThreadHoldsIt) {
    Contender holder{lock};
    ASSERT_TRUE(holder.comesIn());

    EXPECT_FALSE(lock.TryLock());  // at once: the holder waits for this thread
    holder.giveBack();
    EXPECT_TRUE(lock.TryLock());
    lock.ReleaseLock();
}

TEST_P(MutexLockOfEitherKind, IsObtainedOnceItsHolderReleasesIt) {
    lock.ObtainLock();
    const Contender waiter{lock};
    for (int i = 0; i < 100; ++i) std::this_thread::yield();

    EXPECT_FALSE(waiter.isInside());
    lock.ReleaseLock();
    EXPECT_TRUE(waiter.comesIn());
}

TEST_P(MutexLockOfEitherKind, LetsItsOwnerInAgain) {
    lock.ObtainLock();
    lock.ObtainLock();
    EXPECT_TRUE(lock.TryLock());

    lock.ReleaseLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_P(MutexLockOfEitherKind, IsNotReleasedByStrangers) {
    lock.ObtainLock();
    inOtherThread([&] { lock.ReleaseLock(); });

    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_P(MutexLockOfEitherKind, IsStillFreeAfterReleasesThatNobodyOwes) {
    lock.ReleaseLock();
    lock.ReleaseLock();

    lock.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

// ---- Abandoned by a thread that ended ---------------------------------------------------------

TEST_P(MutexLockOfEitherKind, AbandonedIsNotHadByTryingAndYetOwned) {
    abandon();

    EXPECT_FALSE(lock.TryLock());
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_P(MutexLockOfEitherKind, AbandonedIsToldOnce) {
    abandon();

    EXPECT_FALSE(lock.TryLock());
    EXPECT_TRUE(lock.TryLock());  // its owner's, in again
    lock.ReleaseLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_P(MutexLockOfEitherKind, AbandonedIsObtained) {
    abandon();

    lock.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_P(MutexLockOfEitherKind, AbandonedAtAnyDepthIsReleasedOnce) {
    abandon(3);

    lock.ObtainLock();
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_P(MutexLockOfEitherKind, GoesToWhoWaitsWhenItsOwnerEnds) {
    std::optional<Contender<MutexLock>> waiter;
    inOtherThread([&] {
        lock.ObtainLock();
        waiter.emplace(lock);
        EXPECT_FALSE(waiter->isInside());
    });

    EXPECT_TRUE(waiter->comesIn());
    EXPECT_FALSE(lock.TryLock());
    waiter->giveBack();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_P(MutexLockOfEitherKind, IsAbandonedAgainAndAgain) {
    for (int round = 0; round < 100; ++round) {
        abandon();
        ASSERT_FALSE(isFreeForOthers(lock)) << round;  // whose thread ends owning it as well
        lock.ObtainLock();
        lock.ReleaseLock();
        ASSERT_TRUE(isFreeForOthers(lock)) << round;
    }
}

// ---- Copies -----------------------------------------------------------------------------------

TEST_P(MutexLockOfEitherKind, IsSharedByItsCopies) {
    auto copy = std::make_unique<MutexLock>(lock);
    EXPECT_EQ(imageOf(*copy).mutex, imageOf(lock).mutex);

    copy->ObtainLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    EXPECT_TRUE(lock.TryLock());
    lock.ReleaseLock();
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(*copy));
}

TEST_P(MutexLockOfEitherKind, IsHarmlessOnceACopyHasClosedIt) {
    std::make_unique<MutexLock>(lock).reset();

    EXPECT_FALSE(lock.TryLock());
    lock.ObtainLock();
    lock.ReleaseLock();
    EXPECT_FALSE(lock.TryLock());
}

TEST_P(MutexLockOfEitherKind, IsWhatAnAssignmentGives) {
    MutexLock other;
    {
        const MutexLock keeper{other};  // closes what the assignment leaves open
        other = lock;
    }
    EXPECT_EQ(imageOf(other).mutex, imageOf(lock).mutex);

    other.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(other));
}

TEST_P(MutexLockOfEitherKind, StaysWhatItIsWhenAssignedToItself) {
    const MutexLock& self = lock;
    lock = self;

    EXPECT_TRUE(isFreeForOthers(lock));
}

// ---- Of one name ------------------------------------------------------------------------------

using MutexLockOfAName = NamedLockTest;

TEST_F(MutexLockOfAName, IsOneLockInAllItsObjects) {
    MutexLock first{wideName.c_str()};
    MutexLock second{wideName.c_str()};

    first.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(second));
    EXPECT_TRUE(second.TryLock());  // the thread owns it, not the object
    first.ReleaseLock();
    EXPECT_FALSE(isFreeForOthers(first));
    first.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(second));
}

TEST_F(MutexLockOfAName, IsNotReleasedByDestroyingAnObject) {
    MutexLock lock{wideName.c_str()};
    {
        MutexLock holder{wideName.c_str()};
        holder.ObtainLock();
    }

    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_F(MutexLockOfAName, StartsAnewAfterItsLastObject) {
    {
        MutexLock holder{wideName.c_str()};
        holder.ObtainLock();
    }
    MutexLock lock{wideName.c_str()};

    EXPECT_TRUE(isFreeForOthers(lock));
    lock.ReleaseLock();  // what this thread held was another
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_F(MutexLockOfAName, ThatWasHeldToItsEndHarmsNobodyOnceItsThreadEnds) {
    for (int round = 0; round < 50; ++round) {
        inOtherThread([&] {
            std::make_unique<MutexLock>(wideName.c_str())->ObtainLock();
            MutexLock lock{wideName.c_str()};
            lock.ObtainLock();
        });
        MutexLock lock{wideName.c_str()};
        ASSERT_TRUE(isFreeForOthers(lock)) << round;
    }
}

TEST(MutexLock, WithoutANameIsSharedWithNobody) {
    MutexLock first;
    MutexLock second{nullptr};
    MutexLock third{nullptr, nullptr};

    first.ObtainLock();
    EXPECT_TRUE(isFreeForOthers(second));
    EXPECT_TRUE(isFreeForOthers(third));
    first.ReleaseLock();
}

TEST(MutexLock, OfAnEmptyNameHasAName) {
    MutexLock first{wide("").c_str()};
    MutexLock second{wide("").c_str()};
    MutexLock unnamed;

    first.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(second));
    EXPECT_TRUE(isFreeForOthers(unnamed));
    first.ReleaseLock();
}

// ---- Security and failures --------------------------------------------------------------------

TEST_F(MutexLockOfAName, TakesTheCallersSecurity) {
    SECURITY_ATTRIBUTES* const sa = platform::makeOpenSecurity();
    MutexLock first{wideName.c_str(), sa};
    platform::freeSecurity(sa);  // it is copied, not kept
    MutexLock second{wideName.c_str()};

    first.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(second));
    first.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(second));
}

void expectHarmless(MutexLock& lock) {
    EXPECT_EQ(imageOf(lock).mutex, nullptr);
    EXPECT_FALSE(lock.TryLock());
    lock.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
}

TEST_F(MutexLockOfAName, WithABackslashIsNoLock) {
    for (const char* const tail : {"\\", "\\a", "a\\b"}) {
        MutexLock lock{wide(name + tail).c_str()};
        expectHarmless(lock);
    }
}

TEST_F(MutexLockOfAName, ThatCouldNotBeMadeCanBeCopied) {
    MutexLock lock{wide(name + "\\").c_str()};
    MutexLock copy{lock};
    expectHarmless(copy);
}

// Which allocations there are is the system's affair; whichever fails, there is no lock or a good one.
TEST_F(MutexLockOfAName, IsNotMadeWhereAnAllocationFails) {
    for (int nth = 1;; ++nth) {
        std::unique_ptr<MutexLock> lock;
        bool happened = false;
        {
            const AllocationFailure failure{nth};
            lock = std::make_unique<MutexLock>(wideName.c_str());
            happened = failure.happened();
        }
        if (!happened) break;
        expectHarmless(*lock);
        EXPECT_THAT(filesOf(name), testing::IsEmpty());
    }
    MutexLock lock{wideName.c_str()};
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_F(MutexLockOfAName, IsNotMadeWhereNewFails) {
    alignas(MutexLock) unsigned char room[sizeof(MutexLock)];
    for (int nth = 1;; ++nth) {
        MutexLock* lock = nullptr;
        bool happened = false;
        {
            const NewFailure failure{nth};
            lock = new (&room[0]) MutexLock(wideName.c_str());
            happened = failure.happened();
        }
        if (happened) expectHarmless(*lock);
        lock->~MutexLock();
        EXPECT_THAT(filesOf(name), testing::IsEmpty());
        if (!happened) break;
    }
}

TEST_F(MutexLockOfAName, TakesNoMemoryToBeUsed) {
    MutexLock lock{wideName.c_str()};
    const AllocationWatch watch;
    lock.ObtainLock();
    EXPECT_TRUE(lock.TryLock());
    lock.ReleaseLock();
    lock.ReleaseLock();

    EXPECT_EQ(watch.requests(), 0);
}

TEST_F(MutexLockOfAName, GivesBackTheMemoryOfItsMaking) {
    { const MutexLock warm{wideName.c_str()}; }
    const AllocationWatch watch;
    { const MutexLock lock{wideName.c_str()}; }

    EXPECT_EQ(watch.blocksInUse(), 0);
}

// ---- Exclusion --------------------------------------------------------------------------------

TEST_P(MutexLockOfEitherKind, LetsOneThreadInAtATime) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 5'000;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                while (round % 3 == 0 && !lock.TryLock()) std::this_thread::yield();
                if (round % 3 != 0) lock.ObtainLock();
                ++count;
                lock.ReleaseLock();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(count, kThreads * kRounds);
}

}  // namespace

}  // namespace vexa::test
