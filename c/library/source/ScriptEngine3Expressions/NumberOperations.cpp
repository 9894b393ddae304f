#include <cmath>

#include "ScriptEngine3Expressions/OperandHelp.h"
#include "ScriptEngine3Expressions/Operations.h"
#include "ScriptEngine3Expressions/Power.h"
#include "logger/StandardOutput.h"
#include "platform/program.h"
#include "strings/StringNumbers.h"

namespace {

using NumberFunction = double (*)(double left, double right);

ScriptObject* ofTwoNumbers(ScriptEngine* engine, const char* name, ScriptObject* left,
                           ScriptObject* right, NumberFunction function) {
    if (!operandResolveBoth(engine, name, &left, &right)) return nullptr;
    if (left->type != kTypeNumber || right->type != kTypeNumber) {
        logError(engine->logger, "%s: Both operands must be numbers", name);
        return nullptr;
    }
    return operandNumber(engine, name, function(left->number, right->number));
}

ScriptObject* step(ScriptEngine* engine, const char* name, const char* demand, ScriptObject* right,
                   double by) {
    if (!operandResolve(engine, name, "Invalid pointer", &right)) return nullptr;
    if (right->type != kTypeNumber) {
        logError(engine->logger, "%s: %s", name, demand);
        return nullptr;
    }
    right->number += by;
    return scriptObjectClone(right);
}

}  // namespace

void evaluateDivisionFault() {
    outputFlush();
    osRaiseIntegerDivisionFault();
}

ScriptObject* evaluateIncr(ScriptEngine* engine, ScriptBlock*, ScriptObject*, ScriptObject* right) {
    return step(engine, "evaluateIncr", "Can only increment numbers", right, 1);
}

ScriptObject* evaluateDecr(ScriptEngine* engine, ScriptBlock*, ScriptObject*, ScriptObject* right) {
    return step(engine, "evaluateDecr", "Can only decrement numbers", right, -1);
}

ScriptObject* evaluateSqrt(ScriptEngine* engine, ScriptBlock*, ScriptObject*, ScriptObject* right) {
    if (!operandRequire(engine, "evaluateSqrt", kTypeNumber, "Operand must be number", &right))
        return nullptr;
    return operandNumber(engine, "evaluateSqrt", std::sqrt(right->number));
}

// A value that is no number makes the right operand the result.
ScriptObject* evaluateMax(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                          ScriptObject* right) {
    return ofTwoNumbers(engine, "evaluateMax", left, right,
                        [](double a, double b) { return a > b ? a : b; });
}

ScriptObject* evaluateMin(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                          ScriptObject* right) {
    return ofTwoNumbers(engine, "evaluateMin", left, right,
                        [](double a, double b) { return a < b ? a : b; });
}

ScriptObject* evaluateAvg(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                          ScriptObject* right) {
    return ofTwoNumbers(engine, "evaluateAvg", left, right,
                        [](double a, double b) { return (a + b) * 0.5; });
}

ScriptObject* evaluatePow(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                          ScriptObject* right) {
    return ofTwoNumbers(engine, "evaluatePow", left, right, evaluatePower);
}

ScriptObject* evaluateMult(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                           ScriptObject* right) {
    return ofTwoNumbers(engine, "evaluateMult", left, right,
                        [](double a, double b) { return a * b; });
}

ScriptObject* evaluateDiv(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                          ScriptObject* right) {
    return ofTwoNumbers(engine, "evaluateDiv", left, right,
                        [](double a, double b) { return b == 0 ? 0 : a / b; });
}

ScriptObject* evaluateMod(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                          ScriptObject* right) {
    return ofTwoNumbers(engine, "evaluateMod", left, right, evaluateRemainder);
}

ScriptObject* evaluateMinus(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                            ScriptObject* right) {
    return ofTwoNumbers(engine, "evaluateMinus", left, right,
                        [](double a, double b) { return a - b; });
}
