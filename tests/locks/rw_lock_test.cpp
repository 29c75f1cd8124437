#include "platform/kernel_objects.h"
#include "tests/locks/lock_fields.h"
#include "tests/locks/lock_threads.h"
#include "tests/support/allocations.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

#include <atomic>
#include <optional>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr int kToWrite = 0;
constexpr int kToRead = 1;

/// A lock that is initialised at first and cleaned up at last.
class ReadyLock : public RWLock {
public:
    ReadyLock() { RWLock::Initialize(); }
    ReadyLock(const ReadyLock&) = delete;
    ReadyLock& operator=(const ReadyLock&) = delete;
    ~ReadyLock() override { RWLock::Cleanup(); }

private:
    Watchdog watchdog_;
};

/// Claims a lock and releases it.
auto visit(RWLock& lock, int mode) {
    return [&lock, mode] {
        lock.Claim(mode);
        lock.Release(mode);
    };
}

// ---- From the constructor to the destructor -----------------------------------------------------

TEST(RWLock, HasNoHandlesAtFirst) {
    const RWLock lock;

    EXPECT_EQ(readerEventOf(lock), nullptr);
    EXPECT_EQ(gateOf(lock), nullptr);
    EXPECT_EQ(writerMutexOf(lock), nullptr);
}

TEST(RWLock, WaitsForNothingBeforeItIsInitialised) {
    RWLock lock;
    const Worker worker{[&] {
        visit(lock, kToWrite)();
        visit(lock, kToRead)();
        lock.Cleanup();
    }};

    EXPECT_TRUE(worker.isDoneInTime());
}

TEST(RWLockInitialize, MakesAFreeLock) {
    RWLock lock;

    EXPECT_EQ(lock.Initialize(), VEXA_SUCCESS);
    EXPECT_EQ(readerCountOf(lock), -1);
    EXPECT_FALSE(isSignalled(readerEventOf(lock)));
    EXPECT_TRUE(isGateOpen(lock));
    EXPECT_FALSE(platform::releaseMutex(writerMutexOf(lock)));
    EXPECT_FALSE(isOwnedByAnother(writerMutexOf(lock)));
    lock.Cleanup();
}

TEST(RWLockInitialize, MakesAManualReaderEventAndAnAutomaticGate) {
    const ReadyLock lock;
    platform::setEvent(readerEventOf(lock));

    EXPECT_TRUE(isSignalled(readerEventOf(lock)));
    EXPECT_TRUE(isSignalled(readerEventOf(lock)));
    EXPECT_TRUE(isSignalled(gateOf(lock)));
    EXPECT_FALSE(isSignalled(gateOf(lock)));
}

TEST(RWLockInitialize, MakesTheLockUsableAfterACleanup) {
    RWLock lock;
    lock.Initialize();
    lock.Claim(kToRead);
    lock.Cleanup();

    EXPECT_EQ(lock.Initialize(), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(lock));
    lock.Cleanup();
}

TEST(RWLockCleanup, ClosesTheHandlesAndLeavesTheFields) {
    RWLock lock;
    lock.Initialize();
    const RWLock before{lock};  // NOLINT(performance-unnecessary-copy-initialization): looked at
    lock.Cleanup();

    EXPECT_EQ(readerEventOf(lock), readerEventOf(before));
    EXPECT_EQ(gateOf(lock), gateOf(before));
    EXPECT_EQ(writerMutexOf(lock), writerMutexOf(before));
    EXPECT_FALSE(platform::setEvent(readerEventOf(lock)));
    EXPECT_FALSE(platform::setEvent(gateOf(lock)));
    EXPECT_EQ(platform::waitFor(writerMutexOf(lock), 0), platform::WaitResult::Failed);
}

TEST(RWLockCleanup, IsHarmlessWhenRepeated) {
    ReadyLock other;
    RWLock lock;
    lock.Initialize();
    lock.Cleanup();
    lock.Cleanup();
    lock.Cleanup();

    EXPECT_TRUE(isFree(other));
}

#ifndef _WIN32
// Windows gives the numbers of closed handles out again: there they may be another object's.

TEST(RWLockCleanup, WhenRepeatedLeavesWhatWasMadeMeanwhile) {
    RWLock lock;
    lock.Initialize();
    lock.Cleanup();
    ReadyLock other;
    lock.Cleanup();

    EXPECT_TRUE(isFree(other));
}

TEST(RWLockCleanup, LeavesALockThatIsClaimedNothingToWaitFor) {
    RWLock lock;
    lock.Initialize();
    lock.Cleanup();
    const Worker worker{[&] {
        lock.Claim(kToWrite);
        lock.Claim(kToWrite);
    }};

    EXPECT_TRUE(worker.isDoneInTime());
}

