#include "platform/kernel_objects.h"
#include "platform/security.h"
#include "tests/platform/kernel_objects_support.h"
#include "tests/platform/posix/child_process.h"
#include "tests/platform/posix/shared_file_support.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <sys/stat.h>
#include <thread>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::createMutex;
using platform::Handle;
using platform::kNoTimeLimit;
using platform::releaseMutex;
using platform::waitFor;
using platform::WaitResult;

OwnHandle openMutex(const WideString& name) {
    return OwnHandle{createMutex(name.c_str(), nullptr)};
}

WaitResult waitElsewhere(Handle mutex, std::uint32_t milliseconds = 0) {
    return inAnotherThread([=] {
        const WaitResult result = waitFor(mutex, milliseconds);
        if (result == WaitResult::Signalled) releaseMutex(mutex);
        return result;
    });
}

/// A thread that does one thing after another and then ends.
class Owner {
public:
    Owner() : thread_([this] { run(); }) {}
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() { end(); }

    template <class Action>
    auto does(Action action) {
        decltype(action()) result{};
        step_ = [&] { result = action(); };
        hasStep_ = true;
        hasStep_.notify_one();
        hasStep_.wait(true);
        return result;
    }

    void end() {
        if (!thread_.joinable()) return;
        does([this] { return isOver_ = true; });
        thread_.join();
    }

private:
    void run() {
        while (!isOver_) {
            hasStep_.wait(false);
            step_();
            hasStep_ = false;
            hasStep_.notify_one();
        }
    }

    std::function<void()> step_;
    std::atomic<bool> hasStep_ = false;
    bool isOver_ = false;
    std::thread thread_;
};

class NamedMutexes : public testing::Test {
protected:
    WideString name_ = newObjectName();
    OwnPath path_{name_};
    Owner owner_;
};

// ---- Handles of one process --------------------------------------------------------------------

TEST_F(NamedMutexes, AreOneThroughAllHandles) {
    const OwnHandle first = openMutex(name_);
    const OwnHandle second = openMutex(name_);
    const OwnHandle third = openMutex(name_);

    EXPECT_EQ(waitFor(first.get(), 0), WaitResult::Signalled);
    EXPECT_EQ(waitFor(second.get(), 0), WaitResult::Signalled);
    EXPECT_EQ(waitElsewhere(third.get()), WaitResult::TimedOut);
    EXPECT_TRUE(releaseMutex(third.get()));
    EXPECT_EQ(waitElsewhere(first.get()), WaitResult::TimedOut);
    EXPECT_TRUE(releaseMutex(second.get()));
    EXPECT_EQ(waitElsewhere(first.get()), WaitResult::Signalled);
}

TEST_F(NamedMutexes, StayHeldWhenTheHandleThatTookThemIsClosed) {
    OwnHandle first = openMutex(name_);
    const OwnHandle second = openMutex(name_);
    EXPECT_EQ(waitFor(first.get(), 0), WaitResult::Signalled);
    first.reset();

    EXPECT_EQ(waitElsewhere(second.get()), WaitResult::TimedOut);
    EXPECT_TRUE(releaseMutex(second.get()));
    EXPECT_EQ(waitElsewhere(second.get()), WaitResult::Signalled);
}

TEST_F(NamedMutexes, GoWithTheirLastHandleAlsoWhileHeld) {
    OwnHandle mutex = openMutex(name_);
    EXPECT_EQ(owner_.does([&] { return waitFor(mutex.get(), 0); }), WaitResult::Signalled);
    mutex.reset();
    EXPECT_FALSE(path_.exists());

    // The next of the name is another one, which the owner of the old does not own.
    const OwnHandle next = openMutex(name_);
    EXPECT_FALSE(owner_.does([&] { return releaseMutex(next.get()); }));
    EXPECT_EQ(waitFor(next.get(), 0), WaitResult::Signalled);
    owner_.end();
    EXPECT_EQ(waitElsewhere(next.get()), WaitResult::TimedOut);
    EXPECT_TRUE(releaseMutex(next.get()));
    EXPECT_EQ(waitElsewhere(next.get()), WaitResult::Signalled);
}

