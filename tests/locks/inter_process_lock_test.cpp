#include "platform/security.h"
#include "tests/support/allocations.h"
#include "tests/support/named_locks.h"
#include "vexakit/locks.h"

#include <atomic>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using Lock = InterProcessLock;

static_assert(std::is_polymorphic_v<Lock> && std::has_virtual_destructor_v<Lock>);
static_assert(!std::is_default_constructible_v<Lock>);
static_assert(std::is_constructible_v<Lock, const VexaWChar*, SECURITY_ATTRIBUTES*, std::uint32_t>);
static_assert(std::is_copy_constructible_v<Lock> && std::is_copy_assignable_v<Lock>);
static_assert(std::is_void_v<decltype(std::declval<Lock&>().ObtainLock())>);
static_assert(std::is_same_v<decltype(std::declval<Lock&>().TryLock()), bool>);
static_assert(std::is_void_v<decltype(std::declval<Lock&>().ReleaseLock())>);
static_assert(std::is_void_v<decltype(std::declval<Lock&>().SetSpinCount(std::uint32_t{}))>);

class InterProcessLockTest : public NamedLockTest {
protected:
    Lock lock{wideName.c_str(), nullptr, 0};
};

TEST_F(InterProcessLockTest, IsFreeAtFirst) {
    EXPECT_TRUE(isFreeForOthers(lock));
    EXPECT_TRUE(lock.TryLock());
    lock.ReleaseLock();
}

TEST_F(InterProcessLockTest, IsNotHadByTryingWhileAnotherThreadHoldsIt) {
    Contender holder{lock};
    ASSERT_TRUE(holder.comesIn());

    EXPECT_FALSE(lock.TryLock());  // at once: the holder waits for this thread
    holder.giveBack();
    EXPECT_TRUE(lock.TryLock());
    lock.ReleaseLock();
}

TEST_F(InterProcessLockTest, IsObtainedOnceItsHolderReleasesIt) {
    lock.ObtainLock();
    const Contender waiter{lock};
    ASSERT_TRUE(becomesTrue([&] { return lockCountOf(lock) == 2; }));

    EXPECT_FALSE(waiter.isInside());
    lock.ReleaseLock();
    EXPECT_TRUE(waiter.comesIn());
}

