#include "config/ConfNode.h"

#include <bit>

#include "containers/Memory.h"
#include "strings/TextHash.h"

// Open addressing, at most half full. It only saves time: a node that has no
// memory for one is searched in order.
struct ConfNodeIndex {
    size_t mask;

    ConfNode** slots() { return reinterpret_cast<ConfNode**>(this + 1); }
};

namespace {

// So many children are looked through faster than hashed.
constexpr uint32_t kIndexFrom = 16;

struct TypeWord {
    const char* word;
    int32_t type;
};

// ORDER conf-types: the words that are written, by the type's number.
constexpr const char* kWritten[] = {nullptr,    "open",     "string",  "bool",
                                    "ternary",  "int",      "float",   "datetime",
                                    "timespan", "filename", "dirname", "loglevel"};
constexpr TypeWord kFurtherWords[] = {{"integer", kConfInt}, {"real", kConfFloat}};
constexpr int32_t kTypes = static_cast<int32_t>(std::size(kWritten));

// The slot of the child of that name, or the free one where it would stand.
ConfNode** slotOf(ConfNodeIndex* index, std::string_view name) {
    ConfNode** slots = index->slots();
    size_t at = textHash(name) & index->mask;
    while (slots[at] != nullptr && stringView(&slots[at]->name) != name)
        at = (at + 1) & index->mask;
    return slots + at;
}

// Of several children with one name the first stands in the index.
void makeIndex(ConfNode* node) {
    const uint32_t count = vectorSize(node->children);
    const size_t size = std::bit_ceil(size_t{count} * 2);
    auto* index =
        static_cast<ConfNodeIndex*>(memAlloc(sizeof(ConfNodeIndex) + size * sizeof(ConfNode*)));
    if (index == nullptr) return;
    index->mask = size - 1;
    std::memset(index->slots(), 0, size * sizeof(ConfNode*));
    for (uint32_t at = 0; at < count; ++at) {
        ConfNode* child = confNodeChildAt(node, at);
        ConfNode** slot = slotOf(index, stringView(&child->name));
        if (*slot == nullptr) *slot = child;
    }
    node->index = index;
}

// A vector made when its first element comes; mostly that stays the only one.
bool appendTo(Vector** vector, void* element) {
    if (*vector == nullptr) *vector = vectorCreateSized(1);
    return vectorAppend(*vector, element);
}

// Ends a node that has no children any more.
void endNode(ConfNode* node) {
    vectorDestroyWith(&node->values, stringDestroyElement);
    vectorDestroy(&node->children);
    memFree(&node->index);
    stringRelease(&node->name);
    memFree(&node);
}

ConfNode* cloneNode(ConfNode* parent, const ConfNode* source) {
    ConfNode* node = confNodeCreate(parent, stringView(&source->name));
    if (node == nullptr) return nullptr;
    node->type = source->type;
    node->multi = source->multi;
    for (uint32_t at = 0; at < vectorSize(source->values); ++at) {
        if (confNodeAddValue(node, stringView(confNodeValueAt(source, at)))) continue;
        if (parent == nullptr) confNodeDestroy(&node);
        return nullptr;
    }
    return node;
}

}  // namespace

ConfNode* confNodeCreate(ConfNode* parent, std::string_view name) {
    ConfNode* node = memNew<ConfNode>();
    if (node == nullptr) return nullptr;
    if (!stringAppendView(&node->name, name) ||
        (parent != nullptr && !appendTo(&parent->children, node))) {
        endNode(node);
        return nullptr;
    }
    if (parent == nullptr) return node;
    node->parent = parent;
    node->place = vectorSize(parent->children) - 1;
    memFree(&parent->index);
    return node;
}

// From the last child of the last child upward: each node goes when it has no
// children left.
void confNodeDestroy(ConfNode** root) {
    if (root == nullptr || *root == nullptr) return;
    ConfNode* node = *root;
    *root = nullptr;
    while (node != nullptr) {
        const uint32_t count = vectorSize(node->children);
        ConfNode* next = node->parent;
        if (count != 0) {
            next = confNodeChildAt(node, count - 1);
            vectorErase(node->children, count - 1, 1);
        } else {
            endNode(node);
        }
        node = next;
    }
}

ConfNode* confNodeClone(const ConfNode* root) {
    if (root == nullptr) return nullptr;
    Owned<ConfNode> copy(cloneNode(nullptr, root));
    ConfNode* to = copy.get();
    const ConfNode* from = root;
    while (to != nullptr) {
        const ConfNode* next = confNodeChildAt(from, 0);
        while (next == nullptr && from != root) {
            next = confNodeNext(from);
            from = from->parent;
            to = to->parent;
        }
        if (next == nullptr) return copy.release();
        from = next;
        to = cloneNode(to, next);
    }
    return nullptr;
}

ConfNode* confNodeChild(ConfNode* node, std::string_view name) {
    // One search alone is not worth an index.
    const uint32_t count = vectorSize(node->children);
    if (node->index == nullptr && node->searched != 0 && count >= kIndexFrom) makeIndex(node);
    node->searched = 1;
    if (node->index != nullptr) return *slotOf(node->index, name);
    for (uint32_t at = 0; at < count; ++at) {
        ConfNode* child = confNodeChildAt(node, at);
        if (stringView(&child->name) == name) return child;
    }
    return nullptr;
}

bool confNodeAddValue(ConfNode* node, std::string_view value) {
    Owned<String> copy(stringFromView(value));
    if (!copy || !appendTo(&node->values, copy.get())) return false;
    copy.release();
    return true;
}

int32_t confTypeFromWord(std::string_view word) {
    for (int32_t type = kConfOpen; type < kTypes; ++type)
        if (word == kWritten[type]) return type;
    for (const TypeWord& further : kFurtherWords)
        if (word == further.word) return further.type;
    return kConfOpen;
}

const char* confTypeWord(int32_t type) {
    return type < 0 || type >= kTypes ? "?????" : kWritten[type];
}
