#include "platform/posix/handle_table.h"

#include "platform/kernel_objects.h"
#include "tests/platform/kernel_objects_support.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::closeHandle;
using platform::createEvent;
using platform::createMutex;
using platform::giveSlotBack;
using platform::Handle;
using platform::keep;
using platform::kindOf;
using platform::letGo;
using platform::ObjectKind;
using platform::publish;
using platform::releaseMutex;
using platform::Reset;
using platform::retire;
using platform::Slot;
using platform::slotOf;
using platform::takeSlot;
using platform::waitFor;
using platform::WaitResult;

constexpr std::size_t kMany = 20'000;

Handle newEvent() {
    return createEvent(Reset::Manual, true, nullptr, nullptr);
}

TEST(HandleTable, FindsAnObjectThroughItsHandleAlone) {
    Slot* const slot = takeSlot();
    ASSERT_NE(slot, nullptr);
    const Handle handle = publish(*slot, ObjectKind::Event);

    EXPECT_EQ(slotOf(handle), slot);
    EXPECT_EQ(kindOf(handle), ObjectKind::Event);
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    for (unsigned bit = 0; bit < 64; ++bit) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number
        auto* const other = reinterpret_cast<Handle>(value ^ (std::uintptr_t{1} << bit));
        EXPECT_NE(slotOf(other), slot) << "bit " << bit;
    }
    EXPECT_EQ(retire(handle), slot);
    giveSlotBack(*slot);
}

TEST(HandleTable, EndsAHandleOnce) {
    Slot* const slot = takeSlot();
    const Handle handle = publish(*slot, ObjectKind::Mutex);

    EXPECT_EQ(retire(handle), slot);
    EXPECT_EQ(retire(handle), nullptr);
    EXPECT_EQ(slotOf(handle), nullptr);
    giveSlotBack(*slot);
}

TEST(HandleTable, GivesASlotAnotherHandleEachTime) {
    Slot* const slot = takeSlot();
    std::set<Handle> handles;
    constexpr std::size_t kUses = 1'000;
    for (std::size_t i = 0; i < kUses; ++i) {
        const Handle handle = publish(*slot, ObjectKind::Event);
        for (const Handle old : handles) EXPECT_EQ(slotOf(old), nullptr);
        handles.insert(handle);
        retire(handle);
    }
    EXPECT_EQ(handles.size(), kUses);
    EXPECT_EQ(handles.count(nullptr), 0U);
    giveSlotBack(*slot);
}

// ---- Use and end -------------------------------------------------------------------------------

TEST(HandleTable, KeepsANamedObjectForThoseAtWorkWithIt) {
    Slot* const slot = takeSlot();
    const Handle handle = publish(*slot, ObjectKind::NamedEvent);

    EXPECT_TRUE(keep(*slot));
    EXPECT_TRUE(keep(*slot));
    EXPECT_EQ(retire(handle), slot);
    EXPECT_FALSE(letGo(*slot));  // the handle's own
    EXPECT_FALSE(letGo(*slot));
    EXPECT_TRUE(letGo(*slot));
    EXPECT_FALSE(keep(*slot));
    giveSlotBack(*slot);
}

// Who looked a handle up and was held up long enough finds the slot with its next object but one. It
// may keep that for a moment, and letting it go must not end it.
TEST(HandleTable, LateUsersDoNotEndTheNextObject) {
    const Handle unnamed = newEvent();
    Slot* const slot = slotOf(unnamed);
    ASSERT_NE(slot, nullptr);
    const bool isKept = keep(*slot);
    EXPECT_TRUE(closeHandle(unnamed));

    const OwnHandle named{createEvent(Reset::Manual, true, newObjectName().c_str(), nullptr)};
    if (slotOf(named.get()) != slot) GTEST_SKIP() << "the slot is used by nobody yet";
    EXPECT_FALSE(isKept && letGo(*slot));
    EXPECT_EQ(waitFor(named.get(), 0), WaitResult::Signalled);
    EXPECT_TRUE(keep(*slot));
    EXPECT_FALSE(letGo(*slot));
}

