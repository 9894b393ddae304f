#include "ScriptEngine3Functions/VectorCommands.h"

#include <algorithm>

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "strings/StringNumbers.h"

namespace {

constexpr uint32_t kForward = 1;
constexpr uint32_t kBackward = 0xFFFFFFFF;  // added to an index, one less

// What most loops over vectors are made of is done at once: `vecappend` of one
// number, and a step of a walk to a number or a short text, where all are plain
// variables. False where that is not so, and then nothing is done.

inline bool appendAtOnce(ScriptBlock* block, ScriptArgs* args) {
    if (block == nullptr || args == nullptr || args->count != 2) return false;
    ScriptObject* vector = scriptPlainTarget(block, args, 0, kTypeVector);
    if (vector == nullptr) return false;
    const ScriptObject* value = scriptPlainValue(block, args, 1);
    return value != nullptr && value->type == kTypeNumber &&
           scriptVectorAppendNumber(vector, value->number, value->nameId);
}

inline bool stepAtOnce(ScriptBlock* block, ScriptArgs* args) {
    if (block == nullptr || args == nullptr || args->count != 2) return false;
    ScriptObject* object = scriptPlainTarget(block, args, 0, kTypeVector);
    if (object == nullptr || object->vector.direction != kForward) return false;
    const uint32_t index = object->vector.cursor + 1;
    const void* slot = vectorGet(object->vector.vector, index);
    ScriptObject* target = scriptPlainVariable(block, args, 1);
    if (slot == nullptr || target == nullptr) return false;
    if (slotIsNumber(slot)) {
        if (target->type != kTypeNumber) return false;
        target->number = slotNumber(slot);
    } else {
        const auto* element = static_cast<const ScriptObject*>(slot);
        if (target->type != kTypeString || element->type != kTypeString ||
            !stringSetInside(&target->string, &element->string))
            return false;
    }
    object->vector.cursor = index;
    return true;
}

bool append(ScriptObject* vector, NewValue* value) {
    if (value->isNumber) return scriptVectorAppendNumber(vector, value->number, value->nameId);
    if (!vectorAppend(vector->vector.vector, value->object.get())) return false;
    value->object.release();
    return true;
}

[[gnu::noinline]] int appendValues(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args) {
    ContainerArguments in(engine, block, args, kTypeVector);
    for (uint32_t at = 1; at < in.count(); ++at) {
        NewValue value = in.value(at);
        ScriptObject* vector = in.container();
        if (!in.ok()) break;
        if (!value)
            return commandError(engine, "scriptEngineVecAppend: Failed to append parameter %i",
                                at + 1);
        if (!append(vector, &value)) return commandOutOfMemory(engine, "scriptEngineVecAppend");
    }
    return in.status();
}

int scriptEngineVecAppend(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return appendAtOnce(block, args) ? kDone : appendValues(engine, block, args);
}

int scriptEngineVecInsert(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    const uint32_t index = in.index(1);
    Owned<ScriptObject> value(in.raw(2));
    ScriptObject* vector = in.container();
    if (!in.ok()) return in.status();
    if (!value) return commandError(engine, "scriptEngineVecInsert: Failed to insert value");
    Vector* elements = vector->vector.vector;
    void* slot = scriptVectorSlot(vector, value.release());
    if (vectorInsert(elements, std::min(index, vectorSize(elements)), slot)) return kDone;
    scriptVectorDestroySlot(&slot);
    return commandOutOfMemory(engine, "scriptEngineVecInsert");
}

// Puts the value in the place of the element at the index, which there is.
void replaceElement(ScriptObject* vector, uint32_t index, ScriptObject* value) {
    Vector* elements = vector->vector.vector;
    void* old = vectorGet(elements, index);
    vectorSet(elements, index, scriptVectorSlot(vector, value));
    scriptVectorDestroySlot(&old);
}

int scriptEngineVecSet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    const uint32_t index = in.index(1);
    Owned<ScriptObject> value(in.raw(2));
    ScriptObject* vector = in.container();
    if (!in.ok()) return in.status();
    if (!value) return commandError(engine, "scriptEngineVecSet: Failed to set value");
    const uint32_t size = vectorSize(vector->vector.vector);
    if (size == 0) return commandOutOfMemory(engine, "scriptEngineVecSet");
    replaceElement(vector, std::min(index, size - 1), value.release());
    return kDone;
}

// `vecerase vector index [count]`: the last element stays out of reach, on
// purpose or not; scripts know it so.
int scriptEngineVecErase(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    const uint32_t index = in.index(1);
    ScriptObject* vector = in.container();
    if (!in.ok()) return in.status();
    if (uint64_t{index} + 1 >= vectorSize(vector->vector.vector))
        return commandError(engine, "scriptEngineVecErase: Index out of bounds");
    const ScriptObject* given = in.optional(2);
    if (given != nullptr && given->type != kTypeNumber)
        return commandError(engine, "scriptEngineVecErase: Second parameter must be a number");
    const uint32_t count = given == nullptr ? 1 : numberToUInt32(given->number);
    vector = in.container();
    if (!in.ok()) return in.status();
    vectorEraseWith(vector->vector.vector, index, count, scriptVectorDestroySlot);
    return kDone;
}

