#include "platform/posix/shared_file.h"
#include "tests/platform/posix/child_process.h"
#include "tests/platform/posix/shared_file_support.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <new>
#include <random>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::SharedFile;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kUsers = 4;
using Numbers = std::array<std::atomic<std::uint32_t>, kUsers>;

static_assert(std::atomic<std::uint32_t>::is_always_lock_free, "processes share them");

/// What each user says of itself, apart from the object: the number that it has left there, 0 while it
/// does not use the object.
struct Board {
    Numbers numbers{};
    std::atomic<std::uint32_t> failures{0};
    std::atomic<std::uint32_t> spoilt{0};
    std::atomic<std::uint32_t> parted{0};
    std::atomic<std::uint32_t> rounds{0};
    std::atomic<std::uint32_t> meetings{0};
    std::atomic<bool> isOver{false};
};

class SharedBoard {
public:
    SharedBoard()
        : memory_(mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                       -1, 0)) {
        if (memory_ != MAP_FAILED) board_ = new (memory_) Board;
    }
    SharedBoard(const SharedBoard&) = delete;
    SharedBoard& operator=(const SharedBoard&) = delete;
    ~SharedBoard() {
        if (board_) munmap(memory_, sizeof(Board));
    }

    explicit operator bool() const { return board_ != nullptr; }
    Board* operator->() const { return board_; }
    Board& operator*() const { return *board_; }

private:
    void* memory_;
    Board* board_ = nullptr;
};

bool leaveZeros(void* /*memory*/, const void* /*how*/) noexcept {
    return true;
}

OwnFile openNumbers(const OwnPath& path) {
    return SharedFile::open(path.object(), sizeof(Numbers), 0600, &leaveZeros, nullptr);
}

// A number that stands on the board before and after the look was in the object all the while.
void meetOthers(Board& board, const Numbers& object, std::size_t self) {
    for (std::size_t other = 0; other < kUsers; ++other) {
        const std::uint32_t said = board.numbers[other];
        const std::uint32_t found = object[other];
        if (other == self || said == 0 || board.numbers[other] != said) continue;
        ++board.meetings;
        if (found != said) ++board.parted;
    }
}

void useOnce(Board& board, const OwnPath& path, std::size_t self, std::uint32_t number) {
    const OwnFile file = openNumbers(path);
    if (!file) {
        ++board.failures;
        return;
    }
    auto& object = *static_cast<Numbers*>(file->memory());
    object[self] = number;
    board.numbers[self] = number;
    meetOthers(board, object, self);
    std::this_thread::yield();
    meetOthers(board, object, self);
    if (object[self] != number) ++board.spoilt;
    board.numbers[self] = 0;
    object[self] = 0;
    ++board.rounds;
}

void useUntilOver(Board& board, const OwnPath& path, std::size_t self) {
    for (std::uint32_t number = 1; !board.isOver; ++number) useOnce(board, path, self, number);
}

// Comes and goes until it is killed, wherever that meets it.
int passThrough(const OwnPath& path) {
    for (;;) {
        const OwnFile file = openNumbers(path);
    }
}

// While some users come and go and others are killed at it, those who meet have one object, and it is
// not made new under them.
TEST(SharedFileStorm, NeverPartsThoseWhoUseOneName) {
    const OwnPath path;
    const SharedBoard board;
    ASSERT_TRUE(board);
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    int kills = 0;
    {
        Child first{[&] { return useUntilOver(*board, path, 0), 0; }};
        Child second{[&] { return useUntilOver(*board, path, 1), 0; }};
        std::vector<std::thread> threads;
        for (std::size_t user = 2; user < kUsers; ++user) {
            threads.emplace_back([&, user] { useUntilOver(*board, path, user); });
        }
        // Longer where a busy machine has not let enough happen.
        const auto start = Clock::now();
        const auto isEnough = [&] {
            return kills > 10 && board->rounds > 100U && board->meetings > 10U;
        };
        const auto goesOn = [&] {
            const auto time = Clock::now() - start;
            return time < std::chrono::seconds(2) ||
                   (!isEnough() && time < std::chrono::seconds(30));
        };
        for (; goesOn(); ++kills) {
            Child one{[&] { return passThrough(path); }};
            Child other{[&] { return passThrough(path); }};
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 5'000));
            one.kill();
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 1'000));
        }
        board->isOver = true;
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(first.exitCode(), 0);
        EXPECT_EQ(second.exitCode(), 0);
    }

    EXPECT_EQ(board->failures, 0U);
    EXPECT_EQ(board->parted, 0U);
    EXPECT_EQ(board->spoilt, 0U);
    EXPECT_GT(kills, 10);
    EXPECT_GT(board->rounds, 100U);
    EXPECT_GT(board->meetings, 10U);

    // Whoever comes last finds nothing in the way, and leaves nothing.
    EXPECT_NE(openNumbers(path), nullptr);
    EXPECT_FALSE(path.exists());
}

// All want to be the first: the file is made many times over, and linked once.
TEST(SharedFileStorm, HasOneMakerHoweverManyComeAtOnce) {
    constexpr int kRounds = 300;
    std::array<OwnFile, kThreads> files;
    for (int round = 0; round < kRounds; ++round) {
        const OwnPath path;
        inAllThreads([&](int number) { files[static_cast<std::size_t>(number)] = openFile(path); });
        int makers = 0;
        for (OwnFile& file : files) {
            ASSERT_TRUE(file && file->isSameFile(*files.front()));
            makers += file->isNew() ? 1 : 0;
        }
        ASSERT_EQ(makers, 1);
        inAllThreads([&](int number) { files[static_cast<std::size_t>(number)].reset(); });
        ASSERT_FALSE(path.exists());
    }
}

}  // namespace

}  // namespace vexa::test
