#include "platform/critical_section.h"
#include "vexakit/locks.h"

#include <new>

using vexa::platform::CriticalSection;

namespace {

CriticalSection& sectionIn(unsigned char* bytes) {
    return *std::launder(reinterpret_cast<CriticalSection*>(bytes));
}

}  // namespace

ThreadLock::ThreadLock() {
    static_assert(sizeof(CriticalSection) <= kSectionSize && alignof(CriticalSection) <= 8);

    new (section_) CriticalSection;
}

ThreadLock::~ThreadLock() {
    sectionIn(section_).~CriticalSection();
}

void ThreadLock::Enter() {
    sectionIn(section_).enter();
}

bool ThreadLock::TryEnter() {
    return sectionIn(section_).tryEnter();
}

void ThreadLock::Leave() {
    sectionIn(section_).leave();
}
