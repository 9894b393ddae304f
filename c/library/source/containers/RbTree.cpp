#include "containers/RbTree.h"

#include "containers/Memory.h"
#include "containers/RbIndex.h"

namespace {

// Most trees are small; the pool doubles from here.
constexpr uint32_t kFirstNodes = 4;
// A way down of so few steps costs no more than a hash.
constexpr uint32_t kIndexFrom = 16;
// As long as keys order the tree its shape decides nothing. Should elements of
// another kind come in later it could, among elements that contradict each
// other; of so large a tree nobody can have a use for that.
constexpr uint32_t kExactShape = 4096;

using Side = RbNode* RbNode::*;

// Turns the edge between `node` and its child on the side `far`, so that the
// child comes to stand above it.
template <Side near, Side far>
void rotate(RbTree* tree, RbNode* node) {
    RbNode* child = node->*far;
    node->*far = child->*near;
    if (child->*near != &tree->nil) (child->*near)->parent = node;
    child->parent = node->parent;
    if (node->parent == &tree->nil)
        tree->root = child;
    else if (node == node->parent->*near)
        node->parent->*near = child;
    else
        node->parent->*far = child;
    child->*near = node;
    node->parent = child;
}

// One step of the repair after an insert, with the parent of the red `node` on
// the side `near` of the grandparent. Gives the node to go on with.
template <Side near, Side far>
RbNode* repairInsertStep(RbTree* tree, RbNode* node) {
    RbNode* grand = node->parent->parent;
    RbNode* uncle = grand->*far;
    if (uncle->color == kRbRed) {
        node->parent->color = kRbBlack;
        uncle->color = kRbBlack;
        grand->color = kRbRed;
        return grand;
    }
    if (node == node->parent->*far) {
        node = node->parent;
        rotate<near, far>(tree, node);
    }
    node->parent->color = kRbBlack;
    grand->color = kRbRed;
    rotate<far, near>(tree, grand);
    return node;
}

void repairInsert(RbTree* tree, RbNode* node) {
    while (node->parent->color == kRbRed) {
        if (node->parent == node->parent->parent->left)
            node = repairInsertStep<&RbNode::left, &RbNode::right>(tree, node);
        else
            node = repairInsertStep<&RbNode::right, &RbNode::left>(tree, node);
    }
    tree->root->color = kRbBlack;
}

// One step of the repair after an erase, with the `node` that lacks a black on
// the side `near` of its parent. Gives the node to go on with.
template <Side near, Side far>
RbNode* repairEraseStep(RbTree* tree, RbNode* node) {
    RbNode* parent = node->parent;
    RbNode* sibling = parent->*far;
    if (sibling->color == kRbRed) {
        sibling->color = kRbBlack;
        parent->color = kRbRed;
        rotate<near, far>(tree, parent);
        sibling = parent->*far;
    }
    if ((sibling->*near)->color == kRbBlack && (sibling->*far)->color == kRbBlack) {
        sibling->color = kRbRed;
        return parent;
    }
    if ((sibling->*far)->color == kRbBlack) {
        (sibling->*near)->color = kRbBlack;
        sibling->color = kRbRed;
        rotate<far, near>(tree, sibling);
        sibling = parent->*far;
    }
    sibling->color = parent->color;
    parent->color = kRbBlack;
    (sibling->*far)->color = kRbBlack;
    rotate<near, far>(tree, parent);
    return tree->root;
}

void repairErase(RbTree* tree, RbNode* node) {
    while (node != tree->root && node->color == kRbBlack) {
        if (node == node->parent->left)
            node = repairEraseStep<&RbNode::left, &RbNode::right>(tree, node);
        else
            node = repairEraseStep<&RbNode::right, &RbNode::left>(tree, node);
    }
    node->color = kRbBlack;
}

template <Side side>
RbNode* outermost(const RbTree* tree, RbNode* node) {
    while (node->*side != &tree->nil) node = node->*side;
    return node;
}

// The neighbour in order on the side `far`, or nil.
template <Side near, Side far>
RbNode* neighbour(const RbTree* tree, const RbNode* node) {
    if (node->*far != &tree->nil) return outermost<near>(tree, node->*far);
    RbNode* parent = node->parent;
    while (parent != &tree->nil && node == parent->*far) {
        node = parent;
        parent = parent->parent;
    }
    return parent;
}

RbNode* successor(const RbTree* tree, const RbNode* node) {
    return neighbour<&RbNode::left, &RbNode::right>(tree, node);
}

RbNode* predecessor(const RbTree* tree, const RbNode* node) {
    return neighbour<&RbNode::right, &RbNode::left>(tree, node);
}

// Lets the children come from memory while the elements are compared: one of
// them is needed next, and in a large tree the way down is made of such waits.
inline void fetchChildren(const RbNode* node) {
    __builtin_prefetch(node->left);
    __builtin_prefetch(node->right);
}

// Whether an order of keys says something about each element.
bool hasKeys(const RbTree* tree) {
    return tree->kind != kRbMixedKind && tree->kind != kRbAnyKind;
}

void setMixed(RbTree* tree) {
    tree->kind = kRbMixedKind;
    rbIndexDestroy(&tree->index);
}

void resetKeys(RbTree* tree) {
    tree->kind = tree->keys == nullptr ? kRbMixedKind : kRbAnyKind;
    tree->unique = true;
    tree->recent = nullptr;
    rbIndexDestroy(&tree->index);
}

// Whether the keys tell the order of the element among those of the tree.
bool isOrdered(const RbTree* tree, const void* data) {
    return hasKeys(tree) && tree->keys->kindOf(data) == tree->kind;
}

// Takes note of the kind of an element that comes in.
void noteKind(RbTree* tree, const void* data) {
    if (tree->keys == nullptr || tree->kind == kRbMixedKind) return;
    const uint8_t kind = tree->keys->kindOf(data);
    if (kind == kRbNoKind || (tree->kind != kRbAnyKind && tree->kind != kind))
        setMixed(tree);
    else
        tree->kind = kind;
}

// The order of an element, with its key, and the one of a node.
int compareByKey(const RbTree* tree, uint64_t order, const void* data, const RbNode* node) {
    if (order != node->order) return order < node->order ? -1 : 1;
    return tree->compare(data, node->data);
}

// Where an element goes that is not in the tree: a free place below a node.
struct RbPlace {
    RbNode* parent;
    RbNode** child;
};

template <typename Compare>
RbPlace freePlace(RbTree* tree, Compare compare) {
    RbNode* nil = &tree->nil;
    RbPlace place{nil, &tree->root};
    while (*place.child != nil) {
        place.parent = *place.child;
        fetchChildren(place.parent);
        place.child = compare(place.parent) < 0 ? &place.parent->left : &place.parent->right;
    }
    return place;
}

template <typename Compare>
RbNode* search(const RbTree* tree, Compare compare) {
    RbNode* node = tree->root;
    while (node != &tree->nil) {
        fetchChildren(node);
        const int order = compare(node);
        if (order == 0) return node;
        node = order < 0 ? node->left : node->right;
    }
    return nullptr;
}

void noteInIndex(RbTree* tree, RbNode* node) {
    node->hash = tree->keys->hashOf(node->data);
    if (!rbIndexAdd(tree->index, node)) rbIndexDestroy(&tree->index);
}

// Adds a new node to the index, and makes one where it begins to pay.
void indexNewNode(RbTree* tree, RbNode* node) {
    if (tree->index != nullptr) return noteInIndex(tree, node);
    if (tree->count != kIndexFrom || !tree->pairs || !tree->unique || !hasKeys(tree)) return;
    tree->index = rbIndexCreate(tree->count);
    for (RbNode* at = rbTreeFirstNode(tree); at != nullptr && tree->index != nullptr;
         at = rbTreeNextNode(tree, at))
        noteInIndex(tree, at);
}

RbNode* insertAt(RbTree* tree, RbPlace place, RbNode* node, void* data, uint64_t order) {
    RbNode* nil = &tree->nil;
    *node = RbNode{data, nil, nil, place.parent, order, kRbRed, 0};
    *place.child = node;
    repairInsert(tree, node);
    ++tree->count;
    return node;
}

RbNode* orNull(const RbTree* tree, RbNode* node) {
    return node == &tree->nil ? nullptr : node;
}

// Takes care of the iterators when `node` loses its element and `spliced`, the
// node itself or its successor, goes.
void moveIterators(RbTree* tree, RbNode* node, const RbNode* spliced) {
    for (RbTreeIterator* it = tree->iterators; it != nullptr; it = it->nextIterator) {
        if (it->node == spliced && spliced != node) {
            it->node = node;
        } else if (it->node == node && spliced == node) {
            it->node = it->direction > 0   ? successor(tree, node)
                       : it->direction < 0 ? predecessor(tree, node)
                                           : &tree->nil;
            it->moved = true;
        } else if (it->node == node && it->moved && it->direction < 0) {
            // It was to deliver the element that goes; the one that moves in here
            // lies behind it already.
            it->node = predecessor(tree, node);
        }
    }
}

// Makes the tree empty; the elements have been seen to.
void dropNodes(RbTree* tree) {
    for (RbTreeIterator* it = tree->iterators; it != nullptr; it = it->nextIterator)
        it->node = &tree->nil;
    tree->root = &tree->nil;
    tree->count = 0;
    resetKeys(tree);
    poolDestroy(&tree->nodes);
}

RbTreeIterator* makeIterator(RbTree* tree, RbNode* node, int8_t direction) {
    if (node == nullptr) return nullptr;
    auto* it = memNew<RbTreeIterator>();
    if (it != nullptr) rbTreeIterInit(it, tree, node, direction);
    return it;
}

}  // namespace

