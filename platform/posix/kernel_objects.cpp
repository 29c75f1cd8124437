#include "platform/kernel_objects.h"

#include "platform/posix/handle_table.h"
#include "platform/posix/named_mutexes.h"
#include "platform/posix/object_path.h"
#include "platform/posix/shared_file.h"
#include "platform/posix/wide_length.h"

#include <memory>
#include <new>
#include <optional>

namespace vexa::platform {

namespace {

mode_t modeOf(const SECURITY_ATTRIBUTES* sa) {
    constexpr mode_t kForTheSameUser = 0600;
    if (!sa || !sa->lpSecurityDescriptor) return kForTheSameUser;
    return static_cast<const SECURITY_DESCRIPTOR*>(sa->lpSecurityDescriptor)->mode;
}

std::optional<ObjectPath> pathOf(const VexaWChar* name) {
    return ObjectPath::ofName({name, unitsBeforeTerminator(name)});
}

// ---- Shared memory -----------------------------------------------------------------------------

constexpr std::uint32_t kEventMark = 0x54455656;

// What the users of a named event share. The mark tells it from the garbage of others.
struct SharedEvent {
    std::uint32_t mark;
    EventState state;
};

struct EventStart {
    Reset reset;
    bool isSignalled;
};

bool initialiseEvent(void* memory, const void* how) noexcept {
    const auto& start = *static_cast<const EventStart*>(how);
    auto* const shared = std::construct_at(static_cast<SharedEvent*>(memory));
    shared->mark = kEventMark;
    shared->state.initialise(start.reset, start.isSignalled);
    return true;
}

bool leaveZeros(void* /*memory*/, const void* /*how*/) noexcept {
    return true;
}

EventState& eventIn(const SharedFile& file) {
    return static_cast<SharedEvent*>(file.memory())->state;
}

// ---- Objects -----------------------------------------------------------------------------------

Handle publishFile(std::unique_ptr<SharedFile> file, ObjectKind kind) {
    if (!file) return nullptr;
    Slot* const slot = takeSlot();
    if (!slot) return nullptr;

    slot->file = file.release();
    return publish(*slot, kind);
}

Handle createNamedEvent(const EventStart& start, const VexaWChar* name, mode_t mode) {
    const std::optional<ObjectPath> path = pathOf(name);
    if (!path) return nullptr;

    std::unique_ptr<SharedFile> file =
        SharedFile::open(*path, sizeof(SharedEvent), mode, &initialiseEvent, &start);
    if (!file || static_cast<SharedEvent*>(file->memory())->mark != kEventMark) return nullptr;
    return publishFile(std::move(file), ObjectKind::NamedEvent);
}

Handle createNamedMutex(const VexaWChar* name, mode_t mode) {
    const std::optional<ObjectPath> path = pathOf(name);
    if (!path) return nullptr;

    NamedMutex* const mutex = openNamedMutex(*path, mode);
    if (!mutex) return nullptr;
    Slot* const slot = takeSlot();
    if (!slot) {
        closeNamedMutex(mutex);
        return nullptr;
    }
    slot->namedMutex = mutex;
    return publish(*slot, ObjectKind::NamedMutex);
}

// Slots of mutexes that were closed while a thread held them. They cannot have another object before
// it lets go.
Slot* heldSlots = nullptr;

Slot* takeFreedSlot() {
    const ObjectsGuard guard;
    for (Slot** link = &heldSlots; *link; link = &(*link)->next) {
        Slot* const slot = *link;
        if (!slot->mutex.isFree(slot->mutexHolder)) continue;
        *link = slot->next;
        return slot;
    }
    return nullptr;
}

Slot* takeSlotWithMutex() {
    if (Slot* const freed = takeFreedSlot()) return freed;
    Slot* const slot = takeSlot();
    if (slot && !slot->hasMutex) {
        slot->mutex.initialise(Sharing::Process);
        slot->hasMutex = true;
    }
    return slot;
}

void giveMutexSlotBack(Slot& slot) {
    if (slot.mutex.isFree(slot.mutexHolder)) {
        giveSlotBack(slot);
        return;
    }
    const ObjectsGuard guard;
    slot.next = heldSlots;
    heldSlots = &slot;
}

void destroyNamed(Slot& slot) {
    if (NamedMutex* const mutex = slot.namedMutex) {
        slot.namedMutex = nullptr;
        closeNamedMutex(mutex);
    } else {
        delete slot.file;
        slot.file = nullptr;
    }
    giveSlotBack(slot);
}

// Keeps a named object open as long as this one lives.
class Kept {
public:
    explicit Kept(Slot& slot, Handle handle) : slot_(keep(slot) ? &slot : nullptr) {
        isTheOne_ = slot_ && slotOf(handle) == slot_;
    }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;
    ~Kept() {
        if (slot_ && letGo(*slot_)) destroyNamed(*slot_);
    }

