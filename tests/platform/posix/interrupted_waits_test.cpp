#include "platform/identity.h"
#include "platform/kernel_objects.h"
#include "tests/platform/kernel_objects_support.h"
#include "vexakit/locks.h"

#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <ostream>
#include <pthread.h>
#include <string>
#include <thread>

#include <gtest/gtest.h>

// Signals of the host reach threads while they wait: a wait goes on, and ends when it should.

namespace vexa::test {

namespace {

using namespace vexa::platform;

// ---- Signals -----------------------------------------------------------------------------------

std::atomic<int> interruptions{0};

/// Lets SIGUSR1 interrupt system calls, and do nothing else.
class Interruptions {
public:
    Interruptions() {
        struct sigaction counts {};  // without SA_RESTART
        counts.sa_handler = [](int) { ++interruptions; };
        sigaction(SIGUSR1, &counts, &before_);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;
    ~Interruptions() { sigaction(SIGUSR1, &before_, nullptr); }

private:
    struct sigaction before_ {};
};

/// Whether a thread of this process sleeps in the kernel.
bool isAsleep(std::uint32_t thread) {
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(status, line);
    const std::size_t state = line.rfind(')') + 2;
    return state < line.size() && line[state] == 'S';
}

// ---- Doors -------------------------------------------------------------------------------------

/// What keeps a thread waiting until it is opened by who made it.
class Door {
public:
    Door() = default;
    Door(const Door&) = delete;
    Door& operator=(const Door&) = delete;
    virtual ~Door() = default;

    virtual void open() = 0;
    /// @return what the wait gives; what has no limit is passed at the end
    virtual WaitResult pass(std::uint32_t milliseconds) = 0;
};

class EventDoor : public Door {
public:
    explicit EventDoor(const VexaWChar* name)
        : event_(createEvent(Reset::Automatic, false, name, nullptr)) {}

    void open() override { setEvent(event_.get()); }
    WaitResult pass(std::uint32_t milliseconds) override {
        return waitFor(event_.get(), milliseconds);
    }

private:
    OwnHandle event_;
};

class MutexDoor : public Door {
public:
    explicit MutexDoor(const VexaWChar* name) : mutex_(createMutex(name, nullptr)) {
        waitFor(mutex_.get(), 0);
    }

    void open() override { releaseMutex(mutex_.get()); }
    WaitResult pass(std::uint32_t milliseconds) override {
        const WaitResult result = waitFor(mutex_.get(), milliseconds);
        releaseMutex(mutex_.get());
        return result;
    }

private:
    OwnHandle mutex_;
};

template <class Lock>
class LockDoor : public Door {
public:
    template <class... Arguments>
    explicit LockDoor(Arguments... arguments) : lock_(arguments...) {
        lock_.ObtainLock();
    }

    void open() override { lock_.ReleaseLock(); }
    WaitResult pass(std::uint32_t /*milliseconds*/) override {
        lock_.ObtainLock();
        lock_.ReleaseLock();
        return WaitResult::Signalled;
    }

private:
    Lock lock_;
};

class RWLockDoor : public Door {
public:
    RWLockDoor(int held, int wanted) : held_(held), wanted_(wanted) {
        lock_.Initialize();
        lock_.Claim(held_);
    }
    RWLockDoor(const RWLockDoor&) = delete;
    RWLockDoor& operator=(const RWLockDoor&) = delete;
    ~RWLockDoor() override { lock_.Cleanup(); }

    void open() override { lock_.Release(held_); }
    WaitResult pass(std::uint32_t /*milliseconds*/) override {
        lock_.Claim(wanted_);
        lock_.Release(wanted_);
        return WaitResult::Signalled;
    }

private:
    RWLock lock_;
    int held_;
    int wanted_;
};

struct DoorCase {
    const char* name;
    std::unique_ptr<Door> (*make)();
};

void PrintTo(const DoorCase& row, std::ostream* out) {
    *out << row.name;
}

constexpr int kToWrite = 0;
constexpr int kToRead = 1;

template <class Kind, auto... Arguments>
std::unique_ptr<Door> make() {
    return std::make_unique<Kind>(Arguments...);
}

template <class Kind, auto... Arguments>
std::unique_ptr<Door> makeNamed() {
    const WideString name = newObjectName();
    return std::make_unique<Kind>(name.c_str(), Arguments...);
}

constexpr DoorCase kDoorsWithALimit[] = {
    {"Event", &make<EventDoor, nullptr>},
    {"NamedEvent", &makeNamed<EventDoor>},
    {"Mutex", &make<MutexDoor, nullptr>},
    {"NamedMutex", &makeNamed<MutexDoor>},
};

constexpr DoorCase kDoorsWithoutALimit[] = {
    {"UnnamedMutexLock", &make<LockDoor<MutexLock>>},
    {"MutexLock", &makeNamed<LockDoor<MutexLock>>},
    {"InterProcessLock", &makeNamed<LockDoor<InterProcessLock>, nullptr, 0U>},
    {"WriterBehindAReader", &make<RWLockDoor, kToRead, kToWrite>},
    {"WriterBehindAWriter", &make<RWLockDoor, kToWrite, kToWrite>},
    {"ReaderBehindAWriter", &make<RWLockDoor, kToWrite, kToRead>},
};

// ---- Waits -------------------------------------------------------------------------------------

/// A thread before a door, which is interrupted again and again.
class Guest {
public:
    Guest(Door& door, std::uint32_t milliseconds)
        : thread_([this, &door, milliseconds] {
              id_ = currentThreadId();
              time_ = millisecondsOf([&] { result_ = door.pass(milliseconds); });
              isDone_ = true;
          }) {}
    Guest(const Guest&) = delete;
    Guest& operator=(const Guest&) = delete;
    ~Guest() { thread_.join(); }

