#pragma once

#include "platform/kernel_objects.h"
#include "platform/posix/event_state.h"
#include "platform/posix/mutex_state.h"

#include <atomic>
#include <cstdint>

namespace vexa::platform {

class SharedFile;
class NamedMutex;

enum class ObjectKind : std::uint8_t { Event = 1, Mutex, NamedEvent, NamedMutex, Mapping };

/// Where the object of a handle lives. Slots are used again and again but never given back to the
/// system: a handle that is closed meanwhile leads to another object at worst, and not astray.
struct alignas(64) Slot {
    /// The handle of the object; 0 while there is none.
    std::atomic<std::uintptr_t> handle{0};
    /// Of named objects alone: who is at work with the object, and one more while it is open.
    std::atomic<std::uint32_t> users{0};
    std::uint32_t index = 0;
    std::uint32_t uses = 0;
    Slot* next = nullptr;

    EventState event{};
    /// Made once: late users of a closed handle may still be inside.
    bool hasMutex = false;
    MutexState mutex{};
    MutexHolder mutexHolder;
    SharedFile* file = nullptr;
    NamedMutex* namedMutex = nullptr;
};

/// A free slot; null where there are no more.
Slot* takeSlot() noexcept;
void giveSlotBack(Slot& slot) noexcept;

/// Gives the object in the slot its handle.
Handle publish(Slot& slot, ObjectKind kind) noexcept;

/// The slot of an open object; null for handles that are none.
Slot* slotOf(Handle handle) noexcept;
ObjectKind kindOf(Handle handle) noexcept;

/// Ends a handle. @return its slot to the one caller who ended it, null to all others
Slot* retire(Handle handle) noexcept;

/// Keeps a named object while somebody is at work with it.
/// @return whether there is one to let go; it need not be that of the handle any more
bool keep(Slot& slot) noexcept;
/// @return whether the object is closed and nobody else is at work with it: it is the caller's to
///         destroy
bool letGo(Slot& slot) noexcept;

/// The one lock for what changes when objects come and go. A fork waits for it.
class ObjectsGuard {
public:
    ObjectsGuard() noexcept;
    ObjectsGuard(const ObjectsGuard&) = delete;
    ObjectsGuard& operator=(const ObjectsGuard&) = delete;
    ~ObjectsGuard();
};

}  // namespace vexa::platform
