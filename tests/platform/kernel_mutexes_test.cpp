#include "platform/kernel_objects.h"
#include "tests/platform/kernel_objects_support.h"

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::Handle;
using platform::kNoTimeLimit;
using platform::mapView;
using platform::releaseMutex;
using platform::resetEvent;
using platform::setEvent;
using platform::waitFor;
using platform::WaitResult;

class Mutex : public testing::TestWithParam<Naming> {
protected:
    // Both handles are of one mutex; the second is the same where it has no name.
    void SetUp() override {
        const WideString name = newObjectName();
        const bool isNamed = GetParam() == Naming::Named;
        first_.reset(platform::createMutex(isNamed ? name.c_str() : nullptr, nullptr));
        if (isNamed) second_.reset(platform::createMutex(name.c_str(), nullptr));
        ASSERT_NE(first_, nullptr);
    }

    [[nodiscard]] Handle mutex() const { return first_.get(); }
    [[nodiscard]] Handle sameMutex() const { return second_ ? second_.get() : first_.get(); }

    [[nodiscard]] WaitResult waitElsewhere(std::uint32_t milliseconds) const {
        return inAnotherThread([&] {
            const WaitResult result = waitFor(sameMutex(), milliseconds);
            if (result == WaitResult::Signalled) releaseMutex(sameMutex());
            return result;
        });
    }

    void abandonAtDepth(int depth) const {
        std::thread{[&] {
            for (int i = 0; i < depth; ++i) EXPECT_EQ(waitFor(mutex(), 0), WaitResult::Signalled);
        }}.join();
    }

private:
    OwnHandle first_;
    OwnHandle second_;
};
INSTANTIATE_TEST_SUITE_P(Table, Mutex, testing::Values(Naming::Unnamed, Naming::Named), namingOf);

TEST_P(Mutex, IsFreeAtFirst) {
    EXPECT_FALSE(releaseMutex(mutex()));
    EXPECT_EQ(waitElsewhere(0), WaitResult::Signalled);
}

TEST_P(Mutex, KeepsOthersOutUntilTheLastRelease) {
    constexpr int kDepth = 3;
    for (int i = 0; i < kDepth; ++i) EXPECT_EQ(waitFor(mutex(), 0), WaitResult::Signalled);

    for (int i = 0; i < kDepth; ++i) {
        EXPECT_EQ(waitElsewhere(0), WaitResult::TimedOut);
        EXPECT_TRUE(releaseMutex(sameMutex()));
    }
    EXPECT_EQ(waitElsewhere(0), WaitResult::Signalled);
    EXPECT_FALSE(releaseMutex(mutex()));
}

TEST_P(Mutex, IsReleasedByItsOwnerAlone) {
    EXPECT_EQ(waitFor(mutex(), kNoTimeLimit), WaitResult::Signalled);

    EXPECT_FALSE(inAnotherThread([&] { return releaseMutex(mutex()); }));
    EXPECT_EQ(waitElsewhere(0), WaitResult::TimedOut);
    EXPECT_TRUE(releaseMutex(mutex()));
}

TEST_P(Mutex, IsWaitedForAsLongAsIsAsked) {
    EXPECT_EQ(waitFor(mutex(), 0), WaitResult::Signalled);
    WaitResult result = WaitResult::Failed;

    const std::uint32_t time = millisecondsOf([&] { result = waitElsewhere(60); });

    EXPECT_EQ(result, WaitResult::TimedOut);
    EXPECT_GE(time, 40U);
    EXPECT_TRUE(releaseMutex(mutex()));
}

TEST_P(Mutex, GoesToAWaiterWhenItIsReleased) {
    EXPECT_EQ(waitFor(mutex(), 0), WaitResult::Signalled);
    std::atomic<bool> isAtTheDoor = false;
    WaitResult result = WaitResult::Failed;
    std::thread waiter{[&] {
        isAtTheDoor = true;
        result = waitFor(sameMutex(), kNoTimeLimit);
        releaseMutex(sameMutex());
    }};

    EXPECT_TRUE(comesTrue([&] { return isAtTheDoor.load(); }));
    EXPECT_TRUE(releaseMutex(mutex()));
    waiter.join();

    EXPECT_EQ(result, WaitResult::Signalled);
}

