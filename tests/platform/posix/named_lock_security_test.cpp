#include "tests/support/allocations.h"
#include "tests/support/lock_helper.h"
#include "tests/support/named_locks.h"
#include "vexakit/locks.h"

#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using testing::Each;
using testing::SizeIs;

/// Takes permissions from new files while it lives.
class Mask {
public:
    explicit Mask(mode_t mask) : before_(umask(mask)) {}
    Mask(const Mask&) = delete;
    Mask& operator=(const Mask&) = delete;
    ~Mask() { umask(before_); }

private:
    mode_t before_;
};

/// Attributes with permissions; without a descriptor where there are none.
class Attributes {
public:
    explicit Attributes(std::optional<std::uint32_t> mode)
        : descriptor_{mode.value_or(0)},
          attributes_{sizeof(SECURITY_ATTRIBUTES), mode ? &descriptor_ : nullptr, 0} {}

    SECURITY_ATTRIBUTES* get() { return &attributes_; }

private:
    SECURITY_DESCRIPTOR descriptor_;
    SECURITY_ATTRIBUTES attributes_;
};

template <class Lock>
class NamedLockSecurity : public NamedLockTest {
protected:
    static constexpr const char* kKind = std::is_same_v<Lock, MutexLock> ? "mutex" : "interprocess";
    static constexpr std::size_t kFiles = std::is_same_v<Lock, MutexLock> ? 1 : 2;

    [[nodiscard]] std::unique_ptr<Lock> lockWith(SECURITY_ATTRIBUTES* sa) const {
        return makeLock<Lock>(wideName, sa);
    }

    /// The permissions of each file of the lock.
    [[nodiscard]] std::vector<mode_t> modes() const {
        std::vector<mode_t> result;
        for (const auto& file : filesOf(name)) {
            struct stat status {};
            if (stat(file.c_str(), &status) == 0) result.push_back(status.st_mode & 07777U);
        }
        return result;
    }

    void expectModes(mode_t mode) const {
        EXPECT_THAT(modes(), SizeIs(kFiles));
        EXPECT_THAT(modes(), Each(mode));
    }
};

TYPED_TEST_SUITE(NamedLockSecurity, NamedLocks, NamedLocksNames);

TYPED_TEST(NamedLockSecurity, IsOpenToEverybodyWhateverTheMask) {
    for (const mode_t mask : {mode_t{0}, mode_t{022}, mode_t{077}, mode_t{0777}}) {
        const Mask inForce{mask};
        const auto lock = this->lockWith(nullptr);
        this->expectModes(0666);
    }
}

TYPED_TEST(NamedLockSecurity, IsTheCallersWhateverTheMask) {
    for (const mode_t mode : {mode_t{0600}, mode_t{0640}, mode_t{0660}, mode_t{0606}}) {
        const Mask inForce{077};
        Attributes attributes{mode};
        const auto lock = this->lockWith(attributes.get());
        this->expectModes(mode);
    }
}

TYPED_TEST(NamedLockSecurity, IsForTheSameUserWithoutADescriptor) {
    Attributes attributes{std::nullopt};
    const auto lock = this->lockWith(attributes.get());
    this->expectModes(0600);
}

TYPED_TEST(NamedLockSecurity, CountsForTheFirstUserAlone) {
    Attributes attributes{0640};
    const auto first = this->lockWith(attributes.get());
    const auto second = this->lockWith(nullptr);
    Attributes otherAttributes{0600};
    const auto third = this->lockWith(otherAttributes.get());

    ASSERT_TRUE(isMade(*third));
    this->expectModes(0640);
}

TYPED_TEST(NamedLockSecurity, IsThatOfTheFirstUserAfterTheLast) {
    Attributes attributes{0640};
    this->lockWith(attributes.get()).reset();
    const auto first = this->lockWith(nullptr);
    this->expectModes(0666);
}

// A file that a killed user left has the permissions of its own time.
TYPED_TEST(NamedLockSecurity, OfALeftoverIsThatOfItsNextFirstUser) {
    {
        LockHelper killed{this->kKind, this->wideName};
        ASSERT_TRUE(killed.isMade());
    }
    this->expectModes(0666);
    Attributes attributes{0600};
    const auto first = this->lockWith(attributes.get());
    this->expectModes(0600);
}

using InterProcessLockSecurity = NamedLockSecurity<InterProcessLock>;

