#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Whole files into values, and values into whole files.
std::span<const CommandRow> wholeFileCommands();