TEST_F(NamedMutexes, TakeNoDescriptorsAndNoFilesForGood) {
    const std::ptrdiff_t before = openDescriptors();
    for (int i = 0; i < 100; ++i) {
        OwnHandle first = openMutex(name_);
        OwnHandle second = openMutex(name_);
        EXPECT_EQ(waitFor(first.get(), 0), WaitResult::Signalled);
        if (i % 2 == 0) releaseMutex(second.get());
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(path_.exists());
}

TEST_F(NamedMutexes, AreOpenedByManyThreadsAtOnce) {
    int visits = 0;  // guarded by the mutex, whichever handle it is had through
    constexpr int kRounds = 100;
    inAllThreads([&](int) {
        for (int i = 0; i < kRounds; ++i) {
            const OwnHandle stays = openMutex(name_);
            EXPECT_EQ(waitFor(openMutex(name_).get(), kNoTimeLimit), WaitResult::Signalled);
            ++visits;
            EXPECT_TRUE(releaseMutex(stays.get()));
        }
    });
    EXPECT_EQ(visits, kThreads * kRounds);
    EXPECT_FALSE(path_.exists());
}

// ---- Other processes ---------------------------------------------------------------------------

/// A process that has the mutex open, and holds it if it is asked to.
class OtherUser {
public:
    explicit OtherUser(const WideString& name, bool holds = false)
        : child_([&, holds] {
              const OwnHandle mutex = openMutex(name);
              if (holds && waitFor(mutex.get(), kLimit) != WaitResult::Signalled) return 1;
              isOpen_.give();
              return untilKilled();
          }) {
        EXPECT_TRUE(isOpen_.await());
    }
    void kill() { child_.kill(); }

private:
    Signal isOpen_;
    Child child_;
};

// The memory has to stay where the kernel looks for it when the owner ends.
TEST_F(NamedMutexes, AreAbandonedThoughTheirOwnersProcessHasClosedThem) {
    OtherUser other(name_);
    OwnHandle mutex = openMutex(name_);
    EXPECT_EQ(owner_.does([&] { return waitFor(mutex.get(), 0); }), WaitResult::Signalled);
    mutex.reset();
    EXPECT_TRUE(path_.exists());

    mutex = openMutex(name_);
    EXPECT_EQ(waitFor(mutex.get(), 0), WaitResult::TimedOut);
    mutex.reset();
    owner_.end();
    mutex = openMutex(name_);
    EXPECT_EQ(waitFor(mutex.get(), 0), WaitResult::Abandoned);
    EXPECT_TRUE(releaseMutex(mutex.get()));
    EXPECT_EQ(waitElsewhere(mutex.get()), WaitResult::Signalled);
}

TEST_F(NamedMutexes, AreReleasedByTheirOwnerThroughAHandleOpenedLater) {
    OtherUser other(name_);
    OwnHandle mutex = openMutex(name_);
    EXPECT_EQ(owner_.does([&] {
        return waitFor(mutex.get(), 0) == WaitResult::Signalled ? waitFor(mutex.get(), 0)
                                                                : WaitResult::Failed;
    }),
              WaitResult::Signalled);
    mutex.reset();

    mutex = openMutex(name_);
    EXPECT_FALSE(releaseMutex(mutex.get()));
    EXPECT_TRUE(owner_.does([&] { return releaseMutex(mutex.get()); }));
    EXPECT_EQ(waitElsewhere(mutex.get()), WaitResult::TimedOut);
    EXPECT_TRUE(owner_.does([&] { return releaseMutex(mutex.get()); }));
    EXPECT_FALSE(owner_.does([&] { return releaseMutex(mutex.get()); }));
    EXPECT_EQ(waitElsewhere(mutex.get()), WaitResult::Signalled);
}

TEST_F(NamedMutexes, AreAbandonedByAKilledProcess) {
    const OwnHandle mutex = openMutex(name_);
    OtherUser holder(name_, true);
    EXPECT_EQ(waitFor(mutex.get(), 0), WaitResult::TimedOut);
    holder.kill();

    EXPECT_EQ(waitFor(mutex.get(), 0), WaitResult::Abandoned);
    EXPECT_TRUE(releaseMutex(mutex.get()));
    EXPECT_EQ(waitElsewhere(mutex.get()), WaitResult::Signalled);
}

TEST_F(NamedMutexes, WakeAWaiterWhenTheirHolderIsKilled) {
    const OwnHandle mutex = openMutex(name_);
    OtherUser holder(name_, true);
    std::optional<WaitResult> result;
    {
        const Worker waiter{[&] { result = waitFor(mutex.get(), kNoTimeLimit); }};
        EXPECT_TRUE(waiter.waits());
        holder.kill();
    }
    EXPECT_EQ(result, WaitResult::Abandoned);
}

TEST_F(NamedMutexes, AreFreeAfterAKilledLastUser) {
    OtherUser holder(name_, true);
    holder.kill();
    EXPECT_TRUE(path_.exists());

    const OwnHandle mutex = openMutex(name_);
    EXPECT_EQ(waitFor(mutex.get(), 0), WaitResult::Signalled);
    EXPECT_TRUE(releaseMutex(mutex.get()));
}

// A mutex that is closed while held, left by a killed user and made anew is still on the list from
// which the kernel learns what its old owner holds. What stands behind it there must not be lost.
TEST_F(NamedMutexes, MadeAnewDoNotSpoilWhatTheirOldOwnerHolds) {
    const OwnHandle earlier{createMutex(nullptr, nullptr)};
    OwnHandle mutex = openMutex(name_);
    OtherUser other(name_);
    EXPECT_EQ(owner_.does([&] { return waitFor(earlier.get(), 0); }), WaitResult::Signalled);
    EXPECT_EQ(owner_.does([&] { return waitFor(mutex.get(), 0); }), WaitResult::Signalled);
    mutex.reset();
    other.kill();

    const OwnHandle anew = openMutex(name_);
    EXPECT_FALSE(owner_.does([&] { return releaseMutex(anew.get()); }));
    EXPECT_EQ(waitElsewhere(anew.get()), WaitResult::Signalled);
    owner_.end();
    EXPECT_EQ(waitFor(earlier.get(), 1'000), WaitResult::Abandoned);
    EXPECT_EQ(waitElsewhere(anew.get()), WaitResult::Signalled);
}

// ---- Forked children ---------------------------------------------------------------------------

TEST_F(NamedMutexes, AreNotOwnedByAChildOfTheirOwner) {
    const OwnHandle mutex = openMutex(name_);
    EXPECT_EQ(waitFor(mutex.get(), 0), WaitResult::Signalled);
    Child child{[&] {
        if (releaseMutex(mutex.get())) return 1;
        if (waitFor(mutex.get(), 0) != WaitResult::TimedOut) return 2;
        const OwnHandle its = openMutex(name_);
        if (releaseMutex(its.get())) return 3;
        return waitFor(its.get(), 0) == WaitResult::TimedOut ? 0 : 4;
    }};
    EXPECT_EQ(child.exitCode(), 0);

    EXPECT_EQ(waitElsewhere(mutex.get()), WaitResult::TimedOut);
    EXPECT_TRUE(releaseMutex(mutex.get()));
}

TEST_F(NamedMutexes, AreNotTakenAwayByAChildThatClosesThem) {
    OwnHandle mutex = openMutex(name_);
    EXPECT_EQ(waitFor(mutex.get(), 0), WaitResult::Signalled);
    Child child{[&] {
        mutex.reset();
        return path_.exists() ? 0 : 1;
    }};
    EXPECT_EQ(child.exitCode(), 0);

    const OwnHandle again = openMutex(name_);
    EXPECT_EQ(waitElsewhere(again.get()), WaitResult::TimedOut);
    EXPECT_TRUE(releaseMutex(again.get()));
}

TEST_F(NamedMutexes, WorkInAChildThroughTheParentsHandle) {
    const OwnHandle mutex = openMutex(name_);
    Child child{[&] {
        if (waitFor(mutex.get(), 0) != WaitResult::Signalled) return 1;
        return waitFor(mutex.get(), 0) == WaitResult::Signalled ? 0 : 2;
    }};
    EXPECT_EQ(child.exitCode(), 0);

    EXPECT_EQ(waitFor(mutex.get(), 0), WaitResult::Abandoned);
    EXPECT_TRUE(releaseMutex(mutex.get()));
    EXPECT_FALSE(releaseMutex(mutex.get()));
}

// One that opens the name itself keeps it when the parent goes.
TEST_F(NamedMutexes, AreHadByAChildInItsOwnRight) {
    const Signal isOpen;
    const Signal mayEnd;
    OwnHandle mutex = openMutex(name_);
    Child child{[&] {
        OwnHandle its = openMutex(name_);
        isOpen.give();
        if (!mayEnd.await() || !path_.exists()) return 1;
        if (waitFor(its.get(), 0) != WaitResult::Signalled || !releaseMutex(mutex.get())) return 2;
        mutex.reset();
        its.reset();
        return path_.exists() ? 3 : 0;
    }};
    ASSERT_TRUE(isOpen.await());
    mutex.reset();

    mayEnd.give();
    EXPECT_EQ(child.exitCode(), 0);
}

// ---- Permissions -------------------------------------------------------------------------------

TEST_F(NamedMutexes, AreForWhomTheirMakerSays) {
    SECURITY_DESCRIPTOR descriptor{0640};
    SECURITY_ATTRIBUTES ofGroup{24, &descriptor, 0};
    SECURITY_ATTRIBUTES ofNothing{24, nullptr, 0};
    SECURITY_ATTRIBUTES* const ofAll = platform::makeOpenSecurity();
    const struct {
        SECURITY_ATTRIBUTES* sa;
        mode_t mode;
    } kCases[] = {{nullptr, 0600}, {&ofNothing, 0600}, {&ofGroup, 0640}, {ofAll, 0666}};

    for (const auto& row : kCases) {
        const OwnHandle mutex{createMutex(name_.c_str(), row.sa)};
        const OwnHandle second{createMutex(name_.c_str(), ofAll)};  // counts for its maker alone
        ASSERT_TRUE(mutex && path_.exists());
        EXPECT_EQ(path_.status()->st_mode & 07777U, row.mode);
    }
    platform::freeSecurity(ofAll);
}

}  // namespace

}  // namespace vexa::test
