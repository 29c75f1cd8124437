#include "platform/kernel_objects.h"
#include "tests/platform/posix/child_process.h"
#include "tests/platform/posix/shared_file_support.h"

#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

// What others may have put into the place of an object, and places where there is no room for one.

namespace vexa::test {

namespace {

namespace fs = std::filesystem;

void writeFile(const char* path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string readFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Uses a file as a stranger, who knows how that is done.
class StrangersUse {
public:
    explicit StrangersUse(const char* path) : file_(::open(path, O_RDWR | O_CLOEXEC)) {
        struct flock users {};
        users.l_type = F_RDLCK;
        users.l_whence = SEEK_SET;
        users.l_start = 1;
        users.l_len = 1;
        isUsed_ = fcntl(file_, F_OFD_SETLK, &users) == 0;
    }
    StrangersUse(const StrangersUse&) = delete;
    StrangersUse& operator=(const StrangersUse&) = delete;
    ~StrangersUse() { close(file_); }

    explicit operator bool() const { return isUsed_; }

private:
    int file_;
    bool isUsed_ = false;
};

// ---- What is no file ---------------------------------------------------------------------------

struct PlantedCase {
    const char* name;
    void (*plant)(const char* path);
};

void PrintTo(const PlantedCase& row, std::ostream* out) {
    *out << row.name;
}

void plantSocket(const char* path) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{AF_UNIX, {}};
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(socket);
}

class PlantedObject : public testing::TestWithParam<PlantedCase> {};
INSTANTIATE_TEST_SUITE_P(
    Table, PlantedObject,
    testing::Values(
        PlantedCase{"Folder", [](const char* path) { EXPECT_EQ(mkdir(path, 0777), 0); }},
        PlantedCase{"Pipe", [](const char* path) { EXPECT_EQ(mkfifo(path, 0666), 0); }},
        PlantedCase{"Socket", &plantSocket},
        PlantedCase{"LinkToItself", [](const char* path) { EXPECT_EQ(symlink(path, path), 0); }},
        PlantedCase{"LinkToAFolder",
                    [](const char* path) { EXPECT_EQ(symlink("/dev/shm", path), 0); }}),
    [](const auto& row) { return row.param.name; });

TEST_P(PlantedObject, GivesNoObjectAndStays) {
    const OwnPath path;
    GetParam().plant(path.data());
    const mode_t kind = path.status()->st_mode;
    const std::ptrdiff_t before = openDescriptors();
    Initialisations made;

    EXPECT_EQ(inAnotherThread([&] { return openFile(path, made); }), nullptr);

    EXPECT_EQ(made.count, 0);
    EXPECT_EQ(path.status()->st_mode, kind);
    EXPECT_EQ(openDescriptors(), before);
}

TEST(PlantedLink, IsNotFollowedToAFile) {
    const OwnPath path;
    const OwnPath target;
    const std::string kText(kBlockSize, 'x');
    writeFile(target.data(), kText);
    ASSERT_EQ(symlink(target.data(), path.data()), 0);

    EXPECT_EQ(openFile(path), nullptr);
    EXPECT_EQ(readFile(target.data()), kText);
    EXPECT_TRUE(S_ISLNK(path.status()->st_mode));
}

TEST(PlantedLink, IsNotFollowedToAnObject) {
    const OwnPath path;
    const OwnPath target;
    const OwnFile object = openFile(target);
    ASSERT_EQ(symlink(target.data(), path.data()), 0);

    EXPECT_EQ(openFile(path), nullptr);
}

TEST(PlantedLink, DoesNotSayWhereAFileIsMade) {
    const OwnPath path;
    const OwnPath target;
    ASSERT_EQ(symlink(target.data(), path.data()), 0);

    EXPECT_EQ(openFile(path), nullptr);
    EXPECT_FALSE(target.exists());
}

// ---- Files that nobody uses --------------------------------------------------------------------

struct LeftoverCase {
    const char* name;
    std::string bytes;
    off_t size;
};

void PrintTo(const LeftoverCase& row, std::ostream* out) {
    *out << row.name;
}

class LeftoverFile : public testing::TestWithParam<LeftoverCase> {};
INSTANTIATE_TEST_SUITE_P(
    Table, LeftoverFile,
    testing::Values(LeftoverCase{"Empty", "", 0}, LeftoverCase{"Short", "xyz", 3},
                    LeftoverCase{"Garbage", std::string(kBlockSize, '\xEE'), kBlockSize},
                    LeftoverCase{"Long", std::string(5000, '\xEE'), 5000},
                    LeftoverCase{"Sparse", "", kBlockSize},
                    LeftoverCase{"SparseAndLong", "", off_t{1} << 40}),
    [](const auto& row) { return row.param.name; });

TEST_P(LeftoverFile, IsMadeNewAndNotTrusted) {
    const OwnPath path;
    writeFile(path.data(), GetParam().bytes);
    ASSERT_EQ(truncate(path.data(), GetParam().size), 0);

    Initialisations made;
    OwnFile file = openFile(path, made);
    ASSERT_TRUE(file);
    EXPECT_EQ(made.count, 1);
    EXPECT_TRUE(made.wereZeros);
    EXPECT_EQ(path.status()->st_size, static_cast<off_t>(kBlockSize));
    EXPECT_GT(path.status()->st_blocks, 0);  // nothing is left to be allocated by a touch
    file.reset();
    EXPECT_FALSE(path.exists());
}

// ---- Files that a stranger uses ----------------------------------------------------------------

TEST(StrangersFile, OfAnotherSizeIsNotTouched) {
    for (const std::size_t size : {std::size_t{0}, kBlockSize - 1, kBlockSize + 1}) {
        const OwnPath path;
        const std::string bytes(size, '\xEE');
        writeFile(path.data(), bytes);
        const StrangersUse use(path.data());
        ASSERT_TRUE(use);

        EXPECT_EQ(openFile(path), nullptr) << size;
        EXPECT_EQ(readFile(path.data()), bytes);
    }
}

struct ObjectCase {
    const char* name;
    platform::Handle (*make)(const VexaWChar* name);
};

void PrintTo(const ObjectCase& row, std::ostream* out) {
    *out << row.name;
}

platform::Handle makeEvent(const VexaWChar* name) {
    return platform::createEvent(platform::Reset::Automatic, true, name, nullptr);
}

platform::Handle makeMutex(const VexaWChar* name) {
    return platform::createMutex(name, nullptr);
}

class StrangersObject : public testing::TestWithParam<ObjectCase> {
protected:
    // The size of a true one, so that nothing but its bytes tell that it is none.
    StrangersObject() : path_(name_) {
        const OwnHandle object{GetParam().make(name_.c_str())};
        if (const auto status = path_.status()) size_ = status->st_size;
    }

