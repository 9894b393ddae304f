#pragma once

#include <cstdint>

#include "ScriptEngine3Defs/IdMap.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Defs/ScriptObject.h"
#include "ScriptEngine3Defs/VarPlace.h"
#include "containers/GrowArray.h"

struct ScriptLine;

// What an activation has to end.
enum BlockContents : uint8_t {
    kHoldsNothing = 0,
    kHoldsLocals = 1,  // variables in their slots
    kHoldsOthers = 2,  // literals of its own, or variables without a slot
};

// `ScriptBlock::lastCondition`.
enum BlockCondition : uint8_t { kConditionFalse = 0, kConditionTrue = 1, kConditionNone = 2 };

// What a template and its instances share: the statements, the literals, and
// which names can stand in the block. A name gets its slot when the parser
// meets a statement that declares it there.
struct BlockShape {
    struct Slot {
        uint32_t index;
        bool isLiteral;
    };

    GrowArray<ScriptLine*> lines;       // owned
    GrowArray<ScriptObject*> literals;  // owned from `borrowedLiterals` on
    uint32_t borrowedLiterals = 0;      // the file's own `scriptname` and `scriptdir`
    uint32_t localCount = 0;
    IdMap<Slot> slots;
    GrowArray<uint32_t> paramIds;
    GrowArray<BlockShape::Slot> paramSlots;
    GrowArray<VarCandidate> candidates;
    ScriptBlock* spares = nullptr;  // instances that wait to be used again
    GrowArray<ExprStep> chain;      // the statements in one piece, once they run again; or empty
    bool hasRun = false;
};

// Blocks that an instance knows on its way out: itself, and the nearest ones that
// can hold names.
constexpr uint32_t kFrames = 4;

// A body as parsed (the template), or one activation of it (an instance), and
// thus the unit of scope. An instance costs no copies: it sees the template's
// literals until it has its own of one of them.
struct ScriptBlock {
    BlockShape* shape;             // owned by the template
    ScriptObject** locals;         // the block's own variables by slot, null where not declared yet
    ScriptObject** ownLiterals;    // by slot, null where the template's still serves; or null
    IdMap<ScriptObject*>* extras;  // variables without a slot, or null
    ScriptBlock* parent;           // enclosing scope, not owned
    // Of an instance: itself, the next block out that can hold names, the next one
    // behind that, ...; null behind the last.
    ScriptBlock* frames[kFrames];
    ScriptBlock* nextSpare;
    uint32_t generation;  // raised when the instance ends: references into it are dead
    uint32_t localCapacity;
    BlockContents contents;
    uint8_t isInstance;
    uint8_t runsItself;  // the global block: template and only activation in one
    uint8_t lastCondition;
    uint8_t lastResult;  // 1 while no statement of the run gave a negative result
};

// An empty template; null when memory runs out.
ScriptBlock* scriptBlockCreate();
// Ends a template with its statements, variables and spare instances, or an
// instance for good; clears the pointer.
void scriptBlockDestroy(ScriptBlock** block);

// An activation of the template with `parent` as its enclosing scope; null when memory runs out.
inline ScriptBlock* scriptBlockInstantiate(ScriptBlock* blockTemplate, ScriptBlock* parent);
// Ends an activation: its variables go, and it waits to be used again.
inline void scriptBlockRetire(ScriptBlock* instance);
// Ends an activation and begins the next in its place, with the same parent.
inline void scriptBlockRenew(ScriptBlock* instance);
// Before the first run, once all names are known: gives the global block, which
// is run as it is, the slots of all of them.
bool scriptBlockMakeReady(ScriptBlock* globalBlock);

// Parse time: gives the name a slot in the template, if it has none yet.
bool scriptBlockReserve(ScriptBlock* blockTemplate, uint32_t id);
// Parse time: adds a literal or expression, which the block owns from now on;
// gives its slot, or `kNoVariable` when memory runs out (the object stays the caller's).
uint32_t scriptBlockAddLiteral(ScriptBlock* blockTemplate, ScriptObject* object);
// Parse time: adds a named literal that someone else owns (`scriptname`, `scriptdir`).
bool scriptBlockBorrowLiteral(ScriptBlock* blockTemplate, uint32_t id, ScriptObject* object);

