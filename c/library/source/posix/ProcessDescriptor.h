#pragma once

#include <sys/types.h>

// A descriptor for the process with the id, which becomes readable with its end;
// -1, with errno set, for none. Closed when a program is started.
int posixProcessDescriptor(pid_t id);
