#pragma once

#include <cstdint>

#include "containers/Compare.h"
#include "containers/Owned.h"
#include "containers/Pool.h"

// A red-black tree of pointers, which it does not own. Equal elements are kept,
// a later one to the right of the earlier ones; uniqueness is the caller's
// matter. A null tree is tolerated everywhere; null is refused as an element.

enum RbColor : uint32_t { kRbRed = 0, kRbBlack = 1 };

// Kinds of elements, as a tree's owner numbers them from 1.
enum RbKind : uint8_t {
    kRbNoKind = 0,      // of an element: it cannot be ordered by a key
    kRbAnyKind = 0,     // of a tree: empty, so the first element decides
    kRbMixedKind = 255  // of a tree: its elements are ordered by the comparison alone
};

// What a tree notes of an element beside its pointer, so that most comparisons
// need not look at the element. As long as all elements of a tree are of one
// kind the comparison must put them in one order, and the keys must agree with
// it; keys of different kinds say nothing about each other.
struct RbKeys {
    uint8_t (*kindOf)(const void* element);
    // The lower one goes first; where they are equal the comparison decides.
    uint64_t (*orderOf)(const void* element);
    // Of elements of one kind: whether they compare equal, and a number that is
    // equal then.
    bool (*equal)(const void* left, const void* right);
    uint32_t (*hashOf)(const void* element);
};

struct RbNode {
    void* data;
    RbNode* left;
    RbNode* right;
    RbNode* parent;
    uint64_t order;  // of the element's key
    RbColor color;
    uint32_t hash;  // of the element, while the tree has an index
};

// The node of a tree of pairs (`Map`): the key is `data`, so that a comparison
// reaches it without going through a record of the pair.
struct RbPairNode : RbNode {
    void* value;
};

struct RbIndex;
struct RbTreeIterator;

// Nodes come from a pool of the tree. The tree knows the iterators that stand
// on it, so that none of them is left on a node that is gone.
struct RbTree {
    RbNode* root;
    RbNode nil;  // in place: stands for every absent child and for the root's parent
    uint32_t count;
    bool pairs;    // nodes are RbPairNode
    bool unique;   // no two elements are known to compare equal
    uint8_t kind;  // an `RbKind`, or the kind of all elements
    CompareFunction compare;
    const RbKeys* keys;      // null: the comparison alone
    RbIndex* index;          // owned; of a large tree of pairs with one kind of keys, none equal
    mutable RbNode* recent;  // found last by the index: mostly it is asked for again
    Pool nodes;
    RbTreeIterator* iterators;
};

struct RbTreeIterator {
    RbTree* tree;
    RbNode* node;
    int8_t direction;  // +1, -1, or 0 for the result of a search, which never advances
    bool moved;        // the element was erased by others; `node` is the next one to deliver
    RbTreeIterator* nextIterator;
    RbTreeIterator* prevIterator;
};

// An empty tree, owned by the caller; null without a comparison and when memory
// runs out.
RbTree* rbTreeCreate(CompareFunction compare);

// Releases the tree and clears the caller's pointer. Iterators that are left
// stand on nothing from then on and can only be released.
void rbTreeDestroy(RbTree** tree);

// The same for a tree inside another record, which must not move in memory.
void rbTreeInit(RbTree* tree, CompareFunction compare, bool pairs, const RbKeys* keys = nullptr);
void rbTreeTerm(RbTree* tree);

// Adds an element; false for null and when memory runs out.
bool rbTreeInsert(RbTree* tree, void* data);

// Whether an element compares equal to the key.
bool rbTreeContains(const RbTree* tree, const void* key);

// Takes out all elements; with a callback each is ended, in order.
void rbTreeClear(RbTree* tree);
void rbTreeClearWith(RbTree* tree, DestroyFunction destroy);
// The same for a tree of pairs, with whichever of the callbacks are given.
void rbTreeClearPairs(RbTree* tree, DestroyFunction destroyKey, DestroyFunction destroyValue);

