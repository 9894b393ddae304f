#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The commands that put text of a script into the log.
std::span<const CommandRow> logCommands();
