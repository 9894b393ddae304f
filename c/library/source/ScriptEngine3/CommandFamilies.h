#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// One family of commands; its rows stand at the end of the file of its handlers.
struct CommandFamily {
    std::span<const CommandRow> rows;
};

// All families, in the order of registration.
std::span<const CommandFamily> commandFamilies();