// The waiting is done in pieces of a second, which nobody sees.
TEST_F(InterProcessLockTest, IsWaitedForLongerThanASecond) {
    lock.ObtainLock();
    const Contender waiter{lock};
    ASSERT_TRUE(becomesTrue([&] { return lockCountOf(lock) == 2; }));
    std::this_thread::sleep_for(std::chrono::milliseconds{1'200});

    EXPECT_FALSE(waiter.isInside());
    EXPECT_EQ(lockCountOf(lock), 2);
    lock.ReleaseLock();
    EXPECT_TRUE(waiter.comesIn());
}

TEST_F(InterProcessLockTest, LetsItsOwnerInAgain) {
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

TEST_F(InterProcessLockTest, IsNotReleasedByStrangers) {
    lock.ObtainLock();
    inOtherThread([&] { lock.ReleaseLock(); });

    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_F(InterProcessLockTest, IsStillFreeAfterReleasesThatNobodyOwes) {
    lock.ReleaseLock();
    lock.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

// ---- Objects of one name ----------------------------------------------------------------------

TEST_F(InterProcessLockTest, IsOneLockInAllObjectsOfItsName) {
    Lock second{wideName.c_str(), nullptr, 0};

    lock.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(second));
    EXPECT_TRUE(second.TryLock());  // the thread owns it, not the object
    lock.ReleaseLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(second));
}

TEST_F(InterProcessLockTest, IsGivenUpByTheObjectThatHoldsIt) {
    {
        Lock holder{wideName.c_str(), nullptr, 0};
        holder.ObtainLock();
        holder.ObtainLock();
        EXPECT_FALSE(isFreeForOthers(lock));
    }
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_F(InterProcessLockTest, IsNotGivenUpByAnObjectThatDoesNotHoldIt) {
    lock.ObtainLock();
    { const Lock bystander{wideName.c_str(), nullptr, 0}; }

    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_F(InterProcessLockTest, IsGivenUpInWhicheverThreadItsObjectGoes) {
    auto holder = std::make_unique<Lock>(wideName.c_str(), nullptr, 0);
    holder->ObtainLock();
    inOtherThread([&] { holder.reset(); });

    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_F(InterProcessLockTest, GoesToWhoWaitsWhenTheObjectThatHoldsItGoes) {
    auto holder = std::make_unique<Lock>(wideName.c_str(), nullptr, 0);
    holder->ObtainLock();
    Contender waiter{lock};
    ASSERT_TRUE(becomesTrue([&] { return lockCountOf(lock) == 2; }));
    holder.reset();

    EXPECT_TRUE(waiter.comesIn());
    EXPECT_FALSE(lock.TryLock());
    waiter.giveBack();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST(InterProcessLock, OfAnEmptyNameHasAName) {
    Lock first{wide("").c_str(), nullptr, 0};
    Lock second{wide("").c_str(), nullptr, 0};

    first.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(second));
    first.ReleaseLock();
}

// The name is formatted, and so is a null pointer.
TEST(InterProcessLock, OfANullNameHasTheNameOfNull) {
    Lock first{nullptr, nullptr, 0};
    Lock second{wide("(null)").c_str(), nullptr, 0};

    first.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(second));
    first.ReleaseLock();
}

// ---- Copies -----------------------------------------------------------------------------------

TEST_F(InterProcessLockTest, IsSharedByItsCopies) {
    auto copy = std::make_unique<Lock>(lock);
    EXPECT_EQ(imageOf(*copy).isSingleProcessor, imageOf(lock).isSingleProcessor);
    EXPECT_EQ(imageOf(*copy).event, imageOf(lock).event);
    EXPECT_EQ(imageOf(*copy).mapping, imageOf(lock).mapping);
    EXPECT_EQ(imageOf(*copy).block, imageOf(lock).block);

    copy->ObtainLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(*copy));
}

// Nothing else is asked of it: its block is gone.
TEST_F(InterProcessLockTest, CanBeDestroyedOnceACopyHasClosedIt) {
    auto original = std::make_unique<Lock>(wideName.c_str(), nullptr, 0);
    auto copy = std::make_unique<Lock>(*original);
    auto another = std::make_unique<Lock>(*copy);
    copy.reset();
    original.reset();
    another.reset();

    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_F(InterProcessLockTest, IsNotGivenUpByACopyOfTheObjectThatHoldsIt) {
    {
        Lock holder{wideName.c_str(), nullptr, 0};
        holder.ObtainLock();
        // Another object, although with the same handles, which it closes.
        std::make_unique<Lock>(holder).reset();
    }
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(lock));
}

TEST_F(InterProcessLockTest, IsWhatAnAssignmentGives) {
    Lock other{wide(name + "other").c_str(), nullptr, 0};
    {
        const Lock keeper{other};  // closes what the assignment leaves open
        other = lock;
    }
    EXPECT_EQ(imageOf(other).block, imageOf(lock).block);

    other.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(lock));
    lock.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(other));
}

// ---- Security and failures --------------------------------------------------------------------

TEST_F(InterProcessLockTest, TakesTheCallersSecurity) {
    SECURITY_ATTRIBUTES* const sa = platform::makeOpenSecurity();
    Lock first{wide(name + "own").c_str(), sa, 0};
    platform::freeSecurity(sa);  // it is copied, not kept
    Lock second{wide(name + "own").c_str(), nullptr, 0};

    first.ObtainLock();
    EXPECT_FALSE(isFreeForOthers(second));
    first.ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(second));
}

void expectHarmless(Lock& lock) {
    const InterProcessLockImage image = imageOf(lock);
    EXPECT_EQ(image.block, nullptr);
    EXPECT_FALSE(lock.TryLock());
    lock.ObtainLock();
    lock.ReleaseLock();
    lock.SetSpinCount(5);
    EXPECT_FALSE(isFreeForOthers(lock));
}

TEST_F(InterProcessLockTest, WithABackslashIsNoLock) {
    for (const char* const tail : {"\\", "\\a", "a\\b"}) {
        Lock none{wide(name + "none" + tail).c_str(), nullptr, 7};
        expectHarmless(none);
        EXPECT_EQ(imageOf(none).event, nullptr);
        EXPECT_EQ(imageOf(none).mapping, nullptr);
    }
}

TEST_F(InterProcessLockTest, ThatCouldNotBeMadeCanBeCopied) {
    Lock none{wide(name + "none\\").c_str(), nullptr, 0};
    Lock copy{none};
    expectHarmless(copy);
}

// Without security of its own the system's default will do.
TEST_F(InterProcessLockTest, IsMadeWhereTheMemoryOfItsSecurityFails) {
    for (int nth = 1; nth <= 2; ++nth) {
        std::unique_ptr<Lock> made;
        {
            const AllocationFailure failure{nth};
            made = std::make_unique<Lock>(wide(name + "poor").c_str(), nullptr, 0);
        }
        EXPECT_TRUE(isMade(*made));
        EXPECT_TRUE(isFreeForOthers(*made));
    }
}

TEST_F(InterProcessLockTest, IsNotMadeWhereNewFails) {
    const WideString poor = wide(name + "poor");
    alignas(Lock) unsigned char room[sizeof(Lock)];
    for (int nth = 1;; ++nth) {
        Lock* made = nullptr;
        bool happened = false;
        {
            const NewFailure failure{nth};
            made = new (&room[0]) Lock(poor.c_str(), nullptr, 0);
            happened = failure.happened();
        }
        if (happened) expectHarmless(*made);
        made->~Lock();
        EXPECT_THAT(filesOf(name + "poor"), testing::IsEmpty());
        if (!happened) break;
    }
}

TEST_F(InterProcessLockTest, TakesNoMemoryToBeUsed) {
    const AllocationWatch watch;
    lock.ObtainLock();
    EXPECT_TRUE(lock.TryLock());
    lock.ReleaseLock();
    lock.ReleaseLock();
    lock.SetSpinCount(3);

    EXPECT_EQ(watch.requests(), 0);
}

TEST_F(InterProcessLockTest, GivesBackTheMemoryOfItsMaking) {
    const AllocationWatch watch;
    { const Lock made{wide(name + "brief").c_str(), nullptr, 0}; }

    EXPECT_EQ(watch.blocksInUse(), 0);
}

// ---- Exclusion --------------------------------------------------------------------------------

/// Runs a part in some threads at once.
template <class Part>
void inThreads(int count, Part part) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back(part);
    for (std::thread& thread : threads) thread.join();
}

