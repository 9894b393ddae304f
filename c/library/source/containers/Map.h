#pragma once

#include <cstdint>

#include "containers/RbTree.h"

// Ordered pairs of pointers, which it does not own; equal keys are kept. Null is
// tolerated everywhere, refused as a key and allowed as a value. For a walk
// inside one function the node functions below do; an iterator is for a cursor
// that lives while the map changes, with the rules told in RbTree.h.

// An entry is the node itself: `data` is its key. The owner that an entry could
// name is always the one map whose tree it is in, so it is not stored.
using MapNode = RbPairNode;

struct Map {
    RbTree tree;                 // in place
    uint32_t count;              // of the tree, refreshed after each change
    CompareFunction keyCompare;  // on the keys; the tree's comparison, too
};

struct MapIterator {
    RbTreeIterator iterator;  // in place
    Map* owner;               // whose count an erase refreshes
};

// An empty map, owned by the caller; null without a comparison and when memory
// runs out. `keys` (may be null) is described in RbTree.h.
Map* mapCreate(CompareFunction keyCompare, const RbKeys* keys = nullptr);

// Releases the map and clears the caller's pointer; in the second form keys and
// values too, in order, by whichever of the callbacks are given.
void mapDestroy(Map** map);
void mapDestroyWith(Map** map, DestroyFunction destroyKey, DestroyFunction destroyValue);

// Takes out all entries; in the second form ending keys and values, in order.
void mapClear(Map* map);
void mapClearWith(Map* map, DestroyFunction destroyKey, DestroyFunction destroyValue);

// Adds an entry, whether there is one with an equal key or not; false for a null
// key and when memory runs out.
bool mapInsert(Map* map, void* key, void* value);

// The value of an entry with an equal key; null when there is none.
void* mapGet(const Map* map, const void* key);
bool mapContains(const Map* map, const void* key);

// Takes out one entry with an equal key and ends key and value by whichever of
// the callbacks are given; false when there was none.
bool mapEraseKey(Map* map, const void* key, DestroyFunction destroyKey,
                 DestroyFunction destroyValue);

inline uint32_t mapCount(const Map* map) {
    return map == nullptr ? 0 : map->count;
}

// Nodes, null when there is none; `mapEraseNode` with the warning of
// `rbTreeEraseNode`.
inline MapNode* mapFindNode(const Map* map, const void* key) {
    return map == nullptr ? nullptr : static_cast<MapNode*>(rbTreeFindNode(&map->tree, key));
}
inline MapNode* mapFirstNode(const Map* map) {
    return map == nullptr ? nullptr : static_cast<MapNode*>(rbTreeFirstNode(&map->tree));
}
inline MapNode* mapLastNode(const Map* map) {
    return map == nullptr ? nullptr : static_cast<MapNode*>(rbTreeLastNode(&map->tree));
}
inline MapNode* mapNextNode(const Map* map, const MapNode* node) {
    return static_cast<MapNode*>(rbTreeNextNode(&map->tree, node));
}
void mapEraseNode(Map* map, MapNode* node, DestroyFunction destroyKey,
                  DestroyFunction destroyValue);
// Takes the entry of a node out and puts in another with an equal key, as
// `rbTreeReplaceNode` does. False when memory runs out; the old entry has gone then.
bool mapReplaceNode(Map* map, MapNode* node, void* key, void* value, DestroyFunction destroyKey,
                    DestroyFunction destroyValue);

// Iterators, as those of RbTree.h.
MapIterator* mapIterFirst(Map* map);
MapIterator* mapIterLast(Map* map);
MapIterator* mapFind(Map* map, const void* key);
void mapIterDestroy(MapIterator** iterator);
bool mapIterIsValid(const MapIterator* iterator);
void* mapIterKey(const MapIterator* iterator);
void* mapIterValue(const MapIterator* iterator);
// Replaces the value. The old one is ended when a callback is given.
bool mapIterSetValue(MapIterator* iterator, void* value, DestroyFunction destroy);
bool mapIterNext(MapIterator** iterator);
bool mapIterErase(MapIterator* iterator);
bool mapIterEraseWith(MapIterator* iterator, DestroyFunction destroyKey,
                      DestroyFunction destroyValue);

template <>
struct OwnedTraits<Map> {
    static void destroy(Map** map) { mapDestroy(map); }
};
template <>
struct OwnedTraits<MapIterator> {
    static void destroy(MapIterator** iterator) { mapIterDestroy(iterator); }
};
