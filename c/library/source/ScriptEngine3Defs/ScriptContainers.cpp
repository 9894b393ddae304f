#include "ScriptEngine3Defs/ScriptContainers.h"

#include <utility>

#include "ScriptEngine3Defs/ValueNesting.h"
#include "containers/PathTree.h"

namespace {

// Copying has no walk of its own to hand down: containers hold what they own,
// so the depth alone needs watching.
struct CloneDepth {
    CloneDepth() { ++depth; }
    ~CloneDepth() {
        if (--depth == 0) tooDeep = false;
    }
    static int depth;
    static bool tooDeep;
};
int CloneDepth::depth = 0;
bool CloneDepth::tooDeep = false;

// Adds a value that the container owns from then on.
bool addElement(ScriptObject* container, ScriptObject* element) {
    switch (container->type) {
        case kTypeList:
            return listPushBack(container->list.list, element);
        default:
            return setInsert(container->set.set, element);
    }
}

// As many slots as the source has, numbers as they stand.
bool cloneSlots(ScriptObject* copy, const ScriptObject* source) {
    const Vector* from = source->vector.vector;
    Vector* to = copy->vector.vector;
    copy->vector.numberName = source->vector.numberName;
    if (!vectorResize(to, vectorSize(from))) return false;
    for (uint32_t at = 0; at < vectorSize(from); ++at) {
        void* slot = from->data[at];
        if (!slotIsNumber(slot)) slot = scriptObjectClone(static_cast<ScriptObject*>(slot));
        if (slot == nullptr) return false;
        vectorAppend(to, slot);
    }
    return true;
}

bool cloneElements(ScriptObject* copy, const ScriptObject* source) {
    return scriptContainerEach(source, [&](const ScriptObject* element) {
        Owned<ScriptObject> made(scriptObjectClone(element));
        if (!made || !addElement(copy, made.get())) return false;
        made.release();
        return true;
    });
}

bool clonePairs(ScriptObject* copy, const ScriptObject* source) {
    for (MapNode* at = mapFirstNode(source->map.map); at != nullptr;
         at = mapNextNode(source->map.map, at)) {
        Owned<ScriptObject> key(scriptObjectClone(static_cast<ScriptObject*>(at->data)));
        Owned<ScriptObject> value(scriptObjectClone(static_cast<ScriptObject*>(at->value)));
        if (!key || !value || !mapInsert(copy->map.map, key.get(), value.get())) return false;
        key.release();
        value.release();
    }
    return true;
}

bool cloneTreeValue(PathTreeNode* to, const PathTreeNode* from) {
    if (from->value == nullptr) return true;
    to->value = scriptObjectClone(static_cast<ScriptObject*>(from->value));
    return to->value != nullptr;
}

PathTreeNode* cloneTreeNode(PathTreeNode* parent, const PathTreeNode* from) {
    PathTreeNode* node = pathTreeNodeCreate(&from->name);
    if (node == nullptr) return nullptr;
    if (cloneTreeValue(node, from) && pathTreeNodeAppend(parent, node)) return node;
    pathTreeNodeDestroy(&node, scriptObjectDestroyElement);
    return nullptr;
}

// A root normally has no value, and then the whole copy fails at once.
bool copyTree(PathTree* to, const PathTree* from) {
    if (from == nullptr || from->root->value == nullptr) return false;
    return cloneTreeValue(to->root, from->root) && scriptTreeCopyBelow(to->root, from->root);
}

void clearElements(ScriptObject* object, DestroyFunction destroy) {
    switch (object->type) {
        case kTypeList:
            listClearWith(object->list.list, destroy);
            break;
        case kTypeSet:
            setClearWith(object->set.set, destroy);
            break;
        default:
            mapClearWith(object->map.map, destroy, destroy);
            break;
    }
}

void forget(void** element) {
    *element = nullptr;
}

// Moves the elements of `copy` into the empty `target`, which is no vector.
bool moveElements(ScriptObject* target, ScriptObject* copy) {
    bool whole = true;
    if (target->type == kTypeMap) {
        for (MapNode* at = mapFirstNode(copy->map.map); at != nullptr;
             at = mapNextNode(copy->map.map, at)) {
            if (mapInsert(target->map.map, at->data, at->value)) continue;
            scriptObjectDestroyElement(&at->data);
            scriptObjectDestroyElement(&at->value);
            whole = false;
        }
    } else {
        scriptContainerEach(copy, [&](ScriptObject* element) {
            if (addElement(target, element)) return true;
            scriptObjectDestroy(&element);
            whole = false;
            return true;
        });
    }
    clearElements(copy, forget);
    return whole;
}

}  // namespace