constexpr int kThreads = 4;
constexpr int kRounds = 5'000;

void enter(Lock& lock, int round) {
    if (round % 3 != 0) return lock.ObtainLock();
    while (!lock.TryLock()) std::this_thread::yield();
}

TEST_F(InterProcessLockTest, LetsOneThreadInAtATime) {
    for (const std::uint32_t spinCount : {0U, 1U, 100U}) {
        lock.SetSpinCount(spinCount);
        int count = 0;
        inThreads(kThreads, [&] {
            for (int round = 0; round < kRounds; ++round) {
                enter(lock, round);
                ++count;
                lock.ReleaseLock();
            }
        });

        EXPECT_EQ(count, kThreads * kRounds) << spinCount;
        EXPECT_EQ(lockCountOf(lock), 0) << spinCount;
    }
}

// Each has the block at an address of its own.
TEST_F(InterProcessLockTest, LetsOneObjectInAtATime) {
    std::atomic<int> count = 0;
    inThreads(kThreads, [&] {
        Lock own{wideName.c_str(), nullptr, 10};
        for (int round = 0; round < kRounds; ++round) {
            enter(own, round);
            own.ObtainLock();
            count.store(count.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
            own.ReleaseLock();
            own.ReleaseLock();
        }
    });

    EXPECT_EQ(count, kThreads * kRounds);
    EXPECT_EQ(lockCountOf(lock), 0);
}

}  // namespace

}  // namespace vexa::test
