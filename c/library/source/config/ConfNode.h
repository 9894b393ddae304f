#pragma once

#include <cstdint>
#include <string_view>

#include "containers/Owned.h"
#include "containers/Vector.h"
#include "strings/String.h"

// The nodes of a configuration. A tree may be nested deeper than the stack is:
// whatever walks through one goes by `parent` and `place`, without recursion.

enum ConfType : int32_t {
    kConfNone = 0,
    kConfOpen = 1,
    kConfString = 2,
    kConfBool = 3,
    kConfTernary = 4,
    kConfInt = 5,
    kConfFloat = 6,
    kConfDateTime = 7,
    kConfTimeSpan = 8,
    kConfFileName = 9,
    kConfDirName = 10,
    kConfLogLevel = 11,
};

struct ConfNodeIndex;

// A node's name lies in the record, and vectors that would be empty are not there.
struct ConfNode {
    String name;  // empty: a root whose name was not read
    int32_t type;
    uint8_t multi;
    uint8_t searched;      // a child was looked for here before
    Vector* values;        // of owned `String`; null for none
    Vector* children;      // of owned `ConfNode`; null for none
    ConfNode* parent;      // null for a root
    uint32_t place;        // among the children of the parent
    ConfNodeIndex* index;  // owned; finds children by name where there are many
};

// A node without a type, a child of `parent` behind its others when one is given;
// else the caller owns it. Null when memory runs out.
ConfNode* confNodeCreate(ConfNode* parent, std::string_view name);

// Ends a root with all below it, and clears the pointer. Null-safe.
void confNodeDestroy(ConfNode** root);

template <>
struct OwnedTraits<ConfNode> {
    static void destroy(ConfNode** root) { confNodeDestroy(root); }
};

// A deep copy of a root, owned by the caller; null when memory runs out.
ConfNode* confNodeClone(const ConfNode* root);

// The first child of that name; null when there is none.
ConfNode* confNodeChild(ConfNode* node, std::string_view name);

inline ConfNode* confNodeChildAt(const ConfNode* node, uint32_t place) {
    return static_cast<ConfNode*>(vectorGet(node->children, place));
}
// The node behind this one among its parent's children; null for the last one and for a root.
inline ConfNode* confNodeNext(const ConfNode* node) {
    return node->parent == nullptr ? nullptr : confNodeChildAt(node->parent, node->place + 1);
}

// Adds a copy of the text as a further value; false when memory runs out.
bool confNodeAddValue(ConfNode* node, std::string_view value);
inline const String* confNodeValueAt(const ConfNode* node, uint32_t place) {
    return static_cast<const String*>(vectorGet(node->values, place));
}

// The type that a word of a file names, in lower case and without its "multi";
// `kConfOpen` for an unknown one.
int32_t confTypeFromWord(std::string_view word);
// The word for a type as it is written; null for `kConfNone`, "?????" for a
// number that is no type.
const char* confTypeWord(int32_t type);
