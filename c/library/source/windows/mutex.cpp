#include "platform/mutex.h"

#include <windows.h>

#include <new>

static_assert(sizeof(CRITICAL_SECTION) <= sizeof(OsMutex));

static CRITICAL_SECTION* sectionOf(OsMutex* mutex) {
    return std::launder(reinterpret_cast<CRITICAL_SECTION*>(mutex->storage));
}

bool osMutexInit(OsMutex* mutex) {
    InitializeCriticalSection(new (mutex->storage) CRITICAL_SECTION);
    return true;
}

void osMutexLock(OsMutex* mutex) {
    EnterCriticalSection(sectionOf(mutex));
}

void osMutexUnlock(OsMutex* mutex) {
    LeaveCriticalSection(sectionOf(mutex));
}

void osMutexTerm(OsMutex* mutex) {
    DeleteCriticalSection(sectionOf(mutex));
}
