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

Slot* takeSlotForMutex() {
    Slot* freed = nullptr;
    {
        const ObjectsGuard guard;
        for (Slot** link = &heldSlots; *link && !freed;) {
            if ((*link)->mutexHolder.isAlive()) {
                link = &(*link)->next;
            } else {
                freed = *link;
                *link = freed->next;
            }
        }
    }
    return freed ? freed : takeSlot();
}

void giveMutexSlotBack(Slot& slot) {
    if (!slot.mutexHolder.isAlive()) {
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

    Slot* const slot = takeSlotForMutex();
    if (!slot) return nullptr;
    slot->mutexHolder.reset();
    if (!slot->mutex.initialise(Sharing::Process)) {
        giveSlotBack(*slot);
        return nullptr;
    }
    return publish(*slot, ObjectKind::Mutex);
}

Handle createMapping(std::uint32_t size, const VexaWChar* name, SECURITY_ATTRIBUTES* sa) noexcept {
    const std::optional<ObjectPath> path = name ? pathOf(name) : std::nullopt;
    if (!path) return nullptr;
    return publishFile(SharedFile::open(*path, size, modeOf(sa), &leaveZeros, nullptr),
                       ObjectKind::Mapping);
}

void* mapView(Handle mapping) noexcept {
    Slot* const slot = slotOf(mapping);
    if (!slot || kindOf(mapping) != ObjectKind::Mapping) return nullptr;
    const Kept kept(*slot, mapping);
    return kept ? slot->file->memory() : nullptr;
}

bool isMapped(Handle mapping, const void* view) noexcept {
    return view && mapView(mapping) == view;
}

void unmapView(Handle mapping, void* view) noexcept {
    Slot* const slot = slotOf(mapping);
    if (slot && isMapped(mapping, view)) slot->file->unmap();
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
    if (kindOf(object) == ObjectKind::Mutex) {
        return slot->mutex.wait(milliseconds, slot->mutexHolder);
    }
    if (kindOf(object) == ObjectKind::NamedMutex) {
        const Kept kept(*slot, object);
        return kept ? waitForNamed(*slot->namedMutex, milliseconds) : WaitResult::Failed;
    }
    return onEvent(object, WaitResult::Failed, [=](EventState& state, Sharing sharing) {
        return state.wait(milliseconds, sharing);
    });
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
