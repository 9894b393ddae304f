#pragma once

#include <cstdint>
#include <string_view>

#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Defs/ScriptLine.h"
#include "containers/GrowArray.h"

// The object of one argument, evaluated, pointers followed on demand; null
// after a message. `type` other than undef makes the object one of that type
// and drops what it held. The result may be shared while `type` is undef.
ScriptObject* scriptEngineGetParam(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                                   uint32_t index, ScriptType type, bool followRefs);

// True when the object has exactly the type; otherwise reports "Parameter %u must be ...".
bool scriptEngineRequireType(ScriptEngine* engine, const ScriptObject* object, ScriptType type,
                             uint32_t index);

// The text of a variable as the printing commands see it: a view of the
// variable itself where it is a string, else of `scratch`. False without a text.
bool scriptEngineGetVarText(ScriptEngine* engine, ScriptBlock* block, ScriptArg* arg,
                            String* scratch, std::string_view* text);
// The same by id, as a `String` that the caller owns; null without a text.
String* scriptEngineGetVarString(ScriptEngine* engine, ScriptBlock* block, uint32_t id);

// The object of an argument that is a variable in a known place; null for any other.
// Nobody else sees such an object, as the literals of a template are seen: it may be
// written to.
[[gnu::always_inline]] inline ScriptObject* scriptPlainVariable(ScriptBlock* block,
                                                                ScriptArgs* args, uint32_t index) {
    ScriptArg* arg = &args->items[index];
    return arg->kind == kPlaceLocal ? scriptBlockSearchPlace(block, arg, nullptr) : nullptr;
}
// The same of one that can be written to and read as it is, being no pointer and no
// expression.
[[gnu::always_inline]] inline ScriptObject* scriptPlainTarget(ScriptBlock* block, ScriptArgs* args,
                                                              uint32_t index) {
    ScriptObject* object = scriptPlainVariable(block, args, index);
    const bool isPlain =
        object != nullptr && object->type != kTypePointer && object->type != kTypeExpr;
    return isPlain ? object : nullptr;
}
// The same of this type.
[[gnu::always_inline]] inline ScriptObject* scriptPlainTarget(ScriptBlock* block, ScriptArgs* args,
                                                              uint32_t index, ScriptType type) {
    ScriptObject* object = scriptPlainVariable(block, args, index);
    return object != nullptr && object->type == type ? object : nullptr;
}
// The same of a number or a string, a literal as well, to be read only.
[[gnu::always_inline]] inline const ScriptObject* scriptPlainValue(ScriptBlock* block,
                                                                   ScriptArgs* args,
                                                                   uint32_t index) {
    ScriptArg* arg = &args->items[index];
    if (arg->kind != kPlaceLocal && (arg->kind != kPlaceLiteral || block->ownLiterals != nullptr))
        return nullptr;
    const ScriptObject* object = scriptBlockSearchPlace(block, arg, nullptr);
    if (object == nullptr) return nullptr;
    return object->type == kTypeNumber || object->type == kTypeString ? object : nullptr;
}

