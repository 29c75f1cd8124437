#include "platform/kernel_objects.h"
#include "platform/posix/mutex_state.h"
#include "tests/platform/kernel_objects_support.h"
#include "tests/platform/posix/child_process.h"
#include "tests/platform/posix/possessions.h"
#include "tests/platform/posix/shared_file_support.h"
#include "tests/platform/posix/valgrind.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <pthread.h>
#include <sys/resource.h>

#include <gtest/gtest.h>

// What is left to users where the process or the system has no more to give, and where others have spoilt
// what they share.

namespace vexa::test {

namespace {

using namespace vexa::platform;

/// Lowers what this process may have while it lives.
class Limit {
public:
    Limit(decltype(RLIMIT_AS) resource, rlim_t most) : resource_(resource) {
        getrlimit(resource_, &before_);
        const rlimit lower = {most, before_.rlim_max};
        isSet_ = setrlimit(resource_, &lower) == 0;
    }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;
    ~Limit() { setrlimit(resource_, &before_); }

    explicit operator bool() const { return isSet_; }

private:
    decltype(RLIMIT_AS) resource_;
    rlimit before_{};
    bool isSet_ = false;
};

struct Trio {
    OwnHandle event;
    OwnHandle mutex;
    OwnHandle mapping;

    explicit Trio(const std::array<WideString, 3>& names)
        : event(createEvent(Reset::Automatic, false, names[0].c_str(), nullptr)),
          mutex(createMutex(names[1].c_str(), nullptr)),
          mapping(createMapping(kBlockSize, names[2].c_str(), nullptr)) {}

    [[nodiscard]] bool isMade() const { return event && mutex && mapping; }
    [[nodiscard]] bool isNone() const { return !event && !mutex && !mapping; }
    [[nodiscard]] bool works() const {
        return setEvent(event.get()) && waitFor(event.get(), 0) == WaitResult::Signalled &&
               waitFor(mutex.get(), 0) == WaitResult::Signalled && releaseMutex(mutex.get()) &&
               mapView(mapping.get()) != nullptr;
    }
};

class ScarceObjects : public testing::Test {
protected:
    void SetUp() override {
        if (isUnderValgrind()) GTEST_SKIP() << "this checker needs memory of its own";
    }

    /// A child's: whether what is there still works, and goes, and nothing else can be made.
    int useWithin(decltype(RLIMIT_AS) resource, rlim_t most) {
        auto there = std::make_unique<Trio>(names_);
        const std::array<WideString, 3> others = {newObjectName(), newObjectName(),
                                                  newObjectName()};
        if (!there->isMade() || !Trio{others}.isMade()) return 1;
        const Possessions before = possessions();
        {
            const Limit limit{resource, most};
            if (!limit) return 2;
            if (!Trio{names_}.isNone() || !Trio{others}.isNone()) return 3;
            if (!there->works()) return 4;
        }
        if (!(possessions() == before)) return 5;
        if (!Trio{names_}.works()) return 6;
        const Limit limit{resource, most};
        there.reset();
        const auto isLeft = [](const WideString& name) { return OwnPath{name}.exists(); };
        if (std::any_of(names_.begin(), names_.end(), isLeft)) return 7;
        return std::any_of(others.begin(), others.end(), isLeft) ? 8 : 0;
    }

    std::array<WideString, 3> names_ = {newObjectName(), newObjectName(), newObjectName()};
};

TEST_F(ScarceObjects, AreNotMadeWithoutDescriptors) {
    Child child{[&] { return useWithin(RLIMIT_NOFILE, 0); }};
    EXPECT_EQ(child.exitCode(), 0);
}

TEST_F(ScarceObjects, AreNotMadeWithoutAddresses) {
    Child child{[&] { return useWithin(RLIMIT_AS, 1); }};
    EXPECT_EQ(child.exitCode(), 0);
}

// The last one's place is given away when it is closed.
TEST_F(ScarceObjects, AreNoMoreThanAMillionAtATime) {
    Child child{[&] {
        constexpr std::size_t kMost = std::size_t{1} << 20;
        std::size_t count = 0;
        Handle last = nullptr;
        while (Handle event = createEvent(Reset::Manual, true, nullptr, nullptr)) {
            last = event;
            if (++count > kMost) return 1;
        }
        if (count < kMost / 2) return 2;
        if (createMutex(nullptr, nullptr) || !Trio{names_}.isNone()) return 3;
        if (!closeHandle(last)) return 4;
        const OwnHandle next{createEvent(Reset::Manual, true, nullptr, nullptr)};
        return next && waitFor(next.get(), 0) == WaitResult::Signalled ? 0 : 5;
    }};
    EXPECT_EQ(child.exitCode(), 0);
}

// ---- A mutex that others have spoilt -----------------------------------------------------------

/// A mutex that was abandoned, and that a stranger took past the library and gave back as it was.
struct SpoiltMutex : testing::Test {
    SpoiltMutex() {
        state.initialise(Sharing::Machine);
        inAnotherThread([&] { return state.wait(0, holder); });
        EXPECT_EQ(pthread_mutex_lock(&state.mutex), EOWNERDEAD);
        EXPECT_EQ(pthread_mutex_unlock(&state.mutex), 0);
    }

    MutexState state{};
    MutexHolder holder;
};

TEST_F(SpoiltMutex, IsNotHadAtOnce) {
    EXPECT_EQ(state.wait(0, holder), WaitResult::Failed);
}

TEST_F(SpoiltMutex, IsNotHadWithinALimit) {
    EXPECT_EQ(state.wait(kLimit, holder), WaitResult::Failed);
}

TEST_F(SpoiltMutex, IsNotWaitedForForEver) {
    EXPECT_EQ(state.wait(kNoTimeLimit, holder), WaitResult::Failed);
}

TEST_F(SpoiltMutex, IsNotFreeAndNotReleased) {
    EXPECT_FALSE(state.release(holder));
    EXPECT_FALSE(state.isFree(holder));
}

}  // namespace

}  // namespace vexa::test
