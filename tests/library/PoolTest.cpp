#include "containers/Pool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

#include "containers/Memory.h"

namespace {

struct Record {
    uint64_t link;
    uint32_t generation;
    uint32_t payload[5];
};

}  // namespace

TEST(Pool, GivesDistinctZeroedRecordsAndKeepsTheirGenerationAcrossAGive) {
    Pool pool;
    poolInit(&pool, sizeof(Record), 3);
    std::set<Record*> records;
    for (int i = 0; i < 5000; ++i) {
        auto* record = static_cast<Record*>(poolTake(&pool));
        ASSERT_NE(nullptr, record);
        EXPECT_EQ(0u, record->generation + record->payload[4]);
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(record) % 16);
        record->payload[4] = 7;
        EXPECT_TRUE(records.insert(record).second);
    }
    for (Record* record : records) {
        ++record->generation;
        poolGive(&pool, record);
    }
    for (int i = 0; i < 5000; ++i) {
        auto* record = static_cast<Record*>(poolTake(&pool));
        EXPECT_EQ(1u, record->generation);
        EXPECT_EQ(1u, records.erase(record));
    }
    poolDestroy(&pool);
}

TEST(Pool, FailsWithTheAllocatorOnlyAndGoesOnAfterIt) {
    Pool pool;
    poolInit(&pool, 40);
    memFailAfter(1, true);
    int taken = 0;
    while (poolTake(&pool) != nullptr) ++taken;
    memFailAfter(-1, false);
    EXPECT_EQ((int{kPoolChunk} - 16) / 40, taken);
    EXPECT_NE(nullptr, poolTake(&pool));
    poolDestroy(&pool);

    poolInit(&pool, 3 * kPoolChunk);
    EXPECT_NE(nullptr, poolTake(&pool));
    EXPECT_NE(nullptr, poolTake(&pool));
    poolDestroy(&pool);
}
