#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The commands on single values and pointers.
std::span<const CommandRow> valueCommands();
