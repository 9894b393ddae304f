#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Values in order, equal ones kept.
std::span<const CommandRow> setCommands();
