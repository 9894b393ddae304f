#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// Fills the global block with the predefined variables, in the order of their
// table, and remembers the ids of the four result variables in the engine.
// False when one of them cannot be added.
bool scriptEngineAddBuiltInVariables(ScriptEngine* engine);
