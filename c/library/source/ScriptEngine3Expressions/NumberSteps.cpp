#include "ScriptEngine3Expressions/NumberSteps.h"

#include "ScriptEngine3Expressions/TextSteps.h"

// Each function is made for one operation and for the places of its operands,
// all known when a program is made ready: what is left to do at its run is to
// look whether the variables hold numbers.

namespace {

// Where an operand that is a number has it, or null when it is none. `top` is one
// above an operand on the stack.
template <ExprSource from>
[[gnu::always_inline]] inline const double* numberOf(const ExprOperand& operand, ScriptBlock* block,
                                                     const EvalValue* top) {
    if constexpr (from == kFromNumber) {
        return &operand.number;
    } else if constexpr (from == kFromStack) {
        return numberIn(top[-1]);
    } else {
        const ScriptObject* object = objectInSlot(operand, block);
        return object != nullptr && object->type == kTypeNumber ? &object->number : nullptr;
    }
}

constexpr int takenFrom(ExprSource left, ExprSource right) {
    return (left == kFromStack) + (right == kFromStack);
}

// Puts the step's result in the place of what it took, and goes on.
[[gnu::always_inline]] inline bool give(double number, const ExprStep* step, ScriptBlock* block,
                                        EvalValue* place, StepStop* stop) {
    // Field by field: nobody reads the number of an object.
    place->object = nullptr;
    place->number = number;
    return runNext(step, block, place + 1, stop);
}

template <uint8_t op, ExprSource left, ExprSource right>
bool runBinary(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    const double* b = numberOf<right>(step->right, block, top);
    const double* a = numberOf<left>(step->left, block, top - (right == kFromStack));
    if (a == nullptr || b == nullptr) return scriptRunTextStep(step, block, top, stop);
    double result;
    ofNumbers(op, *a, *b, &result);
    return give(result, step, block, top - takenFrom(left, right), stop);
}

// The variable that an assignment goes to, null when it may be shared or is not there.
template <ExprSource from>
[[gnu::always_inline]] inline ScriptObject* targetOf(const ExprOperand& operand, ScriptBlock* block,
                                                     const EvalValue* top) {
    if constexpr (from == kFromSlot) return objectInSlot(operand, block);
    ScriptObject* target = top[-1].object;
    return target != nullptr && target->flags == 0 ? target : nullptr;
}

// Gives a number variable its new value.
template <uint8_t op>
[[gnu::always_inline]] inline double assignTo(ScriptObject* target, double value) {
    if constexpr (op != kOpAssign)
        ofNumbers(kPlainOperators[op - kOpAssign], target->number, value, &value);
    target->number = value;
    return value;
}

template <uint8_t op, ExprSource left, ExprSource right>
bool runAssign(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    const double* value = numberOf<right>(step->right, block, top);
    ScriptObject* target = targetOf<left>(step->left, block, top - (right == kFromStack));
    if (value == nullptr || target == nullptr || target->type != kTypeNumber)
        return scriptRunTextStep(step, block, top, stop);
    const double result = assignTo<op>(target, *value);
    return give(result, step, block, top - takenFrom(left, right), stop);
}

template <uint8_t op, ExprSource right>
bool runUnary(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    double result;
    if constexpr (op == kOpNot) {
        const double* number = numberOf<right>(step->right, block, top);
        if (number == nullptr) return leaveStep(step, top, stop);
        result = *number == 0;
    } else {
        ScriptObject* target = targetOf<right>(step->right, block, top);
        if (target == nullptr || target->type != kTypeNumber) return leaveStep(step, top, stop);
        target->number += op == kOpIncr ? 1 : -1;
        result = target->number;
    }
    return give(result, step, block, top - (right == kFromStack), stop);
}

bool runPushNumber(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    return give(step->right.number, step, block, top, stop);
}

bool runPushSlot(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    top->object = objectInSlot(step->right, block);
    if (top->object == nullptr) return leaveStep(step, top, stop);
    return runNext(step, block, top + 1, stop);
}

// By where the left operand comes from, then the right one. ORDER sources
constexpr size_t kNumberSources = 3;
struct RunnerRow {
    uint8_t op;
    StepRunner by[kNumberSources][kNumberSources];
};

template <uint8_t op>
constexpr RunnerRow binaryRow() {
    return {op,
            {{runBinary<op, kFromStack, kFromStack>, runBinary<op, kFromStack, kFromNumber>,
              runBinary<op, kFromStack, kFromSlot>},
             {runBinary<op, kFromNumber, kFromStack>, runBinary<op, kFromNumber, kFromNumber>,
              runBinary<op, kFromNumber, kFromSlot>},
             {runBinary<op, kFromSlot, kFromStack>, runBinary<op, kFromSlot, kFromNumber>,
              runBinary<op, kFromSlot, kFromSlot>}}};
}

template <uint8_t op>
constexpr RunnerRow assignRow() {
    return {op,
            {{runAssign<op, kFromStack, kFromStack>, runAssign<op, kFromStack, kFromNumber>,
              runAssign<op, kFromStack, kFromSlot>},
             {nullptr, nullptr, nullptr},
             {runAssign<op, kFromSlot, kFromStack>, runAssign<op, kFromSlot, kFromNumber>,
              runAssign<op, kFromSlot, kFromSlot>}}};
}

template <uint8_t op>
constexpr RunnerRow unaryRow() {
    return {op, {{runUnary<op, kFromStack>, nullptr, runUnary<op, kFromSlot>}, {}, {}}};
}

constexpr RunnerRow kBinaryRunners[] = {
    binaryRow<kOpPlus>(), binaryRow<kOpMinus>(), binaryRow<kOpMult>(), binaryRow<kOpDiv>(),
    binaryRow<kOpMod>(),  binaryRow<kOpLt>(),    binaryRow<kOpGt>(),   binaryRow<kOpLe>(),
    binaryRow<kOpGe>(),   binaryRow<kOpEq>(),    binaryRow<kOpNe>(),   binaryRow<kOpAnd>(),
    binaryRow<kOpOr>(),   binaryRow<kOpMax>(),   binaryRow<kOpMin>(),  binaryRow<kOpAvg>(),
};
constexpr RunnerRow kAssignRunners[] = {
    assignRow<kOpAssign>(),     assignRow<kOpAddAssign>(), assignRow<kOpSubAssign>(),
    assignRow<kOpMultAssign>(), assignRow<kOpDivAssign>(), assignRow<kOpModAssign>(),
};
constexpr RunnerRow kUnaryRunners[] = {
    unaryRow<kOpNot>(),
    unaryRow<kOpIncr>(),
    unaryRow<kOpDecr>(),
};
template <size_t count>
StepRunner runnerIn(const RunnerRow (&rows)[count], uint8_t op, ExprSource left, ExprSource right) {
    if (left >= kNumberSources || right >= kNumberSources) return nullptr;
    for (const RunnerRow& row : rows)
        if (row.op == op) return row.by[left][right];
    return nullptr;
}

}  // namespace

StepRunner scriptNumberRunner(const ExprStep& step) {
    switch (step.kind) {
        case kStepBinary:
            return runnerIn(kBinaryRunners, step.op, step.left.from, step.right.from);
        case kStepAssign:
            return runnerIn(kAssignRunners, step.op, step.left.from, step.right.from);
        case kStepUnary:
            return runnerIn(kUnaryRunners, step.op, kFromStack, step.right.from);
        case kStepPush:
            if (step.right.from == kFromNumber) return runPushNumber;
            return step.right.from == kFromSlot ? runPushSlot : nullptr;
        default:
            return nullptr;
    }
}
