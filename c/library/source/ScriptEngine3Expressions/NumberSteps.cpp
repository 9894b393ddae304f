#include "ScriptEngine3Expressions/NumberSteps.h"

// These two call nothing that comes back, so that the compiler keeps all of them in registers.
const ExprStep* scriptRunNumberSteps(const ExprStep* step, ScriptBlock* block, EvalValue** top) {
    EvalValue* at = *top;
    for (;; ++step) {
        double number;
        if (quickStep(*step, block, at, &number)) {
            at -= step->taken;
            *at++ = valueOfNumber(number);
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

bool scriptRunNumberStep(const ScriptExpression* expression, ScriptBlock* block, double* result) {
    if (expression->single == nullptr) return false;
    // No operand of a single step comes from the stack: what stands here is not looked at.
    const EvalValue unused[2] = {};
    return quickStep(*expression->single, block, unused + 2, result);
}
