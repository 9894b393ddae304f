#include "ScriptEngine3Functions/ContainerArguments.h"

#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "strings/StringNumbers.h"

ScriptObject* ContainerArguments::containerGone() {
    scriptEngineRequireType(engine_, nullptr, type_, 0);
    return fail();
}

ScriptObject* ContainerArguments::copyOf(uint32_t index, bool followRefs) {
    if (!ok()) return nullptr;
    ScriptBlock* where = nullptr;
    ScriptObject* object = scriptBlockSearchPlace(block_, arg(index), &where);
    if (object != nullptr && object->type != kTypeExpr && object->type != kTypePointer)
        return scriptObjectClone(object);
    if (object == nullptr || object->type != kTypeExpr)
        return scriptObjectClone(followRefs ? any(index) : unfollowed(index));
    if (!keepLoansFrom(object)) return nullptr;
    Owned<ScriptObject> made(scriptEvaluateToObject(engine_, where, object->expression));
    if (!made) {
        logError(engine_->logger, "Parameter %u is not (properly) defined", index + 1);
        return fail();
    }
    // What nobody else has needs no copy.
    if (made->type != kTypeNumber && made->type != kTypeString)
        return scriptObjectClone(made.get());
    made->flags = 0;
    return made.release();
}

ScriptObject* ContainerArguments::raw(uint32_t index) {
    if (!ok()) return nullptr;
    ScriptBlock* where = nullptr;
    Owned<ScriptObject> copy(scriptObjectClone(scriptBlockSearchPlace(block_, arg(index), &where)));
    if (copy && copy->type == kTypeExpr && !scriptExpressionLoosen(copy->expression, where->shape))
        return nullptr;
    return copy.release();
}

uint32_t ContainerArguments::index(uint32_t index) {
    return numberToUInt32(number(index));
}

const ScriptObject* ContainerArguments::optional(uint32_t index) {
    if (!ok() || index >= count()) return nullptr;
    ScriptBlock* where = nullptr;
    ScriptObject* object = scriptBlockSearchPlace(block_, arg(index), &where);
    if (object != nullptr) object = scriptPointerFollow(object);
    if (object == nullptr || object->type != kTypeExpr) return object;
    object = scriptEvaluateToObject(engine_, where, object->expression);
    return object != nullptr && scriptTemporariesAdd(object) ? object : nullptr;
}

bool ContainerArguments::aimInWalk(ScriptObject* target, ScriptObject* element) {
    scriptPointerAim(target, nullptr, nullptr);
    if (!scriptObjectAssign(engine_, target, element)) return false;
    scriptPointerAim(target, scriptPointerTarget(target), block_);
    return true;
}

int commandError(ScriptEngine* engine, const char* message, uint32_t number) {
    logError(engine->logger, message, number);
    return kError;
}

int commandOutOfMemory(ScriptEngine* engine, const char* name, std::source_location where) {
    logError(engine->logger, "%s: #::100", name);
    logLocation(engine->logger, kLogError, where);
    return kOutOfMemory;
}

int commandFailed(ScriptEngine* engine, const char* name, const char* what,
                  std::source_location where) {
    logError(engine->logger, "%s: %s", name, what);
    logLocation(engine->logger, kLogError, where);
    return kError;
}

bool containerAdd(ScriptObject* container, ScriptObject* value) {
    switch (container->type) {
        case kTypeVector:
            return vectorAppend(container->vector.vector, value);
        case kTypeList:
            return listPushBack(container->list.list, value);
        default:
            return setInsert(container->set.set, value);
    }
}

bool containerAddText(ScriptObject* container, std::string_view text) {
    Owned<ScriptObject> made(scriptObjectCreateString(text));
    if (!made || !containerAdd(container, made.get())) return false;
    made.release();
    return true;
}

void mapLeaveEntry(ScriptObject* map, const MapNode* node) {
    MapIterator* cursor = map->map.cursor;
    if (mapIterIsValid(cursor) && cursor->iterator.node == node) rbTreeIterLeave(&cursor->iterator);
}

bool mapPut(ScriptObject* map, Owned<ScriptObject>* key, Owned<ScriptObject>* value) {
    // The new key goes in, not only the value: `1` and `"1"` are equal and sort
    // differently among others.
    MapNode* node = mapFindNode(map->map.map, key->get());
    if (node != nullptr) mapLeaveEntry(map, node);
    const bool added = node == nullptr
                           ? mapInsert(map->map.map, key->get(), value->get())
                           : mapReplaceNode(map->map.map, node, key->get(), value->get(),
                                            scriptObjectDestroyElement, scriptObjectDestroyElement);
    if (!added) return false;
    key->release();
    value->release();
    return true;
}

bool mapPutTexts(ScriptObject* map, std::string_view key, std::string_view value) {
    Owned<ScriptObject> newKey(scriptObjectCreateString(key));
    Owned<ScriptObject> newValue(scriptObjectCreateString(value));
    return newKey && newValue && mapPut(map, &newKey, &newValue);
}
