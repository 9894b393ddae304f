#include <gtest/gtest.h>

#include <vector>

#include "containers/Map.h"
#include "containers/Memory.h"
#include "containers/Set.h"

namespace {

int32_t numbers[20] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19};

int of(const void* value) {
    return value == nullptr ? -1 : *static_cast<const int32_t*>(value);
}

std::vector<int> destroyed;
void noteDestroy(void** element) {
    destroyed.push_back(of(*element));
    *element = nullptr;
}

}  // namespace

TEST(Set, KeepsDuplicatesAndItsCount) {
    const Owned<Set> set(setCreate(compareSigned));
    int32_t again = 3;
    for (const int key : {3, 1, 2}) EXPECT_TRUE(setInsert(set.get(), &numbers[key]));
    EXPECT_TRUE(setInsert(set.get(), &again));
    EXPECT_FALSE(setInsert(set.get(), nullptr));
    EXPECT_EQ(4u, set->count);
    destroyed.clear();
    EXPECT_TRUE(setEraseValue(set.get(), &numbers[3], noteDestroy));
    EXPECT_TRUE(setContains(set.get(), &numbers[3]));
    EXPECT_TRUE(setEraseValue(set.get(), &numbers[3], nullptr));
    EXPECT_FALSE(setEraseValue(set.get(), &numbers[3], noteDestroy));
    EXPECT_EQ(2u, set->count);

    SetIterator* it = setFind(set.get(), &numbers[1]);
    EXPECT_TRUE(setIterEraseWith(it, noteDestroy));
    EXPECT_EQ(1u, set->count);
    EXPECT_FALSE(setIterIsValid(it));
    EXPECT_FALSE(setIterNext(&it));
    EXPECT_EQ(nullptr, it);
    setClearWith(set.get(), noteDestroy);
    EXPECT_EQ(0u, set->count);
    EXPECT_EQ((std::vector<int>{3, 1, 2}), destroyed);
}

TEST(Set, WalksBothWaysWhileItChanges) {
    const Owned<Set> set(setCreate(compareSigned));
    for (int i = 0; i < 20; i += 2) setInsert(set.get(), &numbers[i]);
    std::vector<int> seen;
    for (SetIterator* it = setIterFirst(set.get()); it != nullptr; setIterNext(&it)) {
        seen.push_back(of(setIterValue(it)));
        if (seen.back() % 4 == 0) setInsert(set.get(), &numbers[seen.back() + 1]);
        if (seen.back() % 2 == 1) setEraseValue(set.get(), &numbers[seen.back() - 1], nullptr);
    }
    EXPECT_EQ((std::vector<int>{0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 16, 17, 18}), seen);
    seen.clear();
    for (SetIterator* it = setIterLast(set.get()); it != nullptr; setIterNext(&it))
        seen.push_back(of(setIterValue(it)));
    EXPECT_EQ((std::vector<int>{18, 17, 14, 13, 10, 9, 6, 5, 2, 1}), seen);
}

TEST(Map, HoldsAnyNumberOfEntriesOfAKey) {
    const Owned<Map> map(mapCreate(compareSigned));
    for (int i = 0; i < 10; ++i) EXPECT_TRUE(mapInsert(map.get(), &numbers[i], &numbers[i + 10]));
    EXPECT_FALSE(mapInsert(map.get(), nullptr, &numbers[1]));
    EXPECT_TRUE(mapInsert(map.get(), &numbers[4], nullptr));
    EXPECT_EQ(11u, map->count);
    EXPECT_EQ(nullptr, mapGet(map.get(), &numbers[15]));

    destroyed.clear();
    EXPECT_TRUE(mapEraseKey(map.get(), &numbers[3], noteDestroy, noteDestroy));
    EXPECT_FALSE(mapEraseKey(map.get(), &numbers[3], noteDestroy, noteDestroy));
    EXPECT_EQ((std::vector<int>{3, 13}), destroyed);
    // The values travel with their keys when nodes are joined.
    for (const int key : {0, 1, 2, 5, 6, 7, 8, 9})
        EXPECT_EQ(key + 10, of(mapGet(map.get(), &numbers[key])));
    EXPECT_TRUE(mapEraseKey(map.get(), &numbers[4], nullptr, nullptr));
    EXPECT_TRUE(mapContains(map.get(), &numbers[4]));
    EXPECT_EQ(9u, map->count);
    mapClearWith(map.get(), nullptr, noteDestroy);
    EXPECT_EQ(0u, map->count);
    EXPECT_EQ(mapFirstNode(map.get()), nullptr);
}

TEST(Map, ChangesThroughIterators) {
    const Owned<Map> map(mapCreate(compareSigned));
    for (int i = 0; i < 5; ++i) mapInsert(map.get(), &numbers[i], &numbers[i + 5]);
    destroyed.clear();
    std::vector<int> seen;
    MapIterator* it = mapIterLast(map.get());
    do {
        seen.push_back(of(mapIterKey(it)));
        seen.push_back(of(mapIterValue(it)));
        if (seen.back() == 7) {
            EXPECT_TRUE(mapIterSetValue(it, &numbers[19], noteDestroy));
        }
    } while (mapIterNext(&it));
    EXPECT_EQ(nullptr, it);
    EXPECT_EQ((std::vector<int>{4, 9, 3, 8, 2, 7, 1, 6, 0, 5}), seen);
    EXPECT_EQ(19, of(mapGet(map.get(), &numbers[2])));

    it = mapFind(map.get(), &numbers[2]);
    EXPECT_TRUE(mapIterEraseWith(it, noteDestroy, noteDestroy));
    EXPECT_EQ((std::vector<int>{7, 2, 19}), destroyed);
    EXPECT_EQ(4u, map->count);
    EXPECT_EQ(nullptr, mapIterKey(it));
    mapIterDestroy(&it);
}

TEST(Map, IsSmallAndFailsCleanly) {
    Owned<Map> map(mapCreate(compareSigned));
    memFailAfter(0, true);
    EXPECT_FALSE(mapInsert(map.get(), &numbers[0], &numbers[1]));
    EXPECT_EQ(nullptr, setCreate(compareSigned));
    memFailAfter(-1, false);
    EXPECT_EQ(0u, map->count);
    EXPECT_LE(sizeof(MapNode), 48u) << "a pair with two small values stays below 200 bytes";
}
