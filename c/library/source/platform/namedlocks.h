#pragma once

#include <cstdint>
#include <string_view>

// Locks by name between the processes of a machine. A lock is free again when
// its holder ends, however it ends. Names are bytes, and names that differ are
// different locks.

struct OsNamedLock;

// How soon to look again where the system cannot tell that a lock is free.
constexpr uint32_t kOsNamedLockPoll = 10;

// Takes a free lock into `*lock`. While somebody else holds it, this process
// included, `*lock` is null and the result 0; with `wait` the call then waits as
// long as it takes, where the system can tell. Otherwise gives the system's error
// number, as for a name that the system does not take.
int osNamedLockTake(std::string_view name, bool wait, OsNamedLock** lock);

// Gives the lock up, by the thread that took it, and clears the pointer. Gives
// the system's error number when it is held still, and the pointer stays.
int osNamedLockRelease(OsNamedLock** lock);
