#pragma once

#include "ScriptEngine3Defs/ScriptTypes.h"

// The handlers that take a text apart; their rows stand with those of the
// other commands on texts.
int scriptEngineStrSplit(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
int scriptEngineStrToVector(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
int scriptEngineStrToList(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
int scriptEngineStrToSet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
int scriptEngineStrToMap(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
