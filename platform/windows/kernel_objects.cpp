#include "platform/kernel_objects.h"

#include <windows.h>

#include <cwchar>

namespace vexa::platform {

namespace {

// A system may take a backslash at the end for nothing, and open the object without it.
bool canBeUsed(const VexaWChar* name) {
    return !name || !std::wcschr(name, L'\\');
}

}  // namespace

Handle createEvent(Reset reset, bool isSignalled, const VexaWChar* name,
                   SECURITY_ATTRIBUTES* sa) noexcept {
    if (!canBeUsed(name)) return nullptr;
    return CreateEventW(sa, reset == Reset::Manual, isSignalled, name);
}

Handle createMutex(const VexaWChar* name, SECURITY_ATTRIBUTES* sa) noexcept {
    if (!canBeUsed(name)) return nullptr;
    return CreateMutexW(sa, FALSE, name);
}

Handle createMapping(std::uint32_t size, const VexaWChar* name, SECURITY_ATTRIBUTES* sa,
                     Handle /*event*/) noexcept {
    if (!canBeUsed(name)) return nullptr;
    return CreateFileMappingW(INVALID_HANDLE_VALUE, sa, PAGE_READWRITE, 0, size, name);
}

void* mapView(Handle mapping) noexcept {
    return MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0);
}

bool isMapped(Handle mapping, const void* view) noexcept {
    DWORD flags = 0;
    return view && mapping && GetHandleInformation(mapping, &flags) != 0;
}

void unmapView(Handle mapping, void* view) noexcept {
    if (isMapped(mapping, view)) UnmapViewOfFile(view);
}

bool setEvent(Handle event) noexcept {
    return SetEvent(event) != 0;
}

bool resetEvent(Handle event) noexcept {
    return ResetEvent(event) != 0;
}

bool releaseMutex(Handle mutex) noexcept {
    return ReleaseMutex(mutex) != 0;
}

WaitResult waitFor(Handle object, std::uint32_t milliseconds) noexcept {
    switch (WaitForSingleObject(object, milliseconds)) {
        case WAIT_OBJECT_0: return WaitResult::Signalled;
        case WAIT_ABANDONED: return WaitResult::Abandoned;
        case WAIT_TIMEOUT: return WaitResult::TimedOut;
        default: return WaitResult::Failed;
    }
}

bool closeHandle(Handle object) noexcept {
    return object && CloseHandle(object) != 0;
}

}  // namespace vexa::platform
