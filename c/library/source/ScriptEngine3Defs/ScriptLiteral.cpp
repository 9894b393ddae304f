#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "files/BasicFile.h"
#include "strings/StringEdit.h"
#include "strings/StringNumbers.h"

namespace {

constexpr std::string_view kNumberBytes = "-0123456789.";
constexpr std::string_view kFilePrefix = "file:";
// The name begins inside the prefix: scripts have always named files this way.
constexpr size_t kFileNameAt = 3;
// Protects an escaped quote until the literal gets its value.
constexpr char kQuoteMark = 27;

struct TypeWord {
    const char* accepted;  // in `new`, `is`, `retype`
    const char* printed;
};

constexpr TypeWord kTypeWords[] = {
    {nullptr, "error"},   {"undef", "undef"},   {"expr", "expr"}, {"pointer", "ref"},
    {"number", "number"}, {"string", "string"}, {"file", "file"}, {"list", "list"},
    {"vector", "vector"}, {"set", "set"},       {"map", "map"},   {"tree", "tree"},
    {"parser", "parser"}, {"config", "config"},
};
static_assert(sizeof kTypeWords / sizeof kTypeWords[0] == kTypeCount);

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isNameByte(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '.';
}

bool isQuoted(std::string_view text) {
    return text.size() > 1 && text.front() == '"' && text.back() == '"';
}

bool setString(ScriptObject* object, std::string_view text) {
    if (isQuoted(text)) text = text.substr(1, text.size() - 2);
    if (!stringSetView(&object->string, text)) return false;
    if (text.find(kQuoteMark) != std::string_view::npos)
        stringReplaceChar(&object->string, kQuoteMark, '"');
    return true;
}

bool setFile(ScriptObject* object, std::string_view text) {
    Owned<String> name(
        stringFromView(text.size() > kFileNameAt ? text.substr(kFileNameAt) : std::string_view()));
    return name && bfileSetName(object->file, name.get());
}

// Gives the target of a pointer another name; the pointer stays where it is.
bool setRefName(ScriptEngine* engine, ScriptObject* object, std::string_view text) {
    const uint32_t id = scriptVarNameToId(engine == nullptr ? nullptr : engine->parseTables, text);
    if (id == kNoVariable) {
        logError(engine == nullptr ? nullptr : engine->logger,
                 "scriptObjectSetRefValue: Invalid reference name \"%S\"", text);
        return false;
    }
    ScriptObject* target = scriptPointerTarget(object);
    if (target == nullptr) return false;
    target->nameId = id;
    return true;
}

}  // namespace

ScriptType scriptObjectTypeFromName(std::string_view name) {
    for (uint32_t type = kTypeUndef; type < kTypeCount; ++type)
        if (name == kTypeWords[type].accepted) return static_cast<ScriptType>(type);
    return kTypeNone;
}

const char* scriptObjectTypeName(uint32_t type) {
    return kTypeWords[type < kTypeCount ? type : uint32_t{kTypeNone}].printed;
}

bool scriptObjectIsValidName(std::string_view text) {
    if (text.empty() || isDigit(text.front())) return false;
    for (const char c : text)
        if (!isNameByte(c)) return false;
    return true;
}

ScriptType scriptObjectLiteralType(std::string_view text) {
    if (text.find_first_not_of(kNumberBytes) == std::string_view::npos) return kTypeNumber;
    if (isQuoted(text)) return kTypeString;
    if (text.substr(0, kFilePrefix.size()) == kFilePrefix) return kTypeFile;
    return scriptObjectIsValidName(text) ? kTypePointer : kTypeNone;
}

ScriptObject* scriptObjectFromLiteral(std::string_view text) {
    const ScriptType type = scriptObjectLiteralType(text);
    // A bare name would relabel the target of a pointer that has none yet.
    if (type == kTypeNone || type == kTypePointer) return nullptr;
    Owned<ScriptObject> object(scriptObjectCreate(type));
    if (!object || !scriptObjectSetStringValue(nullptr, object.get(), text)) return nullptr;
    return object.release();
}

bool scriptObjectSetStringValue(ScriptEngine* engine, ScriptObject* object, std::string_view text) {
    if (object == nullptr) return false;
    switch (object->type) {
        case kTypeNumber:
            object->number = textToDouble(text);
            return true;
        case kTypeString:
            return setString(object, text);
        case kTypeFile:
            return setFile(object, text);
        case kTypePointer:
            return setRefName(engine, object, text);
        default:
            return false;
    }
}

bool scriptObjectTakeStringValue(ScriptObject* object, String* text) {
    if (isQuoted(stringView(text))) return setString(object, stringView(text));
    stringReplaceChar(text, kQuoteMark, '"');
    std::swap(object->string, *text);
    return true;
}
