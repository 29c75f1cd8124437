#pragma once

// The thread sanitizer holds signals back.
#if defined(__x86_64__) && defined(__linux__) && !defined(__SANITIZE_THREAD__)
#define VEXA_CAN_FAIL_CALLS
#endif

#ifdef VEXA_CAN_FAIL_CALLS

#include "tests/platform/posix/valgrind.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <initializer_list>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <optional>
#include <string>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <thread>
#include <ucontext.h>
#include <vector>

#include <gtest/gtest.h>

// Lets calls to the kernel fail in a thread: they are trapped on their way, and the handler of the trap
// gives them an error or makes them all the same, from a place that is not trapped.

// NOLINTBEGIN(readability-identifier-naming): as in C
extern "C" {
/// A call to the kernel that no filter of this file traps: it comes back to `vexaUntrappedReturn`.
long vexaUntrappedCall(long number, long a, long b, long c, long d, long e, long f);
extern const char vexaUntrappedReturn[];
}
// NOLINTEND(readability-identifier-naming)

asm(R"(
    .pushsection .text.vexaUntrappedCall, "axG", @progbits, vexaUntrappedCall, comdat
    .weak vexaUntrappedCall
    .hidden vexaUntrappedCall
    .type vexaUntrappedCall, @function
vexaUntrappedCall:
    mov %rdi, %rax
    mov %rsi, %rdi
    mov %rdx, %rsi
    mov %rcx, %rdx
    mov %r8, %r10
    mov %r9, %r8
    mov 8(%rsp), %r9
    syscall
    .weak vexaUntrappedReturn
    .hidden vexaUntrappedReturn
vexaUntrappedReturn:
    ret
    .popsection
)");

namespace vexa::test {

enum class SystemCall {
    Any,  // of the following
    Open,
    Status,
    SetMode,
    SetSize,
    Reserve,
    MapFile,
    LockByte,
    Link,
    Unlink,
    // not among `Any`
    MapMemory,
    SleepOnWord,
};

struct Fault {
    SystemCall call;
    /// Which of these calls, counted from 1.
    int nth;
    int error;
    /// Whether all later ones fail, too.
    bool isLasting = false;
};

namespace faults {

struct TrappedCall {
    long number;
    SystemCall call;
};

inline constexpr std::array kTrappedCalls = {
    TrappedCall{SYS_open, SystemCall::Open},
    TrappedCall{SYS_openat, SystemCall::Open},
    TrappedCall{SYS_stat, SystemCall::Status},
    TrappedCall{SYS_fstat, SystemCall::Status},
    TrappedCall{SYS_lstat, SystemCall::Status},
    TrappedCall{SYS_newfstatat, SystemCall::Status},
    TrappedCall{SYS_statx, SystemCall::Status},
    TrappedCall{SYS_fchmod, SystemCall::SetMode},
    TrappedCall{SYS_ftruncate, SystemCall::SetSize},
    TrappedCall{SYS_fallocate, SystemCall::Reserve},
    TrappedCall{SYS_mmap, SystemCall::MapFile},
    TrappedCall{SYS_fcntl, SystemCall::LockByte},
    TrappedCall{SYS_link, SystemCall::Link},
    TrappedCall{SYS_linkat, SystemCall::Link},
    TrappedCall{SYS_unlink, SystemCall::Unlink},
    TrappedCall{SYS_unlinkat, SystemCall::Unlink},
    TrappedCall{SYS_futex, SystemCall::SleepOnWord},
};

using Arguments = std::array<long, 6>;

inline std::optional<SystemCall> callOf(long number, const Arguments& arguments) {
    for (const TrappedCall& trapped : kTrappedCalls) {
        if (trapped.number != number) continue;
        const bool isOfMemory = number == SYS_mmap && (arguments[3] & MAP_ANONYMOUS) != 0;
        return isOfMemory ? SystemCall::MapMemory : trapped.call;
    }
    return std::nullopt;
}

/// A fault and how often its calls have been made.
struct Watched {
    Fault fault;
    int calls = 0;

    [[nodiscard]] bool happened() const { return calls >= fault.nth; }