// Reads a handler's arguments, each when it is asked for, in the handler's
// order: fetches, checks, reports, and remembers the first failure. After a
// failure it does nothing more, and every reader gives null, 0 or an empty
// text. What was read stays readable until the handler ends, also when a later
// argument retypes the same object or the handler writes to it.
class Arguments {
  public:
    Arguments(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args)
        : engine_(engine), block_(block), args_(args) {
        status_ = engine == nullptr || block == nullptr || args == nullptr ? kInvalidCall : kDone;
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    bool ok() const { return status_ == kDone; }
    // `kDone`, or what the handler has to give back after a failure.
    int status() const { return status_; }
    uint32_t count() const { return args_ == nullptr ? 0 : args_->count; }
    ScriptArg* arg(uint32_t index) const { return &args_->items[index]; }

    // The value, of any type, pointers followed. To be read only: it may be shared.
    ScriptObject* any(uint32_t index) {
        ScriptObject* object = plain(index);
        return object != nullptr ? object : fetch(index, true);
    }
    // The same with a pointer as it is.
    ScriptObject* unfollowed(uint32_t index) {
        ScriptObject* object = plain(index);
        return object != nullptr ? object : fetch(index, false);
    }
    // The value, which must have the type. To be read only.
    ScriptObject* typed(uint32_t index, ScriptType type) {
        ScriptObject* object = any(index);
        return object == nullptr || object->type == type ? object : refuse(index, type);
    }
    // The text of a value that must be a string. It lives until the handler ends.
    const String* string(uint32_t index);
    // The same of a value of any type that has a text.
    const String* text(uint32_t index);
    // The value of an argument that must be a number.
    double number(uint32_t index);
    // An argument that the handler may change, of any type.
    ScriptObject* target(uint32_t index) { return writable(index, any(index)); }
    // The same; it must have the type.
    ScriptObject* target(uint32_t index, ScriptType type) {
        return writable(index, typed(index, type));
    }
    // The same; it is made one of the type.
    ScriptObject* retyped(uint32_t index, ScriptType type);
    // Before a handler ends elements of a container: a text read so far may be
    // one of them, seen through a pointer, so each gets a copy. False after a failure.
    bool keepTexts();

  protected:
    ScriptObject* fail();
    // Before an argument is evaluated: keeps what was lent out readable if that
    // can write to variables. False after a failure.
    bool keepLoansFrom(const ScriptObject* argument);
    // Whether fetching the argument can write to variables.
    bool canWrite(uint32_t index) {
        const ScriptObject* object = scriptBlockSearchPlace(block_, arg(index), nullptr);
        return object != nullptr && object->type == kTypeExpr && object->expression->writes;
    }
    // The target where it is a plain variable of the type, as the first thing that is
    // fetched; null where that is not so, and after a failure.
    [[gnu::always_inline]] ScriptObject* plainTarget(uint32_t index, ScriptType type) {
        if (status_ != kDone || index >= args_->count) return nullptr;
        ScriptObject* object = scriptPlainTarget(block_, args_, index, type);
        if (object != nullptr) targets_[targetCount_++] = object;
        return object;
    }
    // What was fetched, as something that the handler may change; null after a failure.
    ScriptObject* writable(uint32_t index, ScriptObject* object) {
        if (object == nullptr) return nullptr;
        if (loanCount_ != 0 || object->isShared()) return writableSlow(index, object);
        if (targetCount_ < kTargets) targets_[targetCount_++] = object;
        return object;
    }

    ScriptEngine* engine_;
    ScriptBlock* block_;
    ScriptArgs* args_;

  private:
    struct Loan {
        ScriptObject* object;
        String text;  // a view: the bytes stay the object's
    };
    static constexpr uint32_t kLoans = 8;
    static constexpr uint32_t kTargets = 8;

    // The value where reading it is no more than looking at it: most arguments
    // are variables and literals. Null for all that takes more.
    ScriptObject* plain(uint32_t index) {
        if (status_ != kDone || index >= args_->count) return nullptr;
        ScriptObject* object = scriptBlockSearchPlace(block_, &args_->items[index], nullptr);
        const bool isPlain =
            object != nullptr && object->type != kTypePointer && object->type != kTypeExpr;
        return isPlain ? object : nullptr;
    }
    ScriptObject* fetch(uint32_t index, bool followRefs);
    ScriptObject* refuse(uint32_t index, ScriptType type);
    ScriptObject* writableSlow(uint32_t index, ScriptObject* object);
    bool keepLoansOf(ScriptObject* object);
    bool isTarget(const ScriptObject* object) const;
    const String* lend(ScriptObject* object);
    const String* lendCopy(const ScriptObject* object);

    int status_;
    uint32_t loanCount_ = 0;
    uint32_t targetCount_ = 0;
    Loan loans_[kLoans];
    const ScriptObject* targets_[kTargets];
};
