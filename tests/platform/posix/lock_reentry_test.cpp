#include "tests/platform/posix/system_call_faults.h"

#ifdef VEXA_CAN_FAIL_CALLS

#include "tests/locks/lock_threads.h"
#include "tests/support/named_locks.h"
#include "vexakit/locks.h"

#include <atomic>
#include <csignal>
#include <thread>
#include <ucontext.h>

#include <gtest/gtest.h>

// The one way in which a thread can come to own a lock while it is on its way to wait for it: a signal handler
// of that thread takes it. The thread is stepped through, so that this happens after each instruction.

namespace vexa::test {

namespace {

/// What happens to a thread after so many instructions.
struct Interruption {
    InterProcessLock& lock;
    std::atomic<int> instructionsLeft;
    std::atomic<bool> isReached{false};
    std::atomic<bool> isLockGivenBack{false};
    std::atomic<bool> isTaken{false};
};

std::atomic<Interruption*> current{nullptr};

// The processor raises the signal after the next instruction where the flag is set.
void onInstruction(int /*signal*/, siginfo_t* /*info*/, void* context) {
    constexpr greg_t kTrapFlag = 0x100;
    greg_t& flags = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_EFL];
    Interruption& interruption = *current;
    flags |= kTrapFlag;
    if (interruption.instructionsLeft-- > 0) return;

    flags &= ~kTrapFlag;
    if (interruption.isLockGivenBack) return;  // the thread has waited for it before
    interruption.isReached = true;
    while (!interruption.isLockGivenBack) {
    }
    interruption.isTaken = interruption.lock.TryLock();
}

class LockReentry : public NamedLockTest {
protected:
    void SetUp() override {
        struct sigaction steps {};
        steps.sa_sigaction = &onInstruction;
        steps.sa_flags = SA_SIGINFO;
        ASSERT_EQ(sigaction(SIGTRAP, &steps, &before_), 0);
        if (!canStep()) GTEST_SKIP() << "no step is seen here";
    }
    void TearDown() override { sigaction(SIGTRAP, &before_, nullptr); }

    /// Another thread obtains the lock, which this one has until the other has made so many steps.
    /// @return whether the other's handler took it then
    bool obtainInterruptedAfter(int instructions) {
        Interruption interruption{lock_, instructions};
        current = &interruption;
        EXPECT_TRUE(lock_.TryLock());
        bool isKept = false;
        std::thread other{[&] {
            raise(SIGTRAP);
            lock_.ObtainLock();
            if (interruption.isTaken) lock_.ReleaseLock();
            isKept = !isFreeForOthers(lock_);
            lock_.ReleaseLock();
        }};
        while (!interruption.isReached) std::this_thread::yield();
        lock_.ReleaseLock();
        interruption.isLockGivenBack = true;
        other.join();
        EXPECT_TRUE(isKept);
        EXPECT_TRUE(isFreeForOthers(lock_));
        return interruption.isTaken;
    }

    InterProcessLock lock_{wideName.c_str(), nullptr, 0};

private:
    // A processor that is imitated may not have the flag.
    bool canStep() {
        constexpr int kMany = 1'000'000;
        Interruption interruption{lock_, kMany};
        interruption.isLockGivenBack = true;
        current = &interruption;
        raise(SIGTRAP);
        const bool areSeen = interruption.instructionsLeft < kMany - 1;
        interruption.instructionsLeft = 0;
        return areSeen;
    }

    struct sigaction before_ {};
};

// Once the thread is counted in, the lock is handed on to it, and no handler gets it any more.
TEST_F(LockReentry, IsCountedWhereverAHandlerTakesTheLock) {
    const Watchdog watchdog;
    int steps = 1;
    while (obtainInterruptedAfter(steps) && !HasFailure()) ++steps;
    EXPECT_GT(steps, 20);
}

}  // namespace

}  // namespace vexa::test

#endif
