#include "containers/Map.h"

#include "containers/Memory.h"

namespace {

void refreshCount(Map* map) {
    map->count = map->tree.count;
}

MapIterator* makeIterator(Map* map, RbNode* node, int8_t direction) {
    if (node == nullptr) return nullptr;
    auto* it = memNew<MapIterator>();
    if (it == nullptr) return nullptr;
    rbTreeIterInit(&it->iterator, &map->tree, node, direction);
    it->owner = map;
    return it;
}

void endEntry(void* key, void* value, DestroyFunction destroyKey, DestroyFunction destroyValue) {
    if (destroyKey != nullptr) destroyKey(&key);
    if (destroyValue != nullptr && value != nullptr) destroyValue(&value);
}

MapNode* nodeOf(const MapIterator* iterator) {
    return static_cast<MapNode*>(iterator->iterator.node);
}

}  // namespace

Map* mapCreate(CompareFunction keyCompare, const RbKeys* keys) {
    if (keyCompare == nullptr) return nullptr;
    Map* map = memNew<Map>();
    if (map == nullptr) return nullptr;
    rbTreeInit(&map->tree, keyCompare, true, keys);
    map->keyCompare = keyCompare;
    return map;
}

void mapDestroy(Map** map) {
    mapDestroyWith(map, nullptr, nullptr);
}

void mapDestroyWith(Map** map, DestroyFunction destroyKey, DestroyFunction destroyValue) {
    if (map == nullptr || *map == nullptr) return;
    mapClearWith(*map, destroyKey, destroyValue);
    rbTreeTerm(&(*map)->tree);
    memFree(map);
}

void mapClear(Map* map) {
    mapClearWith(map, nullptr, nullptr);
}

void mapClearWith(Map* map, DestroyFunction destroyKey, DestroyFunction destroyValue) {
    if (map == nullptr) return;
    if (destroyKey == nullptr && destroyValue == nullptr)
        rbTreeClear(&map->tree);
    else
        rbTreeClearPairs(&map->tree, destroyKey, destroyValue);
    refreshCount(map);
}

bool mapInsert(Map* map, void* key, void* value) {
    if (map == nullptr) return false;
    auto* node = static_cast<MapNode*>(rbTreeInsertNode(&map->tree, key));
    if (node == nullptr) return false;
    node->value = value;
    refreshCount(map);
    return true;
}

void* mapGet(const Map* map, const void* key) {
    const MapNode* node = mapFindNode(map, key);
    return node == nullptr ? nullptr : node->value;
}

bool mapContains(const Map* map, const void* key) {
    return mapFindNode(map, key) != nullptr;
}

bool mapEraseKey(Map* map, const void* key, DestroyFunction destroyKey,
                 DestroyFunction destroyValue) {
    MapNode* node = mapFindNode(map, key);
    mapEraseNode(map, node, destroyKey, destroyValue);
    return node != nullptr;
}

void mapEraseNode(Map* map, MapNode* node, DestroyFunction destroyKey,
                  DestroyFunction destroyValue) {
    if (map == nullptr || node == nullptr) return;
    void* key = node->data;
    void* value = node->value;
    rbTreeEraseNode(&map->tree, node);
    refreshCount(map);
    endEntry(key, value, destroyKey, destroyValue);
}

bool mapReplaceNode(Map* map, MapNode* node, void* key, void* value, DestroyFunction destroyKey,
                    DestroyFunction destroyValue) {
    void* oldKey = node->data;
    void* oldValue = node->value;
    auto* fresh = static_cast<MapNode*>(rbTreeReplaceNode(&map->tree, node, key));
    if (fresh != nullptr) fresh->value = value;
    refreshCount(map);
    endEntry(oldKey, oldValue, destroyKey, destroyValue);
    return fresh != nullptr;
}

MapIterator* mapIterFirst(Map* map) {
    return makeIterator(map, mapFirstNode(map), 1);
}

MapIterator* mapIterLast(Map* map) {
    return makeIterator(map, mapLastNode(map), -1);
}

MapIterator* mapFind(Map* map, const void* key) {
    return makeIterator(map, mapFindNode(map, key), 0);
}

void mapIterDestroy(MapIterator** iterator) {
    if (iterator == nullptr || *iterator == nullptr) return;
    rbTreeIterTerm(&(*iterator)->iterator);
    memFree(iterator);
}

bool mapIterIsValid(const MapIterator* iterator) {
    return iterator != nullptr && rbTreeIterIsValid(&iterator->iterator);
}

void* mapIterKey(const MapIterator* iterator) {
    return mapIterIsValid(iterator) ? nodeOf(iterator)->data : nullptr;
}

void* mapIterValue(const MapIterator* iterator) {
    return mapIterIsValid(iterator) ? nodeOf(iterator)->value : nullptr;
}

bool mapIterSetValue(MapIterator* iterator, void* value, DestroyFunction destroy) {
    if (!mapIterIsValid(iterator)) return false;
    void* old = nodeOf(iterator)->value;
    nodeOf(iterator)->value = value;
    if (destroy != nullptr && old != nullptr) destroy(&old);
    return true;
}

bool mapIterNext(MapIterator** iterator) {
    if (iterator == nullptr || *iterator == nullptr) return false;
    RbTreeIterator* it = &(*iterator)->iterator;
    if (rbTreeIterStep(it)) return true;
    if (it->direction != 0 || !rbTreeIterIsValid(it)) mapIterDestroy(iterator);
    return false;
}

bool mapIterErase(MapIterator* iterator) {
    return mapIterEraseWith(iterator, nullptr, nullptr);
}

bool mapIterEraseWith(MapIterator* iterator, DestroyFunction destroyKey,
                      DestroyFunction destroyValue) {
    if (!mapIterIsValid(iterator)) return false;
    void* value = nodeOf(iterator)->value;
    rbTreeIterEraseWith(&iterator->iterator, destroyKey);
    refreshCount(iterator->owner);
    if (destroyValue != nullptr && value != nullptr) destroyValue(&value);
    return true;
}
