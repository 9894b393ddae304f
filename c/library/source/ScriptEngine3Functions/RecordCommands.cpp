#include "ScriptEngine3Functions/RecordCommands.h"

#include <algorithm>

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "strings/StringFind.h"
#include "strings/StringNumbers.h"
#include "text/RecordDiff.h"
#include "text/RecordDiffWalk.h"
#include "text/TextParser.h"

namespace {

// The texts that a comparison gives, as Strings.
class Texts {
  public:
    Texts() : made_(vectorCreate()) {}
    ~Texts() { vectorDestroyWith(&made_, stringDestroyElement); }
    Texts(const Texts&) = delete;
    Texts& operator=(const Texts&) = delete;

    Vector* get() const { return made_; }

    // Makes values of the texts and appends them to a vector. False, with the
    // vector as it was, when memory runs out.
    bool appendTo(const ScriptObject* target) {
        Vector* elements = target->vector.vector;
        const uint32_t before = vectorSize(elements);
        for (uint32_t at = 0; at < vectorSize(made_); ++at) {
            Owned<ScriptObject> value(scriptObjectCreate(kTypeString));
            if (!value || !stringTake(&value->string, static_cast<String*>(vectorGet(made_, at))) ||
                !vectorAppend(elements, value.get())) {
                vectorEraseWith(elements, before, UINT32_MAX, scriptObjectDestroyElement);
                return false;
            }
            value.release();
        }
        return true;
    }

  private:
    Vector* made_;
};

// Makes objects of all fields of all records: they are compared where they stand.
// False when memory runs out.
bool openRecords(ScriptObject* records) {
    if (!scriptVectorUnfold(records)) return false;
    return scriptContainerEach(records, [](ScriptObject* record) {
        return record == nullptr || record->type != kTypeVector || scriptVectorUnfold(record);
    });
}

// The fields of an item of a vector of records. What is no vector, which a script
// may have put in, stands for a record with itself as its only field.
class RecordView {
  public:
    explicit RecordView(void* const* item) {
        const auto* object = static_cast<const ScriptObject*>(*item);
        if (object == nullptr) return;
        const bool isVector = object->type == kTypeVector;
        const Vector* fields = isVector ? object->vector.vector : nullptr;
        count_ = isVector ? vectorSize(fields) : 1;
        fields_ = isVector && count_ != 0 ? fields->data : item;
    }

    uint32_t count() const { return count_; }
    ScriptObject* field(uint32_t at) const { return static_cast<ScriptObject*>(fields_[at]); }

