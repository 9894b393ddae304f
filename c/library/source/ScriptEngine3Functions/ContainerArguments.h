#pragma once

#include <cstdint>
#include <source_location>

#include "ScriptEngine3Defs/Arguments.h"
#include "ScriptEngine3Defs/ScriptContainers.h"

// What the commands of the vector, list, set, map and tree families share.

// A value on its way into a container: a number, or an object of another type.
struct NewValue {
    Owned<ScriptObject> object;
    double number = 0;
    uint32_t nameId = kNoVariable;  // of the number
    bool isNumber = false;

    // False where there is none.
    explicit operator bool() const { return isNumber || object; }
    void setNumber(const ScriptObject* from) {
        number = from->number;
        nameId = from->nameId;
        isNumber = true;
    }
    // Takes over an object, or the number that it is.
    void take(ScriptObject* made);
    // The value as an object that the caller owns; null without one, and when
    // memory runs out.
    ScriptObject* release();
};

// The arguments of a command whose first one is a container. A script can do
// anything while a later argument is evaluated, also give the container another
// type or end it together with what holds it; and an assignment to a target can.
// So a handler asks for the container last, and again after each of these.
class ContainerArguments : public Arguments {
  public:
    // Fetches the first argument, which must have the type.
    [[gnu::always_inline]] ContainerArguments(ScriptEngine* engine, ScriptBlock* block,
                                              ScriptArgs* args, ScriptType type)
        : Arguments(engine, block, args), type_(type), container_(plainTarget(0, type)) {
        if (container_ == nullptr) container_ = otherContainer();
        if (container_ != nullptr) generation_ = container_->generation;
    }

    // The container; null, with a failure reported, when it is gone.
    ScriptObject* container() {
        if (!ok()) return nullptr;
        return hasContainer() ? container_ : containerGone();
    }
    // Whether `container` would give it, without a report.
    bool hasContainer() const {
        return container_ != nullptr && container_->generation == generation_ &&
               container_->type == type_;
    }

    // A copy of a value for the container. There is none, without a failure of the
    // arguments, when the value has no copy, as undef has none. An expression is
    // evaluated, a pointer stays one, or is followed on demand.
    NewValue value(uint32_t index, bool followRefs = false) {
        NewValue value;
        if (!ok()) return value;
        ScriptBlock* where = nullptr;
        ScriptObject* object = scriptBlockSearchPlace(block_, arg(index), &where);
        if (object != nullptr && object->type == kTypeNumber)
            value.setNumber(object);
        else
            takeValue(&value, index, object, where, followRefs);
        return value;
    }
    // The same as an object that the caller owns, or null.
    ScriptObject* fetched(uint32_t index) { return value(index).release(); }
    // The same, but what stands there is taken as it is: an expression stays one.
    ScriptObject* raw(uint32_t index);

    // A number or string that stays as it is while argument `next` is fetched, to be
    // read only. Null, without a failure, for anything else.
    const ScriptObject* lasting(uint32_t index, uint32_t next) {
        if (!ok()) return nullptr;
        const ScriptObject* object = scriptPlainValue(block_, args_, index);
        return object != nullptr && !canWrite(next) ? object : nullptr;
    }

    // A number as an index: what is negative or has no 32 bits is a large one.
    uint32_t index(uint32_t index);
    // A value that may be missing: null without a report when there is none.
    const ScriptObject* optional(uint32_t index);
    // A target that stays itself when it is a pointer.
    ScriptObject* unfollowedTarget(uint32_t index) {
        if (!ok()) return nullptr;
        ScriptObject* object = scriptBlockSearchPlace(block_, arg(index), nullptr);
        if (object == nullptr || object->type == kTypeExpr) return target(index);
        return object->type == kTypePointer ? object : writable(index, object);
    }
    // Assigns an element of a vector, which there is, to such a target. A pointer
    // that refers to nothing, or to nothing any more, is aimed at the element as it
    // is seen from this block.
    bool assignInWalk(ScriptObject* target, ScriptObject* vector, uint32_t index) {
        if (target->type != kTypePointer || scriptPointerTarget(target) != nullptr)
            return scriptVectorAssign(engine_, target, vector, index);
        return aimInWalk(target, scriptVectorElement(vector, index));
    }

  private:
    ScriptObject* otherContainer();
    ScriptObject* containerGone();
    bool aimInWalk(ScriptObject* target, ScriptObject* element);
    void takeValue(NewValue* value, uint32_t index, ScriptObject* found, ScriptBlock* where,
                   bool followRefs);

    ScriptType type_;
    ScriptObject* container_;
    uint32_t generation_ = 0;
};

// Reports, with "%u" or "%i" for `number` where it has one; gives `kError`.
int commandError(ScriptEngine* engine, const char* message, uint32_t number = 0);
// Reports that memory ran out in the command of this name; gives `kOutOfMemory`.
int commandOutOfMemory(ScriptEngine* engine, const char* name,
                       std::source_location where = std::source_location::current());
// Reports what failed in the command of this name, and the place; gives `kError`.
int commandFailed(ScriptEngine* engine, const char* name, const char* what,
                  std::source_location where = std::source_location::current());

// Adds a value, which the list, vector or set owns from then on; false when
// memory runs out, and the value stays the caller's.
bool containerAdd(ScriptObject* container, ScriptObject* value);
// Adds a string object with a copy of the text.
bool containerAddText(ScriptObject* container, std::string_view text);

// Before an entry goes: the walk that stands there ends.
void mapLeaveEntry(ScriptObject* map, const MapNode* node);
// Puts an entry into a map in place of `old`, the one with an equal key, if there is
// one: one entry a key. The map owns key and value from then on; false when memory
// runs out, and they stay the caller's.
bool mapPutFor(ScriptObject* map, MapNode* old, Owned<ScriptObject>* key,
               Owned<ScriptObject>* value);
inline bool mapPut(ScriptObject* map, Owned<ScriptObject>* key, Owned<ScriptObject>* value) {
    return mapPutFor(map, mapFindNode(map->map.map, key->get()), key, value);
}
// The same with string objects of copies of the texts, none of which may be a
// part of the map.
bool mapPutTexts(ScriptObject* map, std::string_view key, std::string_view value);
