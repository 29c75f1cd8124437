#include "vexakit/locks.h"

#include <atomic>

namespace {

// Without a memory order of their own, all operations are full barriers.
std::atomic_ref<uint64_t> shared(uint64_t& count) {
    return std::atomic_ref<uint64_t>(count);
}

}  // namespace

IReferenceCount::~IReferenceCount() = default;

ReferenceCount::ReferenceCount(uint64_t count) : count_(count) {}

ReferenceCount::ReferenceCount(const ReferenceCount& other)
    : IReferenceCount(other), count_(other.QueryRef()) {}

ReferenceCount::~ReferenceCount() = default;

uint64_t ReferenceCount::AddRef() {
    return shared(count_).fetch_add(1) + 1;
}

uint64_t ReferenceCount::Release() {
    return shared(count_).fetch_sub(1) - 1;
}

// A load alone would be no barrier to what comes before it.
uint64_t ReferenceCount::QueryRef() const {
    return shared(count_).fetch_add(0);
}

uint64_t ReferenceCount::SetRefs(uint64_t count) {
    return shared(count_).exchange(count);
}
