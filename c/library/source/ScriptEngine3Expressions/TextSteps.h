#pragma once

#include "ScriptEngine3Expressions/EvalValue.h"

// What texts need that stand in variables and literals: to be joined, compared
// and assigned where they are.

// The function for a step whose operands may be texts; null when there is none.
StepRunner scriptTextRunner(const ExprStep& step);

// Runs a step that may be one on texts, like any `StepRunner`.
StepOutcome scriptRunTextStep(const ExprStep* step, ScriptBlock* block, EvalValue* top,
                              StepStop* stop);

// A new text of two; null when memory runs out.
ScriptObject* scriptJoinTexts(std::string_view left, std::string_view right);
