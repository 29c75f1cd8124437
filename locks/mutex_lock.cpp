#include "locks/object_name.h"
#include "platform/kernel_objects.h"
#include "platform/security.h"
#include "vexakit/locks.h"
#include "vexakit/types.h"

using namespace vexa;
using platform::kNoTimeLimit;
using platform::WaitResult;

int MutexLock::AllocateSecurityDescriptor(SECURITY_ATTRIBUTES** sa) {
    SECURITY_ATTRIBUTES* const made = platform::makeOpenSecurity();
    if (!made) return VEXA_FAILURE;
    *sa = made;
    return VEXA_SUCCESS;
}

int MutexLock::FreeSecurityDescriptor(SECURITY_ATTRIBUTES** sa) {
    platform::freeSecurity(*sa);
    *sa = nullptr;
    return VEXA_SUCCESS;
}

// Without security of its own the lock would be open to the same user alone: it then is not made.
MutexLock::MutexLock(const VexaWChar* name, SECURITY_ATTRIBUTES* sa) {
    SECURITY_ATTRIBUTES* ownSa = nullptr;
    if (!sa && AllocateSecurityDescriptor(&ownSa) != VEXA_SUCCESS) return;

    const ObjectName objectName = name ? formatObjectName("Mutex_%s", name) : ObjectName{};
    mutex_ = platform::createMutex(name ? objectName.data() : nullptr, sa ? sa : ownSa);
    if (ownSa) FreeSecurityDescriptor(&ownSa);
}

MutexLock::MutexLock(const MutexLock& other) = default;
MutexLock& MutexLock::operator=(const MutexLock& other) = default;

MutexLock::~MutexLock() {
    platform::closeHandle(mutex_);
}

void MutexLock::ObtainLock() {
    platform::waitFor(mutex_, kNoTimeLimit);
}

// An abandoned mutex is not had in good order, although it is the caller's from here.
bool MutexLock::TryLock() {
    return platform::waitFor(mutex_, 0) == WaitResult::Signalled;
}

void MutexLock::ReleaseLock() {
    platform::releaseMutex(mutex_);
}
