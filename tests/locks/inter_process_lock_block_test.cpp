#include "platform/identity.h"
#include "platform/kernel_objects.h"
#include "tests/support/named_locks.h"
#include "vexakit/locks.h"

#include <atomic>
#include <limits>
#include <memory>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using Lock = InterProcessLock;

class InterProcessLockBlock : public NamedLockTest {
protected:
    Lock lock = anotherLock();

    [[nodiscard]] Lock anotherLock(std::uint32_t spinCount = 0) const {
        return Lock{wideName.c_str(), nullptr, spinCount};
    }

    /// Whether the event lets somebody pass; it then lets nobody else.
    [[nodiscard]] bool takesSignal() const {
        return platform::waitFor(imageOf(lock).event, 0) == platform::WaitResult::Signalled;
    }

    [[nodiscard]] bool comesToWait(int waiters) const {
        return becomesTrue([&] { return lockCountOf(lock) == 1 + waiters; });
    }
};

/// The block of a lock that the calling thread took through the object.
BlockState heldThrough(const Lock& lock, std::int32_t depth, std::int32_t waiters = 0) {
    BlockState block;
    block.lockCount = depth + waiters;
    block.ownerThread = kernelThreadId();
    block.ownerProcess = kernelProcessId();
    block.ownerLock = addressOf(lock);
    block.recursion = depth;
    return block;
}

bool hasOneProcessor() {
    return platform::processorCount() == 1;
}

// ---- Its fields -------------------------------------------------------------------------------

TEST_F(InterProcessLockBlock, IsAllZerosAtFirst) {
    EXPECT_EQ(blockOf(lock), BlockState{});
    EXPECT_FALSE(takesSignal());
}

TEST_F(InterProcessLockBlock, LiesBehindItsHandles) {
    const InterProcessLockImage image = imageOf(lock);

    EXPECT_EQ(image.isSingleProcessor, hasOneProcessor() ? 1U : 0U);
    EXPECT_NE(image.event, nullptr);
    EXPECT_NE(image.mapping, nullptr);
    EXPECT_NE(image.block, nullptr);
}

TEST_F(InterProcessLockBlock, TellsItsOwner) {
    ASSERT_TRUE(lock.TryLock());
    EXPECT_EQ(blockOf(lock), heldThrough(lock, 1));

    lock.ReleaseLock();
    EXPECT_EQ(blockOf(lock), BlockState{});

    lock.ObtainLock();
    EXPECT_EQ(blockOf(lock), heldThrough(lock, 1));
    lock.ReleaseLock();
    EXPECT_EQ(blockOf(lock), BlockState{});
}

TEST_F(InterProcessLockBlock, CountsDepthAndAcquisitionsTogether) {
    lock.ObtainLock();
    lock.ObtainLock();
    EXPECT_EQ(blockOf(lock), heldThrough(lock, 2));
    EXPECT_TRUE(lock.TryLock());
    EXPECT_EQ(blockOf(lock), heldThrough(lock, 3));

    lock.ReleaseLock();
    EXPECT_EQ(blockOf(lock), heldThrough(lock, 2));
    lock.ReleaseLock();
    EXPECT_EQ(blockOf(lock), heldThrough(lock, 1));
    lock.ReleaseLock();
    EXPECT_EQ(blockOf(lock), BlockState{});
    EXPECT_FALSE(takesSignal());
}

TEST_F(InterProcessLockBlock, KeepsTheFirstObjectThroughReEntry) {
    Lock second = anotherLock();
    lock.ObtainLock();
    second.ObtainLock();
    EXPECT_TRUE(second.TryLock());

    EXPECT_EQ(blockOf(second), heldThrough(lock, 3));
    for (int i = 0; i < 3; ++i) second.ReleaseLock();
    EXPECT_EQ(blockOf(lock), BlockState{});
}

TEST_F(InterProcessLockBlock, IsLeftAloneByStrangers) {
    lock.ObtainLock();
    inOtherThread([&] {
        EXPECT_FALSE(lock.TryLock());
        lock.ReleaseLock();
    });

    EXPECT_EQ(blockOf(lock), heldThrough(lock, 1));
    lock.ReleaseLock();
}

TEST_F(InterProcessLockBlock, IsLeftAloneByAReleaseOfAFreeLock) {
    lock.ReleaseLock();
    EXPECT_EQ(blockOf(lock), BlockState{});
}

