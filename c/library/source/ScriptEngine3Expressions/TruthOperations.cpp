#include "ScriptEngine3Expressions/OperandHelp.h"
#include "ScriptEngine3Expressions/Operations.h"

namespace {

using OrderTest = bool (*)(int order);

ScriptObject* compare(ScriptEngine* engine, const char* name, ScriptObject* left,
                      ScriptObject* right, OrderTest holds) {
    const int order = scriptObjectCompare(engine, left, right);
    if (order == kCompareFailed) {
        logError(engine->logger, "%s: Failed to compare", name);
        return nullptr;
    }
    return operandNumber(engine, name, holds(order));
}

}  // namespace

ScriptObject* evaluateNot(ScriptEngine* engine, ScriptBlock* block, ScriptObject*,
                          ScriptObject* right) {
    const ScriptTruth truth = scriptObjectGetBool(engine, right, block);
    if (truth == kNoTruth) {
        logError(engine->logger, "evaluateNot: Failed to get boolean value");
        return nullptr;
    }
    return operandNumber(engine, "evaluateNot", truth == kFalse);
}

// What has no truth counts as false here.
ScriptObject* evaluateAnd(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                          ScriptObject* right) {
    return operandNumber(engine, "evaluateAnd",
                         scriptObjectGetBool(engine, left, block) == kTrue &&
                             scriptObjectGetBool(engine, right, block) == kTrue);
}

ScriptObject* evaluateOr(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                         ScriptObject* right) {
    return operandNumber(engine, "evaluateOr",
                         scriptObjectGetBool(engine, left, block) == kTrue ||
                             scriptObjectGetBool(engine, right, block) == kTrue);
}

ScriptObject* evaluateLt(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                         ScriptObject* right) {
    return compare(engine, "evaluateLt", left, right, [](int order) { return order < 0; });
}

ScriptObject* evaluateGt(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                         ScriptObject* right) {
    return compare(engine, "evaluateGt", left, right, [](int order) { return order > 0; });
}

ScriptObject* evaluateLe(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                         ScriptObject* right) {
    return compare(engine, "evaluateLe", left, right, [](int order) { return order <= 0; });
}

ScriptObject* evaluateGe(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                         ScriptObject* right) {
    return compare(engine, "evaluateGe", left, right, [](int order) { return order >= 0; });
}

ScriptObject* evaluateEq(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                         ScriptObject* right) {
    return compare(engine, "evaluateEq", left, right, [](int order) { return order == 0; });
}

ScriptObject* evaluateNe(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                         ScriptObject* right) {
    return compare(engine, "evaluateNe", left, right, [](int order) { return order != 0; });
}

// `?` and `:` select by the truth of the left operand and know nothing of each other.
ScriptObject* evaluateThen(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                           ScriptObject* right) {
    const ScriptTruth truth = scriptObjectGetBool(engine, left, block);
    return truth == kNoTruth ? nullptr : scriptObjectClone(truth == kTrue ? right : left);
}

ScriptObject* evaluateElse(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                           ScriptObject* right) {
    const ScriptTruth truth = scriptObjectGetBool(engine, left, block);
    return truth == kNoTruth ? nullptr : scriptObjectClone(truth == kTrue ? left : right);
}
