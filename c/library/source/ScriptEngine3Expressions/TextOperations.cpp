#include "ScriptEngine3Expressions/OperandHelp.h"
#include "ScriptEngine3Expressions/Operations.h"
#include "strings/StringEdit.h"
#include "strings/StringMatch.h"

namespace {

// The text of an operand: where it is a string its own, else made in `scratch`.
// False when it has none.
bool textOf(ScriptEngine* engine, ScriptBlock* block, ScriptObject* object, String* scratch,
            std::string_view* text) {
    if (object->type == kTypeString) {
        *text = stringView(&object->string);
        return true;
    }
    if (!scriptObjectAppendString(engine, object, scratch, block)) return false;
    *text = stringView(scratch);
    return true;
}

// A string object of both texts.
ScriptObject* joined(ScriptEngine* engine, const char* name, std::string_view left,
                     std::string_view right) {
    Owned<ScriptObject> result(scriptObjectCreate(kTypeString));
    const bool made =
        result && left.size() + right.size() <= kStringMaxLength &&
        stringReserve(&result->string, static_cast<uint32_t>(left.size() + right.size())) &&
        stringAppendView(&result->string, left) && stringAppendView(&result->string, right);
    return operandMade(engine, name, made ? result.release() : nullptr);
}

// What a backslash and this byte stand for, or -1 where both stay.
int escaped(char c) {
    switch (c) {
        case '0':
            return 0;
        case '\\':
            return '\\';
        case 'b':
            return '\b';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case 'v':
            return '\v';
        default:
            return -1;
    }
}

// A backslash in last place takes the terminator for the byte behind it.
bool appendUnescaped(String* out, std::string_view text) {
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            if (!stringAppendChar(out, text[at])) return false;
            continue;
        }
        const char next = at + 1 < text.size() ? text[at + 1] : '\0';
        const int byte = escaped(next);
        if (byte < 0 && !stringAppendChar(out, '\\')) return false;
        if (!stringAppendChar(out, byte < 0 ? next : static_cast<char>(byte))) return false;
        ++at;
    }
    return true;
}

}  // namespace

ScriptObject* evaluateEsc(ScriptEngine* engine, ScriptBlock*, ScriptObject*, ScriptObject* right) {
    if (!operandRequire(engine, "evaluateEsc", kTypeString, "Operand must be string", &right))
        return nullptr;
    Owned<ScriptObject> result(scriptObjectCreate(kTypeString));
    const bool made = result && appendUnescaped(&result->string, stringView(&right->string));
    return operandMade(engine, "evaluateEsc", made ? result.release() : nullptr);
}

ScriptObject* evaluatePlus(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                           ScriptObject* right) {
    if (!operandResolveBoth(engine, "evaluatePlus", &left, &right)) return nullptr;
    if (left->type == kTypeNumber && right->type == kTypeNumber)
        return operandNumber(engine, "evaluatePlus", left->number + right->number);
    if (left->type != kTypeString && right->type != kTypeString) return nullptr;
    // The side that is no string adds its text, or nothing when it has none.
    LocalString scratch;
    std::string_view leftText;
    std::string_view rightText;
    textOf(engine, block, left, &scratch, &leftText);
    textOf(engine, block, right, &scratch, &rightText);
    return joined(engine, "evaluatePlus", leftText, rightText);
}

ScriptObject* evaluateConcat(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                             ScriptObject* right) {
    if (!operandResolveBoth(engine, "evaluateConcat", &left, &right)) return nullptr;
    LocalString leftScratch;
    LocalString rightScratch;
    std::string_view leftText;
    std::string_view rightText;
    if (!textOf(engine, block, left, &leftScratch, &leftText)) {
        logError(engine->logger,
                 "evaluateConcat: Failed to get left operand. Make sure it is defined!");
        return nullptr;
    }
    if (!textOf(engine, block, right, &rightScratch, &rightText)) {
        logError(engine->logger,
                 "evaluateConcat: Failed to get right operand. Possible reason: #::100");
        return nullptr;
    }
    return joined(engine, "evaluateConcat", leftText, rightText);
}

ScriptObject* evaluateRemove(ScriptEngine* engine, ScriptBlock* block, ScriptObject* left,
                             ScriptObject* right) {
    Owned<ScriptObject> result(scriptObjectCreate(kTypeString));
    Owned<String> part(scriptObjectGetString(engine, right, block));
    if (!result || !part || !scriptObjectAppendString(engine, left, &result->string, block)) {
        logError(engine->logger, "evaluateRemove: Possible error: #::100");
        return nullptr;
    }
    Owned<String> nothing(stringNew(0));
    const bool made = stringIsEmpty(part.get()) ||
                      (nothing && stringReplace(&result->string, part.get(), nothing.get()) >= 0);
    return operandMade(engine, "evaluateRemove", made ? result.release() : nullptr);
}

ScriptObject* evaluateStrMatch(ScriptEngine* engine, ScriptBlock*, ScriptObject* left,
                               ScriptObject* right) {
    if (!operandResolveBoth(engine, "evaluateStrMatch", &left, &right)) return nullptr;
    if (left->type != kTypeString || right->type != kTypeString) {
        logError(engine->logger, "evaluateStrMatch: Both operands must be strings");
        return nullptr;
    }
    return operandNumber(engine, "evaluateStrMatch", stringMatch(&left->string, &right->string));
}
