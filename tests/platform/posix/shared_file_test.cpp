#include "platform/posix/shared_file.h"

#include "tests/platform/posix/child_process.h"
#include "tests/platform/posix/shared_file_support.h"

#include <chrono>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <ostream>
#include <string>
#include <sys/stat.h>
#include <sys/time.h>
#include <utility>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr unsigned char kWritten = 0x77;

bool isUnderstoodAsTheSame(const OwnFile& one, const OwnFile& other) {
    blockOf(one)[5] = kWritten;
    return one->isSameFile(*other) && blockOf(other)[5] == kWritten;
}

// ---- First and last ----------------------------------------------------------------------------

TEST(SharedFile, IsInitialisedByItsFirstUserAlone) {
    const OwnPath path;
    Initialisations made;
    const OwnFile first = openFile(path, made);
    const OwnFile second = openFile(path, made);
    ASSERT_TRUE(first && second);

    EXPECT_EQ(made.count, 1);
    EXPECT_TRUE(made.wereZeros);
    EXPECT_TRUE(isUnderstoodAsTheSame(first, second));
    EXPECT_TRUE(first->isOwn());
}

TEST(SharedFile, GoesWithItsLastUser) {
    const OwnPath path;
    OwnFile first = openFile(path);
    OwnFile second = openFile(path);

    first.reset();
    EXPECT_TRUE(path.exists());
    second.reset();
    EXPECT_FALSE(path.exists());
}

// Who leaves looks whether somebody else is there, and may not drop in on the others by that.
TEST(SharedFile, IsKeptByThoseWhoStayHoweverOthersComeAndGo) {
    const OwnPath path;
    Initialisations made;
    OwnFile stays = openFile(path, made);
    for (int i = 0; i < 20; ++i) {
        OwnFile next = openFile(path, made);
        ASSERT_TRUE(next && isUnderstoodAsTheSame(stays, next));
        const OwnFile passing = openFile(path, made);
        ASSERT_TRUE(passing);
        stays = std::move(next);
    }
    EXPECT_EQ(made.count, 1);
}

TEST(SharedFile, IsANewOneAfterItsLastUser) {
    const OwnPath path;
    Initialisations made;
    OwnFile file = openFile(path, made);
    blockOf(file).fill(kWritten);
    file.reset();

    file = openFile(path, made);
    EXPECT_EQ(made.count, 2);
    EXPECT_TRUE(made.wereZeros);
}

// The memory alone keeps neither the name nor the place of a user.
TEST(SharedFile, IsNotKeptByMemoryThatStays) {
    const OwnPath path;
    const OwnFile left = openFile(path);
    left->leave();
    EXPECT_FALSE(path.exists());
    blockOf(left).fill(kWritten);

    Initialisations made;
    const OwnFile next = openFile(path, made);
    ASSERT_TRUE(next);
    EXPECT_EQ(made.count, 1);
    EXPECT_FALSE(left->isSameFile(*next));
    EXPECT_EQ(blockOf(next)[0], kInitialised);
    EXPECT_EQ(blockOf(left)[0], kWritten);
    left->leave();  // has been done
    EXPECT_TRUE(path.exists());
}

TEST(SharedFile, OfAnotherSizeIsNotOpenedAndNotSpoilt) {
    const OwnPath path;
    Initialisations made;
    const OwnFile file = openFile(path, made);
    for (const std::size_t size : {kBlockSize - 1, kBlockSize + 1, kBlockSize * 1000}) {
        EXPECT_EQ(openFile(path, made, 0600, size), nullptr);
    }
    EXPECT_EQ(made.count, 1);
    EXPECT_EQ(path.status()->st_size, static_cast<off_t>(kBlockSize));
    EXPECT_NE(openFile(path, made), nullptr);
}

