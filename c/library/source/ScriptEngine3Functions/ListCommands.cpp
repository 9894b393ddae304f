#include "ScriptEngine3Functions/ListCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"

namespace {

int scriptEngineListAppend(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeList);
    for (uint32_t at = 1; at < in.count(); ++at) {
        Owned<ScriptObject> value(in.fetched(at));
        ScriptObject* list = in.container();
        if (!in.ok()) break;
        if (!value)
            return commandError(engine, "scriptEngineListAppend: Failed to append parameter %i",
                                at + 1);
        if (!listPushBack(list->list.list, value.get()))
            return commandOutOfMemory(engine, "scriptEngineListAppend");
        value.release();
    }
    return in.status();
}

// From the last value to the first: so they stand in their order at the front.
int scriptEngineListPush(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeList);
    for (uint32_t at = in.count(); at-- > 1;) {
        Owned<ScriptObject> value(in.fetched(at));
        ScriptObject* list = in.container();
        if (!in.ok()) break;
        if (!value)
            return commandError(engine, "scriptEngineListPush: Failed to append parameter %i",
                                at + 1);
        if (!listPushFront(list->list.list, value.get()))
            return commandOutOfMemory(engine, "scriptEngineListPush");
        value.release();
    }
    return in.status();
}

// Gives the list with its cursor standing on an element; else null, with the
// status in `*status`. A cursor whose element others took away counts as none.
ScriptObject* listAtCursor(ContainerArguments* in, ScriptEngine* engine, const char* message,
                           int* status) {
    ScriptObject* list = in->container();
    *status = in->status();
    if (list == nullptr || listIterIsValid(list->list.cursor)) return list;
    *status = commandError(engine, message);
    return nullptr;
}

int scriptEngineListInsert(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeList);
    int status;
    ScriptObject* list = listAtCursor(
        &in, engine, "scriptEngineListInsert: Iteration has not been initialized", &status);
    if (list == nullptr) return status;
    Owned<ScriptObject> value(in.raw(1));
    if (!value) return commandError(engine, "scriptEngineListInsert: Failed to erase");
    if (!listIterInsertAfter(list->list.cursor, value.get()))
        return commandOutOfMemory(engine, "scriptEngineListInsert");
    value.release();
    return kDone;
}

int scriptEngineListErase(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeList);
    int status;
    ScriptObject* list = listAtCursor(
        &in, engine, "scriptEngineListErase: Iteration has not been initialized", &status);
    if (list == nullptr) return status;
    listIterEraseWith(&list->list.cursor, scriptObjectDestroyElement);
    list->list.walk = list->list.cursor != nullptr ? kListOnNext : kListErasedToEnd;
    return kDone;
}

struct WalkStart {
    ListIterator* (*iterate)(List* list);
    const char* noIterator;
    const char* noElement;
    const char* notAssigned;
};

constexpr WalkStart kFirst = {
    listIterFirst, "scriptEngineListGetFirst: Failed to get first list element",
    "scriptEngineListGetFirst: NULL-object found in list",
    "scriptEngineListGetFirst: Failed to assign list value to target variable"};
constexpr WalkStart kLast = {
    listIterLast, "scriptEngineListGetLast: Failed to get first list element",
    "scriptEngineListGetLast: NULL-object found in list",
    "scriptEngineListGetLast: Failed to assign list value to target variable"};

template <const WalkStart& kStart>
int startWalk(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeList);
    ScriptObject* list = in.container();
    if (!in.ok()) return in.status();
    if (listCount(list->list.list) == 0) return kNegative;
    ScriptObject* target = in.target(1);
    list = in.container();
    if (!in.ok()) return in.status();
    Owned<ListIterator> cursor(kStart.iterate(list->list.list));
    if (!cursor) return commandError(engine, kStart.noIterator);
    auto* element = static_cast<ScriptObject*>(listIterValue(cursor.get()));
    if (element == nullptr) return commandError(engine, kStart.noElement);
    listIterDestroy(&list->list.cursor);
    list->list.cursor = cursor.release();
    list->list.walk = kListOnElement;
    if (scriptObjectAssign(engine, target, element)) return kDone;
    return commandError(engine, kStart.notAssigned);
}

int scriptEngineListGetNext(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeList);
    ScriptObject* list = in.container();
    if (!in.ok()) return in.status();
    if (listCount(list->list.list) == 0) return kNegative;
    ScriptObject* target = in.target(1);
    list = in.container();
    if (!in.ok()) return in.status();
    ScriptObject::ListValue& value = list->list;
    if (value.walk == kListNoWalk)
        return commandError(engine,
                            "scriptEngineListGetNext: Iteration has not been initialized (1)");
    if (value.cursor == nullptr && value.walk == kListErasedToEnd) return kNegative;
    if (value.cursor == nullptr)
        return commandError(engine,
                            "scriptEngineListGetNext: Iteration has not been initialized (2)");
    const bool standsOnNext = value.walk == kListOnNext && listIterIsValid(value.cursor);
    if (!standsOnNext && !listIterNext(&value.cursor)) {
        value.walk = kListAtEnd;
        return kNegative;
    }
    value.walk = kListOnElement;
    auto* element = static_cast<ScriptObject*>(listIterValue(value.cursor));
    if (element == nullptr)
        return commandError(engine, "scriptEngineListGetNext: NULL-object found in list");
    if (scriptObjectAssign(engine, target, element)) return kDone;
    return commandError(engine,
                        "scriptEngineListGetNext: Failed to assign list value to target variable");
}

int scriptEngineListSetCur(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeList);
    int status;
    ScriptObject* list = listAtCursor(
        &in, engine, "scriptEngineListSetCur: Iteration has not been initialized", &status);
    if (list == nullptr) return status;
    Owned<ScriptObject> value(in.raw(1));
    if (!value) return commandError(engine, "scriptEngineListSetCur: Failed to set value");
    listIterSetValue(list->list.cursor, value.release(), scriptObjectDestroyElement);
    return kDone;
}

int scriptEngineListClear(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeList);
    if (in.ok()) listClearWith(in.container()->list.list, scriptObjectDestroyElement);
    return in.status();
}

constexpr CommandRow kListCommands[] = {
    // name          handler                min  max        targets
    {"listappend", scriptEngineListAppend, 2, kManyArgs, "1"},
    {"listpush", scriptEngineListPush, 2, kManyArgs, "1"},
    {"listinsert", scriptEngineListInsert, 2, 2, "1"},
    {"listerase", scriptEngineListErase, 1, 1, "1"},
    {"listgetfirst", startWalk<kFirst>, 2, 2, "1,2"},
    {"listgetlast", startWalk<kLast>, 2, 2, "1,2"},
    {"listgetnext", scriptEngineListGetNext, 2, 2, "1,2"},
    {"listsetcur", scriptEngineListSetCur, 2, 2, "1"},
    {"listclear", scriptEngineListClear, 1, 1, "1"},
};

}  // namespace

std::span<const CommandRow> listCommands() {
    return kListCommands;
}
