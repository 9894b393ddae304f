#pragma once

#include <cstdint>

#include "containers/Owned.h"
#include "containers/Vector.h"
#include "logger/Logger.h"

// Starting other programs, watching them, taking what they print, ending them.
// A record is a view: destroying it does not touch the process. Every function
// tolerates null and then fails. All are called on one thread.

struct String;
struct OsPipe;
struct OsProcess;

// Values 2 and 3 are nobody's, and count as not running.
enum ProcessState {
    kProcessNotStarted = 0,
    kProcessRunning = 1,
    kProcessTerminated = 4,  // by processTerm
    kProcessEnded = 5,       // by itself
};

struct Process {
    bool hidden = false;          // start without a window
    bool inheritHandles = true;   // kept for callers: a child gets the standard streams alone
    String* command = nullptr;    // owned; for an attached process its program, or null
    Vector* arguments = nullptr;  // owned, of owned Strings: tokens as they stand
    bool stdoutPiped = false;
    bool stderrPiped = false;
    OsPipe* stdoutPipe = nullptr;  // owned; until the start
    OsPipe* stderrPipe = nullptr;  // the same
    OsProcess* handle = nullptr;   // owned, with the reading ends of the pipes
    uint32_t pid = 0;
    uint32_t tid = 0;  // of its main thread
    int state = kProcessNotStarted;
    Logger* logger = nullptr;  // owned
};

// The functions that make a record give it to the caller, or null.

// An empty record.
Process* processInit();

// A record ready to start. The arguments are cut into tokens at blanks; one that
// begins with `"` goes on to the next `"`; quotes stay.
Process* procesInitArgs(const String* command, const String* arguments, bool hidden,
                        bool inheritHandles);

// A record attached to a process that exists, or to one that has ended and is
// still known, which then is not running. Null when there is none, or when the
// system does not let us at it. Waits up to 500 ms for a process that is just
// starting.
Process* processInitPid(uint32_t pid, uint32_t tid);

void processDestroy(Process** process);

template <>
struct OwnedTraits<Process> {
    static void destroy(Process** process) { processDestroy(process); }
};

// Makes a pipe for the process's output or error output. True when there is one;
// false when it cannot be made, and after the start.
bool processPipeStdout(Process* process);
bool processPipeStderr(Process* process);

// Starts the program. What was printed so far is written out first.
bool processStart(Process* process);

bool processIsRunning(Process* process);

// Waits for the end of a running process, the end of the time or the quit flag.
void processWaitEnd(Process* process, uint32_t milliseconds);

// Ends a running process, with exit code 1.
bool processTerm(Process* process);

// What the process ended with; -1 for one that was not seen to end.
int64_t processGetExitCode(Process* process);

// Asks a running process to end: WM_CLOSE to its thread, or SIGTERM.
bool processSignalStop(Process* process);

// Replaces `out` by what comes through the pipe next, after waiting for it; an
// empty text is the end. False without a pipe or after a failure.
bool processReadStdout(Process* process, String* out);
bool processReadStderr(Process* process, String* out);

// ORDER process-results
enum class ProcessResult {
    Done,
    NoMemory,
    NotStarted,
    Died,     // during the wait of processRunSpawn
    TimeOut,  // and the process was terminated
    PipeFailed,
};

// Starts a program and leaves it running, if it runs for `waitMs` at least. The
// ids (may be null) are written on success.
ProcessResult processRunSpawn(const String* command, const String* arguments, bool hidden,
                              bool inheritHandles, uint32_t waitMs, uint32_t* pid, uint32_t* tid);

// Starts a program and waits for its end, the end of the time or the quit flag;
// the last two terminate it. `exitCode` (may be null) is written on success. A
// time of 0 ends the process at once.
ProcessResult processRunWait(const String* command, const String* arguments, bool hidden,
                             bool inheritHandles, int64_t* exitCode, int32_t timeoutMs);

// The same, appending what the program prints to the texts, one of which may be
// null. When the time is over (0: seven days) the program has ten more seconds
// in which nothing is read. A program whose streams somebody else keeps open
// after its end is done when they are closed or the time is over.
ProcessResult processRunPipe(const String* command, const String* arguments, int64_t* exitCode,
                             int32_t timeoutMs, String* standardOutput, String* errorOutput);
