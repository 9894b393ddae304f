#pragma once

#include <cstdint>

// Threads. Functions with an int result give the system's error number, 0 for
// success.

struct OsThread;

using OsThreadFunction = unsigned (*)(void* argument);

// Starts a thread. Once this returns, messages can be posted to it. The caller
// ends the handle with `osThreadClose`; on failure `*thread` is null.
int osThreadStart(OsThread** thread, OsThreadFunction function, void* argument);

// The number by which the system knows the thread, and that of the calling one.
uint32_t osThreadId(const OsThread* thread);
uint32_t osCurrentThreadId();

// Lets a thread go first that waits for the processor; comes back at once when none does.
void osThreadYield();

// Whether the thread's function has come to its end.
int osThreadHasEnded(OsThread* thread, bool* ended);

// Waits until it has, at most `milliseconds` of real time. False when the time is over.
bool osThreadWait(OsThread* thread, uint32_t milliseconds);

// Ends the thread. It is asked by `kOsMessageDestroy` and waited for, at most
// `kOsTerminateWait`. Then it is killed where threads can be, with what it held
// left as it is; elsewhere the time-out is the failure, and the thread goes on.
int osThreadTerminate(OsThread* thread);
constexpr uint32_t kOsTerminateWait = 1000;

// Gives the handle back; a thread that still runs goes on without one.
void osThreadClose(OsThread** thread);
