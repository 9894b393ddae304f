#include "ScriptEngine3Expressions/OperandHelp.h"
#include "ScriptEngine3Expressions/Operations.h"
#include "paths/Paths.h"

ScriptObject* evaluateFExists(ScriptEngine* engine, ScriptBlock*, ScriptObject*,
                              ScriptObject* right) {
    if (!operandRequire(engine, "evaluateFExists", kTypeString, "Operand must be string", &right))
        return nullptr;
    return operandNumber(engine, "evaluateFExists", pathExists(&right->string));
}

ScriptObject* evaluateFSize(ScriptEngine* engine, ScriptBlock*, ScriptObject*,
                            ScriptObject* right) {
    if (!operandRequire(engine, "evaluateFSize", kTypeString, "Operand must be string", &right))
        return nullptr;
    return operandNumber(engine, "evaluateFSize",
                         static_cast<double>(pathFileSize(&right->string)));
}

ScriptObject* evaluateBase(ScriptEngine* engine, ScriptBlock*, ScriptObject*, ScriptObject* right) {
    if (!operandRequire(engine, "evaluateBase", kTypeString, "Operand must be string", &right))
        return nullptr;
    Owned<String> base(pathBaseName(&right->string));
    if (!base) return operandMade(engine, "evaluateBase", nullptr);
    return operandString(engine, "evaluateBase", stringView(base.get()));
}
