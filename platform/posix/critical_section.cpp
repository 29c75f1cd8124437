#include "platform/critical_section.h"

#include <new>
#include <pthread.h>

namespace vexa::platform {

namespace {

pthread_mutex_t* mutexIn(std::byte* section) {
    return std::launder(reinterpret_cast<pthread_mutex_t*>(section));
}

}  // namespace

CriticalSection::CriticalSection() noexcept {
    static_assert(sizeof(pthread_mutex_t) <= kSize && alignof(pthread_mutex_t) <= 8);

    constexpr pthread_mutex_t kRecursive = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
    new (section_.data()) pthread_mutex_t(kRecursive);
}

CriticalSection::~CriticalSection() {
    pthread_mutex_destroy(mutexIn(section_.data()));
}

void CriticalSection::enter() noexcept {
    pthread_mutex_lock(mutexIn(section_.data()));
}

bool CriticalSection::tryEnter() noexcept {
    return pthread_mutex_trylock(mutexIn(section_.data())) == 0;
}

void CriticalSection::leave() noexcept {
    pthread_mutex_unlock(mutexIn(section_.data()));
}

}  // namespace vexa::platform