    [[nodiscard]] bool waits() const {
        return comesTrue([this] { return id_ != 0 && (isDone_ || isAsleep(id_)); }) && !isDone_;
    }
    [[nodiscard]] bool isDone() const { return isDone_; }
    [[nodiscard]] bool isDoneInTime() const {
        return comesTrue([this] { return isDone(); });
    }
    [[nodiscard]] WaitResult result() const { return result_; }
    [[nodiscard]] std::uint32_t time() const { return time_; }

    /// Interrupts it in its sleep. @return false where it does not sleep any more
    bool interrupt() {
        if (!waits()) return false;
        const int before = interruptions;
        pthread_kill(thread_.native_handle(), SIGUSR1);
        return comesTrue([&] { return interruptions != before || isDone_; });
    }

private:
    std::atomic<std::uint32_t> id_{0};
    std::atomic<bool> isDone_{false};
    std::atomic<WaitResult> result_{WaitResult::Failed};
    std::atomic<std::uint32_t> time_{0};
    std::thread thread_;
};

class InterruptedWait : public testing::TestWithParam<DoorCase> {
protected:
    void SetUp() override {
#ifdef __SANITIZE_THREAD__
        GTEST_SKIP() << "this checker holds signals back";
#endif
    }

    void expectThatItGoesOnUntilTheDoorOpens(std::uint32_t milliseconds) {
        constexpr int kTimes = 200;
        Guest guest{*door_, milliseconds};
        int times = 0;
        while (times < kTimes && guest.interrupt()) ++times;

        EXPECT_EQ(times, kTimes);
        EXPECT_FALSE(guest.isDone());
        door_->open();
        EXPECT_TRUE(guest.isDoneInTime());
        EXPECT_EQ(guest.result(), WaitResult::Signalled);
    }

    const Interruptions interruptions_;
    const std::unique_ptr<Door> door_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(WithALimit, InterruptedWait, testing::ValuesIn(kDoorsWithALimit),
                         [](const auto& row) { return row.param.name; });
INSTANTIATE_TEST_SUITE_P(WithoutALimit, InterruptedWait, testing::ValuesIn(kDoorsWithoutALimit),
                         [](const auto& row) { return row.param.name; });

TEST_P(InterruptedWait, GoesOnUntilTheDoorOpens) {
    expectThatItGoesOnUntilTheDoorOpens(kNoTimeLimit);
}

class InterruptedWaitWithALimit : public InterruptedWait {};
INSTANTIATE_TEST_SUITE_P(Table, InterruptedWaitWithALimit, testing::ValuesIn(kDoorsWithALimit),
                         [](const auto& row) { return row.param.name; });

TEST_P(InterruptedWaitWithALimit, GoesOnUntilTheDoorOpens) {
    expectThatItGoesOnUntilTheDoorOpens(kLimit);
}

// A limit that started anew with each interruption would not be reached while they come.
TEST_P(InterruptedWaitWithALimit, EndsWithItsLimitThoughItIsInterruptedAllTheTime) {
    constexpr std::uint32_t kMilliseconds = 300;
    Guest guest{*door_, kMilliseconds};
    std::uint32_t times = 0;
    while (guest.interrupt()) ++times;

    EXPECT_TRUE(guest.isDoneInTime());
    EXPECT_GT(times, 10U);
    EXPECT_EQ(guest.result(), WaitResult::TimedOut);
    EXPECT_GE(guest.time(), kMilliseconds);
    EXPECT_LT(guest.time(), kLimit);
    door_->open();
}

}  // namespace

}  // namespace vexa::test
