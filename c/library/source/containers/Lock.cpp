#include "containers/Lock.h"

#include "containers/Memory.h"

Lock* lockCreate() {
    Lock* lock = memNew<Lock>();
    if (lock != nullptr && !osMutexInit(&lock->section)) memDelete(&lock);
    return lock;
}

void lockEnter(Lock* lock) {
    if (lock == nullptr) return;
    osMutexLock(&lock->section);
    ++lock->depth;
}

void lockLeave(Lock* lock) {
    if (lock == nullptr) return;
    osMutexUnlock(&lock->section);
    --lock->depth;
}

void lockDestroy(Lock** lock) {
    if (lock == nullptr || *lock == nullptr) return;
    // The caller may hold it or not; a free section must not be left once more.
    if ((*lock)->depth != 0) lockLeave(*lock);
    osMutexTerm(&(*lock)->section);
    memDelete(lock);
}
