#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The registry's keys and values, and the values that scripts share through it.
std::span<const CommandRow> registryCommands();
