#pragma once

#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptLine.h"

struct ScriptExpression;

// What the caller does with the result of an expression; the less it needs,
// the less is made.
enum EvalWant : uint8_t { kWantValue, kWantTruth, kWantNothing };

// The result of an expression: a plain number, or an object that the receiver
// owns. With `kWantTruth` the number is a `ScriptTruth`.
struct EvalResult {
    ScriptObject* object = nullptr;
    double number = 0;
};

// Runs a program in the block. False on failure, which has been reported.
using ScriptEvaluator = bool (*)(ScriptEngine* engine, ScriptBlock* block,
                                 ScriptExpression* expression, EvalWant want, EvalResult* result);

// The evaluator lies above the values that it computes with: values reach it
// through this pointer, which is set before the first script is parsed.
extern ScriptEvaluator scriptEvaluator;

// The result as an object that the caller owns; null on failure.
ScriptObject* scriptEvaluateToObject(ScriptEngine* engine, ScriptBlock* block,
                                     ScriptExpression* expression);
// The truth of the result; `kNoTruth` on failure too.
ScriptTruth scriptEvaluateTruth(ScriptEngine* engine, ScriptBlock* block,
                                ScriptExpression* expression);
