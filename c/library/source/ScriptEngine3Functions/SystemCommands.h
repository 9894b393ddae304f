#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The environment's variables, the machine's services, and `confpatch`.
std::span<const CommandRow> systemCommands();
