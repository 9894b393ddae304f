#include "containers/RbTree.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <random>
#include <set>
#include <vector>

#include "ContainerElements.h"

namespace {

// Black height of a subtree; checks colours, order and parents on the way.
int blackHeight(const RbTree* tree, const RbNode* node) {
    if (node == &tree->nil) return 1;
    for (const RbNode* child : {node->left, node->right}) {
        if (child == &tree->nil) continue;
        EXPECT_EQ(node, child->parent);
        EXPECT_FALSE(node->color == kRbRed && child->color == kRbRed);
        const bool ordered = child == node->left ? of(child->data) <= of(node->data)
                                                 : of(child->data) >= of(node->data);
        EXPECT_TRUE(ordered);
    }
    const int left = blackHeight(tree, node->left);
    EXPECT_EQ(left, blackHeight(tree, node->right));
    return left + (node->color == kRbBlack ? 1 : 0);
}

Owned<RbTree> treeOf(int count) {
    Owned<RbTree> tree(rbTreeCreate(compareSigned));
    for (int i = 0; i < count; ++i) EXPECT_TRUE(rbTreeInsert(tree.get(), numbers[i]));
    return tree;
}

void eraseKey(RbTree* tree, int key) {
    rbTreeEraseNode(tree, rbTreeFindNode(tree, numbers[key]));
}

RbTreeIterator* iteratorOn(RbTree* tree, int value, bool forward) {
    RbTreeIterator* it = forward ? rbTreeIterFirst(tree) : rbTreeIterLast(tree);
    while (of(rbTreeIterValue(it)) != value) rbTreeIterNext(&it);
    return it;
}

std::vector<int> rest(RbTreeIterator* it) {
    std::vector<int> result;
    while (rbTreeIterNext(&it)) result.push_back(of(rbTreeIterValue(it)));
    EXPECT_EQ(nullptr, it);
    return result;
}

}  // namespace

TEST(RbTree, StaysBalancedAndOrderedThroughRandomChanges) {
    std::mt19937 random(7);
    const Owned<RbTree> tree(rbTreeCreate(compareSigned));
    std::multiset<int> model;
    for (int round = 0; round < 6000; ++round) {
        const int key = static_cast<int>(random() % 64);
        const bool growing = round / 1000 % 2 == 0;
        if (random() % 4 < (growing ? 3u : 1u)) {
            EXPECT_TRUE(rbTreeInsert(tree.get(), numbers[key]));
            model.insert(key);
        } else if (model.count(key) != 0) {
            eraseKey(tree.get(), key);
            model.erase(model.find(key));
        }
        EXPECT_EQ(model.count(key) != 0, rbTreeContains(tree.get(), numbers[key]));
        ASSERT_EQ(model.size(), tree->count);
        if (round % 50 != 0) continue;
        EXPECT_EQ(kRbBlack, tree->root->color);
        blackHeight(tree.get(), tree->root);
        auto expected = model.begin();
        for (RbNode* n = rbTreeFirstNode(tree.get()); n != nullptr;
             n = rbTreeNextNode(tree.get(), n), ++expected) {
            ASSERT_NE(model.end(), expected);
            EXPECT_EQ(*expected, of(n->data));
        }
        EXPECT_EQ(model.end(), expected);
    }
}

TEST(RbTree, PutsEqualElementsToTheRightAndFindsTheFirstOnTheWayDown) {
    const int32_t key = 5;
    int32_t same[3] = {5, 5, 5};
    const Owned<RbTree> tree(rbTreeCreate(compareSigned));
    for (int32_t& element : same) rbTreeInsert(tree.get(), &element);
    EXPECT_EQ(&same[1], tree->root->data);
    EXPECT_EQ(&same[0], tree->root->left->data);
    Owned<RbTreeIterator> found(rbTreeFind(tree.get(), &key));
    EXPECT_EQ(&same[1], rbTreeIterValue(found.get()));
    RbTreeIterator* it = found.get();
    EXPECT_FALSE(rbTreeIterNext(&it)) << "a search never advances";
    EXPECT_EQ(found.get(), it);
    EXPECT_TRUE(rbTreeIterErase(it));
    EXPECT_EQ(&same[2], tree->root->data) << "the next in order moves into the node";
    EXPECT_FALSE(rbTreeIterErase(it));
}

