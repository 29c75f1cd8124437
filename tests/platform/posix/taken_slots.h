#pragma once

#include "platform/kernel_objects.h"
#include "tests/platform/kernel_objects_support.h"
#include "tests/platform/posix/system_call_faults.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <vector>

namespace vexa::test {

/// As many objects as there can ever be.
inline constexpr std::size_t kMostObjects = std::size_t{1} << 20;

/// Runs an action in a thread that gets no memory for the slots of more objects.
template <class Action>
void withoutMoreSlots(Action action) {
    runWithFaults({{SystemCall::MapMemory, 1, ENOMEM, true}}, action);
}

/// Has an object in each slot that there is.
class TakenSlots {
public:
    TakenSlots() {
        objects_.reserve(kMostObjects);  // no memory is asked for later
        takeAll();
    }

    /// @return how many slots have been free
    std::size_t takeAll() {
        const std::size_t before = objects_.size();
        withoutMoreSlots([this] {
            while (platform::Handle object = platform::createMutex(nullptr, nullptr)) {
                objects_.emplace_back(object);
            }
        });
        return objects_.size() - before;
    }

    void giveBack(std::size_t count) {
        objects_.resize(objects_.size() - std::min(count, objects_.size()));
    }

private:
    std::vector<OwnHandle> objects_;
};

}  // namespace vexa::test