RbTree* rbTreeCreate(CompareFunction compare) {
    if (compare == nullptr) return nullptr;
    RbTree* tree = memNew<RbTree>();
    if (tree != nullptr) rbTreeInit(tree, compare, false);
    return tree;
}

void rbTreeDestroy(RbTree** tree) {
    if (tree == nullptr || *tree == nullptr) return;
    rbTreeTerm(*tree);
    memFree(tree);
}

void rbTreeInit(RbTree* tree, CompareFunction compare, bool pairs, const RbKeys* keys) {
    RbNode* nil = &tree->nil;
    *nil = RbNode{nullptr, nil, nil, nil, 0, kRbBlack, 0};
    tree->root = nil;
    tree->count = 0;
    tree->pairs = pairs;
    tree->compare = compare;
    tree->keys = keys;
    tree->index = nullptr;
    resetKeys(tree);
    tree->iterators = nullptr;
    poolInit(&tree->nodes, pairs ? sizeof(RbPairNode) : sizeof(RbNode), kFirstNodes);
}

void rbTreeTerm(RbTree* tree) {
    if (tree == nullptr) return;
    dropNodes(tree);
    for (RbTreeIterator* it = tree->iterators; it != nullptr; it = it->nextIterator)
        it->tree = nullptr;
}

bool rbTreeInsert(RbTree* tree, void* data) {
    return rbTreeInsertNode(tree, data) != nullptr;
}

