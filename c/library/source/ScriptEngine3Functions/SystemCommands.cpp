#include "ScriptEngine3Functions/SystemCommands.h"

#include <string>

#include "ScriptEngine3Functions/ConfigCommands.h"
#include "ScriptEngine3Functions/ContainerArguments.h"
#include "logger/StandardOutput.h"
#include "platform/machine.h"
#include "services/Service.h"

namespace {

// As a column of the tables: the command needs a signed file.
constexpr bool kSigned = true;

int scriptEngineGetEnv(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* name = in.string(0);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    std::string value;
    if (!osGetEnvironment(stringView(name), &value)) return kNegative;
    if (stringSetView(&target->string, value)) return kDone;
    return commandOutOfMemory(engine, "scriptEngineGetEnv");
}

int scriptEngineSetEnv(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* name = in.string(0);
    const String* value = in.text(1);
    if (!in.ok()) return in.status();
    return osSetEnvironment(stringView(name), stringView(value)) ? kDone : kNegative;
}

struct ActionWord {
    std::string_view word;
    ServiceAction action;
};
constexpr ActionWord kActions[] = {
    {"start", ServiceAction::Start},
    {"stop", ServiceAction::Stop},
    {"getstate", ServiceAction::GetState},
};

// Any other word is an action that does nothing.
ServiceAction actionOf(const String* word) {
    for (const ActionWord& row : kActions)
        if (row.word == stringView(word)) return row.action;
    return ServiceAction::None;
}

int scriptEngineService(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* name = in.string(0);
    const String* action = in.string(1);
    ScriptObject* target = in.retyped(2, kTypeString);
    if (!in.ok()) return in.status();
    outputFlush();
    return serviceControl(name, actionOf(action), &target->string) ? kDone : kNegative;
}

constexpr CommandRow kSystemCommands[] = {
    // name       handler                min max targets
    {"getenv", scriptEngineGetEnv, 2, 2, "2"},
    {"setenv", scriptEngineSetEnv, 2, 2, nullptr},
    {"confpatch", scriptEngineConfPatch, 3, 3, nullptr, kInBlock, false, kSigned},
    {"service", scriptEngineService, 3, 3, "3", kInBlock, false, kSigned},
};

}  // namespace

std::span<const CommandRow> systemCommands() {
    return kSystemCommands;
}
