#include "ScriptEngine3Expressions/OperandHelp.h"
#include "ScriptEngine3Expressions/Operations.h"
#include "strings/StringNumbers.h"

namespace {

// A number itself, a string's text as a number, the size of anything else.
double numberOf(const ScriptObject* object) {
    if (object->type == kTypeNumber) return object->number;
    if (object->type == kTypeString) return stringToDouble(&object->string);
    return scriptObjectGetSize(object);
}

}  // namespace

ScriptObject* evaluateBool(ScriptEngine* engine, ScriptBlock* block, ScriptObject*,
                           ScriptObject* right) {
    const ScriptTruth truth = scriptObjectGetBool(engine, right, block);
    if (truth == kNoTruth) {
        logError(engine->logger, "evaluateBool: Failed to get boolean value");
        return nullptr;
    }
    return operandNumber(engine, "evaluateBool", truth);
}

ScriptObject* evaluateNum(ScriptEngine* engine, ScriptBlock*, ScriptObject*, ScriptObject* right) {
    if (!operandResolve(engine, "evaluateNum", "Invalid right operand pointer", &right))
        return nullptr;
    return operandNumber(engine, "evaluateNum", numberOf(right));
}

ScriptObject* evaluateInt(ScriptEngine* engine, ScriptBlock*, ScriptObject*, ScriptObject* right) {
    return operandNumber(engine, "evaluateInt", numberToInt32(numberOf(right)));
}

ScriptObject* evaluateSizeof(ScriptEngine* engine, ScriptBlock*, ScriptObject*,
                             ScriptObject* right) {
    return operandNumber(engine, "evaluateSizeof", scriptObjectGetSize(right));
}
