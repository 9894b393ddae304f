#pragma once

#include <cstddef>

// A mutex in place, that the thread which holds it may lock again and must then
// unlock as often. It needs no allocation and must not move in memory between
// `osMutexInit` and `osMutexTerm`.
struct OsMutex {
    alignas(std::max_align_t) unsigned char storage[64];
};

// Makes a free mutex. False when the system has no means left; then the mutex
// must not be used, nor ended.
bool osMutexInit(OsMutex* mutex);

// Waits until the mutex is free or this thread's own, and holds it.
void osMutexLock(OsMutex* mutex);

// Gives up one lock of this thread, which must hold the mutex.
void osMutexUnlock(OsMutex* mutex);

// Ends a mutex that nobody holds.
void osMutexTerm(OsMutex* mutex);
