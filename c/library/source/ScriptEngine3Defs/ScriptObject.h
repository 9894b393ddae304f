#pragma once

#include <cstdint>
#include <string_view>

#include "ScriptEngine3Defs/ScriptTypes.h"
#include "containers/Owned.h"
#include "containers/Pool.h"
#include "strings/String.h"

struct BasicFile;
struct ConfPatcher;
struct List;
struct ListIterator;
struct Map;
struct MapIterator;
struct Parser;
struct PathTree;
struct RbKeys;
struct ScriptExpression;
struct Set;
struct SetIterator;
struct Vector;

// Flags of an object.
enum ScriptObjectFlags : uint32_t {
    // Stands in a template and is seen by all its instances: whoever would
    // write to it, retype it or keep its address takes a copy first
    // (`scriptBlockOwnLiteral`).
    kObjectShared = 1,
    // An operation is walking through this object now; meeting it again inside
    // itself ends the operation.
    kObjectInWalk = 2,
    // A value that an expression has made and owns while it is being evaluated.
    kObjectMade = 4,
};

// How far the walk through a list has come.
enum ListWalk : uint64_t {
    kListNoWalk,       // never begun
    kListOnElement,    // the cursor stands on the element that was delivered last
    kListOnNext,       // it stands on the one to deliver next
    kListAtEnd,        // the walk ran off the end: no cursor
    kListErasedToEnd,  // the element erased last was the last one: no cursor
};

// One script value, in half a line of the cache. The payload slots lie inside the
// record, a number and the record of a string too, so that a value is one piece of
// a pool. `values` of the plain layout is the union; it is empty exactly when the
// type is undef.
// The record of a dead object stays in the pool with its `generation` raised:
// that is how a reference finds out that what it refers to is gone. The pool
// writes its link over the first eight bytes of a dead record.
struct ScriptObject {
    struct Pointer {
        ScriptObject* target;  // not owned, may be null
        ScriptBlock* block;    // where the target's name is looked up, not owned, may be null
        uint32_t targetGeneration;
        uint32_t blockGeneration;
    };
    struct ListValue {
        List* list;
        ListIterator* cursor;  // owned, null without one
        uint64_t walk;         // a `ListWalk`
    };
    struct VectorValue {
        Vector* vector;
        uint32_t cursor;
        uint32_t cursorSet;   // 1 once there is a cursor
        uint32_t direction;   // 1 or 0xFFFFFFFF
        uint32_t numberName;  // of the numbers in the array's slots, see VectorElements.h
    };
    struct SetValue {
        Set* set;
        SetIterator* cursor;  // owned, null without one
    };
    struct MapValue {
        Map* map;
        MapIterator* cursor;  // owned, null without one
    };
    // A container that waits for its end, its cursor gone already.
    struct Waiting {
        void* payload;
        ScriptObject* next;
    };

    union {
        ScriptExpression* expression;
        Pointer pointer;
        double number;
        String string;
        BasicFile* file;
        ListValue list;
        VectorValue vector;
        SetValue set;
        MapValue map;
        PathTree* tree;
        Parser* parser;
        ConfPatcher* config;
        Waiting waiting;
        void* payload;  // slot 0 of the types that keep a record outside
    };
    uint32_t nameId : 24;
    ScriptType type : 8;
    mutable uint32_t flags : 3;  // `ScriptObjectFlags`
    uint32_t generation : 29;

    bool isShared() const { return (flags & kObjectShared) != 0; }
    bool hasValues() const { return type != kTypeUndef; }
};
static_assert(sizeof(ScriptObject) == 32 || sizeof(void*) != 8);

// Making and ending. Objects come from one pool of the process, for the thread
// that runs the script. Null or false when memory runs out.

// An object of type 1 to 13 with its default payload and no name; null for any other type.
ScriptObject* scriptObjectCreate(ScriptType type);
inline ScriptObject* scriptObjectCreateNumber(double value);
// A string object with a copy of the text.
ScriptObject* scriptObjectCreateString(std::string_view text);
// An object from the text of a literal, by its form; null when the text is none.
ScriptObject* scriptObjectFromLiteral(std::string_view text);
// A deep copy that keeps name id and type and is not shared; null for an undef
// value, and for one that holds itself or is nested too deeply.
ScriptObject* scriptObjectClone(const ScriptObject* object);
// True when `scriptObjectClone` would give a copy, memory apart.
bool scriptObjectCanClone(const ScriptObject* object);
// Ends the object by its type and clears the pointer. A pointer's target stays.
inline void scriptObjectDestroy(ScriptObject** object);
// The same as a destructor callback of the containers.
void scriptObjectDestroyElement(void** element);
// Gives the object another type and that type's default payload; nothing when
// the type is the same. Retyping to undef fails and leaves an undef object.
bool scriptObjectRetype(ScriptObject* object, ScriptType type);
// Moves the payload of `source` into `target`, whose own is ended; `source` is
// left undef. Neither may be shared.
void scriptObjectMove(ScriptObject* target, ScriptObject* source);

