#include "AppCommands.h"

#include "ScriptEngine3Defs/Arguments.h"
#include "ScriptEngine3Functions/MissingCommands.h"
#include "strings/StringNumbers.h"

Time runUntil = 0;

void runUntilSet(int32_t seconds) {
    const int64_t span = seconds * static_cast<int64_t>(kMsPerSecond);
    runUntil = timeNow() + static_cast<Time>(span);
}

namespace {

int scriptSetPeriod(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const double seconds = in.number(0);
    if (!in.ok()) return in.status();
    runUntilSet(numberToInt32(seconds));
    return kDone;
}

int scriptProcessWaitQuit(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    return scriptEngineMissingCommand(engine, "processwaitquit");
}

constexpr CommandRow kApplicationCommands[] = {
    {"setperiod", scriptSetPeriod, 1, 1, nullptr},
    {"processwaitquit", scriptProcessWaitQuit, 2, kManyArgs, nullptr},
};

}  // namespace

std::span<const CommandRow> applicationCommands() {
    return kApplicationCommands;
}
