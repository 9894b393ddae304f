#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The commands on `config` values.
std::span<const CommandRow> configCommands();

// `confpatch`, whose row stands among the commands of the system.
int scriptEngineConfPatch(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
