#pragma once

#include <cstdint>

#include "containers/Owned.h"
#include "strings/String.h"

struct OsNamedLock;

// A lock that processes share by its name: one of them holds it at a time. Null
// is tolerated everywhere. A lock is taken and released by one thread.
struct NamedLock {
    uint32_t count;      // how many times this process holds it; 0 when free
    String* name;        // owned; the system puts its own prefix before it
    OsNamedLock* mutex;  // held only while `count` is above 0
};

// A free lock, owned by the caller; null for an empty name and when memory runs out.
NamedLock* namedLockCreate(const String* name);

// Releases the lock, whatever its count is, and clears the caller's pointer.
void namedLockDestroy(NamedLock** lock);
// The same, for containers of locks as destructor of their elements.
void namedLockDestroyElement(void** element);

// Takes the lock if it is free. False when anybody holds it, this process
// included, and for a name that the system does not take.
bool namedLockTake(NamedLock* lock);

// The same, but waits until the lock is free, as long as it takes; what this
// process holds it holds once more. False when there is nothing to wait for.
bool namedLockTakeWaiting(NamedLock* lock);

// Gives back one take. False when it is not held, or the system refuses.
bool namedLockRelease(NamedLock* lock);

template <>
struct OwnedTraits<NamedLock> {
    static void destroy(NamedLock** lock) { namedLockDestroy(lock); }
};
