#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// Runs the statements of a block. True also when it stopped for a pending
// `return`, `break`, `continue` or `exit`; false after a failure, which has
// been reported, and where the native stack ends.
bool scriptEngineRunBlock(ScriptEngine* engine, ScriptBlock* block);

// How a run of the innermost instance came out.
enum class StackRun { Failed = 0, Done = 1, Negative = 2 };

// Runs the last instance of the stack, takes it off and ends it, whatever came
// out. Without `allowSingle` there must be two of them.
StackRun scriptEngineRunStack(ScriptEngine* engine, bool allowSingle);

// Takes the innermost instance off the stack and ends it.
inline void stackPop(ScriptEngine* engine) {
    scriptBlockRetire(engine->stack.pop());
}

// Before a run: finds out how deep the calling thread's stack lets it go.
void stackMeasure(ScriptEngine* engine);

// The block of this number as parsed; null when there is none.
inline ScriptBlock* blockTemplate(const ScriptEngine* engine, int blockNumber) {
    const auto number = static_cast<uint32_t>(blockNumber);  // no number is a large one
    return number < engine->blocks.size() ? engine->blocks[number] : nullptr;
}

// Puts an activation of the block, inside `parent`, on the stack. Null when
// memory runs out: `*failure` tells where.
enum class PushFailure { NoInstance, NoStack };
inline ScriptBlock* blockPush(ScriptEngine* engine, ScriptBlock* body, ScriptBlock* parent,
                              PushFailure* failure) {
    ScriptBlock* block = scriptBlockInstantiate(body, parent);
    *failure = PushFailure::NoInstance;
    if (block == nullptr || engine->stack.push(block)) [[likely]]
        return block;
    scriptBlockRetire(block);
    *failure = PushFailure::NoStack;
    return nullptr;
}

// Runs a function from outside with texts, in literal form, as arguments.
bool scriptEngineExecuteFunction(ScriptEngine* engine, const ScriptFunction* function,
                                 ScriptBlock* parent, const GrowArray<const String*>& args);

// The user function of this name; null without one. Valid until another is defined.
const ScriptFunction* scriptEngineFindUserFunction(const ScriptEngine* engine,
                                                   std::string_view name);
