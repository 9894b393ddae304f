#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Locks that processes share by name.
std::span<const CommandRow> lockCommands();
