#pragma once

#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptExpression.h"

// Makes the ready form of a program of `block`, where it is about to run; true at
// once when it is there. False when memory runs out.
bool scriptExpressionPrepare(ScriptExpression* expression, ScriptBlock* block);
