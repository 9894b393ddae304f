#pragma once

#include <atomic>
#include <cstdint>

#include "containers/Owned.h"
#include "platform/mutex.h"

// A critical section that its holder may enter again. Null is tolerated
// everywhere. Locks are made before the threads that use them and end after them.
struct Lock {
    std::atomic<uint32_t> depth;  // for a debugger to see; it lags behind the section
    OsMutex section;
};

// A free lock, owned by the caller; null when memory runs out.
Lock* lockCreate();

// Waits until the section is free for this thread.
void lockEnter(Lock* lock);
void lockLeave(Lock* lock);

// Leaves the lock once where it is held, releases it and clears the caller's
// pointer. The caller need not hold it.
void lockDestroy(Lock** lock);

// Holds a lock for the length of a scope.
class LockScope {
  public:
    explicit LockScope(Lock* lock) : lock_(lock) { lockEnter(lock_); }
    ~LockScope() { lockLeave(lock_); }
    LockScope(const LockScope&) = delete;
    LockScope& operator=(const LockScope&) = delete;

  private:
    Lock* lock_;
};

template <>
struct OwnedTraits<Lock> {
    static void destroy(Lock** lock) { lockDestroy(lock); }
};
