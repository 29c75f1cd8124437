#include "tests/support/count_file.h"
#include "tests/support/lock_helper.h"
#include "tests/support/named_locks.h"
#include "vexakit/locks.h"

#include <chrono>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

/// The parameter: the kind of lock, as the helper knows it.
class LockOfProcesses : public NamedLockTest, public testing::WithParamInterface<const char*> {
protected:
    LockHelper first{GetParam(), wideName};
    LockHelper second{GetParam(), wideName};

    void SetUp() override {
        ASSERT_TRUE(first.isMade());
        ASSERT_TRUE(second.isMade());
    }

    ~LockOfProcesses() override {
        EXPECT_EQ(first.end(), 0);
        EXPECT_EQ(second.end(), 0);
    }
};

INSTANTIATE_TEST_SUITE_P(Kinds, LockOfProcesses, testing::Values("mutex", "interprocess"),
                         [](const auto& row) { return std::string{row.param}; });

TEST_P(LockOfProcesses, IsHeldByOneOfThem) {
    EXPECT_EQ(first.ask("try"), "yes");
    EXPECT_EQ(second.ask("try"), "no");
    EXPECT_EQ(first.ask("release"), "released");

    EXPECT_EQ(second.ask("try"), "yes");
    EXPECT_EQ(first.ask("try"), "no");
    EXPECT_EQ(second.ask("release"), "released");
    EXPECT_EQ(first.ask("try"), "yes");
    EXPECT_EQ(first.ask("release"), "released");
}

TEST_P(LockOfProcesses, GoesFromOneToTheOther) {
    for (int round = 0; round < 6; ++round) {
        LockHelper& holder = round % 2 == 0 ? first : second;
        LockHelper& waiter = round % 2 == 0 ? second : first;
        ASSERT_EQ(holder.ask("obtain"), "obtained");
        waiter.tell("obtain");
        EXPECT_TRUE(waiter.isBusy());
        ASSERT_EQ(holder.ask("release"), "released");
        ASSERT_EQ(waiter.answer(), "obtained");
        ASSERT_EQ(waiter.ask("release"), "released");
    }
}

TEST_P(LockOfProcesses, IsReEnteredByItsOwnerAlone) {
    EXPECT_EQ(first.ask("obtain"), "obtained");
    EXPECT_EQ(first.ask("try"), "yes");
    EXPECT_EQ(first.ask("obtain"), "obtained");
    for (int depth = 3; depth > 0; --depth) {
        EXPECT_EQ(second.ask("try"), "no") << depth;
        EXPECT_EQ(first.ask("release"), "released");
    }
    EXPECT_EQ(second.ask("try"), "yes");
    EXPECT_EQ(second.ask("release"), "released");
}

TEST_P(LockOfProcesses, IsNotReleasedByAStranger) {
    EXPECT_EQ(first.ask("obtain"), "obtained");
    EXPECT_EQ(second.ask("release"), "released");

    EXPECT_EQ(second.ask("try"), "no");
    EXPECT_EQ(first.ask("release"), "released");
    EXPECT_EQ(second.ask("try"), "yes");
    EXPECT_EQ(second.ask("release"), "released");
}

TEST_P(LockOfProcesses, IsLeftAloneByAStrangersEnd) {
    EXPECT_EQ(first.ask("obtain"), "obtained");
    EXPECT_EQ(second.ask("destroy"), "destroyed");
    LockHelper third{GetParam(), wideName};

    EXPECT_EQ(third.ask("try"), "no");
    EXPECT_EQ(first.ask("release"), "released");
    EXPECT_EQ(third.ask("try"), "yes");
    EXPECT_EQ(third.ask("release"), "released");
    EXPECT_EQ(third.end(), 0);
}

TEST_P(LockOfProcesses, GoesToWhoWaitsWhenItsHolderEndsInGoodOrder) {
    EXPECT_EQ(first.ask("obtain"), "obtained");
    second.tell("obtain");
    EXPECT_TRUE(second.isBusy());

    EXPECT_EQ(first.end(), 0);
    EXPECT_EQ(second.answer(), "obtained");
    EXPECT_EQ(second.ask("release"), "released");
}

TEST_P(LockOfProcesses, StaysWithThoseWhoAreLeft) {
    EXPECT_EQ(first.ask("destroy"), "destroyed");
    EXPECT_EQ(second.ask("obtain"), "obtained");
    LockHelper third{GetParam(), wideName};

    EXPECT_EQ(third.ask("try"), "no");
    EXPECT_EQ(second.ask("release"), "released");
    EXPECT_EQ(third.end(), 0);
}

