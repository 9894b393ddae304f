#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The commands on texts.
std::span<const CommandRow> stringCommands();
