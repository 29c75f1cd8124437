#include "tests/locks/lock_fields.h"
#include "tests/locks/lock_threads.h"
#include "vexakit/locks.h"

#include <atomic>
#include <cstddef>
#include <thread>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr int kToWrite = 0;
constexpr int kToRead = 1;

/// What only one writer may change, and nobody may read meanwhile. The yields are where another
/// would slip in.
class Guarded {
public:
    Guarded() { lock_.Initialize(); }
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;
    ~Guarded() { lock_.Cleanup(); }

    void write() {
        lock_.Claim(kToWrite);
        if (readers_ != 0) spoil();
        const int before = first_;
        first_ = before + 1;
        std::this_thread::yield();
        if (second_ != before || readers_ != 0) spoil();
        second_ = before + 1;
        lock_.Release(kToWrite);
    }

    void read() {
        lock_.Claim(kToRead);
        ++readers_;
        const int before = first_;
        if (second_ != before) spoil();
        if (before % 4 == 0) std::this_thread::yield();
        if (first_ != before || second_ != before) spoil();
        --readers_;
        if (lock_.Release(kToRead) != 0) spoil();
    }

    void expectWhole(int writes) {
        EXPECT_FALSE(isSpoilt_);
        EXPECT_EQ(first_, writes);
        EXPECT_EQ(second_, writes);
        EXPECT_TRUE(isFree(lock_));
    }

private:
    void spoil() { isSpoilt_ = true; }

    RWLock lock_;
    int first_ = 0;
    int second_ = 0;
    std::atomic<int> readers_ = 0;
    std::atomic<bool> isSpoilt_ = false;
};

TEST(RWLockStress, KeepsWritersFromEachOther) {
    constexpr int kRounds = 1'000;
    Guarded guarded;

    inAllThreads([&](int) {
        for (int round = 0; round < kRounds; ++round) guarded.write();
    });

    guarded.expectWhole(kThreads * kRounds);
}

TEST(RWLockStress, KeepsWritersFromReaders) {
    constexpr int kRounds = 2'000;
    Guarded guarded;

    inAllThreads([&](int number) {
        for (int round = 0; round < kRounds; ++round) {
            if ((number + round) % 4 == 0) {
                guarded.write();
            } else {
                guarded.read();
            }
        }
    });

    guarded.expectWhole(kThreads * kRounds / 4);
}

// Many readers that leave at once are the hard case: none may open the way after the last has given
// the gate to a writer.
TEST(RWLockStress, KeepsWritersFromReadersThatComeAndGo) {
    constexpr int kRounds = 4'000;
    Guarded guarded;
    std::atomic<int> writes = 0;

    inAllThreads([&](int number) {
        const bool isWriter = number < 2;
        for (int round = 0; round < kRounds; ++round) {
            if (isWriter) {
                guarded.write();
                ++writes;
            } else {
                guarded.read();
            }
        }
    });

    EXPECT_EQ(writes, 2 * kRounds);
    guarded.expectWhole(2 * kRounds);
}

// A late step of one of them would leave the way open for readers although the gate is free.
TEST(RWLockStress, IsFreeWhereTwoReadersLeaveAtOnce) {
    RWLock lock;
    lock.Initialize();
    const auto enterTwice = [&] {
        lock.Claim(kToRead);
        lock.Claim(kToRead);
    };
    int leftOpen = 0;

    enterTwice();
    sideBySide([&](std::size_t /*mine*/, int /*round*/) { lock.Release(kToRead); },
               [&](int /*round*/) {
                   if (!isFree(lock)) ++leftOpen;
                   enterTwice();
               });

    EXPECT_EQ(leftOpen, 0);
    lock.Cleanup();
}

TEST(RWLockStress, CountsReadersThatNeverWait) {
    constexpr int kRounds = 5'000;
    RWLock lock;
    lock.Initialize();
    lock.Claim(kToRead);  // so that none of the others is the last

    inAllThreads([&](int number) {
        for (int round = 0; round < kRounds; ++round) {
            lock.Claim(kToRead);
            if ((number + round) % 3 == 0) std::this_thread::yield();
            EXPECT_EQ(lock.Release(kToRead), 0);
        }
    });

    EXPECT_EQ(readerCountOf(lock), 0);
    EXPECT_TRUE(isSignalled(readerEventOf(lock)));
    EXPECT_EQ(lock.Release(kToRead), 0);
    EXPECT_TRUE(isFree(lock));
    lock.Cleanup();
}

TEST(RWLockStress, OutlivesWritersThatEnd) {
    constexpr int kRounds = 100;
    RWLock lock;
    lock.Initialize();
    int writes = 0;
    for (int round = 0; round < kRounds; ++round) {
        {
            const Worker lost{[&] {
                lock.Claim(kToWrite);
                ++writes;
            }};
        }
        lock.Release(kToWrite);
    }

    EXPECT_EQ(writes, kRounds);
    EXPECT_TRUE(isFree(lock));
    lock.Cleanup();
}

}  // namespace

}  // namespace vexa::test
