#include "tests/locks/lock_fields.h"
#include "tests/locks/lock_threads.h"
#include "vexakit/locks.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using Ends = std::vector<const ThreadLock*>;

/// A slot that tells where it ends. It is as large as any, so that it fits among them.
class WatchedSlot : public ThreadLock {
public:
    explicit WatchedSlot(Ends& ends) { current = &ends; }
    WatchedSlot(const WatchedSlot&) = delete;
    WatchedSlot& operator=(const WatchedSlot&) = delete;
    ~WatchedSlot() override { current->push_back(this); }

private:
    inline static Ends* current = nullptr;
};
static_assert(sizeof(WatchedSlot) == sizeof(ThreadLock));

/// Puts watched slots where those of the set were.
void watchSlots(CThreadLock& locks, Ends& ends) {
    ThreadLock* const slots = slotsOf(locks);
    for (std::uint32_t i = 0; i < locks.GetLocksSize(); ++i) {
        std::destroy_at(slots + i);
        new (slots + i) WatchedSlot(ends);
    }
}

bool isTakenElsewhere(CThreadLock& locks, std::uint32_t lockId) {
    return inAnotherThread([&] {
        const bool isFree = locks.TryLock(lockId) == 1;
        if (isFree) locks.ReleaseLock(lockId);
        return !isFree;
    });
}

// ---- The end of a set ---------------------------------------------------------------------------

TEST(CThreadLockEnd, DestroysEachSlotOnceTheLastFirst) {
    Ends ends;
    Ends expected;
    {
        CThreadLock locks{3};
        ThreadLock* const slots = slotsOf(locks);
        watchSlots(locks, ends);
        expected = {slots + 2, slots + 1, slots};
    }

    EXPECT_EQ(ends, expected);
}

TEST(CThreadLockEnd, OfADerivedSetComesThroughItsBase) {
    struct HostSet : CThreadLock {
        using CThreadLock::CThreadLock;
    };
    Ends ends;
    const CThreadLock* const locks = [&] {
        auto* const made = new HostSet{2};
        watchSlots(*made, ends);
        return made;
    }();
    delete locks;

    EXPECT_EQ(ends.size(), 2U);
}

// Tried in a process of its own, which it would end.
TEST(CThreadLockEnd, OfASetWithoutSlotsDoesNothing) {
    const auto destroyWithoutSlots = [] {
        alignas(CThreadLock) std::byte place[sizeof(CThreadLock)];
        auto* const locks = new (place) CThreadLock{3};
        setFieldAt<ThreadLock*>(*locks, 8, nullptr);
        locks->~CThreadLock();
        std::_Exit(0);
    };

    EXPECT_EXIT(destroyWithoutSlots(), testing::ExitedWithCode(0), "");
}

// ---- Copies -------------------------------------------------------------------------------------

static_assert(std::is_copy_constructible_v<CThreadLock> && std::is_copy_assignable_v<CThreadLock>);

TEST(CThreadLockCopy, HasTheSlotsAndTheCountOfTheOther) {
    const CThreadLock locks{4};
    const CThreadLock copy{locks};  // NOLINT(performance-unnecessary-copy-initialization)

    EXPECT_EQ(copy.GetLocksSize(), 4U);
    EXPECT_EQ(slotsOf(copy), slotsOf(locks));
}

TEST(CThreadLockCopy, IsLockedWithTheOther) {
    CThreadLock locks{2};
    CThreadLock copy{locks};
    locks.ObtainLock(1);

    EXPECT_TRUE(isTakenElsewhere(copy, 1));
    EXPECT_FALSE(isTakenElsewhere(copy, 0));
    copy.ReleaseLock(1);
    EXPECT_FALSE(isTakenElsewhere(locks, 1));
}

TEST(CThreadLockCopy, LetsTheOwnerInAgain) {
    CThreadLock locks{1};
    CThreadLock copy{locks};
    locks.ObtainLock(0);
    EXPECT_EQ(copy.TryLock(0), 1);

    locks.ReleaseLock(0);
    EXPECT_TRUE(isTakenElsewhere(locks, 0));
    locks.ReleaseLock(0);
    EXPECT_FALSE(isTakenElsewhere(copy, 0));
}

