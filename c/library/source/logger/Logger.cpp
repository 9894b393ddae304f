#include "logger/Logger.h"

#include <algorithm>
#include <cstring>

#include "containers/GrowArray.h"
#include "containers/List.h"
#include "containers/Memory.h"
#include "strings/String.h"

struct Logger {
    List* listeners = nullptr;  // of LogListener, owned; none until the first is added
};

namespace {

// Above this level nothing is dispatched, so a flood message reaches nobody.
constexpr int kGlobalLevel = kLogTrace;

// What `logThreshold` is while nobody listens.
constexpr int kNobody = -1;

struct LevelLabel {
    int level;
    const char* label;
};

constexpr LevelLabel kLabels[] = {
    {kLogFatal, "FATAL  "}, {kLogError, "ERROR  "},   {kLogWarning, "WARNING"},
    {kLogInfo, "INFO   "},  {kLogVerbose, "verbose"}, {kLogDebug, "debug  "},
    {kLogTrace, "trace  "}, {kLogFlood, "flood  "},
};
constexpr const char* kUnknownLabel = "???????";
constexpr size_t kLabelSize = 8;

// Listeners are registered before the first worker thread starts and removed
// after the last has ended, so these have no lock.
List* globalListeners = nullptr;
bool logShutdownFlag = false;

// Listeners that handles own. While there are any, every message is dispatched:
// there is no list of all handles to work their levels out from.
uint32_t ownListeners = 0;

void destroyListener(void** element) {
    memFree(element);
}

bool appendTo(List** list, LogListener* listener) {
    if (*list == nullptr) *list = listCreate();
    return *list != nullptr && listPushBack(*list, listener);
}

void callAll(const List* list, int level, LogForm form, const char* format, const LogArg* args,
             uint32_t count) {
    for (const ListNode* node = listFirstNode(list); node; node = listNextNode(list, node)) {
        const auto* listener = static_cast<const LogListener*>(node->value);
        listener->function(listener->context, level, form, format, args, count);
    }
}

void dispatch(Logger* logger, int level, LogForm form, const char* format, const LogArg* args,
              uint32_t count) {
    if (logger == nullptr || format == nullptr || logShutdownFlag || level > kGlobalLevel) return;
    callAll(globalListeners, level, form, format, args, count);
    callAll(logger->listeners, level, form, format, args, count);
}

}  // namespace

Logger* logCreate() {
    return memNew<Logger>();
}

void logDestroy(Logger** logger) {
    if (logger == nullptr || *logger == nullptr) return;
    if ((*logger)->listeners != nullptr) {
        ownListeners -= listCount((*logger)->listeners);
        listDestroyWith(&(*logger)->listeners, destroyListener);
        logLevelsChanged();
    }
    memDelete(logger);
}

int logGetLevel() {
    return kGlobalLevel;
}

bool logIsDebug() {
    return kGlobalLevel >= kLogDebug;
}

bool logIsTrace() {
    return kGlobalLevel >= kLogTrace;
}

bool logIsFlood() {
    return kGlobalLevel >= kLogFlood;
}

LogListener* logListenerCreate(void* context, LogListenerFunction function, const int* level) {
    if (context == nullptr || function == nullptr || level == nullptr) return nullptr;
    LogListener* listener = memNew<LogListener>(context, function, level, *level);
    if (listener != nullptr) logShutdownFlag = false;
    return listener;
}

void logListenerDestroy(LogListener** listener) {
    memDelete(listener);
}

bool logAddGlobalListener(void* context, LogListenerFunction function, const int* level) {
    if (logShutdownFlag || context == nullptr || function == nullptr || level == nullptr)
        return false;
    LogListener* listener = logListenerCreate(context, function, level);
    if (listener != nullptr && !appendTo(&globalListeners, listener)) memDelete(&listener);
    logLevelsChanged();
    return true;
}

bool logAddListener(Logger* logger, LogListener* listener) {
    if (logger == nullptr || listener == nullptr || !appendTo(&logger->listeners, listener))
        return false;
    ++ownListeners;
    logLevelsChanged();
    return true;
}

void logLevelsChanged() {
    int highest = ownListeners > 0 ? kGlobalLevel : kNobody;
    const List* list = globalListeners;
    for (const ListNode* node = listFirstNode(list); node; node = listNextNode(list, node))
        highest = std::max(highest, *static_cast<const LogListener*>(node->value)->level);
    if (logShutdownFlag) highest = kNobody;
    logThreshold.store(std::min(highest, kGlobalLevel), std::memory_order_relaxed);
}

void logShutdown() {
    logShutdownFlag = true;
    listDestroyWith(&globalListeners, destroyListener);
    logLevelsChanged();
}

const char* logLevelLabel(int level) {
    for (const LevelLabel& row : kLabels)
        if (row.level == level) return row.label;
    return kUnknownLabel;
}

char* logLevelName(int level) {
    char* name = static_cast<char*>(memAlloc(kLabelSize));
    if (name != nullptr) std::memcpy(name, logLevelLabel(level), kLabelSize);
    return name;
}

void logDispatch(Logger* logger, int level, const char* format, const LogArg* args,
                 uint32_t count) {
    dispatch(logger, level, LogForm::Call, format, args, count);
}

void logDispatchList(Logger* logger, const char* format, int level, const List* args) {
    if (!logWanted(level)) return;
    GrowArray<LogArg> flat;
    for (const ListNode* node = listFirstNode(args); node; node = listNextNode(args, node))
        if (!flat.push(*static_cast<const LogArg*>(node->value))) return;
    dispatch(logger, level, LogForm::List, format, flat.data(), static_cast<uint32_t>(flat.size()));
}

void logText(Logger* logger, int level, const String* text) {
    if (text == nullptr || !logWanted(level)) return;
    dispatch(logger, level, LogForm::List, stringText(text), nullptr, 0);
}
