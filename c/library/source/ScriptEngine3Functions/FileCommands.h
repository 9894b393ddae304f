#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Files that a script opens, reads and writes piece by piece, and closes.
std::span<const CommandRow> fileObjectCommands();
