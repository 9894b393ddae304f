#include "ScriptEngine3Functions/ContainerArguments.h"

#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "strings/StringNumbers.h"

ScriptObject* ContainerArguments::otherContainer() {
    return target(0, type_);
}

ScriptObject* ContainerArguments::containerGone() {
    scriptEngineRequireType(engine_, nullptr, type_, 0);
    return fail();
}

void NewValue::take(ScriptObject* made) {
    object.reset(made);
    if (!object || object->type != kTypeNumber) return;
    setNumber(object.get());
    object.reset();
}

ScriptObject* NewValue::release() {
    if (!isNumber) return object.release();
    ScriptObject* made = scriptObjectCreateNumber(number);
    if (made != nullptr) made->nameId = nameId;
    return made;
}

void ContainerArguments::takeValue(NewValue* value, uint32_t index, ScriptObject* found,
                                   ScriptBlock* where, bool followRefs) {
    if (found == nullptr || found->type != kTypeExpr) {
        const bool isPlain = found != nullptr && found->type != kTypePointer;
        if (!isPlain) found = followRefs ? any(index) : unfollowed(index);
        return value->take(scriptObjectClone(found));
    }
    if (!keepLoansFrom(found)) return;
    EvalResult result;
    if (!scriptEvaluator(engine_, where, found->expression, kWantValue, &result)) {
        logError(engine_->logger, "Parameter %u is not (properly) defined", index + 1);
        fail();
        return;
    }
    if (result.object == nullptr) {
        value->number = result.number;
        value->isNumber = true;
        return;
    }
    // What nobody else has needs no copy.
    Owned<ScriptObject> made(result.object);
    const bool isOurs = made->type == kTypeNumber || made->type == kTypeString;
    if (isOurs) made->flags = 0;
    value->take(isOurs ? made.release() : scriptObjectClone(made.get()));
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
    if (element == nullptr) return false;
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
    ScriptObject* made = scriptObjectCreateString(text);
    if (made == nullptr) return false;
    if (container->type == kTypeVector ? vectorAppend(container->vector.vector, made)
                                       : containerAdd(container, made))
        return true;
    scriptObjectDestroy(&made);
    return false;
}

void mapLeaveEntry(ScriptObject* map, const MapNode* node) {
    MapIterator* cursor = map->map.cursor;
    if (mapIterIsValid(cursor) && cursor->iterator.node == node) rbTreeIterLeave(&cursor->iterator);
}

bool mapPutFor(ScriptObject* map, MapNode* old, Owned<ScriptObject>* key,
               Owned<ScriptObject>* value) {
    // The new key goes in, not only the value: `1` and `"1"` are equal and sort
    // differently among others.
    if (old != nullptr) mapLeaveEntry(map, old);
    const bool added = old == nullptr
                           ? mapInsert(map->map.map, key->get(), value->get())
                           : mapReplaceNode(map->map.map, old, key->get(), value->get(),
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
