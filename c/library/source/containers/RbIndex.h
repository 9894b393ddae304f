#pragma once

#include <cstdint>

struct RbNode;

// Finds the nodes of a tree by the hash of their elements: open addressing, at
// most thirteen sixteenths full. It only saves time; a tree that has no memory
// for one does without.

// A place: a node with sixteen bits of its hash above the bits of its address, so
// that a table is small enough to stay at hand, and few nodes are looked at in
// vain. 0 where it is free.
using RbIndexEntry = uint64_t;

struct RbIndex {
    RbIndexEntry* entries;  // owned
    uint32_t mask;          // places, a power of two, less one
    uint32_t count;
};

constexpr int kRbAddressBits = 48;
static_assert(sizeof(void*) == sizeof(RbIndexEntry));

inline RbNode* rbIndexNode(RbIndexEntry entry) {
    return reinterpret_cast<RbNode*>(entry & ((RbIndexEntry{1} << kRbAddressBits) - 1));
}

// An empty index with room for `count` nodes, owned by the caller; null when
// memory runs out.
RbIndex* rbIndexCreate(uint32_t count);
void rbIndexDestroy(RbIndex** index);

// Adds a node that is not there, with the hash that stands in it; false when
// memory runs out.
bool rbIndexAdd(RbIndex* index, RbNode* node);
// Takes out a node that is there.
void rbIndexRemove(RbIndex* index, const RbNode* node);
// Notes that the element of `from`, whose hash stands there still, is at `to`.
void rbIndexMove(RbIndex* index, const RbNode* from, RbNode* to);

// The first node of the hash for which `fits` is true; null without one.
template <typename Fits>
RbNode* rbIndexFind(const RbIndex* index, uint32_t hash, Fits fits) {
    for (uint32_t at = hash & index->mask;; at = (at + 1) & index->mask) {
        const RbIndexEntry entry = index->entries[at];
        if (entry == 0) return nullptr;
        RbNode* node = rbIndexNode(entry);
        if (entry >> kRbAddressBits == hash >> 16 && fits(node)) return node;
    }
}
