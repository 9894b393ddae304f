#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The commands that take texts apart in a parser.
std::span<const CommandRow> parserCommands();
