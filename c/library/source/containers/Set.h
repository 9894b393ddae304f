#pragma once

#include <cstdint>

#include "containers/RbTree.h"

// An ordered collection of pointers, which it does not own; equal elements are
// kept. Null is tolerated everywhere and refused as an element. For a walk inside
// one function the node functions of RbTree.h on `tree` do; an iterator is for a
// cursor that lives while the set changes, with the rules told there.

struct Set {
    RbTree tree;     // in place; its data are the elements
    uint32_t count;  // of the tree, refreshed after each change
};

struct SetIterator {
    RbTreeIterator iterator;  // in place
    Set* owner;               // whose count an erase refreshes
};

// An empty set, owned by the caller; null without a comparison and when memory
// runs out. `keys` (may be null) is described in RbTree.h.
Set* setCreate(CompareFunction compare, const RbKeys* keys = nullptr);

// Releases the set and clears the caller's pointer; with a callback the elements
// too, in order.
void setDestroy(Set** set);
void setDestroyWith(Set** set, DestroyFunction destroy);

// Takes out all elements; with a callback each is ended, in order.
void setClear(Set* set);
void setClearWith(Set* set, DestroyFunction destroy);

// Adds an element, an equal one or not; false when memory runs out.
bool setInsert(Set* set, void* element);

// Whether an element compares equal to the value.
bool setContains(const Set* set, const void* value);

// Takes out one element equal to the value, and ends it when a callback is
// given; false when there was none.
bool setEraseValue(Set* set, const void* value, DestroyFunction destroy);

// Takes the element of a node out, with the warning of `rbTreeEraseNode`.
void setEraseNode(Set* set, RbNode* node, DestroyFunction destroy);

inline uint32_t setCount(const Set* set) {
    return set == nullptr ? 0 : set->count;
}

// Iterators, as those of RbTree.h.
SetIterator* setIterFirst(Set* set);
SetIterator* setIterLast(Set* set);
SetIterator* setFind(Set* set, const void* value);
void setIterDestroy(SetIterator** iterator);
bool setIterIsValid(const SetIterator* iterator);
void* setIterValue(const SetIterator* iterator);
bool setIterNext(SetIterator** iterator);
bool setIterErase(SetIterator* iterator);
bool setIterEraseWith(SetIterator* iterator, DestroyFunction destroy);

template <>
struct OwnedTraits<Set> {
    static void destroy(Set** set) { setDestroy(set); }
};
template <>
struct OwnedTraits<SetIterator> {
    static void destroy(SetIterator** iterator) { setIterDestroy(iterator); }
};
