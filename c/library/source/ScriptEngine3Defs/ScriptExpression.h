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
enum ExprSource : uint8_t {
    kFromStack,
    kFromPlace,   // looked up by its place
    kFromNumber,  // a literal number, until the instance has literals of its own
    kFromLocal,   // a slot of the block itself: found out at the first use
    kFromOuter,   // a slot of the block `place.depth` above
};

struct ExprOperand {
    ExprSource from;
    VarPlace place;
    double number;
};

enum ExprStepKind : uint8_t {
    kStepPush,
    kStepUnary,
    kStepBinary,
    kStepAssign,   // a binary step that leaves its value on the left
    kStepCompute,  // heads three steps, `x = a + b` and the like, that may run as one
    kStepClone,    // the whole program is one variable: a copy of it
    kStepInvalid,  // the program cannot go on
};

// One step of the ready form of a program: an operation with its operands
// named where they can be, or a push. The steps do what the tokens say in the
// order in which they say it; they only spare the moves over the stack.
struct ExprStep {
    ExprStepKind kind;
    uint8_t op;
    bool isLast;
    uint8_t taken;  // operands that come from the stack
    ExprOperand left;
    ExprOperand right;
};

// The most values on the stack of a program that counts as short.
constexpr uint32_t kPureDepth = 8;

// A compiled expression in postfix order. The tokens never change; the steps
// are made from them at the first run.
struct ScriptExpression {
    GrowArray<ExprToken> tokens;
    GrowArray<ExprStep> steps;
    const ExprStep* single = nullptr;  // the first step of a program that does one thing
    bool isPure = false;               // changes nothing and is short: it may be begun again
    uint32_t stackDepth = 0;           // the most values on the stack, 0 before the first run
    bool writes = false;               // has an operation that changes a variable
};

// An empty program; null when memory runs out. Ends with `scriptExpressionDestroy`.
ScriptExpression* scriptExpressionCreate();
ScriptExpression* scriptExpressionClone(const ScriptExpression* expression);
void scriptExpressionDestroy(ScriptExpression** expression);