    WideString name_ = newObjectName();
    OwnPath path_;
    off_t size_ = 0;
};
INSTANTIATE_TEST_SUITE_P(Table, StrangersObject,
                         testing::Values(ObjectCase{"Event", &makeEvent},
                                         ObjectCase{"Mutex", &makeMutex}),
                         [](const auto& row) { return row.param.name; });

TEST_P(StrangersObject, OfGarbageIsNone) {
    ASSERT_GT(size_, 0);
    for (const char filling : {'\0', '\xEE', '\xFF'}) {
        const std::string bytes(static_cast<std::size_t>(size_), filling);
        writeFile(path_.data(), bytes);
        const StrangersUse use(path_.data());
        ASSERT_TRUE(use);

        EXPECT_EQ(GetParam().make(name_.c_str()), nullptr);
        EXPECT_EQ(readFile(path_.data()), bytes);
    }
}

// ---- No room -----------------------------------------------------------------------------------

enum Answer : int { AsItShouldBe, NotSo, NotPossible };

bool writeWhole(const char* path, const std::string& text) {
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool isWritten =
        write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(file);
    return isWritten;
}

// An ordinary user may have mounts of its own where it is root in a namespace of users.
bool haveMountsOfItsOwn() {
    if (unshare(CLONE_NEWNS) == 0) return true;
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 &&
           writeWhole("/proc/self/uid_map", "0 " + user + " 1") &&
           writeWhole("/proc/self/setgroups", "deny") &&
           writeWhole("/proc/self/gid_map", "0 " + group + " 1");
}

/// Puts a folder of a few pages into the place of the shared memory's, for this process alone.
bool haveLittleSharedMemory() {
    return haveMountsOfItsOwn() &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/dev/shm", "tmpfs", 0, "size=64k") == 0;
}

void fillSharedMemory() {
    const int file = ::open("/dev/shm/filling", O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    const std::string page(4096, 'x');
    while (write(file, page.data(), page.size()) > 0) {
    }
    close(file);
}

/// Runs an action where little shared memory is; a signal such as SIGBUS is no answer.
template <class Action>
int whereSharedMemoryIsShort(Action action) {
    Child child{[&] {
        if (!haveLittleSharedMemory()) return NotPossible;
        if (!openFile(OwnPath{})) return NotSo;  // there is room as yet
        return action();
    }};
    return child.exitCode();
}

#define EXPECT_AS_IT_SHOULD_BE(asked)                                               \
    if (const int answer = (asked); answer == NotPossible) {                        \
        GTEST_SKIP() << "no mount namespace can be made here";                      \
    } else {                                                                        \
        EXPECT_EQ(answer, AsItShouldBe) << "-1 is a child that a signal has ended"; \
    }

TEST(FullSharedMemory, HasNoRoomForAnObjectAndNothingIsLeft) {
    EXPECT_AS_IT_SHOULD_BE(whereSharedMemoryIsShort([] {
        const OwnPath path;
        fillSharedMemory();
        const bool isRefused = !openFile(path) && !makeEvent(newObjectName().c_str()) &&
                               !makeMutex(newObjectName().c_str());
        return isRefused && !path.exists() ? AsItShouldBe : NotSo;
    }));
}

TEST(FullSharedMemory, HasNoRoomForALargeObject) {
    EXPECT_AS_IT_SHOULD_BE(whereSharedMemoryIsShort([] {
        const OwnPath path;
        Initialisations made;
        const bool isRefused = !openFile(path, made, 0600, std::size_t{1} << 20);
        return isRefused && made.count == 0 && !path.exists() ? AsItShouldBe : NotSo;
    }));
}

TEST(FullSharedMemory, IsNotTouchedThroughASparseFileThatNobodyUses) {
    EXPECT_AS_IT_SHOULD_BE(whereSharedMemoryIsShort([] {
        const OwnPath path;
        writeFile(path.data(), "");
        if (truncate(path.data(), kBlockSize) != 0) return NotSo;
        fillSharedMemory();
        return openFile(path) ? NotSo : AsItShouldBe;
    }));
}

TEST_P(StrangersObject, OfNothingIsNotTouchedWhereSharedMemoryIsFull) {
    EXPECT_AS_IT_SHOULD_BE(whereSharedMemoryIsShort([&] {
        writeFile(path_.data(), "");
        if (truncate(path_.data(), size_) != 0) return NotSo;
        const StrangersUse use(path_.data());
        if (!use) return NotSo;
        fillSharedMemory();
        return GetParam().make(name_.c_str()) ? NotSo : AsItShouldBe;
    }));
}

TEST(FullSharedMemory, KeepsWhatIsThere) {
    EXPECT_AS_IT_SHOULD_BE(whereSharedMemoryIsShort([] {
        const OwnPath path;
        const OwnFile first = openFile(path);
        fillSharedMemory();
        const OwnFile second = openFile(path);
        if (!first || !second) return NotSo;
        blockOf(first)[3] = 0x33;
        return blockOf(second)[3] == 0x33 ? AsItShouldBe : NotSo;
    }));
}

}  // namespace

}  // namespace vexa::test
