#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// `call name [argument ...]`: runs a user function with its arguments by value.
int scriptEngineCall(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber);

// The same with the function's body, for a `call` that has found it. Nothing is null.
int scriptEngineCallBody(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                         ScriptBlock* body, int blockNumber);