    bool fails(SystemCall call) {
        const bool isAny = call != SystemCall::MapMemory && call != SystemCall::SleepOnWord;
        if (fault.call != call && !(fault.call == SystemCall::Any && isAny)) return false;
        ++calls;
        return fault.isLasting ? happened() : calls == fault.nth;
    }
};

/// What is to fail in this thread; null where nothing is.
inline thread_local std::vector<Watched>* watched = nullptr;

/// 0 where the call is to be made.
inline int errorOf(std::optional<SystemCall> call) {
    int error = 0;
    if (!watched || !call) return error;
    for (Watched& each : *watched) {
        if (each.fails(*call) && error == 0) error = each.fault.error;
    }
    return error;
}

/// The address sanitizer's runtime makes calls of its own, wherever its books need another page, and ends
/// the process where it gets none. Those are not of what is tested.
inline bool isOfSanitizer([[maybe_unused]] const void* caller) {
#ifdef __SANITIZE_ADDRESS__
    Dl_info place{};
    return dladdr(caller, &place) != 0 && std::strstr(place.dli_fname, "libasan");
#else
    return false;
#endif
}

inline void onTrap(int /*signal*/, siginfo_t* info, void* context) {
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    const Arguments arguments = {registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                                 registers[REG_R10], registers[REG_R8],  registers[REG_R9]};
    const auto& [a, b, c, d, e, f] = arguments;
    const long number = info->si_syscall;
    const int error = isOfSanitizer(info->si_call_addr) ? 0 : errorOf(callOf(number, arguments));
    registers[REG_RAX] = error != 0 ? -error : vexaUntrappedCall(number, a, b, c, d, e, f);
}

/// Traps the calls from here to the end of the thread. @return whether the system lets us
inline bool trapCalls() {
    const auto past = reinterpret_cast<std::uintptr_t>(&vexaUntrappedReturn);
    const auto lowHalf = static_cast<std::uint32_t>(past);
    const auto highHalf = static_cast<std::uint32_t>(past >> 32);
    const auto load = [](std::size_t offset) {
        return sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
    };
    const auto unlessEqualSkip = [](std::uint32_t value, std::uint8_t steps) {
        return sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, steps);
    };
    const auto end = [](std::uint32_t action) { return sock_filter BPF_STMT(BPF_RET, action); };

    constexpr std::size_t kFrom = offsetof(seccomp_data, instruction_pointer);
    std::vector<sock_filter> filter = {load(kFrom), unlessEqualSkip(lowHalf, 3),
                                       load(kFrom + sizeof lowHalf), unlessEqualSkip(highHalf, 1),
                                       end(SECCOMP_RET_ALLOW)};
    filter.push_back(load(offsetof(seccomp_data, nr)));
    for (const TrappedCall& trapped : kTrappedCalls) {
        filter.push_back(unlessEqualSkip(static_cast<std::uint32_t>(trapped.number), 1));
        filter.push_back(end(SECCOMP_RET_TRAP));
    }
    filter.push_back(end(SECCOMP_RET_ALLOW));

    struct sigaction action {};
    action.sa_sigaction = &onTrap;
    action.sa_flags = SA_SIGINFO;
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    return sigaction(SIGSYS, &action, nullptr) == 0 &&
           prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace faults

/// Whether the system lets us trap calls.
inline bool callsCanFail() {
    if (isUnderValgrind()) return false;
    bool can = false;
    std::thread{[&] { can = faults::trapCalls(); }}.join();
    return can;
}

/// Runs an action in a thread of its own, whose calls to the kernel fail as is asked for.
/// @return whether the last of the faults happened
template <class Action>
bool runWithFaults(std::initializer_list<Fault> wanted, Action action) {
    std::vector<faults::Watched> all;
    for (const Fault& fault : wanted) all.push_back({fault});
    std::thread{[&] {
        const bool isTrapping = faults::trapCalls();
        EXPECT_TRUE(isTrapping);
        faults::watched = &all;
        action();
        faults::watched = nullptr;
    }}.join();

    return all.back().happened();
}

/// Runs a step with each error in the first call, the second, … until one is not reached. The step
/// says whether its fault happened. @return the calls that failed
template <class Step>
int withEachFault(std::initializer_list<int> errors, Step step, SystemCall call = SystemCall::Any) {
    int points = 0;
    for (const int error : errors) {
        for (int nth = 1;; ++nth) {
            const testing::ScopedTrace trace(
                __FILE__, __LINE__,
                "error " + std::to_string(error) + " in call " + std::to_string(nth));
            if (!step(Fault{call, nth, error})) break;
            ++points;
        }
    }
    testing::Test::RecordProperty("faults", points);
    return points;
}

/// Tests that let calls fail; left out where the system does not let them.
class WithSystemCallFaults : public testing::Test {
protected:
    void SetUp() override {
        if (!callsCanFail()) GTEST_SKIP() << "the system traps no calls";
    }
};

}  // namespace vexa::test

#endif
