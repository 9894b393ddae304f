#pragma once

#include <bit>
#include <cstdint>

#include "ScriptEngine3Defs/ScriptObject.h"
#include "containers/Vector.h"

// The elements of a vector value. The slots of its array hold objects, as the
// plain layout has them, but most numbers stand in their slots themselves and
// become objects only when something has to refer to them: a pointer that is
// aimed at one, or a command that hands elements on. A number in its slot has the
// name id that the vector keeps for all of them.

// What is added to the bits of a number: no address is as large.
constexpr uint64_t kSlotNumber = uint64_t{1} << 48;
static_assert(sizeof(void*) == sizeof(uint64_t));

inline bool slotIsNumber(const void* slot) {
    return reinterpret_cast<uintptr_t>(slot) >= kSlotNumber;
}

// The number in a slot that holds one.
inline double slotNumber(const void* slot) {
    return std::bit_cast<double>(reinterpret_cast<uintptr_t>(slot) - kSlotNumber);
}

// The slot for a number, which is one.
inline void* slotOfNumber(double number) {
    return reinterpret_cast<void*>(std::bit_cast<uint64_t>(number) + kSlotNumber);
}

// Whether a number of this name id can stand in a slot of the vector.
inline bool scriptVectorTakesNumber(ScriptObject* vector, double number, uint32_t nameId) {
    if (number != number) return false;
    if (vectorSize(vector->vector.vector) == 0) vector->vector.numberName = nameId;
    return vector->vector.numberName == nameId;
}

// What a slot of the vector holds for a value, which the slot owns then.
inline void* scriptVectorSlot(ScriptObject* vector, ScriptObject* value) {
    if (value->type != kTypeNumber ||
        !scriptVectorTakesNumber(vector, value->number, value->nameId))
        return value;
    void* slot = slotOfNumber(value->number);
    scriptObjectDestroy(&value);
    return slot;
}

// Adds a number. False when memory runs out.
bool scriptVectorAppendObject(ScriptObject* vector, double number, uint32_t nameId);
inline bool scriptVectorAppendNumber(ScriptObject* vector, double number, uint32_t nameId) {
    if (!scriptVectorTakesNumber(vector, number, nameId))
        return scriptVectorAppendObject(vector, number, nameId);
    return vectorAppend(vector->vector.vector, slotOfNumber(number));
}

// An element as an object of the vector's. Null at and beyond the size, and when
// memory runs out.
ScriptObject* scriptVectorElement(ScriptObject* vector, uint32_t index);
// Makes objects of all elements. False when memory runs out.
bool scriptVectorUnfold(ScriptObject* vector);

// An element to look at: the vector's own object, or the number in `room`. Null at
// and beyond the size.
inline ScriptObject* scriptVectorSeen(const ScriptObject* vector, uint32_t index,
                                      ScriptObject* room) {
    void* slot = vectorGet(vector->vector.vector, index);
    if (!slotIsNumber(slot)) return static_cast<ScriptObject*>(slot);
    room->number = slotNumber(slot);
    room->nameId = vector->vector.numberName;
    room->type = kTypeNumber;
    room->flags = 0;
    room->generation = 0;
    return room;
}

// `scriptObjectAssign` of the element, which there is.
bool scriptVectorAssignNumber(ScriptEngine* engine, ScriptObject* target, ScriptObject* vector,
                              uint32_t index);
inline bool scriptVectorAssign(ScriptEngine* engine, ScriptObject* target, ScriptObject* vector,
                               uint32_t index) {
    void* slot = vector->vector.vector->data[index];
    if (!slotIsNumber(slot))
        return scriptObjectAssign(engine, target, static_cast<ScriptObject*>(slot));
    if (target->type != kTypeNumber) return scriptVectorAssignNumber(engine, target, vector, index);
    target->number = slotNumber(slot);
    return true;
}

// Ends all elements of the array of a vector, which is empty then.
void scriptVectorClear(Vector* elements);
// Ends what a slot holds, as a destructor callback of the containers.
void scriptVectorDestroySlot(void** slot);
