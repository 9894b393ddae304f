#include "ScriptEngine3Defs/ScriptContainers.h"
#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "ScriptEngine3Defs/ScriptEvaluator.h"
#include "ScriptEngine3Defs/ScriptExpression.h"
#include "ScriptEngine3Defs/ValueNesting.h"
#include "containers/PathTree.h"
#include "files/BasicFile.h"
#include "paths/Paths.h"
#include "strings/StringCompare.h"
#include "strings/StringNumbers.h"

ScriptEvaluator scriptEvaluator = nullptr;

ScriptObject* scriptEvaluateToObject(ScriptEngine* engine, ScriptBlock* block,
                                     ScriptExpression* expression) {
    EvalResult result;
    if (scriptEvaluator == nullptr ||
        !scriptEvaluator(engine, block, expression, kWantValue, &result))
        return nullptr;
    return result.object != nullptr ? result.object : scriptObjectCreateNumber(result.number);
}

ScriptTruth scriptEvaluateTruth(ScriptEngine* engine, ScriptBlock* block,
                                ScriptExpression* expression) {
    EvalResult result;
    if (scriptEvaluator == nullptr ||
        !scriptEvaluator(engine, block, expression, kWantTruth, &result))
        return kNoTruth;
    return static_cast<ScriptTruth>(static_cast<int>(result.number));
}

namespace {

// Makes the text of a value and of all that it holds.
class TextMaker {
  public:
    TextMaker(ScriptEngine* engine, ScriptBlock* scope, String* out)
        : engine_(engine), scope_(scope), out_(out) {}

    // False when the value has no text; `out` may have grown by a part then.
    bool append(const ScriptObject* object);
    bool tripped() const { return walk_.tripped(); }

  private:
    bool appendNumber(double number) {
        char text[kNumberTextMax];
        return stringAppendView(out_, {text, numberToText(number, text)});
    }
    bool appendExpression(const ScriptObject* object);
    bool appendElements(const ScriptObject* object);
    bool appendPairs(const ScriptObject* object);
    bool appendElement(const ScriptObject* element, uint32_t start);

    ScriptEngine* engine_;
    ScriptBlock* scope_;
    String* out_;
    ValueWalk walk_;
};

bool TextMaker::append(const ScriptObject* object) {
    switch (object->type) {
        case kTypeNumber:
            return appendNumber(object->number);
        case kTypeString:
            return stringAppendView(out_, stringView(&object->string));
        case kTypeExpr:
            return appendExpression(object);
        case kTypePointer: {
            const ScriptObject* target = scriptPointerTarget(object);
            return target != nullptr && walk_.inside(object, [&] { return append(target); });
        }
        case kTypeFile:
            return object->file->name != nullptr && stringAppend(out_, object->file->name);
        case kTypeList:
        case kTypeVector:
        case kTypeSet:
            return walk_.inside(object, [&] { return appendElements(object); });
        case kTypeMap:
            return walk_.inside(object, [&] { return appendPairs(object); });
        default:
            return false;
    }
}

bool TextMaker::appendExpression(const ScriptObject* object) {
    if (scope_ == nullptr) return false;
    ScriptBlock* scope = scope_;
    scope_ = nullptr;
    Owned<ScriptObject> value(scriptEvaluateToObject(engine_, scope, object->expression));
    return value && append(value.get());
}

// One element behind its separator. An element without a text leaves no trace.
bool TextMaker::appendElement(const ScriptObject* element, uint32_t start) {
    const uint32_t before = out_->length;
    if (before > start && !stringAppendChar(out_, ';')) return false;
    if (append(element)) return true;
    stringSetLength(out_, before);
    return false;
}

bool TextMaker::appendElements(const ScriptObject* object) {
    const uint32_t start = out_->length;
    scriptContainerEach(object, [&](const ScriptObject* element) {
        appendElement(element, start);
        return !walk_.tripped();
    });
    return true;
}

bool TextMaker::appendPairs(const ScriptObject* object) {
    const uint32_t start = out_->length;
    const Map* map = object->map.map;
    for (MapNode* at = mapFirstNode(map); at != nullptr && !walk_.tripped();
         at = mapNextNode(map, at)) {
        if (!appendElement(static_cast<ScriptObject*>(at->data), start)) continue;
        const uint32_t before = out_->length;
        if (at->value == nullptr || !stringAppendChar(out_, '=') ||
            !append(static_cast<ScriptObject*>(at->value)))
            stringSetLength(out_, before);
    }
    return true;
}

ScriptTruth truthOf(bool value) {
    return value ? kTrue : kFalse;
}

// The text of an operand of a comparison: its own where it is a string.
class OperandText {
  public:
    OperandText(ScriptEngine* engine, const ScriptObject* object) {
        if (object->type == kTypeString) {
            view = stringView(&object->string);
        } else if (object->type == kTypeNumber) {
            view = {number_, numberToText(object->number, number_)};
        } else {
            made_.reset(scriptObjectGetString(engine, object));
            present = static_cast<bool>(made_);
            view = stringView(made_.get());
        }
    }
    std::string_view view;
    bool present = true;