int scriptEngineVecGet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    const uint32_t index = in.index(1);
    ScriptObject* target = in.target(2);
    ScriptObject* vector = in.container();
    if (!in.ok()) return in.status();
    const Vector* elements = vector->vector.vector;
    if (index >= vectorSize(elements))
        return commandError(engine, "scriptEngineVecGet: Index out of bounds");
    if (vectorGet(elements, index) == nullptr)
        return commandError(engine, "scriptEngineVecGet: NULL-object found at index %u in vector",
                            index);
    if (scriptVectorAssign(engine, target, vector, index)) return kDone;
    return commandError(engine,
                        "scriptEngineVecGet: Failed to assign vector value to target variable");
}

// The way a walk begins: at which end, and what it says when that fails.
struct WalkStart {
    uint32_t direction;
    const char* noElement;
    const char* notAssigned;
};

constexpr WalkStart kFirst = {
    kForward, "scriptEngineVecGetFirst: NULL-object found at index %u in vector",
    "scriptEngineVecGetFirst: Failed to assign vector value to target variable"};
constexpr WalkStart kLast = {
    kBackward, "scriptEngineVecGetLast: NULL-object found at index %u in vector",
    "scriptEngineVecGetLast: Failed to assign vector value to target variable"};

template <const WalkStart& kStart>
int startWalk(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    ScriptObject* vector = in.container();
    if (!in.ok()) return in.status();
    if (vectorSize(vector->vector.vector) == 0) return kNegative;
    ScriptObject* target = in.unfollowedTarget(1);
    vector = in.container();
    if (!in.ok()) return in.status();
    ScriptObject::VectorValue& value = vector->vector;
    const uint32_t index = kStart.direction == kForward ? 0 : vectorSize(value.vector) - 1;
    if (vectorGet(value.vector, index) == nullptr)
        return commandError(engine, kStart.noElement, index);
    value.cursorSet = 1;
    value.cursor = index;
    value.direction = kStart.direction;
    return in.assignInWalk(target, vector, index) ? kDone
                                                  : commandError(engine, kStart.notAssigned);
}

[[gnu::noinline]] int step(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args) {
    ContainerArguments in(engine, block, args, kTypeVector);
    ScriptObject* vector = in.container();
    if (!in.ok()) return in.status();
    if (vector->vector.cursorSet == 0)
        return commandError(engine, "scriptEngineVecGetNext: Iteration has not been initialized");
    const uint32_t end =
        vector->vector.direction == kForward ? vectorSize(vector->vector.vector) - 1 : 0;
    if (vector->vector.cursor == end) return kNegative;
    ScriptObject* target = in.unfollowedTarget(1);
    vector = in.container();
    if (!in.ok()) return in.status();
    // Aimed anew at each element; else the walk would write through.
    if (target->type == kTypePointer) scriptPointerAim(target, nullptr, nullptr);
    ScriptObject::VectorValue& value = vector->vector;
    const uint32_t index = value.cursor + value.direction;
    if (vectorGet(value.vector, index) == nullptr)
        return commandError(engine,
                            "scriptEngineVecGetNext: NULL-object found at index %u in vector",
                            vectorSize(value.vector) - 1);
    value.cursor = index;
    if (in.assignInWalk(target, vector, index)) return kDone;
    return commandError(engine,
                        "scriptEngineVecGetNext: Failed to assign vector value to target variable");
}

int scriptEngineVecGetNext(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return stepAtOnce(block, args) ? kDone : step(engine, block, args);
}

int scriptEngineVecSetCur(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    ScriptObject* vector = in.container();
    if (!in.ok()) return in.status();
    const ScriptObject::VectorValue& value = vector->vector;
    if (value.cursorSet == 0 || value.cursor >= vectorSize(value.vector))
        return commandError(engine, "scriptEngineVecSetCur: Iteration has not been initialized");
    Owned<ScriptObject> element(in.raw(1));
    if (!element) return commandError(engine, "scriptEngineVecSetCur: Failed to set value");
    replaceElement(vector, value.cursor, element.release());
    return kDone;
}

// The cursor stays where it is, beyond the end.
int scriptEngineVecClear(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    if (in.ok()) scriptVectorClear(in.container()->vector.vector);
    return in.status();
}

constexpr CommandRow kVectorCommands[] = {
    // name         handler               min  max        targets
    {"vecappend", scriptEngineVecAppend, 2, kManyArgs, "1"},
    {"vecinsert", scriptEngineVecInsert, 3, 3, "1"},
    {"vecset", scriptEngineVecSet, 3, 3, "1"},
    {"vecerase", scriptEngineVecErase, 2, 3, "1"},
    {"vecget", scriptEngineVecGet, 3, 3, "1,3"},
    {"vecgetfirst", startWalk<kFirst>, 2, 2, "1,2"},
    {"vecgetlast", startWalk<kLast>, 2, 2, "1,2"},
    {"vecgetnext", scriptEngineVecGetNext, 2, 2, "1,2"},
    {"vecsetcur", scriptEngineVecSetCur, 2, 2, "1"},
    {"vecclear", scriptEngineVecClear, 1, 1, "1"},
};

}  // namespace

std::span<const CommandRow> vectorCommands() {
    return kVectorCommands;
}
