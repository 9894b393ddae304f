#pragma once

#include <cstdint>

struct OsEvent;

// The process-wide flag that says that the program ends. Every waiting loop
// looks at it, without a lock.

// True once the program ends.
bool quitFlagIsSet();

// Sets the flag and ends every wait of `sleepInterruptible`, now and later.
void quitFlagSet();

// The event that the flag raises, for waits that have more to wait for. Lives as
// long as the process: a wait may be under way until the very end.
OsEvent* quitEvent();

// For tests: as if the program had just started.
void quitFlagReset();

// Waits `milliseconds`, in steps of at most 50 with a look at the flag between
// them; below that it is a plain sleep. Setting the flag and a message that
// arrives for the calling thread end it sooner. The 32-bit tick is its clock.
void sleepInterruptible(uint32_t milliseconds);
