#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The commands that start, watch and end other programs.
std::span<const CommandRow> processCommands();
