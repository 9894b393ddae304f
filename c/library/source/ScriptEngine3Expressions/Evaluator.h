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

// The most values that a quick run keeps: they stand in the frames of statements,
// and so on the stack once for each level of nesting.
constexpr uint32_t kQuickDepth = 4;

// The steps of an expression of a template; null before its first run, and when it
// needs more values than a quick run keeps.
inline const ExprStep* scriptQuickSteps(const ScriptExpression* expression) {
    return expression->stackDepth - 1 < kQuickDepth ? expression->steps.begin() : nullptr;
}

// The program of a statement's first argument where that is an expression of the
// running block, as it stands in the template; null when it is anything else, or
// takes a longer look.
ScriptExpression* scriptArgumentProgram(const ScriptBlock* block, const ScriptArgs* args);

// The steps of that program, if they are quick; null otherwise.
inline const ExprStep* scriptArgumentSteps(const ScriptBlock* block, ScriptArgs* args) {
    if (block->ownLiterals != nullptr) [[unlikely]]
        return nullptr;
    if (args->steps == nullptr) [[unlikely]]
        if (const ScriptExpression* expression = scriptArgumentProgram(block, args))
            args->steps = scriptQuickSteps(expression);
    return args->steps;
}

// What stands behind `scriptEngineRunTruth` where the steps did not end in a truth.
bool scriptEngineFindTruth(ScriptEngine* engine, ScriptBlock* block, EvalValue* stack,
                           const StepStop* stop, ScriptTruth* truth);

// The same as `scriptEngineRunExpression` for quick steps of which only the truth is
// wanted, and for those of which nothing is. The block has no literals of its own.
inline bool scriptEngineRunTruth(ScriptEngine* engine, ScriptBlock* block, const ExprStep* steps,
                                 ScriptTruth* truth) {
    EvalValue stack[kQuickDepth];
    StepStop stop;
    const StepOutcome outcome = steps->run(steps, block, stack, &stop);
    if (outcome >= kStepsEndedFalse) [[likely]] {
        *truth = outcome == kStepsEndedTrue ? kTrue : kFalse;
        return true;
    }
    return scriptEngineFindTruth(engine, block, stack, outcome == kStepsEnded ? nullptr : &stop,
                                 truth);
}

inline bool scriptEngineRunQuietly(ScriptEngine* engine, ScriptBlock* block,
                                   const ExprStep* steps) {
    EvalValue stack[kQuickDepth];
    StepStop stop;
    const StepOutcome outcome = steps->run(steps, block, stack, &stop);
    if (outcome == kStepStopped) [[unlikely]]
        return scriptEngineGoOn(engine, block, kWantNothing, stack, &stop, nullptr);
    if (outcome == kStepsEnded) drop(stack[0]);
    return true;
}

// The result as an object that the caller owns, or null, also for null arguments.
ScriptObject* scriptEngineEvaluate(ScriptEngine* engine, ScriptBlock* block,
                                   ScriptExpression* expression);
