#include "ScriptEngine3Defs/ScriptBlock.h"

#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "ScriptEngine3Defs/ScriptLine.h"

namespace {

// A name that more blocks can hold has no list of them: bodies nested by the
// thousand, each with the name, would need the square of that.
constexpr size_t kMaxCandidates = 16;

void clearOwnLiterals(ScriptBlock* block) {
    for (size_t slot = 0; slot < block->shape->literals.size(); ++slot)
        scriptObjectDestroy(&block->ownLiterals[slot]);
    memFree(&block->ownLiterals);
}

void destroyShape(BlockShape* shape) {
    while (shape->spares != nullptr) {
        ScriptBlock* spare = shape->spares;
        shape->spares = spare->nextSpare;
        memFree(&spare);
    }
    for (ScriptLine*& line : shape->lines) scriptLineDestroy(&line);
    for (size_t slot = shape->borrowedLiterals; slot < shape->literals.size(); ++slot)
        scriptObjectDestroy(&shape->literals[slot]);
    memDelete(&shape);
}

// The template's slots may have grown since the block got room for them: only
// the global block is template and activation in one.
bool makeRoomForLocals(ScriptBlock* block, uint32_t count) {
    if (count <= block->localCapacity) return true;
    uint32_t capacity = block->localCapacity == 0 ? 16 : block->localCapacity * 2;
    if (capacity < count) capacity = count;
    void* larger = memResize(block->locals, capacity * sizeof(ScriptObject*));
    if (larger == nullptr) return false;
    block->locals = static_cast<ScriptObject**>(larger);
    for (uint32_t slot = block->localCapacity; slot < capacity; ++slot)
        block->locals[slot] = nullptr;
    block->localCapacity = capacity;
    return true;
}

ScriptObject* literalOf(ScriptBlock* block, uint32_t slot) {
    if (block->ownLiterals != nullptr && block->ownLiterals[slot] != nullptr)
        return block->ownLiterals[slot];
    return block->shape->literals[slot];
}

ScriptObject* slotOf(ScriptBlock* block, const BlockShape::Slot& slot) {
    if (slot.isLiteral) return literalOf(block, slot.index);
    return slot.index < block->localCapacity ? block->locals[slot.index] : nullptr;
}

// Finds every block of the chain that can hold the place's name, up to the
// first that does so for certain.
void workOutPlace(ScriptBlock* block, VarPlace* place) {
    BlockShape* shape = block->shape;
    const size_t first = shape->candidates.size();
    size_t count = 0;
    uint32_t depth = 0;
    for (ScriptBlock* at = block; at != nullptr; at = at->frames[1], ++depth) {
        const BlockShape::Slot* slot = at->shape->slots.find(place->id);
        if (slot == nullptr) continue;
        if (count == kMaxCandidates) {
            shape->candidates.truncate(first);
            place->kind = kPlaceNowhere;
            return;
        }
        if (!shape->candidates.push({depth, slot->index, slot->isLiteral})) {
            shape->candidates.truncate(first);
            return;  // stays unknown: the slow search serves
        }
        ++count;
        if (slot->isLiteral) break;
    }
    if (count == 1 && shape->candidates[first].depth < kFrames &&
        (shape->candidates[first].depth == 0 || !shape->candidates[first].isLiteral)) {
        const VarCandidate found = shape->candidates[first];
        shape->candidates.truncate(first);
        place->depth = static_cast<uint8_t>(found.depth);
        place->slot = found.slot;
        place->kind = found.isLiteral ? kPlaceLiteral : kPlaceLocal;
        return;
    }
    place->kind = count == 0 ? kPlaceNowhere : kPlaceMany;
    place->firstCandidate = static_cast<uint32_t>(first);
    place->candidateCount = static_cast<uint16_t>(count);
}

ScriptObject* searchCandidates(ScriptBlock* block, const VarPlace& place, ScriptBlock** where) {
    const VarCandidate* candidate = &block->shape->candidates[place.firstCandidate];
    ScriptBlock* at = block;
    uint32_t depth = 0;
    for (uint32_t n = 0; n < place.candidateCount; ++n, ++candidate) {
        for (; depth < candidate->depth; ++depth) at = at->frames[1];
        ScriptObject* object = slotOf(at, {candidate->slot, candidate->isLiteral});
        if (object == nullptr) continue;
        if (where != nullptr) *where = at;
        return object;
    }
    return nullptr;
}

}  // namespace