// Who still waits for a closed event is counted in its slot, and out of it when the next event has it.
TEST(HandleTable, LateWaitersDoNotHideThoseOfTheNextEvent) {
    const Handle closed = createEvent(Reset::Automatic, false, nullptr, nullptr);
    const Slot* const slot = slotOf(closed);
    WaitResult late = WaitResult::Failed;
    std::thread lateWaiter{[&] { late = waitFor(closed, 200); }};
    EXPECT_TRUE(comesTrue([&] { return slot->event.waiters == 1; }));
    EXPECT_TRUE(closeHandle(closed));

    const OwnHandle next{createEvent(Reset::Automatic, false, nullptr, nullptr)};
    WaitResult result = WaitResult::Failed;
    std::uint32_t time = 0;
    std::thread waiter{
        [&] { time = millisecondsOf([&] { result = waitFor(next.get(), 3'000); }); }};
    lateWaiter.join();
    EXPECT_EQ(late, WaitResult::TimedOut);
    EXPECT_TRUE(platform::setEvent(next.get()));
    waiter.join();

    EXPECT_EQ(result, WaitResult::Signalled);
    EXPECT_LT(time, 2'000U);  // woken, and not only let in when its time was up
}

// ---- Many --------------------------------------------------------------------------------------

TEST(HandleTable, HoldsManyAtOnceAndUsesTheirSlotsAgain) {
    std::uint32_t highest = 0;
    std::vector<Handle> stale;
    for (int round = 0; round < 3; ++round) {
        std::vector<Handle> handles;
        for (std::size_t i = 0; i < kMany; ++i) {
            handles.push_back(i % 2 == 0 ? newEvent() : createMutex(nullptr, nullptr));
        }
        std::vector<Handle> different = handles;
        std::sort(different.begin(), different.end());
        ASSERT_EQ(std::unique(different.begin(), different.end()), different.end());
        ASSERT_NE(different.front(), nullptr);

        for (const Handle handle : handles) {
            ASSERT_EQ(waitFor(handle, 0), WaitResult::Signalled);
            releaseMutex(handle);
            if (round == 0) highest = std::max(highest, slotOf(handle)->index);
            ASSERT_LE(slotOf(handle)->index, highest);
        }
        for (const Handle handle : stale) {
            ASSERT_EQ(waitFor(handle, 0), WaitResult::Failed);
            ASSERT_FALSE(closeHandle(handle));
        }
        for (const Handle handle : handles) ASSERT_TRUE(closeHandle(handle));
        stale = handles;
    }
}

// The kernel looks through 2,048 mutexes of a thread that ends.
TEST(HandleTable, MutexesOfOneThreadAreAllAbandoned) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "this checker follows no more than 64 mutexes of a thread";
#endif
    constexpr std::size_t kHeld = 2'000;
    std::vector<OwnHandle> mutexes;
    for (std::size_t i = 0; i < kHeld; ++i) mutexes.emplace_back(createMutex(nullptr, nullptr));
    inAnotherThread([&] {
        for (const OwnHandle& mutex : mutexes) waitFor(mutex.get(), 0);
        return 0;
    });

    for (const OwnHandle& mutex : mutexes) {
        ASSERT_EQ(waitFor(mutex.get(), 0), WaitResult::Abandoned);
        ASSERT_TRUE(releaseMutex(mutex.get()));
    }
}

// A mutex that is closed while its owner lives stands where the kernel will look for it.
TEST(HandleTable, SlotsOfHeldMutexesRestUntilTheirOwnerEnds) {
    constexpr std::size_t kHeld = 50;
    std::vector<std::uint32_t> held;
    inAnotherThread([&] {
        for (std::size_t i = 0; i < kHeld; ++i) {
            const OwnHandle mutex{createMutex(nullptr, nullptr)};
            EXPECT_EQ(waitFor(mutex.get(), 0), WaitResult::Signalled);
            held.push_back(slotOf(mutex.get())->index);
        }
        for (std::size_t i = 0; i < kHeld; ++i) {
            const OwnHandle other{createMutex(nullptr, nullptr)};
            EXPECT_EQ(std::count(held.begin(), held.end(), slotOf(other.get())->index), 0);
        }
        return 0;
    });

    std::sort(held.begin(), held.end());
    EXPECT_EQ(std::unique(held.begin(), held.end()), held.end());
    std::vector<OwnHandle> next;
    std::size_t again = 0;
    for (std::size_t i = 0; i < kHeld; ++i) {
        next.emplace_back(createMutex(nullptr, nullptr));
        again += std::binary_search(held.begin(), held.end(), slotOf(next.back().get())->index);
        EXPECT_EQ(waitFor(next.back().get(), 0), WaitResult::Signalled);
        EXPECT_TRUE(releaseMutex(next.back().get()));
    }
    EXPECT_EQ(again, kHeld);
}

}  // namespace

}  // namespace vexa::test
