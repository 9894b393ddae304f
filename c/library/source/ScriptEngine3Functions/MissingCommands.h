#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Commands that this build does without. They are registered with their
// rules, so that a script that uses them parses; when one runs it fails.

// Logs that the command is missing from this build; gives the status for it.
int scriptEngineMissingCommand(ScriptEngine* engine, const char* name);

std::span<const CommandRow> networkCommands();
