#pragma once

#include <cstddef>

// What belongs to the process and the thread that runs its program: the stack,
// requests to stop, and the end by a fault.

// Calls `function` on a stack of `bytes`, or as near to that as can be had,
// reserved but not yet used: on a thread of its own, or on the calling one where
// the program's file says how large its stack is. The messages that wait for
// the calling thread go over with it. Gives the function's result.
int osRunOnDeepStack(size_t bytes, int (*function)(void*), void* argument);

// Bytes left on the calling thread's stack. Costs a few instructions.
size_t osStackLeft();

// What is to be done before a signal ends the process; must end by itself soon
// after the time given.
using OsLastWords = bool (*)(unsigned milliseconds);

// Before the first thread is started. A request from outside to stop now
// becomes `kOsMessageClose` in the queue of the thread that runs the program: the
// calling one, or that of `osRunOnDeepStack`. A second request, before the first
// was taken, ends the process as if there were no such arrangement, and an
// interrupt from the keyboard always does; `lastWords` (may be null) is called
// first. What the process was started to ignore it goes on ignoring, except a
// request to stop. Writing to a reader that has gone, or beyond the limit of a
// file's size, becomes an error number.
// Gives the system's error number, 0 for success.
int osStopMessagesStart(OsLastWords lastWords);

// Ends the process by the fault of an integer division, as the processor's own
// would. What is to be written out must have been. Does not return.
[[noreturn]] void osRaiseIntegerDivisionFault();
