#include "ScriptEngine3Defs/ScriptBlock.h"

// A pointer keeps, beside each address, the generation that it saw there. The
// records of dead objects and ended blocks stay readable in their pools, with
// another generation.

namespace {

// Chains longer than this are taken for closed ones.
constexpr int kMaxHops = 10000;

}  // namespace

ScriptObject* scriptPointerTarget(const ScriptObject* pointer) {
    const ScriptObject::Pointer& aim = pointer->pointer;
    if (aim.target == nullptr || aim.target->generation != aim.targetGeneration) return nullptr;
    return aim.target;
}

ScriptBlock* scriptPointerBlock(const ScriptObject* pointer) {
    const ScriptObject::Pointer& aim = pointer->pointer;
    if (aim.block == nullptr || aim.block->generation != aim.blockGeneration) return nullptr;
    return aim.block;
}

bool scriptPointerIsAimed(const ScriptObject* pointer) {
    return pointer->pointer.target != nullptr;
}

void scriptPointerAim(ScriptObject* pointer, ScriptObject* target, ScriptBlock* block) {
    ScriptObject::Pointer& aim = pointer->pointer;
    aim.target = target;
    aim.targetGeneration = target == nullptr ? 0 : target->generation;
    if (block == nullptr) return;
    aim.block = block;
    aim.blockGeneration = block->generation;
}

ScriptObject* scriptPointerFollow(ScriptObject* object) {
    for (int hops = 0; object->type == kTypePointer; ++hops) {
        if (hops == kMaxHops) return nullptr;
        ScriptObject* target = scriptPointerTarget(object);
        if (target == nullptr) return object;
        object = target;
    }
    return object;
}

ScriptObject* scriptObjectResolveRef(const ScriptObject* pointer) {
    for (int hops = 0; hops < kMaxHops; ++hops) {
        ScriptObject* target = scriptPointerTarget(pointer);
        ScriptBlock* block = scriptPointerBlock(pointer);
        if (target == nullptr || target->nameId == kNoVariable || block == nullptr) return nullptr;
        ScriptObject* found = scriptBlockFindVar(block, target->nameId, true, true, nullptr, true);
        // A pointer that travelled is not found under its name where it is now;
        // it still knows its own way.
        if (found == nullptr && target->type == kTypePointer) found = target;
        if (found == nullptr || found->type != kTypePointer) return found;
        pointer = found;
    }
    return nullptr;
}
