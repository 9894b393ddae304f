#pragma once

#include <span>
#include <string_view>

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// Registers one command. The row must live as long as the program. False for a
// null table, a row without name or handler, a name already there, or when
// memory runs out.
bool scriptEngineRegisterFunction(ParseTables* tables, const CommandRow* row);

// Registers the commands of all families, in their order, and stops at the first failure.
bool scriptEngineRegisterDefaultFunctions(ScriptEngine* engine);

// The command of this name, case counted; null without one.
const CommandRow* scriptEngineFindFunction(const ParseTables* tables, std::string_view name);

// Checks the arguments of a statement against the command: their number, and
// that each target is the name of a variable. False after a message.
bool scriptEngineValidateArgs(ScriptEngine* engine, const CommandRow* command,
                              const GrowArray<std::string_view>& args);