TEST_F(InterProcessLockSecurity, IsTheSystemsWhereItsMemoryFails) {
    for (int nth = 1; nth <= 2; ++nth) {
        std::unique_ptr<InterProcessLock> lock;
        {
            const AllocationFailure failure{nth};
            lock = lockWith(nullptr);
            ASSERT_TRUE(failure.happened());
        }
        EXPECT_TRUE(isMade(*lock));
        expectModes(0600);
    }
}

// ---- Other users ------------------------------------------------------------------------------

constexpr std::uint32_t kOneUser = 65'534;
constexpr std::uint32_t kAnotherUser = 65'533;

/// These need the superuser: a process of another user cannot be had otherwise.
template <class Lock>
class NamedLockOfUsers : public NamedLockSecurity<Lock> {
protected:
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only the superuser can become another user";
    }

    /// A process of a user that makes a lock; what came of that.
    [[nodiscard]] std::string makeAs(LockHelper& helper, std::uint32_t user) const {
        EXPECT_EQ(helper.ask("user " + std::to_string(user)), "changed");
        return helper.ask("make " + std::string{this->kKind} + ' ' + inHex(this->wideName));
    }
};

TYPED_TEST_SUITE(NamedLockOfUsers, NamedLocks, NamedLocksNames);

TYPED_TEST(NamedLockOfUsers, LetsAnybodyIn) {
    const auto lock = this->lockWith(nullptr);
    LockHelper other;
    ASSERT_EQ(this->makeAs(other, kOneUser), "made");

    lock->ObtainLock();
    EXPECT_EQ(other.ask("try"), "no");
    other.tell("obtain");
    EXPECT_TRUE(other.isBusy());
    lock->ReleaseLock();
    EXPECT_EQ(other.answer(), "obtained");
    EXPECT_FALSE(lock->TryLock());
    EXPECT_EQ(other.ask("release"), "released");
    EXPECT_TRUE(isFreeForOthers(*lock));
    EXPECT_EQ(other.end(), 0);
}

TYPED_TEST(NamedLockOfUsers, LetsAnybodyIntoTheLockOfAnOrdinaryUser) {
    LockHelper owner;
    LockHelper other;
    ASSERT_EQ(this->makeAs(owner, kOneUser), "made");
    ASSERT_EQ(this->makeAs(other, kAnotherUser), "made");
    const auto lock = this->lockWith(nullptr);

    EXPECT_EQ(owner.ask("obtain"), "obtained");
    EXPECT_EQ(other.ask("try"), "no");
    EXPECT_FALSE(lock->TryLock());
    EXPECT_EQ(owner.ask("release"), "released");
    EXPECT_EQ(other.ask("try"), "yes");
    EXPECT_FALSE(lock->TryLock());
    EXPECT_EQ(other.ask("release"), "released");
    EXPECT_EQ(owner.end(), 0);
    EXPECT_EQ(other.end(), 0);
}

TYPED_TEST(NamedLockOfUsers, RefusesOthersWhereItIsForTheSameUser) {
    constexpr std::optional<std::uint32_t> kModes[] = {0600U, std::nullopt};
    for (const auto mode : kModes) {
        Attributes attributes{mode};
        const auto lock = this->lockWith(attributes.get());
        LockHelper other;
        ASSERT_EQ(this->makeAs(other, kOneUser), "none");

        EXPECT_EQ(other.ask("try"), "no");
        EXPECT_EQ(other.ask("obtain"), "obtained");  // which it only says: nothing waits
        EXPECT_EQ(other.ask("release"), "released");
        EXPECT_EQ(other.ask("destroy"), "destroyed");
        EXPECT_TRUE(isFreeForOthers(*lock));
        this->expectModes(0600);
        EXPECT_EQ(other.end(), 0);
    }
}

// In a sticky folder a user cannot take another's file away.
TYPED_TEST(NamedLockOfUsers, MakesNewWhatTheLastUserHadToLeave) {
    LockHelper other;
    auto lock = this->lockWith(nullptr);
    ASSERT_EQ(this->makeAs(other, kOneUser), "made");
    lock.reset();
    EXPECT_EQ(other.ask("obtain"), "obtained");
    EXPECT_EQ(other.end(), 0);
    EXPECT_THAT(filesOf(this->name), SizeIs(this->kFiles));

    LockHelper next;
    ASSERT_EQ(this->makeAs(next, kAnotherUser), "made");
    EXPECT_EQ(next.ask("try"), "yes");
    lock = this->lockWith(nullptr);
    EXPECT_FALSE(lock->TryLock());
    EXPECT_EQ(next.end(), 0);
}

}  // namespace

}  // namespace vexa::test
