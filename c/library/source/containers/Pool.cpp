#include "containers/Pool.h"

#include <algorithm>

#include "containers/Memory.h"

struct PoolChunk {
    PoolChunk* older;
    void* unused;  // keeps the records behind the header at a multiple of 16
};

static_assert(sizeof(PoolChunk) == 16);

void poolInit(Pool* pool, uint32_t recordSize, uint32_t firstRecords) {
    if (pool == nullptr) return;
    *pool = Pool{};
    pool->recordSize = std::max<uint32_t>((recordSize + 7) & ~7u, sizeof(void*));
    const uint64_t wanted = sizeof(PoolChunk) + uint64_t{firstRecords} * pool->recordSize;
    const bool full = firstRecords == 0 || wanted > kPoolChunk;
    pool->firstChunk = full ? kPoolChunk : static_cast<uint32_t>(wanted);
    pool->nextChunk = pool->firstChunk;
}

void poolDestroy(Pool* pool) {
    if (pool == nullptr) return;
    while (pool->chunks != nullptr) {
        PoolChunk* chunk = pool->chunks;
        pool->chunks = chunk->older;
        memFree(&chunk);
    }
    pool->free = nullptr;
    pool->fresh = nullptr;
    pool->freshEnd = nullptr;
    pool->nextChunk = pool->firstChunk;
}

bool poolHasGrown(const Pool* pool) {
    return pool != nullptr && pool->chunks != nullptr && pool->chunks->older != nullptr;
}

// So that a record that fits into half a line of the cache never lies in two.
constexpr uintptr_t kAligned = 32;

// How far the records begin behind the header.
static size_t firstRecord(const Pool* pool, const PoolChunk* chunk) {
    if (pool->recordSize % kAligned != 0) return sizeof(PoolChunk);
    return sizeof(PoolChunk) + reinterpret_cast<uintptr_t>(chunk + 1) % kAligned;
}

// Adds a chunk of at least one record, all zeros, and makes its records the fresh ones.
static bool addChunk(Pool* pool) {
    const size_t bytes = std::max<size_t>(pool->nextChunk, kAligned + pool->recordSize);
    auto* chunk = static_cast<PoolChunk*>(memAllocZeros(bytes));
    if (chunk == nullptr) return false;
    chunk->older = pool->chunks;
    pool->chunks = chunk;
    const size_t first = firstRecord(pool, chunk);
    pool->fresh = reinterpret_cast<char*>(chunk) + first;
    pool->freshEnd = pool->fresh + (bytes - first) / pool->recordSize * pool->recordSize;
    pool->nextChunk = std::min(pool->nextChunk * kPoolGrowth, kPoolLargestChunk);
    return true;
}

void* poolTakeOfNewChunk(Pool* pool) {
    if (!addChunk(pool)) return nullptr;
    void* record = pool->fresh;
    pool->fresh += pool->recordSize;
    return record;
}
