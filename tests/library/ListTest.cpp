#include "containers/List.h"

#include <gtest/gtest.h>

#include <vector>

#include "ContainerElements.h"
#include "containers/Memory.h"

namespace {

Owned<List> listOf(int count) {
    Owned<List> list(listCreate());
    for (int i = 0; i < count; ++i) EXPECT_TRUE(listPushBack(list.get(), numbers[i]));
    return list;
}

std::vector<int> contents(const Owned<List>& list) {
    std::vector<int> result;
    for (ListNode* n = listFirstNode(list.get()); n != nullptr; n = listNextNode(list.get(), n))
        result.push_back(of(n->value));
    EXPECT_EQ(result.size(), listCount(list.get()));
    return result;
}

ListIterator* iteratorOn(List* list, int value, bool forward) {
    ListIterator* it = forward ? listIterFirst(list) : listIterLast(list);
    while (of(listIterValue(it)) != value) listIterNext(&it);
    return it;
}

// What a walk still delivers behind the present element.
std::vector<int> rest(ListIterator* it) {
    std::vector<int> result;
    while (listIterNext(&it)) result.push_back(of(listIterValue(it)));
    EXPECT_EQ(nullptr, it);
    return result;
}

}  // namespace

TEST(List, PushesAndPopsAtBothEnds) {
    const Owned<List> list(listCreate());
    EXPECT_EQ(nullptr, listPopFront(list.get()));
    EXPECT_EQ(nullptr, listIterFirst(list.get()));
    EXPECT_FALSE(listPushBack(list.get(), nullptr));
    for (int i = 0; i < 4; ++i) {
        listPushBack(list.get(), numbers[2 * i]);
        listPushFront(list.get(), numbers[2 * i + 1]);
    }
    EXPECT_EQ((std::vector<int>{7, 5, 3, 1, 0, 2, 4, 6}), contents(list));
    EXPECT_EQ(7, of(listPopFront(list.get())));
    EXPECT_EQ(6, of(listPopBack(list.get())));
    destroyed.clear();
    listClearWith(list.get(), noteDestroy);
    EXPECT_EQ((std::vector<int>{5, 3, 1, 0, 2, 4}), destroyed);
    EXPECT_TRUE(contents(list).empty());
}

TEST(List, NoCursorIsLeftOnAnElementThatOthersErased) {
    for (int round = 0; round < 2 * 5 * 32; ++round) {
        const bool forward = round % 2 == 0;
        const int on = round / 2 % 5;
        const int erased = round / 10;  // a bit for each element
        const Owned<List> list = listOf(5);
        ListIterator* it = iteratorOn(list.get(), on, forward);
        std::vector<int> expected;
        for (int n = on; n >= 0 && n < 5; n += forward ? 1 : -1)
            if (n != on && (erased >> n & 1) == 0) expected.push_back(n);
        for (int gone = 0; gone < 5; ++gone) {
            if ((erased >> gone & 1) == 0) continue;
            ListIterator* other = iteratorOn(list.get(), gone, !forward);
            listIterErase(&other);
            listIterDestroy(&other);
        }
        const bool alive = (erased >> on & 1) == 0;
        EXPECT_EQ(alive, listIterIsValid(it));
        EXPECT_EQ(alive ? on : -1, of(listIterValue(it)));
        EXPECT_EQ(alive, listIterSetValue(it, numbers[on], nullptr));
        EXPECT_EQ(expected, rest(it)) << on << " without " << erased;
    }
}

TEST(List, CursorsOutliveAClearAndTheList) {
    Owned<List> list = listOf(3);
    ListIterator* cleared = listIterFirst(list.get());
    ListIterator* orphan = listIterLast(list.get());
    listClear(list.get());
    EXPECT_FALSE(listIterIsValid(cleared));
    listPushBack(list.get(), numbers[5]);
    EXPECT_FALSE(listIterErase(&cleared));
    EXPECT_FALSE(listIterNext(&cleared));
    EXPECT_EQ(nullptr, cleared);
    list.reset();
    EXPECT_EQ(nullptr, listIterValue(orphan));
    EXPECT_FALSE(listIterNext(&orphan));
    EXPECT_EQ(nullptr, orphan);
}

TEST(List, ReusesItsNodesAndFailsWithTheAllocator) {
    const Owned<List> queue = listOf(4);
    memFailAfter(0, true);
    EXPECT_EQ(nullptr, listCreate());
    EXPECT_EQ(nullptr, listIterFirst(queue.get()));
    EXPECT_FALSE(listPushFront(queue.get(), numbers[1]));
    for (int i = 0; i < 1000; ++i)
        EXPECT_TRUE(listPushBack(queue.get(), listPopFront(queue.get())));
    memFailAfter(-1, false);
    EXPECT_EQ((std::vector<int>{0, 1, 2, 3}), contents(queue));
}
