#include "tests/platform/posix/child_process.h"
#include "tests/platform/posix/shared_file_support.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

// Objects between users of the machine. Only root can be several of them.

namespace vexa::test {

namespace {

constexpr uid_t kOne = 41'001;
constexpr uid_t kOther = 41'002;

bool become(uid_t user) {
    return setresgid(user, user, user) == 0 && setresuid(user, user, user) == 0;
}

class SharedFileOfUsers : public testing::Test {
protected:
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root can become several users";
        struct stat folder {};
        ASSERT_EQ(stat("/dev/shm", &folder), 0);
        if (!(folder.st_mode & S_ISVTX)) GTEST_SKIP() << "the folder is not sticky";
    }

    /// Runs an action as a user, who may end at once.
    template <class Action>
    static int as(uid_t user, Action action) {
        Child child{[&] { return become(user) ? action() : 100; }};
        return child.exitCode();
    }

    // Leaves a file of another user that nobody uses any more.
    void leaveBehind(mode_t mode) {
        const Signal isOpen;
        Child child{[&] {
            Initialisations made;
            const OwnFile file = become(kOne) ? openFile(path_, made, mode) : nullptr;
            if (file) isOpen.give();
            return untilKilled();
        }};
        ASSERT_TRUE(isOpen.await());
        child.kill();
        ASSERT_EQ(path_.status()->st_uid, kOne);
    }

    OwnPath path_;
};

// A sticky folder may refuse to open the files of others with O_CREAT.
TEST_F(SharedFileOfUsers, IsSharedByThemWhereItsMakerWantsThat) {
    const Signal isOpen;
    const Signal mayEnd;
    Child maker{[&] {
        Initialisations made;
        const OwnFile file = become(kOne) ? openFile(path_, made, 0666) : nullptr;
        if (file) isOpen.give();
        return file && mayEnd.await() && blockOf(file)[7] == 7 ? 0 : 1;
    }};
    ASSERT_TRUE(isOpen.await());

    EXPECT_EQ(as(kOther,
                 [&] {
                     Initialisations made;
                     const OwnFile file = openFile(path_, made, 0600);
                     if (!file || made.count != 0) return 1;
                     blockOf(file)[7] = 7;
                     return 0;
                 }),
              0);
    EXPECT_EQ(path_.status()->st_mode & 07777U, 0666U);
    mayEnd.give();
    EXPECT_EQ(maker.exitCode(), 0);
    EXPECT_FALSE(path_.exists());
}

TEST_F(SharedFileOfUsers, IsClosedToOthersWhereItsMakerWantsThat) {
    leaveBehind(0600);

    EXPECT_EQ(as(kOther, [&] { return openFile(path_) ? 1 : 0; }), 0);
    EXPECT_EQ(as(kOne, [&] { return openFile(path_) ? 0 : 1; }), 0);
}

// The last user may not remove the file of another one, but whoever comes next starts anew.
TEST_F(SharedFileOfUsers, IsMadeNewEachTimeThoughItCannotBeRemoved) {
    leaveBehind(0666);

    EXPECT_EQ(as(kOther,
                 [&] {
                     Initialisations made;
                     for (int i = 1; i <= 3; ++i) {
                         OwnFile file = openFile(path_, made);
                         if (!file || made.count != i || !made.wereZeros) return i;
                         blockOf(file).fill(0x55);
                         file.reset();
                         if (!path_.exists()) return 10;
                     }
                     return 0;
                 }),
              0);
    EXPECT_EQ(path_.status()->st_mode & 07777U, 0666U);  // its owner's choice

    EXPECT_EQ(as(kOne, [&] { return openFile(path_) ? 0 : 1; }), 0);
    EXPECT_FALSE(path_.exists());
}

// Whatever an object is to others, its maker has it.
TEST_F(SharedFileOfUsers, IsHadByItsMakerWhateverThePermissions) {
    for (const mode_t mode : {0000U, 0060U, 0400U, 0200U}) {
        const int result = as(kOne, [&] {
            Initialisations made;
            OwnFile file = openFile(path_, made, mode);
            if (!file) return path_.exists() ? 2 : 1;
            file.reset();
            return path_.exists() ? 3 : 0;
        });
        EXPECT_EQ(result, 0) << "mode " << std::oct << mode;
        unlink(path_.data());
    }
}

}  // namespace

}  // namespace vexa::test
