#pragma once

#include <cstdint>

#include "ScriptEngine3Defs/ScriptTypes.h"
#include "ScriptEngine3Defs/VarPlace.h"
#include "containers/GrowArray.h"

// Op code of a token that pushes a variable.
constexpr uint32_t kOpValue = 50;
// The classifier's answer for a text that is no token.
constexpr uint32_t kOpNone = 0;

struct BlockShape;

struct ExprToken {
    uint32_t op;
    uint32_t varId;  // meaningful when `op` is `kOpValue`
    // Where a literal stands among its block's literals; `kNoVariable` for a name.
    uint32_t literalSlot;
};

// Where a step of a program takes an operand from.
enum ExprSource : uint8_t {
    kFromStack,
    kFromNumber,  // a literal number, until the instance has literals of its own
    kFromSlot,    // a slot of the block `place.depth` above
    kFromText,    // a literal text, like a literal number
    kFromPlace,   // looked up by its place
};

struct ExprOperand {
    ExprSource from;
    VarPlace place;
    union {
        double number;       // of `kFromNumber`
        ScriptObject* text;  // of `kFromText`, shared
    };
};

enum ExprStepKind : uint8_t {
    kStepPush,
    kStepUnary,
    kStepBinary,
    kStepAssign,   // a binary step that leaves its value on the left
    kStepClone,    // the whole program is one variable: a copy of it
    kStepInvalid,  // the program cannot go on
    kStepEnd,      // behind the last one

    // Of chains alone.
    kStepDrop,     // ends the value that a statement leaves
    kStepCheck,    // ends a condition: false skips the step behind it
    kStepBody,     // the statement's body is to be run
    kStepSucceed,  // a statement has succeeded: sets the result variables
    kStepRest,     // the chain goes on from here
    kStepCall,     // a `call` that has found its function for good
    kStepHandler,  // a statement that is run by its handler
    kStepLine,     // the same, and its handler may not be all
};

// Where a step stands in its program.
enum StepEnd : uint8_t {
    kMidway,
    kAtEnd,
    kInChain,  // at the end, in a chain: leaves nothing, or decides what is next
};
constexpr size_t kStepEnds = 3;

struct EvalValue;
struct ExprStep;
struct ScriptLine;

// Where a program came to a step that is for the evaluator.
struct StepStop {
    const ExprStep* step;
    EvalValue* top;
};

// How far a program has come.
enum StepOutcome : uint8_t {
    kStepStopped,  // to a step that is for the evaluator
    kStepsEnded,   // to its end: the result is at the bottom of the stack
    // To its end with a truth, which a condition need not fetch from the stack: nothing
    // is left there. ORDER truth
    kStepsEndedFalse,
    kStepsEndedTrue,
};

// Does a step in the short way that was made for its operation and operands, on
// the values below `top`, and goes on with the steps behind it. Where the values at a
// step are not of the kind that it was made for, nothing of that step is done, and
// `stop` tells it.
using StepRunner = StepOutcome (*)(const ExprStep* step, ScriptBlock* block, EvalValue* top,
                                   StepStop* stop);

// One step of the ready form of a program: an operation with its operands
// named where they can be, or a push. The steps do what the tokens say in the
// order in which they say it; they only spare the moves over the stack.
struct ExprStep {
    ExprStepKind kind;
    uint8_t op;
    StepEnd end;
    uint8_t taken;  // operands that come from the stack
    uint32_t line;  // in a chain: the statement's place in its block
    StepRunner run;
    ExprOperand left;
    union {
        ExprOperand right;
        ScriptEngine* engine;   // of `kStepSucceed`
        ScriptLine* statement;  // of the steps at which a chain stops
    };
};

// A compiled expression in postfix order. The tokens never change; the steps
// are made from them at the first run.
struct ScriptExpression {
    GrowArray<ExprToken> tokens;
    GrowArray<ExprStep> steps;
    uint32_t stackDepth = 0;  // the most values on the stack, 0 before the first run
    bool writes = false;      // has an operation that changes a variable
    bool isLoose = false;     // see `scriptExpressionLoosen`
};

// An empty program; null when memory runs out. Ends with `scriptExpressionDestroy`.
ScriptExpression* scriptExpressionCreate();
ScriptExpression* scriptExpressionClone(const ScriptExpression* expression);
void scriptExpressionDestroy(ScriptExpression** expression);

// Makes an expression ready to leave the block whose template has `shape`: as the
// element of a container it is evaluated wherever a pointer to it is used, and
// looks up its literals there by their ids, like its variables, each time anew.
// False when memory runs out.
bool scriptExpressionLoosen(ScriptExpression* expression, BlockShape* shape);
