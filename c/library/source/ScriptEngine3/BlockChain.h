#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// Makes the chain of a block, of which `block` is an activation without literals of its
// own: the steps of all its statements in one piece, so that they run from one to the
// next. Where a statement is run by its handler, where the body of an `if` is to be run,
// and at the end, the chain stops. False for a block that is too long, and when memory
// runs out.
bool blockChainMake(ScriptEngine* engine, ScriptBlock* block);

// Whether a statement is a `call` that has found its function: a literal of the template
// that names it does so for good.
bool blockCallIsResolved(const ScriptBlock* block, const ScriptLine* line);
