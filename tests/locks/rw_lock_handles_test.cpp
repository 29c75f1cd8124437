#include "platform/kernel_objects.h"
#include "tests/locks/lock_fields.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

// Windows has too many handles for a test to use them up.
#ifndef _WIN32

namespace vexa::test {

namespace {

/// All handles that the process can have.
class UsedUp {
public:
    UsedUp() { takeTheRest(); }

    void giveBack(std::size_t count) {
        for (; count > 0; --count) {
            platform::closeHandle(handles_.back());
            handles_.pop_back();
        }
    }

    /// @return how many there were
    std::size_t takeTheRest() {
        const std::size_t before = handles_.size();
        while (const platform::Handle handle = makeOne()) handles_.push_back(handle);
        return handles_.size() - before;
    }

private:
    static platform::Handle makeOne() {
        return platform::createEvent(platform::Reset::Manual, false, nullptr, nullptr);
    }

    std::vector<platform::Handle> handles_;
};

bool hasNoHandle(const RWLock& lock) {
    return !readerEventOf(lock) && !gateOf(lock) && !writerMutexOf(lock);
}

void endUnless(bool holds, const char* claim, std::size_t handles) {
    if (holds) return;
    std::fprintf(stderr, "not with %zu handles: %s\n", handles, claim);
    std::_Exit(1);
}

// In a process of its own, which takes its handles along.
[[noreturn]] void makeLocksWithTooFewHandles() {
    UsedUp usedUp;
    for (std::size_t handles = 0; handles < 3; ++handles) {
        usedUp.giveBack(handles);
        RWLock lock;
        endUnless(lock.Initialize() == VEXA_FAILURE, "fails", handles);
        endUnless(hasNoHandle(lock), "has no handles", handles);
        endUnless(usedUp.takeTheRest() == handles, "leaves none open", handles);

        usedUp.giveBack(handles);
        RWLock* made = &lock;
        endUnless(rwlock_create(&made) == VEXA_FAILURE, "is not created", handles);
        endUnless(made == &lock, "leaves the caller's pointer", handles);
        endUnless(usedUp.takeTheRest() == handles, "leaves none open when created", handles);
    }
    usedUp.giveBack(3);
    RWLock lock;
    endUnless(lock.Initialize() == VEXA_SUCCESS, "succeeds", 3);
    endUnless(usedUp.takeTheRest() == 0, "takes all", 3);
    lock.Cleanup();
    endUnless(usedUp.takeTheRest() == 3, "gives all back", 3);
    std::_Exit(0);
}

TEST(RWLockInitialize, WithTooFewHandlesFailsAndLeavesNoneOpen) {
    EXPECT_EXIT(makeLocksWithTooFewHandles(), testing::ExitedWithCode(0), "");
}

}  // namespace

}  // namespace vexa::test

#endif