  private:
    char number_[kNumberTextMax];
    Owned<String> made_;
};

}  // namespace

bool scriptObjectAppendString(ScriptEngine* engine, const ScriptObject* object, String* out,
                              ScriptBlock* scope) {
    if (object == nullptr || out == nullptr) return false;
    const uint32_t before = out->length;
    // The scope is that of an expression itself: one that a container or a
    // pointer leads to has none.
    TextMaker maker(engine, object->type == kTypeExpr ? scope : nullptr, out);
    if (maker.append(object) && !maker.tripped()) return true;
    stringSetLength(out, before);
    return false;
}

String* scriptObjectGetString(ScriptEngine* engine, const ScriptObject* object,
                              ScriptBlock* scope) {
    Owned<String> text(stringNewEmpty());
    if (!text || !scriptObjectAppendString(engine, object, text.get(), scope)) return nullptr;
    return text.release();
}

ScriptTruth scriptObjectGetBool(ScriptEngine* engine, const ScriptObject* object,
                                ScriptBlock* scope) {
    if (object == nullptr) return kNoTruth;
    if (object->type == kTypePointer) {
        object = scriptPointerFollow(const_cast<ScriptObject*>(object));
        scope = nullptr;
    }
    if (object == nullptr) return kNoTruth;
    switch (object->type) {
        case kTypeExpr:
            return scope == nullptr ? kNoTruth
                                    : scriptEvaluateTruth(engine, scope, object->expression);
        case kTypeNumber:
            return truthOf(object->number != 0);
        case kTypeString:
            return truthOf(object->string.length > 0);
        case kTypeFile:
            return truthOf(!stringIsEmpty(object->file->name));
        case kTypeList:
        case kTypeVector:
        case kTypeSet:
        case kTypeMap:
            return truthOf(scriptContainerCount(object) > 0);
        case kTypeTree:
            return truthOf(object->tree != nullptr &&
                           pathTreeNodeFirst(object->tree->root) != nullptr);
        case kTypeParser:
        case kTypeConfig:
            return kTrue;
        default:
            return kNoTruth;
    }
}

uint32_t scriptObjectGetSize(const ScriptObject* object) {
    if (object == nullptr) return kNoSize;
    if (object->type == kTypePointer)
        object = scriptPointerFollow(const_cast<ScriptObject*>(object));
    if (object == nullptr) return kNoSize;
    switch (object->type) {
        case kTypeExpr:
            return static_cast<uint32_t>(object->expression->tokens.size());
        case kTypeNumber:
            return 1;
        case kTypeString:
            return object->string.length;
        case kTypeFile:
            return pathFileExists(object->file->name)
                       ? static_cast<uint32_t>(pathFileSize(object->file->name))
                       : kNoSize;
        case kTypeList:
        case kTypeVector:
        case kTypeSet:
        case kTypeMap:
        case kTypeTree:
            return scriptContainerCount(object);
        default:
            return kNoSize;
    }
}

int scriptObjectCompare(ScriptEngine* engine, const ScriptObject* a, const ScriptObject* b) {
    if (a == nullptr || b == nullptr) return kCompareFailed;
    if (!a->hasValues()) return b->hasValues() ? -1 : 0;
    if (!b->hasValues()) return 1;
    if (a->type == kTypePointer && (a = scriptPointerTarget(a)) == nullptr) return kCompareFailed;
    if (b->type == kTypePointer && (b = scriptPointerTarget(b)) == nullptr) return kCompareFailed;
    if (a->type == kTypeNumber && b->type == kTypeNumber)
        return a->number < b->number ? -1 : a->number > b->number;
    if (a->type == kTypeString && b->type == kTypeString)
        return stringCompare(&a->string, &b->string);
    const OperandText left(engine, a);
    const OperandText right(engine, b);
    if (!left.present || !right.present) return kCompareFailed;
    return stringCompareViews(left.view, right.view);
}

signed char scriptObjectCompareElements(const void* a, const void* b) {
    return static_cast<signed char>(scriptObjectCompare(
        nullptr, static_cast<const ScriptObject*>(a), static_cast<const ScriptObject*>(b)));
}
