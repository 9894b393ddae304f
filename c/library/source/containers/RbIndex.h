#pragma once

#include <cstdint>

struct RbNode;

// Finds the nodes of a tree by the hash of their elements: open addressing, at
// most three quarters full. It only saves time; a tree that has no memory for
// one does without.

struct RbIndexEntry {
    RbNode* node;  // null where the place is free
    uint32_t hash;
};

struct RbIndex {
    RbIndexEntry* entries;  // owned
    uint32_t mask;          // places, a power of two, less one
    uint32_t count;
};

// An empty index with room for `count` nodes, owned by the caller; null when
// memory runs out.
RbIndex* rbIndexCreate(uint32_t count);
void rbIndexDestroy(RbIndex** index);

// Adds a node that is not there; false when memory runs out.
bool rbIndexAdd(RbIndex* index, uint32_t hash, RbNode* node);
// Takes out a node that is there.
void rbIndexRemove(RbIndex* index, uint32_t hash, const RbNode* node);
// Notes that an element that was at `from` is at `to`.
void rbIndexMove(RbIndex* index, uint32_t hash, const RbNode* from, RbNode* to);

// The first node of the hash for which `fits` is true; null without one.
template <typename Fits>
RbNode* rbIndexFind(const RbIndex* index, uint32_t hash, Fits fits) {
    for (uint32_t at = hash & index->mask;; at = (at + 1) & index->mask) {
        const RbIndexEntry& entry = index->entries[at];
        if (entry.node == nullptr || (entry.hash == hash && fits(entry.node))) return entry.node;
    }
}
