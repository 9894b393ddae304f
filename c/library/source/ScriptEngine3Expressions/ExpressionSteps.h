#pragma once

#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Expressions/Operators.h"

// Steps that no token stands for.
enum ExtraStep : uint8_t {
    kStepClone = kOpCount,  // the whole program is one variable: a copy of it
    kStepInvalid,           // the program cannot go on: "Invalid expression"
};

// Makes the ready form of the program; true at once when it is there. False
// when memory runs out.
bool scriptExpressionPrepare(ScriptExpression* expression);
