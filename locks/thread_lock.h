#pragma once

#include "vexakit/locks.h"

namespace vexa {

using ThreadLockGuard = Oreval::ScopedResource<ThreadLock*, ThreadLockRelease<ThreadLock*>,
                                               ThreadLockObtain<ThreadLock*>>;

}  // namespace vexa
