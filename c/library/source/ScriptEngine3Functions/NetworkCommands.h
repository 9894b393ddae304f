#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Connections to other scripts and other programs.
std::span<const CommandRow> networkCommands();
