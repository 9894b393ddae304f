#include "containers/PathTree.h"

#include <cstring>

#include "containers/Memory.h"
#include "strings/TextHash.h"

// Finds a child by name where there are many: open addressing, at most half
// full. It only saves time; a node that has no memory for one does without.
struct PathTreeIndex {
    uint32_t size;  // a power of two
    uint32_t used;  // places taken, those of children that have gone included

    PathTreeNode** slots() { return reinterpret_cast<PathTreeNode**>(this + 1); }
};

namespace {

constexpr char kSeparator = '.';
// So many children are looked through faster than hashed.
constexpr uint32_t kIndexFrom = 16;

// Keeps the place of a child that has gone.
PathTreeNode goneNode;

// The slot where `fits` is true of a child of that hash; else the free slot where
// the search ended.
template <typename Fits>
PathTreeNode** slotOf(PathTreeIndex* index, uint32_t hash, Fits fits) {
    PathTreeNode** slots = index->slots();
    uint32_t place = hash & (index->size - 1);
    for (; slots[place] != nullptr; place = (place + 1) & (index->size - 1)) {
        const PathTreeNode* here = slots[place];
        if (here != &goneNode && here->nameHash == hash && fits(here)) break;
    }
    return slots + place;
}

// The slot of the child of that name.
PathTreeNode** slotOfName(PathTreeIndex* index, uint32_t hash, std::string_view name) {
    return slotOf(index, hash,
                  [name](const PathTreeNode* here) { return stringView(&here->name) == name; });
}

// The slot of that child.
PathTreeNode** slotOfChild(PathTreeIndex* index, const PathTreeNode* child) {
    return slotOf(index, child->nameHash,
                  [child](const PathTreeNode* here) { return here == child; });
}

void addToIndex(PathTreeIndex* index, PathTreeNode* child) {
    *slotOfChild(index, child) = child;
    ++index->used;
}

// Makes a new index of all children of the parent, if there is memory for it.
void makeIndex(PathTreeNode* parent) {
    memFree(&parent->index);
    uint64_t size = kIndexFrom;
    while (size < uint64_t{parent->childCount} * 4) size *= 2;
    if (size > UINT32_MAX) return;
    const size_t bytes = size * sizeof(PathTreeNode*);
    auto* index = static_cast<PathTreeIndex*>(memAlloc(sizeof(PathTreeIndex) + bytes));
    if (index == nullptr) return;
    index->size = static_cast<uint32_t>(size);
    index->used = 0;
    std::memset(index->slots(), 0, bytes);
    for (PathTreeNode* child = pathTreeNodeFirst(parent); child != nullptr;
         child = pathTreeNodeNext(child))
        addToIndex(index, child);
    parent->index = index;
}

void noteNewChild(PathTreeNode* parent, PathTreeNode* child) {
    if (parent->childCount < kIndexFrom) return;
    if (parent->index == nullptr || parent->index->used >= parent->index->size / 2)
        makeIndex(parent);
    else
        addToIndex(parent->index, child);
}

// Takes a node out of its parent's children; the node itself stays.
void detach(PathTreeNode* node) {
    PathTreeNode* parent = node->parent;
    if (parent == nullptr) return;
    if (parent->index != nullptr) *slotOfChild(parent->index, node) = &goneNode;
    (node->previous == nullptr ? parent->firstChild : node->previous->next) = node->next;
    (node->next == nullptr ? parent->lastChild : node->next->previous) = node->previous;
    --parent->childCount;
    node->parent = node->next = node->previous = nullptr;
}

void endValue(PathTreeNode* node, DestroyFunction destroy) {
    if (destroy != nullptr && node->value != nullptr) destroy(&node->value);
    node->value = nullptr;
}

// Releases all below the node, the deepest first and without recursion.
void destroyChildren(PathTreeNode* top, DestroyFunction destroy) {
    PathTreeNode* node = top;
    while (true) {
        memFree(&node->index);  // of no use when the children go one by one
        if (PathTreeNode* child = pathTreeNodeFirst(node)) {
            node = child;
            continue;
        }
        if (node == top) return;
        PathTreeNode* parent = node->parent;
        detach(node);
        endValue(node, destroy);
        stringRelease(&node->name);
        memFree(&node);
        node = parent;
    }
}

PathTreeNode* childOfHash(const PathTreeNode* parent, uint32_t hash, std::string_view name) {
    if (parent->index != nullptr) return *slotOfName(parent->index, hash, name);
    PathTreeNode* child = pathTreeNodeFirst(parent);
    while (child != nullptr && (child->nameHash != hash || stringView(&child->name) != name))
        child = pathTreeNodeNext(child);
    return child;
}

// Cuts the next name off the rest of a path.
std::string_view cutName(std::string_view* rest) {
    const size_t end = rest->find(kSeparator);
    const std::string_view name = rest->substr(0, end);
    *rest = end == std::string_view::npos ? std::string_view() : rest->substr(end + 1);
    return name;
}

PathTreeNode* walkDown(PathTreeNode* node, std::string_view path) {
    while (node != nullptr && !path.empty()) node = pathTreeNodeChild(node, cutName(&path));
    return node;
}

void forgetNear(const PathTree* tree) {
    tree->near = tree->nearChild = nullptr;
}

// The child of that name: mostly the one found last again, the one behind it, or
// the newest, which are at hand.
PathTreeNode* nearOrChild(const PathTree* tree, const PathTreeNode* parent, std::string_view name) {
    const uint32_t hash = textHash(name);
    PathTreeNode* const last = tree->nearChild;
    PathTreeNode* const likely[] = {last, last == nullptr ? nullptr : last->next,
                                    parent->lastChild};
    for (PathTreeNode* node : likely) {
        if (node == nullptr || node->parent != parent || node->nameHash != hash) continue;
        if (stringView(&node->name) == name) return tree->nearChild = node;
    }
    return tree->nearChild = childOfHash(parent, hash, name);
}

// Whether what stands behind the last point of a path is the name of a child of
// what the path before it leads to: it is not where points end a path or meet.
bool endsInPlainName(std::string_view path, size_t point) {
    return point != std::string_view::npos && point != 0 && point + 1 != path.size() &&
           path[point - 1] != kSeparator;
}

}  // namespace

