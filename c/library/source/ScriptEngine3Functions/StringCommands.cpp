#include "ScriptEngine3Functions/StringCommands.h"

#include <algorithm>

#include "ScriptEngine3Functions/FlagArgument.h"
#include "ScriptEngine3Functions/RecordCommands.h"
#include "ScriptEngine3Functions/StringSplitCommands.h"
#include "strings/StringEdit.h"
#include "strings/StringFind.h"
#include "strings/StringLines.h"
#include "strings/StringMatch.h"
#include "strings/StringNumbers.h"

namespace {

// A position or count within 0 and `most`; what is no number counts as 0.
uint32_t clamped(double value, uint32_t most) {
    return value > 0 ? static_cast<uint32_t>(std::min<double>(value, most)) : 0;
}

// The range that a script names: the start is within the text, the count within
// what follows.
struct ClampedRange {
    ClampedRange(const String* text, double from, double size) {
        start = clamped(from, text->length == 0 ? 0 : text->length - 1);
        count = clamped(size, text->length - start);
    }
    uint32_t start;
    uint32_t count;
};

int scriptEngineStrReplace(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.target(0, kTypeString);
    const String* from = in.string(1);
    const String* to = in.string(2);
    if (!in.ok()) return in.status();
    return stringReplace(&target->string, from, to) < 0 ? kOutOfMemory : kDone;
}

// An argument that is made a number; `preset` where the call has left it out.
uint32_t optionalNumber(Arguments* in, uint32_t index, uint32_t preset) {
    if (index >= in->count()) return preset;
    const ScriptObject* object = in->retyped(index, kTypeNumber);
    return object == nullptr ? preset : numberToUInt32(object->number);
}

template <auto kSearch>
int scriptEngineStrFind(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.retyped(0, kTypeNumber);
    const String* text = in.string(1);
    const String* what = in.string(2);
    const uint32_t start = optionalNumber(&in, 3, 0);
    const uint32_t count = optionalNumber(&in, 4, kStringEnd);
    if (!in.ok()) return in.status();
    const int64_t position = kSearch(text, what, start, count);
    target->number = static_cast<double>(position);
    return position == kStringNotFound ? kNegative : kDone;
}

int scriptEngineStrSub(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    const double start = in.number(1);
    const double count = in.number(2);
    ScriptObject* target = in.retyped(3, kTypeString);
    if (!in.ok()) return in.status();
    const ClampedRange range(text, start, count);
    return stringCopySub(text, range.start, range.count, &target->string) ? kDone : kNegative;
}

int scriptEngineStrInsert(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.retyped(0, kTypeString);
    const double position = in.number(1);
    const String* text = in.string(2);
    if (!in.ok()) return in.status();
    const uint32_t at = clamped(position, target->string.length);
    return stringInsert(&target->string, at, text) ? kDone : kNegative;
}

// The answer is that of the erase: no when the tail went. Scripts know it so.
int scriptEngineStrErase(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.target(0, kTypeString);
    const double start = in.number(1);
    const double count = in.number(2);
    if (!in.ok()) return in.status();
    const ClampedRange range(&target->string, start, count);
    return stringErase(&target->string, range.start, range.count) ? kDone : kNegative;
}

int scriptEngineStrPatternMatch(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    const String* pattern = in.string(1);
    bool ignoreCase = true;
    const int status = readOptionalFlag(
        engine, block, &in, 2,
        "scriptEngineStrErase: Failed to get boolean value of third parameter", &ignoreCase);
    if (status != kDone) return status;
    const bool matches = ignoreCase ? stringMatchNoCase(text, pattern) : stringMatch(text, pattern);
    return matches ? kDone : kNegative;
}

// A copy of the text, changed in place. That a copy failed goes unnoticed.
template <auto kChange>
int copyChanged(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    stringSet(&target->string, text);
    kChange(&target->string);
    return kDone;
}

int scriptEngineStrAlign(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.target(0, kTypeString);
    const String* fill = in.string(1);
    const double mode = in.number(2);
    const double wanted = in.number(3);
    if (!in.ok()) return in.status();
    if (stringIsEmpty(fill)) {
        logError(engine->logger, "scriptEngineStrAlign: Second parameter has no value");
        logLocation(engine->logger, kLogError);
        return kError;
    }
    String* text = &target->string;
    const uint32_t width = clamped(wanted, kStringMaxLength);
    const char c = stringBytes(fill)[0];
    const bool padded = mode > 0   ? stringPadLeft(text, width, c)
                        : mode < 0 ? stringPadRight(text, width, c)
                                   : stringPadCentre(text, width, c);
    return padded ? kDone : kOutOfMemory;
}

// Digits and at most one point: no sign, no blanks, and nothing at all will do.
int scriptEngineStrIsNumber(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    if (!in.ok()) return in.status();
    uint32_t points = 0;
    for (const char c : stringView(text)) {
        if (c == '.')
            ++points;
        else if (c < '0' || c > '9')
            return kNegative;
    }
    return points <= 1 ? kDone : kNegative;
}

int scriptEngineStrMakeLines(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.target(0, kTypeString);
    const double width = in.number(1);
    bool breakWords = false;
    const int status = readOptionalFlag(
        engine, block, &in, 2,
        "scriptEngineStrMakeLines: Failed to get boolean value of third parameter", &breakWords);
    if (status != kDone) return status;
    stringMakeLines(&target->string, numberToUInt32(width), breakWords);
    return kDone;
}

constexpr CommandRow kStringCommands[] = {
    {"strsplit", scriptEngineStrSplit, 3, kManyArgs, "3-100"},
    {"strtovector", scriptEngineStrToVector, 3, 4, "3"},
    {"strtolist", scriptEngineStrToList, 3, 4, "3"},
    {"strtoset", scriptEngineStrToSet, 3, 4, "3"},
    {"strtomap", scriptEngineStrToMap, 4, 5, "4"},
    {"strreplace", scriptEngineStrReplace, 3, 3, "1"},
    {"strfind", scriptEngineStrFind<stringFind>, 3, 5, "1"},
    {"strfindreverse", scriptEngineStrFind<stringFindReverse>, 3, 5, "1"},
    {"strsub", scriptEngineStrSub, 4, 4, "4"},
    {"strinsert", scriptEngineStrInsert, 3, 3, "1"},
    {"strerase", scriptEngineStrErase, 3, 3, "1"},
    {"strpatternmatch", scriptEngineStrPatternMatch, 2, 3, nullptr},
    {"strlower", copyChanged<stringLower>, 2, 2, "2"},
    {"strupper", copyChanged<stringUpper>, 2, 2, "2"},
    {"strtrim", copyChanged<stringTrim>, 2, 2, "2"},
    {"stralign", scriptEngineStrAlign, 4, 4, "1"},
    {"strisnumber", scriptEngineStrIsNumber, 1, 1, nullptr},
    {"strmakelines", scriptEngineStrMakeLines, 2, 3, "1"},
    {"strdiff", scriptEngineStrDiff, 4, 4, "4"},
};

}  // namespace

std::span<const CommandRow> stringCommands() {
    return kStringCommands;
}
