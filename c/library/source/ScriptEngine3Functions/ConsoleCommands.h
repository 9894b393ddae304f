#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The commands that print, ask and listen for a request to stop.
std::span<const CommandRow> consoleCommands();

// Registered among the process commands.
int scriptEngineCheckSignals(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
