#include "tests/locks/lock_threads.h"
#include "vexakit/locks.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr std::uint64_t kBeyond32Bits = std::uint64_t{1} << 32;
constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

/// An object that is counted. It opens what its users do not see, and tells its end.
class Counted : public ReferenceCount {
public:
    using ReferenceCount::ReferenceCount;
    using ReferenceCount::SetRefs;

    explicit Counted(std::uint64_t count, int* ends) : ReferenceCount(count), ends_(ends) {}
    Counted(const Counted&) = default;
    Counted& operator=(const Counted&) = delete;
    ~Counted() override {
        if (ends_) ++*ends_;
    }

private:
    int* ends_ = nullptr;
};

template <class Type>
concept HasPublicSetRefs = requires(Type& counted) {
    counted.SetRefs(1);
};

static_assert(!HasPublicSetRefs<ReferenceCount> && !HasPublicSetRefs<IReferenceCount>);
static_assert(HasPublicSetRefs<Counted>);
static_assert(std::is_abstract_v<IReferenceCount>);
static_assert(std::has_virtual_destructor_v<IReferenceCount>);
static_assert(std::is_base_of_v<IReferenceCount, ReferenceCount>);
static_assert(!std::is_convertible_v<std::uint64_t, ReferenceCount>);

TEST(ReferenceCount, StartsAtTheReferenceOfItsMaker) {
    const ReferenceCount counted;

    EXPECT_EQ(counted.QueryRef(), 1U);
}

TEST(ReferenceCount, StartsAtAnyCount) {
    for (const std::uint64_t count :
         {std::uint64_t{0}, std::uint64_t{2}, kBeyond32Bits, kLargest}) {
        EXPECT_EQ(ReferenceCount{count}.QueryRef(), count);
    }
}

TEST(ReferenceCount, GivesTheNewCount) {
    ReferenceCount counted;

    EXPECT_EQ(counted.AddRef(), 2U);
    EXPECT_EQ(counted.AddRef(), 3U);
    EXPECT_EQ(counted.QueryRef(), 3U);
    EXPECT_EQ(counted.Release(), 2U);
    EXPECT_EQ(counted.Release(), 1U);
    EXPECT_EQ(counted.QueryRef(), 1U);
}

TEST(ReferenceCount, IsNotChangedByAQuestion) {
    const ReferenceCount counted{9};
    for (int i = 0; i < 3; ++i) EXPECT_EQ(counted.QueryRef(), 9U);
}

TEST(ReferenceCount, HasSixtyFourBits) {
    ReferenceCount counted{std::numeric_limits<std::uint32_t>::max()};

    EXPECT_EQ(counted.AddRef(), kBeyond32Bits);
    EXPECT_EQ(counted.QueryRef(), kBeyond32Bits);
    EXPECT_EQ(counted.Release(), 0xFFFFFFFFU);
}

TEST(ReferenceCount, LetsItsObjectLiveAtZero) {
    int ends = 0;
    auto* const counted = new Counted{1, &ends};

    EXPECT_EQ(counted->Release(), 0U);
    EXPECT_EQ(ends, 0);
    EXPECT_EQ(counted->QueryRef(), 0U);
    EXPECT_EQ(counted->AddRef(), 1U);
    delete counted;
    EXPECT_EQ(ends, 1);
}

TEST(ReferenceCount, WrapsAtBothEnds) {
    ReferenceCount counted{0};

    EXPECT_EQ(counted.Release(), kLargest);
    EXPECT_EQ(counted.QueryRef(), kLargest);
    EXPECT_EQ(counted.Release(), kLargest - 1);
    EXPECT_EQ(counted.AddRef(), kLargest);
    EXPECT_EQ(counted.AddRef(), 0U);
    EXPECT_EQ(counted.QueryRef(), 0U);
}

TEST(ReferenceCount, IsSetForTheCountOfBefore) {
    Counted counted{2};

    EXPECT_EQ(counted.SetRefs(5), 2U);
    EXPECT_EQ(counted.QueryRef(), 5U);
    EXPECT_EQ(counted.SetRefs(kLargest), 5U);
    EXPECT_EQ(counted.SetRefs(0), kLargest);
    EXPECT_EQ(counted.QueryRef(), 0U);
}

TEST(ReferenceCount, CountsThroughItsInterface) {
    int ends = 0;
    IReferenceCount* const counted = new Counted{1, &ends};

    EXPECT_EQ(counted->AddRef(), 2U);
    EXPECT_EQ(counted->QueryRef(), 2U);
    EXPECT_EQ(counted->Release(), 1U);
    delete counted;
    EXPECT_EQ(ends, 1);
}

// ---- Copies -------------------------------------------------------------------------------------

