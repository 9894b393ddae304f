#include "containers/RbIndex.h"

#include <cstring>

#include "containers/Memory.h"

namespace {

constexpr uint32_t kLeastPlaces = 32;

RbIndexEntry* makeEntries(uint32_t places) {
    const size_t bytes = sizeof(RbIndexEntry) * places;
    auto* entries = static_cast<RbIndexEntry*>(memAlloc(bytes));
    if (entries != nullptr) std::memset(static_cast<void*>(entries), 0, bytes);
    return entries;
}

void place(RbIndex* index, RbIndexEntry entry) {
    uint32_t at = entry.hash & index->mask;
    while (index->entries[at].node != nullptr) at = (at + 1) & index->mask;
    index->entries[at] = entry;
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
        if (old[at].node != nullptr) place(index, old[at]);
    memFree(&old);
    return true;
}

uint32_t placeOf(const RbIndex* index, uint32_t hash, const RbNode* node) {
    uint32_t at = hash & index->mask;
    while (index->entries[at].node != node) at = (at + 1) & index->mask;
    return at;
}

}  // namespace

RbIndex* rbIndexCreate(uint32_t count) {
    uint64_t places = kLeastPlaces;
    while (places * 3 < uint64_t{count} * 4) places *= 2;
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

bool rbIndexAdd(RbIndex* index, uint32_t hash, RbNode* node) {
    if ((uint64_t{index->count} + 1) * 4 > (uint64_t{index->mask} + 1) * 3 && !grow(index))
        return false;
    place(index, {node, hash});
    ++index->count;
    return true;
}

// What stands behind the gap moves up as far as its own place lets it, so that
// no search ends too early.
void rbIndexRemove(RbIndex* index, uint32_t hash, const RbNode* node) {
    uint32_t gap = placeOf(index, hash, node);
    for (uint32_t at = (gap + 1) & index->mask; index->entries[at].node != nullptr;
         at = (at + 1) & index->mask) {
        const uint32_t home = index->entries[at].hash & index->mask;
        if (((at - home) & index->mask) < ((at - gap) & index->mask)) continue;
        index->entries[gap] = index->entries[at];
        gap = at;
    }
    index->entries[gap].node = nullptr;
    --index->count;
}

void rbIndexMove(RbIndex* index, uint32_t hash, const RbNode* from, RbNode* to) {
    index->entries[placeOf(index, hash, from)].node = to;
}
