#include "tests/locks/lock_fields.h"
#include "tests/locks/lock_threads.h"
#include "tests/support/allocations.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

constexpr std::int32_t kToWrite = 0;
constexpr std::int32_t kToRead = 1;

/// A lock for the length of a test.
struct FlatLock {
    RWLock* get = nullptr;
    Watchdog watchdog;

    FlatLock() { rwlock_create(&get); }
    FlatLock(const FlatLock&) = delete;
    FlatLock& operator=(const FlatLock&) = delete;
    ~FlatLock() { rwlock_destroy(&get); }
};

using Calls = std::vector<std::string>;

/// A lock of a host, which remembers the calls and looks at the host's pointer.
class HostLock : public RWLock {
public:
    explicit HostLock(Calls& calls) : calls_(calls) {}
    HostLock(const HostLock&) = delete;
    HostLock& operator=(const HostLock&) = delete;
    ~HostLock() override { note("end"); }

    int Initialize() override {
        note("initialize");
        return 0;
    }
    void Claim(int mode) override { note("claim " + std::to_string(mode)); }
    int Release(int mode) override {
        note("release " + std::to_string(mode));
        return result;
    }
    void Cleanup() override { note("clean up"); }

    int result = 0;
    RWLock** pointer = nullptr;

private:
    void note(const std::string& call) {
        calls_.push_back(pointer && *pointer ? call + ", pointed to" : call);
    }

    Calls& calls_;
};

// ---- Create -------------------------------------------------------------------------------------

TEST(RwLockCreate, MakesAFreeLock) {
    RWLock* lock = nullptr;

    EXPECT_EQ(rwlock_create(&lock), VEXA_SUCCESS);
    ASSERT_NE(lock, nullptr);
    EXPECT_TRUE(isFree(*lock));
    rwlock_destroy(&lock);
}

TEST(RwLockCreate, OverwritesWhateverTheCallerHad) {
    const FlatLock before;
    RWLock* lock = before.get;

    EXPECT_EQ(rwlock_create(&lock), VEXA_SUCCESS);
    EXPECT_NE(lock, before.get);
    EXPECT_TRUE(isFree(*before.get));
    rwlock_destroy(&lock);
}

TEST(RwLockCreate, RefusesANullPointer) {
    const NewFailure failure{1};

    EXPECT_EQ(rwlock_create(nullptr), VEXA_FAILURE);
    EXPECT_FALSE(failure.happened());
}

TEST(RwLockCreate, WithoutMemoryLeavesTheCallersPointer) {
    const FlatLock before;
    RWLock* lock = before.get;
    std::uint32_t status = VEXA_SUCCESS;
    bool isRefused = false;
    {
        const NewFailure failure{1};
        status = rwlock_create(&lock);
        isRefused = failure.happened();
    }

    EXPECT_TRUE(isRefused);
    EXPECT_EQ(status, VEXA_FAILURE);
    EXPECT_EQ(lock, before.get);
    EXPECT_TRUE(isFree(*before.get));
}

TEST(RwLockCreate, AsksForNoBlockButTheLock) {
    RWLock* lock = nullptr;
    int requests = -1;
    bool isSecondRefused = true;
    {
        const AllocationWatch watch;
        const NewFailure failure{2};
        EXPECT_EQ(rwlock_create(&lock), VEXA_SUCCESS);
        requests = watch.requests();
        isSecondRefused = failure.happened();
    }

    EXPECT_EQ(requests, 0);
    EXPECT_FALSE(isSecondRefused);
    rwlock_destroy(&lock);
}

// ---- Destroy ------------------------------------------------------------------------------------

TEST(RwLockDestroy, MakesTheCallersPointerNull) {
    RWLock* lock = nullptr;
    rwlock_create(&lock);

    EXPECT_EQ(rwlock_destroy(&lock), VEXA_SUCCESS);
    EXPECT_EQ(lock, nullptr);
}

TEST(RwLockDestroy, ClosesTheHandles) {
    RWLock* lock = nullptr;
    rwlock_create(&lock);
    const RWLock copy{*lock};
    rwlock_destroy(&lock);

    EXPECT_FALSE(platform::setEvent(readerEventOf(copy)));
    EXPECT_FALSE(platform::setEvent(gateOf(copy)));
    EXPECT_EQ(platform::waitFor(writerMutexOf(copy), 0), platform::WaitResult::Failed);
}

TEST(RwLockDestroy, RefusesANullPointer) {
    EXPECT_EQ(rwlock_destroy(nullptr), VEXA_FAILURE);
}

TEST(RwLockDestroy, RefusesAPointerToNull) {
    RWLock* lock = nullptr;

    EXPECT_EQ(rwlock_destroy(&lock), VEXA_FAILURE);
    EXPECT_EQ(lock, nullptr);
}

TEST(RwLockDestroy, RefusesTheSecondTime) {
    RWLock* lock = nullptr;
    rwlock_create(&lock);
    rwlock_destroy(&lock);

    EXPECT_EQ(rwlock_destroy(&lock), VEXA_FAILURE);
    EXPECT_EQ(lock, nullptr);
}

TEST(RwLockDestroy, TakesThePointerAwayThenCleansUpThenDeletes) {
    Calls calls;
    auto* const host = new HostLock{calls};
    RWLock* lock = host;
    host->pointer = &lock;

    EXPECT_EQ(rwlock_destroy(&lock), VEXA_SUCCESS);
    EXPECT_EQ(calls, (Calls{"clean up", "end"}));
}

