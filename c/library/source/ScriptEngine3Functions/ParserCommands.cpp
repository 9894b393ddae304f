#include "ScriptEngine3Functions/ParserCommands.h"

#include <algorithm>
#include <utility>

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "strings/StringCompare.h"
#include "text/TextParser.h"

namespace {

// The arguments of a command whose first one is a parser. The parser and its
// blocks are asked for when all other arguments have been read.
class ParserArguments : public ContainerArguments {
  public:
    ParserArguments(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args)
        : ContainerArguments(engine, block, args, kTypeParser) {}

    Parser* parser() {
        const ScriptObject* object = container();
        return object == nullptr ? nullptr : object->parser;
    }
    // The block of this name; null without a report when the parser has none.
    ParserBlock* block(const String* name) { return parserFindBlock(parser(), name); }
};

// New values on their way to a target, in a vector that owns them.
class NewValues {
  public:
    explicit NewValues(size_t count) : vector_(scriptObjectCreate(kTypeVector)) {
        ready_ = vector_ && count < UINT32_MAX &&
                 vectorResize(vector_->vector.vector, static_cast<uint32_t>(count));
    }

    bool ready() const { return ready_; }

    // Takes the value over, also when it fails; a null fails.
    bool add(ScriptObject* value) {
        Owned<ScriptObject> owned(value);
        if (!owned || !vectorAppend(vector_->vector.vector, value)) return false;
        owned.release();
        return true;
    }
    bool addText(std::string_view text) { return add(scriptObjectCreateString(text)); }

    // The values replace what the target holds; a map takes them as key and value
    // in turn. Whatever the handler reads may end with the old elements.
    bool moveTo(ScriptObject* target) {
        Vector* vector = vector_->vector.vector;
        switch (target->type) {
            case kTypeVector:
                std::swap(vector_->vector.vector, target->vector.vector);
                return true;
            case kTypeMap:
                return moveToMap(vector, target->map.map);
            case kTypeList:
                listClearWith(target->list.list, scriptObjectDestroyElement);
                break;
            default:
                setClearWith(target->set.set, scriptObjectDestroyElement);
                break;
        }
        for (uint32_t at = 0; at < vector->size; ++at) {
            if (!containerAdd(target, static_cast<ScriptObject*>(vector->data[at]))) return false;
            vector->data[at] = nullptr;
        }
        return true;
    }

  private:
    static bool moveToMap(Vector* vector, Map* map) {
        mapClearWith(map, scriptObjectDestroyElement, scriptObjectDestroyElement);
        for (uint32_t at = 0; at + 1 < vector->size; at += 2) {
            if (!mapInsert(map, vector->data[at], vector->data[at + 1])) return false;
            vector->data[at] = nullptr;
            vector->data[at + 1] = nullptr;
        }
        return true;
    }

