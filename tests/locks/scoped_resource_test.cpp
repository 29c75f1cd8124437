#include "locks/thread_lock.h"
#include "vexakit/locks.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using Events = std::vector<std::string>;

/// A resource that remembers what was done to it.
struct Recorder {
    Events events;
    bool refuses = false;
};

struct RecordObtain {
    void operator()(Recorder* recorder) const {
        if (recorder->refuses) throw std::runtime_error("refused");
        recorder->events.emplace_back("obtain");
    }
};

struct RecordRelease {
    void operator()(Recorder* recorder) const { recorder->events.emplace_back("release"); }
};

using Guard = Oreval::ScopedResource<Recorder*, RecordRelease, RecordObtain>;

// Two copies would release twice.
static_assert(!std::is_copy_constructible_v<Guard> && !std::is_copy_assignable_v<Guard>);
static_assert(std::is_polymorphic_v<Guard> && std::has_virtual_destructor_v<Guard>);
static_assert(sizeof(Guard) == 3 * sizeof(void*), "its table, the flag, the resource");

TEST(ScopedResource, ObtainsWhenMade) {
    Recorder recorder;
    const Guard guard{&recorder};

    EXPECT_EQ(recorder.events, Events{"obtain"});
}

TEST(ScopedResource, ReleasesAtTheEndOfTheScope) {
    Recorder recorder;
    {
        const Guard guard{&recorder};
        recorder.events.emplace_back("work");
    }

    EXPECT_EQ(recorder.events, (Events{"obtain", "work", "release"}));
}

TEST(ScopedResource, ReleasesEarlyAndOnlyOnce) {
    Recorder recorder;
    {
        Guard guard{&recorder};
        guard.Release();
        EXPECT_EQ(recorder.events, (Events{"obtain", "release"}));
        guard.Release();
        guard.Release();
        recorder.events.emplace_back("work");
    }

    EXPECT_EQ(recorder.events, (Events{"obtain", "release", "work"}));
}

TEST(ScopedResource, ReleasesOnAnException) {
    Recorder recorder;
    try {
        const Guard guard{&recorder};
        throw std::runtime_error("work failed");
    } catch (const std::runtime_error&) {
        recorder.events.emplace_back("caught");
    }

    EXPECT_EQ(recorder.events, (Events{"obtain", "release", "caught"}));
}

TEST(ScopedResource, ReleasesEarlyAndNotAgainOnAnException) {
    Recorder recorder;
    try {
        Guard guard{&recorder};
        guard.Release();
        throw std::runtime_error("work failed");
    } catch (const std::runtime_error&) {
        recorder.events.emplace_back("caught");
    }

    EXPECT_EQ(recorder.events, (Events{"obtain", "release", "caught"}));
}

TEST(ScopedResource, ReleasesNothingThatWasNotObtained) {
    Recorder recorder{.refuses = true};

    EXPECT_THROW(Guard{&recorder}, std::runtime_error);
    EXPECT_EQ(recorder.events, Events{});
}

TEST(ScopedResource, ReleasesThroughABaseOfItsUser) {
    struct Named : Guard {
        using Guard::Guard;
    };
    Recorder recorder;
    const Guard* const guard = new Named{&recorder};
    delete guard;

    EXPECT_EQ(recorder.events, (Events{"obtain", "release"}));
}

TEST(ScopedResource, ReleasesInTheReverseOrderOfScopes) {
    Recorder outer;
    Recorder inner;
    {
        const Guard first{&outer};
        {
            const Guard second{&inner};
            EXPECT_EQ(outer.events, Events{"obtain"});
        }
        EXPECT_EQ(inner.events, (Events{"obtain", "release"}));
        EXPECT_EQ(outer.events, Events{"obtain"});
    }
    EXPECT_EQ(outer.events, (Events{"obtain", "release"}));
}

// ---- Other resources and policies ---------------------------------------------------------------

/// A resource whose release asks its guard to release.
struct Circular;
struct CircularObtain {
    void operator()(Circular*) const {}
};
struct CircularRelease {
    void operator()(Circular* circular) const;
};
using CircularGuard = Oreval::ScopedResource<Circular*, CircularRelease, CircularObtain>;
struct Circular {
    CircularGuard* guard = nullptr;
    int releases = 0;
};
void CircularRelease::operator()(Circular* circular) const {
    if (++circular->releases < 10) circular->guard->Release();
}

TEST(ScopedResource, NoLongerHoldsWhatItIsReleasing) {
    Circular circular;
    {
        CircularGuard guard{&circular};
        circular.guard = &guard;
        guard.Release();
        EXPECT_EQ(circular.releases, 1);
    }
    EXPECT_EQ(circular.releases, 1);
}

int openSlots = 0;  // NOLINT(*-avoid-non-const-global-variables): policies have no state

struct OpenSlot {
    void operator()(int slot) const { openSlots |= 1 << slot; }
};
struct CloseSlot {
    void operator()(int slot) const { openSlots &= ~(1 << slot); }
};

TEST(ScopedResource, HoldsAResourceByValue) {
    int slot = 3;
    {
        const Oreval::ScopedResource<int, CloseSlot, OpenSlot> guard{slot};
        slot = 5;
        EXPECT_EQ(openSlots, 1 << 3);
    }
    EXPECT_EQ(openSlots, 0);
}

// Policies for whatever is entered and left, the library's lock among them.
struct Room {
    int inside = 0;
    void Enter() { ++inside; }
    void Leave() { --inside; }
};

TEST(ThreadLockPolicies, EnterAndLeave) {
    Room room;
    ThreadLockObtain<Room*>{}(&room);
    ThreadLockObtain<Room*>{}(&room);
    EXPECT_EQ(room.inside, 2);

    ThreadLockRelease<Room*>{}(&room);
    EXPECT_EQ(room.inside, 1);
}

TEST(ThreadLockPolicies, MakeAGuardOfWhateverIsEntered) {
    Room room;
    {
        const Oreval::ScopedResource<Room*, ThreadLockRelease<Room*>, ThreadLockObtain<Room*>>
            guard{&room};
        EXPECT_EQ(room.inside, 1);
    }
    EXPECT_EQ(room.inside, 0);
}

}  // namespace

}  // namespace vexa::test