RbNode* rbTreeInsertNode(RbTree* tree, void* data) {
    if (tree == nullptr || data == nullptr) return nullptr;
    auto* node = static_cast<RbNode*>(poolTake(&tree->nodes));
    if (node == nullptr) return nullptr;
    noteKind(tree, data);
    uint64_t order = 0;
    RbPlace place;
    if (hasKeys(tree)) {
        order = tree->keys->orderOf(data);
        place = freePlace(tree, [&](const RbNode* at) {
            const int found = compareByKey(tree, order, data, at);
            if (found == 0) tree->unique = false;
            return found;
        });
        if (!tree->unique) rbIndexDestroy(&tree->index);
    } else {
        place = freePlace(tree, [&](const RbNode* at) { return tree->compare(data, at->data); });
    }
    insertAt(tree, place, node, data, order);
    indexNewNode(tree, node);
    return node;
}

bool rbTreeContains(const RbTree* tree, const void* key) {
    return rbTreeFindNode(tree, key) != nullptr;
}

void rbTreeClear(RbTree* tree) {
    rbTreeClearWith(tree, nullptr);
}

void rbTreeClearWith(RbTree* tree, DestroyFunction destroy) {
    if (tree == nullptr) return;
    if (destroy != nullptr) {
        for (RbNode* node = rbTreeFirstNode(tree); node != nullptr;
             node = rbTreeNextNode(tree, node))
            destroy(&node->data);
    }
    dropNodes(tree);
}

