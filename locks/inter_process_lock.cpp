#include "locks/object_name.h"
#include "locks/shared_lock_block.h"
#include "platform/identity.h"
#include "platform/kernel_objects.h"
#include "platform/security.h"
#include "platform/wide_characters.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

#include <cstddef>

using namespace vexa;
using platform::Reset;
using platform::WaitResult;

namespace {

constexpr const char* kEventName = "IPLock_Event_%s";
constexpr const char* kMappingName = "IPLock_MMF_%s";
// Of a longer one the two formatted names would be cut at different places.
constexpr size_t kLongestName = 246;

constexpr uint32_t kNobody = 0;

SharedLockBlock& blockAt(void* address) {
    return *static_cast<SharedLockBlock*>(address);
}

bool fits(const VexaWChar* name) {
    return !name || platform::wideLengthWithin(name, kLongestName + 1) <= kLongestName;
}

bool isOwnedByCaller(const SharedLockBlock& block) {
    return block.ownerThread.load() == platform::currentThreadId();
}

// The owner's fields are written between the two steps on the count that begin and end its ownership,
// so they need no barriers of their own.
void setOwner(SharedLockBlock& block, const InterProcessLock* lock) {
    block.ownerThread.store(platform::currentThreadId(), std::memory_order_release);
    block.ownerProcess.store(platform::currentProcessId(), std::memory_order_release);
    block.ownerLock.store(reinterpret_cast<uint64_t>(lock), std::memory_order_release);
    block.recursion.store(1, std::memory_order_release);
}

// Before the count goes down: who takes the lock next writes its own.
void clearOwner(SharedLockBlock& block) {
    block.ownerThread.store(kNobody, std::memory_order_release);
    block.ownerProcess.store(kNobody, std::memory_order_release);
    block.ownerLock.store(0, std::memory_order_release);
    block.recursion.store(0, std::memory_order_release);
}

bool tryOnce(SharedLockBlock& block, const InterProcessLock* lock) {
    int32_t nobody = 0;
    if (block.lockCount.compare_exchange_strong(nobody, 1)) {
        setOwner(block, lock);
        return true;
    }
    if (!isOwnedByCaller(block)) return false;

    block.lockCount.fetch_add(1);
    block.recursion.fetch_add(1);
    return true;
}

}  // namespace

int InterProcessLock::AllocateSecurityDescriptor(SECURITY_ATTRIBUTES** sa) {
    if (!sa) return VEXA_FAILURE;

    SECURITY_ATTRIBUTES* const made = platform::makeOpenSecurity();
    if (!made) return VEXA_FAILURE;
    *sa = made;
    return VEXA_SUCCESS;
}

InterProcessLock::InterProcessLock(const VexaWChar* name, SECURITY_ATTRIBUTES* sa,
                                   uint32_t spinCount)
    : isSingleProcessor_(platform::processorCount() == 1 ? 1 : 0) {
    if (!fits(name)) return;

    SECURITY_ATTRIBUTES* ownSa = nullptr;
    if (!sa) AllocateSecurityDescriptor(&ownSa);  // without it the system's default will do
    SECURITY_ATTRIBUTES* const used = sa ? sa : ownSa;

    const ObjectName eventName = formatObjectName(kEventName, name);
    event_ = platform::createEvent(Reset::Automatic, false, eventName.data(), used);
    if (event_) {
        const ObjectName mappingName = formatObjectName(kMappingName, name);
        mapping_ =
            platform::createMapping(sizeof(SharedLockBlock), mappingName.data(), used, event_);
    }
    if (mapping_) block_ = platform::mapView(mapping_);
    SetSpinCount(spinCount);
    platform::freeSecurity(ownSa);
}

InterProcessLock::InterProcessLock(const InterProcessLock& other) = default;
InterProcessLock& InterProcessLock::operator=(const InterProcessLock& other) = default;

InterProcessLock::~InterProcessLock() {
    HardReleaseLock();
    platform::unmapView(mapping_, block_);
    platform::closeHandle(mapping_);
    platform::closeHandle(event_);
}

void InterProcessLock::SetSpinCount(uint32_t count) {
    if (!block_ || isSingleProcessor_ != 0) return;
    blockAt(block_).spinCount.exchange(count);
}

bool InterProcessLock::TryLock() {
    if (!block_) return false;

    SharedLockBlock& block = blockAt(block_);
    for (uint32_t retries = block.spinCount.load();; --retries) {
        if (tryOnce(block, this)) return true;
        if (retries == 0) return false;
    }
}

// Who is woken looks at nothing again: the count says that the lock is handed on.
void InterProcessLock::ObtainLock() {
    if (!block_ || TryLock()) return;

    constexpr int32_t kCallerAlone = 1;
    constexpr uint32_t kWaitMilliseconds = 1000;
    SharedLockBlock& block = blockAt(block_);
    if (block.lockCount.fetch_add(1) + 1 != kCallerAlone) {
        if (isOwnedByCaller(block)) {
            block.recursion.fetch_add(1);
            return;
        }
        while (platform::waitFor(event_, kWaitMilliseconds) == WaitResult::TimedOut) {
        }
    }
    setOwner(block, this);
}

void InterProcessLock::ReleaseLock() {
    if (!block_) return;
    SharedLockBlock& block = blockAt(block_);
    if (!isOwnedByCaller(block)) return;

    // Only the owner writes it, so it need not be one step.
    const int32_t depth = block.recursion.load(std::memory_order_relaxed) - 1;
    block.recursion.store(depth, std::memory_order_relaxed);
    if (depth > 0) {
        block.lockCount.fetch_sub(1);
        return;
    }
    clearOwner(block);
    const int32_t left = block.lockCount.fetch_sub(1) - 1;
    if (left > 0) platform::setEvent(event_);
}

void InterProcessLock::HardReleaseLock() {
    // A copy may have closed what this one has.
    if (!platform::isMapped(mapping_, block_)) return;
    SharedLockBlock& block = blockAt(block_);
    if (block.ownerLock.load() != reinterpret_cast<uint64_t>(this) ||
        block.ownerProcess.load() != platform::currentProcessId()) {
        return;
    }
    const int32_t depth = block.recursion.load();
    clearOwner(block);
    // The count of before: the event is set even where nobody waits, and the next who has to wait may
    // pass once at once.
    if (block.lockCount.fetch_sub(depth) > 0) platform::setEvent(event_);
}
