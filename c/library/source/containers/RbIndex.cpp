#include "containers/RbIndex.h"

#include "containers/Memory.h"
#include "containers/RbTree.h"

namespace {

constexpr uint32_t kLeastPlaces = 32;

RbIndexEntry* makeEntries(uint32_t places) {
    return static_cast<RbIndexEntry*>(memAllocZeros(sizeof(RbIndexEntry) * places));
}

// Whether so many nodes are as much as the places hold.
bool isFull(uint64_t count, uint64_t places) {
    return count * 16 > places * 13;
}

void place(RbIndex* index, RbNode* node) {
    uint32_t at = node->hash & index->mask;
    while (index->entries[at] != 0) at = (at + 1) & index->mask;
    const RbIndexEntry tag = node->hash >> 16;
    index->entries[at] = reinterpret_cast<RbIndexEntry>(node) | tag << kRbAddressBits;
}

bool grow(RbIndex* index) {
    const uint32_t oldPlaces = index->mask + 1;
    if (oldPlaces > UINT32_MAX / 2) return false;
    RbIndexEntry* old = index->entries;
    RbIndexEntry* larger = makeEntries(oldPlaces * 2);
    if (larger == nullptr) return false;
    index->entries = larger;
    index->mask = oldPlaces * 2 - 1;
    for (uint32_t at = 0; at < oldPlaces; ++at)
        if (old[at] != 0) place(index, rbIndexNode(old[at]));
    memFree(&old);
    return true;
}

uint32_t placeOf(const RbIndex* index, const RbNode* node) {
    uint32_t at = node->hash & index->mask;
    while (rbIndexNode(index->entries[at]) != node) at = (at + 1) & index->mask;
    return at;
}

}  // namespace

RbIndex* rbIndexCreate(uint32_t count) {
    uint64_t places = kLeastPlaces;
    while (isFull(count, places)) places *= 2;
    if (places > UINT32_MAX) return nullptr;
    auto* index = memNew<RbIndex>();
    if (index == nullptr) return nullptr;
    index->entries = makeEntries(static_cast<uint32_t>(places));
    index->mask = static_cast<uint32_t>(places) - 1;
    index->count = 0;
    if (index->entries == nullptr) memFree(&index);
    return index;
}

void rbIndexDestroy(RbIndex** index) {
    if (index == nullptr || *index == nullptr) return;
    memFree(&(*index)->entries);
    memFree(index);
}

bool rbIndexAdd(RbIndex* index, RbNode* node) {
    if (isFull(uint64_t{index->count} + 1, uint64_t{index->mask} + 1) && !grow(index)) return false;
    place(index, node);
    ++index->count;
    return true;
}

// What stands behind the gap moves up as far as its own place lets it, so that
// no search ends too early.
void rbIndexRemove(RbIndex* index, const RbNode* node) {
    uint32_t gap = placeOf(index, node);
    for (uint32_t at = (gap + 1) & index->mask; index->entries[at] != 0;
         at = (at + 1) & index->mask) {
        const uint32_t home = rbIndexNode(index->entries[at])->hash & index->mask;
        if (((at - home) & index->mask) < ((at - gap) & index->mask)) continue;
        index->entries[gap] = index->entries[at];
        gap = at;
    }
    index->entries[gap] = 0;
    --index->count;
}

void rbIndexMove(RbIndex* index, const RbNode* from, RbNode* to) {
    RbIndexEntry& entry = index->entries[placeOf(index, from)];
    entry ^= reinterpret_cast<RbIndexEntry>(from) ^ reinterpret_cast<RbIndexEntry>(to);
}
