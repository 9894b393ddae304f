#include "ScriptEngine3Expressions/ExpressionSteps.h"

#include "ScriptEngine3Expressions/NumberSteps.h"
#include "ScriptEngine3Expressions/TextSteps.h"

namespace {

StepOutcome runUnusual(const ExprStep* step, ScriptBlock*, EvalValue* top, StepStop* stop) {
    return leaveStep(step, top, stop);
}

StepOutcome runEnd(const ExprStep*, ScriptBlock*, EvalValue*, StepStop*) {
    return kStepsEnded;
}

// The fastest function that there is for the step; null without one.
StepRunner quickRunnerOf(const ExprStep& step, StepEnd end) {
    const StepRunner onNumbers = scriptNumberRunner(step, end);
    return onNumbers != nullptr ? onNumbers : scriptTextRunner(step);
}

StepRunner runnerOf(const ExprStep& step, StepEnd end) {
    if (step.kind == kStepEnd) return runEnd;
    const StepRunner quick = quickRunnerOf(step, end);
    return quick != nullptr ? quick : runUnusual;
}

bool givesTruth(const ExprStep& step) {
    return step.kind != kStepAssign && (scriptGivesTruth(step) || step.op == kOpMatch);
}

bool changesVariable(const ExprStep& step) {
    return step.kind == kStepAssign ||
           (step.kind == kStepUnary && (step.op == kOpIncr || step.op == kOpDecr));
}

ExprOperand literalOperand(ExprOperand operand, ScriptObject* literal) {
    operand.place.kind = kPlaceLiteral;
    if (!literal->isShared()) return operand;
    if (literal->type == kTypeNumber) {
        operand.from = kFromNumber;
        operand.number = literal->number;
    } else if (literal->type == kTypeString) {
        operand.from = kFromText;
        operand.text = literal;
    }
    return operand;
}

ExprOperand operandOf(const ExprToken& token, ScriptBlock* block, bool isLoose) {
    ExprOperand operand{};
    operand.place.id = token.varId;
    operand.from = kFromPlace;
    if (isLoose) {
        operand.place.kind = kPlaceNowhere;
        return operand;
    }
    if (token.literalSlot != kNoVariable) {
        operand.place.slot = token.literalSlot;
        return literalOperand(operand, block->shape->literals[token.literalSlot]);
    }
    scriptBlockSearchPlace(block, &operand.place, nullptr);
    if (operand.place.kind == kPlaceLocal) operand.from = kFromSlot;
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

bool makeSteps(ScriptExpression* expression, ScriptBlock* block) {
    GrowArray<ExprStep>& steps = expression->steps;
    uint32_t depth = 0;
    for (const ExprToken& token : expression->tokens) {
        if (token.op == kOpValue) {
            ExprStep push = plainStep(kStepPush, kOpValue);
            push.right = operandOf(token, block, expression->isLoose);
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
        depth -= operands - 1;
    }
    if (depth != 1) return steps.push(plainStep(kStepInvalid, 0));
    if (expression->tokens.size() == 1) steps.back().kind = kStepClone;
    return true;
}

}  // namespace

bool scriptExpressionPrepare(ScriptExpression* expression, ScriptBlock* block) {
    if (!expression->steps.empty()) return true;
    expression->stackDepth = 1;
    if (!makeSteps(expression, block) || !expression->steps.push(plainStep(kStepEnd, 0))) {
        expression->steps.clear();
        expression->stackDepth = 0;
        return false;
    }
    GrowArray<ExprStep>& steps = expression->steps;
    steps.fit();
    for (ExprStep& step : steps) {
        step.end = &step + 2 == steps.end() ? kAtEnd : kMidway;
        step.run = runnerOf(step, step.end);
    }
    return true;
}

bool scriptStepEndsInChain(ExprStep* step, bool isCondition) {
    if (isCondition ? !givesTruth(*step) : !changesVariable(*step)) return false;
    const StepRunner quick = quickRunnerOf(*step, kInChain);
    if (quick == nullptr) return false;
    step->end = kInChain;
    step->run = quick;
    return true;
}

void scriptStepGoesOn(ExprStep* step) {
    // What it leaves is not the last result any more, but for a variable that was given
    // a value nobody keeps a copy.
    if (!changesVariable(*step)) step->end = kMidway;
    step->run = runnerOf(*step, kMidway);
}