#endif

TEST(RWLockCleanup, EndsALockThatIsClaimed) {
    RWLock lock;
    lock.Initialize();
    lock.Claim(kToWrite);
    lock.Cleanup();
    ReadyLock other;

    EXPECT_TRUE(isFree(other));
}

TEST(RWLock, LeavesItsHandlesOpenWhenItGoes) {
    platform::Handle handles[3] = {};
    {
        RWLock lock;
        lock.Initialize();
        handles[0] = readerEventOf(lock);
        handles[1] = gateOf(lock);
        handles[2] = writerMutexOf(lock);
    }

    EXPECT_TRUE(platform::setEvent(handles[0]));
    EXPECT_TRUE(isSignalled(handles[1]));
    EXPECT_EQ(platform::waitFor(handles[2], 0), platform::WaitResult::Signalled);
    platform::releaseMutex(handles[2]);
    for (const platform::Handle handle : handles) EXPECT_TRUE(platform::closeHandle(handle));
}

// ---- Copies -------------------------------------------------------------------------------------

void expectFieldsOf(const RWLock& copy, RWLock& lock) {
    EXPECT_EQ(readerEventOf(copy), readerEventOf(lock));
    EXPECT_EQ(gateOf(copy), gateOf(lock));
    EXPECT_EQ(writerMutexOf(copy), writerMutexOf(lock));
    EXPECT_EQ(fieldAt<std::int32_t>(copy, 32), readerCountOf(lock));
}

TEST(RWLockCopy, HasTheFieldsOfTheOther) {
    RWLock lock;
    lock.Initialize();
    for (int i = 0; i < 3; ++i) lock.Claim(kToRead);

    const RWLock copy{lock};  // NOLINT(performance-unnecessary-copy-initialization): looked at
    expectFieldsOf(copy, lock);
    EXPECT_EQ(readerCountOf(lock), 2);
    lock.Cleanup();
}

TEST(RWLockCopy, AssignedHasTheFieldsOfTheOther) {
    RWLock lock;
    lock.Initialize();
    lock.Claim(kToRead);
    lock.Claim(kToRead);
    RWLock copy;

    const RWLock* const result = &(copy = lock);
    EXPECT_EQ(result, &copy);
    expectFieldsOf(copy, lock);
    lock.Cleanup();
}

TEST(RWLockCopy, WaitsForAWriterOfTheOther) {
    RWLock lock;
    lock.Initialize();
    RWLock copy{lock};
    lock.Claim(kToWrite);
    const Worker writer{visit(copy, kToWrite)};
    EXPECT_TRUE(writer.waits());

    lock.Release(kToWrite);
    EXPECT_TRUE(writer.isDoneInTime());
    lock.Cleanup();
}

TEST(RWLockCopy, CleanedUpIsTheEndOfAll) {
    RWLock lock;
    lock.Initialize();
    RWLock copy;
    copy = lock;
    copy.Cleanup();

    EXPECT_FALSE(platform::setEvent(gateOf(lock)));
    lock.Cleanup();
}

// ---- One reader, one writer: what changes with each step ----------------------------------------

TEST(RWLockClaim, ToReadTakesTheGateAndOpensTheWayForReaders) {
    ReadyLock lock;
    lock.Claim(kToRead);

    EXPECT_EQ(readerCountOf(lock), 0);
    EXPECT_TRUE(isSignalled(readerEventOf(lock)));
    EXPECT_FALSE(isSignalled(gateOf(lock)));
    EXPECT_FALSE(isOwnedByAnother(writerMutexOf(lock)));
}

TEST(RWLockClaim, ToReadOnceMoreOnlyCounts) {
    ReadyLock lock;
    for (int readers = 0; readers < 5; ++readers) {
        lock.Claim(kToRead);
        EXPECT_EQ(readerCountOf(lock), readers);
    }

    EXPECT_TRUE(isSignalled(readerEventOf(lock)));
    EXPECT_FALSE(isSignalled(gateOf(lock)));
}

TEST(RWLockClaim, ToWriteTakesTheMutexAndTheGate) {
    ReadyLock lock;
    lock.Claim(kToWrite);

    EXPECT_EQ(readerCountOf(lock), -1);
    EXPECT_FALSE(isSignalled(readerEventOf(lock)));
    EXPECT_FALSE(isSignalled(gateOf(lock)));
    EXPECT_TRUE(inAnotherThread([&] { return isOwnedByAnother(writerMutexOf(lock)); }));
    EXPECT_TRUE(platform::releaseMutex(writerMutexOf(lock)));
}

