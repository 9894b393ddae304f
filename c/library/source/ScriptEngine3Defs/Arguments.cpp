#include "ScriptEngine3Defs/Arguments.h"

#include "ScriptEngine3Defs/ScriptContainers.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"

namespace {

// The word for a type in the messages about parameters.
const char* typeWord(ScriptType type) {
    switch (type) {
        case kTypePointer:
            return "pointer";
        case kTypeTree:
        case kTypeConfig:
        case kTypeNone:
        case kTypeUndef:
        case kTypeExpr:
            return "illegal type";
        default:
            return scriptObjectTypeName(type);
    }
}

// What the search found, with its pointers followed and its expression
// evaluated; null when that gives nothing.
ScriptObject* finish(ScriptEngine* engine, ScriptObject* object, ScriptBlock* where,
                     bool followRefs) {
    if (followRefs && object->type == kTypePointer) {
        object = scriptPointerFollow(object);
        if (object == nullptr) return nullptr;
    }
    if (object->type != kTypeExpr) return object;
    ScriptObject* value = scriptEvaluateToObject(engine, where, object->expression);
    if (value == nullptr || !scriptTemporariesAdd(value)) return nullptr;
    return value;
}

ScriptObject* fetch(ScriptEngine* engine, ScriptBlock* block, ScriptArg* arg, bool followRefs) {
    ScriptBlock* where = nullptr;
    ScriptObject* object = scriptBlockSearchPlace(block, arg, &where);
    return object == nullptr ? nullptr : finish(engine, object, where, followRefs);
}

}  // namespace

ScriptObject* scriptBlockFindVar(ScriptBlock* block, uint32_t id, bool searchParents, bool evaluate,
                                 ScriptEngine* engine, bool followRefs) {
    if (block == nullptr || id == kNoVariable) return nullptr;
    ScriptBlock* where = block;
    ScriptObject* object =
        searchParents ? scriptBlockSearch(block, id, &where) : scriptBlockOwnVar(block, id);
    if (object == nullptr || !evaluate) return object;
    if (engine != nullptr) return finish(engine, object, where, followRefs);
    return object->type == kTypeExpr ? nullptr : object;
}

ScriptObject* scriptEngineGetParam(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                                   uint32_t index, ScriptType type, bool followRefs) {
    if (engine == nullptr || block == nullptr || args == nullptr || index >= args->count)
        return nullptr;
    ScriptObject* object = fetch(engine, block, &args->items[index], followRefs);
    if (object == nullptr) {
        logError(engine->logger, "Parameter %u is not (properly) defined", index + 1);
        return nullptr;
    }
    if (type == kTypeUndef || object->type == type) return object;
    object = scriptBlockOwnLiteral(block, object);
    if (object == nullptr || !scriptObjectRetype(object, type)) {
        logError(engine->logger, "Failed to set parameter %u to \"%S\" type", index + 1,
                 typeWord(type));
        return nullptr;
    }
    return object;
}

bool scriptEngineRequireType(ScriptEngine* engine, const ScriptObject* object, ScriptType type,
                             uint32_t index) {
    if (object != nullptr && object->type == type) return true;
    logError(engine->logger, "Parameter %u must be a \"%S\"", index + 1, typeWord(type));
    return false;
}

bool scriptEngineGetVarText(ScriptEngine* engine, ScriptBlock* block, ScriptArg* arg,
                            String* scratch, std::string_view* text) {
    ScriptBlock* where = nullptr;
    ScriptObject* object = scriptBlockSearchPlace(block, arg, &where);
    if (object == nullptr) return false;
    if (object->type == kTypeString) {
        *text = stringView(&object->string);
        return true;
    }
    if (!scriptObjectAppendString(engine, object, scratch, where)) return false;
    *text = stringView(scratch);
    return true;
}

String* scriptEngineGetVarString(ScriptEngine* engine, ScriptBlock* block, uint32_t id) {
    ScriptBlock* where = nullptr;
    ScriptObject* object = scriptBlockSearch(block, id, &where);
    return object == nullptr ? nullptr : scriptObjectGetString(engine, object, where);
}

ScriptObject* Arguments::fail() {
    status_ = kError;
    return nullptr;
}

ScriptObject* Arguments::fetch(uint32_t index, bool followRefs) {
    if (!ok()) return nullptr;
    if (loanCount_ != 0 && index < count()) {
        ScriptObject* found = scriptBlockSearchPlace(block_, arg(index), nullptr);
        if (found != nullptr && followRefs) found = scriptPointerFollow(found);
        if (!keepLoansFrom(found)) return nullptr;
    }
    ScriptObject* object =
        scriptEngineGetParam(engine_, block_, args_, index, kTypeUndef, followRefs);
    return object == nullptr ? fail() : object;
}

