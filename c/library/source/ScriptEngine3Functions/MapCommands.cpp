#include "ScriptEngine3Functions/MapCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"

namespace {

// An object that may have ended since it was fetched.
struct Watched {
    explicit Watched(ScriptObject* seen)
        : object(seen), generation(seen == nullptr ? 0 : seen->generation) {}
    bool isThere() const { return object != nullptr && object->generation == generation; }
    ScriptObject* object;  // null after a failed fetch
    uint32_t generation;
};

// Gives a copy of an argument of `mapinsert`; null when the command ends with
// what stands in `*status` then.
ScriptObject* copyForEntry(ScriptEngine* engine, const ContainerArguments& in, ScriptObject* copy,
                           uint32_t position, int* status) {
    *status = in.status();
    if (copy != nullptr || !in.ok()) return copy;
    *status =
        commandError(engine, "scriptEngineMapInsert: Failed to access parameter %i", position);
    return nullptr;
}

int scriptEngineMapInsert(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    int status;
    Owned<ScriptObject> key(copyForEntry(engine, in, in.value(1, true).release(), 2, &status));
    if (!key) return status;
    Owned<ScriptObject> value(copyForEntry(engine, in, in.value(2).release(), 3, &status));
    if (!value) return status;
    ScriptObject* map = in.container();
    if (!in.ok()) return in.status();
    return mapPut(map, &key, &value) ? kDone : commandOutOfMemory(engine, "scriptEngineMapInsert");
}

int scriptEngineMapErase(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    const ScriptObject* key = in.any(1);
    ScriptObject* map = in.container();
    if (!in.ok()) return in.status();
    MapNode* node = mapFindNode(map->map.map, key);
    if (node == nullptr) return kNegative;
    mapLeaveEntry(map, node);
    mapEraseNode(map->map.map, node, scriptObjectDestroyElement, scriptObjectDestroyElement);
    return kDone;
}

int scriptEngineMapHaveElement(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    const ScriptObject* key = in.any(1);
    const ScriptObject* map = in.container();
    if (!in.ok()) return in.status();
    return mapContains(map->map.map, key) ? kDone : kNegative;
}

int scriptEngineMapGet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    const Watched key(in.any(1));
    const ScriptObject* map = in.container();
    if (!in.ok()) return in.status();
    const MapNode* node = mapFindNode(map->map.map, key.object);
    if (node == nullptr) return kNegative;
    const size_t evaluated = scriptTemporaries.size();
    ScriptObject* target = in.target(2);
    map = in.container();
    if (!in.ok()) return in.status();
    // What was evaluated for the target may have changed the map.
    if (scriptTemporaries.size() != evaluated)
        node = key.isThere() ? mapFindNode(map->map.map, key.object) : nullptr;
    if (node != nullptr &&
        scriptObjectAssign(engine, target, static_cast<ScriptObject*>(node->value)))
        return kDone;
    return commandError(engine, "scriptEngineMapGet: Failed to get map value");
}

// What a command that delivers an entry says when that fails.
struct WalkMessages {
    const char* noKey;
    const char* keyNotAssigned;
    const char* noValue;
    const char* valueNotAssigned;
};

// Assigns the entry under the cursor to the targets. The first assignment can
// end the map, the entry or the second target; a value that could go so is
// copied before.
int deliver(ScriptEngine* engine, const ContainerArguments& in, const ScriptObject* map,
            ScriptObject* keyTarget, Watched valueTarget, const WalkMessages& messages) {
    auto* key = static_cast<ScriptObject*>(mapIterKey(map->map.cursor));
    if (key == nullptr) return commandError(engine, messages.noKey);
    Watched value(static_cast<ScriptObject*>(mapIterValue(map->map.cursor)));
    Owned<ScriptObject> kept;
    if (scriptTypeIsContainer(keyTarget->type)) kept.reset(scriptObjectClone(value.object));
    // A pointer that is aimed at the key lets the script change it.
    if (keyTarget->type == kTypePointer) rbTreeForgetKeys(&map->map.map->tree);
    if (!scriptObjectAssign(engine, keyTarget, key))
        return commandError(engine, messages.keyNotAssigned);
    ScriptObject* delivered = value.isThere() && in.hasContainer() ? value.object : kept.get();
    if (delivered == nullptr) return commandError(engine, messages.noValue);
    if (valueTarget.isThere() && scriptObjectAssign(engine, valueTarget.object, delivered))
        return kDone;
    return commandError(engine, messages.valueNotAssigned);
}

