#pragma once

#include "ScriptEngine3Defs/ScriptObject.h"
#include "ScriptEngine3Defs/VectorElements.h"
#include "containers/List.h"
#include "containers/Map.h"
#include "containers/Set.h"
#include "containers/Vector.h"

struct PathTreeNode;

// The payloads of the container types, for the operations on objects.

constexpr bool scriptTypeIsContainer(ScriptType type) {
    return type >= kTypeList && type <= kTypeTree;
}

// Gives an undef object an empty container of the type; the caller sets the type.
bool scriptContainerCreate(ScriptObject* object, ScriptType type);
// Ends a container's cursor, if it has one.
void scriptContainerEndCursor(ScriptObject* object);
// Ends a container with its cursor and its elements.
void scriptContainerDestroy(ScriptObject* object);
// Gives an undef object copies of the elements of `source`, and its type.
// Where an element has no copy the container is absent; false when the tree
// has none, the nesting is too deep, or memory runs out for the container.
bool scriptContainerClone(ScriptObject* copy, const ScriptObject* source);
// Replaces the elements of `target` by copies of those of `source`, of the same
// type; cursors of the target stay with it.
bool scriptContainerAssign(ScriptObject* target, const ScriptObject* source);

// True when copying the tree gives a tree: its root needs a value.
bool scriptTreeCanClone(const ScriptObject* object);

// Gives `to`, which has no children, copies of all that hangs below `from`,
// with their values. False when a value has no copy or memory runs out; what
// was copied until then stays.
bool scriptTreeCopyBelow(PathTreeNode* to, const PathTreeNode* from);

// Number of elements; of a tree the nodes below the root.
uint32_t scriptContainerCount(const ScriptObject* object);

// Calls `visit(element)` for each element of a list, vector or set in order
// until it gives false. False when it was ended. An element of a vector may be
// there for the time of the call only.
template <typename Visit>
bool scriptContainerEach(const ScriptObject* object, Visit visit) {
    if (object->type == kTypeVector) {
        ScriptObject room;
        for (uint32_t at = 0; at < vectorSize(object->vector.vector); ++at)
            if (!visit(scriptVectorSeen(object, at, &room))) return false;
    } else if (object->type == kTypeList) {
        const List* list = object->list.list;
        for (ListNode* at = listFirstNode(list); at != nullptr; at = listNextNode(list, at))
            if (!visit(static_cast<ScriptObject*>(at->value))) return false;
    } else if (object->set.set != nullptr) {
        const RbTree* tree = &object->set.set->tree;
        for (RbNode* at = rbTreeFirstNode(tree); at != nullptr; at = rbTreeNextNode(tree, at))
            if (!visit(static_cast<ScriptObject*>(at->data))) return false;
    }
    return true;
}
