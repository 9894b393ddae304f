#include "ScriptEngine3Expressions/TextSteps.h"

#include "ScriptEngine3Expressions/Operators.h"
#include "strings/StringCompare.h"
#include "strings/StringMatch.h"
#include "strings/StringNumbers.h"

namespace {

// The object of an operand; null where it is a plain number or takes a longer look.
// `top` is one above an operand on the stack.
ScriptObject* objectOf(const ExprOperand& operand, ScriptBlock* block, const EvalValue* top) {
    switch (operand.from) {
        case kFromStack:
            return top[-1].object;
        case kFromText:
            return operand.text;
        case kFromSlot:
            return objectInSlot(operand, block);
        default:
            return nullptr;
    }
}

ScriptObject* stringOf(const ExprOperand& operand, ScriptBlock* block, const EvalValue* top) {
    ScriptObject* object = objectOf(operand, block, top);
    return object != nullptr && object->type == kTypeString ? object : nullptr;
}

ScriptObject* leftString(const ExprStep* step, ScriptBlock* block, const EvalValue* top) {
    return stringOf(step->left, block, top - (step->right.from == kFromStack));
}

// What stands on the right as text, a number's in `digits`. False when it has none here.
bool pieceOf(const ExprOperand& operand, ScriptBlock* block, const EvalValue* top, char* digits,
             std::string_view* piece) {
    const ScriptObject* object = objectOf(operand, block, top);
    const double* number = nullptr;
    if (object == nullptr && operand.from == kFromStack)
        number = &top[-1].number;
    else if (operand.from == kFromNumber)
        number = &operand.number;
    else if (object != nullptr && object->type == kTypeNumber)
        number = &object->number;
    if (number != nullptr)
        *piece = {digits, numberToText(*number, digits)};
    else if (object != nullptr && object->type == kTypeString)
        *piece = stringView(&object->string);
    else
        return false;
    return true;
}

// Ends a right operand that only this run had.
void dropRight(const ExprStep* step, const EvalValue* top) {
    if (step->right.from == kFromStack) drop(top[-1]);
}

// Puts the step's result in the place of what it took, and goes on.
StepOutcome give(ScriptObject* object, const ExprStep* step, ScriptBlock* block, EvalValue* top,
                 StepStop* stop) {
    EvalValue* place = top - step->taken;
    if (step->end == kInChain) return runNext(step, block, place, stop);
    place->object = object;
    return runNext(step, block, place + 1, stop);
}

StepOutcome runConcat(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    ScriptObject* left = leftString(step, block, top);
    if (left == nullptr) return leaveStep(step, top, stop);
    char digits[kNumberTextMax];
    std::string_view piece;
    if (!pieceOf(step->right, block, top, digits, &piece)) return leaveStep(step, top, stop);
    if ((left->flags & kObjectMade) != 0) {
        // A text that nobody else has grows where it is.
        if (!stringAppendView(&left->string, piece)) return leaveStep(step, top, stop);
    } else {
        left = scriptJoinTexts(stringView(&left->string), piece);
        if (left == nullptr) return leaveStep(step, top, stop);
        left->flags = kObjectMade;
    }
    dropRight(step, top);
    return give(left, step, block, top, stop);
}

// Two texts and their order, or whether one fits the other.
StepOutcome runOrder(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    const ScriptObject* right = stringOf(step->right, block, top);
    const ScriptObject* left = leftString(step, block, top);
    if (left == nullptr || right == nullptr) return leaveStep(step, top, stop);
    bool answer;
    if (step->op == kOpMatch) {
        answer = stringMatch(&left->string, &right->string);
    } else if (step->op == kOpEq || step->op == kOpNe) {
        const bool equal = stringView(&left->string) == stringView(&right->string);
        answer = equal == (step->op == kOpEq);
    } else {
        const int order = stringCompare(&left->string, &right->string);
        answer = step->op == kOpLt   ? order < 0
                 : step->op == kOpGt ? order > 0
                 : step->op == kOpLe ? order <= 0
                                     : order >= 0;
    }
    dropRight(step, top);
    EvalValue* place = top - step->taken;
    if (step->left.from == kFromStack) drop(*place);
    if (step->end == kInChain) return runBranch(answer, step, block, place, stop);
    *place = valueOfNumber(answer);
    return runNext(step, block, place + 1, stop);
}

// The string that an assignment at the end of a program goes to; null when it is
// none or may be shared.
ScriptObject* targetOf(const ExprStep* step, ScriptBlock* block, const EvalValue* top) {
    ScriptObject* target = step->end != kMidway ? leftString(step, block, top) : nullptr;
    return target != nullptr && target->flags == 0 ? target : nullptr;
}

// `x .= y` and `x += y`.
StepOutcome runAppend(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    ScriptObject* target = targetOf(step, block, top);
    if (target == nullptr) return leaveStep(step, top, stop);
    char digits[kNumberTextMax];
    std::string_view piece;
    if (!pieceOf(step->right, block, top, digits, &piece) ||
        !stringAppendView(&target->string, piece))
        return leaveStep(step, top, stop);
    dropRight(step, top);
    return give(target, step, block, top, stop);
}

StepOutcome runAssign(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    ScriptObject* target = targetOf(step, block, top);
    ScriptObject* source = stringOf(step->right, block, top);
    if (target == nullptr || source == nullptr) return leaveStep(step, top, stop);
    if ((source->flags & kObjectMade) != 0)
        stringTake(&target->string, &source->string);
    else if (target != source && !stringSet(&target->string, &source->string))
        return leaveStep(step, top, stop);
    dropRight(step, top);
    return give(target, step, block, top, stop);
}

StepOutcome runPushText(const ExprStep* step, ScriptBlock* block, EvalValue* top, StepStop* stop) {
    return give(step->right.text, step, block, top, stop);
}

// By op code; null where texts have nothing of their own.
struct TextRunners {
    StepRunner of[kOpCount];
};

constexpr TextRunners makeRunners() {
    TextRunners runners{};
    runners.of[kOpConcat] = runners.of[kOpPlus] = runConcat;
    for (const uint8_t op : {kOpLt, kOpGt, kOpLe, kOpGe, kOpEq, kOpNe, kOpMatch})
        runners.of[op] = runOrder;
    runners.of[kOpAssign] = runAssign;
    runners.of[kOpConcatAssign] = runners.of[kOpAddAssign] = runAppend;
    return runners;
}

constexpr TextRunners kTextRunners = makeRunners();

}  // namespace

StepRunner scriptTextRunner(const ExprStep& step) {
    if (step.kind == kStepPush) return step.right.from == kFromText ? runPushText : nullptr;
    const bool hasTwo = step.kind == kStepBinary || step.kind == kStepAssign;
    return hasTwo ? kTextRunners.of[step.op] : nullptr;
}

StepOutcome scriptRunTextStep(const ExprStep* step, ScriptBlock* block, EvalValue* top,
                              StepStop* stop) {
    const StepRunner run = kTextRunners.of[step->op];
    return run == nullptr ? leaveStep(step, top, stop) : run(step, block, top, stop);
}

ScriptObject* scriptJoinTexts(std::string_view left, std::string_view right) {
    ScriptObject* made = scriptObjectCreateString({});
    if (made == nullptr) return nullptr;
    const size_t length = left.size() + right.size();
    const bool roomy =
        length < kStringInside ||
        (length <= kStringMaxLength && stringReserve(&made->string, static_cast<uint32_t>(length)));
    if (roomy && stringAppendView(&made->string, left) && stringAppendView(&made->string, right))
        return made;
    scriptObjectDestroy(&made);
    return nullptr;
}
