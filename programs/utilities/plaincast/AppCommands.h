#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"
#include "time/Time.h"

// The earliest moment at which the run may end, 0 without one. The main thread's alone.
extern Time runUntil;

// Moves that moment to so many seconds from now.
void runUntilSet(int32_t seconds);

// The script commands that the application adds to the language.
std::span<const CommandRow> applicationCommands();
