#include "locks/slot_array.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

#include <new>
#include <stdexcept>

using namespace vexa;

namespace {

void checkId(uint32_t lockId, uint32_t count) {
    if (lockId >= count) throw std::out_of_range("lockId");
}

}  // namespace

CThreadLock::CThreadLock(uint32_t count) : slots_(makeSlots(count)), count_(count) {}

CThreadLock::CThreadLock(const CThreadLock& other)
    : slots_(shareSlots(other.slots_)), count_(other.count_) {}

CThreadLock& CThreadLock::operator=(const CThreadLock& other) {
    if (this == &other) return *this;

    ThreadLock* const before = slots_;
    slots_ = shareSlots(other.slots_);
    count_ = other.count_;
    dropSlots(before);
    return *this;
}

CThreadLock::~CThreadLock() {
    dropSlots(slots_);
}

void CThreadLock::ObtainLock(uint32_t lockId) {
    checkId(lockId, count_);
    slots_[lockId].Enter();
}

int32_t CThreadLock::TryLock(uint32_t lockId) {
    checkId(lockId, count_);
    return slots_[lockId].TryEnter() ? 1 : 0;
}

void CThreadLock::ReleaseLock(uint32_t lockId) {
    checkId(lockId, count_);
    slots_[lockId].Leave();
}

uint32_t CThreadLock::GetLocksSize() const {
    return count_;
}

uint32_t threadLock_create(CThreadLock** lock, uint32_t count) {
    if (!lock) return VEXA_FAILURE;
    try {
        *lock = new CThreadLock(count);
    } catch (const std::bad_alloc&) {
        return VEXA_FAILURE;
    }
    return VEXA_SUCCESS;
}

uint32_t threadLock_destroy(CThreadLock** lock) {
    if (!lock || !*lock) return VEXA_FAILURE;

    delete *lock;
    *lock = nullptr;
    return VEXA_SUCCESS;
}

uint32_t threadLock_lock(CThreadLock* lock, uint32_t lockId) {
    if (!lock) return VEXA_FAILURE;

    lock->ObtainLock(lockId);
    return VEXA_SUCCESS;
}

uint32_t threadLock_unlock(CThreadLock* lock, uint32_t lockId) {
    if (!lock) return VEXA_FAILURE;

    lock->ReleaseLock(lockId);
    return VEXA_SUCCESS;
}
