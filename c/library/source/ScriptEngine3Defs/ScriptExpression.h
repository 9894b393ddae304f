#pragma once

#include <cstdint>

#include "ScriptEngine3Defs/VarPlace.h"
#include "containers/GrowArray.h"

// Op code of a token that pushes a variable.
constexpr uint32_t kOpValue = 50;
// The classifier's answer for a text that is no token.
constexpr uint32_t kOpNone = 0;

struct ExprToken {
    uint32_t op;
    uint32_t varId;  // meaningful when `op` is `kOpValue`
    // Where a literal stands among its block's literals; `kNoVariable` for a name.
    uint32_t literalSlot;
};

// Where a step of a program takes an operand from.
enum ExprSource : uint8_t { kFromStack, kFromPlace };

// One step of the ready form of a program: an operation with its operands
// named where they can be, or a push. The steps do what the tokens say in the
// order in which they say it; they only spare the moves over the stack.
struct ExprStep {
    uint8_t op;
    ExprSource leftFrom;
    ExprSource rightFrom;
    bool isLast;
    VarPlace left;
    VarPlace right;
};

// A compiled expression in postfix order. The tokens never change; the steps
// are made from them at the first run.
struct ScriptExpression {
    GrowArray<ExprToken> tokens;
    GrowArray<ExprStep> steps;
    uint32_t stackDepth = 0;  // the most values that the steps keep on the stack
};

// An empty program; null when memory runs out. Ends with `scriptExpressionDestroy`.
ScriptExpression* scriptExpressionCreate();
ScriptExpression* scriptExpressionClone(const ScriptExpression* expression);
void scriptExpressionDestroy(ScriptExpression** expression);
