#include "ScriptEngine3Expressions/NumberSteps.h"

#include <array>
#include <span>

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

constexpr bool givesTruth(uint8_t op) {
    return (op >= kOpLt && op <= kOpGe) || op == kOpEq || op == kOpNe || op == kOpAnd ||
           op == kOpOr || op == kOpNot;
}

// Puts the step's result in the place of what it took, and goes on.
template <StepEnd end>
[[gnu::always_inline]] inline StepOutcome give(double number, const ExprStep* step,
                                               ScriptBlock* block, EvalValue* place,
                                               StepStop* stop) {
    if constexpr (end == kInChain) return runNext(step, block, place, stop);
    // Field by field: nobody reads the number of an object.
    place->object = nullptr;
    place->number = number;
    if constexpr (end == kAtEnd) return kStepsEnded;
    return runNext(step, block, place + 1, stop);
}

// The same for a truth.
template <StepEnd end>
[[gnu::always_inline]] inline StepOutcome giveTruth(bool truth, const ExprStep* step,
                                                    ScriptBlock* block, EvalValue* place,
                                                    StepStop* stop) {
    if constexpr (end == kInChain) return runBranch(truth, step, block, place, stop);
    if constexpr (end == kAtEnd) return truth ? kStepsEndedTrue : kStepsEndedFalse;
    return give<end>(truth, step, block, place, stop);
}

