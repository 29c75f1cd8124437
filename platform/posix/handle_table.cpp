#include "platform/posix/handle_table.h"

#include <array>
#include <cstddef>
#include <new>
#include <pthread.h>
#include <sys/mman.h>

namespace vexa::platform {

namespace {

// A handle: the index of its slot, the kind of its object, and how often the slot has been used.
constexpr unsigned kIndexBits = 20;
constexpr unsigned kKindBits = 4;
constexpr std::uintptr_t kIndexMask = (std::uintptr_t{1} << kIndexBits) - 1;
constexpr std::uintptr_t kKindMask = (std::uintptr_t{1} << kKindBits) - 1;

constexpr std::size_t kSlotsOfChunk = 256;
constexpr std::size_t kMostChunks = (std::size_t{1} << kIndexBits) / kSlotsOfChunk;

using Chunk = std::array<Slot, kSlotsOfChunk>;

std::array<std::atomic<Chunk*>, kMostChunks> chunks{};
std::size_t chunkCount = 0;
Slot* freeSlots = nullptr;

pthread_mutex_t objectsLock = PTHREAD_MUTEX_INITIALIZER;

void lockObjects() {
    pthread_mutex_lock(&objectsLock);
}

void unlockObjects() {
    pthread_mutex_unlock(&objectsLock);
}

[[maybe_unused]] const int kForksBetweenChanges =
    pthread_atfork(&lockObjects, &unlockObjects, &unlockObjects);

// For good, so not from the heap of the host.
bool addChunk() {
    if (chunkCount == kMostChunks) return false;
    void* const memory =
        mmap(nullptr, sizeof(Chunk), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return false;

    auto* const chunk = new (memory) Chunk;
    for (std::size_t i = kSlotsOfChunk; i > 0; --i) {
        Slot& slot = (*chunk)[i - 1];
        slot.index = static_cast<std::uint32_t>(chunkCount * kSlotsOfChunk + i - 1);
        slot.next = freeSlots;
        freeSlots = &slot;
    }
    chunks[chunkCount++].store(chunk, std::memory_order_release);
    return true;
}

std::uintptr_t valueOf(Handle handle) {
    return reinterpret_cast<std::uintptr_t>(handle);
}

Slot* slotAt(std::uintptr_t index) {
    Chunk* const chunk = chunks[index / kSlotsOfChunk].load(std::memory_order_acquire);
    return chunk ? &(*chunk)[index % kSlotsOfChunk] : nullptr;
}

}  // namespace

Slot* takeSlot() noexcept {
    const ObjectsGuard guard;
    if (!freeSlots && !addChunk()) return nullptr;

    Slot* const slot = freeSlots;
    freeSlots = slot->next;
    slot->next = nullptr;
    return slot;
}

void giveSlotBack(Slot& slot) noexcept {
    const ObjectsGuard guard;
    slot.next = freeSlots;
    freeSlots = &slot;
}

Handle publish(Slot& slot, ObjectKind kind) noexcept {
    const std::uintptr_t use = ++slot.uses;
    const std::uintptr_t handle = use << (kIndexBits + kKindBits) |
                                  std::uintptr_t{static_cast<std::uint8_t>(kind)} << kIndexBits |
                                  slot.index;
    // Others have no users: a late one may not keep what comes next in the slot.
    const bool isCounted = kind != ObjectKind::Event && kind != ObjectKind::Mutex;
    if (isCounted) slot.users.store(1, std::memory_order_relaxed);
    slot.handle.store(handle, std::memory_order_release);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): nobody follows it
    return reinterpret_cast<Handle>(handle);
}

Slot* slotOf(Handle handle) noexcept {
    if (!handle) return nullptr;
    Slot* const slot = slotAt(valueOf(handle) & kIndexMask);
    if (!slot || slot->handle.load(std::memory_order_acquire) != valueOf(handle)) return nullptr;
    return slot;
}

ObjectKind kindOf(Handle handle) noexcept {
    return static_cast<ObjectKind>(valueOf(handle) >> kIndexBits & kKindMask);
}

Slot* retire(Handle handle) noexcept {
    Slot* const slot = slotOf(handle);
    std::uintptr_t expected = valueOf(handle);
    return slot && slot->handle.compare_exchange_strong(expected, 0) ? slot : nullptr;
}

bool keep(Slot& slot) noexcept {
    std::uint32_t users = slot.users.load(std::memory_order_relaxed);
    do {
        if (users == 0) return false;
    } while (!slot.users.compare_exchange_weak(users, users + 1));
    return true;
}

bool letGo(Slot& slot) noexcept {
    return slot.users.fetch_sub(1) == 1;
}

ObjectsGuard::ObjectsGuard() noexcept {
    lockObjects();
}

ObjectsGuard::~ObjectsGuard() {
    unlockObjects();
}

}  // namespace vexa::platform