ScriptBlock* scriptBlockCreate() {
    auto* block = memNew<ScriptBlock>();
    if (block == nullptr) return nullptr;
    *block = ScriptBlock{};
    block->shape = memNew<BlockShape>();
    if (block->shape == nullptr) {
        memFree(&block);
        return nullptr;
    }
    block->frames[0] = block;
    block->generation = 1;
    block->lastCondition = kConditionNone;
    return block;
}

ScriptBlock* scriptBlockNewInstance(BlockShape* shape) {
    const size_t bytes = sizeof(ScriptBlock) + shape->localCount * sizeof(ScriptObject*);
    auto* block = static_cast<ScriptBlock*>(memAlloc(bytes));
    if (block == nullptr) return nullptr;
    *block = ScriptBlock{};
    block->shape = shape;
    block->locals = reinterpret_cast<ScriptObject**>(block + 1);
    block->localCapacity = shape->localCount;
    block->frames[0] = block;
    block->generation = 1;
    block->isInstance = 1;
    for (uint32_t slot = 0; slot < shape->localCount; ++slot) block->locals[slot] = nullptr;
    return block;
}

void scriptBlockClearAll(ScriptBlock* block) {
    block->contents = kHoldsNothing;
    for (uint32_t slot = 0; slot < block->localCapacity; ++slot)
        if (block->locals[slot] != nullptr) scriptObjectDestroy(&block->locals[slot]);
    if (block->ownLiterals != nullptr) clearOwnLiterals(block);
    if (block->extras == nullptr) return;
    block->extras->each([](uint32_t, ScriptObject* object) { scriptObjectDestroy(&object); });
    memDelete(&block->extras);
}

void scriptBlockDestroy(ScriptBlock** block) {
    if (block == nullptr || *block == nullptr) return;
    scriptBlockClear(*block);
    if (!(*block)->isInstance) {
        memFree(&(*block)->locals);
        destroyShape((*block)->shape);
    }
    memFree(block);
}

bool scriptBlockMakeReady(ScriptBlock* globalBlock) {
    return makeRoomForLocals(globalBlock, globalBlock->shape->localCount);
}

bool scriptBlockReserve(ScriptBlock* blockTemplate, uint32_t id) {
    BlockShape* shape = blockTemplate->shape;
    if (id == kNoVariable) return false;
    if (shape->slots.find(id) != nullptr) return true;
    if (!shape->slots.add(id, {shape->localCount, false})) return false;
    ++shape->localCount;
    return true;
}

uint32_t scriptBlockAddLiteral(ScriptBlock* blockTemplate, ScriptObject* object) {
    BlockShape* shape = blockTemplate->shape;
    if (!shape->literals.push(object)) return kNoVariable;
    // The global block is run as it is: there is nobody to share with.
    if (!blockTemplate->runsItself) object->flags |= kObjectShared;
    return static_cast<uint32_t>(shape->literals.size() - 1);
}

bool scriptBlockBorrowLiteral(ScriptBlock* blockTemplate, uint32_t id, ScriptObject* object) {
    BlockShape* shape = blockTemplate->shape;
    const auto slot = static_cast<uint32_t>(shape->literals.size());
    if (!shape->literals.push(object)) return false;
    shape->borrowedLiterals = slot + 1;
    return shape->slots.find(id) != nullptr || shape->slots.add(id, {slot, true});
}

