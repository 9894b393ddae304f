#pragma once

#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptExpression.h"

// Makes the ready form of a program whose literals stand in `block`, or in its
// template; true at once when it is there. False when memory runs out.
bool scriptExpressionPrepare(ScriptExpression* expression, const ScriptBlock* block);
