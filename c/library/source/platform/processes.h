#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/console.h"

// Other programs: starting, watching and ending them, and the table of what
// runs. Functions with an int result give the system's error number, 0 for
// success.

struct OsEvent;

// A process that was started here or opened by its id, with the reading ends of
// its pipes. Its holder ends it with `osProcessClose`; the process goes on.
struct OsProcess;

// ---- Starting ----

// A pipe for what a process prints. Its maker ends it with `osPipeClose`, unless a
// start takes it over.
struct OsPipe;
int osPipeCreate(OsPipe** pipe);
void osPipeClose(OsPipe** pipe);

struct OsProcessStart {
    std::string_view commandLine;  // up to a zero byte
    bool hidden = false;           // without a window, where there are windows
    OsPipe* pipes[2] = {};         // for its outputs, in the order of OsOutput; null for ours
};

// ORDER start-steps: what was under way when a start failed.
enum class OsStartStep { Memory, Descriptor, DescriptorList, Start };

// Starts the program that the command line begins with. Of what is open here the
// child gets the three standard streams, or the pipes in their place, and no
// more; signals mean the usual to it. The pipes are taken over, also by a start
// that fails; then `*process` is null and `*step` tells where.
int osProcessStart(const OsProcessStart& start, OsProcess** process, OsStartStep* step);

// Hands a line to the system's command interpreter and waits for its end; gives
// the interpreter's exit code.
int osSystemCommand(std::string_view line, int* exitCode);

// ---- Watching ----

// Opens a running process, or one that has ended and is still known. The id of a
// process that was started here means that process for as long as this one
// lives, whomever the system gave the id to afterwards.
int osProcessOpen(uint32_t id, OsProcess** process);

// Gives the handle back. A process that ends with nobody holding it leaves
// nothing behind in the system.
void osProcessClose(OsProcess** process);

// The numbers by which the system knows the process and its first thread; the
// thread of a process that was opened is 0 where it cannot be told.
uint32_t osProcessId(const OsProcess* process);
uint32_t osProcessThreadId(const OsProcess* process);

// Whether the process has ended, and what it ended with: its own exit code; 1
// after `osProcessTerminate`; 128 and the signal's number for a signal. The code
// of a process that somebody else started may be 0 for want of a better one.
// Where a running process has an exit code of its own (259), ending with that
// does not count.
int osProcessExitCode(OsProcess* process, bool* ended, uint32_t* exitCode);

// What a wait is for, and what ended it.
enum OsProcessWake : unsigned {
    kOsWakeEnd = 1,     // the process has ended
    kOsWakeOutput = 2,  // its output can be read, or is at its end
    kOsWakeError = 4,   // the same for its error output
    kOsWakeEvent = 8,   // the event was raised
};

// Waits for any of what is wanted, for the event (may be null), or for the end of
// the time. Gives what happened, 0 when the time was over. An end that cannot be
// waited for takes the full time.
unsigned osProcessWait(OsProcess* process, unsigned wanted, OsEvent* event, uint32_t milliseconds);

// Reads what has come through a pipe, without waiting. `got` is 0 when nothing
// has come; `atEnd` tells that nothing more will.
int osProcessRead(OsProcess* process, OsOutput output, void* buffer, size_t size, size_t* got,
                  bool* atEnd);

// ---- Ending ----

// Ends the process at once, with exit code 1. Waits up to 100 ms of real time
// until it is gone. Does not return for this process itself.
int osProcessTerminate(OsProcess* process);

// Asks the process to end: the message goes to the thread, where threads take
// messages, else a signal goes to the process.
int osProcessAskToStop(OsProcess* process, uint32_t threadId);

// ---- The table of what runs ----

uint32_t osOwnProcessId();

// The ids of all processes, those that have ended left out.
int osProcessIds(std::vector<uint32_t>* ids);

// A look at one process of the table.
struct OsProcessView;
int osProcessViewOpen(uint32_t id, OsProcessView** view);
void osProcessViewClose(OsProcessView** view);

// The full path of its program. After a failure `mayCome` tells whether the
// answer may be another one in a moment, as for a process that is starting.
int osProcessViewProgram(OsProcessView* view, std::string* path, bool* mayCome);

// In whose name it acts. False when that cannot be told.
bool osProcessViewUser(OsProcessView* view, std::string* domain, std::string* name);
