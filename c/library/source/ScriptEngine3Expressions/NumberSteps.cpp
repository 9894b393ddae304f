#include "ScriptEngine3Expressions/NumberSteps.h"

// Calls nothing that comes back, so that the compiler keeps all of it in registers.
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
