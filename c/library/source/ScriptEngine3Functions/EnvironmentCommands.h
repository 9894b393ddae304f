#pragma once

#include "ScriptEngine3Defs/CommandDef.h"

// The variables of the process's environment.
int scriptEngineGetEnv(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
int scriptEngineSetEnv(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
