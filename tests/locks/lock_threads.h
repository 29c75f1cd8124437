#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <latch>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace vexa::test {

/// What only a broken lock lets pass.
inline constexpr std::chrono::seconds kDeadline{30};
/// How long a thread that has to wait is seen to wait.
inline constexpr std::chrono::milliseconds kWatch{50};

/// Looks at a condition until it holds. @return whether it did within the deadline
template <class Condition>
bool comesTrue(Condition condition, std::chrono::milliseconds within = kDeadline) {
    const auto end = std::chrono::steady_clock::now() + within;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// Ends the program where the test that has it does not end: its own thread may be the one that waits.
class Watchdog {
public:
    Watchdog() : thread_([this] { watch(); }) {}
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    ~Watchdog() {
        {
            const std::lock_guard guard{mutex_};
            isOver_ = true;
        }
        over_.notify_one();
        thread_.join();
    }

private:
    void watch() {
        std::unique_lock guard{mutex_};
        if (over_.wait_for(guard, 3 * kDeadline, [this] { return isOver_; })) return;
        std::fputs("a test waits for ever\n", stderr);
        std::abort();
    }

    std::mutex mutex_;
    std::condition_variable over_;
    bool isOver_ = false;
    std::thread thread_;
};

/// A thread of a test that may have to wait.
class Worker {
public:
    explicit Worker(std::function<void()> action)
        : action_(std::move(action)), thread_([this] {
              action_();
              isDone_ = true;
          }) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    // The locks of the test go next: a thread that still waits for one would not find it.
    ~Worker() {
        if (!isDoneInTime()) {
            std::fputs("a thread waits for ever\n", stderr);
            std::abort();
        }
        thread_.join();
    }

    [[nodiscard]] bool isDoneInTime() const {
        return comesTrue([this] { return isDone_.load(); });
    }

    /// Whether the thread has to wait, as far as can be seen.
    [[nodiscard]] bool waits() const {
        return !comesTrue([this] { return isDone_.load(); }, kWatch);
    }

private:
    std::function<void()> action_;
    std::atomic<bool> isDone_ = false;
    std::thread thread_;
};

/// What an action gives in a thread of its own.
template <class Action>
auto inAnotherThread(Action action) {
    decltype(action()) result{};
    {
        const Worker worker{[&] { result = action(); }};
    }
    return result;
}

inline constexpr int kThreads = 8;

/// Runs an action in all threads at once; its argument is the thread's number.
template <class Action>
void inAllThreads(Action action) {
    const Watchdog watchdog;
    std::latch start{kThreads};
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back([&, number] {
            start.arrive_and_wait();
            action(number);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

/// Where two threads wait for each other so as to go on at the same moment, as often as they like.
class Rendezvous {
public:
    /// @param late  steps to go on late by
    void meet(int late = 0) {
        const int meeting = arrivals_++ / 2;
        for (int spins = 1; arrivals_ < 2 * (meeting + 1); ++spins) {
            // Not at once: a thread that yields has to be woken, and the other goes on alone.
            if (spins % 2'000 == 0) std::this_thread::yield();
        }
        for (int i = 0; i < late; ++i) std::atomic_signal_fence(std::memory_order_seq_cst);
    }

private:
    std::atomic<int> arrivals_ = 0;
};

/// Lets two threads, 0 and 1, act at the same moment and then one of them look, again and again for a
/// while. Now and then one is late, so that they run side by side in every way.
template <class Act, class Look>
void sideBySide(Act act, Look look) {
    constexpr std::chrono::milliseconds kWhile{300};
    constexpr int kMostLate = 100;
    const auto end = std::chrono::steady_clock::now() + kWhile;
    Rendezvous rendezvous;
    std::atomic<bool> isOver = false;

    const auto work = [&](std::size_t mine) {
        for (int round = 1; !isOver; ++round) {
            const bool isLate = (mine == 1) == (round / kMostLate % 2 == 1);
            rendezvous.meet(isLate ? round % kMostLate : 0);
            act(mine, round);
            rendezvous.meet();
            if (mine == 0) {
                look(round);
                isOver = std::chrono::steady_clock::now() > end;
            }
            rendezvous.meet();
        }
    };
    const Watchdog watchdog;
    std::thread other{[&] { work(1); }};
    work(0);
    other.join();
}

}  // namespace vexa::test
