#include "ScriptEngine3Defs/ScriptExpression.h"

ScriptExpression* scriptExpressionCreate() {
    return memNew<ScriptExpression>();
}

ScriptExpression* scriptExpressionClone(const ScriptExpression* expression) {
    if (expression == nullptr) return nullptr;
    ScriptExpression* copy = scriptExpressionCreate();
    if (copy == nullptr) return nullptr;
    copy->writes = expression->writes;
    for (const ExprToken& token : expression->tokens) {
        if (copy->tokens.push(token)) continue;
        scriptExpressionDestroy(&copy);
        return nullptr;
    }
    return copy;
}

void scriptExpressionDestroy(ScriptExpression** expression) {
    memDelete(expression);
}
