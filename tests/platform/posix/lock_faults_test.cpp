#include "tests/platform/posix/system_call_faults.h"

#ifdef VEXA_CAN_FAIL_CALLS

#include "platform/kernel_objects.h"
#include "tests/platform/kernel_objects_support.h"
#include "tests/platform/posix/possessions.h"
#include "tests/platform/posix/taken_slots.h"
#include "tests/support/lock_image.h"
#include "tests/support/named_locks.h"
#include "vexakit/locks.h"

#include <cerrno>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

// Each call to the kernel that locks need for their objects fails once, with every error.

namespace vexa::test {

namespace {

using namespace vexa::platform;

constexpr std::initializer_list<int> kErrors = {ENOSPC, ENOMEM, EACCES, EMFILE, EIO};

template <class Lock>
bool isHadByOneAtATime(Lock& lock) {
    const bool isTaken = lock.TryLock();
    const bool keepsOthersOut = !isFreeForOthers(lock);
    lock.ReleaseLock();
    return isTaken && keepsOthersOut && isFreeForOthers(lock);
}

// A lock without its objects is never had, and nobody waits for it.
template <class Lock>
bool doesNothing(Lock& lock) {
    lock.ObtainLock();
    lock.ReleaseLock();
    return !lock.TryLock();
}

template <class Lock>
class NamedLockFaults : public NamedLockTest {
protected:
    void SetUp() override {
        if (!callsCanFail()) GTEST_SKIP() << "the system traps no calls";
    }

    std::unique_ptr<Lock> make() { return makeLock<Lock>(wideName); }

    /// @return whether the fault happened
    bool makeWith(Fault fault, std::unique_ptr<Lock>& lock) {
        return runWithFaults({fault}, [&] { lock = make(); });
    }
    static bool destroyWith(Fault fault, std::unique_ptr<Lock> lock) {
        return runWithFaults({fault}, [&] { lock.reset(); });
    }

