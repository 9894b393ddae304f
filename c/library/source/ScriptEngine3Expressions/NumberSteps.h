#pragma once

#include <cmath>

#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Expressions/Operations.h"

// The steps of a program that have to do with nothing but numbers: what makes
// a loop fast. Everything else is for the evaluator.

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

// The plain operator of a compound assignment on numbers; 0 for any other.
inline constexpr uint8_t kPlainOperators[] = {
    // From kOpAssign on. ORDER op-codes
    0, 0, kOpPlus, kOpMinus, kOpMult, kOpDiv, kOpMod, 0,
};

// What an operator makes of two numbers; false where it has another meaning.
[[gnu::always_inline]] inline bool ofNumbers(uint8_t op, double left, double right,
                                             double* result) {
    switch (op) {
        case kOpPlus:
            *result = left + right;
            return true;
        case kOpMinus:
            *result = left - right;
            return true;
        case kOpMult:
            *result = left * right;
            return true;
        case kOpDiv:
            *result = right == 0 ? 0 : left / right;
            return true;
        case kOpMod:
            *result = evaluateRemainder(left, right);
            return true;
        case kOpLt:
            *result = left < right;
            return true;
        case kOpGt:
            *result = left > right;
            return true;
        // An unordered pair counts as equal.
        case kOpLe:
            *result = !(left > right);
            return true;
        case kOpGe:
            *result = !(left < right);
            return true;
        case kOpEq:
            *result = !(left < right) && !(left > right);
            return true;
        case kOpNe:
            *result = left < right || left > right;
            return true;
        case kOpAnd:
            *result = left != 0 && right != 0;
            return true;
        case kOpOr:
            *result = left != 0 || right != 0;
            return true;
        case kOpMax:
            *result = left > right ? left : right;
            return true;
        case kOpMin:
            *result = left < right ? left : right;
            return true;
        case kOpAvg:
            *result = (left + right) * 0.5;
            return true;
        default:
            return false;
    }
}

inline ScriptObject* slotAbove(ScriptBlock* block, const VarPlace& place) {
    for (uint32_t depth = place.depth; depth != 0; --depth) block = block->outer;
    return block->locals[place.slot];
}

// Where an operand that is a number has it, or null when it is none, or when
// finding it takes more than a glance. `top` is one above the operand on the stack.
[[gnu::always_inline]] inline const double* numberAt(const ExprOperand& operand, ScriptBlock* block,
                                                     const EvalValue* top) {
    const ScriptObject* object;
    if (operand.from == kFromLocal) {
        object = block->locals[operand.place.slot];
    } else if (operand.from == kFromNumber) {
        return block->ownLiterals == nullptr ? &operand.number : nullptr;
    } else if (operand.from == kFromStack) {
        return numberIn(top[-1]);
    } else if (operand.from == kFromOuter) {
        object = slotAbove(block, operand.place);
    } else {
        return nullptr;
    }
    return object != nullptr && object->type == kTypeNumber ? &object->number : nullptr;
}

// A binary step on two numbers. False, with nothing changed, when it is more than that.
[[gnu::always_inline]] inline bool quickBinary(const ExprStep& step, ScriptBlock* block,
                                               const EvalValue* top, double* result) {
    const double* right = numberAt(step.right, block, top);
    if (right == nullptr) return false;
    const EvalValue* below = step.right.from == kFromStack ? top - 1 : top;
    const double* left = numberAt(step.left, block, below);
    return left != nullptr && ofNumbers(step.op, *left, *right, result);
}

// The number variable that an assignment goes to, null when it is none or may
// be shared. `top` is one above it when it was pushed before.
[[gnu::always_inline]] inline ScriptObject* targetAt(const ExprOperand& operand, ScriptBlock* block,
                                                     const EvalValue* top) {
    ScriptObject* target;
    if (operand.from == kFromLocal) {
        target = block->locals[operand.place.slot];
    } else if (operand.from == kFromOuter) {
        target = slotAbove(block, operand.place);
    } else if (operand.from == kFromStack) {
        target = top[-1].object;
        if (target != nullptr && target->flags != 0) return nullptr;
    } else {
        return nullptr;
    }
    return target != nullptr && target->type == kTypeNumber ? target : nullptr;
}

// The same for an assignment of a number to a variable.
[[gnu::always_inline]] inline bool quickAssign(const ExprStep& step, ScriptBlock* block,
                                               const EvalValue* top, double* result) {
    const double* right = numberAt(step.right, block, top);
    if (right == nullptr) return false;
    const EvalValue* below = step.right.from == kFromStack ? top - 1 : top;
    ScriptObject* target = targetAt(step.left, block, below);
    if (target == nullptr) return false;
    double value = *right;
    if (step.op != kOpAssign &&
        !ofNumbers(kPlainOperators[step.op - kOpAssign], target->number, value, &value))
        return false;
    target->number = value;
    *result = value;
    return true;
}

// Pushes a variable of a slot, or a literal number. False when it is neither.
[[gnu::always_inline]] inline bool quickPush(const ExprOperand& operand, ScriptBlock* block,
                                             EvalValue* value) {
    if (operand.from == kFromNumber) {
        value->object = nullptr;
        value->number = operand.number;
        return block->ownLiterals == nullptr;
    }
    if (operand.from == kFromLocal)
        value->object = block->locals[operand.place.slot];
    else if (operand.from == kFromOuter)
        value->object = slotAbove(block, operand.place);
    else
        return false;
    return value->object != nullptr;
}

// The three steps behind the head of a computation. Their operands are at hand:
// none comes from the stack.
[[gnu::always_inline]] inline bool quickCompute(const ExprStep* head, ScriptBlock* block,
                                                const EvalValue* top, double* result) {
    ScriptObject* target = targetAt(head[1].right, block, top);
    double value;
    if (target == nullptr || !quickBinary(head[2], block, top, &value)) return false;
    const uint8_t op = head[3].op;
    if (op != kOpAssign &&
        !ofNumbers(kPlainOperators[op - kOpAssign], target->number, value, &value))
        return false;
    target->number = value;
    *result = value;
    return true;
}

[[gnu::always_inline]] inline bool quickStep(const ExprStep& step, ScriptBlock* block,
                                             const EvalValue* top, double* result) {
    if (step.kind == kStepBinary) return quickBinary(step, block, top, result);
    return step.kind == kStepAssign && quickAssign(step, block, top, result);
}

// Runs steps from `step` on as long as they are of this kind. Null when the
// program has come to its end; otherwise the step that is for the evaluator.
const ExprStep* scriptRunNumberSteps(const ExprStep* step, ScriptBlock* block, EvalValue** top);

// Runs a program of such steps alone, if it is a single one or changes nothing:
// the commonest of all. False, with nothing done, when the program is any other.
bool scriptRunNumbers(const ScriptExpression* expression, ScriptBlock* block, double* result);