TEST_P(Mutex, IsAbandonedOnceByAThreadThatEnds) {
    for (const int depth : {1, 3}) {
        abandonAtDepth(depth);
        EXPECT_FALSE(releaseMutex(mutex()));  // nobody's yet

        EXPECT_EQ(waitFor(sameMutex(), 0), WaitResult::Abandoned);
        EXPECT_EQ(waitElsewhere(0), WaitResult::TimedOut);
        EXPECT_TRUE(releaseMutex(mutex()));  // at depth 1, whatever it was before
        EXPECT_FALSE(releaseMutex(mutex()));
        EXPECT_EQ(waitElsewhere(0), WaitResult::Signalled);
    }
}

TEST_P(Mutex, IsReenteredByWhoTookItAbandoned) {
    abandonAtDepth(2);

    EXPECT_EQ(waitFor(mutex(), 0), WaitResult::Abandoned);
    EXPECT_EQ(waitFor(sameMutex(), 0), WaitResult::Signalled);
    EXPECT_TRUE(releaseMutex(mutex()));
    EXPECT_EQ(waitElsewhere(0), WaitResult::TimedOut);
    EXPECT_TRUE(releaseMutex(mutex()));
    EXPECT_EQ(waitElsewhere(0), WaitResult::Signalled);
}

TEST_P(Mutex, AbandonedWakesWhoWaits) {
    std::atomic<bool> isHeld = false;
    std::atomic<bool> isAtTheDoor = false;
    std::thread owner{[&] {
        waitFor(mutex(), 0);
        isHeld = true;
        comesTrue([&] { return isAtTheDoor.load(); });
    }};
    EXPECT_TRUE(comesTrue([&] { return isHeld.load(); }));

    isAtTheDoor = true;
    EXPECT_EQ(waitFor(sameMutex(), kNoTimeLimit), WaitResult::Abandoned);
    owner.join();
    EXPECT_TRUE(releaseMutex(mutex()));
}

TEST_P(Mutex, IsHadWithinALimit) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "this checker does not see a lock that is taken within a limit";
#endif
    std::atomic<bool> isHeld = false;
    std::atomic<bool> mayEnd = false;
    std::thread owner{[&] {
        waitFor(mutex(), kLimit);
        isHeld = true;
        comesTrue([&] { return mayEnd.load(); });
        releaseMutex(mutex());
        waitFor(mutex(), kLimit);  // and abandons it, maybe after the others have had it
    }};
    EXPECT_TRUE(comesTrue([&] { return isHeld.load(); }));
    EXPECT_EQ(waitElsewhere(1), WaitResult::TimedOut);

    mayEnd = true;
    WaitResult result = waitFor(sameMutex(), kLimit);
    if (result == WaitResult::Signalled) {
        EXPECT_TRUE(releaseMutex(mutex()));
        owner.join();
        result = waitFor(sameMutex(), kLimit);
    } else {
        owner.join();
    }
    EXPECT_EQ(result, WaitResult::Abandoned);
    EXPECT_TRUE(releaseMutex(mutex()));
    EXPECT_EQ(waitElsewhere(1), WaitResult::Signalled);
}

TEST_P(Mutex, LetsOneThreadInAtATime) {
    constexpr int kThreads = 4;
    constexpr int kVisits = 1'000;
    int visits = 0;  // not atomic: the mutex guards it
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            const Handle handle = i % 2 == 0 ? mutex() : sameMutex();
            for (int visit = 0; visit < kVisits; ++visit) {
                waitFor(handle, kNoTimeLimit);
                ++visits;
                releaseMutex(handle);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(visits, kThreads * kVisits);
}

TEST_P(Mutex, IsNoEventAndNoMapping) {
    EXPECT_FALSE(setEvent(mutex()));
    EXPECT_FALSE(resetEvent(mutex()));
    EXPECT_EQ(mapView(mutex()), nullptr);
    EXPECT_EQ(waitElsewhere(0), WaitResult::Signalled);
}
}  // namespace

}  // namespace vexa::test
