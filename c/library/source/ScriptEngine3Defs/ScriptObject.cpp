#include "ScriptEngine3Defs/ScriptObject.h"

#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptContainers.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "config/ConfPatcher.h"
#include "containers/Pool.h"
#include "files/BasicFile.h"
#include "text/TextParser.h"

// Ready before anything runs: the pool's first take asks for its first chunk.
Pool scriptObjectPool = {nullptr,    nullptr,   nullptr, nullptr, sizeof(ScriptObject),
                         kPoolChunk, kPoolChunk};

namespace {

// Gives an undef object the default payload of the type.
bool makePayload(ScriptObject* object, ScriptType type) {
    bool made = true;
    switch (type) {
        case kTypeUndef:
            break;
        case kTypeExpr:
            object->expression = scriptExpressionCreate();
            made = object->expression != nullptr;
            break;
        case kTypePointer:
            object->pointer = {};
            break;
        case kTypeNumber:
            object->number = 0;
            break;
        case kTypeString:
            stringInitEmpty(&object->string);
            break;
        case kTypeFile:
            object->file = bfileInit();
            made = object->file != nullptr;
            break;
        case kTypeParser:
            object->parser = parserCreate();
            made = object->parser != nullptr;
            break;
        case kTypeConfig:
            object->config = confPatchCreate();
            made = object->config != nullptr;
            break;
        default:
            made = scriptContainerCreate(object, type);
            break;
    }
    if (made) object->type = type;
    return made;
}

void endPayload(ScriptObject* object) {
    switch (object->type) {
        case kTypeString:
            stringRelease(&object->string);
            break;
        case kTypeExpr:
            scriptExpressionDestroy(&object->expression);
            break;
        case kTypeFile:
            bfileDestroy(&object->file);
            break;
        case kTypeParser:
            parserDestroy(&object->parser);
            break;
        case kTypeConfig:
            confPatchDestroy(&object->config);
            break;
        case kTypeList:
        case kTypeVector:
        case kTypeSet:
        case kTypeMap:
        case kTypeTree:
            scriptContainerDestroy(object);
            break;
        default:
            break;
    }
    object->type = kTypeUndef;
}

// Ends a container. What it holds may be containers again, to any depth: those
// wait in line for their end, and the stack does not grow.
void endContainer(ScriptObject* dead) {
    static ScriptObject* line = nullptr;
    static bool ending = false;
    scriptContainerEndCursor(dead);
    dead->waiting.next = line;
    line = dead;
    if (ending) return;
    ending = true;
    while (line != nullptr) {
        ScriptObject* first = line;
        line = first->waiting.next;
        first->waiting.next = nullptr;
        endPayload(first);
        poolGive(&scriptObjectPool, first);
    }
    ending = false;
}

bool clonePayload(ScriptObject* copy, const ScriptObject* source) {
    switch (source->type) {
        case kTypeNumber:
            copy->number = source->number;
            break;
        case kTypeString:
            if (!stringCopyInto(&copy->string, &source->string)) return false;
            break;
        case kTypeExpr:
            copy->expression = scriptExpressionClone(source->expression);
            if (copy->expression == nullptr) return false;
            break;
        case kTypePointer:
            copy->pointer = {};
            scriptPointerAim(copy, scriptObjectResolveRef(source), scriptPointerBlock(source));
            break;
        case kTypeFile:
            copy->file = bfileCopy(source->file);
            if (copy->file == nullptr) return false;
            break;
        case kTypeParser:
            copy->parser = parserClone(source->parser);
            if (copy->parser == nullptr) return false;
            break;
        case kTypeConfig:
            copy->config = confPatchCopy(source->config);
            if (copy->config == nullptr) return false;
            break;
        default:
            return scriptContainerClone(copy, source);
    }
    copy->type = source->type;
    return true;
}

}  // namespace

ScriptObject* scriptObjectCreate(ScriptType type) {
    if (type == kTypeNone || type >= kTypeCount) return nullptr;
    Owned<ScriptObject> object(scriptObjectTake());
    if (!object || !makePayload(object.get(), type)) return nullptr;
    return object.release();
}

ScriptObject* scriptObjectCreateString(std::string_view text) {
    ScriptObject* object = scriptObjectTake();
    if (object == nullptr) return nullptr;
    object->type = kTypeString;
    if (text.size() < kStringInside) {
        stringInitShort(&object->string, text);
        return object;
    }
    stringInitEmpty(&object->string);
    if (!stringAppendView(&object->string, text)) scriptObjectDestroy(&object);
    return object;
}

ScriptObject* scriptObjectClone(const ScriptObject* object) {
    if (object == nullptr || !object->hasValues()) return nullptr;
    ScriptObject* copy = scriptObjectTake();
    if (copy == nullptr) return nullptr;
    copy->nameId = object->nameId;
    if (!clonePayload(copy, object)) scriptObjectDestroy(&copy);
    return copy;
}

bool scriptObjectCanClone(const ScriptObject* object) {
    if (object->type == kTypeTree) return scriptTreeCanClone(object);
    return object->hasValues();
}

void scriptObjectEnd(ScriptObject* dead) {
    if (scriptTypeIsContainer(dead->type)) return endContainer(dead);
    endPayload(dead);
    poolGive(&scriptObjectPool, dead);
}

void scriptObjectDestroyElement(void** element) {
    auto* object = static_cast<ScriptObject*>(*element);
    scriptObjectDestroy(&object);
    *element = nullptr;
}

bool scriptObjectRetype(ScriptObject* object, ScriptType type) {
    if (object == nullptr || type == kTypeNone || type >= kTypeCount) return false;
    if (object->type == type) return true;
    endPayload(object);
    return type != kTypeUndef && makePayload(object, type);
}

void scriptObjectMove(ScriptObject* target, ScriptObject* source) {
    endPayload(target);
    const uint32_t nameId = target->nameId;
    const uint32_t generation = target->generation;
    *target = *source;
    target->nameId = nameId;
    target->generation = generation;
    target->flags = 0;
    source->type = kTypeUndef;
}

void scriptObjectPoolRelease() {
    poolDestroy(&scriptObjectPool);
}
