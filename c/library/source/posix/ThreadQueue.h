#pragma once

#include <cstdint>

// What the other supplies of this folder need of threads: descriptors that can
// stand beside any blocking call.

struct OsEvent;

// Readable once the event was raised; -1 for null.
int posixEventDescriptor(const OsEvent* event);

// Readable when a message came for the calling thread after the last look at its
// queue; -1 when the system had no descriptor for it.
int posixMessageDescriptor();

// Gives the calling thread the messages that wait for another one.
void posixTakeOverQueue(uint32_t fromThread);

// Whether the message waits in the queue of a thread.
bool posixHasMessage(uint32_t threadId, uint32_t message);
