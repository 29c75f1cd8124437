#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>
#include <csignal>
#include <grp.h>
#include <poll.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace vexa::test {

using Clock = std::chrono::steady_clock;

/// How long what has to happen may take.
constexpr std::chrono::seconds kPatience{20};

/// Waits for a condition. @return whether it became true
template <class Condition>
bool becomesTrue(Condition condition) {
    const auto end = Clock::now() + kPatience;
    while (!condition()) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::microseconds{200});
    }
    return true;
}

#ifdef _WIN32

inline std::uint32_t kernelThreadId() {
    return GetCurrentThreadId();
}

inline std::uint32_t kernelProcessId() {
    return GetCurrentProcessId();
}

/// Ends this process with its parent; not on this system.
inline void endWithParent() {}

/// Gives this process the rights of a user, for good; not on this system.
inline bool becomeUser(std::uint32_t /*user*/) {
    return false;
}

inline std::filesystem::path ownExecutable() {
    std::wstring path(32'768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

/// A process that was started, and the ends of the pipes to its standard input and output.
class RawProcess {
public:
    explicit RawProcess(const std::filesystem::path& program) {
        HANDLE childInput = nullptr;
        HANDLE childOutput = nullptr;
        if (!CreatePipe(&childInput, &toChild_, nullptr, 0) ||
            !CreatePipe(&fromChild_, &childOutput, nullptr, 0)) {
            return;
        }
        SetHandleInformation(childInput, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
        SetHandleInformation(childOutput, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);

        STARTUPINFOW start{};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdInput = childInput;
        start.hStdOutput = childOutput;
        start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
        PROCESS_INFORMATION made{};
        if (CreateProcessW((program.wstring() + L".exe").c_str(), nullptr, nullptr, nullptr, TRUE,
                           0, nullptr, nullptr, &start, &made)) {
            CloseHandle(made.hThread);
            process_ = made.hProcess;
            id_ = made.dwProcessId;
        }
        CloseHandle(childInput);
        CloseHandle(childOutput);
    }
    RawProcess(const RawProcess&) = delete;
    RawProcess& operator=(const RawProcess&) = delete;
    ~RawProcess() {
        closeInput();
        CloseHandle(fromChild_);
        if (process_) CloseHandle(process_);
    }

    [[nodiscard]] bool isStarted() const { return process_ != nullptr; }
    [[nodiscard]] std::uint32_t id() const { return id_; }

    bool write(const std::string& text) {
        DWORD written = 0;
        return WriteFile(toChild_, text.data(), static_cast<DWORD>(text.size()), &written,
                         nullptr) &&
               written == text.size();
    }

    /// Appends what can be read before the end of the time; false where nothing comes any more.
    bool read(std::string& text, Clock::time_point end) {
        DWORD available = 0;
        while (PeekNamedPipe(fromChild_, nullptr, 0, nullptr, &available, nullptr)) {
            if (available > 0) {
                std::string part(available, '\0');
                DWORD count = 0;
                if (!ReadFile(fromChild_, part.data(), available, &count, nullptr)) return false;
                text.append(part, 0, count);
                return true;
            }
            if (Clock::now() > end) return false;
            Sleep(1);
        }
        return false;
    }

    void closeInput() {
        if (toChild_) CloseHandle(toChild_);
        toChild_ = nullptr;
    }

    void kill() { TerminateProcess(process_, 9); }

    /// The exit code of a process that ended in time.
    std::optional<int> waitForEnd() {
        const auto patience = std::chrono::milliseconds{kPatience}.count();
        if (WaitForSingleObject(process_, static_cast<DWORD>(patience)) != WAIT_OBJECT_0) {
            return std::nullopt;
        }
        DWORD code = 0;
        GetExitCodeProcess(process_, &code);
        return static_cast<int>(code);
    }

private:
    HANDLE process_ = nullptr;
    std::uint32_t id_ = 0;
    HANDLE toChild_ = nullptr;
    HANDLE fromChild_ = nullptr;
};

#else

inline std::uint32_t kernelThreadId() {
    return static_cast<std::uint32_t>(syscall(SYS_gettid));
}

inline std::uint32_t kernelProcessId() {
    return static_cast<std::uint32_t>(syscall(SYS_getpid));
}

/// Ends this process with the thread that started it.
inline void endWithParent() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

/// Gives this process the rights of a user, for good.
inline bool becomeUser(std::uint32_t user) {
    const bool isChanged = setgroups(0, nullptr) == 0 && setgid(user) == 0 && setuid(user) == 0;
    endWithParent();  // a new user has to say so again
    return isChanged;
}

inline std::filesystem::path ownExecutable() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

/// A process that was started, and the end of the channel to its standard input and output. A socket:
/// unlike a pipe, it raises no signal once the process is gone.
class RawProcess {
public:
    explicit RawProcess(const std::filesystem::path& program) {
        int ends[2] = {-1, -1};
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return;
        channel_ = ends[0];

        std::string path = program.string();
        char* const arguments[] = {path.data(), nullptr};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        if (posix_spawn(&process_, path.c_str(), &actions, nullptr, arguments, environ) != 0) {
            process_ = 0;
        }
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
    }
    RawProcess(const RawProcess&) = delete;
    RawProcess& operator=(const RawProcess&) = delete;
    ~RawProcess() { close(channel_); }

    [[nodiscard]] bool isStarted() const { return process_ != 0; }
    [[nodiscard]] std::uint32_t id() const { return static_cast<std::uint32_t>(process_); }

    bool write(const std::string& text) {
        return send(channel_, text.data(), text.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(text.size());
    }

    /// Appends what can be read before the end of the time; false where nothing comes any more.
    bool read(std::string& text, Clock::time_point end) {
        for (;;) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
            pollfd channel{channel_, POLLIN, 0};
            const int ready = poll(&channel, 1, left > 0 ? static_cast<int>(left) : 0);
            if (ready < 0 && errno == EINTR) continue;
            if (ready <= 0) return false;

            char part[256];
            const ssize_t count = recv(channel_, part, sizeof part, 0);
            if (count <= 0) return false;
            text.append(part, static_cast<std::size_t>(count));
            return true;
        }
    }

    void closeInput() { shutdown(channel_, SHUT_WR); }

    void kill() { ::kill(process_, SIGKILL); }

    /// The exit code of a process that ended in time; that of a killed one is negative.
    std::optional<int> waitForEnd() {
        int status = 0;
        if (!becomesTrue([&] { return waitpid(process_, &status, WNOHANG) != 0; })) {
            return std::nullopt;
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t process_ = 0;
    int channel_ = -1;
};

#endif

/// A program that lies beside this one, running; it is spoken to in lines. Killed at the end.
class ChildProcess {
public:
    explicit ChildProcess(const std::string& program)
        : process_(ownExecutable().parent_path() / program) {}
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess() { kill(); }

    [[nodiscard]] bool isStarted() const { return process_.isStarted(); }
    [[nodiscard]] std::uint32_t id() const { return process_.id(); }

    bool send(const std::string& line) { return process_.write(line + '\n'); }

    /// The next line that comes in time.
    std::optional<std::string> receive(Clock::duration patience = kPatience) {
        const auto end = Clock::now() + patience;
        std::size_t length = 0;
        while ((length = received_.find('\n')) == std::string::npos) {
            if (!process_.read(received_, end)) return std::nullopt;
        }
        std::string line = received_.substr(0, length);
        received_.erase(0, length + 1);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        return line;
    }

    /// Ends the process where it stands, and waits until it is gone.
    void kill() {
        if (!isStarted() || hasEnded_) return;
        process_.kill();
        hasEnded_ = process_.waitForEnd().has_value();
    }

    /// Lets the process end by itself, as it does where no more lines come; its exit code.
    std::optional<int> end() {
        if (!isStarted()) return std::nullopt;
        process_.closeInput();
        const std::optional<int> code = process_.waitForEnd();
        hasEnded_ = code.has_value();
        return code;
    }

private:
    RawProcess process_;
    std::string received_;
    bool hasEnded_ = false;
};

}  // namespace vexa::test
