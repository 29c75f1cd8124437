#include "locks/thread_lock.h"
#include "platform/critical_section.h"
#include "platform/kernel_objects.h"
#include "tests/locks/lock_fields.h"
#include "tests/locks/lock_threads.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

// A host compiled against other headers of these classes finds its fields and functions all the same.

static_assert(sizeof(CThreadLock) == 24 && alignof(CThreadLock) == 8);
static_assert(sizeof(ThreadLockGuard) == 24 && alignof(ThreadLockGuard) == 8);
static_assert(sizeof(RWLock) == 40 && alignof(RWLock) == 8);
static_assert(sizeof(ReferenceCount) == 16 && alignof(ReferenceCount) == 8);
static_assert(sizeof(IReferenceCount) == 8);
#if defined(__aarch64__)
static_assert(sizeof(ThreadLock) == 56);
#else
static_assert(sizeof(ThreadLock) == 48);
#endif

// Single bases alone: the table comes first and is the only one.
static_assert(std::is_polymorphic_v<CThreadLock> && std::has_virtual_destructor_v<CThreadLock>);
static_assert(std::is_polymorphic_v<RWLock> && std::has_virtual_destructor_v<RWLock>);
static_assert(std::has_virtual_destructor_v<ReferenceCount>);

// ---- Tables -------------------------------------------------------------------------------------

// Both ABIs pass the object as the first argument, and have two slots for a virtual destructor: one
// that destroys and one that deletes as well.
constexpr std::size_t kSlotsOfDestructor = 2;

using Entry = void (*)();

Entry entryOf(const void* object, std::size_t slot) {
    const Entry* table = nullptr;
    std::memcpy(&table, object, sizeof table);
    return table[slot];
}

template <class Result, class... Arguments>
Result callSlot(void* object, std::size_t slot, Arguments... arguments) {
    const auto function = reinterpret_cast<Result (*)(void*, Arguments...)>(entryOf(object, slot));
    return function(object, arguments...);
}

/// An object of a class derived from one with a virtual destructor, which notes what happens to it.
template <class Base>
class Noting : public Base {
public:
    using Base::Base;
    Noting(const Noting&) = delete;
    Noting& operator=(const Noting&) = delete;
    ~Noting() override { notes += "destroyed;"; }

    static void* operator new(std::size_t bytes) { return ::operator new(bytes); }
    static void* operator new(std::size_t, void* place) { return place; }
    static void operator delete(void* block) {
        notes += "deleted;";
        ::operator delete(block);
    }

    inline static std::string notes;
};

// From the first slot of the destructor on.
template <class Base, class... Arguments>
void expectDestructorAt(std::size_t slot, Arguments... arguments) {
    using Object = Noting<Base>;
    Object::notes.clear();
    alignas(Object) std::byte place[sizeof(Object)];
    callSlot<void>(new (place) Object(arguments...), slot);
    EXPECT_EQ(Object::notes, "destroyed;");

    Object::notes.clear();
    callSlot<void>(new Object(arguments...), slot + 1);
    EXPECT_EQ(Object::notes, "destroyed;deleted;");
}

// ---- Thread locks -------------------------------------------------------------------------------

TEST(ThreadLockLayout, HasItsDestructorAlone) {
    expectDestructorAt<ThreadLock>(0);
}

// Functors of hosts reach the section directly.
TEST(ThreadLockLayout, HasTheCriticalSectionBehindItsTable) {
    ThreadLock lock;
    auto* const section =
        reinterpret_cast<platform::CriticalSection*>(reinterpret_cast<std::byte*>(&lock) + 8);
    const auto isFree = [&] {
        const bool isEntered = section->tryEnter();
        if (isEntered) section->leave();
        return isEntered;
    };

    EXPECT_TRUE(inAnotherThread(isFree));
    lock.Enter();
    EXPECT_FALSE(inAnotherThread(isFree));
    section->leave();
    EXPECT_TRUE(inAnotherThread(isFree));
    section->enter();
    EXPECT_FALSE(inAnotherThread([&] { return lock.TryEnter(); }));
    lock.Leave();
}

