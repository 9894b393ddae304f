#include "containers/List.h"

#include "containers/Memory.h"

namespace {

// Most lists are short; the pool doubles from here.
constexpr uint32_t kFirstNodes = 4;

bool insertBetween(List* list, ListNode* prev, ListNode* next, void* value) {
    auto* node = static_cast<ListNode*>(poolTake(&list->nodes));
    if (node == nullptr) return false;
    *node = ListNode{value, next, prev};
    prev->next = node;
    next->prev = node;
    ++list->count;
    return true;
}

// Moves the iterators of a node that goes to its neighbours.
void leaveNode(List* list, const ListNode* node) {
    for (ListIterator* it = list->iterators; it != nullptr; it = it->nextIterator) {
        if (it->node != node) continue;
        it->node = it->direction < 0 ? node->prev : node->next;
        it->moved = true;
    }
}

// Empties the list; the elements have been seen to.
void dropNodes(List* list) {
    for (ListIterator* it = list->iterators; it != nullptr; it = it->nextIterator) {
        it->node = &list->sentinel;
        it->moved = true;
    }
    list->sentinel.next = &list->sentinel;
    list->sentinel.prev = &list->sentinel;
    list->count = 0;
    poolDestroy(&list->nodes);
}

ListIterator* makeIterator(List* list, ListNode* node, int8_t direction) {
    if (node == nullptr) return nullptr;
    auto* it =
        memNew<ListIterator>(ListIterator{list, node, direction, false, list->iterators, nullptr});
    if (it == nullptr) return nullptr;
    if (it->nextIterator != nullptr) it->nextIterator->prevIterator = it;
    list->iterators = it;
    return it;
}

}  // namespace

List* listCreate() {
    List* list = memNew<List>();
    if (list == nullptr) return nullptr;
    list->sentinel.next = &list->sentinel;
    list->sentinel.prev = &list->sentinel;
    poolInit(&list->nodes, sizeof(ListNode), kFirstNodes);
    return list;
}

void listDestroy(List** list) {
    listDestroyWith(list, nullptr);
}

void listDestroyWith(List** list, DestroyFunction destroy) {
    if (list == nullptr || *list == nullptr) return;
    listClearWith(*list, destroy);
    for (ListIterator* it = (*list)->iterators; it != nullptr; it = it->nextIterator)
        it->list = nullptr;
    memFree(list);
}

void listClear(List* list) {
    listClearWith(list, nullptr);
}

void listClearWith(List* list, DestroyFunction destroy) {
    if (list == nullptr) return;
    if (destroy != nullptr) {
        for (ListNode* node = listFirstNode(list); node != nullptr; node = listNextNode(list, node))
            destroy(&node->value);
    }
    dropNodes(list);
}

bool listPushBack(List* list, void* value) {
    return list != nullptr && value != nullptr &&
           insertBetween(list, list->sentinel.prev, &list->sentinel, value);
}

bool listPushFront(List* list, void* value) {
    return list != nullptr && value != nullptr &&
           insertBetween(list, &list->sentinel, list->sentinel.next, value);
}

void* listPopFront(List* list) {
    return listEraseNode(list, listFirstNode(list));
}

void* listPopBack(List* list) {
    return listEraseNode(list, listLastNode(list));
}

void* listEraseNode(List* list, ListNode* node) {
    if (list == nullptr || node == nullptr) return nullptr;
    void* value = node->value;
    leaveNode(list, node);
    node->prev->next = node->next;
    node->next->prev = node->prev;
    poolGive(&list->nodes, node);
    --list->count;
    // What a long list left behind goes back to the allocator.
    if (list->count == 0 && poolHasGrown(&list->nodes)) poolDestroy(&list->nodes);
    return value;
}

ListIterator* listIterFirst(List* list) {
    return makeIterator(list, listFirstNode(list), 1);
}

ListIterator* listIterLast(List* list) {
    return makeIterator(list, listLastNode(list), -1);
}

void listIterDestroy(ListIterator** iterator) {
    if (iterator == nullptr || *iterator == nullptr) return;
    ListIterator* it = *iterator;
    if (it->nextIterator != nullptr) it->nextIterator->prevIterator = it->prevIterator;
    if (it->prevIterator != nullptr)
        it->prevIterator->nextIterator = it->nextIterator;
    else if (it->list != nullptr)
        it->list->iterators = it->nextIterator;
    memFree(iterator);
}

bool listIterIsValid(const ListIterator* iterator) {
    return iterator != nullptr && iterator->list != nullptr && !iterator->moved;
}

void* listIterValue(const ListIterator* iterator) {
    return listIterIsValid(iterator) ? iterator->node->value : nullptr;
}

bool listIterSetValue(ListIterator* iterator, void* value, DestroyFunction destroy) {
    if (!listIterIsValid(iterator) || value == nullptr) return false;
    void* old = iterator->node->value;
    iterator->node->value = value;
    if (destroy != nullptr) destroy(&old);
    return true;
}

bool listIterInsertAfter(ListIterator* iterator, void* value) {
    if (!listIterIsValid(iterator) || value == nullptr) return false;
    ListNode* node = iterator->node;
    if (!insertBetween(iterator->list, node, node->next, value)) return false;
    iterator->node = node->next;
    return true;
}

bool listIterErase(ListIterator** iterator) {
    return listIterEraseWith(iterator, nullptr);
}

bool listIterEraseWith(ListIterator** iterator, DestroyFunction destroy) {
    if (iterator == nullptr || !listIterIsValid(*iterator)) return false;
    ListIterator* it = *iterator;
    List* list = it->list;
    ListNode* next = it->node->next;
    void* value = listEraseNode(list, it->node);
    it->node = next;
    it->moved = false;
    if (next == &list->sentinel) listIterDestroy(iterator);
    if (destroy != nullptr) destroy(&value);
    return true;
}

bool listIterNext(ListIterator** iterator) {
    if (iterator == nullptr || *iterator == nullptr) return false;
    ListIterator* it = *iterator;
    if (it->list != nullptr) {
        if (!it->moved) it->node = it->direction < 0 ? it->node->prev : it->node->next;
        it->moved = false;
        if (it->node != &it->list->sentinel) return true;
    }
    listIterDestroy(iterator);
    return false;
}
