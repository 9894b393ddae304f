#include "ScriptEngine3Functions/LockCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "threads/NamedLock.h"

namespace {

constexpr std::string_view kWait = "wait";

// The engine's record of a lock, made when there is none; null when memory runs out.
NamedLock* lockOf(ScriptEngine* engine, const String* name) {
    if (auto* known = static_cast<NamedLock*>(mapGet(engine->locks, name))) return known;
    Owned<NamedLock> lock(namedLockCreate(name));
    if (!lock || !mapInsert(engine->locks, lock->name, lock.get())) return nullptr;
    return lock.release();
}

int scriptEngineSetLock(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* name = in.string(0);
    const String* mode = in.count() > 1 ? in.string(1) : nullptr;
    if (!in.ok()) return in.status();
    if (stringIsEmpty(name)) return kNegative;
    const LockScope scope(engine->lockTableLock);
    NamedLock* lock = lockOf(engine, name);
    if (lock == nullptr) return commandOutOfMemory(engine, "scriptEngineSetLock");
    const bool waits = stringView(mode) == kWait;
    return (waits ? namedLockTakeWaiting(lock) : namedLockTake(lock)) ? kDone : kNegative;
}

int scriptEngineRemoveLock(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* name = in.string(0);
    if (!in.ok()) return in.status();
    const LockScope scope(engine->lockTableLock);
    MapNode* node = mapFindNode(engine->locks, name);
    if (node == nullptr) return kNegative;
    auto* lock = static_cast<NamedLock*>(node->value);
    const bool released = namedLockRelease(lock);
    // A record that nobody holds is that of a take that failed, or done with.
    if (lock->count == 0) mapEraseNode(engine->locks, node, nullptr, namedLockDestroyElement);
    return released ? kDone : kNegative;
}

constexpr CommandRow kLockCommands[] = {
    // name         handler                 min max targets
    {"setlock", scriptEngineSetLock, 1, 2, nullptr},
    {"removelock", scriptEngineRemoveLock, 1, 1, nullptr},
};

}  // namespace

std::span<const CommandRow> lockCommands() {
    return kLockCommands;
}
