#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Parts of paths, the search path, names for new files, and the read-only mark.
std::span<const CommandRow> pathCommands();
