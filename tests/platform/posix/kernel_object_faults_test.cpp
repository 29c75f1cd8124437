#include "tests/platform/posix/system_call_faults.h"

#ifdef VEXA_CAN_FAIL_CALLS

#include "platform/kernel_objects.h"
#include "tests/platform/posix/possessions.h"
#include "tests/platform/posix/shared_file_support.h"
#include "tests/support/allocations.h"

#include <cerrno>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <utility>

// Each call to the kernel that named objects need fails once, with every error: who makes an object has it
// whole or not at all, others notice nothing, and nothing is left behind.

namespace vexa::test {

namespace {

using namespace vexa::platform;

// ---- What is checked ---------------------------------------------------------------------------

constexpr std::uint32_t kMappingSize = 64;
constexpr unsigned char kSign = 0x5A;

unsigned char* bytesOf(Handle mapping) {
    return static_cast<unsigned char*>(mapView(mapping));
}

/// A kind of named object: how it is made, how a user leaves a sign that all others see, and how it is
/// used.
struct NamedKind {
    const char* name;
    Handle (*make)(const VexaWChar* name);
    void (*leaveSign)(Handle object);
    bool (*hasSign)(Handle object);
    bool (*works)(Handle object);
};

void PrintTo(const NamedKind& kind, std::ostream* out) {
    *out << kind.name;
}

constexpr NamedKind kEvent = {
    "Event",
    [](const VexaWChar* name) { return createEvent(Reset::Manual, false, name, nullptr); },
    [](Handle event) { setEvent(event); },
    [](Handle event) { return waitFor(event, 0) == WaitResult::Signalled; },
    [](Handle event) {
        return setEvent(event) && waitFor(event, kLimit) == WaitResult::Signalled &&
               resetEvent(event) && waitFor(event, 1) == WaitResult::TimedOut;
    },
};

// Its sign is that its last owner has abandoned it. Who finds that takes the sign away.
constexpr NamedKind kMutex = {
    "Mutex",
    [](const VexaWChar* name) { return createMutex(name, nullptr); },
    [](Handle mutex) { inAnotherThread([=] { return waitFor(mutex, kLimit); }); },
    [](Handle mutex) {
        const bool isAbandoned = waitFor(mutex, 0) == WaitResult::Abandoned;
        return releaseMutex(mutex) && isAbandoned;
    },
    [](Handle mutex) {
        const auto isFree = [=] {
            return waitFor(mutex, 1) == WaitResult::Signalled && releaseMutex(mutex);
        };
        const bool isTaken = waitFor(mutex, 0) == WaitResult::Signalled;
        const bool keepsOthersOut = !inAnotherThread(isFree);
        return releaseMutex(mutex) && isTaken && keepsOthersOut && inAnotherThread(isFree);
    },
};

constexpr NamedKind kMapping = {
    "Mapping",
    [](const VexaWChar* name) { return createMapping(kMappingSize, name, nullptr); },
    [](Handle mapping) { bytesOf(mapping)[0] = kSign; },
    [](Handle mapping) { return bytesOf(mapping)[0] == kSign; },
    [](Handle mapping) {
        unsigned char* const bytes = bytesOf(mapping);
        if (!bytes || !isMapped(mapping, bytes)) return false;
        return ++bytes[kMappingSize - 1] != 0;
    },
};

// ---- Faults ------------------------------------------------------------------------------------

class NamedObjectFaults : public WithSystemCallFaults,
                          public testing::WithParamInterface<NamedKind> {
protected:
    OwnHandle make() { return OwnHandle{GetParam().make(name_.c_str())}; }

    /// Makes the object while calls fail. @return whether they did
    bool makeWith(std::initializer_list<Fault> faults, OwnHandle& made) {
        return runWithFaults(faults, [&] { made = make(); });
    }

    /// Closes the object while calls fail. @return whether they did
    static bool closeWith(Fault fault, OwnHandle closed) {
        bool isClosed = false;
        const bool happened =
            runWithFaults({fault}, [&] { isClosed = closeHandle(closed.release()); });
        EXPECT_TRUE(isClosed);
        return happened;
    }

    /// Leaves the file of an object that nobody uses any more, with a sign in it.
    void leaveBehind() {
        OwnHandle object = make();
        GetParam().leaveSign(object.get());
        closeWith({SystemCall::Unlink, 1, EPERM}, std::move(object));
        EXPECT_TRUE(path_.exists());
    }

    void expectNew(const OwnHandle& object) {
        EXPECT_FALSE(GetParam().hasSign(object.get()));
        EXPECT_TRUE(GetParam().works(object.get()));
    }

    /// Whatever has happened: now the object can be made, is new, and goes.
    void expectThatTheNextHasItNew() {
        OwnHandle next = make();
        ASSERT_NE(next, nullptr);
        expectNew(next);
        next.reset();
        EXPECT_FALSE(path_.exists());
    }

    WideString name_ = newObjectName();
    OwnPath path_{name_};
};
INSTANTIATE_TEST_SUITE_P(Kinds, NamedObjectFaults, testing::Values(kEvent, kMutex, kMapping),
                         [](const auto& row) { return row.param.name; });

constexpr std::initializer_list<int> kErrors = {ENOSPC, ENOMEM, EACCES, EMFILE, EIO};
// "No access" to a byte means that another user has locked it, and is no fault.
constexpr std::initializer_list<int> kErrorsOfLeftovers = {ENOSPC, ENOMEM, ENOLCK, EMFILE, EIO};

// ---- Objects that are made ---------------------------------------------------------------------

TEST_P(NamedObjectFaults, LeaveTheFirstUserAllOrNothing) {
    const Possessions before = possessions();

    const int points = withEachFault(kErrors, [&](Fault fault) {
        OwnHandle made;
        const bool happened = makeWith({fault}, made);
        if (made) {
            expectNew(made);
        } else {
            EXPECT_TRUE(happened);
            EXPECT_FALSE(path_.exists());
        }
        made.reset();
        EXPECT_EQ(possessions(), before);
        expectThatTheNextHasItNew();
        return happened;
    });
    EXPECT_GE(points, 45);  // five errors in each of nine calls at least
}

TEST_P(NamedObjectFaults, LeaveALaterUserTheSameObjectOrNothing) {
    const OwnHandle first = make();
    const Possessions before = possessions();

    const int points = withEachFault(kErrors, [&](Fault fault) {
        GetParam().leaveSign(first.get());
        OwnHandle second;
        const bool happened = makeWith({fault}, second);
        EXPECT_TRUE(second || happened);
        EXPECT_TRUE(GetParam().hasSign(second ? second.get() : first.get()));
        EXPECT_TRUE(!second || GetParam().works(second.get()));
        second.reset();
        EXPECT_TRUE(GetParam().works(first.get()));
        EXPECT_EQ(possessions(), before);
        EXPECT_TRUE(path_.exists());
        EXPECT_NE(make(), nullptr);
        return happened;
    });
    EXPECT_GE(points, 45);
}

TEST_P(NamedObjectFaults, LeaveWhoFindsALeftoverANewObjectOrNothing) {
    const Possessions before = possessions();

    const int points = withEachFault(kErrorsOfLeftovers, [&](Fault fault) {
        leaveBehind();
        OwnHandle made;
        const bool happened = makeWith({fault}, made);
        EXPECT_TRUE(made || happened);
        if (made) expectNew(made);
        made.reset();
        EXPECT_EQ(possessions(), before);
        expectThatTheNextHasItNew();
        return happened;
    });
    EXPECT_GE(points, 60);
}

// In a sticky folder the leftover of another user stays, and its file is used again.
TEST_P(NamedObjectFaults, LeaveWhoCannotRemoveALeftoverANewObjectOrNothing) {
    const Possessions before = possessions();
    constexpr Fault kCannotRemove{SystemCall::Unlink, 1, EPERM, true};

    const int points = withEachFault(kErrorsOfLeftovers, [&](Fault fault) {
        leaveBehind();
        OwnHandle made;
        const bool happened = makeWith({kCannotRemove, fault}, made);
        EXPECT_TRUE(made || happened);
        if (made) expectNew(made);
        made.reset();
        EXPECT_EQ(possessions(), before);
        expectThatTheNextHasItNew();
        return happened;
    });
    EXPECT_GE(points, 45);
}

TEST_P(NamedObjectFaults, AreNoneWhereACallIsInterrupted) {
    for (const SystemCall call : {SystemCall::Open, SystemCall::LockByte, SystemCall::Reserve}) {
        const int points = withEachFault(
            {EINTR},
            [&](Fault fault) {
                OwnHandle first;
                OwnHandle second;
                const bool happenedToFirst = makeWith({fault}, first);
                const bool happenedToSecond = makeWith({fault}, second);
                if (!first || !second) return ADD_FAILURE() << "not made", false;
                GetParam().leaveSign(first.get());
                EXPECT_TRUE(GetParam().hasSign(second.get()));
                return happenedToFirst || happenedToSecond;
            },
            call);
        EXPECT_GE(points, 1);
    }
}

// ---- Objects that are closed -------------------------------------------------------------------

// What cannot be removed is left to who comes next.
TEST_P(NamedObjectFaults, DoNotKeepTheLastUserFromClosing) {
    const Possessions before = possessions();

    const int points = withEachFault(kErrors, [&](Fault fault) {
        OwnHandle last = make();
        GetParam().leaveSign(last.get());
        const bool happened = closeWith(fault, std::move(last));
        EXPECT_TRUE(happened || !path_.exists());
        EXPECT_EQ(possessions(), before);
        expectThatTheNextHasItNew();
        return happened;
    });
    EXPECT_GE(points, 25);
}

TEST_P(NamedObjectFaults, OfOneWhoClosesAreNothingToOthers) {
    const OwnHandle first = make();
    const Possessions before = possessions();

    withEachFault(kErrors, [&](Fault fault) {
        GetParam().leaveSign(first.get());
        const bool happened = closeWith(fault, make());
        EXPECT_TRUE(GetParam().hasSign(first.get()));
        EXPECT_TRUE(GetParam().works(first.get()));
        EXPECT_EQ(possessions(), before);
        EXPECT_TRUE(path_.exists());
        return happened;
    });
}

TEST_P(NamedObjectFaults, AreNoneWhereTheLastUserIsInterrupted) {
    const int points = withEachFault(
        {EINTR},
        [&](Fault fault) {
            const bool happened = closeWith(fault, make());
            EXPECT_FALSE(path_.exists());
            return happened;
        },
        SystemCall::LockByte);
    EXPECT_GE(points, 4);
}

// ---- Memory that is mapped again ---------------------------------------------------------------

using MappingFaults = WithSystemCallFaults;

TEST_F(MappingFaults, GiveNoAddressAndLeaveTheMemoryAsItIs) {
    const OwnHandle mapping{createMapping(kMappingSize, newObjectName().c_str(), nullptr)};
    bytesOf(mapping.get())[0] = kSign;

    const int points = withEachFault(kErrors, [&](Fault fault) {
        unmapView(mapping.get(), bytesOf(mapping.get()));
        const Possessions before = possessions();
        void* view = nullptr;
        const bool happened = runWithFaults({fault}, [&] { view = mapView(mapping.get()); });
        EXPECT_EQ(view == nullptr, happened);
        EXPECT_TRUE(view || possessions() == before);
        EXPECT_TRUE(kMapping.hasSign(mapping.get()));
        return happened;
    });
    EXPECT_EQ(points, 5);
}

// ---- Where the heap has no more ----------------------------------------------------------------

TEST_P(NamedObjectFaults, OfTheHeapLeaveTheFirstUserAllOrNothing) {
    const Possessions before = possessions();

    bool happened = true;
    int nth = 0;
    while (happened) {
        OwnHandle made;
        {
            const HeapFailure failure(++nth);
            made = make();
            happened = failure.happened();
        }
        EXPECT_EQ(made == nullptr, happened);
        if (made) expectNew(made);
        made.reset();
        EXPECT_EQ(possessions(), before);
        EXPECT_FALSE(path_.exists());
    }
    EXPECT_GE(nth, 2);
}

TEST_P(NamedObjectFaults, OfTheHeapDoNotKeepTheLastUserFromClosing) {
    const Possessions before = possessions();

    OwnHandle last = make();
    {
        const HeapFailure failure(1);
        last.reset();
    }

    EXPECT_EQ(possessions(), before);
    EXPECT_FALSE(path_.exists());
}

}  // namespace

}  // namespace vexa::test

#endif