TEST(CThreadLockCopy, KeepsTheSlotsUntilTheLastIsGone) {
    Ends ends;
    std::optional<CThreadLock> locks{3};
    watchSlots(*locks, ends);
    std::optional<CThreadLock> copy{*locks};
    std::optional<CThreadLock> copyOfTheCopy{*copy};

    locks.reset();
    EXPECT_TRUE(ends.empty());
    copyOfTheCopy.reset();
    EXPECT_TRUE(ends.empty());
    copy->ObtainLock(2);
    EXPECT_TRUE(isTakenElsewhere(*copy, 2));
    copy->ReleaseLock(2);
    copy.reset();
    EXPECT_EQ(ends.size(), 3U);
}

TEST(CThreadLockCopy, MayBeDroppedByManyThreadsAtOnce) {
    Ends ends;
    constexpr int kRounds = 200;
    std::optional<CThreadLock> locks{2};
    watchSlots(*locks, ends);

    inAllThreads([&](int) {
        for (int round = 0; round < kRounds; ++round) {
            CThreadLock copy{*locks};
            copy.ObtainLock(1);
            copy.ReleaseLock(1);
        }
    });

    EXPECT_TRUE(ends.empty());
    locks.reset();
    EXPECT_EQ(ends.size(), 2U);
}

// ---- Assignments --------------------------------------------------------------------------------

TEST(CThreadLockAssignment, TakesTheSlotsAndTheCountOfTheOther) {
    CThreadLock locks{4};
    CThreadLock assigned{1};
    const CThreadLock* const result = &(assigned = locks);

    EXPECT_EQ(result, &assigned);
    EXPECT_EQ(assigned.GetLocksSize(), 4U);
    EXPECT_EQ(slotsOf(assigned), slotsOf(locks));
    locks.ObtainLock(3);
    EXPECT_TRUE(isTakenElsewhere(assigned, 3));
    locks.ReleaseLock(3);
}

TEST(CThreadLockAssignment, EndsTheSlotsOfBefore) {
    Ends ends;
    CThreadLock assigned{2};
    watchSlots(assigned, ends);
    const CThreadLock locks{1};
    assigned = locks;

    EXPECT_EQ(ends.size(), 2U);
}

TEST(CThreadLockAssignment, LeavesSlotsThatOthersHave) {
    Ends ends;
    CThreadLock assigned{2};
    watchSlots(assigned, ends);
    std::optional<CThreadLock> copy{assigned};
    assigned = CThreadLock{1};

    EXPECT_TRUE(ends.empty());
    EXPECT_EQ(copy->GetLocksSize(), 2U);
    copy.reset();
    EXPECT_EQ(ends.size(), 2U);
}

TEST(CThreadLockAssignment, ToItselfOrToACopyChangesNothing) {
    Ends ends;
    std::optional<CThreadLock> locks{2};
    watchSlots(*locks, ends);
    const CThreadLock& itself = *locks;
    *locks = itself;
    EXPECT_TRUE(ends.empty());
    {
        const CThreadLock copy{*locks};
        *locks = copy;
    }
    EXPECT_TRUE(ends.empty());
    EXPECT_EQ(locks->TryLock(1), 1);
    locks->ReleaseLock(1);

    locks.reset();
    EXPECT_EQ(ends.size(), 2U);
}

TEST(CThreadLockAssignment, KeepsTheSlotsWhereItsSourceGoes) {
    Ends ends;
    CThreadLock assigned{1};
    {
        CThreadLock locks{3};
        watchSlots(locks, ends);
        assigned = locks;
    }

    EXPECT_TRUE(ends.empty());
    EXPECT_EQ(assigned.TryLock(2), 1);
    assigned.ReleaseLock(2);
}

}  // namespace

}  // namespace vexa::test
