#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The directives, which the parser consumes, and the commands that create and
// stop block instances.
std::span<const CommandRow> directiveCommands();
std::span<const CommandRow> flowCommands();
