#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Values in a row, reached by index or in order.
std::span<const CommandRow> vectorCommands();
