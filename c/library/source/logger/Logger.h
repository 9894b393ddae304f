#pragma once

#include <atomic>
#include <cstdint>
#include <source_location>

#include "containers/Owned.h"
#include "logger/LogArg.h"

// Diagnostics. A message has a level, a format text and arguments, and goes to
// every listener. The format holds `%` letters (MessageExpand.h) and references
// `#::N` into the catalogue; the listener expands it. The logger never reports on
// itself: where memory runs out a message or a part of it is missing.

struct List;

// The handle that goes first into every log call. It can hold listeners of its
// own; it normally has none, and the process-wide ones hear everything.
struct Logger;

// The lower a level, the more severe.
constexpr int kLogSilent = 0;  // as a listener's level: takes nothing
constexpr int kLogFatal = 2;
constexpr int kLogError = 3;
constexpr int kLogWarning = 4;
constexpr int kLogInfo = 5;
constexpr int kLogVerbose = 6;
constexpr int kLogDebug = 7;
constexpr int kLogTrace = 8;
constexpr int kLogFlood = 9;

// Whether the arguments were given in the call or as a list. The forms differ
// where an argument is missing and in the width of the letter `t`.
enum class LogForm { Call, List };

// Takes a message that its level lets through. `context` is what it was
// registered with; `args` may be null when `count` is 0. The result is not used.
using LogListenerFunction = bool (*)(void* context, int level, LogForm form, const char* format,
                                     const LogArg* args, uint32_t count);

struct LogListener {
    void* context;
    LogListenerFunction function;
    const int* level;  // the highest level that the listener takes; the listener's own field
    int levelAtStart;
};

// Gives a new handle, or null. The caller ends it with `logDestroy`.
Logger* logCreate();

// Ends the handle with its own listeners, and clears the pointer. Null-safe.
void logDestroy(Logger** logger);

template <>
struct OwnedTraits<Logger> {
    static void destroy(Logger** logger) { logDestroy(logger); }
};

// The level above which no message is dispatched, whatever the listeners say: 8.
int logGetLevel();

// Whether the level above reaches debug, trace and flood.
bool logIsDebug();
bool logIsTrace();
bool logIsFlood();

// Makes a registration record; null when an argument is missing or memory runs
// out. A new record puts a logger that was shut down into service again.
LogListener* logListenerCreate(void* context, LogListenerFunction function, const int* level);
void logListenerDestroy(LogListener** listener);

// Registers a listener for all messages. False when the logger was shut down or
// an argument is missing; true otherwise, also when memory ran out for it.
bool logAddGlobalListener(void* context, LogListenerFunction function, const int* level);

// Hands `listener` to `logger`, which owns it from now on. False, with nothing
// taken, when an argument is missing or memory runs out.
bool logAddListener(Logger* logger, LogListener* listener);

// To be called after a listener's level field was changed: the one level that
// every log call is compared with is worked out anew.
void logLevelsChanged();

// Ends all dispatching and forgets the process-wide listeners.
void logShutdown();

// Gives the level's label of seven characters, "???????" for others, in new memory.
char* logLevelName(int level);

// The same without a copy.
const char* logLevelLabel(int level);

// The highest level that any listener takes; below 0 when nobody listens. Only
// the logger writes it.
inline std::atomic<int> logThreshold{-1};

// Whether a message of this level would reach anyone: for callers that would
// have to build costly text first.
inline bool logWanted(int level) {
    return level <= logThreshold.load(std::memory_order_relaxed);
}

// Hands a message to the listeners, process-wide ones first, each in the order
// of registration. The functions below come here once somebody listens.
void logDispatch(Logger* logger, int level, const char* format, const LogArg* args, uint32_t count);

// As above with the arguments as a `List` of `LogArg*`, which stays the
// caller's. With no list, or none left in it, a `%` stays as it stands.
void logDispatchList(Logger* logger, const char* format, int level, const List* args);

// Logs a text that is not ours, as the list form with an empty list: references
// are expanded, a `%` stays as it stands, and no argument is looked for.
void logText(Logger* logger, int level, const String* text);

template <typename... Args>
void logAt(Logger* logger, int level, const char* format, const Args&... args) {
    if (!logWanted(level)) return;
    if constexpr (sizeof...(Args) == 0) {
        logDispatch(logger, level, format, nullptr, 0);
    } else {
        const LogArg list[] = {LogArg(args)...};
        logDispatch(logger, level, format, list, sizeof...(Args));
    }
}

template <typename... Args>
void logFatal(Logger* logger, const char* format, const Args&... args) {
    logAt(logger, kLogFatal, format, args...);
}
template <typename... Args>
void logError(Logger* logger, const char* format, const Args&... args) {
    logAt(logger, kLogError, format, args...);
}
template <typename... Args>
void logWarning(Logger* logger, const char* format, const Args&... args) {
    logAt(logger, kLogWarning, format, args...);
}
template <typename... Args>
void logInfo(Logger* logger, const char* format, const Args&... args) {
    logAt(logger, kLogInfo, format, args...);
}
template <typename... Args>
void logVerbose(Logger* logger, const char* format, const Args&... args) {
    logAt(logger, kLogVerbose, format, args...);
}
template <typename... Args>
void logDebug(Logger* logger, const char* format, const Args&... args) {
    logAt(logger, kLogDebug, format, args...);
}
template <typename... Args>
void logTrace(Logger* logger, const char* format, const Args&... args) {
    logAt(logger, kLogTrace, format, args...);
}
template <typename... Args>
void logFlood(Logger* logger, const char* format, const Args&... args) {
    logAt(logger, kLogFlood, format, args...);
}

// Logs "   #::0" with the place of the call: the second record after a resource
// or internal failure, at the level of the message before it.
inline void logLocation(Logger* logger, int level,
                        std::source_location where = std::source_location::current()) {
    logAt(logger, level, "   #::0", where.file_name(), where.line());
}
