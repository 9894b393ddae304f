#include "processes/Process.h"

#include <string>
#include <utility>

#include "containers/Memory.h"
#include "logger/StandardOutput.h"
#include "platform/processes.h"
#include "strings/String.h"
#include "threads/QuitFlag.h"

namespace {

constexpr int kAttachAttempts = 10;
constexpr uint32_t kAttachStep = 50;
// For a read that waits as long as it takes.
constexpr uint32_t kReadStep = 60 * 1000;
constexpr size_t kReadSize = 256;

// What the log names a record by.
uint32_t numberOf(const Process* process) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(process));
}

// The end of the token that begins at `at`.
size_t tokenEnd(std::string_view text, size_t at) {
    if (text[at] == '"') {
        const size_t quote = text.find('"', at + 1);
        return quote == text.npos ? text.size() : quote + 1;
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) > ' ') ++at;
    return at;
}

bool addTokens(Vector* tokens, std::string_view text) {
    for (size_t at = 0;;) {
        while (at < text.size() && static_cast<unsigned char>(text[at]) <= ' ') ++at;
        if (at == text.size()) return true;
        const size_t end = tokenEnd(text, at);
        Owned<String> token(stringFromView(text.substr(at, end - at)));
        if (!token || !vectorAppend(tokens, token.get())) return false;
        token.release();
        at = end;
    }
}

bool buildCommandLine(const Process* process, String* line) {
    if (!stringSet(line, process->command)) return false;
    for (uint32_t at = 0; at < vectorSize(process->arguments); ++at) {
        const auto* token = static_cast<const String*>(vectorGet(process->arguments, at));
        if (!stringAppendChar(line, ' ') || !stringAppend(line, token)) return false;
    }
    return true;
}

// ORDER start-steps: the messages for OsStartStep.
constexpr const char* kStartFailures[] = {
    "processStart: #::100",
    "processStart: #::1300",
    "processStart: #::1301",
    "processStart: #::1302 #::14",
};

bool startFailed(const Process* process, OsStartStep step, int error) {
    logError(process->logger, kStartFailures[static_cast<int>(step)], error);
    logLocation(process->logger, kLogError);
    return false;
}

// The path of the program of a process that may be starting just now.
void readProgram(Process* process) {
    OsProcessView* view = nullptr;
    if (osProcessViewOpen(process->pid, &view) != 0) return;
    std::string path;
    for (int attempt = 0; attempt < kAttachAttempts && !quitFlagIsSet(); ++attempt) {
        bool mayCome = false;
        if (osProcessViewProgram(view, &path, &mayCome) == 0) {
            process->command = stringFromView(path);
            break;
        }
        // One that has ended will not load anything any more.
        if (!mayCome || osProcessWait(process->handle, kOsWakeEnd, nullptr, kAttachStep) != 0)
            break;
    }
    osProcessViewClose(&view);
}

bool makePipe(Process* process, bool* piped, OsPipe** pipe) {
    if (*piped) return true;
    if (process->state != kProcessNotStarted) return false;
    *piped = osPipeCreate(pipe) == 0;
    return *piped;
}

bool readPipe(Process* process, bool isPiped, OsOutput output, unsigned wake, String* out) {
    if (process == nullptr || !isPiped || process->handle == nullptr) return false;
    char block[kReadSize];
    size_t got = 0;
    bool atEnd = false;
    while (got == 0 && !atEnd) {
        osProcessWait(process->handle, wake, nullptr, kReadStep);
        if (osProcessRead(process->handle, output, block, sizeof block, &got, &atEnd) != 0)
            return false;
    }
    return stringSetBytes(out, block, static_cast<uint32_t>(got));
}

}  // namespace

Process* processInit() {
    Process* process = memNew<Process>();
    if (process == nullptr) return nullptr;
    process->logger = logCreate();
    logTrace(process->logger, "processInit: Created object %i", numberOf(process));
    return process;
}

Process* procesInitArgs(const String* command, const String* arguments, bool hidden,
                        bool inheritHandles) {
    Owned<Process> process(processInit());
    if (!process) return nullptr;
    process->hidden = hidden;
    process->inheritHandles = inheritHandles;
    process->command = stringClone(command);
    process->arguments = vectorCreate();
    if (process->command == nullptr || process->arguments == nullptr ||
        !addTokens(process->arguments, stringView(arguments)))
        return nullptr;
    logTrace(process->logger, "procesInitArgs: Created object %i", numberOf(process.get()));
    return process.release();
}

