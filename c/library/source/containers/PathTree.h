#pragma once

#include <cstdint>
#include <string_view>

#include "containers/Compare.h"
#include "containers/List.h"
#include "containers/Owned.h"
#include "strings/String.h"

struct PathTreeIndex;

// A tree of named nodes with a value each, reached by paths of names joined by
// `.`; the empty path is the root, whose own name is part of no path. A point at
// the end of a path adds no name, two in a row stand for an empty one. Values are
// not owned: where a callback can be given it ends those that go. Null is
// tolerated everywhere, and a null path finds nothing.

struct PathTreeNode {
    String name;        // in place
    uint32_t nameHash;  // by which the index finds it
    uint32_t childCount;
    void* value;
    PathTreeNode* parent;      // null for a node that hangs nowhere
    PathTreeNode* firstChild;  // owned with all that stand behind it, in the order of their making
    PathTreeNode* lastChild;
    PathTreeNode* next;  // among the children of the parent
    PathTreeNode* previous;
    PathTreeIndex* index;  // owned, of the children by name; null while they are few
};

struct PathTree {
    PathTreeNode* root;  // named "root"
    // The parent of the node that was found last, and its path: who walks or builds
    // a tree asks for one child after the other. Null without one.
    mutable PathTreeNode* near;
    mutable PathTreeNode* nearChild;  // the child found last; null without one
    mutable String nearPath;          // in place
};

// A tree with nothing but its root, owned by the caller; null when memory runs out.
PathTree* pathTreeCreate();

// Releases all nodes and clears the caller's pointer.
void pathTreeDestroy(PathTree** tree, DestroyFunction destroy);

// Releases all nodes below the root and empties the root.
void pathTreeClear(PathTree* tree, DestroyFunction destroy);

// The node at the path; null when there is none.
PathTreeNode* pathTreeFind(const PathTree* tree, const String* path);

// Appends a node without a value to the children of the node at `path`. Null
// when that one is missing, when it has a child of that name, when the name
// holds a point, and when memory runs out.
PathTreeNode* pathTreeAddNode(PathTree* tree, const String* path, const String* name);

// Replaces the value of the node at `path`, ending the old one when a callback
// is given; false when there is no such node.
bool pathTreeSetValue(PathTree* tree, const String* path, void* value, DestroyFunction destroy);

// The value of the node at `path`; null when there is no node or no value.
void* pathTreeGetValue(const PathTree* tree, const String* path);

bool pathTreeHasNode(const PathTree* tree, const String* path);

// Copies of the names of the children, in their order: a list of Strings, both
// owned by the caller. Null when there is no such node or memory runs out.
List* pathTreeChildNames(const PathTree* tree, const String* path);

// Takes the node at `path` out with all below it; false when there is none and
// for the root.
bool pathTreeEraseNode(PathTree* tree, const String* path, DestroyFunction destroy);

// Number of nodes below the root, at all depths.
uint32_t pathTreeCount(const PathTree* tree);

// ---- Nodes

// A node that hangs nowhere, owned by the caller; null when the name is null or
// holds a point, and when memory runs out.
PathTreeNode* pathTreeNodeCreate(const String* name);

// Releases a node with all below it, after taking it from its parent, and
// clears the caller's pointer.
void pathTreeNodeDestroy(PathTreeNode** node, DestroyFunction destroy);

// Hangs a node that hangs nowhere below `parent`, which owns it from then on, as
// its last child. False, with nothing changed, when there is a child of that name.
bool pathTreeNodeAppend(PathTreeNode* parent, PathTreeNode* node);

// The child of that name; null when there is none.
PathTreeNode* pathTreeNodeChild(const PathTreeNode* parent, std::string_view name);

// The first child and the next sibling; null when there is none.
PathTreeNode* pathTreeNodeFirst(const PathTreeNode* parent);
PathTreeNode* pathTreeNodeNext(const PathTreeNode* node);

// A walk through `top` and all below it, parents first: gives the node behind
// `node`, null after the last one. It needs no memory, however deep the tree.
PathTreeNode* pathTreeNodeWalk(const PathTreeNode* top, PathTreeNode* node);

// Held so, a tree or node ends without its values.
template <>
struct OwnedTraits<PathTree> {
    static void destroy(PathTree** tree) { pathTreeDestroy(tree, nullptr); }
};
template <>
struct OwnedTraits<PathTreeNode> {
    static void destroy(PathTreeNode** node) { pathTreeNodeDestroy(node, nullptr); }
};
