#pragma once

#include "tests/support/allocations.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

/// Calls that allocate, each repeated with its first, second, ... request for memory refused.
namespace vexa::test {

/// A call of the library with all that it reads and writes.
class FaultyCall {
public:
    FaultyCall() = default;
    FaultyCall(const FaultyCall&) = delete;
    FaultyCall& operator=(const FaultyCall&) = delete;
    virtual ~FaultyCall() = default;

    /// Makes the call, and asks the heap for nothing of its own.
    virtual void make() = 0;
    /// Whether the call did its work.
    [[nodiscard]] virtual bool isDone() = 0;
    /// Expects the right result.
    virtual void expectDone() = 0;
    /// Expects that lack of memory is told as promised, and that what the caller has is as before.
    virtual void expectTold() = 0;
    /// Gives back what the call handed out, be it nothing.
    virtual void giveBack() {}
};

/// What a call may make of a refused request.
enum class Lack {
    IsTold,
    /// Some requests are only for speed, or for what can be done without.
    IsSometimesMadeUpFor,
    IsMadeUpFor
};

struct FaultCase {
    std::string name;
    std::function<std::unique_ptr<FaultyCall>()> prepare;
    Lack lack = Lack::IsTold;
    /// Requests that end the process where they are refused.
    std::vector<int> fatal = {};
};

inline void PrintTo(const FaultCase& row, std::ostream* out) {
    *out << row.name;
}

/// Makes the call with the n-th request refused, with 0 none; whether one was.
inline bool makeRefusing(int nth, FaultyCall& call, int& blocks) {
    const HeapFailure heap{nth};
    call.make();
    blocks += heap.blocksInUse();
    return heap.happened();
}

inline void giveBack(FaultyCall& call, int& blocks) {
    const HeapFailure heap{0};
    call.giveBack();
    blocks += heap.blocksInUse();
}

/// Makes a call that is refused nothing and checks it.
inline void makeWhole(FaultyCall& call) {
    int blocks = 0;
    EXPECT_FALSE(makeRefusing(0, call, blocks));
    EXPECT_TRUE(call.isDone());
    call.expectDone();
    giveBack(call, blocks);
    EXPECT_EQ(blocks, 0) << "left behind by the call that is refused nothing";
}

/// Takes what the first exception of a thread leaves behind out of the count.
inline void throwOnce() {
    try {
        throw std::bad_alloc{};
    } catch (const std::bad_alloc&) {
        SUCCEED();
    }
}

struct Refusals {
    int told = 0;
    int madeUpFor = 0;
};

/// Refuses each request of the call in turn, until it makes no more.
inline Refusals refuseEachRequest(const FaultCase& row) {
    throwOnce();
    makeWhole(*row.prepare());

    Refusals refusals;
    for (int nth = 1;; ++nth) {
        if (std::count(row.fatal.begin(), row.fatal.end(), nth) != 0) continue;
        const testing::ScopedTrace trace{__FILE__, __LINE__, "request " + std::to_string(nth)};

        const std::unique_ptr<FaultyCall> call = row.prepare();
        int blocks = 0;
        const bool wasRefused = makeRefusing(nth, *call, blocks);
        const bool isDone = call->isDone();
        if (isDone) {
            call->expectDone();
        } else {
            call->expectTold();
        }
        giveBack(*call, blocks);
        EXPECT_EQ(blocks, 0) << "left behind";
        if (!wasRefused) {
            EXPECT_TRUE(isDone);
            return refusals;
        }
        ++(isDone ? refusals.madeUpFor : refusals.told);
        if (!isDone) makeWhole(*call);
    }
}

/// Refuses each request and expects that the call takes it as the row says.
inline void expectFaultsTaken(const FaultCase& row) {
    const Refusals refusals = refuseEachRequest(row);
    testing::Test::RecordProperty("refusals", refusals.told + refusals.madeUpFor);

    EXPECT_EQ(refusals.told > 0, row.lack != Lack::IsMadeUpFor);
    EXPECT_EQ(refusals.madeUpFor > 0, row.lack != Lack::IsTold);
}

class AllocationFaults : public testing::TestWithParam<FaultCase> {};

constexpr auto kFaultCaseName = [](const auto& row) { return row.param.name; };

}  // namespace vexa::test
