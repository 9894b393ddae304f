#include <gtest/gtest.h>

#include <vector>

#include "ContainerElements.h"
#include "containers/Map.h"
#include "containers/Set.h"

TEST(Set, KeepsDuplicatesAndItsCount) {
    const Owned<Set> set(setCreate(compareSigned));
    int32_t again = 3;
    for (const int key : {3, 1, 2}) EXPECT_TRUE(setInsert(set.get(), numbers[key]));
    EXPECT_TRUE(setInsert(set.get(), &again));
    EXPECT_FALSE(setInsert(set.get(), nullptr));
    EXPECT_EQ(4u, set->count);
    destroyed.clear();
    EXPECT_TRUE(setEraseValue(set.get(), numbers[3], noteDestroy));
    EXPECT_TRUE(setContains(set.get(), numbers[3]));
    EXPECT_TRUE(setEraseValue(set.get(), numbers[3], nullptr));
    EXPECT_FALSE(setEraseValue(set.get(), numbers[3], noteDestroy));
    EXPECT_EQ(2u, set->count);

    SetIterator* it = setFind(set.get(), numbers[1]);
    EXPECT_TRUE(setIterEraseWith(it, noteDestroy));
    EXPECT_EQ(1u, set->count);
    EXPECT_FALSE(setIterIsValid(it));
    EXPECT_FALSE(setIterNext(&it));
    EXPECT_EQ(nullptr, it);
    setClearWith(set.get(), noteDestroy);
    EXPECT_EQ(0u, set->count);
    EXPECT_EQ((std::vector<int>{3, 1, 2}), destroyed);
}

TEST(Map, KeepsValuesWithTheirKeysThroughEveryErase) {
    for (int gone = 0; gone < 20; ++gone) {
        const Owned<Map> map(mapCreate(compareSigned));
        for (int i = 0; i < 20; ++i) EXPECT_TRUE(mapInsert(map.get(), numbers[i], numbers[i + 20]));
        destroyed.clear();
        EXPECT_TRUE(mapEraseKey(map.get(), numbers[gone], noteDestroy, noteDestroy));
        EXPECT_FALSE(mapEraseKey(map.get(), numbers[gone], noteDestroy, noteDestroy));
        EXPECT_EQ((std::vector<int>{gone, gone + 20}), destroyed);
        EXPECT_EQ(19u, map->count);
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(i == gone ? -1 : i + 20, of(mapGet(map.get(), numbers[i])));
    }
}

TEST(Map, HoldsAnyNumberOfEntriesOfAKeyAndNullValues) {
    const Owned<Map> map(mapCreate(compareSigned));
    EXPECT_FALSE(mapInsert(map.get(), nullptr, numbers[1]));
    EXPECT_TRUE(mapInsert(map.get(), numbers[4], nullptr));
    EXPECT_TRUE(mapInsert(map.get(), numbers[4], nullptr));
    EXPECT_TRUE(mapEraseKey(map.get(), numbers[4], nullptr, noteDestroy));
    EXPECT_TRUE(mapContains(map.get(), numbers[4]));
    mapClearWith(map.get(), nullptr, noteDestroy);
    EXPECT_EQ(0u, map->count);
    EXPECT_EQ(nullptr, mapFirstNode(map.get()));
}

TEST(Map, ChangesThroughIterators) {
    const Owned<Map> map(mapCreate(compareSigned));
    for (int i = 0; i < 5; ++i) mapInsert(map.get(), numbers[i], numbers[i + 5]);
    destroyed.clear();
    std::vector<int> seen;
    MapIterator* it = mapIterLast(map.get());
    do {
        seen.push_back(of(mapIterKey(it)));
        seen.push_back(of(mapIterValue(it)));
        if (seen.back() == 7) {
            EXPECT_TRUE(mapIterSetValue(it, numbers[19], noteDestroy));
        }
    } while (mapIterNext(&it));
    EXPECT_EQ(nullptr, it);
    EXPECT_EQ((std::vector<int>{4, 9, 3, 8, 2, 7, 1, 6, 0, 5}), seen);
    EXPECT_EQ(19, of(mapGet(map.get(), numbers[2])));

    it = mapFind(map.get(), numbers[2]);
    EXPECT_TRUE(mapIterEraseWith(it, noteDestroy, noteDestroy));
    EXPECT_EQ((std::vector<int>{7, 2, 19}), destroyed);
    EXPECT_EQ(4u, map->count);
    EXPECT_EQ(nullptr, mapIterKey(it));
    mapIterDestroy(&it);
}
