#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// Gives `block` a variable of this name with a value read from the text as from
// a literal, or without one when `defaultValue` is null. A name that the block
// holds already keeps what it has. Gives the variable's id, `kNoVariable` on
// failure. The text stays the caller's.
uint32_t scriptEngineAddVarName(ScriptEngine* engine, ScriptBlock* block, const char* name,
                                const String* defaultValue);

// The same in the global block and in `block`; takes `value` and ends it. With
// `quote` the variable is a string whatever the text looks like.
uint32_t scriptEngineAddDefaultVar(ScriptEngine* engine, const char* name, String* value,
                                   bool quote);
uint32_t scriptEngineAddDefaultLocalVar(ScriptEngine* engine, ScriptBlock* block, const char* name,
                                        String* value, bool quote);

// Gives a template a variable whose object belongs to someone else and is
// shared until an instance changes it.
bool engineBorrowLocalVar(ScriptEngine* engine, ScriptBlock* block, const char* name,
                          ScriptObject* object);

// Sets one of the four result variables; any other id is refused.
bool scriptEngineSetResultVar(ScriptEngine* engine, uint32_t id, const char* value);

// Once they have been added: notes where the four result variables stand.
void engineFindResultVars(ScriptEngine* engine);
