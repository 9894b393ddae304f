#include "ScriptEngine3Expressions/OperandHelp.h"

bool operandResolve(ScriptEngine* engine, const char* name, const char* message,
                    ScriptObject** operand) {
    if ((*operand)->type != kTypePointer) return true;
    *operand = scriptObjectResolveRef(*operand);
    if (*operand != nullptr) return true;
    logError(engine->logger, "%s: %s", name, message);
    return false;
}

bool operandResolveBoth(ScriptEngine* engine, const char* name, ScriptObject** left,
                        ScriptObject** right) {
    return operandResolve(engine, name, "Invalid left operand pointer", left) &&
           operandResolve(engine, name, "Invalid right operand pointer", right);
}

bool operandRequire(ScriptEngine* engine, const char* name, ScriptType type, const char* demand,
                    ScriptObject** right) {
    if (!operandResolve(engine, name, "Invalid right operand pointer", right)) return false;
    if ((*right)->type == type) return true;
    logError(engine->logger, "%s: %s", name, demand);
    return false;
}

ScriptObject* operandMade(ScriptEngine* engine, const char* name, ScriptObject* object) {
    if (object == nullptr) {
        logError(engine->logger, "%s: #::100", name);
        logLocation(engine->logger, kLogError);
    }
    return object;
}

ScriptObject* operandNumber(ScriptEngine* engine, const char* name, double value) {
    return operandMade(engine, name, scriptObjectCreateNumber(value));
}

ScriptObject* operandString(ScriptEngine* engine, const char* name, std::string_view text) {
    return operandMade(engine, name, scriptObjectCreateString(text));
}
