#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// What the operations share. `name` is the operation's name, which begins its messages.

// Replaces a pointer by what it refers to. False after "<name>: <message>".
bool operandResolve(ScriptEngine* engine, const char* name, const char* message,
                    ScriptObject** operand);
// Both operands, the left first, with the messages of the binary operations.
bool operandResolveBoth(ScriptEngine* engine, const char* name, ScriptObject** left,
                        ScriptObject** right);
// The operand of a unary operation: resolved, and of the type, or the message
// "<name>: <demand>".
bool operandRequire(ScriptEngine* engine, const char* name, ScriptType type, const char* demand,
                    ScriptObject** right);

// A new object, or null after "<name>: #::100".
ScriptObject* operandNumber(ScriptEngine* engine, const char* name, double value);
ScriptObject* operandString(ScriptEngine* engine, const char* name, std::string_view text);
// The object as it came, or null after "<name>: #::100".
ScriptObject* operandMade(ScriptEngine* engine, const char* name, ScriptObject* object);
