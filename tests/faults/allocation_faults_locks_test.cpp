#include "tests/faults/allocation_faults.h"
#include "vexakit/locks.h"

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#ifndef _WIN32
#include "tests/support/named_locks.h"

#include <cstddef>
#include <type_traits>
#endif

namespace vexa::test {

namespace {

// ---- Locks of a process -------------------------------------------------------------------------

constexpr std::uint32_t kLocks = 3;
constexpr std::uint32_t kLastLock = kLocks - 1;

void expectFree(CThreadLock& locks) {
    EXPECT_EQ(locks.GetLocksSize(), kLocks);
    EXPECT_EQ(locks.TryLock(kLastLock), 1);
    locks.ReleaseLock(kLastLock);
}

void expectFree(RWLock& lock) {
    lock.Claim(0);
    EXPECT_EQ(lock.Release(0), VEXA_SUCCESS);
    lock.Claim(1);
    EXPECT_EQ(lock.Release(1), VEXA_SUCCESS);
}

template <class Lock>
class FlatMaking : public FaultyCall {
public:
    using Create = std::uint32_t (*)(Lock** lock);
    using Destroy = Create;

    FlatMaking(Create create, Destroy destroy) : create_(create), destroy_(destroy) {}

    void make() override { status_ = create_(&lock_); }
    bool isDone() override { return status_ == VEXA_SUCCESS; }
    void expectDone() override { expectFree(*lock_); }
    void expectTold() override {
        EXPECT_EQ(status_, std::uint32_t{VEXA_FAILURE});
        EXPECT_EQ(lock_, untouched());
    }
    void giveBack() override {
        if (lock_ == untouched()) return;
        EXPECT_EQ(destroy_(&lock_), VEXA_SUCCESS);
        lock_ = untouched();
    }

private:
    /// No lock stands there.
    Lock* untouched() { return reinterpret_cast<Lock*>(this); }

    Create create_;
    Destroy destroy_;
    Lock* lock_ = untouched();
    std::uint32_t status_ = 0xBAD;
};

class Construction : public FaultyCall {
public:
    void make() override {
        try {
            locks_.emplace(kLocks);
        } catch (const std::bad_alloc&) {
            hasThrown_ = true;
        }
    }
    bool isDone() override { return locks_.has_value(); }
    void expectDone() override { expectFree(*locks_); }
    void expectTold() override { EXPECT_TRUE(hasThrown_); }
    void giveBack() override { locks_.reset(); }

private:
    std::optional<CThreadLock> locks_;
    bool hasThrown_ = false;
};

std::uint32_t createThreadLock(CThreadLock** lock) {
    return threadLock_create(lock, kLocks);
}

#ifndef _WIN32

// ---- Locks of the machine -----------------------------------------------------------------------

/// What the constructor is given.
struct Given {
    bool hasName;
    bool hasSecurity;
};

/// A lock is made and taken once.
template <class Lock>
class NamedLockCall : public FaultyCall {
public:
    explicit NamedLockCall(Given given) : given_(given) {}
    NamedLockCall(const NamedLockCall&) = delete;
    NamedLockCall& operator=(const NamedLockCall&) = delete;
    ~NamedLockCall() override { EXPECT_THAT(filesOf(name_), testing::IsEmpty()); }

    void make() override {
        construct();
        isTaken_ = lock_->TryLock();
        if (isTaken_) lock_->ReleaseLock();
    }
    bool isDone() override { return isTaken_; }
    void expectDone() override {
        constexpr std::size_t kFiles = kIsMutex ? 1 : 2;
        EXPECT_TRUE(isFreeForOthers(*lock_));
        EXPECT_THAT(filesOf(name_), testing::SizeIs(given_.hasName ? kFiles : 0));
        expectSecurityUnchanged();
    }
    void expectTold() override {
        lock_->ObtainLock();
        lock_->ReleaseLock();
        EXPECT_FALSE(lock_->TryLock());
        expectSecurityUnchanged();
    }
    void giveBack() override { lock_.reset(); }

protected:
    [[nodiscard]] const std::string& name() const { return name_; }

private:
    static constexpr bool kIsMutex = std::is_same_v<Lock, MutexLock>;
    static constexpr std::uint32_t kMode = 0640;

