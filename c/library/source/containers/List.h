#pragma once

#include <cstdint>

#include "containers/Compare.h"
#include "containers/Owned.h"
#include "containers/Pool.h"

// A doubly linked list of pointers, which it does not own; the functions whose
// name ends in `With` end the elements with a callback. Null is tolerated
// everywhere. A null value is refused.

struct ListNode {
    void* value;
    ListNode* next;
    ListNode* prev;
};

struct ListIterator;

// The nodes come from a pool of the list, which also keeps it dense in memory.
// The list knows the iterators that stand on it, so that none of them is left
// on a node that is gone.
struct List {
    ListNode sentinel;  // links to itself when the list is empty; holds no value
    uint32_t count;
    Pool nodes;
    ListIterator* iterators;
};

struct ListIterator {
    List* list;
    ListNode* node;
    int8_t direction;  // +1 along next, -1 along prev
    bool moved;        // the element was erased by others; `node` is the next one to deliver
    ListIterator* nextIterator;
    ListIterator* prevIterator;
};

// An empty list, owned by the caller; null when memory runs out.
List* listCreate();

// Releases the list and clears the caller's pointer. Iterators that are left
// stand on nothing from then on and can only be released.
void listDestroy(List** list);
void listDestroyWith(List** list, DestroyFunction destroy);

// Takes out all elements, the first one first.
void listClear(List* list);
void listClearWith(List* list, DestroyFunction destroy);

// Adds a value; false for a null value and when memory runs out.
bool listPushBack(List* list, void* value);
bool listPushFront(List* list, void* value);

// Takes the first or last element out and gives it; null on an empty list.
void* listPopFront(List* list);
void* listPopBack(List* list);

inline uint32_t listCount(const List* list) {
    return list == nullptr ? 0 : list->count;
}

// Walking without an iterator: `for (n = listFirstNode(l); n; n =
// listNextNode(l, n))`. Null on an empty list and at the end.
inline ListNode* listFirstNode(const List* list) {
    return listCount(list) == 0 ? nullptr : list->sentinel.next;
}
inline ListNode* listLastNode(const List* list) {
    return listCount(list) == 0 ? nullptr : list->sentinel.prev;
}
inline ListNode* listNextNode(const List* list, const ListNode* node) {
    return node->next == &list->sentinel ? nullptr : node->next;
}
inline ListNode* listPrevNode(const List* list, const ListNode* node) {
    return node->prev == &list->sentinel ? nullptr : node->prev;
}

// Takes a node of the list out and gives its element; null for null.
void* listEraseNode(List* list, ListNode* node);

// An iterator on the first element, going forward, or on the last, going
// backward; null on an empty list and when memory runs out. The caller
// releases it with `listIterDestroy`, unless a walk off the end has done so.
ListIterator* listIterFirst(List* list);
ListIterator* listIterLast(List* list);
void listIterDestroy(ListIterator** iterator);

// Whether the iterator still stands on the element that it was moved to: not
// when others have erased it or cleared the list.
bool listIterIsValid(const ListIterator* iterator);

// The element; null when it is gone.
void* listIterValue(const ListIterator* iterator);

// Replaces the element. The old one is ended when a callback is given.
bool listIterSetValue(ListIterator* iterator, void* value, DestroyFunction destroy);

// Inserts behind the iterator's element and moves onto the new one. False for a
// null value, when the element is gone, and when memory runs out.
bool listIterInsertAfter(ListIterator* iterator, void* value);

// Takes the element out and moves to the next one in list order, whatever the
// direction; behind the last one the iterator is released and the caller's
// pointer cleared. False when there was nothing to erase.
bool listIterErase(ListIterator** iterator);
bool listIterEraseWith(ListIterator** iterator, DestroyFunction destroy);

// Moves on in its direction. At the end the iterator is released, the caller's
// pointer cleared, and the result is false. When others have erased the element
// the walk goes on with the one that followed it.
bool listIterNext(ListIterator** iterator);

template <>
struct OwnedTraits<List> {
    static void destroy(List** list) { listDestroy(list); }
};
template <>
struct OwnedTraits<ListIterator> {
    static void destroy(ListIterator** iterator) { listIterDestroy(iterator); }
};
