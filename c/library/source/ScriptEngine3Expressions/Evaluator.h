#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Expressions/EvalValue.h"

// Makes the evaluator known to the values; counted, so that a second engine
// does not do it again.
bool scriptOperatorsInit();
void scriptOperatorsDone();

// Runs a program in the block; see `ScriptEvaluator`.
bool scriptEngineRunExpression(ScriptEngine* engine, ScriptBlock* block,
                               ScriptExpression* expression, EvalWant want, EvalResult* result);

// Goes on with a program whose values stand in `stack`: from the step at which
// it stopped, or, with null for `stop`, with what an object as result asks for.
bool scriptEngineGoOn(ScriptEngine* engine, ScriptBlock* block, EvalWant want, EvalValue* stack,
                      const StepStop* stop, EvalResult* result);

// The most values that the two below keep: they stand in the frames of statements,
// and so on the stack once for each level of nesting.
constexpr uint32_t kQuickDepth = 4;

// Whether a program can begin on so small a stack.
inline bool scriptIsQuick(const ScriptBlock* block, const ScriptExpression* expression) {
    return expression->stackDepth - 1 < kQuickDepth && block->ownLiterals == nullptr;
}

// The same as `scriptEngineRunExpression` for what only the truth is wanted of, and
// for what nothing is.
inline bool scriptEngineRunTruth(ScriptEngine* engine, ScriptBlock* block,
                                 ScriptExpression* expression, ScriptTruth* truth) {
    EvalResult result;
    bool good;
    if (scriptIsQuick(block, expression)) [[likely]] {
        EvalValue stack[kQuickDepth];
        StepStop stop;
        const ExprStep* step = expression->steps.begin();
        const bool ended = step->run(step, block, stack, &stop);
        if (ended && stack[0].object == nullptr) [[likely]] {
            *truth = stack[0].number == 0 ? kFalse : kTrue;
            return true;
        }
        good = scriptEngineGoOn(engine, block, kWantTruth, stack, ended ? nullptr : &stop, &result);
    } else {
        good = scriptEngineRunExpression(engine, block, expression, kWantTruth, &result);
    }
    *truth = static_cast<ScriptTruth>(static_cast<int>(result.number));
    return good;
}

inline bool scriptEngineRunQuietly(ScriptEngine* engine, ScriptBlock* block,
                                   ScriptExpression* expression) {
    if (!scriptIsQuick(block, expression)) [[unlikely]] {
        EvalResult result;
        return scriptEngineRunExpression(engine, block, expression, kWantNothing, &result);
    }
    EvalValue stack[kQuickDepth];
    StepStop stop;
    const ExprStep* step = expression->steps.begin();
    const bool ended = step->run(step, block, stack, &stop);
    if (ended && stack[0].object == nullptr) return true;
    return scriptEngineGoOn(engine, block, kWantNothing, stack, ended ? nullptr : &stop, nullptr);
}

// The result as an object that the caller owns, or null, also for null arguments.
ScriptObject* scriptEngineEvaluate(ScriptEngine* engine, ScriptBlock* block,
                                   ScriptExpression* expression);
