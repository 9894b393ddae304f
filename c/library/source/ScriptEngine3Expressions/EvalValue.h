#pragma once

#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptExpression.h"

// A value on its way through a program: a plain number, or an object. An object
// that this run has made and owns carries `kObjectMade`; any other is a variable.
struct EvalValue {
    ScriptObject* object;  // null: the number counts
    double number;
};

constexpr EvalValue valueOfNumber(double number) {
    return {nullptr, number};
}

inline const double* numberIn(const EvalValue& value) {
    if (value.object == nullptr) return &value.number;
    return value.object->type == kTypeNumber ? &value.object->number : nullptr;
}

inline bool isMade(const EvalValue& value) {
    return value.object != nullptr && (value.object->flags & kObjectMade) != 0;
}

inline void drop(const EvalValue& value) {
    ScriptObject* object = value.object;
    if (isMade(value)) scriptObjectDestroy(&object);
}

// The variable of an operand with a slot; null where it is not declared yet.
[[gnu::always_inline]] inline ScriptObject* objectInSlot(const ExprOperand& operand,
                                                         ScriptBlock* block) {
    return block->frames[operand.place.depth]->locals[operand.place.slot];
}

// The ends of a `StepRunner`. Each is its last call, so that a program runs
// from function to function without coming back.
[[gnu::always_inline]] inline StepOutcome runNext(const ExprStep* step, ScriptBlock* block,
                                                  EvalValue* top, StepStop* stop) {
    return step[1].run(step + 1, block, top, stop);
}

[[gnu::always_inline]] inline StepOutcome leaveStep(const ExprStep* step, EvalValue* top,
                                                    StepStop* stop) {
    stop->step = step;
    stop->top = top;
    return kStepStopped;
}

// The end of a condition in a chain: when it is false the step behind is passed over.
[[gnu::always_inline]] inline StepOutcome runBranch(bool truth, const ExprStep* step,
                                                    ScriptBlock* block, EvalValue* top,
                                                    StepStop* stop) {
    if (truth) return runNext(step, block, top, stop);
    block->lastCondition = kConditionFalse;
    return step[2].run(step + 2, block, top, stop);
}

// Whether the steps came to the end of their program; its result is at the bottom
// of the stack then, whatever it is.
inline bool stepsEnded(StepOutcome outcome, EvalValue* stack) {
    if (outcome >= kStepsEndedFalse) *stack = valueOfNumber(outcome == kStepsEndedTrue);
    return outcome != kStepStopped;
}
