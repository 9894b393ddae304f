#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Values by key, one entry a key.
std::span<const CommandRow> mapCommands();
