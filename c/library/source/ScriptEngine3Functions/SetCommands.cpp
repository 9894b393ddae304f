#include "ScriptEngine3Functions/SetCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"

namespace {

// From the last value to the first. Whether there is an equal one already is
// the script's matter.
int scriptEngineSetInsert(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeSet);
    for (uint32_t at = in.count(); at-- > 1;) {
        Owned<ScriptObject> value(in.fetched(at));
        ScriptObject* set = in.container();
        if (!in.ok()) break;
        if (!value)
            return commandError(engine, "scriptEngineSetInsert: Failed to append parameter %i",
                                at + 1);
        if (!setInsert(set->set.set, value.get()))
            return commandOutOfMemory(engine, "scriptEngineSetInsert");
        value.release();
    }
    return in.status();
}

int scriptEngineSetErase(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeSet);
    const ScriptObject* value = in.any(1);
    ScriptObject* object = in.container();
    if (!in.ok()) return in.status();
    Set* set = object->set.set;
    SetIterator* cursor = object->set.cursor;
    RbNode* node = set == nullptr ? nullptr : rbTreeFindNode(&set->tree, value);
    if (node == nullptr) return kDone;
    // The walk ends when the element under its cursor goes.
    if (setIterIsValid(cursor) && cursor->iterator.node == node) rbTreeIterLeave(&cursor->iterator);
    setEraseNode(set, node, scriptObjectDestroyElement);
    return kDone;
}

int scriptEngineSetHaveElement(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeSet);
    const ScriptObject* value = in.any(1);
    const ScriptObject* set = in.container();
    if (!in.ok()) return in.status();
    return setContains(set->set.set, value) ? kDone : kNegative;
}

// Assigns the element of a walk to its target. A pointer that is aimed at the
// element lets the script change it.
bool deliver(ScriptEngine* engine, ScriptObject* set, ScriptObject* target, ScriptObject* element) {
    if (target->type == kTypePointer) rbTreeForgetKeys(&set->set.set->tree);
    return scriptObjectAssign(engine, target, element);
}

struct WalkStart {
    SetIterator* (*iterate)(Set* set);
    const char* noIterator;
    const char* noElement;
    const char* notAssigned;
};

constexpr WalkStart kFirst = {
    setIterFirst, "scriptEngineSetGetFirst: Failed to get first set element",
    "scriptEngineSetGetFirst: NULL-object found in set",
    "scriptEngineSetGetFirst: Failed to assign set value to target variable"};
constexpr WalkStart kLast = {
    setIterLast, "scriptEngineSetGetLast: Failed to get first set element",
    "scriptEngineSetGetLast: NULL-object found in set",
    "scriptEngineSetGetLast: Failed to assign set value to target variable"};

template <const WalkStart& kStart>
int startWalk(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeSet);
    ScriptObject* set = in.container();
    if (!in.ok()) return in.status();
    if (setCount(set->set.set) == 0) return kNegative;
    ScriptObject* target = in.target(1);
    set = in.container();
    if (!in.ok()) return in.status();
    Owned<SetIterator> cursor(kStart.iterate(set->set.set));
    if (!cursor) return commandError(engine, kStart.noIterator);
    auto* element = static_cast<ScriptObject*>(setIterValue(cursor.get()));
    if (element == nullptr) return commandError(engine, kStart.noElement);
    setIterDestroy(&set->set.cursor);
    set->set.cursor = cursor.release();
    if (deliver(engine, set, target, element)) return kDone;
    return commandError(engine, kStart.notAssigned);
}

int scriptEngineSetGetNext(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeSet);
    ScriptObject* set = in.container();
    if (!in.ok()) return in.status();
    if (setCount(set->set.set) == 0) return kNegative;
    ScriptObject* target = in.target(1);
    set = in.container();
    if (!in.ok()) return in.status();
    if (set->set.cursor == nullptr)
        return commandError(engine, "scriptEngineSetGetNext: Iteration has not been initialized");
    if (!setIterNext(&set->set.cursor)) return kNegative;
    auto* element = static_cast<ScriptObject*>(setIterValue(set->set.cursor));
    if (element == nullptr)
        return commandError(engine, "scriptEngineSetGetNext: NULL-object found in set");
    if (deliver(engine, set, target, element)) return kDone;
    return commandError(engine,
                        "scriptEngineSetGetNext: Failed to assign set value to target variable");
}

int scriptEngineSetClear(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeSet);
    if (in.ok()) setClearWith(in.container()->set.set, scriptObjectDestroyElement);
    return in.status();
}

constexpr CommandRow kSetCommands[] = {
    // name         handler               min  max        targets
    {"setinsert", scriptEngineSetInsert, 2, kManyArgs, "1"},
    {"seterase", scriptEngineSetErase, 2, 2, "1"},
    {"sethaveelement", scriptEngineSetHaveElement, 2, 2, "1"},
    {"setgetfirst", startWalk<kFirst>, 2, 2, "1,2"},
    {"setgetlast", startWalk<kLast>, 2, 2, "1,2"},
    {"setgetnext", scriptEngineSetGetNext, 2, 2, "1,2"},
    {"setclear", scriptEngineSetClear, 1, 1, "1"},
};

}  // namespace

std::span<const CommandRow> setCommands() {
    return kSetCommands;
}