PathTree* pathTreeCreate() {
    PathTree* tree = memNew<PathTree>();
    if (tree == nullptr) return nullptr;
    stringInitEmpty(&tree->nearPath);
    Owned<String> name(stringFromText("root"));
    tree->root = pathTreeNodeCreate(name.get());
    if (tree->root == nullptr) memFree(&tree);
    return tree;
}

void pathTreeDestroy(PathTree** tree, DestroyFunction destroy) {
    if (tree == nullptr || *tree == nullptr) return;
    pathTreeNodeDestroy(&(*tree)->root, destroy);
    stringRelease(&(*tree)->nearPath);
    memFree(tree);
}

void pathTreeClear(PathTree* tree, DestroyFunction destroy) {
    if (tree == nullptr) return;
    forgetNear(tree);
    destroyChildren(tree->root, destroy);
    endValue(tree->root, destroy);
}

PathTreeNode* pathTreeFind(const PathTree* tree, const String* path) {
    if (tree == nullptr || path == nullptr) return nullptr;
    const std::string_view text = stringView(path);
    if (tree->near != nullptr && text == stringView(&tree->nearPath)) return tree->near;
    const size_t point = text.rfind(kSeparator);
    if (!endsInPlainName(text, point)) return walkDown(tree->root, text);
    const std::string_view parentPath = text.substr(0, point);
    PathTreeNode* parent = tree->near;
    if (parent == nullptr || parentPath != stringView(&tree->nearPath)) {
        parent = walkDown(tree->root, parentPath);
        if (parent == nullptr) return nullptr;
        tree->near = stringSetView(&tree->nearPath, parentPath) ? parent : nullptr;
    }
    return nearOrChild(tree, parent, text.substr(point + 1));
}

