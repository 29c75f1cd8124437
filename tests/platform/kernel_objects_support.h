#pragma once

#include "platform/identity.h"
#include "platform/kernel_objects.h"
#include "tests/locks/lock_threads.h"
#include "tests/support/wide_text.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace vexa::test {

struct HandleCloser {
    void operator()(platform::Handle handle) const { platform::closeHandle(handle); }
};
using OwnHandle = std::unique_ptr<void, HandleCloser>;

/// Milliseconds, longer than any wait that ends as it should.
inline constexpr std::uint32_t kLimit = 10'000;

/// A name that no other test and no other process uses.
inline WideString newObjectName() {
    static std::atomic<unsigned> count{0};
    return wide("test of kernel objects " + std::to_string(platform::currentProcessId()) + " " +
                std::to_string(count++));
}

template <class Action>
std::uint32_t millisecondsOf(Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    const auto time = std::chrono::steady_clock::now() - start;
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}

enum class Naming { Unnamed, Named };

inline std::string namingOf(const testing::TestParamInfo<Naming>& info) {
    return info.param == Naming::Named ? "Named" : "Unnamed";
}

}  // namespace vexa::test