    explicit operator bool() const { return isTheOne_; }

private:
    Slot* slot_;
    bool isTheOne_;
};

// What an operation gives on the event of a handle, wherever that is; `otherwise` where there is none.
template <typename Result, typename Operation>
Result onEvent(Handle handle, Result otherwise, Operation operation) {
    Slot* const slot = slotOf(handle);
    if (!slot) return otherwise;
    if (kindOf(handle) == ObjectKind::Event) return operation(slot->event, Sharing::Process);
    if (kindOf(handle) != ObjectKind::NamedEvent) return otherwise;

    const Kept kept(*slot, handle);
    return kept ? operation(eventIn(*slot->file), Sharing::Machine) : otherwise;
}

// The same on the memory of a handle. One after the other: its address comes and goes.
template <typename Result, typename Operation>
Result onMapping(Handle handle, Result otherwise, Operation operation) {
    Slot* const slot = slotOf(handle);
    if (!slot || kindOf(handle) != ObjectKind::Mapping) return otherwise;

    const Kept kept(*slot, handle);
    if (!kept) return otherwise;
    const ObjectsGuard guard;
    return operation(*slot->file);
}

// A handle that was closed while somebody waited leads to another object by now: what was had of that
// is given back.
WaitResult waitForUnnamed(Slot& slot, Handle handle, std::uint32_t milliseconds) {
    const bool isMutex = kindOf(handle) == ObjectKind::Mutex;
    const WaitResult result = isMutex ? slot.mutex.wait(milliseconds, slot.mutexHolder)
                                      : slot.event.wait(milliseconds, Sharing::Process);
    if (slot.handle.load(std::memory_order_acquire) == reinterpret_cast<std::uintptr_t>(handle) ||
        result == WaitResult::TimedOut || result == WaitResult::Failed) {
        return result;
    }
    if (isMutex) {
        slot.mutex.release(slot.mutexHolder);
    } else if (slot.event.isManual.load(std::memory_order_relaxed) == 0) {
        slot.event.set(Sharing::Process);
    }
    return WaitResult::Failed;
}

}  // namespace

Handle createEvent(Reset reset, bool isSignalled, const VexaWChar* name,
                   SECURITY_ATTRIBUTES* sa) noexcept {
    if (name) return createNamedEvent({reset, isSignalled}, name, modeOf(sa));

    Slot* const slot = takeSlot();
    if (!slot) return nullptr;
    slot->event.initialise(reset, isSignalled);
    return publish(*slot, ObjectKind::Event);
}

Handle createMutex(const VexaWChar* name, SECURITY_ATTRIBUTES* sa) noexcept {
    if (name) return createNamedMutex(name, modeOf(sa));

    Slot* const slot = takeSlotWithMutex();
    return slot ? publish(*slot, ObjectKind::Mutex) : nullptr;
}

Handle createMapping(std::uint32_t size, const VexaWChar* name, SECURITY_ATTRIBUTES* sa,
                     Handle event) noexcept {
    const std::optional<ObjectPath> path = name ? pathOf(name) : std::nullopt;
    if (!path) return nullptr;

    const auto open = [&] {
        return SharedFile::open(*path, size, modeOf(sa), &leaveZeros, nullptr);
    };
    Slot* const eventSlot = slotOf(event);
    if (!eventSlot || kindOf(event) != ObjectKind::NamedEvent) {
        return publishFile(open(), ObjectKind::Mapping);
    }
    const Kept kept(*eventSlot, event);
    if (!kept) return nullptr;

    // Who else wants the memory waits: nobody can set the event for it before.
    const SharedFile::Gate gate(*eventSlot->file);
    if (!gate) return nullptr;
    std::unique_ptr<SharedFile> file = open();
    if (file && file->isNew()) eventIn(*eventSlot->file).reset();
    return publishFile(std::move(file), ObjectKind::Mapping);
}

void* mapView(Handle mapping) noexcept {
    return onMapping(mapping, static_cast<void*>(nullptr),
                     [](SharedFile& file) { return file.map() ? file.memory() : nullptr; });
}

bool isMapped(Handle mapping, const void* view) noexcept {
    return view &&
           onMapping(mapping, false, [=](SharedFile& file) { return file.memory() == view; });
}

void unmapView(Handle mapping, void* view) noexcept {
    onMapping(mapping, false, [=](SharedFile& file) {
        if (file.memory() == view) file.unmap();
        return true;
    });
}

bool setEvent(Handle event) noexcept {
    return onEvent(event, false, [](EventState& state, Sharing sharing) {
        state.set(sharing);
        return true;
    });
}

bool resetEvent(Handle event) noexcept {
    return onEvent(event, false, [](EventState& state, Sharing /*sharing*/) {
        state.reset();
        return true;
    });
}

bool releaseMutex(Handle mutex) noexcept {
    Slot* const slot = slotOf(mutex);
    if (!slot) return false;
    if (kindOf(mutex) == ObjectKind::Mutex) return slot->mutex.release(slot->mutexHolder);
    if (kindOf(mutex) != ObjectKind::NamedMutex) return false;

    const Kept kept(*slot, mutex);
    return kept && releaseNamed(*slot->namedMutex);
}

WaitResult waitFor(Handle object, std::uint32_t milliseconds) noexcept {
    Slot* const slot = slotOf(object);
    if (!slot) return WaitResult::Failed;
    switch (kindOf(object)) {
        case ObjectKind::Event:
        case ObjectKind::Mutex: return waitForUnnamed(*slot, object, milliseconds);
        case ObjectKind::NamedMutex: {
            const Kept kept(*slot, object);
            return kept ? waitForNamed(*slot->namedMutex, milliseconds) : WaitResult::Failed;
        }
        default:
            return onEvent(object, WaitResult::Failed, [=](EventState& state, Sharing sharing) {
                return state.wait(milliseconds, sharing);
            });
    }
}

bool closeHandle(Handle object) noexcept {
    Slot* const slot = retire(object);
    if (!slot) return false;
    switch (kindOf(object)) {
        case ObjectKind::Event: giveSlotBack(*slot); break;
        case ObjectKind::Mutex: giveMutexSlotBack(*slot); break;
        default:
            if (letGo(*slot)) destroyNamed(*slot);
    }
    return true;
}

}  // namespace vexa::platform
