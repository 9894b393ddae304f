#pragma once

#include <cstdint>
#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The commands on dates and clocks.
std::span<const CommandRow> timeCommands();

// Waits until the 32-bit tick has reached its present count plus `milliseconds`,
// or the quit flag is set. A count beyond 32 bits is never reached: then only
// the flag ends the wait. Below 50 milliseconds it is a plain sleep.
void scriptSleep(uint32_t milliseconds);
