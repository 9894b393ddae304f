#include "ScriptEngine3/CallCommand.h"

#include "ScriptEngine3/BlockExecution.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Expressions/Evaluator.h"

namespace {

int invalidArgument(ScriptEngine* engine, uint32_t position) {
    logError(engine->logger, "scriptEngineCall: Invalid argument no. %u", position);
    logLocation(engine->logger, kLogError);
    return kError;
}

// The parameter's own object, made when the instance has none yet.
ScriptObject* parameter(ScriptBlock* instance, const BlockShape::Slot& slot, uint32_t id) {
    if (slot.isLiteral) return scriptBlockOwnLiteral(instance, scriptBlockOwnVar(instance, id));
    if (instance->locals[slot.index] == nullptr) {
        ScriptObject* object = scriptObjectCreate(kTypeUndef);
        if (object == nullptr) return nullptr;
        object->nameId = id;
        instance->locals[slot.index] = object;
        scriptBlockHolds(instance, kHoldsLocals);
    }
    return instance->locals[slot.index];
}

// Gives a parameter that has no object yet a number. False when it has one, and when
// memory runs out.
inline bool makeNumber(ScriptBlock* instance, const BlockShape::Slot& slot, uint32_t id,
                       double number) {
    if (slot.isLiteral || instance->locals[slot.index] != nullptr) return false;
    ScriptObject* object = scriptObjectCreateNumber(number);
    if (object == nullptr) return false;
    object->nameId = id;
    instance->locals[slot.index] = object;
    scriptBlockHolds(instance, kHoldsLocals);
    return true;
}

// Gives the parameter a value, by the rules of assignment.
int passValue(ScriptEngine* engine, ScriptObject* value, ScriptBlock* instance, uint32_t position) {
    const BlockShape* shape = instance->shape;
    if (position > shape->paramSlots.size()) {
        logError(engine->logger, "scriptEngineCall: #::11");
        logLocation(engine->logger, kLogError);
        return kError;
    }
    ScriptObject* target =
        parameter(instance, shape->paramSlots[position - 1], shape->paramIds[position - 1]);
    if (target == nullptr) {
        logError(engine->logger, "scriptEngineCall: #::11");
        return kInvalidCall;
    }
    if (scriptObjectAssign(engine, target, value)) return kDone;
    logError(engine->logger, "scriptEngineCall: Failed to set parameter");
    logLocation(engine->logger, kLogError);
    return kError;
}

// Whether a parameter that has no object yet got the number.
inline bool passNewNumber(double number, ScriptBlock* instance, uint32_t position) {
    const BlockShape* shape = instance->shape;
    return position <= shape->paramSlots.size() &&
           makeNumber(instance, shape->paramSlots[position - 1], shape->paramIds[position - 1],
                      number);
}

// What an expression has given.
int passNumber(ScriptEngine* engine, double number, ScriptBlock* instance, uint32_t position) {
    if (passNewNumber(number, instance, position)) return kDone;
    Owned<ScriptObject> made(scriptObjectCreateNumber(number));
    return passValue(engine, made.get(), instance, position);
}

// Gives the parameter a value that is more than a number for a new variable.
[[gnu::noinline]] int passOther(ScriptEngine* engine, ScriptBlock* block, ScriptArg* arg,
                                ScriptBlock* instance, uint32_t position) {
    ScriptBlock* where = nullptr;
    ScriptObject* value = scriptBlockSearchPlace(block, arg, &where);
    if (value == nullptr) return invalidArgument(engine, position);
    Owned<ScriptObject> made;
    if (value->type == kTypeExpr) {
        EvalResult result;
        if (!scriptEngineRunExpression(engine, where, value->expression, kWantValue, &result))
            return invalidArgument(engine, position);
        if (result.object == nullptr) return passNumber(engine, result.number, instance, position);
        made.reset(result.object);
        value = result.object;
        // A parameter made from a pointer will refer to that very object.
        if (value->type == kTypePointer && !scriptTemporariesAdd(made.release()))
            return invalidArgument(engine, position);
    }
    return passValue(engine, value, instance, position);
}

// Gives the parameters the arguments' values. `kDone`, or the status of the call.
inline int passArguments(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                         ScriptBlock* instance) {
    for (uint32_t position = 1; position < args->count; ++position) {
        ScriptArg* arg = &args->items[position];
        const ScriptObject* value = scriptBlockSearchPlace(block, arg, nullptr);
        if (value != nullptr && value->type == kTypeNumber &&
            passNewNumber(value->number, instance, position))
            continue;
        const int status = passOther(engine, block, arg, instance, position);
        if (status != kDone) return status;
    }
    return kDone;
}

}  // namespace

int scriptEngineCall(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    ScriptBlock* body = blockTemplate(engine, blockNumber);
    if (body != nullptr) return scriptEngineCallBody(engine, block, args, body, blockNumber);
    logError(engine->logger, "scriptEngineCall: #::11");
    return kInvalidCall;
}

int scriptEngineCallBody(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                         ScriptBlock* body, int blockNumber) {
    ScriptBlock* instance = scriptBlockInstantiate(body, engine->globalBlock);
    if (instance == nullptr) {
        logError(engine->logger, "scriptEngineCall: Failed to initialize script block %u",
                 static_cast<uint32_t>(blockNumber));
        return kInvalidCall;
    }
    int status = passArguments(engine, block, args, instance);
    if (status == kDone && !engine->stack.push(instance)) {
        logError(engine->logger, "scriptEngineCall: #::100");
        logLocation(engine->logger, kLogError);
        status = kError;
    }
    if (status != kDone) {
        scriptBlockRetire(instance);
        return status;
    }
    const bool good = scriptEngineRunBlock(engine, instance);
    const bool positive = instance->lastResult != 0;
    stackPop(engine);
    if (!good) {
        logError(engine->logger, "scriptEngineCall: Failed to execute script block %u",
                 static_cast<uint32_t>(blockNumber));
        return kError;
    }
    if ((engine->pending & kReturnPending) == 0) return positive ? kDone : kNegative;
    engine->pending &= static_cast<uint8_t>(~kReturnPending);
    return engine->returnValue ? kDone : kNegative;
}