ScriptObject* Arguments::refuse(uint32_t index, ScriptType type) {
    scriptEngineRequireType(engine_, nullptr, type, index);
    return fail();
}

double Arguments::number(uint32_t index) {
    const ScriptObject* object = typed(index, kTypeNumber);
    return object == nullptr ? 0 : object->number;
}

const String* Arguments::string(uint32_t index) {
    ScriptObject* object = typed(index, kTypeString);
    return object == nullptr ? nullptr : lend(object);
}

const String* Arguments::text(uint32_t index) {
    ScriptObject* object = any(index);
    if (object == nullptr) return nullptr;
    if (object->type == kTypeString) return lend(object);
    Owned<ScriptObject> made(scriptObjectCreate(kTypeString));
    if (!made || !scriptObjectAppendString(engine_, object, &made->string)) {
        refuse(index, kTypeString);
        return nullptr;
    }
    object = made.release();
    if (scriptTemporariesAdd(object)) return &object->string;
    fail();
    return nullptr;
}

ScriptObject* Arguments::retyped(uint32_t index, ScriptType type) {
    ScriptObject* object = any(index);
    if (object == nullptr || !keepLoansOf(object)) return nullptr;
    if (object->type != type) {
        if (scriptTypeIsContainer(object->type) && !keepTexts()) return nullptr;
        object = scriptBlockOwnLiteral(block_, object);
        if (object == nullptr || !scriptObjectRetype(object, type)) {
            logError(engine_->logger, "Failed to set parameter %u to \"%S\" type", index + 1,
                     typeWord(type));
            return fail();
        }
    }
    return writable(index, object);
}

ScriptObject* Arguments::writableSlow(uint32_t index, ScriptObject* object) {
    if (!keepLoansOf(object)) return nullptr;
    object = scriptBlockOwnLiteral(block_, object);
    if (object == nullptr) {
        logError(engine_->logger, "Parameter %u is not (properly) defined", index + 1);
        return fail();
    }
    if (targetCount_ < kTargets) targets_[targetCount_++] = object;
    return object;
}

bool Arguments::isTarget(const ScriptObject* object) const {
    for (uint32_t at = 0; at < targetCount_; ++at)
        if (targets_[at] == object) return true;
    return targetCount_ == kTargets;
}

bool Arguments::keepLoansFrom(const ScriptObject* argument) {
    if (argument == nullptr || argument->type != kTypeExpr || !argument->expression->writes)
        return true;
    for (uint32_t at = 0; at < loanCount_; ++at)
        if (loans_[at].object != nullptr && !keepLoansOf(loans_[at].object)) return false;
    return true;
}

// The bytes lent out go to an object that nobody writes to, and the object
// itself goes on with a copy.
bool Arguments::keepLoansOf(ScriptObject* object) {
    if (object->isShared()) return true;
    bool lent = false;
    for (uint32_t at = 0; at < loanCount_; ++at) {
        if (loans_[at].object != object) continue;
        loans_[at].object = nullptr;
        lent = true;
    }
    if (!lent) return true;
    Owned<ScriptObject> keeper(scriptObjectCreate(kTypeUndef));
    Owned<ScriptObject> copy(scriptObjectClone(object));
    if (!keeper || !copy) {
        fail();
        return false;
    }
    scriptObjectMove(keeper.get(), object);
    scriptObjectMove(object, copy.get());
    if (scriptTemporariesAdd(keeper.release())) return true;
    fail();
    return false;
}

bool Arguments::keepTexts() {
    for (uint32_t at = 0; at < loanCount_; ++at) {
        Loan& loan = loans_[at];
        if (loan.object == nullptr) continue;
        ScriptObject* copy = scriptObjectCreateString(stringView(&loan.text));
        if (copy == nullptr || !scriptTemporariesAdd(copy)) {
            fail();
            return false;
        }
        loan = {nullptr, copy->string};
    }
    return true;
}

const String* Arguments::lend(ScriptObject* object) {
    if (loanCount_ == kLoans || isTarget(object)) return lendCopy(object);
    loans_[loanCount_] = {object, object->string};
    return &loans_[loanCount_++].text;
}

const String* Arguments::lendCopy(const ScriptObject* object) {
    ScriptObject* copy = scriptObjectClone(object);
    if (copy == nullptr || !scriptTemporariesAdd(copy)) {
        fail();
        return nullptr;
    }
    return &copy->string;
}
