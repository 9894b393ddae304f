#pragma once

#include <cstdint>

// Messages from thread to thread, and waits that they and events end. Functions
// with an int result give the system's error number, 0 for success.

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
