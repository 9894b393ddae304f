#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// `call name [argument ...]`: runs a user function with its arguments by value.
int scriptEngineCall(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber);
