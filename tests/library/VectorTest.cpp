#include "containers/Vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "containers/PointerStack.h"

namespace {

struct Item {
    int32_t key;
    int serial;
};

std::vector<Item> makeItems(const std::vector<int32_t>& keys) {
    std::vector<Item> items;
    for (const int32_t key : keys) items.push_back({key, static_cast<int>(items.size())});
    return items;
}

Owned<Vector> vectorOf(std::vector<Item>& items) {
    Owned<Vector> vector(vectorCreate());
    for (Item& item : items) EXPECT_TRUE(vectorAppend(vector.get(), &item));
    return vector;
}

const Item& at(const Owned<Vector>& vector, uint32_t index) {
    return *static_cast<Item*>(vectorGet(vector.get(), index));
}

std::vector<int> serials(const Owned<Vector>& vector) {
    std::vector<int> result;
    for (uint32_t i = 0; i < vector->size; ++i) result.push_back(at(vector, i).serial);
    return result;
}

}  // namespace

TEST(Vector, CopiesWithTheSortedFlagAndGrowsFromNothing) {
    std::vector<Item> items = makeItems({3, 1, 2});
    const Owned<Vector> vector = vectorOf(items);
    vectorSort(vector.get(), compareSigned);
    Owned<Vector> copy(vectorClone(vector.get()));
    EXPECT_EQ(3u, copy->capacity);
    EXPECT_EQ(1, copy->sorted);
    EXPECT_EQ(serials(vector), serials(copy));

    const Owned<Vector> none(vectorCreateSized(0));
    EXPECT_EQ(nullptr, none->data);
    copy.reset(vectorClone(none.get()));
    EXPECT_TRUE(vectorAppend(copy.get(), &items[0]));
    EXPECT_TRUE(vectorCopyFrom(copy.get(), vector.get()));
    EXPECT_TRUE(vectorResize(copy.get(), 2));
    EXPECT_EQ((std::vector<int>{1, 2}), serials(copy));
}

TEST(Vector, TurnsTiesRoundOnlyWhenItMerges) {
    for (const int size : {2, 37, 38, 39, 70, 300}) {
        std::vector<Item> items = makeItems(std::vector<int32_t>(size, 5));
        const Owned<Vector> vector = vectorOf(items);
        vectorSort(vector.get(), compareSigned);
        for (int i = 0; i < size; ++i)
            EXPECT_EQ(size <= 37 ? i : size - 1 - i, at(vector, i).serial) << size;
    }
}

TEST(Vector, SortsAnythingAndFindsInIt) {
    std::mt19937 random(1);
    for (const int size : {0, 1, 36, 37, 38, 64, 65, 1000}) {
        std::vector<int32_t> keys;
        for (int i = 0; i < size; ++i) keys.push_back(static_cast<int32_t>(random() % 500) * 2);
        std::vector<Item> items = makeItems(keys);
        const Owned<Vector> vector = vectorOf(items);
        std::sort(keys.begin(), keys.end());
        for (int pass = 0; pass < 2; ++pass) {
            for (int32_t key = -1; key < 20; ++key) {
                const int64_t index = vectorFind(vector.get(), &key, compareSigned);
                ASSERT_EQ(std::binary_search(keys.begin(), keys.end(), key), index >= 0);
                ASSERT_TRUE(index < 0 || at(vector, static_cast<uint32_t>(index)).key == key);
            }
            vectorSort(vector.get(), compareSigned);
        }
        for (int i = 0; i < size; ++i) EXPECT_EQ(keys[i], at(vector, i).key);
    }
}

TEST(Vector, BelievesItsSortedFlag) {
    std::vector<Item> items = makeItems({3, 1, 2});
    const Owned<Vector> vector = vectorOf(items);
    vectorSort(vector.get(), [](const void* a, const void* b) { return compareSigned(b, a); });
    vectorSort(vector.get(), compareSigned);
    EXPECT_EQ(3, at(vector, 0).key) << "a second sort does nothing";
    const int32_t key = 3;
    EXPECT_EQ(-1, vectorFind(vector.get(), &key, compareSigned)) << "halves of another order";
    vectorSet(vector.get(), 0, &items[0]);
    vectorSort(vector.get(), compareSigned);
    EXPECT_EQ(1, at(vector, 0).key);
}

TEST(PointerStack, GivesBackInReverse) {
    std::vector<Item> items = makeItems(std::vector<int32_t>(30, 0));
    const Owned<PointerStack> stack(pointerStackCreate());
    EXPECT_FALSE(pointerStackPush(stack.get(), nullptr));
    for (Item& item : items) EXPECT_TRUE(pointerStackPush(stack.get(), &item));
    EXPECT_EQ(&items[29], pointerStackPeek(stack.get()));
    for (int i = 29; i >= 0; --i) EXPECT_EQ(&items[i], pointerStackPop(stack.get()));
    EXPECT_EQ(nullptr, pointerStackPop(stack.get()));
}
