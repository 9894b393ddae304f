#include "AppCommands.h"

#include "ProcessWait.h"
#include "ScriptEngine3Defs/Arguments.h"
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

constexpr CommandRow kApplicationCommands[] = {
    {"setperiod", scriptSetPeriod, 1, 1, nullptr},
    {"processwaitquit", scriptProcessWaitQuit, 2, kManyArgs, nullptr},
};

}  // namespace

std::span<const CommandRow> applicationCommands() {
    return kApplicationCommands;
}
