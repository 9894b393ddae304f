#include "ScriptEngine3Functions/ValueCommands.h"

#include "ScriptEngine3Defs/Arguments.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"

namespace {

bool hasValue(const ScriptObject* object) {
    return object->type == kTypeNumber ? object->number != 0 : object->string.length != 0;
}

// `default variable value`: the value is not looked at when there is one.
int scriptEngineDefault(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* object = in.target(0);
    if (!in.ok()) return in.status();
    if (object->type != kTypeNumber && object->type != kTypeString) {
        logError(engine->logger, "Command 'default' only applies to strings and numbers");
        return kError;
    }
    if (hasValue(object)) return kDone;
    ScriptObject* value = in.any(1);
    if (!in.ok()) return in.status();
    if (value->type != object->type) {
        logError(engine->logger, "scriptEngineDefault: Default value is of different type");
        return kError;
    }
    return scriptObjectAssign(engine, object, value) ? kDone : kError;
}

// The statement form of an expression: nobody looks at the result. One of the
// running block itself does not come here.
int scriptEngineEval(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    in.any(0);
    return in.status();
}

// `size value target`: the target is a number before the size is taken.
int scriptEngineSize(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const ScriptObject* object = in.any(0);
    ScriptObject* target = in.retyped(1, kTypeNumber);
    if (!in.ok()) return in.status();
    const uint32_t size = scriptObjectGetSize(object);
    if (size == kNoSize) return kError;
    target->number = size;
    return kDone;
}

// The object that a pointer is to be aimed at, seen from the block or the
// nearest parent that has it; each failed look is reported.
ScriptObject* pointerTarget(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                            ScriptBlock** where) {
    for (*where = block; *where != nullptr; *where = (*where)->parent) {
        ScriptObject* object =
            *where == block
                ? scriptEngineGetParam(engine, block, args, 1, kTypeUndef, true)
                : scriptBlockFindVar(*where, args->items[1].id, true, true, engine, true);
        if (object != nullptr) return scriptBlockOwnLiteral(*where, object);
        if (*where != block) logError(engine->logger, "Parameter %u is not (properly) defined", 2u);
    }
    return nullptr;
}

int scriptEngineSetPtr(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    ScriptObject* pointer = scriptBlockSearchPlace(block, &args->items[0], nullptr);
    if (pointer == nullptr) pointer = scriptBlockDeclareVar(block, args->items[0].id, kTypePointer);
    if (pointer == nullptr) {
        logError(engine->logger, "scriptEnginePtr: Failed to create non-existing pointer");
        return kInvalidCall;
    }
    ScriptBlock* where;
    ScriptObject* target = pointerTarget(engine, block, args, &where);
    if (target == nullptr) {
        logError(engine->logger, "scriptEnginePtr: Second parameter is invalid");
        return kError;
    }
    if (pointer->type != kTypePointer) {
        logError(engine->logger, "scriptEnginePtr: First argument must be a pointer");
        return kError;
    }
    scriptPointerAim(pointer, target, where);
    return kDone;
}

constexpr CommandRow kValueCommands[] = {
    {"default", scriptEngineDefault, 2, 2, "1", kAnywhere},
    {.name = "eval",
     .handler = scriptEngineEval,
     .minArgs = 1,
     .maxArgs = 1,
     .scope = kAnywhere,
     .flow = kEvalCommand},
    {"size", scriptEngineSize, 2, 2, "1,2"},
    {.name = "setptr",
     .handler = scriptEngineSetPtr,
     .minArgs = 2,
     .maxArgs = 2,
     .targetSpec = "2,2",
     .scope = kAnywhere,
     .declares = kDeclaresFirst},
};

}  // namespace

std::span<const CommandRow> valueCommands() {
    return kValueCommands;
}
