#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The commands that make variables, and those that ask for and change their type.
std::span<const CommandRow> declareCommands();
