#pragma once

#include "ScriptEngine3Expressions/EvalValue.h"
#include "ScriptEngine3Expressions/Operations.h"

// What numbers need, which is what makes a loop fast.

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

// The function for a step whose operands may be numbers; null when there is none. At
// the end of a chain's program only truths are decided and only assignments left.
StepRunner scriptNumberRunner(const ExprStep& step, StepEnd end);

// Whether a step on numbers gives a truth.
bool scriptGivesTruth(const ExprStep& step);
