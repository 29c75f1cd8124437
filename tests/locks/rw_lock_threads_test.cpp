#include "tests/locks/lock_fields.h"
#include "tests/locks/lock_threads.h"
#include "tests/support/allocations.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

#include <atomic>
#include <deque>
#include <thread>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr int kToWrite = 0;
constexpr int kToRead = 1;

class RWLockThreads : public testing::Test {
public:
    void SetUp() override { lock.Initialize(); }
    void TearDown() override { lock.Cleanup(); }

    /// A thread that claims the lock and releases it.
    auto visit(int mode) {
        return [this, mode] {
            lock.Claim(mode);
            lock.Release(mode);
        };
    }

    bool isWriterQueued() const { return isOwnedByAnother(writerMutexOf(lock)); }

    RWLock lock;
    Watchdog watchdog;
};

// ---- Who waits for whom -------------------------------------------------------------------------

TEST_F(RWLockThreads, ReadTogether) {
    std::atomic<int> inside = 0;
    std::deque<Worker> readers;
    for (int i = 0; i < kThreads; ++i) {
        readers.emplace_back([&] {
            lock.Claim(kToRead);
            ++inside;
            EXPECT_TRUE(comesTrue([&] { return inside == kThreads; }));
            lock.Release(kToRead);
        });
    }
    readers.clear();

    EXPECT_EQ(inside, kThreads);
    EXPECT_TRUE(isFree(lock));
}

TEST_F(RWLockThreads, KeepAReaderOutWhileOneWrites) {
    lock.Claim(kToWrite);
    const Worker reader{visit(kToRead)};
    EXPECT_TRUE(comesTrue([&] { return readerCountOf(lock) == 0; }));
    EXPECT_TRUE(reader.waits());

    lock.Release(kToWrite);
    EXPECT_TRUE(reader.isDoneInTime());
    EXPECT_TRUE(isFree(lock));
}

TEST_F(RWLockThreads, KeepAWriterOutWhileOneWrites) {
    lock.Claim(kToWrite);
    const Worker writer{visit(kToWrite)};
    EXPECT_TRUE(writer.waits());

    lock.Release(kToWrite);
    EXPECT_TRUE(writer.isDoneInTime());
    EXPECT_TRUE(isFree(lock));
}

TEST_F(RWLockThreads, KeepAWriterOutWhileOneReads) {
    lock.Claim(kToRead);
    lock.Claim(kToRead);
    const Worker writer{visit(kToWrite)};
    EXPECT_TRUE(comesTrue([&] { return isWriterQueued(); }));
    EXPECT_TRUE(writer.waits());

    lock.Release(kToRead);
    EXPECT_TRUE(writer.waits());
    lock.Release(kToRead);
    EXPECT_TRUE(writer.isDoneInTime());
    EXPECT_TRUE(isFree(lock));
}

TEST_F(RWLockThreads, LetAllReadersInAfterAWriter) {
    lock.Claim(kToWrite);
    std::atomic<int> inside = 0;
    std::deque<Worker> readers;
    for (int i = 0; i < kThreads; ++i) {
        readers.emplace_back([&] {
            lock.Claim(kToRead);
            ++inside;
            EXPECT_TRUE(comesTrue([&] { return inside == kThreads; }));
            lock.Release(kToRead);
        });
    }
    EXPECT_TRUE(comesTrue([&] { return readerCountOf(lock) == kThreads - 1; }));
    EXPECT_TRUE(readers.front().waits());
    EXPECT_EQ(inside, 0);

    lock.Release(kToWrite);
    for (const Worker& reader : readers) EXPECT_TRUE(reader.isDoneInTime());
    EXPECT_TRUE(isFree(lock));
}

TEST_F(RWLockThreads, LetReadersInBeforeAWriterThatWaits) {
    lock.Claim(kToRead);
    const Worker writer{visit(kToWrite)};
    EXPECT_TRUE(comesTrue([&] { return isWriterQueued(); }));

    for (int i = 0; i < 3; ++i) {
        const Worker reader{visit(kToRead)};
        EXPECT_TRUE(reader.isDoneInTime());
    }
    EXPECT_TRUE(writer.waits());
    lock.Release(kToRead);
    EXPECT_TRUE(writer.isDoneInTime());
}

TEST_F(RWLockThreads, KeepTheWriterWaitingWhileReadersRelieveEachOther) {
    lock.Claim(kToRead);
    const Worker writer{visit(kToWrite)};
    EXPECT_TRUE(comesTrue([&] { return isWriterQueued(); }));

    for (int i = 0; i < 1'000; ++i) {
        lock.Claim(kToRead);
        EXPECT_EQ(lock.Release(kToRead), VEXA_SUCCESS);
    }
    EXPECT_TRUE(writer.waits());
    lock.Release(kToRead);
    EXPECT_TRUE(writer.isDoneInTime());
}

TEST_F(RWLockThreads, LetOneOfManyWritersInAfterAnother) {
    std::atomic<int> inside = 0;
    std::atomic<int> visits = 0;
    std::atomic<bool> isCrowded = false;
    std::deque<Worker> writers;
    lock.Claim(kToWrite);
    for (int i = 0; i < kThreads; ++i) {
        writers.emplace_back([&] {
            lock.Claim(kToWrite);
            if (++inside != 1) isCrowded = true;
            std::this_thread::yield();
            ++visits;
            --inside;
            lock.Release(kToWrite);
        });
    }
    EXPECT_TRUE(writers.back().waits());
    EXPECT_EQ(visits, 0);
    lock.Release(kToWrite);
    writers.clear();

    EXPECT_EQ(visits, kThreads);
    EXPECT_FALSE(isCrowded);
}

