#include "tests/support/named_locks.h"
#include "vexakit/locks.h"

#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

template <class Lock>
class NamedLockNames : public NamedLockTest {
protected:
    [[nodiscard]] std::unique_ptr<Lock> lockOf(const WideString& tail) const {
        return makeLock<Lock>(wideName + tail);
    }

    /// The name of so many characters that ends like this.
    [[nodiscard]] WideString nameOf(std::size_t length, std::string_view end = "") const {
        WideString full = wideName;
        full.append(length - wideName.size() - end.size(), VexaWChar{'n'});
        return full + wide(end);
    }
};

TYPED_TEST_SUITE(NamedLockNames, NamedLocks, NamedLocksNames);

/// Whether the two are one lock.
template <class Lock>
bool areOne(Lock& first, Lock& second) {
    first.ObtainLock();
    const bool isHeld = !isFreeForOthers(second);
    first.ReleaseLock();
    return isHeld && isFreeForOthers(second);
}

/// Each name is of its own lock, and of the same lock whenever it is used.
template <class Lock>
void expectAllDifferent(const std::vector<WideString>& names) {
    std::vector<std::unique_ptr<Lock>> locks;
    std::vector<std::unique_ptr<Lock>> again;
    for (const WideString& name : names) {
        locks.push_back(makeLock<Lock>(name));
        again.push_back(makeLock<Lock>(name));
    }
    for (std::size_t held = 0; held < names.size(); ++held) {
        locks[held]->ObtainLock();
        inOtherThread([&] {
            for (std::size_t i = 0; i < names.size(); ++i) {
                const bool isFree = again[i]->TryLock();
                if (isFree) again[i]->ReleaseLock();
                EXPECT_EQ(isFree, i != held)
                    << readable(names[held]) << " against " << readable(names[i]);
            }
        });
        locks[held]->ReleaseLock();
    }
}

TYPED_TEST(NamedLockNames, DifferInEveryCharacter) {
    // Pairs that a conversion, a path or a format would take for one.
    const std::vector<WideString> tails = {
        {},
        wide(" "),
        wide("."),
        wide(".."),
        wide("a"),
        wide("A"),
        wide("ab"),
        wide("aB"),
        wide("a "),
        wide("/"),
        wide("a/b"),
        wide("a_b"),
        wide("a-b"),
        wide("a~b"),
        wide("%"),
        wide("%%"),
        wide("%s"),
        wide("%n"),
        wide("%0041"),
        wide("%0061"),
        wide("%d%d%d"),
        wide("?"),
        wide("*"),
        wide("\x01"),
        wide("\x7F"),
        {0x00E4},          // a small letter with dots
        {0x00C4},          // its capital
        {'a', 0x0308},     // its parts
        {0x0041, 0x0141},  // the same low byte twice
        {0x0041, 0x0041},
        {0x0141, 0x0041},
        {0x4100},
        {0xFF21},  // a wide "A"
        {0xFFFD},
        {0xD800},          // half a pair
        {0xDC00},          // the other half
        {0xD83D, 0xDE00},  // a pair
        {0xDE00, 0xD83D},  // its halves the other way round
        {0xD83D},
        {0xFFFE},
        {0xFFFF},
    };
    std::vector<WideString> names;
    for (const WideString& tail : tails) names.push_back(this->wideName + tail);
    expectAllDifferent<TypeParam>(names);
}

TYPED_TEST(NamedLockNames, OfRandomUnitsAreAllDifferent) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random{seed};
    std::vector<WideString> names;
    for (int i = 0; i < 40; ++i) {
        // The first unit is different in all.
        WideString candidate = this->wideName + static_cast<VexaWChar>(0x100 + i);
        for (auto left = random() % 60; left > 0; --left) {
            const auto unit = static_cast<VexaWChar>(random() % 0xFFFF + 1);
            if (unit != '\\') candidate += unit;
        }
        names.push_back(candidate);
    }
    expectAllDifferent<TypeParam>(names);
}

// Names whose escapes are too long for a file's name differ at their ends all the same.
TYPED_TEST(NamedLockNames, OfManyUnusualUnitsDifferAtTheEnd) {
    constexpr std::size_t kUnits = 200;
    std::vector<WideString> names;
    for (const WideString& last : {WideString{0xD800}, WideString{0xD801}, WideString{0x0041},
                                   WideString{0x4100}, WideString{0xFFFF}}) {
        names.push_back(this->wideName + WideString(kUnits, VexaWChar{0xD800}) + last);
    }
    names.push_back(this->wideName + WideString(kUnits, VexaWChar{0xD800}));
    names.push_back(this->wideName + WideString(kUnits - 1, VexaWChar{0xD800}));
    expectAllDifferent<TypeParam>(names);
}

TYPED_TEST(NamedLockNames, OfEveryLengthAreDifferent) {
    std::vector<WideString> names;
    for (std::size_t length = 150; length <= 246; length += 3) {
        names.push_back(this->nameOf(length));
    }
    names.push_back(this->nameOf(245));
    names.push_back(this->nameOf(246, "x"));
    names.push_back(this->nameOf(246, "X"));
    expectAllDifferent<TypeParam>(names);
}

