#include "containers/Set.h"

#include "containers/Memory.h"

namespace {

void refreshCount(Set* set) {
    set->count = set->tree.count;
}

SetIterator* makeIterator(Set* set, RbNode* node, int8_t direction) {
    if (node == nullptr) return nullptr;
    auto* it = memNew<SetIterator>();
    if (it == nullptr) return nullptr;
    rbTreeIterInit(&it->iterator, &set->tree, node, direction);
    it->owner = set;
    return it;
}

const RbTree* treeOf(const Set* set) {
    return set == nullptr ? nullptr : &set->tree;
}

}  // namespace

Set* setCreate(CompareFunction compare, const RbKeys* keys) {
    if (compare == nullptr) return nullptr;
    Set* set = memNew<Set>();
    if (set != nullptr) rbTreeInit(&set->tree, compare, false, keys);
    return set;
}

void setDestroy(Set** set) {
    setDestroyWith(set, nullptr);
}

void setDestroyWith(Set** set, DestroyFunction destroy) {
    if (set == nullptr || *set == nullptr) return;
    rbTreeClearWith(&(*set)->tree, destroy);
    rbTreeTerm(&(*set)->tree);
    memFree(set);
}

void setClear(Set* set) {
    setClearWith(set, nullptr);
}

void setClearWith(Set* set, DestroyFunction destroy) {
    if (set == nullptr) return;
    rbTreeClearWith(&set->tree, destroy);
    refreshCount(set);
}

bool setInsert(Set* set, void* element) {
    if (set == nullptr || !rbTreeInsert(&set->tree, element)) return false;
    refreshCount(set);
    return true;
}

bool setContains(const Set* set, const void* value) {
    return rbTreeContains(treeOf(set), value);
}

bool setEraseValue(Set* set, const void* value, DestroyFunction destroy) {
    RbNode* node = rbTreeFindNode(treeOf(set), value);
    setEraseNode(set, node, destroy);
    return node != nullptr;
}

void setEraseNode(Set* set, RbNode* node, DestroyFunction destroy) {
    if (set == nullptr || node == nullptr) return;
    void* element = node->data;
    rbTreeEraseNode(&set->tree, node);
    refreshCount(set);
    if (destroy != nullptr) destroy(&element);
}

SetIterator* setIterFirst(Set* set) {
    return makeIterator(set, rbTreeFirstNode(treeOf(set)), 1);
}

SetIterator* setIterLast(Set* set) {
    return makeIterator(set, rbTreeLastNode(treeOf(set)), -1);
}

SetIterator* setFind(Set* set, const void* value) {
    return makeIterator(set, rbTreeFindNode(treeOf(set), value), 0);
}

void setIterDestroy(SetIterator** iterator) {
    if (iterator == nullptr || *iterator == nullptr) return;
    rbTreeIterTerm(&(*iterator)->iterator);
    memFree(iterator);
}

bool setIterIsValid(const SetIterator* iterator) {
    return iterator != nullptr && rbTreeIterIsValid(&iterator->iterator);
}

void* setIterValue(const SetIterator* iterator) {
    return iterator == nullptr ? nullptr : rbTreeIterValue(&iterator->iterator);
}

bool setIterNext(SetIterator** iterator) {
    if (iterator == nullptr || *iterator == nullptr) return false;
    RbTreeIterator* it = &(*iterator)->iterator;
    if (rbTreeIterStep(it)) return true;
    if (it->direction != 0 || !rbTreeIterIsValid(it)) setIterDestroy(iterator);
    return false;
}

bool setIterErase(SetIterator* iterator) {
    return setIterEraseWith(iterator, nullptr);
}

bool setIterEraseWith(SetIterator* iterator, DestroyFunction destroy) {
    if (!setIterIsValid(iterator)) return false;
    rbTreeIterEraseWith(&iterator->iterator, destroy);
    refreshCount(iterator->owner);
    return true;
}