    void construct() {
        const VexaWChar* const name = given_.hasName ? wideName_.c_str() : nullptr;
        SECURITY_ATTRIBUTES* const sa = given_.hasSecurity ? &sa_ : nullptr;
        if constexpr (kIsMutex) {
            lock_.emplace(name, sa);
        } else {
            lock_.emplace(name, sa, 0U);
        }
    }
    void expectSecurityUnchanged() const {
        EXPECT_EQ(descriptor_.mode, kMode);
        EXPECT_EQ(sa_.nLength, sizeof sa_);
        EXPECT_EQ(sa_.lpSecurityDescriptor, &descriptor_);
        EXPECT_EQ(sa_.bInheritHandle, 0);
    }

    Given given_;
    std::string name_ = uniqueName();
    WideString wideName_ = wide(name_);
    SECURITY_DESCRIPTOR descriptor_{kMode};
    SECURITY_ATTRIBUTES sa_{sizeof(SECURITY_ATTRIBUTES), &descriptor_, 0};
    std::optional<Lock> lock_;
    bool isTaken_ = false;
};

/// The same with the lock's end: where that lacks memory, the lock has gone all the same.
template <class Lock>
class NamedLockLife : public NamedLockCall<Lock> {
public:
    using NamedLockCall<Lock>::NamedLockCall;

    void make() override {
        NamedLockCall<Lock>::make();
        NamedLockCall<Lock>::giveBack();
    }
    void expectDone() override { EXPECT_THAT(filesOf(this->name()), testing::IsEmpty()); }
    void expectTold() override { EXPECT_THAT(filesOf(this->name()), testing::IsEmpty()); }
};

template <class Call>
FaultCase namedCase(const char* name, Given given, Lack lack) {
    return {name, [=] { return std::make_unique<Call>(given); }, lack};
}

#endif

// ---- The table ----------------------------------------------------------------------------------

std::vector<FaultCase> lockCases() {
    return {
        {"threadLock_create",
         [] {
             return std::make_unique<FlatMaking<CThreadLock>>(createThreadLock, threadLock_destroy);
         }},
        {"rwlock_create",
         [] { return std::make_unique<FlatMaking<RWLock>>(rwlock_create, rwlock_destroy); }},
        {"CThreadLock", [] { return std::make_unique<Construction>(); }},
#ifndef _WIN32
        // Elsewhere named locks are the system's, and so is their memory. An interprocess lock does
        // without security of its own.
        namedCase<NamedLockCall<MutexLock>>("MutexLock", {true, false}, Lack::IsTold),
        namedCase<NamedLockCall<MutexLock>>("MutexLock_Unnamed", {false, false}, Lack::IsTold),
        namedCase<NamedLockCall<MutexLock>>("MutexLock_WithSecurity", {true, true}, Lack::IsTold),
        namedCase<NamedLockLife<MutexLock>>("MutexLock_ToItsEnd", {true, true},
                                            Lack::IsSometimesMadeUpFor),
        namedCase<NamedLockCall<InterProcessLock>>("InterProcessLock", {true, false},
                                                   Lack::IsSometimesMadeUpFor),
        namedCase<NamedLockCall<InterProcessLock>>("InterProcessLock_WithSecurity", {true, true},
                                                   Lack::IsTold),
        namedCase<NamedLockLife<InterProcessLock>>("InterProcessLock_ToItsEnd", {true, true},
                                                   Lack::IsTold),
#endif
    };
}

class LockFaults : public AllocationFaults {};

TEST_P(LockFaults, AreMadeUpForOrTold) {
    expectFaultsTaken(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, LockFaults, testing::ValuesIn(lockCases()), kFaultCaseName);

}  // namespace

}  // namespace vexa::test