TYPED_TEST(NamedLockNames, BelongToOneKindOfLock) {
    using Other =
        std::conditional_t<std::is_same_v<TypeParam, MutexLock>, InterProcessLock, MutexLock>;
    const auto lock = this->lockOf({});
    const auto other = makeLock<Other>(this->wideName);

    lock->ObtainLock();
    EXPECT_TRUE(isFreeForOthers(*other));
    lock->ReleaseLock();
}

TYPED_TEST(NamedLockNames, AreReadAndNotKept) {
    WideString passed = this->wideName + wide("kept");
    const auto lock = makeLock<TypeParam>(passed);
    passed.assign(passed.size(), VexaWChar{'x'});

    EXPECT_TRUE(areOne(*lock, *this->lockOf(wide("kept"))));
}

TYPED_TEST(NamedLockNames, WithABackslashAnywhereMakeNoLock) {
    for (const char* const tail : {"\\", "a\\", "\\a", "a\\b", "\\\\"}) {
        const auto lock = this->lockOf(wide(tail));
        EXPECT_FALSE(isMade(*lock)) << tail;
        EXPECT_FALSE(isFreeForOthers(*lock)) << tail;
    }
    EXPECT_FALSE(isMade(*makeLock<TypeParam>(wide("Global\\") + this->wideName)));
    EXPECT_FALSE(isMade(*makeLock<TypeParam>(wide("Local\\") + this->wideName)));
}

TYPED_TEST(NamedLockNames, WithABackslashBehindANameInUseMakeNoLock) {
    const auto inUse = this->lockOf({});
    for (const char* const tail : {"\\", "\\a", "\\\\"}) {
        const auto lock = this->lockOf(wide(tail));
        EXPECT_FALSE(isMade(*lock)) << tail;
        EXPECT_FALSE(isFreeForOthers(*lock)) << tail;
    }
}

// ---- Lengths ----------------------------------------------------------------------------------

using MutexLockLength = NamedLockNames<MutexLock>;

TEST_F(MutexLockLength, OfTwoHundredAndFiftyThreeCountsWhole) {
    MutexLock first{nameOf(253, "a").c_str()};
    MutexLock second{nameOf(253, "b").c_str()};
    MutexLock same{nameOf(253, "a").c_str()};

    ASSERT_TRUE(isMade(first));
    EXPECT_FALSE(areOne(first, second));
    EXPECT_TRUE(areOne(first, same));
}

TEST_F(MutexLockLength, OfMoreIsCut) {
    MutexLock whole{nameOf(253).c_str()};
    for (const std::size_t length : {254U, 255U, 259U, 260U, 1'000U, 100'000U}) {
        MutexLock longer{nameOf(length).c_str()};
        ASSERT_TRUE(isMade(longer)) << length;
        EXPECT_TRUE(areOne(whole, longer)) << length;
    }
    MutexLock ending{nameOf(254, "x").c_str()};
    EXPECT_TRUE(areOne(whole, ending));
    MutexLock shorter{nameOf(252).c_str()};
    EXPECT_FALSE(areOne(whole, shorter));
}

TEST_F(MutexLockLength, WithABackslashBehindTheCutIsALock) {
    MutexLock behind{nameOf(254, "\\").c_str()};
    MutexLock whole{nameOf(253).c_str()};
    EXPECT_TRUE(areOne(whole, behind));

    MutexLock within{nameOf(253, "\\").c_str()};
    EXPECT_FALSE(isMade(within));
}

using InterProcessLockLength = NamedLockNames<InterProcessLock>;

TEST_F(InterProcessLockLength, OfTwoHundredAndFortySixCountsWhole) {
    InterProcessLock first{nameOf(246, "a").c_str(), nullptr, 0};
    InterProcessLock second{nameOf(246, "b").c_str(), nullptr, 0};
    InterProcessLock same{nameOf(246, "a").c_str(), nullptr, 0};

    ASSERT_TRUE(isMade(first));
    EXPECT_FALSE(areOne(first, second));
    EXPECT_TRUE(areOne(first, same));
}

TEST_F(InterProcessLockLength, OfMoreMakesNoLock) {
    for (const std::size_t length : {247U, 248U, 253U, 254U, 260U, 1'000U, 100'000U}) {
        InterProcessLock lock{nameOf(length).c_str(), nullptr, 0};
        const InterProcessLockImage image = imageOf(lock);
        EXPECT_EQ(image.event, nullptr) << length;
        EXPECT_EQ(image.mapping, nullptr) << length;
        EXPECT_EQ(image.block, nullptr) << length;
        EXPECT_FALSE(isFreeForOthers(lock)) << length;
    }
}

// Its waiters are woken, so its event is no other's.
TEST_F(InterProcessLockLength, OfTwoHundredAndFortySixHasAnEventOfItsOwn) {
    InterProcessLock first{nameOf(246, "a").c_str(), nullptr, 0};
    InterProcessLock second{nameOf(246, "b").c_str(), nullptr, 0};
    first.ObtainLock();
    second.ObtainLock();
    Contender ofFirst{first};
    Contender ofSecond{second};
    ASSERT_TRUE(becomesTrue([&] { return lockCountOf(first) == 2 && lockCountOf(second) == 2; }));

    second.ReleaseLock();
    EXPECT_TRUE(ofSecond.comesIn());
    EXPECT_FALSE(ofFirst.isInside());
    first.ReleaseLock();
    EXPECT_TRUE(ofFirst.comesIn());
}

}  // namespace

}  // namespace vexa::test
