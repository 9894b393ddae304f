#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// The directives, which the parser consumes, and the commands that create and
// stop block instances.
std::span<const CommandRow> directiveCommands();
std::span<const CommandRow> flowCommands();

// What `if` does once its condition has been asked, with the number of its body.
// Gives the status of the statement.
int scriptEngineTakeIf(ScriptEngine* engine, ScriptBlock* block, ScriptTruth truth,
                       int blockNumber);
