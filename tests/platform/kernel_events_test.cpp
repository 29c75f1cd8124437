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
using platform::Reset;
using platform::resetEvent;
using platform::setEvent;
using platform::waitFor;
using platform::WaitResult;

class Event : public testing::TestWithParam<Naming> {
protected:
    static OwnHandle make(Reset reset, bool isSignalled) {
        const WideString name = newObjectName();
        return OwnHandle{platform::createEvent(
            reset, isSignalled, GetParam() == Naming::Named ? name.c_str() : nullptr, nullptr)};
    }
};
INSTANTIATE_TEST_SUITE_P(Table, Event, testing::Values(Naming::Unnamed, Naming::Named), namingOf);

TEST_P(Event, StartsAsItIsAskedFor) {
    for (const Reset reset : {Reset::Manual, Reset::Automatic}) {
        EXPECT_EQ(waitFor(make(reset, true).get(), 0), WaitResult::Signalled);
        EXPECT_EQ(waitFor(make(reset, false).get(), 0), WaitResult::TimedOut);
    }
}

TEST_P(Event, LetsEverybodyPassUntilItIsResetByHand) {
    const OwnHandle event = make(Reset::Manual, false);

    EXPECT_TRUE(setEvent(event.get()));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(waitFor(event.get(), 0), WaitResult::Signalled);
    EXPECT_TRUE(resetEvent(event.get()));
    EXPECT_EQ(waitFor(event.get(), 0), WaitResult::TimedOut);
}

TEST_P(Event, LetsOnePassWhereItResetsItself) {
    const OwnHandle event = make(Reset::Automatic, false);

    EXPECT_TRUE(setEvent(event.get()));
    EXPECT_EQ(waitFor(event.get(), 0), WaitResult::Signalled);
    EXPECT_EQ(waitFor(event.get(), 0), WaitResult::TimedOut);
}

TEST_P(Event, IsSignalledOnceHoweverOftenItIsSet) {
    const OwnHandle event = make(Reset::Automatic, true);

    for (int i = 0; i < 3; ++i) EXPECT_TRUE(setEvent(event.get()));
    EXPECT_EQ(waitFor(event.get(), 0), WaitResult::Signalled);
    EXPECT_EQ(waitFor(event.get(), 0), WaitResult::TimedOut);
}

TEST_P(Event, LosesItsSignalToAReset) {
    const OwnHandle event = make(Reset::Automatic, true);

    EXPECT_TRUE(resetEvent(event.get()));
    EXPECT_TRUE(resetEvent(event.get()));
    EXPECT_EQ(waitFor(event.get(), 0), WaitResult::TimedOut);
}

TEST_P(Event, IsWaitedForAsLongAsIsAsked) {
    const OwnHandle event = make(Reset::Automatic, false);
    WaitResult result = WaitResult::Failed;

    const std::uint32_t time = millisecondsOf([&] { result = waitFor(event.get(), 60); });

    EXPECT_EQ(result, WaitResult::TimedOut);
    EXPECT_GE(time, 40U);  // the clock of Windows moves in steps of up to 16
    EXPECT_LT(time, kLimit);
}

TEST_P(Event, EndsAWaitWithoutALimit) {
    const OwnHandle event = make(Reset::Automatic, false);
    std::atomic<bool> isAtTheDoor = false;
    WaitResult result = WaitResult::Failed;
    std::thread waiter{[&] {
        isAtTheDoor = true;
        result = waitFor(event.get(), kNoTimeLimit);
    }};

    EXPECT_TRUE(comesTrue([&] { return isAtTheDoor.load(); }));
    EXPECT_TRUE(setEvent(event.get()));
    waiter.join();

    EXPECT_EQ(result, WaitResult::Signalled);
}

// Waiters of an event, and how many of them have passed.
class Waiters {
public:
    Waiters(Handle event, int count) {
        for (int i = 0; i < count; ++i) {
            threads_.emplace_back([this, event] {
                ++waiting_;
                if (waitFor(event, kLimit) == WaitResult::Signalled) ++passed_;
            });
        }
        comesTrue([&] { return waiting_ == count; });
    }
    ~Waiters() {
        for (std::thread& thread : threads_) thread.join();
    }
    [[nodiscard]] int passed() const { return passed_; }

private:
    std::atomic<int> waiting_{0};
    std::atomic<int> passed_{0};
    std::vector<std::thread> threads_;
};

TEST_P(Event, WakesAllWhereItIsResetByHand) {
    constexpr int kWaiters = 6;
    const OwnHandle event = make(Reset::Manual, false);
    const Waiters waiters{event.get(), kWaiters};
    EXPECT_EQ(waiters.passed(), 0);

    EXPECT_TRUE(setEvent(event.get()));

    EXPECT_TRUE(comesTrue([&] { return waiters.passed() == kWaiters; }));
}

TEST_P(Event, WakesOneAtATimeWhereItResetsItself) {
    constexpr int kWaiters = 6;
    const OwnHandle event = make(Reset::Automatic, false);
    const Waiters waiters{event.get(), kWaiters};

    for (int sets = 1; sets <= kWaiters; ++sets) {
        EXPECT_TRUE(setEvent(event.get()));
        EXPECT_TRUE(comesTrue([&] { return waiters.passed() >= sets; }));
        for (int i = 0; i < 100; ++i) std::this_thread::yield();
        EXPECT_EQ(waiters.passed(), sets);
    }
    EXPECT_EQ(waitFor(event.get(), 0), WaitResult::TimedOut);
}

TEST_P(Event, IsNoMutexAndNoMapping) {
    const OwnHandle event = make(Reset::Manual, true);

    EXPECT_FALSE(releaseMutex(event.get()));
    EXPECT_EQ(mapView(event.get()), nullptr);
    EXPECT_EQ(waitFor(event.get(), 0), WaitResult::Signalled);
}
}  // namespace

}  // namespace vexa::test
