#include "platform/kernel_objects.h"
#include "platform/short_lock.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

#include <atomic>
#include <cstddef>
#include <new>

using namespace vexa;
using platform::kNoTimeLimit;
using platform::Reset;

namespace {

constexpr int32_t kNoReader = -1;
constexpr int32_t kToWrite = 0;
constexpr int32_t kToRead = 1;

std::atomic_ref<int32_t> shared(int32_t& count) {
    return std::atomic_ref<int32_t>(count);
}

bool isMode(int32_t mode) {
    return mode == kToRead || mode == kToWrite;
}

void closeAndForget(void*& handle) {
    platform::closeHandle(handle);
    handle = nullptr;
}

}  // namespace

RWLock::RWLock() = default;
RWLock::RWLock(const RWLock& other) = default;
RWLock& RWLock::operator=(const RWLock& other) = default;
RWLock::~RWLock() = default;

int RWLock::Initialize() {
    readerCount_ = kNoReader;
    readerEvent_ = platform::createEvent(Reset::Manual, false, nullptr, nullptr);
    gateEvent_ = platform::createEvent(Reset::Automatic, true, nullptr, nullptr);
    writerMutex_ = platform::createMutex(nullptr, nullptr);
    if (readerEvent_ && gateEvent_ && writerMutex_) return VEXA_SUCCESS;

    closeAndForget(readerEvent_);
    closeAndForget(gateEvent_);
    closeAndForget(writerMutex_);
    return VEXA_FAILURE;
}

// The first reader takes the gate for all of them.
void RWLock::Claim(int toRead) {
    if (toRead == kToWrite) {
        platform::waitFor(writerMutex_, kNoTimeLimit);
        platform::waitFor(gateEvent_, kNoTimeLimit);
        return;
    }
    if (shared(readerCount_).fetch_add(1) == kNoReader) {
        platform::waitFor(gateEvent_, kNoTimeLimit);
        platform::setEvent(readerEvent_);
    }
    platform::waitFor(readerEvent_, kNoTimeLimit);
}

int RWLock::Release(int toRead) {
    if (toRead == kToWrite) {
        platform::setEvent(gateEvent_);
        platform::releaseMutex(writerMutex_);
        return VEXA_SUCCESS;
    }
    // By one leaving reader at a time: if two mixed their steps, one could open the way for readers
    // after the other had given the gate to a writer.
    const platform::ShortLockGuard guard(leaving_);
    if (shared(readerCount_).fetch_add(0) < 0) return VEXA_FAILURE;

    platform::resetEvent(readerEvent_);
    const bool isLast = shared(readerCount_).fetch_sub(1) - 1 < 0;
    platform::setEvent(isLast ? gateEvent_ : readerEvent_);
    return VEXA_SUCCESS;
}

// The handles stay as they are: copies have them, too, and closing them again does nothing.
void RWLock::Cleanup() {
    platform::closeHandle(readerEvent_);
    platform::closeHandle(gateEvent_);
    platform::closeHandle(writerMutex_);
}

uint32_t rwlock_create(RWLock** lock) {
    if (!lock) return VEXA_FAILURE;
    auto* const made = new (std::nothrow) RWLock;
    if (!made) return VEXA_FAILURE;

    if (const int status = made->Initialize(); status != VEXA_SUCCESS) {
        delete made;
        return static_cast<uint32_t>(status);
    }
    *lock = made;
    return VEXA_SUCCESS;
}

uint32_t rwlock_destroy(RWLock** lock) {
    if (!lock || !*lock) return VEXA_FAILURE;

    RWLock* const ended = *lock;
    *lock = nullptr;
    ended->Cleanup();
    delete ended;
    return VEXA_SUCCESS;
}

uint32_t rwlock_claim(RWLock* lock, int32_t mode) {
    if (!lock || !isMode(mode)) return VEXA_FAILURE;

    lock->Claim(mode);
    return VEXA_SUCCESS;
}

uint32_t rwlock_release(RWLock* lock, int32_t mode) {
    if (!lock || !isMode(mode)) return VEXA_FAILURE;

    return static_cast<uint32_t>(lock->Release(mode));
}