    void expectThatTheNextHasIt() {
        std::unique_ptr<Lock> next = make();
        EXPECT_TRUE(isHadByOneAtATime(*next));
        next.reset();
        EXPECT_THAT(filesOf(name), testing::IsEmpty());
    }
};
TYPED_TEST_SUITE(NamedLockFaults, NamedLocks, NamedLocksNames);

TYPED_TEST(NamedLockFaults, LeaveTheFirstUserALockOrNone) {
    const Possessions before = possessions();

    const int points = withEachFault(kErrors, [&](Fault fault) {
        std::unique_ptr<TypeParam> lock;
        const bool happened = this->makeWith(fault, lock);
        EXPECT_TRUE(isMade(*lock) ? isHadByOneAtATime(*lock) : happened && doesNothing(*lock));
        lock.reset();
        EXPECT_THAT(filesOf(this->name), testing::IsEmpty());
        EXPECT_EQ(possessions(), before);
        this->expectThatTheNextHasIt();
        return happened;
    });
    EXPECT_GE(points, 45);
}

TYPED_TEST(NamedLockFaults, LeaveALaterUserTheSameLockOrNone) {
    const std::unique_ptr<TypeParam> first = this->make();
    const Possessions before = possessions();

    const int points = withEachFault(kErrors, [&](Fault fault) {
        EXPECT_TRUE(first->TryLock());
        std::unique_ptr<TypeParam> second;
        const bool happened = this->makeWith(fault, second);
        EXPECT_FALSE(isFreeForOthers(*second));
        EXPECT_TRUE(isMade(*second) || (happened && doesNothing(*second)));
        first->ReleaseLock();
        EXPECT_EQ(isFreeForOthers(*second), isMade(*second));
        second.reset();
        EXPECT_TRUE(isHadByOneAtATime(*first));
        EXPECT_EQ(possessions(), before);
        return happened;
    });
    EXPECT_GE(points, 45);
}

// What cannot be removed is left to who comes next.
TYPED_TEST(NamedLockFaults, DoNotKeepTheLastUserFromGoing) {
    const Possessions before = possessions();

    const int points = withEachFault(kErrors, [&](Fault fault) {
        const bool happened = this->destroyWith(fault, this->make());
        EXPECT_TRUE(happened || filesOf(this->name).empty());
        EXPECT_EQ(possessions(), before);
        this->expectThatTheNextHasIt();
        return happened;
    });
    EXPECT_GE(points, 25);
}

TYPED_TEST(NamedLockFaults, OfOneWhoGoesAreNothingToOthers) {
    const std::unique_ptr<TypeParam> first = this->make();
    const Possessions before = possessions();

    withEachFault(kErrors, [&](Fault fault) {
        EXPECT_TRUE(first->TryLock());
        const bool happened = this->destroyWith(fault, this->make());
        EXPECT_FALSE(isFreeForOthers(*first));
        first->ReleaseLock();
        EXPECT_TRUE(isHadByOneAtATime(*first));
        EXPECT_EQ(possessions(), before);
        return happened;
    });
}

TYPED_TEST(NamedLockFaults, AreNoneWhereACallIsInterrupted) {
    for (const SystemCall call : {SystemCall::Open, SystemCall::LockByte, SystemCall::Reserve}) {
        const int points = withEachFault(
            {EINTR},
            [&](Fault fault) {
                std::unique_ptr<TypeParam> lock;
                const bool happened = this->makeWith(fault, lock);
                EXPECT_TRUE(isHadByOneAtATime(*lock));
                return happened;
            },
            call);
        EXPECT_GE(points, 1);
    }
}

TYPED_TEST(NamedLockFaults, AreNoneToALockThatIsThere) {
    const std::unique_ptr<TypeParam> lock = this->make();
    bool isHad = false;

    EXPECT_FALSE(runWithFaults({{SystemCall::Any, 1, EIO, true}}, [&] {
        isHad = lock->TryLock();
        lock->ObtainLock();
        lock->ReleaseLock();
        lock->ReleaseLock();
    }));

    EXPECT_TRUE(isHad);
    EXPECT_TRUE(isFreeForOthers(*lock));
}

// ---- An event that others keep from before the memory ------------------------------------------

using InterProcessLockFaults = NamedLockFaults<InterProcessLock>;

// A signal that a killed user left would let somebody pass who has to wait.
TEST_F(InterProcessLockFaults, LeaveNoLockWithASignalOfBefore) {
    const OwnHandle kept{
        createEvent(Reset::Automatic, false, wide("IPLock_Event_" + name).c_str(), nullptr)};

    const int points = withEachFault(kErrors, [&](Fault fault) {
        setEvent(kept.get());
        std::unique_ptr<InterProcessLock> lock;
        const bool happened = makeWith(fault, lock);
        EXPECT_TRUE(isMade(*lock) || happened);
        EXPECT_TRUE(!isMade(*lock) || waitFor(kept.get(), 0) == WaitResult::TimedOut);
        return happened;
    });
    EXPECT_GE(points, 45);
}

// ---- The lock of readers and writers -----------------------------------------------------------

constexpr std::size_t kObjectsOfALock = 3;

class RWLockWithoutObjects : public WithSystemCallFaults,
                             public testing::WithParamInterface<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(FreeSlots, RWLockWithoutObjects,
                         testing::Range(std::size_t{0}, kObjectsOfALock),
                         testing::PrintToStringParamName());

TEST_P(RWLockWithoutObjects, IsNotInitialisedAndLeavesNothingOpen) {
    TakenSlots slots;
    slots.giveBack(GetParam());
    RWLock lock;

    withoutMoreSlots([&] { EXPECT_EQ(lock.Initialize(), VEXA_FAILURE); });

    EXPECT_EQ(slots.takeAll(), GetParam());
    slots.giveBack(kObjectsOfALock);
    withoutMoreSlots([&] { EXPECT_EQ(lock.Initialize(), VEXA_SUCCESS); });
    lock.Claim(0);
    EXPECT_EQ(lock.Release(0), VEXA_SUCCESS);
    lock.Cleanup();
}

TEST_P(RWLockWithoutObjects, IsNotCreated) {
    TakenSlots slots;
    slots.giveBack(GetParam());
    RWLock other;
    RWLock* lock = &other;

    withoutMoreSlots([&] { EXPECT_EQ(rwlock_create(&lock), VEXA_FAILURE); });

    EXPECT_EQ(lock, &other);
    EXPECT_EQ(slots.takeAll(), GetParam());
}

using LocksWithoutObjects = WithSystemCallFaults;

TEST_F(LocksWithoutObjects, DoNothing) {
    const std::string name = uniqueName();
    const WideString wideName = wide(name);
    const TakenSlots slots;
    const Possessions before = possessions();

    withoutMoreSlots([&] {
        MutexLock unnamed;
        EXPECT_TRUE(doesNothing(unnamed));
        MutexLock mutexLock(wideName.c_str());
        EXPECT_TRUE(doesNothing(mutexLock));
        InterProcessLock interProcessLock(wideName.c_str(), nullptr, 0);
        EXPECT_TRUE(doesNothing(interProcessLock));
    });

    EXPECT_THAT(filesOf(name), testing::IsEmpty());
    EXPECT_EQ(possessions(), before);
}

// The event has the last slot, and gives it back where the memory gets none.
TEST_F(LocksWithoutObjects, GiveBackTheObjectsThatTheyGot) {
    const std::string name = uniqueName();
    TakenSlots slots;
    slots.giveBack(1);

    withoutMoreSlots([&] {
        InterProcessLock lock(wide(name).c_str(), nullptr, 0);
        EXPECT_TRUE(doesNothing(lock));
    });

    EXPECT_EQ(slots.takeAll(), 1U);
    EXPECT_THAT(filesOf(name), testing::IsEmpty());
}

}  // namespace

}  // namespace vexa::test

#endif