TEST_F(InterProcessLockBlock, DoesNotCompareProcesses) {
    lock.ObtainLock();
    const auto process = fieldOf<std::uint32_t>(lock, kOwnerProcessAt);
    process.store(kernelProcessId() + 1);

    EXPECT_TRUE(lock.TryLock());
    EXPECT_EQ(blockOf(lock).recursion, 2);
    lock.ReleaseLock();
    lock.ReleaseLock();
    EXPECT_EQ(blockOf(lock), BlockState{});
}

TEST_F(InterProcessLockBlock, NeverUsesItsLastBytes) {
    constexpr std::uint32_t kForeign = 0x5A5A5A5A;
    const auto unused = fieldOf<std::uint32_t>(lock, kUnusedAt);
    unused.store(kForeign);
    {
        Lock second = anotherLock(3);
        second.ObtainLock();
        second.ObtainLock();
        second.ReleaseLock();
    }
    lock.ObtainLock();
    lock.ReleaseLock();

    EXPECT_EQ(unused.load(), kForeign);
}

// ---- Waiting ----------------------------------------------------------------------------------

TEST_F(InterProcessLockBlock, CountsWhoWaits) {
    lock.ObtainLock();
    Contender waiter{lock};
    ASSERT_TRUE(comesToWait(1));
    EXPECT_EQ(blockOf(lock), heldThrough(lock, 1, 1));

    lock.ReleaseLock();
    ASSERT_TRUE(waiter.comesIn());
    BlockState handedOn = heldThrough(lock, 1);
    handedOn.ownerThread = waiter.threadId();
    EXPECT_EQ(blockOf(lock), handedOn);
    waiter.giveBack();
    EXPECT_EQ(blockOf(lock), BlockState{});
    EXPECT_FALSE(takesSignal());
}

TEST_F(InterProcessLockBlock, TellsTheObjectOfWhoWaited) {
    Lock second = anotherLock();
    lock.ObtainLock();
    Contender waiter{second};
    ASSERT_TRUE(comesToWait(1));

    lock.ReleaseLock();
    ASSERT_TRUE(waiter.comesIn());
    EXPECT_EQ(blockOf(lock).ownerLock, addressOf(second));
}

TEST_F(InterProcessLockBlock, GivesUpOneLevelWhileOthersWait) {
    lock.ObtainLock();
    lock.ObtainLock();
    const Contender waiter{lock};
    ASSERT_TRUE(becomesTrue([&] { return lockCountOf(lock) == 3; }));

    lock.ReleaseLock();
    EXPECT_EQ(blockOf(lock), heldThrough(lock, 1, 1));
    EXPECT_FALSE(takesSignal());
    EXPECT_FALSE(waiter.isInside());
    lock.ReleaseLock();
    EXPECT_TRUE(waiter.comesIn());
}

TEST_F(InterProcessLockBlock, WakesOneWaiterAtATime) {
    lock.ObtainLock();
    Contender first{lock};
    Contender second{lock};
    ASSERT_TRUE(comesToWait(2));
    lock.ReleaseLock();

    ASSERT_TRUE(becomesTrue([&] { return first.isInside() || second.isInside(); }));
    EXPECT_NE(first.isInside(), second.isInside());
    EXPECT_EQ(lockCountOf(lock), 2);

    Contender<Lock>& inside = first.isInside() ? first : second;
    Contender<Lock>& outside = first.isInside() ? second : first;
    inside.giveBack();
    EXPECT_TRUE(outside.comesIn());
    outside.giveBack();
    EXPECT_EQ(blockOf(lock), BlockState{});
}

TEST_F(InterProcessLockBlock, IsTakenByAWaiterWhoseWaitFails) {
    lock.ObtainLock();
    Lock second = anotherLock();
    const InterProcessLockImage whole = imageOf(second);
    InterProcessLockImage withoutEvent = whole;
    withoutEvent.event = nullptr;
    setImage(second, withoutEvent);
    Contender waiter{second};

    ASSERT_TRUE(waiter.comesIn());
    EXPECT_EQ(blockOf(lock).ownerThread, waiter.threadId());
    EXPECT_EQ(blockOf(lock).ownerLock, addressOf(second));
    EXPECT_EQ(lockCountOf(lock), 2);
    waiter.giveBack();
    setImage(second, whole);
}

// ---- Spinning ---------------------------------------------------------------------------------