PathTreeNode* pathTreeAddNode(PathTree* tree, const String* path, const String* name) {
    PathTreeNode* parent = pathTreeFind(tree, path);
    if (parent == nullptr) return nullptr;
    Owned<PathTreeNode> node(pathTreeNodeCreate(name));
    return pathTreeNodeAppend(parent, node.get()) ? node.release() : nullptr;
}

bool pathTreeSetValue(PathTree* tree, const String* path, void* value, DestroyFunction destroy) {
    PathTreeNode* node = pathTreeFind(tree, path);
    if (node == nullptr) return false;
    endValue(node, destroy);
    node->value = value;
    return true;
}

void* pathTreeGetValue(const PathTree* tree, const String* path) {
    const PathTreeNode* node = pathTreeFind(tree, path);
    return node == nullptr ? nullptr : node->value;
}

bool pathTreeHasNode(const PathTree* tree, const String* path) {
    return pathTreeFind(tree, path) != nullptr;
}

List* pathTreeChildNames(const PathTree* tree, const String* path) {
    const PathTreeNode* node = pathTreeFind(tree, path);
    if (node == nullptr) return nullptr;
    List* names = listCreate();
    for (PathTreeNode* child = pathTreeNodeFirst(node); child != nullptr && names != nullptr;
         child = pathTreeNodeNext(child)) {
        Owned<String> name(stringClone(&child->name));
        if (listPushBack(names, name.get()))
            name.release();
        else
            listDestroyWith(&names, stringDestroyElement);
    }
    return names;
}

bool pathTreeEraseNode(PathTree* tree, const String* path, DestroyFunction destroy) {
    PathTreeNode* node = pathTreeFind(tree, path);
    if (node == nullptr || node == tree->root) return false;
    forgetNear(tree);
    pathTreeNodeDestroy(&node, destroy);
    return true;
}

uint32_t pathTreeCount(const PathTree* tree) {
    if (tree == nullptr) return 0;
    uint32_t count = 0;
    PathTreeNode* node = tree->root;
    while ((node = pathTreeNodeWalk(tree->root, node)) != nullptr) ++count;
    return count;
}

PathTreeNode* pathTreeNodeCreate(const String* name) {
    if (name == nullptr || stringView(name).find(kSeparator) != std::string_view::npos)
        return nullptr;
    PathTreeNode* node = memNew<PathTreeNode>();
    if (node == nullptr) return nullptr;
    if (stringCopyInto(&node->name, name))
        node->nameHash = textHash(stringView(name));
    else
        memFree(&node);
    return node;
}

void pathTreeNodeDestroy(PathTreeNode** node, DestroyFunction destroy) {
    if (node == nullptr || *node == nullptr) return;
    detach(*node);
    destroyChildren(*node, destroy);
    endValue(*node, destroy);
    stringRelease(&(*node)->name);
    memFree(node);
}

bool pathTreeNodeAppend(PathTreeNode* parent, PathTreeNode* node) {
    if (parent == nullptr || node == nullptr || parent == node || node->parent != nullptr)
        return false;
    if (childOfHash(parent, node->nameHash, stringView(&node->name)) != nullptr) return false;
    node->parent = parent;
    node->previous = parent->lastChild;
    (node->previous == nullptr ? parent->firstChild : node->previous->next) = node;
    parent->lastChild = node;
    ++parent->childCount;
    noteNewChild(parent, node);
    return true;
}

PathTreeNode* pathTreeNodeChild(const PathTreeNode* parent, std::string_view name) {
    return parent == nullptr ? nullptr : childOfHash(parent, textHash(name), name);
}

PathTreeNode* pathTreeNodeFirst(const PathTreeNode* parent) {
    return parent == nullptr ? nullptr : parent->firstChild;
}

PathTreeNode* pathTreeNodeNext(const PathTreeNode* node) {
    return node == nullptr ? nullptr : node->next;
}

PathTreeNode* pathTreeNodeWalk(const PathTreeNode* top, PathTreeNode* node) {
    if (PathTreeNode* child = pathTreeNodeFirst(node)) return child;
    for (; node != top; node = node->parent)
        if (PathTreeNode* next = pathTreeNodeNext(node)) return next;
    return nullptr;
}
