#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// Runs the statements of a block. True also when it stopped for a pending
// `return`, `break`, `continue` or `exit`; false after a failure, which has
// been reported.
bool scriptEngineRunBlock(ScriptEngine* engine, ScriptBlock* block);

// How a run of the innermost instance came out.
enum class StackRun { Failed = 0, Done = 1, Negative = 2 };

// Runs the last instance of the stack, takes it off and ends it, whatever came
// out. Without `allowSingle` there must be two of them.
StackRun scriptEngineRunStack(ScriptEngine* engine, bool allowSingle);

// The two halves of it, for a loop that keeps its instance: runs the innermost
// instance, which must be `block`, and takes it off.
bool stackRunTop(ScriptEngine* engine, ScriptBlock* block);
void stackPop(ScriptEngine* engine);

// Before a run: finds out how deep the calling thread's stack lets it go.
void stackMeasure(ScriptEngine* engine);

// Puts an activation of the block of this number, inside `parent`, on the
// stack. Null when there is no such block or memory runs out: `*missing` tells.
enum class PushFailure { None, MissingBlock, NoInstance, NoStack };
ScriptBlock* blockPush(ScriptEngine* engine, int blockNumber, ScriptBlock* parent,
                       PushFailure* failure);

// True when there is a block of this number; otherwise logs "<name>: #::11".
bool bodyExists(ScriptEngine* engine, const char* name, int blockNumber);

// Runs a function from outside with texts, in literal form, as arguments.
bool scriptEngineExecuteFunction(ScriptEngine* engine, const ScriptFunction* function,
                                 ScriptBlock* parent, const GrowArray<const String*>& args);

// The user function of this name; null without one. Valid until another is defined.
const ScriptFunction* scriptEngineFindUserFunction(const ScriptEngine* engine,
                                                   std::string_view name);