// Adds a variable; the block owns the object from now on and names it. False
// for no id, no object, or an id that the block holds already.
bool scriptBlockAddVar(ScriptBlock* block, uint32_t id, ScriptObject* object);
// The variable as it is visible from the block, whatever its type, or a new one
// of the type in this block. Null when memory runs out.
ScriptObject* scriptBlockDeclareVar(ScriptBlock* block, uint32_t id, ScriptType type);
// The variable of this id in this block alone, raw; null without one. May be shared.
ScriptObject* scriptBlockOwnVar(ScriptBlock* block, uint32_t id);
// The variable of this id, raw, in this block or the nearest parent that has
// it; `where` (may be null) receives the block. May be shared.
ScriptObject* scriptBlockSearch(ScriptBlock* block, uint32_t id, ScriptBlock** where);
// What stands behind `scriptBlockSearchPlace` where a place has no short way.
ScriptObject* scriptBlockSearchPlaceSlow(ScriptBlock* block, VarPlace* place, ScriptBlock** where);

// The same through a place, in a few instructions after the first time. `where`
// may be null.
inline ScriptObject* scriptBlockSearchPlace(ScriptBlock* block, VarPlace* place,
                                            ScriptBlock** where) {
    if (place->kind == kPlaceLocal) {
        block = block->frames[place->depth];
        if (where != nullptr) *where = block;
        return block->locals[place->slot];
    }
    if (place->kind == kPlaceLiteral && block->ownLiterals == nullptr) {
        if (where != nullptr) *where = block;
        return block->shape->literals[place->slot];
    }
    return scriptBlockSearchPlaceSlow(block, place, where);
}

// What stands behind the inline functions; not for others.
ScriptBlock* scriptBlockNewInstance(BlockShape* shape);
void scriptBlockClearAll(ScriptBlock* block);

inline void scriptBlockHolds(ScriptBlock* block, BlockContents more) {
    block->contents = static_cast<BlockContents>(block->contents | more);
}

inline ScriptBlock* scriptBlockInstantiate(ScriptBlock* blockTemplate, ScriptBlock* parent) {
    BlockShape* shape = blockTemplate->shape;
    ScriptBlock* block = shape->spares;
    if (block != nullptr) [[likely]]
        shape->spares = block->nextSpare;
    else if ((block = scriptBlockNewInstance(shape)) == nullptr)
        return nullptr;
    block->parent = parent;
    block->lastCondition = blockTemplate->lastCondition;
    if (parent == nullptr) return block;
    // Most bodies declare nothing: a search passes them over, however many
    // stand one inside the other.
    const bool holdsNames = parent->shape->localCount > 0 || parent->frames[1] == nullptr;
    ScriptBlock* outer = holdsNames ? parent : parent->frames[1];
    block->frames[1] = outer;
    for (uint32_t at = 2; at < kFrames; ++at) block->frames[at] = outer->frames[at - 1];
    return block;
}

// Ends what the activation holds.
inline void scriptBlockClear(ScriptBlock* block) {
    if (block->contents == kHoldsNothing) return;
    if (block->contents != kHoldsLocals) return scriptBlockClearAll(block);
    block->contents = kHoldsNothing;
    ScriptObject** local = block->locals;
    for (ScriptObject** end = local + block->localCapacity; local != end; ++local)
        scriptObjectDestroy(local);
}

inline void scriptBlockRetire(ScriptBlock* instance) {
    scriptBlockClear(instance);
    ++instance->generation;
    instance->nextSpare = instance->shape->spares;
    instance->shape->spares = instance;
}

inline void scriptBlockRenew(ScriptBlock* instance) {
    scriptBlockClear(instance);
    ++instance->generation;
    instance->lastCondition = kConditionNone;
}

// The instance's own copy of an object that it shares with its template; the
// object itself when it is not shared. The search goes through the chain of
// blocks. Null when memory runs out.
ScriptObject* scriptBlockOwnLiteral(ScriptBlock* block, ScriptObject* object);

// Looks a variable up with the full rules: parents on demand, an expression
// evaluated on demand (its value lives until the end of the statement), and
// pointers followed on demand if there is an engine. The result may be shared.
ScriptObject* scriptBlockFindVar(ScriptBlock* block, uint32_t id, bool searchParents, bool evaluate,
                                 ScriptEngine* engine, bool followRefs);

// The outermost block of the chain.
ScriptBlock* scriptBlockOutermost(ScriptBlock* block);

template <>
struct OwnedTraits<ScriptBlock> {
    static void destroy(ScriptBlock** block) { scriptBlockDestroy(block); }
};