TEST_P(LockOfProcesses, HasTheSameNameInAllOfThem) {
    const WideString unusual = wideName + WideString{0xD83D, 0x0141, '/', '%', 's', ' ', 0xFFFF};
    LockHelper third{GetParam(), unusual};
    LockHelper fourth{GetParam(), unusual};
    LockHelper other{GetParam(), wideName + WideString{0xD83D}};

    EXPECT_EQ(third.ask("obtain"), "obtained");
    EXPECT_EQ(fourth.ask("try"), "no");
    EXPECT_EQ(other.ask("try"), "yes");
    EXPECT_EQ(first.ask("try"), "yes");
    EXPECT_EQ(third.end(), 0);
    EXPECT_EQ(fourth.end(), 0);
    EXPECT_EQ(other.end(), 0);
}

// A process that was started meanwhile has inherited nothing that keeps the lock.
TEST_P(LockOfProcesses, GoesAlthoughItsUserHasStartedOthers) {
    const std::string brief = name + "brief";
    auto mutex = std::make_unique<MutexLock>(wide(brief).c_str());
    auto lock = std::make_unique<InterProcessLock>(wide(brief).c_str(), nullptr, 0);
    mutex->ObtainLock();
    LockHelper started{GetParam(), wideName};
    ASSERT_TRUE(started.isMade());
    mutex.reset();
    lock.reset();

    EXPECT_THAT(filesOf(brief), testing::IsEmpty());
    LockHelper user{"mutex", wide(brief)};
    EXPECT_EQ(user.ask("try"), "yes");
    EXPECT_EQ(user.end(), 0);
    EXPECT_EQ(started.end(), 0);
}

// ---- A mutex that is left and used again --------------------------------------------------------

using MutexLockOfProcesses = NamedLockTest;

TEST_F(MutexLockOfProcesses, IsKeptByAUserWhoLeftItHeldAndCameBack) {
    LockHelper other{"mutex", wideName};
    {
        MutexLock left{wideName.c_str()};
        left.ObtainLock();
    }
    MutexLock lock{wideName.c_str()};
    EXPECT_EQ(other.ask("try"), "no");
    EXPECT_EQ(other.end(), 0);

    LockHelper next{"mutex", wideName};
    EXPECT_EQ(next.ask("try"), "no");
    lock.ReleaseLock();
    EXPECT_EQ(next.ask("try"), "yes");
    EXPECT_FALSE(lock.TryLock());
    EXPECT_EQ(next.end(), 0);
}

// Without a user it goes, and the thread that held it holds nothing of that name.
TEST_F(MutexLockOfProcesses, IsAnotherForAUserWhoLeftItHeldAndCameBackTooLate) {
    LockHelper other{"mutex", wideName};
    {
        MutexLock left{wideName.c_str()};
        left.ObtainLock();
    }
    EXPECT_EQ(other.end(), 0);
    EXPECT_THAT(filesOf(name), testing::IsEmpty());

    MutexLock lock{wideName.c_str()};
    LockHelper next{"mutex", wideName};
    EXPECT_EQ(next.ask("try"), "yes");
    EXPECT_FALSE(lock.TryLock());
    EXPECT_EQ(next.end(), 0);
}

// The memory of the mutex has to outlive the object as long as the thread holds it.
TEST_F(MutexLockOfProcesses, IsAbandonedByAThreadThatHadDestroyedItsObject) {
    LockHelper other{"mutex", wideName};
    for (const bool doesAStrangerRelease : {false, true}) {
        inOtherThread([&] {
            MutexLock lock{wideName.c_str()};
            lock.ObtainLock();
            if (doesAStrangerRelease) inOtherThread([&] { lock.ReleaseLock(); });
        });
        EXPECT_EQ(other.ask("try"), "no");  // and yet the owner
        EXPECT_EQ(other.ask("try"), "yes");
        EXPECT_EQ(other.ask("release"), "released");
        EXPECT_EQ(other.ask("release"), "released");
        MutexLock lock{wideName.c_str()};
        EXPECT_TRUE(isFreeForOthers(lock));
    }
    EXPECT_EQ(other.end(), 0);
}

// ---- The block that they share ----------------------------------------------------------------

class InterProcessLockOfProcesses : public NamedLockTest {
protected:
    InterProcessLock lock{wideName.c_str(), nullptr, 0};
    LockHelper other{"interprocess", wideName};

