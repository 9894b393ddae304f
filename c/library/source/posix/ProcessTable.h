#pragma once

#include <sys/types.h>

// Whether the system's table lists the process as one that has not ended.
bool posixProcessRuns(pid_t id);
