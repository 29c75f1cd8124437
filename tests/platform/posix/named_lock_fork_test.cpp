#include "tests/platform/posix/child_process.h"
#include "tests/support/lock_helper.h"
#include "tests/support/named_locks.h"
#include "vexakit/locks.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

// A child answers with the number of the first expectation that failed in it.
constexpr int kGood = 0;

// ---- Both locks -------------------------------------------------------------------------------

template <class Lock>
class NamedLockAndFork : public NamedLockTest {
protected:
    static constexpr const char* kKind = std::is_same_v<Lock, MutexLock> ? "mutex" : "interprocess";
    std::unique_ptr<Lock> lock = another();

    [[nodiscard]] std::unique_ptr<Lock> another() const { return makeLock<Lock>(wideName); }
};

TYPED_TEST_SUITE(NamedLockAndFork, NamedLocks, NamedLocksNames);

TYPED_TEST(NamedLockAndFork, IsNotTheChildsWhenItIsTheParents) {
    this->lock->ObtainLock();
    Child child{[&] {
        if (this->lock->TryLock()) return 1;
        this->lock->ReleaseLock();  // a stranger's
        const auto own = this->another();
        if (own->TryLock()) return 2;
        own->ReleaseLock();
        return kGood;
    }};

    EXPECT_EQ(child.exitCode(), kGood);
    EXPECT_FALSE(isFreeForOthers(*this->lock));
    this->lock->ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(*this->lock));
}

TYPED_TEST(NamedLockAndFork, IsNotTheParentsWhenItIsTheChilds) {
    const Signal isInside;
    const Signal mayLeave;
    Child child{[&] {
        if (!this->lock->TryLock()) return 1;
        isInside.give();
        if (!mayLeave.await()) return 2;
        this->lock->ReleaseLock();
        return kGood;
    }};

    ASSERT_TRUE(isInside.await());
    EXPECT_FALSE(this->lock->TryLock());
    this->lock->ReleaseLock();
    EXPECT_FALSE(isFreeForOthers(*this->lock));
    mayLeave.give();
    EXPECT_EQ(child.exitCode(), kGood);
    EXPECT_TRUE(isFreeForOthers(*this->lock));
}

TYPED_TEST(NamedLockAndFork, IsWaitedForBetweenParentAndChild) {
    this->lock->ObtainLock();
    const Signal isAtTheDoor;
    Child child{[&] {
        isAtTheDoor.give();
        this->lock->ObtainLock();
        this->lock->ReleaseLock();
        return kGood;
    }};

    ASSERT_TRUE(isAtTheDoor.await());
    this->lock->ReleaseLock();
    EXPECT_EQ(child.exitCode(), kGood);
    EXPECT_TRUE(isFreeForOthers(*this->lock));
}

TYPED_TEST(NamedLockAndFork, IsNotTakenAwayByAChildThatDestroysIt) {
    this->lock->ObtainLock();
    const auto files = filesOf(this->name);
    Child child{[&] {
        this->lock.reset();
        return kGood;
    }};

    EXPECT_EQ(child.exitCode(), kGood);
    EXPECT_EQ(filesOf(this->name), files);
    LockHelper other{this->kKind, this->wideName};
    EXPECT_EQ(other.ask("try"), "no");
    this->lock->ReleaseLock();
    EXPECT_EQ(other.ask("try"), "yes");
    EXPECT_FALSE(this->lock->TryLock());
    EXPECT_EQ(other.end(), 0);
}

TYPED_TEST(NamedLockAndFork, IsNotTakenAwayByAChildThatUsesItsNameAnew) {
    this->lock->ObtainLock();
    const auto files = filesOf(this->name);
    Child child{[&] {
        auto own = this->another();
        if (own->TryLock()) return 1;
        this->lock.reset();
        if (own->TryLock()) return 2;
        own.reset();
        own = this->another();
        return own->TryLock() ? 3 : kGood;
    }};

    EXPECT_EQ(child.exitCode(), kGood);
    EXPECT_EQ(filesOf(this->name), files);
    EXPECT_FALSE(isFreeForOthers(*this->lock));
    this->lock->ReleaseLock();
}

TYPED_TEST(NamedLockAndFork, IsLeftAloneByAChildThatIsKilled) {
    this->lock->ObtainLock();
    Child child{untilKilled};
    child.kill();

    EXPECT_FALSE(isFreeForOthers(*this->lock));
    LockHelper other{this->kKind, this->wideName};
    EXPECT_EQ(other.ask("try"), "no");
    this->lock->ReleaseLock();
    EXPECT_EQ(other.ask("try"), "yes");
    EXPECT_EQ(other.end(), 0);
}

