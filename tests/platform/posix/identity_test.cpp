#include "platform/identity.h"

#include "tests/platform/posix/child_process.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sched.h>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::currentProcessId;
using platform::currentThreadId;
using platform::processorCount;

std::uint32_t threadIdOfTheKernel() {
    return static_cast<std::uint32_t>(syscall(SYS_gettid));
}

std::uint32_t processIdOfTheKernel() {
    return static_cast<std::uint32_t>(syscall(SYS_getpid));
}

bool areTheKernels() {
    return currentThreadId() == threadIdOfTheKernel() &&
           currentProcessId() == processIdOfTheKernel();
}

TEST(CurrentThreadId, IsTheKernels) {
    std::uint32_t other = 0;
    std::uint32_t otherOfTheKernel = 0;
    std::thread{[&] {
        other = currentThreadId();
        otherOfTheKernel = threadIdOfTheKernel();
    }}.join();

    EXPECT_EQ(currentThreadId(), threadIdOfTheKernel());
    EXPECT_EQ(currentThreadId(), threadIdOfTheKernel());  // also once it is known
    EXPECT_EQ(other, otherOfTheKernel);
    EXPECT_NE(other, currentThreadId());
}

TEST(CurrentProcessId, IsTheKernelsInEveryThread) {
    bool isTheSame = false;
    std::thread{[&] { isTheSame = currentProcessId() == processIdOfTheKernel(); }}.join();

    EXPECT_EQ(currentProcessId(), processIdOfTheKernel());
    EXPECT_TRUE(isTheSame);
}

// What the parent found out is not true of the child.
TEST(Identity, IsItsOwnInAForkedChild) {
    ASSERT_TRUE(areTheKernels());

    Child child{[] {
        const bool isOwn = areTheKernels();
        Child grandchild{[] { return areTheKernels() ? 0 : 1; }};
        return isOwn && grandchild.exitCode() == 0 ? 0 : 1;
    }};

    EXPECT_EQ(child.exitCode(), 0);
    EXPECT_TRUE(areTheKernels());
}

// The child's one thread goes on from a thread of the parent that is not its first.
TEST(Identity, IsItsOwnInAChildThatAnotherThreadForked) {
    int exitCode = -1;
    std::thread{[&] {
        EXPECT_TRUE(areTheKernels());
        Child child{[] { return areTheKernels() ? 0 : 1; }};
        exitCode = child.exitCode();
        EXPECT_TRUE(areTheKernels());
    }}.join();

    EXPECT_EQ(exitCode, 0);
}

// ---- Processors --------------------------------------------------------------------------------

/// Processors that the system lists; 0 where it lists none.
std::uint32_t listedProcessors() {
    std::ifstream list("/proc/cpuinfo");
    std::uint32_t count = 0;
    for (std::string line; std::getline(list, line);) {
        if (line.rfind("processor", 0) == 0 && std::isdigit(line.back())) ++count;
    }
    return count;
}

bool narrowMaskToOneProcessor() {
    cpu_set_t mask;
    if (sched_getaffinity(0, sizeof mask, &mask) != 0) return false;
    std::size_t first = 0;
    while (first < CPU_SETSIZE && !CPU_ISSET(first, &mask)) ++first;
    CPU_ZERO(&mask);
    CPU_SET(first, &mask);
    return sched_setaffinity(0, sizeof mask, &mask) == 0 &&
           sched_getaffinity(0, sizeof mask, &mask) == 0 && CPU_COUNT(&mask) == 1;
}

TEST(ProcessorCount, IsThatOfTheMachine) {
    if (listedProcessors() == 0) GTEST_SKIP() << "the system does not list its processors";

    EXPECT_EQ(processorCount(), listedProcessors());
}

// In a program of its own, as the first use may settle the answer.
TEST(ProcessorCountDeathTest, IsNotThatOfTheAffinityMask) {
    const std::uint32_t listed = listedProcessors();
    if (listed == 0) GTEST_SKIP() << "the system does not list its processors";
    GTEST_FLAG_SET(death_test_style, "threadsafe");

    EXPECT_EXIT(
        {
            const bool isNarrow = narrowMaskToOneProcessor();
            std::_Exit(isNarrow && processorCount() == listed ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace

}  // namespace vexa::test