class InterProcessLockSpin : public InterProcessLockBlock {
protected:
    void SetUp() override {
        if (hasOneProcessor()) GTEST_SKIP() << "the machine has one processor";
    }

    [[nodiscard]] std::uint32_t spinCount() const { return blockOf(lock).spinCount; }
};

constexpr std::uint32_t kMostSpins = std::numeric_limits<std::uint32_t>::max();

TEST_F(InterProcessLockSpin, IsSetForAllByWhoeverMakesALock) {
    const Lock first = anotherLock(7);
    EXPECT_EQ(spinCount(), 7U);
    const Lock second = anotherLock(kMostSpins);
    EXPECT_EQ(spinCount(), kMostSpins);
    const Lock third = anotherLock(0);
    EXPECT_EQ(spinCount(), 0U);
}

TEST_F(InterProcessLockSpin, IsSetForAllByAnyObject) {
    Lock second = anotherLock();
    second.SetSpinCount(12);
    EXPECT_EQ(spinCount(), 12U);
    lock.SetSpinCount(kMostSpins);
    EXPECT_EQ(blockOf(second).spinCount, kMostSpins);
}

TEST_F(InterProcessLockSpin, IsSetByAnybodyWhileTheLockIsHeld) {
    const Contender holder{lock};
    ASSERT_TRUE(holder.comesIn());
    const BlockState held = blockOf(lock);
    lock.SetSpinCount(9);

    BlockState expected = held;
    expected.spinCount = 9;
    EXPECT_EQ(blockOf(lock), expected);
}

TEST_F(InterProcessLockSpin, OutlivesReleasesAndHolders) {
    {
        Lock holder = anotherLock(5);
        holder.ObtainLock();
        holder.ReleaseLock();
        holder.ObtainLock();
    }
    EXPECT_EQ(spinCount(), 5U);
}

TEST_F(InterProcessLockSpin, IsNotSetWhereThereIsOneProcessor) {
    lock.SetSpinCount(4);
    InterProcessLockImage image = imageOf(lock);
    image.isSingleProcessor = 1;
    setImage(lock, image);
    lock.SetSpinCount(8);

    EXPECT_EQ(spinCount(), 4U);
}

TEST_F(InterProcessLockSpin, TriesAgainUntilTheLockIsFree) {
    Contender holder{lock};
    ASSERT_TRUE(holder.comesIn());
    lock.SetSpinCount(kMostSpins);

    std::atomic<bool> isTrying = false;
    std::atomic<bool> isDone = false;
    bool gotIt = false;
    std::thread spinner{[&] {
        isTrying = true;
        gotIt = lock.TryLock();
        if (gotIt) lock.ReleaseLock();
        isDone = true;
    }};
    while (!isTrying) std::this_thread::yield();
    for (int i = 0; i < 100; ++i) std::this_thread::yield();
    EXPECT_FALSE(isDone);
    EXPECT_EQ(lockCountOf(lock), 1);  // who tries does not count as waiting
    holder.giveBack();
    spinner.join();

    EXPECT_TRUE(gotIt);
}

// How often is read when the trying begins, and not again. That it has begun shows nowhere, so a round
// in which it began too late is repeated with more time.
TEST_F(InterProcessLockSpin, TriesAsOftenAsWasSaidAtItsStart) {
    bool gotIt = false;
    std::chrono::milliseconds time{5};
    for (int round = 0; round < 8 && !gotIt; ++round, time *= 2) {
        Contender holder{lock};
        ASSERT_TRUE(holder.comesIn());
        lock.SetSpinCount(kMostSpins);
        std::thread spinner{[&] {
            gotIt = lock.TryLock();
            if (gotIt) lock.ReleaseLock();
        }};
        std::this_thread::sleep_for(time);
        lock.SetSpinCount(0);
        std::this_thread::sleep_for(time);
        holder.giveBack();
        spinner.join();
    }
    EXPECT_TRUE(gotIt);
}

TEST_F(InterProcessLockSpin, EndsWithoutTheLockAfterItsLastAttempt) {
    const Contender holder{lock};
    ASSERT_TRUE(holder.comesIn());
    for (const std::uint32_t count : {0U, 1U, 1'000U, 100'000U}) {
        lock.SetSpinCount(count);
        const BlockState held = blockOf(lock);
        EXPECT_FALSE(lock.TryLock()) << count;
        EXPECT_EQ(blockOf(lock), held) << count;
    }
}

// ---- The end of the object that holds the lock ------------------------------------------------