struct WalkStart {
    MapIterator* (*iterate)(Map* map);
    const char* noIterator;
    WalkMessages messages;
};

constexpr WalkStart kFirst = {mapIterFirst,
                              "scriptEngineMapGetFirst: Failed to get first map element",
                              {"scriptEngineMapGetFirst: NULL-object as key found in map",
                               "scriptEngineMapGetFirst: Failed to get map key",
                               "scriptEngineMapGetFirst: NULL-object as value found in map",
                               "scriptEngineMapGetFirst: Failed to get map value"}};
constexpr WalkStart kLast = {mapIterLast,
                             "scriptEngineMapGetLast: Failed to get first map element",
                             {"scriptEngineMapGetLast: NULL-object as key found in map",
                              "scriptEngineMapGetLast: Failed to get map key",
                              "scriptEngineMapGetLast: NULL-object as value found in map",
                              "scriptEngineMapGetLast: Failed to get map value"}};
constexpr WalkMessages kNext = {"scriptEngineMapGetNext: NULL-object as key found in map",
                                "scriptEngineMapGetNext: Failed to get map key",
                                "scriptEngineMapGetNext: NULL-object as value found in map",
                                "scriptEngineMapGetNext: Failed to get map value"};

template <const WalkStart& kStart>
int startWalk(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    ScriptObject* map = in.container();
    if (!in.ok()) return in.status();
    if (mapCount(map->map.map) == 0) return kNegative;
    const Watched keyTarget(in.target(1));
    const Watched valueTarget(in.target(2));
    map = in.container();
    if (!in.ok()) return in.status();
    MapIterator* cursor = kStart.iterate(map->map.map);
    if (cursor == nullptr) return commandError(engine, kStart.noIterator);
    mapIterDestroy(&map->map.cursor);
    map->map.cursor = cursor;
    if (!keyTarget.isThere()) return commandError(engine, kStart.messages.keyNotAssigned);
    return deliver(engine, in, map, keyTarget.object, valueTarget, kStart.messages);
}

int scriptEngineMapGetNext(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    ScriptObject* map = in.container();
    if (!in.ok()) return in.status();
    if (mapCount(map->map.map) == 0) return kNegative;
    const Watched keyTarget(in.target(1));
    const Watched valueTarget(in.target(2));
    map = in.container();
    if (!in.ok()) return in.status();
    if (map->map.cursor == nullptr)
        return commandError(engine, "scriptEngineMapGetNext: Iteration has not been initialized");
    if (!mapIterNext(&map->map.cursor)) return kNegative;
    if (!keyTarget.isThere()) return commandError(engine, kNext.keyNotAssigned);
    return deliver(engine, in, map, keyTarget.object, valueTarget, kNext);
}

int scriptEngineMapSetCur(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    ScriptObject* map = in.container();
    if (!in.ok()) return in.status();
    if (!mapIterIsValid(map->map.cursor))
        return commandError(engine, "scriptEngineMapSetCur: Iteration has not been initialized");
    Owned<ScriptObject> value(in.raw(1));
    if (!value) return commandError(engine, "scriptEngineMapSetCur: Failed to set value");
    mapIterSetValue(map->map.cursor, value.release(), scriptObjectDestroyElement);
    return kDone;
}

int scriptEngineMapClear(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    if (in.ok())
        mapClearWith(in.container()->map.map, scriptObjectDestroyElement,
                     scriptObjectDestroyElement);
    return in.status();
}

constexpr CommandRow kMapCommands[] = {
    // name         handler               min max targets
    {"mapinsert", scriptEngineMapInsert, 3, 3, "1"},
    {"mapset", scriptEngineMapInsert, 3, 3, "1"},
    {"maperase", scriptEngineMapErase, 2, 2, "1"},
    {"maphaveelement", scriptEngineMapHaveElement, 2, 2, "1"},
    {"mapget", scriptEngineMapGet, 3, 3, "1,3"},
    {"mapgetfirst", startWalk<kFirst>, 3, 3, "1-3"},
    {"mapgetlast", startWalk<kLast>, 3, 3, "1-3"},
    {"mapgetnext", scriptEngineMapGetNext, 3, 3, "1-3"},
    {"mapsetcur", scriptEngineMapSetCur, 2, 2, "1"},
    {"mapclear", scriptEngineMapClear, 1, 1, "1"},
};

}  // namespace

std::span<const CommandRow> mapCommands() {
    return kMapCommands;
}
