#include "ScriptEngine3Functions/LogCommands.h"

#include "ScriptEngine3Defs/Arguments.h"

namespace {

// One handler a level: they differ in nothing else.
template <int kLevel>
int scriptEngineLog(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    if (!in.ok()) return in.status();
    logText(engine->logger, kLevel, text);
    return kDone;
}

constexpr CommandRow kLogCommands[] = {
    {"logfatal", scriptEngineLog<kLogFatal>, 1, 1, nullptr},
    {"logerror", scriptEngineLog<kLogError>, 1, 1, nullptr},
    {"logwarning", scriptEngineLog<kLogWarning>, 1, 1, nullptr},
    {"loginfo", scriptEngineLog<kLogInfo>, 1, 1, nullptr},
    {"logverbose", scriptEngineLog<kLogVerbose>, 1, 1, nullptr},
    {"logdebug", scriptEngineLog<kLogDebug>, 1, 1, nullptr},
    {"logtrace", scriptEngineLog<kLogTrace>, 1, 1, nullptr},
};

}  // namespace

std::span<const CommandRow> logCommands() {
    return kLogCommands;
}
