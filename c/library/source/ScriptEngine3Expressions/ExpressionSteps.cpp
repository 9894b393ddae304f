#include "ScriptEngine3Expressions/ExpressionSteps.h"

#include "ScriptEngine3Expressions/Operators.h"

namespace {

ExprOperand operandOf(const ExprToken& token, const ScriptBlock* block) {
    ExprOperand operand{};
    operand.place.id = token.varId;
    operand.from = kFromPlace;
    if (token.literalSlot == kNoVariable) return operand;
    operand.place.kind = kPlaceLiteral;
    operand.place.slot = token.literalSlot;
    const ScriptObject* literal = block->shape->literals[token.literalSlot];
    if (literal->type == kTypeNumber && literal->isShared()) {
        operand.from = kFromNumber;
        operand.number = literal->number;
    }
    return operand;
}

ExprStep plainStep(ExprStepKind kind, uint32_t op) {
    ExprStep step{};
    step.kind = kind;
    step.op = static_cast<uint8_t>(op);
    return step;
}

bool endsInPush(const GrowArray<ExprStep>& steps) {
    return !steps.empty() && steps.back().kind == kStepPush;
}

// The step of an operator. An operand that the step before has just pushed is
// taken from its variable, and the push falls away: nothing runs in between.
ExprStep operatorStep(GrowArray<ExprStep>& steps, uint32_t op) {
    const bool isUnary = scriptOperatorRow(op).arity < 2;
    ExprStep step = plainStep(isUnary           ? kStepUnary
                              : op >= kOpAssign ? kStepAssign
                                                : kStepBinary,
                              op);
    if (!endsInPush(steps)) return step;
    step.right = steps.pop().right;
    if (isUnary || !endsInPush(steps)) return step;
    step.left = steps.pop().right;
    return step;
}

constexpr size_t kComputeSteps = 3;

// A variable, an operation on two operands that are at hand, and the assignment
// of its result to the variable.
bool isComputation(const GrowArray<ExprStep>& steps) {
    if (steps.size() < kComputeSteps) return false;
    const ExprStep* step = steps.end() - kComputeSteps;
    return step[0].kind == kStepPush && step[1].kind == kStepBinary && step[1].taken == 0 &&
           step[2].kind == kStepAssign && step[2].taken == 2;
}

// Puts the head before the last three steps.
bool headComputation(GrowArray<ExprStep>& steps) {
    if (!steps.push(steps.back())) return false;
    ExprStep* head = steps.end() - kComputeSteps - 1;
    head[2] = head[1];
    head[1] = head[0];
    head[0] = plainStep(kStepCompute, 0);
    return true;
}

bool isPure(const ScriptExpression* expression) {
    if (expression->stackDepth > kPureDepth) return false;
    for (const ExprToken& token : expression->tokens)
        if (token.op == kOpIncr || token.op == kOpDecr ||
            (token.op >= kOpAssign && token.op != kOpValue))
            return false;
    return true;
}

bool makeSteps(ScriptExpression* expression, const ScriptBlock* block) {
    GrowArray<ExprStep>& steps = expression->steps;
    uint32_t depth = 0;
    for (const ExprToken& token : expression->tokens) {
        if (token.op == kOpValue) {
            ExprStep push = plainStep(kStepPush, kOpValue);
            push.right = operandOf(token, block);
            if (!steps.push(push)) return false;
            if (++depth > expression->stackDepth) expression->stackDepth = depth;
            continue;
        }
        const uint32_t operands = scriptOperatorRow(token.op).arity > 1 ? 2 : 1;
        if (depth < operands) return steps.push(plainStep(kStepInvalid, 0));
        ExprStep step = operatorStep(steps, token.op);
        step.taken = static_cast<uint8_t>((step.right.from == kFromStack) +
                                          (operands > 1 && step.left.from == kFromStack));
        if (!steps.push(step)) return false;
        if (isComputation(steps) && !headComputation(steps)) return false;
        depth -= operands - 1;
    }
    if (depth != 1) return steps.push(plainStep(kStepInvalid, 0));
    if (expression->tokens.size() == 1) steps.back().kind = kStepClone;
    return true;
}

}  // namespace

bool scriptExpressionPrepare(ScriptExpression* expression, const ScriptBlock* block) {
    if (!expression->steps.empty()) return true;
    expression->stackDepth = 1;
    if (!makeSteps(expression, block)) {
        expression->steps.clear();
        expression->stackDepth = 0;
        return false;
    }
    expression->steps.fit();
    expression->steps.back().isLast = true;
    expression->isPure = isPure(expression);
    const size_t count = expression->steps.size();
    if (count == 1 || (count == 1 + kComputeSteps && expression->steps[0].kind == kStepCompute))
        expression->single = &expression->steps[0];
    return true;
}
