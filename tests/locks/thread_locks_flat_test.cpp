#include "tests/locks/lock_threads.h"
#include "tests/support/allocations.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

#include <cstdint>
#include <limits>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using testing::ThrowsMessage;

constexpr std::uint32_t kNoId = std::numeric_limits<std::uint32_t>::max();

/// A set for the length of a test.
struct LockSet {
    CThreadLock* get = nullptr;

    explicit LockSet(std::uint32_t count) { threadLock_create(&get, count); }
    LockSet(const LockSet&) = delete;
    LockSet& operator=(const LockSet&) = delete;
    ~LockSet() { threadLock_destroy(&get); }
};

bool isFree(CThreadLock& locks, std::uint32_t lockId) {
    return inAnotherThread([&] {
        const bool isTaken = locks.TryLock(lockId) == 1;
        if (isTaken) locks.ReleaseLock(lockId);
        return isTaken;
    });
}

// ---- Create -------------------------------------------------------------------------------------

TEST(ThreadLockCreate, MakesASetOfTheCount) {
    for (const std::uint32_t count : {0U, 1U, 7U, 1'000U}) {
        CThreadLock* locks = nullptr;
        EXPECT_EQ(threadLock_create(&locks, count), VEXA_SUCCESS);
        ASSERT_NE(locks, nullptr);
        EXPECT_EQ(locks->GetLocksSize(), count);
        threadLock_destroy(&locks);
    }
}

TEST(ThreadLockCreate, MakesFreeLocks) {
    const LockSet locks{3};

    for (const std::uint32_t lockId : {0U, 1U, 2U}) EXPECT_TRUE(isFree(*locks.get, lockId));
}

TEST(ThreadLockCreate, OverwritesWhateverTheCallerHad) {
    const LockSet before{1};
    CThreadLock* locks = before.get;

    EXPECT_EQ(threadLock_create(&locks, 2), VEXA_SUCCESS);
    EXPECT_NE(locks, before.get);
    EXPECT_EQ(before.get->GetLocksSize(), 1U);
    threadLock_destroy(&locks);
}

TEST(ThreadLockCreate, RefusesANullPointer) {
    const NewFailure failure{1};

    EXPECT_EQ(threadLock_create(nullptr, 3), VEXA_FAILURE);
    EXPECT_FALSE(failure.happened());
}

class ThreadLockCreateWithoutMemory : public testing::TestWithParam<int> {};

TEST_P(ThreadLockCreateWithoutMemory, LeavesTheCallersPointer) {
    const LockSet before{1};
    CThreadLock* locks = before.get;
    std::uint32_t status = VEXA_SUCCESS;
    bool isRefused = false;
    {
        const NewFailure failure{GetParam()};
        status = threadLock_create(&locks, 8);
        isRefused = failure.happened();
    }

    EXPECT_TRUE(isRefused);
    EXPECT_EQ(status, VEXA_FAILURE);
    EXPECT_EQ(locks, before.get);
}

// The object first, then its locks.
INSTANTIATE_TEST_SUITE_P(Table, ThreadLockCreateWithoutMemory, testing::Values(1, 2),
                         testing::PrintToStringParamName());

TEST(ThreadLockCreate, FailsWhereTheLargestSetHasNoMemory) {
    CThreadLock* locks = nullptr;
    const NewFailure failure{2};

    EXPECT_EQ(threadLock_create(&locks, kNoId), VEXA_FAILURE);
    EXPECT_TRUE(failure.happened());
    EXPECT_EQ(locks, nullptr);
}

TEST(ThreadLockCreate, AsksForTwoBlocks) {
    CThreadLock* locks = nullptr;
    bool isThirdRefused = true;
    {
        const NewFailure failure{3};
        EXPECT_EQ(threadLock_create(&locks, 8), VEXA_SUCCESS);
        isThirdRefused = failure.happened();
    }

    EXPECT_FALSE(isThirdRefused);
    threadLock_destroy(&locks);
}

// ---- Destroy ------------------------------------------------------------------------------------

TEST(ThreadLockDestroy, MakesTheCallersPointerNull) {
    CThreadLock* locks = nullptr;
    threadLock_create(&locks, 2);

    EXPECT_EQ(threadLock_destroy(&locks), VEXA_SUCCESS);
    EXPECT_EQ(locks, nullptr);
}

TEST(ThreadLockDestroy, RefusesANullPointer) {
    EXPECT_EQ(threadLock_destroy(nullptr), VEXA_FAILURE);
}

TEST(ThreadLockDestroy, RefusesAPointerToNull) {
    CThreadLock* locks = nullptr;

    EXPECT_EQ(threadLock_destroy(&locks), VEXA_FAILURE);
    EXPECT_EQ(locks, nullptr);
}

TEST(ThreadLockDestroy, RefusesTheSecondTime) {
    CThreadLock* locks = nullptr;
    threadLock_create(&locks, 2);
    threadLock_destroy(&locks);

    EXPECT_EQ(threadLock_destroy(&locks), VEXA_FAILURE);
    EXPECT_EQ(locks, nullptr);
}

/// A set of a host, which tells when it goes.
class HostSet : public CThreadLock {
public:
    explicit HostSet(int& ends) : CThreadLock(1), ends_(ends) {}
    HostSet(const HostSet&) = delete;
    HostSet& operator=(const HostSet&) = delete;
    ~HostSet() override { ++ends_; }

private:
    int& ends_;
};

TEST(ThreadLockDestroy, DestroysWhatIsDerivedFromTheSet) {
    int ends = 0;
    CThreadLock* locks = new HostSet{ends};

    EXPECT_EQ(threadLock_destroy(&locks), VEXA_SUCCESS);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(locks, nullptr);
}

// ---- Lock and unlock ----------------------------------------------------------------------------

TEST(ThreadLockLock, RefusesANullPointer) {
    EXPECT_EQ(threadLock_lock(nullptr, 0), VEXA_FAILURE);
    EXPECT_EQ(threadLock_lock(nullptr, kNoId), VEXA_FAILURE);
}

TEST(ThreadLockUnlock, RefusesANullPointer) {
    EXPECT_EQ(threadLock_unlock(nullptr, 0), VEXA_FAILURE);
    EXPECT_EQ(threadLock_unlock(nullptr, kNoId), VEXA_FAILURE);
}

TEST(ThreadLockLock, OwnsTheLockOfTheIdAlone) {
    const LockSet locks{3};
    EXPECT_EQ(threadLock_lock(locks.get, 1), VEXA_SUCCESS);

    EXPECT_TRUE(isFree(*locks.get, 0));
    EXPECT_FALSE(isFree(*locks.get, 1));
    EXPECT_TRUE(isFree(*locks.get, 2));
    EXPECT_EQ(threadLock_unlock(locks.get, 1), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(*locks.get, 1));
}

TEST(ThreadLockLock, IsUndoneAsOftenAsDone) {
    const LockSet locks{1};
    EXPECT_EQ(threadLock_lock(locks.get, 0), VEXA_SUCCESS);
    EXPECT_EQ(threadLock_lock(locks.get, 0), VEXA_SUCCESS);

    EXPECT_EQ(threadLock_unlock(locks.get, 0), VEXA_SUCCESS);
    EXPECT_FALSE(isFree(*locks.get, 0));
    EXPECT_EQ(threadLock_unlock(locks.get, 0), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(*locks.get, 0));
}

TEST(ThreadLockLock, WaitsForTheOwner) {
    const LockSet locks{2};
    threadLock_lock(locks.get, 1);
    const Worker other{[&] {
        threadLock_lock(locks.get, 1);
        threadLock_unlock(locks.get, 1);
    }};

    EXPECT_TRUE(other.waits());
    threadLock_unlock(locks.get, 1);
    EXPECT_TRUE(other.isDoneInTime());
}

TEST(ThreadLockLock, IsTheLockOfTheMembers) {
    const LockSet locks{1};
    threadLock_lock(locks.get, 0);
    locks.get->ObtainLock(0);

    threadLock_unlock(locks.get, 0);
    EXPECT_FALSE(isFree(*locks.get, 0));
    locks.get->ReleaseLock(0);
    EXPECT_TRUE(isFree(*locks.get, 0));
}

struct BadId {
    const char* name;
    std::uint32_t count;
    std::uint32_t lockId;
};

constexpr BadId kBadIds[] = {
    {"TheFirstOfNone", 0, 0}, {"TheLargestOfNone", 0, kNoId}, {"TheCount", 4, 4},
    {"TheLargest", 4, kNoId}, {"TheSignBit", 4, 0x80000000},
};

class ThreadLockBadId : public testing::TestWithParam<BadId> {};

TEST_P(ThreadLockBadId, IsThrownThroughTheFlatFunctions) {
    const LockSet locks{GetParam().count};
    const std::uint32_t lockId = GetParam().lockId;

    EXPECT_THAT([&] { threadLock_lock(locks.get, lockId); },
                ThrowsMessage<std::out_of_range>("lockId"));
    EXPECT_THAT([&] { threadLock_unlock(locks.get, lockId); },
                ThrowsMessage<std::out_of_range>("lockId"));
}

INSTANTIATE_TEST_SUITE_P(Table, ThreadLockBadId, testing::ValuesIn(kBadIds),
                         [](const auto& row) { return row.param.name; });

// A declaration that promised not to throw would end the program.
static_assert(!noexcept(threadLock_lock(nullptr, 0)) && !noexcept(threadLock_unlock(nullptr, 0)));
static_assert(!noexcept(threadLock_create(nullptr, 0)) && !noexcept(threadLock_destroy(nullptr)));

TEST(ThreadLockUnlock, TakesTheLastIdOfTheSet) {
    const LockSet locks{4};

    EXPECT_EQ(threadLock_lock(locks.get, 3), VEXA_SUCCESS);
    EXPECT_FALSE(isFree(*locks.get, 3));
    EXPECT_EQ(threadLock_unlock(locks.get, 3), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(*locks.get, 3));
}

}  // namespace

}  // namespace vexa::test