TEST(SharedFile, ThatCannotBeInitialisedIsNone) {
    const OwnPath path;
    Initialisations made;
    made.fail = true;
    EXPECT_EQ(openFile(path, made), nullptr);

    made.fail = false;
    EXPECT_NE(openFile(path, made), nullptr);
    EXPECT_EQ(made.count, 2);
    EXPECT_TRUE(made.wereZeros);
}

TEST(SharedFile, ThatCannotBeInitialisedLeavesNothingBehind) {
    const OwnPath path;
    Initialisations made;
    made.fail = true;
    EXPECT_EQ(openFile(path, made), nullptr);

    EXPECT_FALSE(path.exists());
}

TEST(SharedFile, TakesAndGivesBackTheSameDescriptors) {
    const OwnPath path;
    const std::ptrdiff_t before = openDescriptors();
    {
        const OwnFile first = openFile(path);
        const OwnFile second = openFile(path);
        Initialisations made;
        EXPECT_EQ(openFile(path, made, 0600, 1), nullptr);
        EXPECT_EQ(openDescriptors(), before + 2);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(SharedFile, IsClosedByAnExec) {
    const OwnPath path;
    const OwnFile file = openFile(path);
    const ino_t inode = path.status()->st_ino;
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename());
        struct stat status {};
        if (fstat(descriptor, &status) != 0 || status.st_ino != inode) continue;
        ++found;
        EXPECT_TRUE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_EQ(found, 1);
}

// ---- Permissions -------------------------------------------------------------------------------

struct ModeCase {
    const char* name;
    mode_t mask;
    mode_t asked;
    mode_t given;
};

void PrintTo(const ModeCase& row, std::ostream* out) {
    *out << row.name;
}

class SharedFileMode : public testing::TestWithParam<ModeCase> {
protected:
    void SetUp() override { before_ = umask(GetParam().mask); }
    void TearDown() override { umask(before_); }

private:
    mode_t before_ = 0;
};
INSTANTIATE_TEST_SUITE_P(Table, SharedFileMode,
                         testing::Values(ModeCase{"UsualMask", 0022, 0666, 0666},
                                         ModeCase{"StrictMask", 0077, 0666, 0666},
                                         ModeCase{"MaskOfEverything", 0777, 0666, 0666},
                                         ModeCase{"NoMask", 0, 0600, 0600},
                                         ModeCase{"OfTheGroup", 0077, 0660, 0660},
                                         ModeCase{"BeyondPermissions", 0, 07666, 0666}),
                         [](const auto& row) { return row.param.name; });

TEST_P(SharedFileMode, IsAsAskedForWhateverTheMask) {
    const OwnPath path;
    Initialisations made;
    const OwnFile file = openFile(path, made, GetParam().asked);
    ASSERT_TRUE(file);

    EXPECT_EQ(path.status()->st_mode, S_IFREG | GetParam().given);
}

TEST(SharedFile, KeepsThePermissionsOfItsMaker) {
    const OwnPath path;
    Initialisations made;
    const OwnFile first = openFile(path, made, 0640);
    const OwnFile second = openFile(path, made, 0666);

    EXPECT_EQ(path.status()->st_mode & 07777U, 0640U);
}

// ---- Killed users ------------------------------------------------------------------------------

TEST(SharedFile, LeftByAKilledUserIsMadeNew) {
    const OwnPath path;
    const Signal isOpen;
    Child child{[&] {
        Initialisations made;
        const OwnFile file = openFile(path, made, 0600);
        blockOf(file).fill(kWritten);
        isOpen.give();
        return untilKilled();
    }};
    ASSERT_TRUE(isOpen.await());
    child.kill();
    EXPECT_TRUE(path.exists());

    Initialisations made;
    OwnFile next = openFile(path, made, 0644);
    ASSERT_TRUE(next);
    EXPECT_EQ(made.count, 1);
    EXPECT_TRUE(made.wereZeros);
    EXPECT_EQ(path.status()->st_mode & 07777U, 0644U);
    next.reset();
    EXPECT_FALSE(path.exists());
}

TEST(SharedFile, IsKeptByThoseWhoOutliveAKilledUser) {
    const OwnPath path;
    Initialisations made;
    const OwnFile file = openFile(path, made);
    const Signal isOpen;
    Child child{[&] {
        const OwnFile its = openFile(path);
        blockOf(its)[9] = kWritten;
        isOpen.give();
        return untilKilled();
    }};
    ASSERT_TRUE(isOpen.await());
    child.kill();

    const OwnFile next = openFile(path, made);
    ASSERT_TRUE(next);
    EXPECT_EQ(made.count, 1);
    EXPECT_EQ(blockOf(next)[9], kWritten);
}

TEST(SharedFile, OfAnotherProcessOutlivesItsMaker) {
    const OwnPath path;
    const Signal isOpen;
    const Signal mayEnd;
    OwnFile file = openFile(path);
    Child child{[&] {
        const OwnFile its = openFile(path);
        isOpen.give();
        return mayEnd.await() && blockOf(its)[0] == kWritten ? 0 : 1;
    }};
    ASSERT_TRUE(isOpen.await());
    blockOf(file)[0] = kWritten;
    file.reset();

    EXPECT_TRUE(path.exists());
    mayEnd.give();
    EXPECT_EQ(child.exitCode(), 0);
}

// ---- Forked children ---------------------------------------------------------------------------

TEST(SharedFile, IsNotTakenAwayByAChildThatInheritedIt) {
    const OwnPath path;
    Initialisations made;
    OwnFile file = openFile(path, made);
    Child child{[&] {
        if (file->isOwn()) return 1;
        file.reset();
        return path.exists() ? 0 : 2;
    }};
    EXPECT_EQ(child.exitCode(), 0);

    const OwnFile next = openFile(path, made);
    ASSERT_TRUE(next);
    EXPECT_EQ(made.count, 1);
    EXPECT_TRUE(isUnderstoodAsTheSame(file, next));
}

TEST(SharedFile, GoesWithItsLastUserThoughAChildHasInheritedIt) {
    const OwnPath path;
    OwnFile file = openFile(path);
    const Signal mayEnd;
    Child child{[&] {
        // The memory stays good, too, when somebody else makes the file anew.
        return mayEnd.await() && blockOf(file)[0] == kWritten ? 0 : 1;
    }};
    blockOf(file)[0] = kWritten;
    file.reset();
    EXPECT_FALSE(path.exists());

    Initialisations made;
    const OwnFile next = openFile(path, made);
    EXPECT_EQ(made.count, 1);
    mayEnd.give();
    EXPECT_EQ(child.exitCode(), 0);
}

TEST(SharedFile, IsOpenedAnewByAChildForItself) {
    const OwnPath path;
    OwnFile file = openFile(path);
    const Signal isOpen;
    const Signal mayEnd;
    Child child{[&] {
        OwnFile its = openFile(path);
        file.reset();
        isOpen.give();
        if (!its || !mayEnd.await() || !path.exists()) return 1;
        its.reset();
        return path.exists() ? 2 : 0;
    }};
    ASSERT_TRUE(isOpen.await());
    file.reset();

    mayEnd.give();
    EXPECT_EQ(child.exitCode(), 0);
}

// ---- Interruptions -----------------------------------------------------------------------------

// A timer of the host may go off in the middle of any system call.
TEST(SharedFile, IsOpenedThoughSignalsArrive) {
    struct sigaction before {};
    struct sigaction nothing {};
    nothing.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGALRM, &nothing, &before), 0);
    constexpr itimerval kOften{{0, 25}, {0, 25}};
    ASSERT_EQ(setitimer(ITIMER_REAL, &kOften, nullptr), 0);

    const OwnPath path;
    int failures = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (std::chrono::steady_clock::now() < end) {
        if (!openFile(path)) ++failures;
    }

    constexpr itimerval kNever{};
    setitimer(ITIMER_REAL, &kNever, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_EQ(failures, 0);
}

}  // namespace

}  // namespace vexa::test