Process* processInitPid(uint32_t pid, uint32_t tid) {
    Owned<Process> process(processInit());
    if (!process || osProcessOpen(pid, &process->handle) != 0) return nullptr;
    process->pid = pid;
    process->tid = tid;
    bool ended = false;
    uint32_t exitCode = 0;
    const int error = osProcessExitCode(process->handle, &ended, &exitCode);
    if (error == 0 && !ended) readProgram(process.get());
    if (error == 0 && !ended) process->state = kProcessRunning;
    return process.release();
}

void processDestroy(Process** process) {
    if (process == nullptr || *process == nullptr) return;
    Process* dead = *process;
    stringDestroy(&dead->command);
    vectorDestroyWith(&dead->arguments, stringDestroyElement);
    logTrace(dead->logger, "Process %i: Destroying object", numberOf(dead));
    logDestroy(&dead->logger);
    osProcessClose(&dead->handle);
    osPipeClose(&dead->stdoutPipe);
    osPipeClose(&dead->stderrPipe);
    memDelete(process);
}

bool processPipeStdout(Process* process) {
    return process != nullptr && makePipe(process, &process->stdoutPiped, &process->stdoutPipe);
}

bool processPipeStderr(Process* process) {
    return process != nullptr && makePipe(process, &process->stderrPiped, &process->stderrPipe);
}

bool processStart(Process* process) {
    if (process == nullptr) return false;
    logTrace(process->logger, "processStart: Starting process %i", numberOf(process));
    if (processIsRunning(process)) {
        logTrace(process->logger, "processStart: Process %i is already running", numberOf(process));
        return false;
    }
    LocalString line;
    if (!buildCommandLine(process, &line)) return startFailed(process, OsStartStep::Memory, 0);
    OsProcessStart start;
    start.commandLine = stringView(&line);
    start.hidden = process->hidden;
    start.pipes[0] = std::exchange(process->stdoutPipe, nullptr);
    start.pipes[1] = std::exchange(process->stderrPipe, nullptr);
    outputFlush();
    OsStartStep step = OsStartStep::Start;
    osProcessClose(&process->handle);
    const int error = osProcessStart(start, &process->handle, &step);
    if (error != 0) return startFailed(process, step, error);
    process->pid = osProcessId(process->handle);
    process->tid = osProcessThreadId(process->handle);
    process->state = kProcessRunning;
    logTrace(process->logger, "processStart: Process %i has started", numberOf(process));
    return true;
}

bool processIsRunning(Process* process) {
    if (process == nullptr || process->state != kProcessRunning) return false;
    bool ended = false;
    uint32_t exitCode = 0;
    const int error = osProcessExitCode(process->handle, &ended, &exitCode);
    if (error != 0) {
        logTrace(process->logger,
                 "processIsRunning: GetExitCodeThread on process %i failed. GetLastError=%i",
                 numberOf(process), error);
        return false;
    }
    if (ended) process->state = kProcessEnded;
    return !ended;
}

bool processTerm(Process* process) {
    if (!processIsRunning(process)) return false;
    if (process->pid == osOwnProcessId()) outputFlush();
    const int error = osProcessTerminate(process->handle);
    if (error == 0) {
        process->state = kProcessTerminated;
        return true;
    }
    logTrace(process->logger, "processTerm: TerminateProcess on process %i failed. GetLastError=%i",
             numberOf(process), error);
    return false;
}

int64_t processGetExitCode(Process* process) {
    if (process == nullptr || process->state < 3) return -1;
    bool ended = false;
    uint32_t exitCode = 0;
    const int error = osProcessExitCode(process->handle, &ended, &exitCode);
    if (error == 0) return exitCode;
    logTrace(process->logger,
             "processGetExitCode: GetExitCodeProcess on process %i failed. GetLastError=%i",
             numberOf(process), error);
    return -1;
}

bool processSignalStop(Process* process) {
    if (process == nullptr) return false;
    logTrace(process->logger, "processSignalStop: Stopping process %i", numberOf(process));
    if (!processIsRunning(process)) {
        logTrace(process->logger, "processSignalStop: Process %i is not running",
                 numberOf(process));
        return false;
    }
    const int error = osProcessAskToStop(process->handle, process->tid);
    if (error == 0)
        logTrace(process->logger, "processSignalStop: Stop signal sent to process %i",
                 numberOf(process));
    else
        logTrace(process->logger,
                 "processSignalStop: PostThreadMessage to process %i failed. GetLastError=%i",
                 numberOf(process), error);
    return error == 0;
}

bool processReadStdout(Process* process, String* out) {
    return readPipe(process, process != nullptr && process->stdoutPiped, OsOutput::Standard,
                    kOsWakeOutput, out);
}

bool processReadStderr(Process* process, String* out) {
    return readPipe(process, process != nullptr && process->stderrPiped, OsOutput::Error,
                    kOsWakeError, out);
}
