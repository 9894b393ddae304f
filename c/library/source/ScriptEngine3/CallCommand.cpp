#include "ScriptEngine3/CallCommand.h"

#include "ScriptEngine3/BlockExecution.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Expressions/NumberSteps.h"

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

// Gives the parameter the argument's value. `kDone`, or the status of the call.
[[gnu::noinline]] int passArgument(ScriptEngine* engine, ScriptBlock* block, ScriptArg* arg,
                                   ScriptBlock* instance, uint32_t position) {
    ScriptBlock* where = nullptr;
    ScriptObject* value = scriptBlockSearchPlace(block, arg, &where);
    if (value == nullptr) return invalidArgument(engine, position);
    Owned<ScriptObject> made;
    if (value->type == kTypeExpr) {
        made.reset(scriptEvaluateToObject(engine, where, value->expression));
        if (!made) return invalidArgument(engine, position);
        value = made.get();
        // A parameter made from a pointer will refer to that very object.
        if (value->type == kTypePointer && !scriptTemporariesAdd(made.release()))
            return invalidArgument(engine, position);
    }
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

// The usual case of a number, at hand or from one operation: it comes into
// being as the parameter. False, with nothing done, when it is any other.
inline bool passNumber(ScriptBlock* block, ScriptArg* arg, ScriptBlock* instance,
                       uint32_t position) {
    const BlockShape* shape = instance->shape;
    if (position > shape->paramSlots.size()) return false;
    const BlockShape::Slot slot = shape->paramSlots[position - 1];
    if (slot.isLiteral || instance->locals[slot.index] != nullptr) return false;
    const ScriptObject* value = scriptBlockSearchPlace(block, arg, nullptr);
    if (value == nullptr) return false;
    // Made first: an operation must not run twice for want of memory.
    ScriptObject* object = scriptObjectCreateNumber(0);
    if (object == nullptr) return false;
    if (value->type == kTypeNumber) {
        object->number = value->number;
    } else if (value->type != kTypeExpr ||
               !scriptRunNumbers(value->expression, block, &object->number)) {
        scriptObjectDestroy(&object);
        return false;
    }
    object->nameId = shape->paramIds[position - 1];
    instance->locals[slot.index] = object;
    instance->isDirty = 1;
    return true;
}

int passArguments(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                  ScriptBlock* instance) {
    for (uint32_t position = 1; position < args->count; ++position) {
        ScriptArg* arg = &args->items[position];
        if (passNumber(block, arg, instance, position)) continue;
        const int status = passArgument(engine, block, arg, instance, position);
        if (status != kDone) return status;
    }
    return kDone;
}

}  // namespace

int scriptEngineCall(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int blockNumber) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    if (!bodyExists(engine, "scriptEngineCall", blockNumber)) return kInvalidCall;
    ScriptBlock* instance = scriptBlockInstantiate(engine->blocks[static_cast<size_t>(blockNumber)],
                                                   engine->globalBlock);
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
