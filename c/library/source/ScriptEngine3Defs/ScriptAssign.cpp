#include "ScriptEngine3Defs/ScriptContainers.h"
#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "config/ConfPatcher.h"
#include "text/TextParser.h"

namespace {

// Of these an assignment carries the type alone.
bool carriesTypeOnly(ScriptType type) {
    return type == kTypeUndef || type == kTypeExpr || type == kTypeFile;
}

// To a pointer: writes through to what it refers to, or aims it when it was
// never aimed. What it referred to may be gone.
bool assignToPointer(ScriptEngine* engine, ScriptObject* pointer, ScriptObject* source) {
    if (scriptPointerIsAimed(pointer)) {
        ScriptObject* target = scriptPointerFollow(pointer);
        if (target == nullptr || target == pointer) return false;
        return scriptObjectAssign(engine, target, source);
    }
    if (source->isShared()) return false;
    scriptPointerAim(pointer, source, nullptr);
    return true;
}

// Puts a copy in the place of a record.
template <typename Record>
bool replaceRecord(Record** target, Record* made) {
    Owned<Record> copy(made);
    if (!copy) return false;
    OwnedTraits<Record>::destroy(target);
    *target = copy.release();
    return true;
}

// The value itself, into a target of the same type.
bool copyValue(ScriptObject* target, const ScriptObject* source) {
    switch (source->type) {
        case kTypeNumber:
            target->number = source->number;
            return true;
        case kTypeString:
            if (source->string.length != 0) return stringSet(&target->string, &source->string);
            stringClear(&target->string);
            return true;
        case kTypeParser:
            return replaceRecord(&target->parser, parserClone(source->parser));
        case kTypeConfig:
            return replaceRecord(&target->config, confPatchCopy(source->config));
        default:
            return carriesTypeOnly(source->type) || scriptContainerAssign(target, source);
    }
}

// A target of another type loses what it held. The source may be a part of
// that: the new value is whole before the old one goes.
bool replaceValue(ScriptEngine* engine, ScriptObject* target, const ScriptObject* source) {
    if (scriptTypeIsContainer(target->type) && source->type != kTypeUndef) {
        Owned<ScriptObject> fresh(scriptObjectCreate(source->type));
        const bool copied = fresh && copyValue(fresh.get(), source);
        if (fresh) {
            scriptObjectMove(target, fresh.get());
            return copied;
        }
    } else if (scriptObjectRetype(target, source->type)) {
        return copyValue(target, source);
    }
    logError(engine == nullptr ? nullptr : engine->logger, "scriptObjectDefaultAssign: #::11");
    logLocation(engine == nullptr ? nullptr : engine->logger, kLogError);
    return false;
}

}  // namespace

bool scriptObjectAssignAny(ScriptEngine* engine, ScriptObject* target, ScriptObject* source) {
    if (source->type == kTypePointer && target->type != kTypeUndef) {
        source = scriptPointerFollow(source);
        if (source == nullptr || source->type == kTypePointer) return false;
    }
    if (source == target) return true;
    if (target->type == kTypePointer) return assignToPointer(engine, target, source);
    if (source->type == kTypePointer) {
        // Only an undef target comes here: it becomes a pointer to the pointer.
        if (!scriptObjectRetype(target, kTypePointer)) return false;
        scriptPointerAim(target, source, scriptPointerBlock(source));
        return true;
    }
    if (target->type == source->type) return copyValue(target, source);
    return replaceValue(engine, target, source);
}