TEST(CThreadLockLayout, HasItsDestructorAlone) {
    expectDestructorAt<CThreadLock>(0, 2U);
}

TEST(CThreadLockLayout, HasTheSlotsThenTheirCount) {
    const CThreadLock locks{0xABCD};

    EXPECT_NE(fieldAt<ThreadLock*>(locks, 8), nullptr);
    EXPECT_EQ(fieldAt<std::uint32_t>(locks, 16), 0xABCDU);
}

TEST(CThreadLockLayout, HasTheSlotOfEachIdInItsPlace) {
    constexpr std::uint32_t kCount = 4;
    CThreadLock locks{kCount};
    auto* const slots = fieldAt<ThreadLock*>(locks, 8);
    for (std::uint32_t taken = 0; taken < kCount; ++taken) {
        locks.ObtainLock(taken);
        for (std::uint32_t i = 0; i < kCount; ++i) {
            const bool isFree = inAnotherThread([&] {
                const bool isEntered = slots[i].TryEnter();
                if (isEntered) slots[i].Leave();
                return isEntered;
            });
            EXPECT_EQ(isFree, i != taken) << taken << ' ' << i;
        }
        slots[taken].Leave();
    }
}

TEST(CThreadLockLayout, HasTheNumberOfElementsInFrontOfThem) {
    for (const std::uint32_t count : {1U, 2U, 500U}) {
        const CThreadLock locks{count};
        std::size_t elements = 0;
        std::memcpy(&elements, reinterpret_cast<std::byte*>(slotsOf(locks)) - sizeof elements,
                    sizeof elements);
        EXPECT_EQ(elements, count);
    }
}

TEST(CThreadLockLayout, ChecksIdsAgainstTheCountField) {
    CThreadLock locks{4};
    setFieldAt(locks, 16, std::uint32_t{2});

    EXPECT_EQ(locks.GetLocksSize(), 2U);
    EXPECT_EQ(locks.TryLock(1), 1);
    locks.ReleaseLock(1);
    EXPECT_THROW(locks.ObtainLock(2), std::out_of_range);
    EXPECT_THROW(locks.TryLock(2), std::out_of_range);
    EXPECT_THROW(locks.ReleaseLock(2), std::out_of_range);
}

TEST(ScopedResourceLayout, HasItsDestructorAlone) {
    ThreadLock lock;
    expectDestructorAt<ThreadLockGuard>(0, &lock);
}

TEST(ScopedResourceLayout, HasTheFlagThenTheResource) {
    ThreadLock lock;
    ThreadLockGuard guard{&lock};
    EXPECT_EQ(fieldAt<std::uint8_t>(guard, 8), 1);
    EXPECT_EQ(fieldAt<ThreadLock*>(guard, 16), &lock);

    guard.Release();
    EXPECT_EQ(fieldAt<std::uint8_t>(guard, 8), 0);
    EXPECT_EQ(fieldAt<ThreadLock*>(guard, 16), &lock);
}

// ---- Reader/writer lock -------------------------------------------------------------------------

TEST(RWLockLayout, HasItsDestructorFirst) {
    expectDestructorAt<RWLock>(0);
}

TEST(RWLockLayout, HasInitializeClaimReleaseAndCleanupBehindIt) {
    constexpr std::size_t kInitialize = kSlotsOfDestructor;
    RWLock lock;
    EXPECT_EQ(callSlot<int>(&lock, kInitialize), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(lock));

    callSlot<void>(&lock, kInitialize + 1, 1);
    EXPECT_EQ(readerCountOf(lock), 0);
    EXPECT_EQ(callSlot<int>(&lock, kInitialize + 2, 1), VEXA_SUCCESS);
    EXPECT_EQ(callSlot<int>(&lock, kInitialize + 2, 1), VEXA_FAILURE);

    callSlot<void>(&lock, kInitialize + 1, 0);
    EXPECT_FALSE(isSignalled(gateOf(lock)));
    EXPECT_EQ(callSlot<int>(&lock, kInitialize + 2, 0), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(lock));

    callSlot<void>(&lock, kInitialize + 3);
    EXPECT_FALSE(platform::setEvent(gateOf(lock)));
}

