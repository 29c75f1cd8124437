#pragma once

#include "platform/kernel_objects.h"
#include "vexakit/locks.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vexa::test {

/// The fields of the lock classes where their users' compilers put them: behind the table of virtual
/// functions.

// NOLINTBEGIN(bugprone-sizeof-expression): a field may be a pointer, and is copied as one

template <class Field, class Object>
Field fieldAt(const Object& object, std::size_t offset) {
    Field field{};
    std::memcpy(&field, reinterpret_cast<const std::byte*>(&object) + offset, sizeof(Field));
    return field;
}

template <class Field, class Object>
void setFieldAt(Object& object, std::size_t offset, const Field& value) {
    std::memcpy(reinterpret_cast<std::byte*>(&object) + offset, &value, sizeof(Field));
}

// NOLINTEND(bugprone-sizeof-expression)

inline ThreadLock* slotsOf(const CThreadLock& locks) {
    return fieldAt<ThreadLock*>(locks, 8);
}

inline platform::Handle readerEventOf(const RWLock& lock) {
    return fieldAt<platform::Handle>(lock, 8);
}

inline platform::Handle gateOf(const RWLock& lock) {
    return fieldAt<platform::Handle>(lock, 16);
}

inline platform::Handle writerMutexOf(const RWLock& lock) {
    return fieldAt<platform::Handle>(lock, 24);
}

/// While others may be at work with the lock, too.
inline std::int32_t readerCountOf(RWLock& lock) {
    auto* const bytes = reinterpret_cast<std::byte*>(&lock);
    return std::atomic_ref(*reinterpret_cast<std::int32_t*>(bytes + 32)).load();
}

inline bool isSignalled(platform::Handle event) {
    return platform::waitFor(event, 0) == platform::WaitResult::Signalled;
}

/// An open gate is opened again: to look closes it.
inline bool isGateOpen(const RWLock& lock) {
    if (!isSignalled(gateOf(lock))) return false;
    platform::setEvent(gateOf(lock));
    return true;
}

inline bool isOwnedByAnother(platform::Handle mutex) {
    if (platform::waitFor(mutex, 0) == platform::WaitResult::TimedOut) return true;
    platform::releaseMutex(mutex);
    return false;
}

/// Free, as it was at first.
inline bool isFree(RWLock& lock) {
    return readerCountOf(lock) == -1 && !isSignalled(readerEventOf(lock)) && isGateOpen(lock) &&
           !isOwnedByAnother(writerMutexOf(lock));
}

}  // namespace vexa::test