TYPED_TEST(NamedLockAndFork, GoesWithTheParentWhateverTheChildHasInherited) {
    this->lock->ObtainLock();
    Child child{untilKilled};
    this->lock.reset();
    EXPECT_THAT(filesOf(this->name), testing::IsEmpty());

    const auto first = this->another();
    EXPECT_TRUE(isFreeForOthers(*first));
    LockHelper other{this->kKind, this->wideName};
    EXPECT_EQ(other.ask("try"), "yes");
    EXPECT_FALSE(first->TryLock());
    EXPECT_EQ(other.end(), 0);
}

TYPED_TEST(NamedLockAndFork, IsUsedByAChildAfterItsParentsEnd) {
    this->lock->ObtainLock();
    this->lock->ReleaseLock();
    const Signal isDestroyed;
    Child child{[&] {
        if (!isDestroyed.await()) return 1;
        if (!this->lock->TryLock()) return 2;
        this->lock->ReleaseLock();
        this->lock.reset();
        return kGood;
    }};
    this->lock.reset();
    isDestroyed.give();

    EXPECT_EQ(child.exitCode(), kGood);
}

// The child has become a user of its own.
TYPED_TEST(NamedLockAndFork, IsKeptByAChildThatUsesItsNameAnew) {
    const Signal isInside;
    const Signal isDestroyed;
    Child child{[&] {
        auto own = this->another();
        if (!own->TryLock()) return 1;
        isInside.give();
        if (!isDestroyed.await()) return 2;
        LockHelper other{this->kKind, this->wideName};
        if (other.ask("try") != "no") return 3;
        own->ReleaseLock();
        if (other.ask("try") != "yes") return 4;
        if (own->TryLock()) return 5;
        if (other.end() != 0) return 6;
        own.reset();
        this->lock.reset();
        return kGood;
    }};

    ASSERT_TRUE(isInside.await());
    this->lock.reset();
    EXPECT_FALSE(filesOf(this->name).empty());
    isDestroyed.give();
    EXPECT_EQ(child.exitCode(), kGood);
}

// ---- Mutexes ----------------------------------------------------------------------------------

using MutexLockAndFork = NamedLockAndFork<MutexLock>;

TEST_F(MutexLockAndFork, IsAbandonedByAChildThatEnds) {
    Child child{[&] { return lock->TryLock() ? kGood : 1; }};
    EXPECT_EQ(child.exitCode(), kGood);

    EXPECT_FALSE(lock->TryLock());
    EXPECT_FALSE(isFreeForOthers(*lock));
    lock->ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(*lock));
}

TEST_F(MutexLockAndFork, IsNotAbandonedByAChildOfItsOwner) {
    lock->ObtainLock();
    Child child{[] { return kGood; }};
    EXPECT_EQ(child.exitCode(), kGood);

    EXPECT_TRUE(lock->TryLock());
    lock->ReleaseLock();
    lock->ReleaseLock();
    EXPECT_TRUE(isFreeForOthers(*lock));
}

// ---- Inter-process locks ----------------------------------------------------------------------

using InterProcessLockAndFork = NamedLockAndFork<InterProcessLock>;

TEST_F(InterProcessLockAndFork, TellsTheChildsOwnNumbers) {
    lock->ObtainLock();  // the parent's numbers have been asked for
    lock->ReleaseLock();
    Child child{[&] {
        if (!lock->TryLock()) return 1;
        const BlockState block = blockOf(*lock);
        if (block.ownerThread != kernelThreadId()) return 2;
        if (block.ownerProcess != kernelProcessId()) return 3;
        lock->ReleaseLock();
        return blockOf(*lock) == BlockState{} ? kGood : 4;
    }};

    EXPECT_EQ(child.exitCode(), kGood);
    EXPECT_EQ(blockOf(*lock), BlockState{});
}

// The child's object lies at the same address, but in another process.
TEST_F(InterProcessLockAndFork, IsNotGivenUpByTheChildsEndOfTheParentsObject) {
    lock->ObtainLock();
    const BlockState held = blockOf(*lock);
    Child child{[&] {
        lock.reset();
        return kGood;
    }};

    EXPECT_EQ(child.exitCode(), kGood);
    EXPECT_EQ(blockOf(*lock), held);
    lock->ReleaseLock();
}

TEST_F(InterProcessLockAndFork, IsGivenUpByTheChildsEndOfTheObjectThatItHolds) {
    Child child{[&] {
        lock->ObtainLock();
        lock->ObtainLock();
        lock.reset();
        return kGood;
    }};

    EXPECT_EQ(child.exitCode(), kGood);
    EXPECT_EQ(blockOf(*lock), BlockState{});
}

}  // namespace

}  // namespace vexa::test