// Gives the pool of objects back. Only when no object is left.
void scriptObjectPoolRelease();

// What stands behind the inline functions; not for others.
extern Pool scriptObjectPool;
void scriptObjectEnd(ScriptObject* dead);

// A nameless undef object, or null.
inline ScriptObject* scriptObjectTake() {
    auto* object = static_cast<ScriptObject*>(poolTake(&scriptObjectPool));
    if (object == nullptr) return nullptr;
    object->nameId = kNoVariable;
    object->type = kTypeUndef;
    object->flags = 0;
    return object;
}

inline ScriptObject* scriptObjectCreateNumber(double value) {
    ScriptObject* object = scriptObjectTake();
    if (object == nullptr) return nullptr;
    object->type = kTypeNumber;
    object->number = value;
    return object;
}

inline void scriptObjectDestroy(ScriptObject** object) {
    if (object == nullptr || *object == nullptr) return;
    ScriptObject* dead = *object;
    *object = nullptr;
    ++dead->generation;
    const bool isOnePiece = dead->type == kTypeNumber ||
                            (dead->type == kTypeString && dead->string.capacity <= kStringInside);
    if (!isOnePiece) return scriptObjectEnd(dead);
    poolGive(&scriptObjectPool, dead);
}

// What stands behind `scriptObjectAssign` where it is more than a number.
bool scriptObjectAssignAny(ScriptEngine* engine, ScriptObject* target, ScriptObject* source);

inline bool scriptObjectAssign(ScriptEngine* engine, ScriptObject* target, ScriptObject* source) {
    if (target == nullptr || source == nullptr) return false;
    if (target->type == kTypeNumber && source->type == kTypeNumber) {
        target->number = source->number;
        return true;
    }
    if (target->type == kTypeString && source->type == kTypeString &&
        stringSetInside(&target->string, &source->string))
        return true;
    return scriptObjectAssignAny(engine, target, source);
}

template <>
struct OwnedTraits<ScriptObject> {
    static void destroy(ScriptObject** object) { scriptObjectDestroy(object); }
};

// Names and literals.

// True for a name that a variable can have: letters, digits, `_` and `.`, not
// beginning with a digit.
bool scriptObjectIsValidName(std::string_view text);
// The type that a literal of this form makes; `kTypePointer` for a bare name.
ScriptType scriptObjectLiteralType(std::string_view text);

// The default operations.

// Takes over the value of `source` by the rules of references. `target` must
// not be shared. The engine is the one that reports.
inline bool scriptObjectAssign(ScriptEngine* engine, ScriptObject* target, ScriptObject* source);
// Sets a number, string or file from text; on a pointer renames its target.
bool scriptObjectSetStringValue(ScriptEngine* engine, ScriptObject* object, std::string_view text);
// The same for a string and a text that nobody needs any more: mostly the object
// gets its buffer and it gets the object's, with old bytes in it.
bool scriptObjectTakeStringValue(ScriptObject* object, String* text);
// The value as text, owned by the caller; null when it has none. `scope` is
// the block in which an expression is evaluated.
String* scriptObjectGetString(ScriptEngine* engine, const ScriptObject* object,
                              ScriptBlock* scope = nullptr);
// The same, appended to `out`. False, with `out` as it was, when there is no text.
bool scriptObjectAppendString(ScriptEngine* engine, const ScriptObject* object, String* out,
                              ScriptBlock* scope = nullptr);
ScriptTruth scriptObjectGetBool(ScriptEngine* engine, const ScriptObject* object,
                                ScriptBlock* scope = nullptr);
// The size, `kNoSize` when there is none.
uint32_t scriptObjectGetSize(const ScriptObject* object);
// -1, 0, 1, or `kCompareFailed`.
int scriptObjectCompare(ScriptEngine* engine, const ScriptObject* a, const ScriptObject* b);
// The same as the order of sets and maps; what cannot be compared counts as below.
signed char scriptObjectCompareElements(const void* a, const void* b);
// The keys of elements in that order.
extern const RbKeys scriptElementKeys;

// References.

// The object that a pointer refers to, by name in its block and through
// chains; null when it is gone or was never there.
ScriptObject* scriptObjectResolveRef(const ScriptObject* pointer);
// The object in slot 0, or null when there is none or it is gone.
ScriptObject* scriptPointerTarget(const ScriptObject* pointer);
// The block in slot 1, or null when there is none or it is gone.
ScriptBlock* scriptPointerBlock(const ScriptObject* pointer);
// True when slot 0 was set, whether its object is still alive or not.
bool scriptPointerIsAimed(const ScriptObject* pointer);
// Aims a pointer. Neither object nor block is owned; a null block leaves slot 1 as it is.
void scriptPointerAim(ScriptObject* pointer, ScriptObject* target, ScriptBlock* block);
// Follows pointers through slot 0 to the last object that is no pointer, or to
// a pointer that has no target. Null when the chain closes on itself or its end is gone.
ScriptObject* scriptPointerFollow(ScriptObject* object);
