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
        instance->isDirty = 1;
    }
    return instance->locals[slot.index];
}

// Gives a parameter that has no object yet a number. False when memory runs out.
bool makeNumber(ScriptBlock* instance, uint32_t slot, uint32_t id, double number) {
    ScriptObject* object = scriptObjectCreateNumber(number);
    if (object == nullptr) return false;
    object->nameId = id;
    instance->locals[slot] = object;
    instance->isDirty = 1;
    return true;
}

// Gives the parameter the argument's value. `kDone`, or the status of the call.
int passArgument(ScriptEngine* engine, ScriptBlock* block, ScriptArg* arg, ScriptBlock* instance,
                 uint32_t position) {
    ScriptBlock* where = nullptr;
    ScriptObject* value = scriptBlockSearchPlace(block, arg, &where);
    if (value == nullptr) return invalidArgument(engine, position);
    Owned<ScriptObject> made;
    EvalResult result;
    bool isNumber = value->type == kTypeNumber;
    if (isNumber) {
        result.number = value->number;
    } else if (value->type == kTypeExpr) {
        if (!scriptEngineRunExpression(engine, where, value->expression, kWantValue, &result))
            return invalidArgument(engine, position);
        isNumber = result.object == nullptr;
        made.reset(result.object);
        value = made.get();
        // A parameter made from a pointer will refer to that very object.
        if (!isNumber && value->type == kTypePointer && !scriptTemporariesAdd(made.release()))
            return invalidArgument(engine, position);
    }
    const BlockShape* shape = instance->shape;
    if (position > shape->paramSlots.size()) {
        logError(engine->logger, "scriptEngineCall: #::11");
        logLocation(engine->logger, kLogError);
        return kError;
    }
    const BlockShape::Slot slot = shape->paramSlots[position - 1];
    const uint32_t id = shape->paramIds[position - 1];
    if (isNumber && !slot.isLiteral && instance->locals[slot.index] == nullptr &&
        makeNumber(instance, slot.index, id, result.number))
        return kDone;
    if (value == nullptr) {
        made.reset(scriptObjectCreateNumber(result.number));
        value = made.get();
    }
    ScriptObject* target = parameter(instance, slot, id);
    if (target == nullptr) {
        logError(engine->logger, "scriptEngineCall: #::11");
        return kInvalidCall;
    }
    if (scriptObjectAssign(engine, target, value)) return kDone;
    logError(engine->logger, "scriptEngineCall: Failed to set parameter");
    logLocation(engine->logger, kLogError);
    return kError;
}

int passArguments(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                  ScriptBlock* instance) {
    for (uint32_t position = 1; position < args->count; ++position) {
        const int status = passArgument(engine, block, &args->items[position], instance, position);
        if (status != kDone) return status;
    }
    return kDone;
}

}  // namespace

int scriptEngineCall(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    ScriptBlock* body = blockTemplate(engine, blockNumber);
    if (body == nullptr) {
        logError(engine->logger, "scriptEngineCall: #::11");
        return kInvalidCall;
    }
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
    const StackRun run = scriptEngineRunStack(engine, true);
    if (run == StackRun::Failed) {
        logError(engine->logger, "scriptEngineCall: Failed to execute script block %u",
                 static_cast<uint32_t>(blockNumber));
        return kError;
    }
    if ((engine->pending & kReturnPending) == 0)
        return run == StackRun::Negative ? kNegative : kDone;
    engine->pending &= static_cast<uint8_t>(~kReturnPending);
    return engine->returnValue ? kDone : kNegative;
}
