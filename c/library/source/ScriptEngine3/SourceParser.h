#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// Parses one file at file level, and all that it includes, into the engine's
// blocks, functions and global statements. A file that was parsed before is
// passed over. `baseDirectory` is what a relative path starts from; null: the
// current directory. In a file that is not the main one a function "main" is
// passed over. False after a message.
bool scriptEngineParse(ScriptEngine* engine, const String* path, const String* baseDirectory,
                       bool isMain);
