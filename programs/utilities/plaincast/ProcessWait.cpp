#include "ProcessWait.h"

#include <cmath>

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "containers/GrowArray.h"
#include "logger/StandardOutput.h"
#include "paths/Paths.h"
#include "processes/ProcessCpp.h"
#include "processes/ProcessTable.h"
#include "strings/StringMatch.h"
#include "strings/StringNumbers.h"
#include "threads/QuitFlag.h"
#include "time/Time.h"

namespace {

constexpr uint32_t kLookMilliseconds = 500;

// Processes that the wait is for, as they were seen last.
class Found {
  public:
    Found() : list_(vectorCreate()) {}
    ~Found() { processListInfoDestroy(&list_); }
    Found(const Found&) = delete;
    Found& operator=(const Found&) = delete;

    Vector* get() const { return list_; }
    void reset(Vector* list) {
        processListInfoDestroy(&list_);
        list_ = list;
    }

  private:
    Vector* list_;
};

// A pattern fits the whole path of a program or the name of its file.
bool fits(const String* exe, const String* pattern) {
    if (exe == nullptr) return false;
    const Owned<String> name(pathBaseName(exe));
    return stringMatch(name.get(), pattern) || stringMatch(exe, pattern);
}

class ProcessWait {
  public:
    explicit ProcessWait(Logger* logger) : logger_(logger) {}

    bool addExclusion(const String* text) { return exclusions_.push(text); }

    // What matches the pattern now; null when the table cannot be read.
    Vector* look(const String* pattern) const {
        Vector* table = processListInfo();
        uint32_t kept = 0;
        for (uint32_t at = 0; at < vectorSize(table); ++at) {
            auto* info = static_cast<ProcessInfo*>(vectorGet(table, at));
            if (!isExcluded(info) && fits(info->exe, pattern)) {
                logTrace(logger_,
                         "PlainCast::scriptProcessWaitQuit: Got matching process %u = \"%S\"",
                         info->pid, info->exe);
                vectorSet(table, kept++, info);
            } else {
                processInfoDestroy(&info);
            }
        }
        vectorErase(table, kept, UINT32_MAX);
        return table;
    }

    void end(const Vector* found) const {
        logDebug(logger_,
                 "PlainCast::scriptProcessWaitQuit: End of wait period, got %u matching "
                 "process(es) still running (failure)",
                 vectorSize(found));
        for (uint32_t at = 0; at < vectorSize(found); ++at) {
            const auto* info = static_cast<const ProcessInfo*>(vectorGet(found, at));
            Quorel::ProcessCpp process(info->pid, 0);
            logDebug(logger_, "PlainCast::scriptProcessWaitQuit: Killing process %u = \"%S\"",
                     info->pid, info->exe);
            process.terminate();
        }
    }

  private:
    bool isExcluded(const ProcessInfo* info) const {
        for (const String* text : exclusions_) {
            const std::string_view view = stringView(text);
            if (view.starts_with('#') ? textToUInt32(view.substr(1)) == info->pid
                                      : fits(info->exe, text))
                return true;
        }
        return false;
    }

    Logger* logger_;
    GrowArray<const String*> exclusions_;
};

// Until the first of them has ended, or the next look is due.
void waitForNext(const Vector* found) {
    const auto* first = static_cast<const ProcessInfo*>(vectorGet(found, 0));
    Owned<Process> process(processInitPid(first->pid, 0));
    if (process)
        processWaitEnd(process.get(), kLookMilliseconds);
    else  // gone already, or not to be opened by us
        sleepInterruptible(kLookMilliseconds);
}

}  // namespace

int scriptProcessWaitQuit(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const double seconds = in.number(0);
    const String* pattern = in.string(1);
    if (!in.ok()) return in.status();
    ProcessWait wait(engine->logger);
    for (uint32_t at = 2; at < in.count(); ++at) {
        const String* exclusion = in.string(at);
        if (!in.ok()) return in.status();
        if (!wait.addExclusion(exclusion))
            return commandOutOfMemory(engine, "PlainCast::scriptProcessWaitQuit");
    }
    Found found;
    if (found.get() == nullptr)
        return commandOutOfMemory(engine, "PlainCast::scriptProcessWaitQuit");
    logDebug(engine->logger, "PlainCast::scriptProcessWaitQuit: Starting wait period");
    outputFlush();
    const auto now = [] { return static_cast<double>(timeNow() / kMsPerSecond); };
    const double deadline = std::trunc(now() + seconds);
    while (now() < deadline) {
        found.reset(wait.look(pattern));
        if (found.get() == nullptr) {
            logError(engine->logger, "Failed to read process table");
            return kError;
        }
        if (vectorSize(found.get()) == 0) break;
        waitForNext(found.get());
        // The program ends, and not the time of those that are waited for.
        if (quitFlagIsSet()) return kDone;
    }
    if (vectorSize(found.get()) == 0)
        logDebug(engine->logger,
                 "PlainCast::scriptProcessWaitQuit: End of wait period, got no "
                 "matching processes (success)");
    else
        wait.end(found.get());
    return kDone;
}