TEST(RbTree, ACursorFollowsItsElementAndLosesNoNeighbour) {
    constexpr int kCount = 12;
    for (const bool forward : {true, false}) {
        for (int on = 0; on < kCount; ++on) {
            for (int gone = 0; gone < kCount; ++gone) {
                const Owned<RbTree> tree = treeOf(kCount);
                RbTreeIterator* it = iteratorOn(tree.get(), on, forward);
                const RbNode* node = it->node;
                const bool twoChildren = node->left != &tree->nil && node->right != &tree->nil;
                eraseKey(tree.get(), gone);
                std::vector<int> expected;
                for (int n = on; n >= 0 && n < kCount; n += forward ? 1 : -1)
                    if (n != on && n != gone) expected.push_back(n);
                if (on == gone && twoChildren) {
                    // The node stays, with the next element in it.
                    EXPECT_EQ(on + 1, of(rbTreeIterValue(it)));
                    if (forward) expected.erase(expected.begin());
                } else {
                    EXPECT_EQ(on == gone ? -1 : on, of(rbTreeIterValue(it)));
                    EXPECT_EQ(on != gone, rbTreeIterIsValid(it));
                }
                EXPECT_EQ(expected, rest(it)) << on << " without " << gone;
            }
        }
    }
}

TEST(RbTree, CursorsOutliveTheirEraseAClearAndTheTree) {
    Owned<RbTree> tree = treeOf(7);
    RbTreeIterator* cleared = rbTreeIterFirst(tree.get());
    RbTreeIterator* orphan = rbTreeIterLast(tree.get());
    RbTreeIterator* it = iteratorOn(tree.get(), 3, true);
    destroyed.clear();
    EXPECT_TRUE(rbTreeIterEraseWith(it, noteDestroy));
    EXPECT_EQ(nullptr, rbTreeIterValue(it));
    EXPECT_FALSE(rbTreeIterNext(&it)) << "erasing ends the walk";
    rbTreeClearWith(tree.get(), noteDestroy);
    EXPECT_EQ((std::vector<int>{3, 0, 1, 2, 4, 5, 6}), destroyed);
    EXPECT_EQ(nullptr, rbTreeIterFirst(tree.get()));
    rbTreeInsert(tree.get(), numbers[1]);
    EXPECT_FALSE(rbTreeIterIsValid(cleared));
    EXPECT_FALSE(rbTreeIterNext(&cleared));
    tree.reset();
    EXPECT_FALSE(rbTreeIterIsValid(orphan));
    EXPECT_FALSE(rbTreeIterNext(&orphan));
}

// Keys of whole numbers: even and odd ones are two kinds, one has none, and
// neighbours share an order.
constexpr RbKeys kNumberKeys = {
    [](const void* element) {
        const int value = of(element);
        return static_cast<uint8_t>(value == 63 ? kRbNoKind : 1 + value % 2);
    },
    [](const void* element) { return static_cast<uint64_t>(of(element) / 4); },
    [](const void* left, const void* right) { return of(left) == of(right); },
    [](const void* element) { return static_cast<uint32_t>(of(element) % 5); },
};

void expectSameShape(const RbTree* left, const RbNode* a, const RbTree* right, const RbNode* b) {
    if (a == &left->nil || b == &right->nil) {
        EXPECT_TRUE(a == &left->nil && b == &right->nil);
        return;
    }
    EXPECT_EQ(a->data, b->data);
    EXPECT_EQ(a->color, b->color);
    expectSameShape(left, a->left, right, b->left);
    expectSameShape(left, a->right, right, b->right);
}

// With keys, an index and the short way to replace, a tree must come out as
// without them.
TEST(RbTree, KeysChangeNothingThatCanBeSeen) {
    std::mt19937 random(11);
    for (int round = 0; round < 400; ++round) {
        RbTree keyed;
        RbTree plain;
        rbTreeInit(&keyed, compareSigned, true, &kNumberKeys);
        rbTreeInit(&plain, compareSigned, true);
        const bool evenOnly = round % 4 != 0;
        const bool unique = round % 2 == 0;
        for (int step = 0; step < 300; ++step) {
            const uint32_t drawn = random() % 64;
            void* element = numbers[evenOnly ? drawn & ~1u : drawn];
            RbNode* at = rbTreeFindNode(&keyed, element);
            RbNode* same = rbTreeFindNode(&plain, element);
            ASSERT_EQ(same == nullptr, at == nullptr);
            if (same != nullptr && random() % 4 == 0) {
                rbTreeEraseNode(&keyed, at);
                rbTreeEraseNode(&plain, same);
            } else if (same != nullptr && unique) {
                rbTreeReplaceNode(&keyed, at, element);
                rbTreeEraseNode(&plain, same);
                rbTreeInsertNode(&plain, element);
            } else {
                rbTreeInsertNode(&keyed, element);
                rbTreeInsertNode(&plain, element);
            }
        }
        expectSameShape(&keyed, keyed.root, &plain, plain.root);
        EXPECT_EQ(evenOnly && unique && keyed.count > 0, keyed.index != nullptr) << keyed.count;
        rbTreeTerm(&keyed);
        rbTreeTerm(&plain);
    }
}