bool scriptContainerCreate(ScriptObject* object, ScriptType type) {
    switch (type) {
        case kTypeList:
            object->list = {listCreate(), nullptr, kListNoWalk};
            return object->list.list != nullptr;
        case kTypeVector:
            object->vector = {vectorCreate(), 0, 0, 0, kNoVariable};
            return object->vector.vector != nullptr;
        case kTypeSet:
            object->set = {setCreate(scriptObjectCompareElements, &scriptElementKeys), nullptr};
            return object->set.set != nullptr;
        case kTypeMap:
            object->map = {mapCreate(scriptObjectCompareElements, &scriptElementKeys), nullptr};
            return object->map.map != nullptr;
        default:
            object->tree = pathTreeCreate();
            return object->tree != nullptr;
    }
}

void scriptContainerEndCursor(ScriptObject* object) {
    if (object->type == kTypeList) listIterDestroy(&object->list.cursor);
    if (object->type == kTypeSet) setIterDestroy(&object->set.cursor);
    if (object->type == kTypeMap) mapIterDestroy(&object->map.cursor);
}

void scriptContainerDestroy(ScriptObject* object) {
    scriptContainerEndCursor(object);
    switch (object->type) {
        case kTypeList:
            listDestroyWith(&object->list.list, scriptObjectDestroyElement);
            break;
        case kTypeVector:
            scriptVectorClear(object->vector.vector);
            vectorDestroy(&object->vector.vector);
            break;
        case kTypeSet:
            setDestroyWith(&object->set.set, scriptObjectDestroyElement);
            break;
        case kTypeMap:
            mapDestroyWith(&object->map.map, scriptObjectDestroyElement,
                           scriptObjectDestroyElement);
            break;
        default:
            pathTreeDestroy(&object->tree, scriptObjectDestroyElement);
            break;
    }
}

bool scriptContainerClone(ScriptObject* copy, const ScriptObject* source) {
    const CloneDepth guard;
    if (valueNestingEnds(CloneDepth::depth - 1)) CloneDepth::tooDeep = true;
    if (CloneDepth::tooDeep || !scriptContainerCreate(copy, source->type)) return false;
    copy->type = source->type;
    if (source->type == kTypeTree) return copyTree(copy->tree, source->tree);
    const bool whole = source->type == kTypeMap      ? clonePairs(copy, source)
                       : source->type == kTypeVector ? cloneSlots(copy, source)
                                                     : cloneElements(copy, source);
    if (CloneDepth::tooDeep) return false;
    if (!whole) {
        scriptContainerDestroy(copy);
        copy->payload = nullptr;
    }
    return true;
}

bool scriptContainerAssign(ScriptObject* target, const ScriptObject* source) {
    if (target->type == kTypeTree) {
        // Whether there was something to copy does not matter here.
        Owned<ScriptObject> copy(scriptObjectCreate(kTypeTree));
        if (!copy) return false;
        copyTree(copy->tree, source->tree);
        std::swap(target->tree, copy->tree);
        return true;
    }
    Owned<ScriptObject> copy(scriptObjectClone(source));
    if (!copy || copy->payload == nullptr) return false;
    if (target->payload == nullptr) {
        scriptObjectMove(target, copy.get());
        return true;
    }
    if (target->type == kTypeVector) {
        std::swap(target->vector.vector, copy->vector.vector);
        std::swap(target->vector.numberName, copy->vector.numberName);
        return true;
    }
    clearElements(target, scriptObjectDestroyElement);
    return moveElements(target, copy.get());
}

bool scriptTreeCanClone(const ScriptObject* object) {
    return object->tree != nullptr && object->tree->root->value != nullptr;
}

// The walk goes down and up by the nodes' own links: a tree may be deeper than
// the stack.
bool scriptTreeCopyBelow(PathTreeNode* to, const PathTreeNode* from) {
    const PathTreeNode* top = from;
    const PathTreeNode* next = pathTreeNodeFirst(from);
    while (next != nullptr) {
        PathTreeNode* made = cloneTreeNode(to, next);
        if (made == nullptr) return false;
        if (pathTreeNodeFirst(next) != nullptr) {
            next = pathTreeNodeFirst(next);
            to = made;
            continue;
        }
        while (next != top && pathTreeNodeNext(next) == nullptr) {
            next = next->parent;
            if (next != top) to = to->parent;
        }
        next = next == top ? nullptr : pathTreeNodeNext(next);
    }
    return true;
}

uint32_t scriptContainerCount(const ScriptObject* object) {
    switch (object->type) {
        case kTypeList:
            return listCount(object->list.list);
        case kTypeVector:
            return vectorSize(object->vector.vector);
        case kTypeSet:
            return setCount(object->set.set);
        case kTypeMap:
            return mapCount(object->map.map);
        default:
            return pathTreeCount(object->tree);
    }
}
