#include "platform/critical_section.h"

#include <windows.h>

namespace vexa::platform {

namespace {

CRITICAL_SECTION* systemSection(std::byte* section) {
    return reinterpret_cast<CRITICAL_SECTION*>(section);
}

}  // namespace

CriticalSection::CriticalSection() noexcept {
    static_assert(sizeof(CRITICAL_SECTION) <= kSize && alignof(CRITICAL_SECTION) <= 8);

    InitializeCriticalSection(systemSection(section_.data()));
}

CriticalSection::~CriticalSection() {
    DeleteCriticalSection(systemSection(section_.data()));
}

void CriticalSection::enter() noexcept {
    EnterCriticalSection(systemSection(section_.data()));
}

bool CriticalSection::tryEnter() noexcept {
    return TryEnterCriticalSection(systemSection(section_.data())) != 0;
}

void CriticalSection::leave() noexcept {
    LeaveCriticalSection(systemSection(section_.data()));
}

}  // namespace vexa::platform
