#include <algorithm>

#include "containers/Memory.h"
#include "platform/clock.h"
#include "platform/processes.h"
#include "processes/Process.h"
#include "strings/String.h"
#include "threads/QuitFlag.h"

namespace {

// The longest times between two looks.
constexpr uint32_t kWaitStep = 100;
constexpr uint32_t kPipeStep = 50;
// How often those of a program are taken that outlives its time.
constexpr int kGraceSteps = 200;
constexpr int64_t kPipeWithoutTimeOut = 7 * 24 * 3600 * int64_t{1000};
constexpr size_t kBlockSize = 64 * 1024;

int64_t now() {
    return static_cast<int64_t>(osClockTicks());
}

// Waits for the end of the process, at most `milliseconds`. False when it still runs.
bool waitForEnd(Process* process, uint32_t milliseconds, OsEvent* event) {
    osProcessWait(process->handle, kOsWakeEnd, event, milliseconds);
    return !processIsRunning(process);
}

ProcessResult finish(Process* process, int64_t* exitCode) {
    const bool isRunning = processIsRunning(process);
    if (isRunning) processTerm(process);
    if (exitCode != nullptr) *exitCode = processGetExitCode(process);
    return isRunning ? ProcessResult::TimeOut : ProcessResult::Done;
}

// One of the streams that a run collects.
struct Stream {
    String* text;  // null for one that is not wanted
    OsOutput output;
    unsigned wake;
    bool atEnd;
};

// Takes what has come, a block at most, so that a flood does not hide the clock.
ProcessResult take(Process* process, Stream* stream, char* block) {
    if (stream->atEnd) return ProcessResult::Done;
    size_t got = 0;
    if (osProcessRead(process->handle, stream->output, block, kBlockSize, &got, &stream->atEnd) !=
        0)
        return ProcessResult::PipeFailed;
    return stringAppendView(stream->text, {block, got}) ? ProcessResult::Done
                                                        : ProcessResult::NoMemory;
}

// Reads both streams as they come: a program that fills one while it is not read
// would never end. A stream is done when it is at its end and the program is gone.
ProcessResult collect(Process* process, Stream (&streams)[2], int64_t deadline) {
    char* block = static_cast<char*>(memAlloc(kBlockSize));
    ProcessResult result = block == nullptr ? ProcessResult::NoMemory : ProcessResult::Done;
    while (result == ProcessResult::Done && !quitFlagIsSet()) {
        const bool isRunning = processIsRunning(process);
        unsigned wanted = isRunning ? unsigned{kOsWakeEnd} : 0;
        for (Stream& stream : streams) {
            if (result == ProcessResult::Done) result = take(process, &stream, block);
            if (!stream.atEnd) wanted |= stream.wake;
        }
        const int64_t rest = deadline - now();
        if (wanted == 0 || rest <= 0) break;
        const auto step = static_cast<uint32_t>(std::min<int64_t>(rest, kPipeStep));
        osProcessWait(process->handle, wanted, quitEvent(), step);
    }
    memFree(&block);
    return result;
}

}  // namespace

void processWaitEnd(Process* process, uint32_t milliseconds) {
    if (processIsRunning(process) && !quitFlagIsSet())
        waitForEnd(process, milliseconds, quitEvent());
}

ProcessResult processRunSpawn(const String* command, const String* arguments, bool hidden,
                              bool inheritHandles, uint32_t waitMs, uint32_t* pid, uint32_t* tid) {
    Owned<Process> process(procesInitArgs(command, arguments, hidden, inheritHandles));
    if (!process) return ProcessResult::NoMemory;
    if (!processStart(process.get())) return ProcessResult::NotStarted;
    const int64_t deadline = now() + waitMs;
    for (int64_t rest = waitMs; rest > 0; rest = deadline - now()) {
        const auto step = static_cast<uint32_t>(std::min<int64_t>(rest, kWaitStep));
        if (waitForEnd(process.get(), step, nullptr)) return ProcessResult::Died;
    }
    if (!processIsRunning(process.get())) return ProcessResult::Died;
    if (pid != nullptr) *pid = process->pid;
    if (tid != nullptr) *tid = process->tid;
    return ProcessResult::Done;
}

ProcessResult processRunWait(const String* command, const String* arguments, bool hidden,
                             bool inheritHandles, int64_t* exitCode, int32_t timeoutMs) {
    Owned<Process> process(procesInitArgs(command, arguments, hidden, inheritHandles));
    if (!process) return ProcessResult::NoMemory;
    if (!processStart(process.get())) return ProcessResult::NotStarted;
    const int64_t deadline = now() + timeoutMs;
    while (processIsRunning(process.get()) && !quitFlagIsSet()) {
        const int64_t rest = deadline - now();
        if (rest <= 0) break;
        const auto step = static_cast<uint32_t>(std::min<int64_t>(rest, kWaitStep));
        waitForEnd(process.get(), step, quitEvent());
    }
    return finish(process.get(), exitCode);
}

ProcessResult processRunPipe(const String* command, const String* arguments, int64_t* exitCode,
                             int32_t timeoutMs, String* standardOutput, String* errorOutput) {
    Owned<Process> process(procesInitArgs(command, arguments, true, false));
    if (!process) return ProcessResult::NoMemory;
    if (standardOutput == nullptr && errorOutput == nullptr) return ProcessResult::PipeFailed;
    Stream streams[] = {
        {standardOutput, OsOutput::Standard, kOsWakeOutput, standardOutput == nullptr},
        {errorOutput, OsOutput::Error, kOsWakeError, errorOutput == nullptr},
    };
    if (standardOutput != nullptr && !processPipeStdout(process.get()))
        return ProcessResult::PipeFailed;
    if (errorOutput != nullptr && !processPipeStderr(process.get()))
        return ProcessResult::PipeFailed;
    if (!processStart(process.get())) return ProcessResult::NotStarted;
    const int64_t deadline = now() + (timeoutMs == 0 ? kPipeWithoutTimeOut : timeoutMs);
    const ProcessResult result = collect(process.get(), streams, deadline);
    if (result != ProcessResult::Done) return result;
    for (int step = 0; step < kGraceSteps && !quitFlagIsSet(); ++step)
        if (waitForEnd(process.get(), kPipeStep, quitEvent())) break;
    return finish(process.get(), exitCode);
}