    Owned<ScriptObject> vector_;
    bool ready_;
};

int scriptEngineParserParse(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ParserArguments in(engine, block, args);
    const String* ruleText = in.string(1);
    const String* text = in.string(2);
    ScriptObject* target = in.target(3, kTypeString);
    Parser* parser = in.parser();
    if (!in.ok()) return in.status();
    SplitRule rule;
    if (splitRuleRead(&rule, stringView(ruleText))) {
        const ParserBlock* lines = parserParse(parser, &rule, stringView(text));
        if (lines != nullptr && stringSet(&target->string, lines->name)) return kDone;
    }
    return commandOutOfMemory(engine, "scriptEngineParserAddDelim");
}

int scriptEngineParserGetSize(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ParserArguments in(engine, block, args);
    const String* name = in.string(1);
    ScriptObject* target = in.target(2, kTypeNumber);
    const ParserBlock* lines = in.block(name);
    if (!in.ok()) return in.status();
    if (lines == nullptr) return commandOutOfMemory(engine, "scriptEngineParserGetSize");
    target->number = parserBlockSize(lines);
    return kDone;
}

// Gives the target the names of the blocks made, also of those before a failure.
bool handOutNames(ScriptObject* target, const ParserBlocks& made) {
    NewValues names(made.size());
    if (!names.ready()) return false;
    for (const ParserBlock* block : made)
        if (!names.addText(stringView(block->name))) return false;
    return names.moveTo(target);
}

// `parserblocking` and `parservblocking`, which differ in their rules.
template <typename Rule>
int cutBlock(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, const char* command,
             bool (*readRule)(Rule* rule, std::string_view text),
             bool (*cut)(Parser* parser, const ParserBlock* source, Rule* rule,
                         ParserBlocks* made)) {
    ParserArguments in(engine, block, args);
    const String* name = in.string(1);
    const String* ruleText = in.string(2);
    ScriptObject* target = in.retyped(3, kTypeVector);
    const ParserBlock* source = in.block(name);
    if (!in.ok()) return in.status();
    Rule rule;
    ParserBlocks made;
    if (source == nullptr || !readRule(&rule, stringView(ruleText)))
        return commandOutOfMemory(engine, command);
    const bool whole = cut(in.parser(), source, &rule, &made);
    return handOutNames(target, made) && whole ? kDone : commandOutOfMemory(engine, command);
}

int scriptEngineParserBlocking(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return cutBlock<BlockingRule>(engine, block, args, "scriptEngineParserBlocking",
                                  blockingRuleRead, parserBlocking);
}

int scriptEngineParserVBlocking(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return cutBlock<SplitRule>(engine, block, args, "scriptEngineParserVBlocking", splitRuleRead,
                               parserVBlocking);
}

struct TrimWord {
    std::string_view word;
    ParserTrim mode;
};

constexpr TrimWord kTrimWords[] = {
    {"left", kTrimLeft}, {"right", kTrimRight}, {"leftright", kTrimBoth},
    {"all", kTrimAll},   {"clean", kTrimClean},
};

// An unknown word acts as "left".
ParserTrim trimModeOf(std::string_view word) {
    for (const TrimWord& row : kTrimWords)
        if (row.word == word) return row.mode;
    return kTrimLeft;
}

// A flag that is neither true nor false counts as true.
int scriptEngineParserTrim(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ParserArguments in(engine, block, args);
    const String* name = in.string(1);
    const String* mode = in.string(2);
    bool removeEmpty = false;
    if (in.ok() && in.count() > 3) {
        const ScriptObject* flag = in.any(3);
        removeEmpty = flag != nullptr && scriptObjectGetBool(engine, flag, block) != kFalse;
    }
    ParserBlock* lines = in.block(name);
    if (!in.ok()) return in.status();
    if (parserTrim(lines, trimModeOf(stringView(mode)), removeEmpty)) return kDone;
    return commandOutOfMemory(engine, "scriptEngineParserTrim");
}

int scriptEngineParserPad(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ParserArguments in(engine, block, args);
    const String* name = in.string(1);
    const String* prefix = in.string(2);
    const String* suffix = in.string(3);
    ParserBlock* lines = in.block(name);
    if (!in.ok()) return in.status();
    if (parserPad(lines, stringView(prefix), stringView(suffix))) return kDone;
    return commandOutOfMemory(engine, "scriptEngineParserPad");
}

int scriptEngineParserFilter(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ParserArguments in(engine, block, args);
    const String* name = in.string(1);
    const String* ruleText = in.string(2);
    ParserBlock* lines = in.block(name);
    if (!in.ok()) return in.status();
    FilterRule rule;
    if (filterRuleRead(&rule, stringView(ruleText)) && parserFilter(lines, &rule)) return kDone;
    return commandOutOfMemory(engine, "scriptEngineParserFilter");
}

struct Item {
    std::string_view key;
    std::string_view value;
    size_t line;
};

// Pairs stand in the order of their keys, those with equal keys in that of the lines.
bool isBefore(const Item& a, const Item& b) {
    const int order = stringCompareViews(a.key, b.key);
    return order != 0 ? order < 0 : a.line < b.line;
}

bool readItems(const ParserBlock* block, SplitRule* rule, GrowArray<Item>* items) {
    if (!items->reserve(block->lines.size())) return false;
    for (const std::string_view line : block->lines) {
        Item item{{}, {}, items->size()};
        SplitWalk walk = splitWalkBegin(rule, line);
        splitWalkNext(&walk, &item.key);
        item.value = splitWalkRest(&walk);
        items->push(item);
    }
    std::sort(items->begin(), items->end(), isBefore);
    return true;
}

bool itemize(const ParserBlock* block, SplitRule* rule, ScriptObject* target) {
    GrowArray<Item> items;
    if (!readItems(block, rule, &items)) return false;
    NewValues pairs(items.size() * 2);
    if (!pairs.ready()) return false;
    for (const Item& item : items)
        if (!pairs.addText(item.key) || !pairs.addText(item.value)) return false;
    return pairs.moveTo(target);
}

bool addRecord(NewValues* records, SplitRule* rule, std::string_view line) {
    Owned<ScriptObject> record(scriptObjectCreate(kTypeVector));
    if (!record) return false;
    SplitWalk walk = splitWalkBegin(rule, line);
    for (std::string_view piece; splitWalkNext(&walk, &piece);) {
        Owned<ScriptObject> field(scriptObjectCreateString(piece));
        if (!field || !vectorAppend(record->vector.vector, field.get())) return false;
        field.release();
    }
    return records->add(record.release());
}

// Records by size are not handed on: the target is emptied and stays so.
bool recordize(const ParserBlock* block, SplitRule* rule, ScriptObject* target) {
    const bool handedOn = rule->kind != kSplitSize;
    NewValues records(handedOn ? block->lines.size() : 0);
    if (!records.ready()) return false;
    for (size_t at = 0; handedOn && at < block->lines.size(); ++at)
        if (!addRecord(&records, rule, block->lines[at])) return false;
    return records.moveTo(target);
}

// `parseritemize` and `parserrecordize`, which make values of each line.
int cutLines(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, const char* command,
             ScriptType targetType,
             bool (*cut)(const ParserBlock* block, SplitRule* rule, ScriptObject* target)) {
    ParserArguments in(engine, block, args);
    const String* name = in.string(1);
    const String* ruleText = in.string(2);
    ScriptObject* target = in.target(3, targetType);
    const ParserBlock* lines = in.block(name);
    if (!in.ok()) return in.status();
    SplitRule rule;
    if (lines != nullptr && splitRuleRead(&rule, stringView(ruleText)) &&
        !splitRuleIsColumns(&rule) && cut(lines, &rule, target))
        return kDone;
    return commandOutOfMemory(engine, command);
}

int scriptEngineParserItemize(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return cutLines(engine, block, args, "scriptEngineParserItemize", kTypeMap, itemize);
}

int scriptEngineParserRecordize(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return cutLines(engine, block, args, "scriptEngineParserRecordize", kTypeVector, recordize);
}

bool copyLines(const ParserBlock* block, ScriptObject* target) {
    NewValues values(parserBlockSize(block));
    if (block == nullptr || !values.ready()) return false;
    for (const std::string_view line : block->lines)
        if (!values.addText(line)) return false;
    return values.moveTo(target);
}

int scriptEngineParserGetLines(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ParserArguments in(engine, block, args);
    const String* name = in.string(1);
    ScriptObject* target = in.target(2);
    const ParserBlock* lines = in.block(name);
    if (!in.ok()) return in.status();
    if (target->type != kTypeVector && target->type != kTypeList && target->type != kTypeSet) {
        logError(engine->logger,
                 "scriptEngineParserGetLines: Invalid type of third argument - expected vector, "
                 "list or set");
        return kOutOfMemory;
    }
    if (copyLines(lines, target)) return kDone;
    return commandOutOfMemory(engine, "scriptEngineParserGetLines");
}

int scriptEngineParserSort(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ParserArguments in(engine, block, args);
    const String* name = in.string(1);
    const String* order = in.string(2);
    ParserBlock* lines = in.block(name);
    if (!in.ok()) return in.status();
    const bool descending = stringView(order) == "decr";
    if ((descending || stringView(order) == "incr") && parserSort(lines, descending)) return kDone;
    return commandOutOfMemory(engine, "scriptEngineParserSort");
}

constexpr CommandRow kParserCommands[] = {
    // name             handler                     min max targets
    {"parserparse", scriptEngineParserParse, 4, 4, "1,4"},
    {"parsergetsize", scriptEngineParserGetSize, 3, 3, "1,3"},
    {"parserblocking", scriptEngineParserBlocking, 4, 4, "1,4"},
    {"parservblocking", scriptEngineParserVBlocking, 4, 4, "1,4"},
    {"parsertrim", scriptEngineParserTrim, 3, 4, "1"},
    {"parserpad", scriptEngineParserPad, 4, 4, "1"},
    {"parserfilter", scriptEngineParserFilter, 3, 3, "1"},
    {"parseritemize", scriptEngineParserItemize, 4, 4, "1,4"},
    {"parserrecordize", scriptEngineParserRecordize, 4, 4, "1,4"},
    {"parsergetlines", scriptEngineParserGetLines, 3, 3, "1,3"},
    {"parsersort", scriptEngineParserSort, 3, 3, "1"},
};

}  // namespace

std::span<const CommandRow> parserCommands() {
    return kParserCommands;
}
