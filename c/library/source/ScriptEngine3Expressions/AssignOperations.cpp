#include "ScriptEngine3Expressions/OperandHelp.h"
#include "ScriptEngine3Expressions/Operations.h"

namespace {

ScriptObject* failToAssign(ScriptEngine* engine, const char* name) {
    logError(engine->logger, "%s: Failed to assign", name);
    return nullptr;
}

// `target` is what takes the computed value; it is not always the operand that
// the value was computed from.
ScriptObject* assignComputed(ScriptEngine* engine, const char* name, ScriptObject* target,
                             ScriptObject* computed) {
    Owned<ScriptObject> value(computed);
    if (!value || target == nullptr || !scriptObjectAssign(engine, target, value.get()))
        return failToAssign(engine, name);
    return value.release();
}

}  // namespace

ScriptObject* evaluateAssign(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                             ScriptObject* right) {
    if (!scriptObjectAssign(engine, left, right)) return failToAssign(engine, "evaluateAssign");
    return scriptObjectClone(left);
}

ScriptObject* evaluateConcatassign(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                                   ScriptObject* right) {
    return assignComputed(engine, "evaluateConcatassign", left,
                          evaluateConcat(engine, block, left, right));
}

// Alone of all it assigns to the object that a pointer on the left refers to.
ScriptObject* evaluateAddassign(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                                ScriptObject* right) {
    ScriptObject* computed = evaluatePlus(engine, block, left, right);
    ScriptObject* target = left->type == kTypePointer ? scriptObjectResolveRef(left) : left;
    if (target != nullptr) target = scriptBlockOwnLiteral(block, target);
    return assignComputed(engine, "evaluateAddassign", target, computed);
}

ScriptObject* evaluateSubassign(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                                ScriptObject* right) {
    return assignComputed(engine, "evaluateSubassign", left,
                          evaluateMinus(engine, block, left, right));
}

ScriptObject* evaluateMultassign(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                                 ScriptObject* right) {
    return assignComputed(engine, "evaluateMultassign", left,
                          evaluateMult(engine, block, left, right));
}

ScriptObject* evaluateDivassign(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                                ScriptObject* right) {
    return assignComputed(engine, "evaluateDivassign", left,
                          evaluateDiv(engine, block, left, right));
}

ScriptObject* evaluateModassign(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                                ScriptObject* right) {
    return assignComputed(engine, "evaluateModassign", left,
                          evaluateMod(engine, block, left, right));
}

ScriptObject* evaluatePowassign(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                                ScriptObject* right) {
    return assignComputed(engine, "evaluatePowassign", left,
                          evaluatePow(engine, block, left, right));
}
