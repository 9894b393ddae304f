#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Values in a row, changed at its ends and at the cursor of a walk.
std::span<const CommandRow> listCommands();