TEST_F(InterProcessLockBlock, IsFreedAtAnyDepthByTheEndOfTheHoldingObject) {
    std::optional<Lock> holder{std::in_place, wideName.c_str(), nullptr, 0};
    for (int i = 0; i < 5; ++i) holder->ObtainLock();
    EXPECT_EQ(lockCountOf(lock), 5);
    holder.reset();

    EXPECT_EQ(blockOf(lock), BlockState{});
}

TEST_F(InterProcessLockBlock, GetsASignalFromTheEndOfTheHoldingObjectThoughNobodyWaits) {
    std::optional<Lock> holder{std::in_place, wideName.c_str(), nullptr, 0};
    holder->ObtainLock();
    holder.reset();

    EXPECT_TRUE(takesSignal());
    EXPECT_FALSE(takesSignal());
}

TEST_F(InterProcessLockBlock, LetsTheNextWaiterPassOnceAfterTheEndOfTheHoldingObject) {
    std::optional<Lock> holder{std::in_place, wideName.c_str(), nullptr, 0};
    holder->ObtainLock();
    holder.reset();
    lock.ObtainLock();
    const Contender waiter{lock};

    EXPECT_TRUE(waiter.comesIn());
    EXPECT_EQ(blockOf(lock).ownerThread, waiter.threadId());
    EXPECT_EQ(lockCountOf(lock), 2);
    lock.ReleaseLock();  // a stranger's by now
}

TEST_F(InterProcessLockBlock, KeepsWhoWaitsWhenTheHoldingObjectEnds) {
    std::optional<Lock> holder{std::in_place, wideName.c_str(), nullptr, 0};
    holder->ObtainLock();
    holder->ObtainLock();
    Contender waiter{lock};
    ASSERT_TRUE(becomesTrue([&] { return lockCountOf(lock) == 3; }));
    holder.reset();

    ASSERT_TRUE(waiter.comesIn());
    EXPECT_EQ(lockCountOf(lock), 1);
    EXPECT_FALSE(takesSignal());
    waiter.giveBack();
    EXPECT_EQ(blockOf(lock), BlockState{});
}

TEST_F(InterProcessLockBlock, IsLeftAloneByTheEndOfOtherObjects) {
    lock.ObtainLock();
    { const Lock bystander = anotherLock(); }

    EXPECT_EQ(blockOf(lock), heldThrough(lock, 1));
    EXPECT_FALSE(takesSignal());
    lock.ReleaseLock();
    { const Lock bystander = anotherLock(); }
    EXPECT_EQ(blockOf(lock), BlockState{});
    EXPECT_FALSE(takesSignal());
}

// Two processes may well have objects at the same address.
TEST_F(InterProcessLockBlock, IsLeftAloneByTheEndOfAnObjectAtTheHoldersAddressElsewhere) {
    std::optional<Lock> holder{std::in_place, wideName.c_str(), nullptr, 0};
    holder->ObtainLock();
    fieldOf<std::uint32_t>(lock, kOwnerProcessAt).store(kernelProcessId() + 1);
    const BlockState held = blockOf(lock);
    holder.reset();

    EXPECT_EQ(blockOf(lock), held);
    EXPECT_FALSE(takesSignal());
}

// ---- From the last user to the next -----------------------------------------------------------

TEST_F(InterProcessLockBlock, IsAllZerosForTheFirstUserAfterTheLast) {
    const WideString brief = wide(name + "brief");
    {
        Lock last{brief.c_str(), nullptr, 11};
        last.ObtainLock();
        fieldOf<std::int32_t>(last, kLockCountAt).store(77);
        fieldOf<std::uint32_t>(last, kUnusedAt).store(99);
    }
    EXPECT_THAT(filesOf(name + "brief"), testing::IsEmpty());
    const Lock first{brief.c_str(), nullptr, 0};

    EXPECT_EQ(blockOf(first), BlockState{});
    EXPECT_EQ(platform::waitFor(imageOf(first).event, 0), platform::WaitResult::TimedOut);
}

TEST_F(InterProcessLockBlock, StaysAsLongAsAnybodyUsesIt) {
    auto first = std::make_unique<Lock>(wideName.c_str(), nullptr, 0);
    fieldOf<std::uint32_t>(*first, kUnusedAt).store(99);
    first.reset();
    const Lock second = anotherLock();

    EXPECT_EQ(blockOf(second).unused, 99U);
}

}  // namespace

}  // namespace vexa::test
