#include "ScriptEngine3Functions/EnvironmentCommands.h"

#include <string>

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "platform/machine.h"

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
