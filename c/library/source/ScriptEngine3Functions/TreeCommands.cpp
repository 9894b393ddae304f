#include "ScriptEngine3Functions/TreeCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "containers/PathTree.h"

namespace {

ScriptObject* valueOf(const PathTreeNode* node) {
    return static_cast<ScriptObject*>(node->value);
}

int scriptEngineTreeAddNode(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeTree);
    const String* path = in.string(1);
    const String* name = in.string(2);
    ScriptObject* tree = in.container();
    if (!in.ok()) return in.status();
    PathTreeNode* parent = pathTreeFind(tree->tree, path);
    if (parent == nullptr || stringView(name).find('.') != std::string_view::npos) return kNegative;
    Owned<PathTreeNode> node(pathTreeNodeCreate(name));
    if (pathTreeNodeAppend(parent, node.get())) {
        node.release();
        return kDone;
    }
    if (pathTreeNodeChild(parent, stringView(name)) != nullptr) return kNegative;
    return commandOutOfMemory(engine, "scriptEngineTreeAddNode");
}

int scriptEngineTreeSet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeTree);
    const String* path = in.string(1);
    Owned<ScriptObject> value(in.fetched(2));
    ScriptObject* tree = in.container();
    if (!in.ok()) return in.status();
    if (!value)
        return commandError(engine, "scriptEngineTreeSet: Failed to access parameter %i", 3);
    if (!pathTreeSetValue(tree->tree, path, value.get(), scriptObjectDestroyElement))
        return kNegative;
    value.release();
    return kDone;
}

int scriptEngineTreeGet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeTree);
    const String* path = in.string(1);
    ScriptObject* tree = in.container();
    if (!in.ok()) return in.status();
    auto* value = static_cast<ScriptObject*>(pathTreeGetValue(tree->tree, path));
    if (value == nullptr) return kNegative;
    const size_t evaluated = scriptTemporaries.size();
    ScriptObject* target = in.unfollowedTarget(2);
    tree = in.container();
    if (!in.ok()) return in.status();
    // What was evaluated for the target may have changed the tree.
    if (scriptTemporaries.size() != evaluated)
        value = static_cast<ScriptObject*>(pathTreeGetValue(tree->tree, path));
    if (scriptObjectAssign(engine, target, value)) return kDone;
    return commandError(engine, "scriptEngineTreeGet: Failed to get tree value");
}

int scriptEngineTreeGetSub(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeTree);
    const String* path = in.string(1);
    ScriptObject* names = in.target(2);
    const ScriptObject* tree = in.container();
    if (!in.ok()) return in.status();
    if (names->type != kTypeVector && names->type != kTypeList && names->type != kTypeSet)
        return commandError(
            engine, "scriptEngineTreeGetSub: Third parameter must be a vector, a list or a set");
    const PathTreeNode* node = pathTreeFind(tree->tree, path);
    if (node == nullptr) return kNegative;
    for (const PathTreeNode* child = pathTreeNodeFirst(node); child != nullptr;
         child = pathTreeNodeNext(child)) {
        Owned<ScriptObject> name(scriptObjectCreateString(stringView(&child->name)));
        if (!name || !containerAdd(names, name.get()))
            return commandOutOfMemory(engine, "scriptEngineTreeGetSub");
        name.release();
    }
    return kDone;
}

int scriptEngineTreeHaveElement(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeTree);
    const String* path = in.string(1);
    const ScriptObject* tree = in.container();
    if (!in.ok()) return in.status();
    return pathTreeHasNode(tree->tree, path) ? kDone : kNegative;
}

int scriptEngineTreeHaveSub(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeTree);
    const String* path = in.string(1);
    const ScriptObject* tree = in.container();
    if (!in.ok()) return in.status();
    return pathTreeNodeFirst(pathTreeFind(tree->tree, path)) != nullptr ? kDone : kNegative;
}

// The root has no parent to leave, so it stays.
int scriptEngineTreeErase(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeTree);
    const String* path = in.string(1);
    ScriptObject* tree = in.container();
    if (!in.ok()) return in.status();
    return pathTreeEraseNode(tree->tree, path, scriptObjectDestroyElement) ? kDone : kNegative;
}

// A copy of a node with all below it, which hangs nowhere yet: the place for it
// may lie inside what is copied. Null when it cannot be made; a root without a
// value cannot be copied.
PathTreeNode* copyNode(const PathTreeNode* source) {
    PathTreeNode* copy = pathTreeNodeCreate(&source->name);
    if (copy == nullptr) return nullptr;
    copy->value = scriptObjectClone(valueOf(source));
    const bool hasValue = copy->value != nullptr;
    const bool good = hasValue || (source->value == nullptr && source->parent != nullptr);
    if (!good || !scriptTreeCopyBelow(copy, source))
        pathTreeNodeDestroy(&copy, scriptObjectDestroyElement);
    return copy;
}

int scriptEngineTreeCopyNode(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeTree);
    const ScriptObject* destination = in.target(1, kTypeTree);
    const uint32_t generation = destination == nullptr ? 0 : destination->generation;
    const String* sourcePath = in.string(2);
    const String* parentPath = in.string(3);
    const ScriptObject* source = in.container();
    if (!in.ok()) return in.status();
    if (destination->generation != generation || destination->type != kTypeTree) {
        scriptEngineRequireType(engine, nullptr, kTypeTree, 1);
        return kError;
    }
    const PathTreeNode* node = pathTreeFind(source->tree, sourcePath);
    PathTreeNode* parent = pathTreeFind(destination->tree, parentPath);
    if (node == nullptr || parent == nullptr ||
        pathTreeNodeChild(parent, stringView(&node->name)) != nullptr)
        return kNegative;
    PathTreeNode* copy = copyNode(node);
    if (pathTreeNodeAppend(parent, copy)) return kDone;
    pathTreeNodeDestroy(&copy, scriptObjectDestroyElement);
    return commandOutOfMemory(engine, "scriptEngineTreeCopyNode");
}

int scriptEngineTreeClear(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeTree);
    if (in.ok()) pathTreeClear(in.container()->tree, scriptObjectDestroyElement);
    return in.status();
}

constexpr CommandRow kTreeCommands[] = {
    // name           handler                 min max targets
    {"treeaddnode", scriptEngineTreeAddNode, 3, 3, "1"},
    {"treeset", scriptEngineTreeSet, 3, 3, "1"},
    {"treecopynode", scriptEngineTreeCopyNode, 4, 4, "1,2"},
    {"treeerase", scriptEngineTreeErase, 2, 2, "1"},
    {"treehaveelement", scriptEngineTreeHaveElement, 2, 2, "1"},
    {"treehavesub", scriptEngineTreeHaveSub, 2, 2, "1"},
    {"treeget", scriptEngineTreeGet, 3, 3, "1,3"},
    {"treegetsub", scriptEngineTreeGetSub, 3, 3, "1,3"},
    {"treeclear", scriptEngineTreeClear, 1, 1, "1"},
};

}  // namespace

std::span<const CommandRow> treeCommands() {
    return kTreeCommands;
}