// Says that an element may change while it is in the tree: from now on, and
// until the tree is empty, each comparison looks at the elements themselves.
void rbTreeForgetKeys(RbTree* tree);

// ---- Nodes: for walks and searches inside one function, which need no iterator.
// All give null when there is none.

// Inserts and gives the new node.
RbNode* rbTreeInsertNode(RbTree* tree, void* data);
// The first node on the way down that compares equal: compare(key, element).
RbNode* rbTreeFindNode(const RbTree* tree, const void* key);
RbNode* rbTreeFirstNode(const RbTree* tree);
RbNode* rbTreeLastNode(const RbTree* tree);
RbNode* rbTreeNextNode(const RbTree* tree, const RbNode* node);
RbNode* rbTreePrevNode(const RbTree* tree, const RbNode* node);
// Takes the element of the node out. With two children the next element in order
// moves into this node, and that one's node is the one that goes; so no other
// node than `node` may be kept across this call. Iterators are taken care of.
void rbTreeEraseNode(RbTree* tree, RbNode* node);
// Takes the element of the node out and puts in one that compares equal to it,
// with the same result as one after the other, the shape of the tree included
// unless it is a large one; gives the new element's node, or null when memory
// runs out. The warning above holds.
RbNode* rbTreeReplaceNode(RbTree* tree, RbNode* node, void* data);

// Whether that would give the same node again and leave the rest of the tree as it
// is, for an element with the key of the old one.
bool rbTreeReplacesInPlace(const RbTree* tree, const RbNode* node, const void* data);

// ---- Iterators: for cursors that live while the tree changes.
// Inserting leaves them alone. When others erase the element of an iterator,
// and its node goes, the iterator is no longer valid and stands before the
// neighbour in its direction, which is what it delivers next; when its node
// stays, with the next element moved into it, the iterator stays on it; when its
// own element moves it goes along. After a clear it stands nowhere.

// On the first element going forward, on the last going backward, or on one
// equal to the key and going nowhere; null when there is none and when memory
// runs out. The caller releases it, unless a walk off the end has done so.
RbTreeIterator* rbTreeIterFirst(RbTree* tree);
RbTreeIterator* rbTreeIterLast(RbTree* tree);
RbTreeIterator* rbTreeFind(RbTree* tree, const void* key);
void rbTreeIterDestroy(RbTreeIterator** iterator);

// The same for an iterator inside another record, which must not move in memory.
void rbTreeIterInit(RbTreeIterator* iterator, RbTree* tree, RbNode* node, int8_t direction);
void rbTreeIterTerm(RbTreeIterator* iterator);
// Moves on; false at the end, where it then stands on nothing, and for direction 0.
bool rbTreeIterStep(RbTreeIterator* iterator);

// Makes it stand on nothing: the walk ends here.
void rbTreeIterLeave(RbTreeIterator* iterator);

// Whether the iterator stands on an element.
bool rbTreeIterIsValid(const RbTreeIterator* iterator);

// The element; null when the iterator is not valid.
void* rbTreeIterValue(const RbTreeIterator* iterator);

// Moves on in its direction. At the end the iterator is released, the caller's
// pointer cleared, and the result is false. One with direction 0 stays.
bool rbTreeIterNext(RbTreeIterator** iterator);

// Takes the element out. The iterator stands on nothing from then on: a walk
// ends here. False when it stood on nothing.
bool rbTreeIterErase(RbTreeIterator* iterator);
bool rbTreeIterEraseWith(RbTreeIterator* iterator, DestroyFunction destroy);

template <>
struct OwnedTraits<RbTree> {
    static void destroy(RbTree** tree) { rbTreeDestroy(tree); }
};
template <>
struct OwnedTraits<RbTreeIterator> {
    static void destroy(RbTreeIterator** iterator) { rbTreeIterDestroy(iterator); }
};