  private:
    void* const* fields_ = nullptr;
    uint32_t count_ = 0;
};

// Fields of different types by their types; texts by their bytes.
int compareFields(const ScriptObject* a, const ScriptObject* b) {
    if (a == nullptr || b == nullptr) return static_cast<int>(a != nullptr) - (b != nullptr);
    if (a->type != b->type) return a->type < b->type ? -1 : 1;
    const int order = scriptObjectCompare(nullptr, a, b);
    return order == kCompareFailed ? 0 : order;
}

int compareRecords(const RecordView& a, const RecordView& b) {
    const uint32_t shared = std::min(a.count(), b.count());
    for (uint32_t at = 0; at < shared; ++at) {
        const int order = compareFields(a.field(at), b.field(at));
        if (order != 0) return order;
    }
    return (a.count() > b.count()) - (a.count() < b.count());
}

signed char compareItems(const void* a, const void* b) {
    void* const left = const_cast<void*>(a);
    void* const right = const_cast<void*>(b);
    return static_cast<signed char>(compareRecords(RecordView(&left), RecordView(&right)));
}

RecordView recordAt(const void* records, uint32_t at) {
    return RecordView(&static_cast<const Vector*>(records)->data[at]);
}

bool sameRecord(const void* left, uint32_t i, const void* right, uint32_t j) {
    return compareRecords(recordAt(left, i), recordAt(right, j)) == 0;
}

bool showRecord(const void* records, uint32_t at, String* out) {
    const RecordView record = recordAt(records, at);
    bool good = true;
    for (uint32_t index = 0; good && index < record.count(); ++index) {
        const ScriptObject* field = record.field(index);
        if (index > 0) good = stringAppendText(out, ", ");
        if (field == nullptr || field->type != kTypeString)
            good = good && stringAppendText(out, "<NOT STRING VALUE>");
        else
            good = good && stringAppendChar(out, '"') && stringAppend(out, &field->string) &&
                   stringAppendChar(out, '"');
    }
    return good;
}

// `recdiff left right TARGET`
int scriptEngineRecDiff(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    ScriptObject* other = in.typed(1, kTypeVector);
    const uint32_t generation = other == nullptr ? 0 : other->generation;
    const ScriptObject* target = in.target(2, kTypeVector);
    ScriptObject* records = in.container();
    if (!in.ok()) return in.status();
    if (other->generation != generation || other->type != kTypeVector) {
        scriptEngineRequireType(engine, nullptr, kTypeVector, 1);
        return kError;
    }
    const Vector* left = records->vector.vector;
    const Vector* right = other->vector.vector;
    Texts texts;
    const DiffRows rows = {left,       right,     vectorSize(left), vectorSize(right),
                           sameRecord, showRecord};
    if (openRecords(records) && openRecords(other) && diffWalk(rows, texts.get()) &&
        texts.appendTo(target))
        return kDone;
    return commandOutOfMemory(engine, "scriptEngineRecDiff");
}

// Keeps so many digits behind the last point, and no point without one.
void cutDecimals(String* text, int64_t decimals) {
    const int64_t point = stringFindCharReverse(text, '.');
    if (point == kStringNotFound) return;
    const int64_t kept = std::min<int64_t>(text->length - point - 1, decimals);
    stringSetLength(text, static_cast<uint32_t>(kept == 0 ? point : point + 1 + kept));
}

// `reccut VECTOR index width [decimals]`
int scriptEngineRecCut(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    const int64_t index = numberToInt64(in.number(1));
    const int64_t width = numberToInt64(in.number(2));
    const int64_t decimals = in.count() > 3 ? numberToInt64(in.number(3)) : -1;
    ScriptObject* records = in.container();
    if (!in.ok()) return in.status();
    if (!openRecords(records)) return commandOutOfMemory(engine, "scriptEngineRecCut");
    for (uint32_t at = 0; at < vectorSize(records->vector.vector); ++at) {
        const RecordView record = recordAt(records->vector.vector, at);
        if (index < 0 || index >= record.count()) continue;
        ScriptObject* field = record.field(static_cast<uint32_t>(index));
        if (field == nullptr || field->type != kTypeString) continue;
        String* text = &field->string;
        if (width >= 0 && width < text->length) stringSetLength(text, static_cast<uint32_t>(width));
        if (decimals >= 0) cutDecimals(text, decimals);
    }
    return kDone;
}

// `recsort VECTOR`
int scriptEngineRecSort(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeVector);
    ScriptObject* records = in.container();
    if (!in.ok()) return in.status();
    Vector* vector = records->vector.vector;
    if (openRecords(records)) vectorSort(vector, compareItems);
    if (vector != nullptr && vector->sorted != 0) return kDone;
    return commandOutOfMemory(engine, "scriptEngineRecSort");
}

std::string_view lineAt(const void* parserBlock, uint32_t at) {
    return parserBlockLine(static_cast<const ParserBlock*>(parserBlock), at);
}

bool sameLine(const void* left, uint32_t i, const void* right, uint32_t j) {
    return lineAt(left, i) == lineAt(right, j);
}

bool showLine(const void* parserBlock, uint32_t at, String* out) {
    return stringAppendView(out, lineAt(parserBlock, at));
}

// `parserdiff PARSER left right TARGET`
int scriptEngineParserDiff(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeParser);
    const String* leftName = in.string(1);
    const String* rightName = in.string(2);
    const ScriptObject* target = in.target(3, kTypeVector);
    const ScriptObject* parser = in.container();
    if (!in.ok()) return in.status();
    const ParserBlock* left = parserFindBlock(parser->parser, leftName);
    const ParserBlock* right = parserFindBlock(parser->parser, rightName);
    const DiffRows rows = {left,     right,   parserBlockSize(left), parserBlockSize(right),
                           sameLine, showLine};
    Texts texts;
    if (left != nullptr && right != nullptr && diffWalk(rows, texts.get()) &&
        texts.appendTo(target))
        return kDone;
    return commandOutOfMemory(engine, "scriptEngineParserDiff");
}

constexpr CommandRow kRecordCommands[] = {
    // name      handler              min max targets
    {"parserdiff", scriptEngineParserDiff, 4, 4, "1,4"},
    {"recdiff", scriptEngineRecDiff, 3, 3, "1,3"},
    {"reccut", scriptEngineRecCut, 3, 4, "1"},
    {"recsort", scriptEngineRecSort, 1, 1, "1"},
};

}  // namespace

// `strdiff left right rules TARGET`
int scriptEngineStrDiff(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* left = in.string(0);
    const String* right = in.string(1);
    const String* ruleText = in.string(2);
    const ScriptObject* target = in.target(3, kTypeVector);
    if (!in.ok()) return in.status();
    const Owned<DiffRules> rules(diffCompile(ruleText));
    Texts texts;
    const int64_t differences = diffRun(left, right, rules.get(), texts.get());
    if (differences < 0 || !texts.appendTo(target))
        return commandError(engine,
                            "scriptEngineStrDiff: Failed to run diff (check that the rules are "
                            "properly formatted)");
    return differences > 0 ? kDone : kNegative;
}

std::span<const CommandRow> recordCommands() {
    return kRecordCommands;
}
