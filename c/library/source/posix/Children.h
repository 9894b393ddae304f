#pragma once

#include <sys/types.h>

#include <cstdint>

// The children of this process. Each is reaped soon after its end, also when
// nobody looks, and what it ended with stays known under its id, which means the
// child from then on and not who else may get that id from the system. Until a
// child is reaped its id cannot be anybody else's. Any thread may call.

struct Child;

// The record of a child that is about to be started, and the start's success.
// Null when memory runs out.
Child* childCreate();
void childStarted(Child* child, pid_t id);

// The child with the id that was let go and is remembered; null for a stranger.
Child* childFind(pid_t id);

// A descriptor that becomes readable with the child's end, for the caller to
// close; -1 when the child has been reaped, or the system has none.
int childDescriptor(Child* child);

// Whether the child has ended. `exitCode` gets what it ended with.
bool childHasEnded(Child* child, uint32_t* exitCode);

// Sends a signal; ESRCH when the child has ended. Gives the system's error number.
int childSignal(Child* child, int signal);

// Whoever made the record is done with it. A child that has ended, or was never
// started, is forgotten; another is reaped at its end.
void childLetGo(Child* child);