template <uint8_t op, ExprSource left, ExprSource right, StepEnd end>
StepOutcome runBinary(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    const double* b = numberOf<right>(step->right, block, top);
    const double* a = numberOf<left>(step->left, block, top - (right == kFromStack));
    if (a == nullptr || b == nullptr) return scriptRunTextStep(step, block, top, stop);
    double result;
    ofNumbers(op, *a, *b, &result);
    EvalValue* place = top - takenFrom(left, right);
    if constexpr (givesTruth(op)) return giveTruth<end>(result != 0, step, block, place, stop);
    return give<end>(result, step, block, place, stop);
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

template <uint8_t op, ExprSource left, ExprSource right, StepEnd end>
StepOutcome runAssign(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    const double* value = numberOf<right>(step->right, block, top);
    ScriptObject* target = targetOf<left>(step->left, block, top - (right == kFromStack));
    if (value == nullptr || target == nullptr || target->type != kTypeNumber)
        return scriptRunTextStep(step, block, top, stop);
    const double result = assignTo<op>(target, *value);
    return give<end>(result, step, block, top - takenFrom(left, right), stop);
}

template <uint8_t op, ExprSource right, StepEnd end>
StepOutcome runUnary(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    EvalValue* place = top - (right == kFromStack);
    if constexpr (op == kOpNot) {
        const double* number = numberOf<right>(step->right, block, top);
        if (number == nullptr) return leaveStep(step, top, stop);
        return giveTruth<end>(*number == 0, step, block, place, stop);
    } else {
        ScriptObject* target = targetOf<right>(step->right, block, top);
        if (target == nullptr || target->type != kTypeNumber) return leaveStep(step, top, stop);
        target->number += op == kOpIncr ? 1 : -1;
        return give<end>(target->number, step, block, place, stop);
    }
}

// The size of a variable, which may be of any type.
template <StepEnd end>
StepOutcome runSizeof(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    const ScriptObject* object = objectInSlot(step->right, block);
    const uint32_t size = object != nullptr && object->type == kTypeString
                              ? object->string.length
                              : scriptObjectGetSize(object);
    if (size == kNoSize) return leaveStep(step, top, stop);
    return give<end>(size, step, block, top, stop);
}

StepOutcome runPushNumber(const ExprStep* step, ScriptBlock* block, EvalValue* top,
                          StepStop* stop) {
    return give<kMidway>(step->right.number, step, block, top, stop);
}

StepOutcome runPushSlot(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    top->object = objectInSlot(step->right, block);
    if (top->object == nullptr) return leaveStep(step, top, stop);
    return runNext(step, block, top + 1, stop);
}

// Of one operation, by where its step stands, where the left operand comes from,
// and where the right one does. ORDER ends, sources
constexpr size_t kNumberSources = 3;
using RunnersBySource = std::array<std::array<StepRunner, kNumberSources>, kNumberSources>;
struct RunnerRow {
    uint8_t op;
    std::array<RunnersBySource, kStepEnds> by;
};

template <uint8_t op, StepEnd end>
constexpr RunnersBySource binaryRunners() {
    return {
        {{runBinary<op, kFromStack, kFromStack, end>, runBinary<op, kFromStack, kFromNumber, end>,
          runBinary<op, kFromStack, kFromSlot, end>},
         {runBinary<op, kFromNumber, kFromStack, end>, runBinary<op, kFromNumber, kFromNumber, end>,
          runBinary<op, kFromNumber, kFromSlot, end>},
         {runBinary<op, kFromSlot, kFromStack, end>, runBinary<op, kFromSlot, kFromNumber, end>,
          runBinary<op, kFromSlot, kFromSlot, end>}}};
}

template <uint8_t op, StepEnd end>
constexpr RunnersBySource assignRunners() {
    return {
        {{runAssign<op, kFromStack, kFromStack, end>, runAssign<op, kFromStack, kFromNumber, end>,
          runAssign<op, kFromStack, kFromSlot, end>},
         {nullptr, nullptr, nullptr},
         {runAssign<op, kFromSlot, kFromStack, end>, runAssign<op, kFromSlot, kFromNumber, end>,
          runAssign<op, kFromSlot, kFromSlot, end>}}};
}

template <uint8_t op, StepEnd end>
constexpr RunnersBySource unaryRunners() {
    return {{{runUnary<op, kFromStack, end>, nullptr, runUnary<op, kFromSlot, end>}, {}, {}}};
}

template <uint8_t op>
constexpr RunnerRow binaryRow() {
    return {
        op,
        {binaryRunners<op, kMidway>(), binaryRunners<op, kAtEnd>(), binaryRunners<op, kInChain>()}};
}

template <uint8_t op>
constexpr RunnerRow assignRow() {
    return {
        op,
        {assignRunners<op, kMidway>(), assignRunners<op, kAtEnd>(), assignRunners<op, kInChain>()}};
}

template <uint8_t op>
constexpr RunnerRow unaryRow() {
    return {
        op,
        {unaryRunners<op, kMidway>(), unaryRunners<op, kAtEnd>(), unaryRunners<op, kInChain>()}};
}

constexpr RunnerRow sizeofRow() {
    RunnerRow row{kOpSizeof, {}};
    row.by[kMidway][kFromStack][kFromSlot] = runSizeof<kMidway>;
    row.by[kAtEnd][kFromStack][kFromSlot] = runSizeof<kAtEnd>;
    return row;
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
    sizeofRow(),
};

StepRunner runnerIn(std::span<const RunnerRow> rows, uint8_t op, StepEnd end, ExprSource left,
                    ExprSource right) {
    if (left >= kNumberSources || right >= kNumberSources) return nullptr;
    for (const RunnerRow& row : rows)
        if (row.op == op) return row.by[end][left][right];
    return nullptr;
}

}  // namespace

StepRunner scriptNumberRunner(const ExprStep& step, StepEnd end) {
    switch (step.kind) {
        case kStepBinary:
            if (end == kInChain && !givesTruth(step.op)) return nullptr;
            return runnerIn(kBinaryRunners, step.op, end, step.left.from, step.right.from);
        case kStepAssign:
            return runnerIn(kAssignRunners, step.op, end, step.left.from, step.right.from);
        case kStepUnary:
            return runnerIn(kUnaryRunners, step.op, end, kFromStack, step.right.from);
        case kStepPush:
            if (step.right.from == kFromNumber) return runPushNumber;
            return step.right.from == kFromSlot ? runPushSlot : nullptr;
        default:
            return nullptr;
    }
}

bool scriptGivesTruth(const ExprStep& step) {
    return (step.kind == kStepBinary || step.kind == kStepUnary) && givesTruth(step.op);
}
