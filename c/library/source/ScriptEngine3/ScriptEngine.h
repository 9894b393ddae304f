#pragma once

#include "ScriptEngine3/EngineVariables.h"
#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// The way from a script's path to its run: create, prepare the engine (then
// variables and commands may be added), prepare the run, which parses, run,
// destroy. Functions with a bool result have reported their failure.

// A new engine; null on failure. The caller ends it with `scriptEngineDestroy`.
ScriptEngine* scriptEngineCreate();
// Ends the engine with all that belongs to it and clears the pointer. Null-safe.
void scriptEngineDestroy(ScriptEngine** engine);

// Registers the operations on values, the predefined variables and the commands.
bool scriptEnginePrepareEngine(ScriptEngine* engine);

// Parses the script and all it includes. Once only, but it may be tried again
// after a failure. Afterwards no command and no name can be added.
bool scriptEnginePrepareRun(ScriptEngine* engine, const String* scriptPath);

// Runs the global statements, the first time, and then the function; null or
// empty stands for "main". `args` are texts in literal form.
bool scriptEngineRun(ScriptEngine* engine, const String* functionName);
bool scriptEngineRunArgs(ScriptEngine* engine, const String* functionName,
                         const GrowArray<const String*>& args);