void rbTreeClearPairs(RbTree* tree, DestroyFunction destroyKey, DestroyFunction destroyValue) {
    if (tree == nullptr || !tree->pairs) return;
    for (RbNode* node = rbTreeFirstNode(tree); node != nullptr; node = rbTreeNextNode(tree, node)) {
        void** value = &static_cast<RbPairNode*>(node)->value;
        if (destroyKey != nullptr) destroyKey(&node->data);
        if (destroyValue != nullptr && *value != nullptr) destroyValue(value);
    }
    dropNodes(tree);
}

RbNode* rbTreeFindNode(const RbTree* tree, const void* key) {
    if (tree == nullptr || key == nullptr) return nullptr;
    if (!isOrdered(tree, key))
        return search(tree, [&](const RbNode* at) { return tree->compare(key, at->data); });
    const RbKeys* keys = tree->keys;
    if (tree->index != nullptr) {
        RbNode* recent = tree->recent;
        if (recent != nullptr && keys->equal(key, recent->data)) return recent;
        recent = rbIndexFind(tree->index, keys->hashOf(key),
                             [&](const RbNode* at) { return keys->equal(key, at->data); });
        if (recent != nullptr) tree->recent = recent;
        return recent;
    }
    const uint64_t order = keys->orderOf(key);
    return search(tree, [&](const RbNode* at) { return compareByKey(tree, order, key, at); });
}

void rbTreeForgetKeys(RbTree* tree) {
    if (tree != nullptr) setMixed(tree);
}

RbNode* rbTreeFirstNode(const RbTree* tree) {
    if (tree == nullptr || tree->root == &tree->nil) return nullptr;
    return outermost<&RbNode::left>(tree, tree->root);
}

RbNode* rbTreeLastNode(const RbTree* tree) {
    if (tree == nullptr || tree->root == &tree->nil) return nullptr;
    return outermost<&RbNode::right>(tree, tree->root);
}

RbNode* rbTreeNextNode(const RbTree* tree, const RbNode* node) {
    return orNull(tree, successor(tree, node));
}

RbNode* rbTreePrevNode(const RbTree* tree, const RbNode* node) {
    return orNull(tree, predecessor(tree, node));
}

void rbTreeEraseNode(RbTree* tree, RbNode* node) {
    if (tree == nullptr || node == nullptr || node == &tree->nil) return;
    RbNode* nil = &tree->nil;
    const bool single = node->left == nil || node->right == nil;
    RbNode* spliced = single ? node : outermost<&RbNode::left>(tree, node->right);
    if (tree->iterators != nullptr) moveIterators(tree, node, spliced);
    tree->recent = nullptr;

    RbNode* child = spliced->left != nil ? spliced->left : spliced->right;
    child->parent = spliced->parent;  // of nil too: the repair goes up from there
    if (spliced->parent == nil)
        tree->root = child;
    else if (spliced == spliced->parent->left)
        spliced->parent->left = child;
    else
        spliced->parent->right = child;

    if (tree->index != nullptr) rbIndexRemove(tree->index, node);
    if (spliced != node) {
        if (tree->index != nullptr) rbIndexMove(tree->index, spliced, node);
        node->data = spliced->data;
        node->order = spliced->order;
        node->hash = spliced->hash;
        if (tree->pairs)
            static_cast<RbPairNode*>(node)->value = static_cast<RbPairNode*>(spliced)->value;
    }
    if (spliced->color == kRbBlack) repairErase(tree, child);
    poolGive(&tree->nodes, spliced);
    --tree->count;
    if (tree->count != 0) return;
    resetKeys(tree);
    // What a large tree left behind goes back to the allocator.
    if (poolHasGrown(&tree->nodes)) poolDestroy(&tree->nodes);
}

// A red leaf comes to stand where it stood, and the rest of the tree does not notice.
bool rbTreeReplacesInPlace(const RbTree* tree, const RbNode* node, const void* data) {
    const RbNode* nil = &tree->nil;
    const bool isRedLeaf = node->color == kRbRed && node->left == nil && node->right == nil;
    return (isRedLeaf || tree->count > kExactShape) && tree->unique && isOrdered(tree, data);
}