TEST(RWLockRelease, OfTheFirstOfTwoReadersLeavesTheWayOpen) {
    ReadyLock lock;
    lock.Claim(kToRead);
    lock.Claim(kToRead);

    EXPECT_EQ(lock.Release(kToRead), VEXA_SUCCESS);
    EXPECT_EQ(readerCountOf(lock), 0);
    EXPECT_TRUE(isSignalled(readerEventOf(lock)));
    EXPECT_FALSE(isSignalled(gateOf(lock)));

    EXPECT_EQ(lock.Release(kToRead), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(lock));
}

TEST(RWLockRelease, OfAReaderOpensTheWayAnew) {
    ReadyLock lock;
    lock.Claim(kToRead);
    lock.Claim(kToRead);
    platform::resetEvent(readerEventOf(lock));
    const Worker third{[&] { lock.Claim(kToRead); }};
    EXPECT_TRUE(third.waits());

    EXPECT_EQ(lock.Release(kToRead), VEXA_SUCCESS);
    EXPECT_TRUE(third.isDoneInTime());
    EXPECT_EQ(readerCountOf(lock), 1);
}

TEST(RWLockRelease, OfTheWriterFreesTheLock) {
    ReadyLock lock;
    lock.Claim(kToWrite);

    EXPECT_EQ(lock.Release(kToWrite), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(lock));
    EXPECT_FALSE(inAnotherThread([&] { return isOwnedByAnother(writerMutexOf(lock)); }));
}

TEST(RWLockRelease, OfAReaderFailsWhereNoneIsInside) {
    ReadyLock lock;
    EXPECT_EQ(lock.Release(kToRead), VEXA_FAILURE);
    EXPECT_TRUE(isFree(lock));

    lock.Claim(kToRead);
    EXPECT_EQ(lock.Release(kToRead), VEXA_SUCCESS);
    EXPECT_EQ(lock.Release(kToRead), VEXA_FAILURE);
    EXPECT_TRUE(isFree(lock));
}

TEST(RWLockRelease, OfAReaderFailsWhileAWriterIsInside) {
    ReadyLock lock;
    lock.Claim(kToWrite);

    EXPECT_EQ(lock.Release(kToRead), VEXA_FAILURE);
    EXPECT_EQ(readerCountOf(lock), -1);
    EXPECT_FALSE(isSignalled(gateOf(lock)));
    lock.Release(kToWrite);
}

TEST(RWLockRelease, ToWriteOfAFreeLockOpensTheGateOnce) {
    ReadyLock lock;
    EXPECT_EQ(lock.Release(kToWrite), VEXA_SUCCESS);
    EXPECT_EQ(lock.Release(kToWrite), VEXA_SUCCESS);

    EXPECT_TRUE(isSignalled(gateOf(lock)));
    EXPECT_FALSE(isSignalled(gateOf(lock)));
}

class RWLockMode : public testing::TestWithParam<int> {};

TEST_P(RWLockMode, OtherThanZeroIsToRead) {
    ReadyLock lock;
    lock.Claim(GetParam());
    EXPECT_EQ(readerCountOf(lock), 0);
    lock.Claim(GetParam());
    EXPECT_EQ(readerCountOf(lock), 1);
    EXPECT_FALSE(isOwnedByAnother(writerMutexOf(lock)));

    EXPECT_EQ(lock.Release(GetParam()), VEXA_SUCCESS);
    EXPECT_EQ(lock.Release(GetParam()), VEXA_SUCCESS);
    EXPECT_EQ(lock.Release(GetParam()), VEXA_FAILURE);
    EXPECT_TRUE(isFree(lock));
}

INSTANTIATE_TEST_SUITE_P(Table, RWLockMode, testing::Values(1, 2, -1, 256, 0x10000, 0x7FFFFFFF),
                         [](const auto& row) { return "Row" + std::to_string(row.index); });

TEST(RWLock, NeedsNoMemoryOnceItIsInitialised) {
    ReadyLock lock;
    const AllocationWatch watch;
    const NewFailure failure{1};
    for (int i = 0; i < 3; ++i) {
        visit(lock, kToWrite)();
        lock.Claim(kToRead);
        visit(lock, kToRead)();
        lock.Release(kToRead);
        lock.Release(kToRead);
    }

    EXPECT_EQ(watch.requests(), 0);
    EXPECT_FALSE(failure.happened());
}

}  // namespace

}  // namespace vexa::test