TEST(RWLockLayout, HasTheReaderEventTheGateTheMutexAndTheCount) {
    RWLock lock;
    lock.Initialize();
    lock.Claim(1);
    lock.Claim(1);

    EXPECT_TRUE(platform::resetEvent(fieldAt<platform::Handle>(lock, 8)));
    EXPECT_TRUE(platform::resetEvent(fieldAt<platform::Handle>(lock, 16)));
    EXPECT_EQ(platform::waitFor(fieldAt<platform::Handle>(lock, 24), 0),
              platform::WaitResult::Signalled);
    EXPECT_TRUE(platform::releaseMutex(fieldAt<platform::Handle>(lock, 24)));
    EXPECT_EQ(fieldAt<std::int32_t>(lock, 32), 1);
    lock.Cleanup();
}

std::string slotCalls;  // NOLINT(*-avoid-non-const-global-variables): the functions have no state

template <char Name>
std::uint64_t noteCall(void* /*lock*/, int mode) {
    slotCalls += Name;
    if (Name == 'C' || Name == 'R') slotCalls += std::to_string(mode);
    return 7;
}

template <char Name>
Entry noting() {
    return reinterpret_cast<Entry>(&noteCall<Name>);
}

/// A table as that of a class that overrides everything.
struct NotingTable {
    // What stands in front of the functions, the type among it, stays that of the class.
    std::array<Entry, 2> front;
    std::array<Entry, 6> functions;

    explicit NotingTable(const RWLock& lock)
        : functions{noting<'1'>(), noting<'2'>(), noting<'I'>(),
                    noting<'C'>(), noting<'R'>(), noting<'U'>()} {
        std::memcpy(&front, fieldAt<const Entry*>(lock, 0) - front.size(), sizeof front);
    }
};

TEST(RWLockLayout, IsWhatTheFlatFunctionsCallThrough) {
    RWLock lock;
    const NotingTable table{lock};
    const auto* const before = fieldAt<const Entry*>(lock, 0);
    setFieldAt(lock, 0, table.functions.data());
    slotCalls.clear();
    RWLock* pointer = &lock;

    EXPECT_EQ(rwlock_claim(pointer, 1), VEXA_SUCCESS);
    EXPECT_EQ(rwlock_claim(pointer, 0), VEXA_SUCCESS);
    EXPECT_EQ(rwlock_release(pointer, 1), 7U);
    EXPECT_EQ(rwlock_release(pointer, 0), 7U);
    EXPECT_EQ(rwlock_destroy(&pointer), VEXA_SUCCESS);
    EXPECT_EQ(slotCalls, "C1C0R1R0U2");
    setFieldAt(lock, 0, before);
}

// ---- Reference count ----------------------------------------------------------------------------

TEST(ReferenceCountLayout, HasTheCountBehindItsTable) {
    ReferenceCount counted{0x123456789ABCDEF0};
    EXPECT_EQ(fieldAt<std::uint64_t>(counted, 8), 0x123456789ABCDEF0U);

    setFieldAt(counted, 8, std::uint64_t{41});
    EXPECT_EQ(counted.AddRef(), 42U);
    EXPECT_EQ(fieldAt<std::uint64_t>(counted, 8), 42U);
}

TEST(ReferenceCountLayout, HasAddRefReleaseQueryRefSetRefsThenTheDestructor) {
    ReferenceCount counted{10};

    EXPECT_EQ(callSlot<std::uint64_t>(&counted, 0), 11U);
    EXPECT_EQ(callSlot<std::uint64_t>(&counted, 1), 10U);
    EXPECT_EQ(callSlot<std::uint64_t>(&counted, 2), 10U);
    EXPECT_EQ(callSlot<std::uint64_t>(&counted, 3, std::uint64_t{5}), 10U);
    EXPECT_EQ(counted.QueryRef(), 5U);
    expectDestructorAt<ReferenceCount>(4, std::uint64_t{1});
}

}  // namespace

}  // namespace vexa::test
