#include "ScriptEngine3Defs/VectorElements.h"

namespace {

// Puts an object into the slot in place of the number. Null when memory runs out.
ScriptObject* unfold(const ScriptObject* vector, void** slot) {
    ScriptObject* object = scriptObjectCreateNumber(slotNumber(*slot));
    if (object == nullptr) return nullptr;
    object->nameId = vector->vector.numberName;
    *slot = object;
    return object;
}

}  // namespace

bool scriptVectorAppendObject(ScriptObject* vector, double number, uint32_t nameId) {
    Owned<ScriptObject> value(scriptObjectCreateNumber(number));
    if (!value) return false;
    value->nameId = nameId;
    if (!vectorAppend(vector->vector.vector, value.get())) return false;
    value.release();
    return true;
}

ScriptObject* scriptVectorElement(ScriptObject* vector, uint32_t index) {
    Vector* elements = vector->vector.vector;
    if (index >= vectorSize(elements)) return nullptr;
    void** slot = elements->data + index;
    return slotIsNumber(*slot) ? unfold(vector, slot) : static_cast<ScriptObject*>(*slot);
}

bool scriptVectorUnfold(ScriptObject* vector) {
    const uint32_t size = vectorSize(vector->vector.vector);
    for (uint32_t at = 0; at < size; ++at)
        if (scriptVectorElement(vector, at) == nullptr) return false;
    return true;
}

bool scriptVectorAssignNumber(ScriptEngine* engine, ScriptObject* target, ScriptObject* vector,
                              uint32_t index) {
    // A pointer may be aimed at the element.
    ScriptObject room;
    ScriptObject* element = target->type == kTypePointer ? scriptVectorElement(vector, index)
                                                         : scriptVectorSeen(vector, index, &room);
    return scriptObjectAssign(engine, target, element);
}

void scriptVectorClear(Vector* elements) {
    for (uint32_t at = 0; at < vectorSize(elements); ++at) {
        if (slotIsNumber(elements->data[at])) continue;
        auto* object = static_cast<ScriptObject*>(elements->data[at]);
        scriptObjectDestroy(&object);
    }
    vectorClear(elements);
}

void scriptVectorDestroySlot(void** slot) {
    if (slotIsNumber(*slot))
        *slot = nullptr;
    else
        scriptObjectDestroyElement(slot);
}
