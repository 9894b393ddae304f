#include "ScriptEngine3Functions/MapCommands.h"

#include <cmath>

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

int noCopy(ScriptEngine* engine, const ContainerArguments& in, uint32_t position) {
    if (!in.ok()) return in.status();
    return commandError(engine, "scriptEngineMapInsert: Failed to access parameter %i", position);
}

// Whether a copy of `key` would be what the key of the entry is, to the bit.
bool hasKey(const MapNode* node, const ScriptObject* key) {
    const auto* old = static_cast<const ScriptObject*>(node->data);
    if (old->type != key->type || old->nameId != key->nameId) return false;
    return key->type == kTypeString || (key->type == kTypeNumber && key->number == old->number &&
                                        std::signbit(key->number) == std::signbit(old->number));
}

// Gives the entry another value, which the map owns from then on. False when memory
// runs out.
bool replaceValue(ScriptObject* map, MapNode* node, NewValue* value) {
    auto* old = static_cast<ScriptObject*>(node->value);
    if (value->isNumber && old != nullptr && old->type == kTypeNumber) {
        // Another value in the record of the one that ends.
        ++old->generation;
        old->number = value->number;
        old->nameId = value->nameId;
        old->flags = 0;
    } else {
        ScriptObject* fresh = value->release();
        if (fresh == nullptr) return false;
        node->value = fresh;
        scriptObjectDestroy(&old);
    }
    mapLeaveEntry(map, node);
    return true;
}

int scriptEngineMapInsert(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    // A key that nothing can change in the meantime is copied only for a new entry.
    const ScriptObject* lasting = in.lasting(1, 2);
    Owned<ScriptObject> key(lasting == nullptr ? in.value(1, true).release() : nullptr);
    if (lasting == nullptr && !key) return noCopy(engine, in, 2);
    NewValue value = in.value(2);
    if (!value) return noCopy(engine, in, 3);
    ScriptObject* map = in.container();
    if (!in.ok()) return in.status();
    MapNode* old = mapFindNode(map->map.map, lasting != nullptr ? lasting : key.get());
    if (lasting != nullptr) {
        if (old != nullptr && hasKey(old, lasting) &&
            rbTreeReplacesInPlace(&map->map.map->tree, old, lasting))
            return replaceValue(map, old, &value)
                       ? kDone
                       : commandOutOfMemory(engine, "scriptEngineMapInsert");
        key.reset(scriptObjectClone(lasting));
        if (!key) return noCopy(engine, in, 2);
    }
    Owned<ScriptObject> object(value.release());
    if (object && mapPutFor(map, old, &key, &object)) return kDone;
    return commandOutOfMemory(engine, "scriptEngineMapInsert");
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

int deliverValue(ScriptEngine* engine, ScriptObject* target, const MapNode* node) {
    if (scriptObjectAssign(engine, target, static_cast<ScriptObject*>(node->value))) return kDone;
    return commandError(engine, "scriptEngineMapGet: Failed to get map value");
}

// `mapget` of plain variables. False where that is not so, and then nothing is done.
inline bool getAtOnce(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int* status) {
    if (engine == nullptr || block == nullptr || args == nullptr || args->count != 3) return false;
    const ScriptObject* map = scriptPlainTarget(block, args, 0, kTypeMap);
    const ScriptObject* key = scriptPlainValue(block, args, 1);
    ScriptObject* target = scriptPlainTarget(block, args, 2);
    if (map == nullptr || key == nullptr || target == nullptr) return false;
    const MapNode* node = mapFindNode(map->map.map, key);
    *status = node == nullptr ? kNegative : deliverValue(engine, target, node);
    return true;
}

[[gnu::noinline]] int get(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args) {
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
    if (node != nullptr) return deliverValue(engine, target, node);
    return commandError(engine, "scriptEngineMapGet: Failed to get map value");
}

int scriptEngineMapGet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    int status;
    return getAtOnce(engine, block, args, &status) ? status : get(engine, block, args);
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
