#include "platform/kernel_objects.h"
#include "tests/platform/kernel_objects_support.h"
#include "tests/platform/posix/child_process.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::Reset;
using platform::resetEvent;
using platform::setEvent;
using platform::waitFor;
using platform::WaitResult;
using Clock = std::chrono::steady_clock;

constexpr int kProducers = 3;
constexpr int kConsumers = 3;
constexpr std::chrono::milliseconds kTime{1'000};

class Threads {
public:
    template <class Action>
    void add(int count, Action action) {
        for (int i = 0; i < count; ++i) threads_.emplace_back(action);
    }
    void join() {
        for (std::thread& thread : threads_) thread.join();
        threads_.clear();
    }

private:
    std::vector<std::thread> threads_;
};

class EventStress : public testing::TestWithParam<Naming> {
protected:
    static OwnHandle make(Reset reset) {
        const WideString name = newObjectName();
        return OwnHandle{platform::createEvent(
            reset, false, GetParam() == Naming::Named ? name.c_str() : nullptr, nullptr)};
    }
};
INSTANTIATE_TEST_SUITE_P(Table, EventStress, testing::Values(Naming::Unnamed, Naming::Named),
                         namingOf);

// Who sets has laid down a token before, who passes takes all that lie there: a token that nobody
// comes for is a signal lost.
TEST_P(EventStress, LosesNoSignal) {
    const OwnHandle event = make(Reset::Automatic);
    std::atomic<std::uint64_t> lying = 0;
    std::atomic<std::uint64_t> laid = 0;
    std::atomic<std::uint64_t> taken = 0;
    std::atomic<std::uint64_t> passes = 0;
    std::atomic<int> lost = 0;
    std::atomic<bool> isOver = false;

    Threads consumers;
    consumers.add(kConsumers, [&] {
        while (!isOver) {
            if (waitFor(event.get(), kLimit) != WaitResult::Signalled) ++lost;
            ++passes;
            taken += lying.exchange(0);
        }
    });
    Threads producers;
    producers.add(kProducers, [&] {
        const auto end = Clock::now() + kTime;
        while (Clock::now() < end) {
            ++laid;
            ++lying;
            setEvent(event.get());
            // Now and then all consumers have gone to sleep.
            if (laid % 64 == 0) std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
    });
    producers.join();
    EXPECT_TRUE(comesTrue([&] { return taken == laid; }));
    EXPECT_LE(passes, laid);

    isOver = true;
    for (int i = 0; i < kConsumers; ++i) {
        const std::uint64_t before = passes;
        setEvent(event.get());
        EXPECT_TRUE(comesTrue([&] { return passes > before; }));
    }
    consumers.join();
    EXPECT_EQ(lost, 0);
    EXPECT_GT(laid, 1'000U);
}

// Each signal is set when the one before has been taken, so it lets exactly one pass.
TEST_P(EventStress, LetsOnePassForEachSignal) {
    const OwnHandle go = make(Reset::Automatic);
    const OwnHandle done = make(Reset::Automatic);
    std::mutex turn;
    std::uint64_t sets = 0;
    std::atomic<std::uint64_t> setsSoFar = 0;
    std::atomic<std::uint64_t> passes = 0;
    std::atomic<int> doubled = 0;
    std::atomic<int> lost = 0;
    std::atomic<bool> isOver = false;

    Threads consumers;
    consumers.add(kConsumers, [&] {
        while (!isOver) {
            if (waitFor(go.get(), 100) != WaitResult::Signalled) continue;
            if (++passes != setsSoFar) ++doubled;
            setEvent(done.get());
        }
    });
    Threads producers;
    producers.add(kProducers, [&] {
        const auto end = Clock::now() + kTime;
        while (Clock::now() < end && lost == 0) {
            const std::lock_guard<std::mutex> guard(turn);
            setsSoFar = ++sets;
            setEvent(go.get());
            if (waitFor(done.get(), kLimit) != WaitResult::Signalled) ++lost;
        }
    });
    producers.join();
    isOver = true;
    consumers.join();

    EXPECT_EQ(doubled, 0);
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(passes, sets);
    EXPECT_GT(sets, 100U);
    EXPECT_EQ(waitFor(go.get(), 0), WaitResult::TimedOut);
}

// Some give up at the moment at which they would have been woken.
TEST_P(EventStress, LosesNoSignalToThoseWhoGiveUp) {
    const OwnHandle event = make(Reset::Automatic);
    std::atomic<std::uint64_t> passes = 0;
    std::atomic<bool> isOver = false;
    Threads consumers;
    consumers.add(kConsumers, [&] {
        for (std::uint32_t i = 0; !isOver; ++i) {
            if (waitFor(event.get(), i % 3) == WaitResult::Signalled) ++passes;
        }
    });

    std::uint64_t sets = 0;
    bool isTaken = true;
    for (const auto end = Clock::now() + kTime; isTaken && Clock::now() < end;) {
        setEvent(event.get());
        ++sets;
        isTaken = comesTrue([&] { return passes >= sets; });
    }
    isOver = true;
    consumers.join();

    EXPECT_TRUE(isTaken);
    EXPECT_EQ(passes, sets);
}

TEST_P(EventStress, WakesAllInEveryRound) {
    constexpr int kRounds = 300;
    const OwnHandle event = make(Reset::Manual);
    std::atomic<int> lost = 0;
    std::atomic<int> passes = 0;
    std::atomic<int> openRound = 0;
    Threads waiters;
    waiters.add(kConsumers, [&] {
        for (int round = 0; round < kRounds; ++round) {
            if (waitFor(event.get(), kLimit) != WaitResult::Signalled) ++lost;
            ++passes;
            openRound.wait(round);  // until the event is reset
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        if (round % 2 == 0) std::this_thread::yield();
        setEvent(event.get());
        ASSERT_TRUE(comesTrue([&] { return passes == kConsumers * (round + 1); }));
        resetEvent(event.get());
        openRound = round + 1;
        openRound.notify_all();
    }
    waiters.join();

    EXPECT_EQ(lost, 0);
    EXPECT_EQ(waitFor(event.get(), 0), WaitResult::TimedOut);
}

// ---- Between processes -------------------------------------------------------------------------

TEST(NamedEventBetweenProcesses, WakesAWaiter) {
    const WideString name = newObjectName();
    const OwnHandle go{platform::createEvent(Reset::Automatic, false, name.c_str(), nullptr)};
    const WideString answerName = newObjectName();
    const OwnHandle answer{
        platform::createEvent(Reset::Automatic, false, answerName.c_str(), nullptr)};
    constexpr int kRounds = 2'000;
    Child child{[&] {
        const OwnHandle its{platform::createEvent(Reset::Automatic, false, name.c_str(), nullptr)};
        for (int i = 0; i < kRounds; ++i) {
            // One handle is its own, the other came with the fork.
            if (waitFor(its.get(), kLimit) != WaitResult::Signalled) return 1;
            if (!setEvent(answer.get())) return 2;
        }
        return 0;
    }};

    for (int i = 0; i < kRounds; ++i) {
        ASSERT_TRUE(setEvent(go.get()));
        ASSERT_EQ(waitFor(answer.get(), kLimit), WaitResult::Signalled);
    }
    EXPECT_EQ(child.exitCode(), 0);
}

TEST(NamedEventBetweenProcesses, KeepsItsSignalWhereWaitersAreKilled) {
    const WideString name = newObjectName();
    const OwnHandle event{platform::createEvent(Reset::Automatic, false, name.c_str(), nullptr)};
    for (int round = 0; round < 20; ++round) {
        const Signal isAtTheDoor;
        Child child{[&] {
            isAtTheDoor.give();
            return static_cast<int>(waitFor(event.get(), platform::kNoTimeLimit));
        }};
        ASSERT_TRUE(isAtTheDoor.await());
        if (round % 2 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(2));
        child.kill();

        EXPECT_TRUE(setEvent(event.get()));
        EXPECT_EQ(waitFor(event.get(), 0), WaitResult::Signalled);
        EXPECT_EQ(waitFor(event.get(), 0), WaitResult::TimedOut);
    }
}

}  // namespace

}  // namespace vexa::test