// ---- Claim and release --------------------------------------------------------------------------

TEST(RwLockClaim, AndReleaseGoThroughTheVirtualFunctions) {
    Calls calls;
    HostLock lock{calls};

    EXPECT_EQ(rwlock_claim(&lock, kToRead), VEXA_SUCCESS);
    EXPECT_EQ(rwlock_claim(&lock, kToWrite), VEXA_SUCCESS);
    EXPECT_EQ(rwlock_release(&lock, kToWrite), VEXA_SUCCESS);
    EXPECT_EQ(rwlock_release(&lock, kToRead), VEXA_SUCCESS);
    EXPECT_EQ(calls, (Calls{"claim 1", "claim 0", "release 0", "release 1"}));
}

TEST(RwLockRelease, GivesWhateverTheMemberGives) {
    Calls calls;
    HostLock lock{calls};
    for (const int result : {0, 1, 0x8000, 77, -1, std::numeric_limits<int>::min()}) {
        lock.result = result;
        EXPECT_EQ(rwlock_release(&lock, kToRead), static_cast<std::uint32_t>(result));
        EXPECT_EQ(rwlock_release(&lock, kToWrite), static_cast<std::uint32_t>(result));
    }
}

TEST(RwLockClaim, RefusesANullPointer) {
    EXPECT_EQ(rwlock_claim(nullptr, kToRead), VEXA_FAILURE);
    EXPECT_EQ(rwlock_claim(nullptr, kToWrite), VEXA_FAILURE);
}

TEST(RwLockRelease, RefusesANullPointer) {
    EXPECT_EQ(rwlock_release(nullptr, kToRead), VEXA_FAILURE);
    EXPECT_EQ(rwlock_release(nullptr, kToWrite), VEXA_FAILURE);
}

class RwLockOtherMode : public testing::TestWithParam<std::int32_t> {};

TEST_P(RwLockOtherMode, IsRefused) {
    Calls calls;
    HostLock lock{calls};

    EXPECT_EQ(rwlock_claim(&lock, GetParam()), VEXA_FAILURE);
    EXPECT_EQ(rwlock_release(&lock, GetParam()), VEXA_FAILURE);
    EXPECT_EQ(rwlock_claim(nullptr, GetParam()), VEXA_FAILURE);
    EXPECT_EQ(rwlock_release(nullptr, GetParam()), VEXA_FAILURE);
    EXPECT_EQ(calls, Calls{});
}

TEST_P(RwLockOtherMode, ChangesNothing) {
    const FlatLock lock;
    EXPECT_EQ(rwlock_claim(lock.get, GetParam()), VEXA_FAILURE);
    EXPECT_TRUE(isFree(*lock.get));

    rwlock_claim(lock.get, kToRead);
    EXPECT_EQ(rwlock_release(lock.get, GetParam()), VEXA_FAILURE);
    EXPECT_EQ(readerCountOf(*lock.get), 0);
    EXPECT_EQ(rwlock_release(lock.get, kToRead), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(*lock.get));
}

INSTANTIATE_TEST_SUITE_P(Table, RwLockOtherMode,
                         testing::Values(2, -1, 3, 256, 0x10000, 0x10001,
                                         std::numeric_limits<std::int32_t>::max(),
                                         std::numeric_limits<std::int32_t>::min()),
                         [](const auto& row) { return "Row" + std::to_string(row.index); });

TEST(RwLockRelease, ToReadFailsWhereNobodyReads) {
    const FlatLock lock;
    EXPECT_EQ(rwlock_release(lock.get, kToRead), VEXA_FAILURE);
    EXPECT_TRUE(isFree(*lock.get));

    rwlock_claim(lock.get, kToRead);
    rwlock_claim(lock.get, kToRead);
    EXPECT_EQ(rwlock_release(lock.get, kToRead), VEXA_SUCCESS);
    EXPECT_EQ(rwlock_release(lock.get, kToRead), VEXA_SUCCESS);
    EXPECT_EQ(rwlock_release(lock.get, kToRead), VEXA_FAILURE);
    EXPECT_TRUE(isFree(*lock.get));
}

TEST(RwLockRelease, ToWriteIsNotChecked) {
    const FlatLock lock;

    EXPECT_EQ(rwlock_release(lock.get, kToWrite), VEXA_SUCCESS);
    EXPECT_TRUE(isFree(*lock.get));
}

TEST(RwLockClaim, ToWriteWaitsForReaders) {
    const FlatLock lock;
    rwlock_claim(lock.get, kToRead);
    const Worker writer{[&] {
        rwlock_claim(lock.get, kToWrite);
        rwlock_release(lock.get, kToWrite);
    }};

    EXPECT_TRUE(writer.waits());
    rwlock_release(lock.get, kToRead);
    EXPECT_TRUE(writer.isDoneInTime());
}

TEST(RwLockClaim, ToReadWaitsForAWriter) {
    const FlatLock lock;
    rwlock_claim(lock.get, kToWrite);
    const Worker reader{[&] {
        rwlock_claim(lock.get, kToRead);
        rwlock_release(lock.get, kToRead);
    }};

    EXPECT_TRUE(reader.waits());
    rwlock_release(lock.get, kToWrite);
    EXPECT_TRUE(reader.isDoneInTime());
}

}  // namespace

}  // namespace vexa::test