TEST_F(RWLockThreads, NeedNoMemoryToWait) {
    lock.Claim(kToRead);
    const Worker reader{[&] {
        comesTrue([&] { return isWriterQueued(); });
        lock.Release(kToRead);
    }};
    const AllocationWatch watch;
    const NewFailure failure{1};
    lock.Claim(kToWrite);
    lock.Release(kToWrite);

    EXPECT_EQ(watch.requests(), 0);
    EXPECT_FALSE(failure.happened());
}

// ---- Whose claim it is --------------------------------------------------------------------------

TEST_F(RWLockThreads, ReleaseWhatOthersClaimedToRead) {
    {
        const Worker reader{[&] { lock.Claim(kToRead); }};
    }
    EXPECT_EQ(readerCountOf(lock), 0);

    EXPECT_EQ(lock.Release(kToRead), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(lock));
}

TEST_F(RWLockThreads, WaitForThemselvesWhereTheyWriteTwice) {
    std::atomic<int> claims = 0;
    const Worker writer{[&] {
        for (int i = 0; i < 2; ++i) {
            lock.Claim(kToWrite);
            ++claims;
        }
        lock.Release(kToWrite);
        lock.Release(kToWrite);
    }};
    EXPECT_TRUE(comesTrue([&] { return claims == 1; }));
    EXPECT_TRUE(writer.waits());
    EXPECT_EQ(claims, 1);

    // Opened by somebody else, the gate lets it in again: the mutex did before.
    EXPECT_EQ(lock.Release(kToWrite), VEXA_SUCCESS);
    EXPECT_TRUE(writer.isDoneInTime());
    EXPECT_EQ(claims, 2);
    EXPECT_TRUE(isFree(lock));
}

TEST_F(RWLockThreads, WaitForThemselvesWhereTheyWriteWhatTheyRead) {
    std::atomic<bool> isReading = false;
    const Worker both{[&] {
        lock.Claim(kToRead);
        isReading = true;
        lock.Claim(kToWrite);
        lock.Release(kToWrite);
    }};
    EXPECT_TRUE(comesTrue([&] { return isReading.load(); }));
    EXPECT_TRUE(both.waits());

    EXPECT_EQ(lock.Release(kToRead), VEXA_SUCCESS);
    EXPECT_TRUE(both.isDoneInTime());
}

TEST_F(RWLockThreads, LeaveTheQueueToItsWriterWhereAnotherReleases) {
    std::atomic<bool> isInside = false;
    std::atomic<bool> mayGo = false;
    const Worker first{[&] {
        lock.Claim(kToWrite);
        isInside = true;
        comesTrue([&] { return mayGo.load(); });
        lock.Release(kToWrite);
    }};
    EXPECT_TRUE(comesTrue([&] { return isInside.load(); }));
    EXPECT_EQ(lock.Release(kToWrite), VEXA_SUCCESS);

    // The gate is open and the mutex is not given up.
    const Worker second{visit(kToWrite)};
    EXPECT_TRUE(second.waits());
    EXPECT_TRUE(isGateOpen(lock));
    mayGo = true;
    EXPECT_TRUE(second.isDoneInTime());
}

// ---- Writers that end with the lock -------------------------------------------------------------

TEST_F(RWLockThreads, GoOnToTheGateAfterAWriterThatEnded) {
    {
        const Worker lost{[&] { lock.Claim(kToWrite); }};
    }
    const Worker next{visit(kToWrite)};
    EXPECT_TRUE(next.waits());

    EXPECT_EQ(lock.Release(kToWrite), VEXA_SUCCESS);
    EXPECT_TRUE(next.isDoneInTime());
    EXPECT_TRUE(isFree(lock));
}

TEST_F(RWLockThreads, GoOnToTheGateWhereTheWriterEndsWhileTheyWait) {
    std::atomic<bool> isInside = false;
    std::atomic<bool> mayEnd = false;
    const Worker lost{[&] {
        lock.Claim(kToWrite);
        isInside = true;
        comesTrue([&] { return mayEnd.load(); });
    }};
    EXPECT_TRUE(comesTrue([&] { return isInside.load(); }));
    const Worker next{visit(kToWrite)};
    EXPECT_TRUE(next.waits());

    mayEnd = true;
    EXPECT_TRUE(lost.isDoneInTime());
    EXPECT_TRUE(next.waits());
    EXPECT_EQ(lock.Release(kToWrite), VEXA_SUCCESS);
    EXPECT_TRUE(next.isDoneInTime());
}

TEST_F(RWLockThreads, KeepReadersOutAfterAWriterThatEnded) {
    {
        const Worker lost{[&] { lock.Claim(kToWrite); }};
    }
    const Worker reader{visit(kToRead)};
    EXPECT_TRUE(reader.waits());

    EXPECT_EQ(lock.Release(kToWrite), VEXA_SUCCESS);
    EXPECT_TRUE(reader.isDoneInTime());
    EXPECT_TRUE(isFree(lock));
}

TEST_F(RWLockThreads, ReleaseWhatEndedReadersClaimed) {
    for (int i = 0; i < 3; ++i) {
        const Worker lost{[&] { lock.Claim(kToRead); }};
    }
    for (int i = 0; i < 3; ++i) EXPECT_EQ(lock.Release(kToRead), VEXA_SUCCESS);

    EXPECT_EQ(lock.Release(kToRead), VEXA_FAILURE);
    EXPECT_TRUE(isFree(lock));
}

}  // namespace

}  // namespace vexa::test
