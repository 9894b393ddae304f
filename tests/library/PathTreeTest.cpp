#include "containers/PathTree.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "containers/Memory.h"
#include "strings/String.h"

namespace {

Owned<String> text(const std::string& bytes) {
    return Owned<String>(stringFromView(bytes));
}

PathTreeNode* add(PathTree* tree, const std::string& path, const std::string& name) {
    return pathTreeAddNode(tree, text(path).get(), text(name).get());
}

bool has(const PathTree* tree, const std::string& path) {
    return pathTreeHasNode(tree, text(path).get());
}

std::string names(const PathTree* tree, const std::string& path) {
    List* list = pathTreeChildNames(tree, text(path).get());
    if (list == nullptr) return "none";
    std::string result;
    for (ListNode* n = listFirstNode(list); n != nullptr; n = listNextNode(list, n))
        result += std::string(stringView(static_cast<String*>(n->value))) + ";";
    listDestroyWith(&list, stringDestroyElement);
    return result;
}

int destroyed = 0;
void countDestroy(void** value) {
    ++destroyed;
    *value = nullptr;
}

}  // namespace

TEST(PathTree, EndsAValueOnceWithItsNode) {
    int value = 0;
    Owned<PathTree> tree(pathTreeCreate());
    for (const char* name : {"a", "b", "c"}) add(tree.get(), "", name);
    for (const char* name : {"x", "y"}) add(tree.get(), "b", name);
    destroyed = 0;
    for (const char* path : {"", "a", "b", "b.x", "b.y", "b.x"})
        EXPECT_TRUE(pathTreeSetValue(tree.get(), text(path).get(), &value, countDestroy));
    EXPECT_EQ(1, destroyed) << "only the value that was replaced";
    EXPECT_TRUE(pathTreeEraseNode(tree.get(), text("b").get(), countDestroy));
    EXPECT_EQ(4, destroyed);
    pathTreeClear(tree.get(), countDestroy);
    EXPECT_EQ(6, destroyed);
    EXPECT_EQ("root", stringView(&tree->root->name));
}

TEST(PathTree, FindsAmongManyChildrenWhileTheyComeAndGo) {
    const Owned<PathTree> tree(pathTreeCreate());
    for (int i = 0; i < 3000; ++i) {
        const std::string name = "n" + std::to_string(i);
        ASSERT_NE(nullptr, add(tree.get(), "", name));
        EXPECT_EQ(nullptr, add(tree.get(), "", name));
        if (i % 4 != 3) continue;
        const Owned<String> earlier = text("n" + std::to_string(i / 2));
        EXPECT_TRUE(pathTreeEraseNode(tree.get(), earlier.get(), nullptr));
    }
    for (int i = 0; i < 3000; ++i)
        EXPECT_EQ(i >= 1500 || i % 2 == 0, has(tree.get(), "n" + std::to_string(i))) << i;
    EXPECT_EQ(2250u, pathTreeCount(tree.get()));
    EXPECT_EQ("n0;n2;n4;", names(tree.get(), "").substr(0, 9)) << "in the order of their making";
}

TEST(PathTree, FindsByThePathAndNotByWhatWasFoundBefore) {
    const Owned<PathTree> tree(pathTreeCreate());
    add(tree.get(), "", "a");
    add(tree.get(), "a", "b");
    add(tree.get(), "a.b", "b");
    EXPECT_EQ(nullptr, add(tree.get(), "a.", "b")) << "a point at the end adds no name";
    add(tree.get(), "a", "");
    add(tree.get(), "a..", "b");
    for (const char* found : {"a.b.b", "a.b.b.", "a..b", "a.b", "a."})
        EXPECT_TRUE(has(tree.get(), found)) << found;
    for (const char* missing : {".", "a.b..b", "a.b.c", "a...b", "a..b.b", ".a"})
        EXPECT_FALSE(has(tree.get(), missing)) << missing;
    ASSERT_TRUE(has(tree.get(), "a.b.b"));
    ASSERT_TRUE(pathTreeEraseNode(tree.get(), text("a.b").get(), nullptr));
    EXPECT_FALSE(has(tree.get(), "a.b.b"));
    ASSERT_TRUE(has(tree.get(), "a..b"));
    for (const char* name : {"x", "y", "z"}) add(tree.get(), "a.c", name);
    EXPECT_FALSE(has(tree.get(), "a.c.x")) << "without its parent";
    add(tree.get(), "a", "c");
    for (const char* name : {"x", "y", "z"}) add(tree.get(), "a.c", name);
    for (const char* path : {"a.c.x", "a.c.y", "a.c.z", "a.c.x", "a..b", "a.c.y"})
        EXPECT_TRUE(has(tree.get(), path)) << path;
    ASSERT_TRUE(pathTreeEraseNode(tree.get(), text("a.c.y").get(), nullptr));
    EXPECT_FALSE(has(tree.get(), "a.c.y"));
    EXPECT_TRUE(has(tree.get(), "a.c.z"));
    pathTreeClear(tree.get(), nullptr);
    EXPECT_FALSE(has(tree.get(), "a..b"));
}

TEST(PathTree, NeedsNoStackForADeepTree) {
    constexpr uint32_t kDepth = 300000;
    const Owned<String> name = text("d");
    Owned<PathTree> tree(pathTreeCreate());
    PathTreeNode* node = tree->root;
    for (uint32_t i = 0; i < kDepth; ++i) {
        Owned<PathTreeNode> child(pathTreeNodeCreate(name.get()));
        ASSERT_TRUE(pathTreeNodeAppend(node, child.get()));
        node = child.release();
    }
    EXPECT_EQ(kDepth, pathTreeCount(tree.get()));
    node->value = &destroyed;
    destroyed = 0;
    pathTreeClear(tree.get(), countDestroy);
    EXPECT_EQ(1, destroyed);
}

TEST(PathTree, SurvivesEveryFailedRequest) {
    bool complete = false;
    for (int n = 0; !complete && n < 500; ++n) {
        const Owned<String> empty = text("");
        std::vector<Owned<String>> childNames;
        for (int i = 0; i < 40; ++i) childNames.push_back(text(std::to_string(i)));
        memFailAfter(n, false);
        Owned<PathTree> tree(pathTreeCreate());
        uint32_t added = 0;
        for (const auto& name : childNames)
            added += pathTreeAddNode(tree.get(), empty.get(), name.get()) != nullptr;
        List* list = pathTreeChildNames(tree.get(), empty.get());
        memFailAfter(-1, false);
        complete = added == 40 && list != nullptr;
        EXPECT_EQ(added, pathTreeCount(tree.get()));
        EXPECT_EQ(list == nullptr ? 0 : added, listCount(list));
        EXPECT_EQ(added > 0, has(tree.get(), "39") || has(tree.get(), "38"));
        listDestroyWith(&list, stringDestroyElement);
    }
    EXPECT_TRUE(complete);
}
