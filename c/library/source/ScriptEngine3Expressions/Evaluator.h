#pragma once

#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"

// Makes the evaluator known to the values; counted, so that a second engine
// does not do it again.
bool scriptOperatorsInit();
void scriptOperatorsDone();

// Runs a program in the block; see `ScriptEvaluator`.
bool scriptEngineRunExpression(ScriptEngine* engine, ScriptBlock* block,
                               ScriptExpression* expression, EvalWant want, EvalResult* result);

// The same for what only the truth is wanted of, and for what nothing is.
bool scriptEngineRunTruth(ScriptEngine* engine, ScriptBlock* block, ScriptExpression* expression,
                          ScriptTruth* truth);
bool scriptEngineRunQuietly(ScriptEngine* engine, ScriptBlock* block, ScriptExpression* expression);

// The result as an object that the caller owns, or null, also for null arguments.
ScriptObject* scriptEngineEvaluate(ScriptEngine* engine, ScriptBlock* block,
                                   ScriptExpression* expression);
