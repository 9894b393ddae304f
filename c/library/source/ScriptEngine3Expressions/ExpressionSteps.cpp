#include "ScriptEngine3Expressions/ExpressionSteps.h"

namespace {

VarPlace placeOf(const ExprToken& token) {
    VarPlace place;
    place.id = token.varId;
    if (token.literalSlot != kNoVariable) {
        place.kind = kPlaceLiteral;
        place.slot = token.literalSlot;
    }
    return place;
}

ExprStep plainStep(uint8_t op) {
    ExprStep step{};
    step.op = op;
    step.leftFrom = kFromStack;
    step.rightFrom = kFromStack;
    return step;
}

bool endsInPush(const GrowArray<ExprStep>& steps) {
    return !steps.empty() && steps.back().op == kOpValue;
}

// The step of an operator. An operand that the step before has just pushed is
// taken from its variable, and the push falls away: nothing runs in between.
ExprStep operatorStep(GrowArray<ExprStep>& steps, uint32_t op) {
    ExprStep step = plainStep(static_cast<uint8_t>(op));
    if (!endsInPush(steps)) return step;
    step.rightFrom = kFromPlace;
    step.right = steps.pop().right;
    if (scriptOperatorRow(op).arity < 2 || !endsInPush(steps)) return step;
    step.leftFrom = kFromPlace;
    step.left = steps.pop().right;
    return step;
}

bool makeSteps(ScriptExpression* expression) {
    GrowArray<ExprStep>& steps = expression->steps;
    uint32_t depth = 0;
    for (const ExprToken& token : expression->tokens) {
        if (token.op == kOpValue) {
            ExprStep push = plainStep(kOpValue);
            push.right = placeOf(token);
            if (!steps.push(push)) return false;
            if (++depth > expression->stackDepth) expression->stackDepth = depth;
            continue;
        }
        const uint32_t operands = scriptOperatorRow(token.op).arity > 1 ? 2 : 1;
        if (depth < operands) return steps.push(plainStep(kStepInvalid));
        if (!steps.push(operatorStep(steps, token.op))) return false;
        depth -= operands - 1;
    }
    if (depth != 1) return steps.push(plainStep(kStepInvalid));
    if (expression->tokens.size() == 1) steps.back().op = kStepClone;
    return true;
}

}  // namespace

bool scriptExpressionPrepare(ScriptExpression* expression) {
    if (!expression->steps.empty()) return true;
    if (!makeSteps(expression)) {
        expression->steps.clear();
        return false;
    }
    expression->steps.back().isLast = true;
    return true;
}
