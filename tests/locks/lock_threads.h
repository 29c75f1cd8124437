#pragma once

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <latch>
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

}  // namespace vexa::test
