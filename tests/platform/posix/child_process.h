#pragma once

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): the compiler's name
extern "C" void __gcov_exit() __attribute__((weak));

namespace vexa::test {

/// Goes from one process to another, once or several times. Made before the fork.
class Signal {
public:
    Signal() noexcept : isMade_(pipe(ends_) == 0) {}
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() {
        if (!isMade_) return;
        close(ends_[0]);
        close(ends_[1]);
    }

    void give() const {
        const char byte = 1;
        while (write(ends_[1], &byte, 1) < 0 && errno == EINTR) {
        }
    }

    /// @return false where it does not come in time
    [[nodiscard]] bool await() const {
        constexpr int kMilliseconds = 20'000;
        pollfd end{ends_[0], POLLIN, 0};
        char byte = 0;
        return isMade_ && poll(&end, 1, kMilliseconds) == 1 && read(ends_[0], &byte, 1) == 1;
    }

private:
    int ends_[2]{-1, -1};
    bool isMade_;
};

/// A forked child that runs an action, whose result is its exit code, and nothing else. One that is
/// still there when this object goes is killed.
class Child {
public:
    template <class Action>
    explicit Child(Action action) : maker_(geteuid()), id_(fork()) {
        if (id_ == 0) end(static_cast<int>(action()));
    }
    Child(Child&& other) noexcept : maker_(other.maker_), id_(std::exchange(other.id_, -1)) {}
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    Child& operator=(Child&&) = delete;
    ~Child() { kill(); }

    [[nodiscard]] pid_t id() const { return id_; }

    /// The exit code; -1 for a child that did not come so far.
    int exitCode() {
        int status = 0;
        return await(status) && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// Returns when it is gone, and its locks with it.
    void kill() {
        if (id_ <= 0) return;
        ::kill(id_, SIGKILL);
        int status = 0;
        await(status);
    }

private:
    // Where the tests count which lines they run, a child that ends at once would take its counts along.
    // One that has become another user may not write them.
    [[noreturn]] void end(int code) const {
        if (__gcov_exit && geteuid() == maker_) __gcov_exit();
        _exit(code);
    }

    bool await(int& status) {
        const pid_t id = std::exchange(id_, -1);
        if (id <= 0) return false;
        pid_t ended = 0;
        do {
            ended = waitpid(id, &status, 0);
        } while (ended < 0 && errno == EINTR);
        return ended == id;
    }

    uid_t maker_;
    pid_t id_;
};

/// Waits to be killed; a test that fails to do that does not wait for ever.
inline int untilKilled() {
    sleep(60);
    return 1;
}

}  // namespace vexa::test
