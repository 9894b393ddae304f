#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Values at named nodes, reached by paths such as "disk.size".
std::span<const CommandRow> treeCommands();
