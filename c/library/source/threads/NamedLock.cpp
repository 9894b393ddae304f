#include "threads/NamedLock.h"

#include "containers/Memory.h"
#include "logger/StandardOutput.h"
#include "platform/clock.h"
#include "platform/namedlocks.h"

NamedLock* namedLockCreate(const String* name) {
    if (stringIsEmpty(name)) return nullptr;
    Owned<NamedLock> lock(memNew<NamedLock>());
    if (!lock) return nullptr;
    lock->name = stringClone(name);
    return lock->name == nullptr ? nullptr : lock.release();
}

void namedLockDestroy(NamedLock** lock) {
    if (lock == nullptr || *lock == nullptr) return;
    if ((*lock)->mutex != nullptr) osNamedLockRelease(&(*lock)->mutex);
    stringDestroy(&(*lock)->name);
    memDelete(lock);
}

void namedLockDestroyElement(void** element) {
    if (element == nullptr) return;
    auto* lock = static_cast<NamedLock*>(*element);
    namedLockDestroy(&lock);
    *element = nullptr;
}

bool namedLockTake(NamedLock* lock) {
    if (lock == nullptr || lock->mutex != nullptr) return false;
    if (osNamedLockTake(stringView(lock->name), false, &lock->mutex) != 0) return false;
    if (lock->mutex != nullptr) lock->count = 1;
    return lock->mutex != nullptr;
}

bool namedLockTakeWaiting(NamedLock* lock) {
    if (lock == nullptr) return false;
    if (lock->count > 0) {
        ++lock->count;
        return true;
    }
    if (namedLockTake(lock)) return true;
    outputFlush();
    while (osNamedLockTake(stringView(lock->name), true, &lock->mutex) == 0) {
        if (lock->mutex != nullptr) {
            lock->count = 1;
            return true;
        }
        osSleep(kOsNamedLockPoll);
    }
    return false;
}

bool namedLockRelease(NamedLock* lock) {
    if (lock == nullptr || lock->mutex == nullptr) return false;
    if (lock->count == 0) return true;
    if (lock->count == 1 && osNamedLockRelease(&lock->mutex) != 0) return false;
    --lock->count;
    return true;
}