TEST(ReferenceCountCopy, StartsAtTheCountOfTheOther) {
    ReferenceCount counted{3};
    ReferenceCount copy{counted};

    EXPECT_EQ(copy.QueryRef(), 3U);
    EXPECT_EQ(copy.AddRef(), 4U);
    EXPECT_EQ(counted.QueryRef(), 3U);
    EXPECT_EQ(counted.Release(), 2U);
    EXPECT_EQ(copy.QueryRef(), 4U);
}

TEST(ReferenceCountCopy, AsksTheOtherForItsCount) {
    struct Claiming : ReferenceCount {
        std::uint64_t QueryRef() const override { return 77; }
    };
    const Claiming claiming;
    const ReferenceCount& counted = claiming;
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is what is looked at
    const ReferenceCount copy{counted};

    EXPECT_EQ(copy.QueryRef(), 77U);
}

// ---- Threads ------------------------------------------------------------------------------------

constexpr std::size_t kRounds = 10'000;
using Answers = std::vector<std::uint64_t>;

/// Whether the answers are `first` and those that follow it, each once.
bool areInARow(Answers answers, std::uint64_t first) {
    std::sort(answers.begin(), answers.end());
    Answers expected(answers.size());
    std::iota(expected.begin(), expected.end(), first);
    return answers == expected;
}

/// What an action gives in all threads, `kRounds` times in each; it gets a number of its own.
template <class Action>
Answers answersOfAllThreads(Action action) {
    Answers answers(kThreads * kRounds);
    inAllThreads([&](int number) {
        const std::size_t first = static_cast<std::size_t>(number) * kRounds;
        for (std::size_t i = first; i < first + kRounds; ++i) answers[i] = action(i);
    });
    return answers;
}

TEST(ReferenceCountThreads, AddEachToACountOfItsOwn) {
    ReferenceCount counted;

    EXPECT_TRUE(areInARow(answersOfAllThreads([&](std::size_t) { return counted.AddRef(); }), 2));
    EXPECT_EQ(counted.QueryRef(), 1 + kThreads * kRounds);
}

TEST(ReferenceCountThreads, ReleaseTheLastReferenceOnce) {
    ReferenceCount counted{kThreads * kRounds};

    EXPECT_TRUE(areInARow(answersOfAllThreads([&](std::size_t) { return counted.Release(); }), 0));
    EXPECT_EQ(counted.QueryRef(), 0U);
}

TEST(ReferenceCountThreads, GiveBackAllTheyTake) {
    ReferenceCount counted;
    std::atomic<int> zeros = 0;
    answersOfAllThreads([&](std::size_t) {
        counted.AddRef();
        if (counted.Release() == 0) ++zeros;
        return std::uint64_t{0};
    });

    EXPECT_EQ(zeros, 0);
    EXPECT_EQ(counted.QueryRef(), 1U);
}

TEST(ReferenceCountThreads, GetEachCountThatWasSetOnce) {
    Counted counted{0};
    Answers answers = answersOfAllThreads([&](std::size_t i) { return counted.SetRefs(i + 1); });
    answers.push_back(counted.QueryRef());

    EXPECT_TRUE(areInARow(answers, 0));
}

TEST(ReferenceCountThreads, NeverGetTheSameCountOfBefore) {
    Counted counted{0};
    std::array<std::uint64_t, 2> before{};
    int lost = 0;

    sideBySide(
        [&](std::size_t mine, int round) {
            before[mine] = counted.SetRefs(2 * static_cast<std::uint64_t>(round) + mine);
        },
        [&](int /*round*/) {
            if (before[0] == before[1]) ++lost;
        });

    EXPECT_EQ(lost, 0);
}

/// In a cache line of its own.
struct alignas(64) Cell {
    std::atomic<int> value = 0;
};

// Each writes, asks for the count, and reads what the other writes. A question that is no barrier lets
// both read what was before.
TEST(ReferenceCountThreads, SeeOneOfTwoWritesBeforeTheirQuestions) {
    const ReferenceCount counted;
    std::array<Cell, 2> written;
    std::array<Cell, 2> read;
    int missed = 0;

    sideBySide(
        [&](std::size_t mine, int round) {
            const std::atomic<int>& ofTheOther = written[1 - mine].value;
            written[mine].value.store(round, std::memory_order_relaxed);
            const std::uint64_t count = counted.QueryRef();
            const int seen = ofTheOther.load(std::memory_order_relaxed);
            read[mine].value = count == 1 ? seen : -1;
        },
        [&](int round) {
            if (read[0].value != round && read[1].value != round) ++missed;
        });

    EXPECT_EQ(missed, 0);
}

}  // namespace

}  // namespace vexa::test
