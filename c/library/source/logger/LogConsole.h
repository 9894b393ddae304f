#pragma once

#include <cstdint>

#include "containers/Owned.h"
#include "logger/Logger.h"

struct Lock;

// The listener that writes lines to standard output.
struct LogConsole {
    Lock* lock;
    int level;         // lines above it are not written; 4 when created by the application
    int levelAtStart;  // kept for the record: nothing reads these two
    int ceiling;
};

// Gives a console with this level, or null. The caller ends it with
// `logConsoleDestroy`, after `logShutdown`.
LogConsole* logConsoleCreate(int level);
void logConsoleDestroy(LogConsole** console);

template <>
struct OwnedTraits<LogConsole> {
    static void destroy(LogConsole** console) { logConsoleDestroy(console); }
};

// Registers the console for all messages; as `logAddGlobalListener`.
bool logConsoleRegister(LogConsole* console);

// Changes the level: `kLogSilent` for nothing at all (which clears the ceiling
// too), `kLogTrace` for the most.
void logConsoleSetLevel(LogConsole* console, int level);

// The listener function. Writes label, local time and expanded message as one
// line: "ERROR    (14:05:09): text". False when the line could not be written.
bool logConsoleWrite(void* console, int level, LogForm form, const char* format, const LogArg* args,
                     uint32_t count);
