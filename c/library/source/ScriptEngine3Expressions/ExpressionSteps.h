#pragma once

#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptExpression.h"

// Makes the ready form of a program of `block`, where it is about to run; true at
// once when it is there. False when memory runs out.
bool scriptExpressionPrepare(ScriptExpression* expression, ScriptBlock* block);

// A program's last step as the end of a statement in a chain: leaves nothing on the
// stack, or, in a condition, decides which step is next. False, with the step as it
// was, where there is no such way for it.
bool scriptStepEndsInChain(ExprStep* step, bool isCondition);

// A step of a chain's program behind which there is another one to come.
void scriptStepGoesOn(ExprStep* step);
