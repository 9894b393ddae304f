#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The current directory, listings, and what copies, moves and deletes.
std::span<const CommandRow> directoryCommands();
