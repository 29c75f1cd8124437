#pragma once

#include "vexakit/locks.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>

namespace vexa::test {

/// A mutex lock as it lies in memory.
struct MutexLockImage {
    void* functions;
    void* mutex;
};
static_assert(sizeof(MutexLockImage) == sizeof(MutexLock));

/// An inter-process lock as it lies in memory.
struct InterProcessLockImage {
    void* functions;
    std::uint32_t isSingleProcessor;
    void* event;
    void* mapping;
    void* block;
};
static_assert(sizeof(InterProcessLockImage) == sizeof(InterProcessLock));
static_assert(offsetof(InterProcessLockImage, isSingleProcessor) == 8);
static_assert(offsetof(InterProcessLockImage, event) == 16);
static_assert(offsetof(InterProcessLockImage, mapping) == 24);
static_assert(offsetof(InterProcessLockImage, block) == 32);

inline MutexLockImage imageOf(const MutexLock& lock) {
    MutexLockImage image{};
    std::memcpy(&image, static_cast<const void*>(&lock), sizeof image);
    return image;
}

inline InterProcessLockImage imageOf(const InterProcessLock& lock) {
    InterProcessLockImage image{};
    std::memcpy(&image, static_cast<const void*>(&lock), sizeof image);
    return image;
}

inline void setImage(InterProcessLock& lock, const InterProcessLockImage& image) {
    std::memcpy(static_cast<void*>(&lock), &image, sizeof image);
}

/// Whether the lock got its system objects.
inline bool isMade(const MutexLock& lock) {
    return imageOf(lock).mutex != nullptr;
}

inline bool isMade(const InterProcessLock& lock) {
    return imageOf(lock).block != nullptr;
}

/// Where the fields of the shared block lie.
constexpr std::size_t kSpinCountAt = 0;
constexpr std::size_t kLockCountAt = 4;
constexpr std::size_t kOwnerThreadAt = 8;
constexpr std::size_t kOwnerProcessAt = 12;
constexpr std::size_t kOwnerLockAt = 16;
constexpr std::size_t kRecursionAt = 24;
constexpr std::size_t kUnusedAt = 28;

template <class Word>
std::atomic_ref<Word> fieldOf(const InterProcessLock& lock, std::size_t offset) {
    auto* const field = static_cast<unsigned char*>(imageOf(lock).block) + offset;
    return std::atomic_ref<Word>{*reinterpret_cast<Word*>(field)};
}

inline std::uint64_t addressOf(const InterProcessLock& lock) {
    return reinterpret_cast<std::uintptr_t>(&lock);
}

/// What stands in the shared block.
struct BlockState {
    std::uint32_t spinCount = 0;
    std::int32_t lockCount = 0;
    std::uint32_t ownerThread = 0;
    std::uint32_t ownerProcess = 0;
    std::uint64_t ownerLock = 0;
    std::int32_t recursion = 0;
    std::uint32_t unused = 0;

    bool operator==(const BlockState&) const = default;

    friend std::ostream& operator<<(std::ostream& out, const BlockState& block) {
        return out << "spin " << block.spinCount << ", count " << block.lockCount << ", thread "
                   << block.ownerThread << ", process " << block.ownerProcess << ", lock "
                   << block.ownerLock << ", recursion " << block.recursion << ", unused "
                   << block.unused;
    }
};

inline BlockState blockOf(const InterProcessLock& lock) {
    return {fieldOf<std::uint32_t>(lock, kSpinCountAt).load(),
            fieldOf<std::int32_t>(lock, kLockCountAt).load(),
            fieldOf<std::uint32_t>(lock, kOwnerThreadAt).load(),
            fieldOf<std::uint32_t>(lock, kOwnerProcessAt).load(),
            fieldOf<std::uint64_t>(lock, kOwnerLockAt).load(),
            fieldOf<std::int32_t>(lock, kRecursionAt).load(),
            fieldOf<std::uint32_t>(lock, kUnusedAt).load()};
}

inline std::int32_t lockCountOf(const InterProcessLock& lock) {
    return fieldOf<std::int32_t>(lock, kLockCountAt).load();
}

}  // namespace vexa::test