bool scriptBlockAddVar(ScriptBlock* block, uint32_t id, ScriptObject* object) {
    if (block == nullptr || object == nullptr || id == kNoVariable) return false;
    if (scriptBlockOwnVar(block, id) != nullptr) return false;
    // Only the global block, which is its own template, can still make slots here.
    if (!block->isInstance && !scriptBlockReserve(block, id)) return false;
    const BlockShape::Slot* slot = block->shape->slots.find(id);
    if (slot != nullptr && (slot->index < block->localCapacity || !block->isInstance)) {
        if (!makeRoomForLocals(block, slot->index + 1)) return false;
        block->locals[slot->index] = object;
        scriptBlockHolds(block, kHoldsLocals);
    } else {
        scriptBlockHolds(block, kHoldsOthers);
        if (block->extras == nullptr) block->extras = memNew<IdMap<ScriptObject*>>();
        if (block->extras == nullptr || !block->extras->add(id, object)) return false;
    }
    object->nameId = id;
    return true;
}

ScriptObject* scriptBlockDeclareVar(ScriptBlock* block, uint32_t id, ScriptType type) {
    if (ScriptObject* visible = scriptBlockSearch(block, id, nullptr)) return visible;
    Owned<ScriptObject> object(scriptObjectCreate(type));
    if (!scriptBlockAddVar(block, id, object.get())) return nullptr;
    return object.release();
}

ScriptObject* scriptBlockOwnVar(ScriptBlock* block, uint32_t id) {
    if (block == nullptr) return nullptr;
    if (const BlockShape::Slot* slot = block->shape->slots.find(id))
        if (ScriptObject* object = slotOf(block, *slot)) return object;
    if (block->extras == nullptr) return nullptr;
    ScriptObject** extra = block->extras->find(id);
    return extra == nullptr ? nullptr : *extra;
}

ScriptObject* scriptBlockSearch(ScriptBlock* block, uint32_t id, ScriptBlock** where) {
    for (; block != nullptr; block = block->parent) {
        ScriptObject* object = scriptBlockOwnVar(block, id);
        if (object == nullptr) continue;
        if (where != nullptr) *where = block;
        return object;
    }
    return nullptr;
}

ScriptObject* scriptBlockSearchPlaceSlow(ScriptBlock* block, VarPlace* place, ScriptBlock** where) {
    if (place->kind == kPlaceUnknown) workOutPlace(block, place);
    switch (place->kind) {
        case kPlaceLiteral:
            if (where != nullptr) *where = block;
            return literalOf(block, place->slot);
        case kPlaceLocal:
            return scriptBlockSearchPlace(block, place, where);
        case kPlaceMany:
            return searchCandidates(block, *place, where);
        default:
            return scriptBlockSearch(block, place->id, where);
    }
}

ScriptObject* scriptBlockOwnLiteral(ScriptBlock* block, ScriptObject* object) {
    if (!object->isShared()) return object;
    for (; block != nullptr; block = block->parent) {
        const GrowArray<ScriptObject*>& literals = block->shape->literals;
        for (size_t slot = 0; slot < literals.size(); ++slot) {
            if (literals[slot] != object) continue;
            if (block->ownLiterals == nullptr) {
                const size_t bytes = literals.size() * sizeof(ScriptObject*);
                block->ownLiterals = static_cast<ScriptObject**>(memAlloc(bytes));
                if (block->ownLiterals == nullptr) return nullptr;
                std::memset(block->ownLiterals, 0, bytes);
            }
            scriptBlockHolds(block, kHoldsOthers);
            if (block->ownLiterals[slot] == nullptr)
                block->ownLiterals[slot] = scriptObjectClone(object);
            return block->ownLiterals[slot];
        }
    }
    return nullptr;
}

ScriptBlock* scriptBlockOutermost(ScriptBlock* block) {
    while (block->parent != nullptr) block = block->parent;
    return block;
}
