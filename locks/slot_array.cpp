#include "locks/slot_array.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <new>

namespace vexa {

namespace {

// Stands before the first lock.
struct Head {
    std::atomic<std::size_t> users;
    std::size_t count;
};
static_assert(sizeof(Head) % alignof(ThreadLock) == 0 && alignof(Head) >= alignof(ThreadLock));

Head* headOf(ThreadLock* slots) {
    return reinterpret_cast<Head*>(slots) - 1;
}

}  // namespace

ThreadLock* makeSlots(std::uint32_t count) {
    const std::size_t bytes = sizeof(Head) + std::size_t{count} * sizeof(ThreadLock);
    Head* const head = new (::operator new(bytes)) Head{1, count};
    auto* const slots = reinterpret_cast<ThreadLock*>(head + 1);
    std::uninitialized_default_construct_n(slots, count);
    return slots;
}

ThreadLock* shareSlots(ThreadLock* slots) noexcept {
    if (slots) headOf(slots)->users.fetch_add(1, std::memory_order_relaxed);
    return slots;
}

void dropSlots(ThreadLock* slots) noexcept {
    if (!slots) return;

    Head* const head = headOf(slots);
    if (head->users.fetch_sub(1, std::memory_order_acq_rel) != 1) return;

    for (std::size_t left = head->count; left > 0; --left) std::destroy_at(slots + left - 1);
    ::operator delete(head);
}

}  // namespace vexa
