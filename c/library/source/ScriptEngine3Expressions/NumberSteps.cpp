#include "ScriptEngine3Expressions/NumberSteps.h"

// Calls nothing that comes back, so that the compiler keeps all of it in registers.
const ExprStep* scriptRunNumberSteps(const ExprStep* step, ScriptBlock* block, EvalValue** top) {
    EvalValue* at = *top;
    for (;; ++step) {
        double number;
        if (quickStep(*step, block, at, &number)) {
            at -= step->taken;
            *at++ = valueOfNumber(number);
        } else if (step->kind == kStepCompute) {
            // Step by step where it is more than that.
            if (!quickCompute(step, block, at, &number)) continue;
            *at++ = valueOfNumber(number);
            step += 3;
        } else if (step->kind == kStepPush && quickPush(step->right, block, at)) {
            ++at;
        } else {
            *top = at;
            return step;
        }
        if (step->isLast) {
            *top = at;
            return nullptr;
        }
    }
}

namespace {

bool runSingle(const ExprStep* step, ScriptBlock* block, double* result) {
    // No operand of a single step comes from the stack: what stands here is not looked at.
    const EvalValue unused[2] = {};
    return step->kind == kStepCompute ? quickCompute(step, block, unused + 2, result)
                                      : quickStep(*step, block, unused + 2, result);
}

}  // namespace

bool scriptRunNumbers(const ScriptExpression* expression, ScriptBlock* block, double* result) {
    if (expression->single != nullptr) return runSingle(expression->single, block, result);
    if (!expression->isPure) return false;
    EvalValue stack[kPureDepth];
    EvalValue* top = stack;
    if (scriptRunNumberSteps(expression->steps.begin(), block, &top) != nullptr) return false;
    if (stack[0].object != nullptr) return false;
    *result = stack[0].number;
    return true;
}
