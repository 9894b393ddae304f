#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Comparisons of parser blocks and of records, that is vectors of texts; records
// cut and sorted.
std::span<const CommandRow> recordCommands();

// The comparison of texts; its row stands with those of the other commands on texts.
int scriptEngineStrDiff(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
