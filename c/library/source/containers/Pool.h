#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Records of one size, cut from chunks of the library's allocator. Taking and
// giving back cost a few instructions; memory goes back to the allocator only
// with the whole pool. Of a record that was given back the pool overwrites
// nothing but the eight bytes of its link, so that what the user keeps beside
// them (a generation number) can still be read and stands there again when the
// record is taken anew. A pool belongs to one thread at a time.

struct PoolChunk;

struct Pool {
    void* free;   // records given back, linked through their first bytes
    char* fresh;  // records never taken so far, in the newest chunk
    char* freshEnd;
    PoolChunk* chunks;  // owned, the newest first
    uint32_t recordSize;
    uint32_t firstChunk;  // bytes of the first chunk; later ones are larger
    uint32_t nextChunk;
};

// A full first chunk in bytes, or one record where that is larger. Later chunks
// grow up to the largest: room that is not taken yet costs no memory, and the
// system gives large pieces in large pages.
constexpr uint32_t kPoolChunk = 64 * 1024;
constexpr uint32_t kPoolGrowth = 4;
constexpr uint32_t kPoolLargestChunk = 32 * 1024 * 1024;

// Makes an empty pool; no memory is asked for before the first take. The size
// is rounded up to a multiple of 8, and records are aligned to 16 when it is one
// of 16. With `firstRecords` the first chunk holds about that many records; 0
// begins with the full chunk.
void poolInit(Pool* pool, uint32_t recordSize, uint32_t firstRecords = 0);

// Releases every record at once. The pool can be used again, as if new.
void poolDestroy(Pool* pool);

// `poolTake` where no record is at hand. Not for callers.
void* poolTakeOfNewChunk(Pool* pool);

// Whether the pool holds more than its first chunk.
bool poolHasGrown(const Pool* pool);

// Gives a record, or null when memory runs out. It is all zeros when it is taken
// for the first time; later it holds what its last owner and the link left there.
inline void* poolTake(Pool* pool) {
    void* record = pool->free;
    if (record != nullptr) {
        std::memcpy(&pool->free, record, sizeof(void*));
        return record;
    }
    record = pool->fresh;
    if (record == pool->freshEnd) return poolTakeOfNewChunk(pool);
    pool->fresh += pool->recordSize;
    return record;
}

// Takes a record of this pool back.
inline void poolGive(Pool* pool, void* record) {
    std::memcpy(record, &pool->free, sizeof(void*));
    pool->free = record;
}
