#pragma once

#include "platform/critical_section.h"
#include "vexakit/locks.h"

namespace vexa {

/// One re-entrant lock of this process, on its own or as one of several slots.
class ThreadLock {
public:
    ThreadLock() = default;
    ThreadLock(const ThreadLock&) = delete;
    ThreadLock& operator=(const ThreadLock&) = delete;
    virtual ~ThreadLock() = default;

    void enter() noexcept { section_.enter(); }
    void leave() noexcept { section_.leave(); }

private:
    platform::CriticalSection section_;
};

using ThreadLockGuard = Oreval::ScopedResource<ThreadLock*, ThreadLockRelease<ThreadLock*>,
                                               ThreadLockObtain<ThreadLock*>>;

}  // namespace vexa
