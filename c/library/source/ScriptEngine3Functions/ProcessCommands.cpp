#include "ScriptEngine3Functions/ProcessCommands.h"

#include <cmath>

#include "ScriptEngine3Functions/ConsoleCommands.h"
#include "ScriptEngine3Functions/ContainerArguments.h"
#include "ScriptEngine3Functions/FlagArgument.h"
#include "logger/StandardOutput.h"
#include "platform/processes.h"
#include "processes/Process.h"
#include "processes/ProcessTable.h"
#include "strings/StringFormat.h"
#include "strings/StringMatch.h"
#include "strings/StringNumbers.h"

namespace {

// How long a spawned program must run to count as started.
constexpr uint32_t kSpawnWait = 100;

// What scripts and people are told of a run that failed.
struct Outcome {
    const char* word;
    const char* message;
};
// ORDER process-results
constexpr Outcome kOutcomes[] = {
    {"", ""},         {"memory", "ran out of memory"}, {"failure", "failed to execute"},
    {"died", "died"}, {"timeout", "timed out"},        {"pipe", "failed to pipe"},
};
constexpr Outcome kUnknownOutcome = {"unknown", "had an unknown error"};

const Outcome& outcomeOf(ProcessResult result) {
    const auto at = static_cast<size_t>(result);
    return at < std::size(kOutcomes) ? kOutcomes[at] : kUnknownOutcome;
}

// Targets may be one and the same variable, so each gets its type as it is written.
bool setText(ScriptObject* target, std::string_view text) {
    return scriptObjectRetype(target, kTypeString) && stringSetView(&target->string, text);
}
void setNumber(ScriptObject* target, double value) {
    if (scriptObjectRetype(target, kTypeNumber)) target->number = value;
}

int answer(bool done) {
    return done ? kDone : kNegative;
}

// Reports a run that failed, by name where people are told; gives `kNegative`.
int runFailed(ScriptEngine* engine, ProcessResult result, ScriptObject* word, const char* name,
              const String* command) {
    const Outcome& outcome = outcomeOf(result);
    if (name != nullptr) logError(engine->logger, "%s: \"%S\" %s", name, command, outcome.message);
    setText(word, outcome.word);
    return kNegative;
}

int32_t milliseconds(double value) {
    return numberToInt32(std::round(value));
}

// A number that no process can have becomes 0, which is no process's either.
uint32_t processId(double value) {
    const bool isWhole = value >= 1 && value <= UINT32_MAX && value == std::floor(value);
    return isWhole ? static_cast<uint32_t>(value) : 0;
}

int scriptEngineExec(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* command = in.string(0);
    const String* arguments = in.string(1);
    const double timeout = in.number(2);
    bool hidden = false;
    const int status = readOptionalFlag(
        engine, block, &in, 5, "scriptEngineExec: Failed to get boolean value of sixth parameter",
        &hidden);
    if (status != kDone) return status;
    ScriptObject* code = in.retyped(3, kTypeNumber);
    ScriptObject* word = in.retyped(4, kTypeString);
    if (!in.ok()) return in.status();
    int64_t exitCode = 0;
    const ProcessResult result =
        processRunWait(command, arguments, hidden, true, &exitCode, milliseconds(timeout));
    if (result != ProcessResult::Done) return runFailed(engine, result, word, nullptr, command);
    setNumber(code, static_cast<double>(exitCode));
    return kDone;
}

int scriptEnginePipeExec(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* command = in.string(0);
    const String* arguments = in.string(1);
    const double timeout = in.number(2);
    ScriptObject* output = in.retyped(3, kTypeString);
    ScriptObject* error = in.retyped(4, kTypeString);
    ScriptObject* code = in.retyped(5, kTypeNumber);
    ScriptObject* word = in.retyped(6, kTypeString);
    if (!in.ok()) return in.status();
    LocalString printed;
    LocalString complained;
    int64_t exitCode = 0;
    const ProcessResult result =
        processRunPipe(command, arguments, &exitCode, milliseconds(timeout), &printed, &complained);
    if (scriptObjectRetype(output, kTypeString)) stringTake(&output->string, &printed);
    if (scriptObjectRetype(error, kTypeString)) stringTake(&error->string, &complained);
    if (result != ProcessResult::Done)
        return runFailed(engine, result, word, "scriptEnginePipeExec", command);
    setNumber(code, static_cast<double>(exitCode));
    return kDone;
}

int scriptEngineSpawn(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* command = in.string(0);
    const String* arguments = in.string(1);
    ScriptObject* word = in.retyped(2, kTypeString);
    ScriptObject* pidTarget = in.count() > 3 ? in.retyped(3, kTypeNumber) : nullptr;
    ScriptObject* tidTarget = in.count() > 4 ? in.retyped(4, kTypeNumber) : nullptr;
    if (!in.ok()) return in.status();
    uint32_t pid = 0;
    uint32_t tid = 0;
    const ProcessResult result =
        processRunSpawn(command, arguments, false, true, kSpawnWait, &pid, &tid);
    if (result != ProcessResult::Done)
        return runFailed(engine, result, word, "scriptEngineSpawn", command);
    if (pidTarget != nullptr) setNumber(pidTarget, pid);
    if (tidTarget != nullptr) setNumber(tidTarget, tid);
    return kDone;
}

int scriptEngineStop(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const double pid = in.number(0);
    const double tid = in.number(1);
    if (!in.ok()) return in.status();
    Owned<Process> process(processInitPid(processId(pid), processId(tid)));
    return answer(processSignalStop(process.get()));
}

template <bool (*kOperation)(Process*)>
int onProcess(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const double pid = in.number(0);
    if (!in.ok()) return in.status();
    Owned<Process> process(processInitPid(processId(pid), 0));
    return answer(kOperation(process.get()));
}

int scriptEngineSystem(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* line = in.string(0);
    ScriptObject* target = in.count() > 1 ? in.retyped(1, kTypeNumber) : nullptr;
    if (!in.ok()) return in.status();
    outputFlush();
    int result = -1;
    if (osSystemCommand(stringView(line), &result) != 0) result = -1;
    if (target != nullptr) target->number = result;
    return answer(result != -1);
}

// The target of a command that lists processes; null after a message.
ScriptObject* listTarget(ScriptEngine* engine, Arguments* in, uint32_t index, const char* name) {
    ScriptObject* target = in->target(index);
    if (target == nullptr || target->type == kTypeVector || target->type == kTypeList ||
        target->type == kTypeSet)
        return target;
    logError(engine->logger, "%s: First parameter must be a vector, a list or a set", name);
    return nullptr;
}

constexpr char kGetRunning[] = "scriptEngineGetRunningProcesses";
constexpr char kGetInstances[] = "scriptEngineGetProcessInstances";

int listingOutOfMemory(ScriptEngine* engine, const char* name) {
    commandOutOfMemory(engine, name);
    return kError;
}

// Adds a process id; false when memory runs out.
bool addId(ScriptObject* target, uint32_t pid) {
    Owned<ScriptObject> number(scriptObjectCreateNumber(pid));
    if (!number || !containerAdd(target, number.get())) return false;
    number.release();
    return true;
}

int scriptEngineGetRunningProcesses(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                                    int) {
    Arguments in(engine, block, args);
    ScriptObject* target = listTarget(engine, &in, 0, kGetRunning);
    if (!in.ok()) return in.status();
    if (target == nullptr) return kError;
    Owned<Vector> pids(processListPids());
    if (!pids) return listingOutOfMemory(engine, kGetRunning);
    for (uint32_t at = 0; at < vectorSize(pids.get()); ++at) {
        const uint32_t pid = processListedPid(pids.get(), at);
        if (pid != 0 && !addId(target, pid)) return listingOutOfMemory(engine, kGetRunning);
    }
    return kDone;
}

int scriptEngineGetProcessInstances(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                                    int) {
    Arguments in(engine, block, args);
    const String* exe = in.string(0);
    const String* user = in.string(1);
    ScriptObject* target = listTarget(engine, &in, 2, kGetInstances);
    if (!in.ok()) return in.status();
    if (target == nullptr) return kError;
    Vector* list = processListInfo();
    if (list == nullptr) return listingOutOfMemory(engine, kGetInstances);
    bool added = true;
    for (uint32_t at = 0; added && at < vectorSize(list); ++at) {
        const auto* info = static_cast<const ProcessInfo*>(vectorGet(list, at));
        if (stringMatchNoCase(info->exe, exe) && stringMatchNoCase(info->user, user))
            added = addId(target, info->pid);
    }
    processListInfoDestroy(&list);
    // Here the command speaks in the name of the other one.
    return added ? kDone : listingOutOfMemory(engine, kGetRunning);
}

bool putInfo(ScriptObject* map, const ProcessInfo* info) {
    Owned<ScriptObject> key(scriptObjectCreateString("pid"));
    Owned<ScriptObject> value(scriptObjectCreateNumber(info->pid));
    Owned<String> code(stringFormatNew("%U", info->code));
    return key && value && code && mapPut(map, &key, &value) &&
           mapPutTexts(map, "exe", stringView(info->exe)) &&
           mapPutTexts(map, "user", stringView(info->user)) &&
           mapPutTexts(map, "code", stringView(code.get()));
}

int scriptEngineGetProcessInfo(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const double pid = in.number(0);
    ScriptObject* map = in.retyped(1, kTypeMap);
    if (!in.ok()) return in.status();
    Owned<ProcessInfo> info(processInfoInit(processId(pid)));
    if (!info) return commandOutOfMemory(engine, "scriptEngineGetProcessInfo");
    int error = 0;
    if (!processInfoRead(info.get(), &error)) {
        logVerbose(engine->logger,
                   "scriptEngineGetProcessInfo: Failed to get process info. Most likely reason: "
                   "Process not running. (Error code=%u)",
                   error);
        return kNegative;
    }
    if (putInfo(map, info.get())) return kDone;
    return commandOutOfMemory(engine, "scriptEngineGetProcessInfo");
}

int scriptEngineGetPid(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.retyped(0, kTypeNumber);
    if (!in.ok()) return in.status();
    target->number = osOwnProcessId();
    return kDone;
}

// In the columns of the table: the command needs a signed file.
constexpr bool kSigned = true;

constexpr CommandRow kProcessCommands[] = {
    // name  handler  min  max  targets
    {"exec", scriptEngineExec, 5, 6, "4,5", kInBlock, false, kSigned},
    {"pipeexec", scriptEnginePipeExec, 7, 7, "4-7", kInBlock, false, kSigned},
    {"spawn", scriptEngineSpawn, 3, 5, "3,4,5", kInBlock, false, kSigned},
    {"stop", scriptEngineStop, 2, 2, nullptr, kInBlock, false, kSigned},
    {"kill", onProcess<processTerm>, 1, 1, nullptr, kInBlock, false, kSigned},
    {"isrunning", onProcess<processIsRunning>, 1, 1, nullptr},
    {"system", scriptEngineSystem, 1, 2, "2", kInBlock, false, kSigned},
    {"getrunningprocesses", scriptEngineGetRunningProcesses, 1, 1, "1"},
    {"getprocessinfo", scriptEngineGetProcessInfo, 2, 2, "2"},
    {"getprocessinstances", scriptEngineGetProcessInstances, 3, 3, "3"},
    {"getpid", scriptEngineGetPid, 1, 1, nullptr},
    {"checksignals", scriptEngineCheckSignals, 1, 1, nullptr},
};

}  // namespace

std::span<const CommandRow> processCommands() {
    return kProcessCommands;
}