    std::string blockSeenByOther() { return other.ask("block"); }
    std::string blockSeenHere() {
        std::ostringstream state;
        state << blockOf(lock);
        return state.str();
    }

    ~InterProcessLockOfProcesses() override { EXPECT_EQ(other.end(), 0); }
};

TEST_F(InterProcessLockOfProcesses, HaveOneBlock) {
    EXPECT_EQ(blockSeenByOther(), blockSeenHere());
    lock.ObtainLock();
    lock.ObtainLock();
    EXPECT_EQ(blockSeenByOther(), blockSeenHere());
    lock.ReleaseLock();
    lock.ReleaseLock();
    EXPECT_EQ(blockSeenByOther(), blockSeenHere());
}

TEST_F(InterProcessLockOfProcesses, AreToldWhichOfThemIsTheOwner) {
    EXPECT_EQ(other.ask("obtain"), "obtained");
    const BlockState held = blockOf(lock);

    EXPECT_EQ(held.ownerProcess, other.id());
    EXPECT_NE(held.ownerThread, kernelThreadId());
    EXPECT_NE(held.ownerThread, 0U);
    EXPECT_EQ(held.lockCount, 1);
    EXPECT_EQ(held.recursion, 1);
    EXPECT_EQ(other.ask("destroy"), "destroyed");
    EXPECT_EQ(blockOf(lock), BlockState{});
}

TEST_F(InterProcessLockOfProcesses, HaveOneSpinCount) {
    if (imageOf(lock).isSingleProcessor != 0) GTEST_SKIP() << "the machine has one processor";

    EXPECT_EQ(other.ask("setspin 4000000000"), "set");
    EXPECT_EQ(blockOf(lock).spinCount, 4'000'000'000U);
    lock.SetSpinCount(3);
    EXPECT_EQ(blockSeenByOther(), blockSeenHere());
    const LockHelper maker{"interprocess", wideName};  // with a spin count of 0
    EXPECT_EQ(blockOf(lock).spinCount, 0U);
}

TEST_F(InterProcessLockOfProcesses, CountWhoWaitsInEachOther) {
    lock.ObtainLock();
    other.tell("obtain");
    ASSERT_TRUE(becomesTrue([&] { return lockCountOf(lock) == 2; }));
    lock.ReleaseLock();

    EXPECT_EQ(other.answer(), "obtained");
    EXPECT_EQ(blockOf(lock).ownerProcess, other.id());
    const Contender waiter{lock};
    ASSERT_TRUE(becomesTrue([&] { return lockCountOf(lock) == 2; }));
    EXPECT_EQ(other.ask("release"), "released");
    EXPECT_TRUE(waiter.comesIn());
    EXPECT_EQ(blockOf(lock).ownerProcess, kernelProcessId());
}

// ---- Exclusion --------------------------------------------------------------------------------

constexpr int kProcesses = 4;

/// Four processes perform a command that counts; how far they come.
std::uint64_t countedByAll(const std::string& kind, const WideString& name,
                           const std::string& command, const std::string& path) {
    std::vector<std::unique_ptr<LockHelper>> helpers;
    for (int i = 0; i < kProcesses; ++i) {
        helpers.push_back(std::make_unique<LockHelper>(kind, name));
    }
    for (const auto& helper : helpers) helper->tell(command + ' ' + path);
    for (const auto& helper : helpers) EXPECT_EQ(helper->answer(), "counted");
    for (const auto& helper : helpers) EXPECT_EQ(helper->end(), 0);
    return CountFile{path}.at(0);
}

class LockOfCountingProcesses : public NamedLockTest,
                                public testing::WithParamInterface<const char*> {
protected:
    const NewCountFile file{name + "counts"};
};

INSTANTIATE_TEST_SUITE_P(Kinds, LockOfCountingProcesses, testing::Values("mutex", "interprocess"),
                         [](const auto& row) { return std::string{row.param}; });

TEST_P(LockOfCountingProcesses, LosesNoCount) {
    EXPECT_EQ(countedByAll(GetParam(), wideName, "count 1 300", file.path()), kProcesses * 300U);
}

TEST_P(LockOfCountingProcesses, LosesNoCountWhileItComesAndGoes) {
    EXPECT_EQ(countedByAll(GetParam(), wideName, "storm 1 200", file.path()), kProcesses * 200U);
}

}  // namespace

}  // namespace vexa::test
