#pragma once

#include <cstddef>
#include <cstdint>

// Threads, their message queues, and waits. Functions with an int result give the
// system's error number, 0 for success.

// ---- Threads ----

struct OsThread;

using OsThreadFunction = unsigned (*)(void* argument);

// Starts a thread. Once this returns, messages can be posted to it. The caller
// ends the handle with `osThreadClose`; on failure `*thread` is null.
int osThreadStart(OsThread** thread, OsThreadFunction function, void* argument);

// The number by which the system knows the thread, and that of the calling one.
uint32_t osThreadId(const OsThread* thread);
uint32_t osCurrentThreadId();

// Whether the thread's function has come to its end.
int osThreadHasEnded(OsThread* thread, bool* ended);

// Waits until it has, at most `milliseconds`. False when the time is over.
bool osThreadWait(OsThread* thread, uint32_t milliseconds);

// Ends the thread. Where a thread can be killed, it is: what it held stays as it
// is. Elsewhere it is asked by `kOsMessageDestroy` and waited for, at most
// `kOsTerminateWait`; a time-out then is the failure, and the thread goes on.
int osThreadTerminate(OsThread* thread);
constexpr uint32_t kOsTerminateWait = 1000;

// Gives the handle back; a thread that still runs goes on without one.
void osThreadClose(OsThread** thread);

// ---- Messages ----

// ORDER stop-messages: the numbers are those of the window messages.
enum OsMessage : uint32_t {
    kOsMessageDestroy = 2,
    kOsMessageClose = 16,
    kOsMessageQuit = 18,
};

// Puts a message at the end of a thread's queue. Fails for a thread that has none.
int osPostMessage(uint32_t threadId, uint32_t message);

// Takes the oldest message off the calling thread's queue, which is made if it
// has none yet. False, with nothing written, when the queue is empty.
bool osTakeMessage(uint32_t* message);

// ---- Events ----

// Something that happens once and stays so: every wait for it ends, now and later.
struct OsEvent;

// Null when the system has none left. The maker ends it with `osEventDestroy`,
// when nobody waits for it any more.
OsEvent* osEventCreate();
void osEventDestroy(OsEvent** event);
void osEventRaise(OsEvent* event);
// As if it had not happened.
void osEventClear(OsEvent* event);

enum class OsWake { Event, Message, Timeout };

// Waits for the event (may be null), for a message to the calling thread that
// came after the last look at its queue, or for the end of the time. A message
// ends one wait; it stays in the queue.
OsWake osWaitForEvent(OsEvent* event, uint32_t milliseconds);
