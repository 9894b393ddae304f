#include "ScriptEngine3Functions/StringSplitCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "ScriptEngine3Functions/FlagArgument.h"
#include "strings/StringFind.h"

namespace {

// Calls `store(item)` for each item until it gives false, and gives what the last
// one gave. Each separator ends an item, so one at the very end makes no further
// item. An empty separator is none.
template <typename Store>
bool eachItem(std::string_view text, std::string_view separator, bool skipEmpty, Store store) {
    size_t at = 0;
    while (at < text.size()) {
        size_t hit = std::string_view::npos;
        if (separator.size() == 1)
            hit = text.find(separator.front(), at);
        else if (!separator.empty())
            hit = text.find(separator, at);
        const std::string_view item = text.substr(at, hit - at);
        if (!(skipEmpty && item.empty()) && !store(item)) return false;
        if (hit == std::string_view::npos) return true;
        at = hit + separator.size();
    }
    return true;
}

// A pair from an item; an item without separator is a key with an empty value.
bool storeItemAsPair(ScriptObject* map, std::string_view item, std::string_view separator,
                     bool skipEmpty) {
    const size_t cut = item.find(separator);
    const std::string_view key = item.substr(0, cut);
    const std::string_view value =
        cut == std::string_view::npos ? std::string_view() : item.substr(cut + separator.size());
    if (key.empty() || (skipEmpty && value.empty())) return true;
    return mapPutTexts(map, key, value);
}

// The commands that put the items of a text into a container. Names and places
// in the complaints are not always those of the command.
struct SplitRule {
    ScriptType type;
    bool skipEmpty;
    bool flagOptional;
    const char* name;
    const char* complaint;
};

int splitInto(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, const SplitRule& rule) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    const String* separator = in.string(1);
    ScriptObject* target = in.target(2, rule.type);
    bool skipEmpty = rule.skipEmpty;
    const auto read = rule.flagOptional ? readOptionalFlag : readFlag;
    const int status = read(engine, block, &in, 3, rule.complaint, &skipEmpty);
    if (status != kDone) return status;
    const auto add = [target](std::string_view item) { return containerAddText(target, item); };
    if (eachItem(stringView(text), stringView(separator), skipEmpty, add)) return kDone;
    return commandOutOfMemory(engine, rule.name);
}

constexpr SplitRule kToVector = {
    kTypeVector, false, true, "scriptEngineStrToVector",
    "scriptEngineStrToVector: Failed to get boolean value of third parameter"};
constexpr SplitRule kToList = {
    kTypeList, true, true, "scriptEngineStrToList",
    "scriptEngineStrErase: Failed to get boolean value of third parameter"};
// The flag is asked for although a call may leave it out: such a call fails
// without a message, and scripts know it that way.
constexpr SplitRule kToSet = {
    kTypeSet, false, false, "scriptEngineStrToSet",
    "scriptEngineStrToSet: Failed to get boolean value of third parameter"};

}  // namespace

int scriptEngineStrSplit(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    const String* separator = in.string(1);
    uint32_t at = 0;
    for (uint32_t index = 2; in.ok() && index < in.count(); ++index) {
        const bool last = index + 1 == in.count();
        const int64_t hit = last ? kStringNotFound : stringFind(text, separator, at);
        ScriptObject* target = in.retyped(index, kTypeString);
        if (!in.ok()) break;
        const uint32_t end = hit == kStringNotFound ? text->length : static_cast<uint32_t>(hit);
        if (!stringSetView(&target->string, stringRange(text, at, end - at))) return kOutOfMemory;
        if (hit == kStringNotFound) break;
        at = end + separator->length;
    }
    return in.status();
}

int scriptEngineStrToVector(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return splitInto(engine, block, args, kToVector);
}
int scriptEngineStrToList(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return splitInto(engine, block, args, kToList);
}
int scriptEngineStrToSet(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return splitInto(engine, block, args, kToSet);
}

int scriptEngineStrToMap(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    const String* keySeparator = in.string(1);
    const String* itemSeparator = in.string(2);
    ScriptObject* target = in.target(3, kTypeMap);
    bool skipEmpty = true;
    const int status = readOptionalFlag(
        engine, block, &in, 4,
        "scriptEngineStrToMap: Failed to get boolean value of fourth parameter", &skipEmpty);
    if (status != kDone) return status;
    // A pair that is replaced may hold what is read here.
    if (mapCount(target->map.map) > 0 && !in.keepTexts())
        return commandOutOfMemory(engine, "scriptEngineStrToMap");
    const auto store = [&](std::string_view item) {
        return storeItemAsPair(target, item, stringView(keySeparator), skipEmpty);
    };
    if (eachItem(stringView(text), stringView(itemSeparator), skipEmpty, store)) return kDone;
    return commandOutOfMemory(engine, "scriptEngineStrToMap");
}