// The one free place between the neighbours of what has gone is where the way
// down from the root would end: as long as keys order the tree no comparison is
// needed to find it.
RbNode* rbTreeReplaceNode(RbTree* tree, RbNode* node, void* data) {
    RbNode* nil = &tree->nil;
    if (rbTreeReplacesInPlace(tree, node, data)) {
        node->data = data;
        return node;
    }
    if (tree->count == 1 || !tree->unique || !isOrdered(tree, data)) {
        rbTreeEraseNode(tree, node);
        return rbTreeInsertNode(tree, data);
    }
    const bool twoChildren = node->left != nil && node->right != nil;
    RbNode* before = predecessor(tree, node);
    RbNode* behind = twoChildren ? node : successor(tree, node);
    const uint32_t hash = node->hash;
    const uint64_t order = node->order;
    rbTreeEraseNode(tree, node);
    auto* fresh = static_cast<RbNode*>(poolTake(&tree->nodes));
    if (fresh == nullptr) return nullptr;
    const bool isLeft = behind != nil && behind->left == nil;
    const RbPlace place = isLeft ? RbPlace{behind, &behind->left} : RbPlace{before, &before->right};
    insertAt(tree, place, fresh, data, order);
    fresh->hash = hash;
    if (tree->index != nullptr && !rbIndexAdd(tree->index, fresh)) rbIndexDestroy(&tree->index);
    return fresh;
}

RbTreeIterator* rbTreeIterFirst(RbTree* tree) {
    return makeIterator(tree, rbTreeFirstNode(tree), 1);
}

RbTreeIterator* rbTreeIterLast(RbTree* tree) {
    return makeIterator(tree, rbTreeLastNode(tree), -1);
}

RbTreeIterator* rbTreeFind(RbTree* tree, const void* key) {
    return makeIterator(tree, rbTreeFindNode(tree, key), 0);
}

void rbTreeIterDestroy(RbTreeIterator** iterator) {
    if (iterator == nullptr || *iterator == nullptr) return;
    rbTreeIterTerm(*iterator);
    memFree(iterator);
}

void rbTreeIterInit(RbTreeIterator* iterator, RbTree* tree, RbNode* node, int8_t direction) {
    *iterator = RbTreeIterator{tree, node, direction, false, tree->iterators, nullptr};
    if (tree->iterators != nullptr) tree->iterators->prevIterator = iterator;
    tree->iterators = iterator;
}

void rbTreeIterTerm(RbTreeIterator* iterator) {
    if (iterator->nextIterator != nullptr)
        iterator->nextIterator->prevIterator = iterator->prevIterator;
    if (iterator->prevIterator != nullptr)
        iterator->prevIterator->nextIterator = iterator->nextIterator;
    else if (iterator->tree != nullptr)
        iterator->tree->iterators = iterator->nextIterator;
}

bool rbTreeIterStep(RbTreeIterator* iterator) {
    RbTree* tree = iterator->tree;
    if (tree == nullptr || iterator->node == &tree->nil || iterator->direction == 0) return false;
    if (!iterator->moved)
        iterator->node = iterator->direction > 0 ? successor(tree, iterator->node)
                                                 : predecessor(tree, iterator->node);
    iterator->moved = false;
    return iterator->node != &tree->nil;
}

void rbTreeIterLeave(RbTreeIterator* iterator) {
    iterator->node = &iterator->tree->nil;
    iterator->moved = false;
}

bool rbTreeIterIsValid(const RbTreeIterator* iterator) {
    return iterator != nullptr && iterator->tree != nullptr && !iterator->moved &&
           iterator->node != &iterator->tree->nil;
}

void* rbTreeIterValue(const RbTreeIterator* iterator) {
    return rbTreeIterIsValid(iterator) ? iterator->node->data : nullptr;
}

bool rbTreeIterNext(RbTreeIterator** iterator) {
    if (iterator == nullptr || *iterator == nullptr) return false;
    if (rbTreeIterStep(*iterator)) return true;
    if ((*iterator)->direction != 0 || !rbTreeIterIsValid(*iterator)) rbTreeIterDestroy(iterator);
    return false;
}

bool rbTreeIterErase(RbTreeIterator* iterator) {
    return rbTreeIterEraseWith(iterator, nullptr);
}

bool rbTreeIterEraseWith(RbTreeIterator* iterator, DestroyFunction destroy) {
    if (!rbTreeIterIsValid(iterator)) return false;
    void* data = iterator->node->data;
    rbTreeEraseNode(iterator->tree, iterator->node);
    rbTreeIterLeave(iterator);
    if (destroy != nullptr) destroy(&data);
    return true;
}
