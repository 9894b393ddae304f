#include "ScriptEngine3Defs/ScriptExpression.h"

#include "ScriptEngine3Defs/ScriptBlock.h"

ScriptExpression* scriptExpressionCreate() {
    return memNew<ScriptExpression>();
}

ScriptExpression* scriptExpressionClone(const ScriptExpression* expression) {
    if (expression == nullptr) return nullptr;
    ScriptExpression* copy = scriptExpressionCreate();
    if (copy == nullptr) return nullptr;
    copy->writes = expression->writes;
    copy->isLoose = expression->isLoose;
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

bool scriptExpressionLoosen(ScriptExpression* expression, BlockShape* shape) {
    for (ExprToken& token : expression->tokens) {
        if (token.literalSlot == kNoVariable) continue;
        if (shape->slots.find(token.varId) == nullptr &&
            !shape->slots.add(token.varId, {token.literalSlot, true}))
            return false;
        token.literalSlot = kNoVariable;
    }
    expression->isLoose = true;
    return true;
}
