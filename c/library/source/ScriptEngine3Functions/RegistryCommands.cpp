#include "ScriptEngine3Functions/RegistryCommands.h"

#include <cmath>

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "containers/List.h"
#include "platform/registry.h"
#include "registry/Registry.h"
#include "strings/StringNumbers.h"

namespace {

// As a column of the tables: the command needs a signed file.
constexpr bool kSigned = true;

constexpr char kSharedKey[] = "SOFTWARE\\Quorel\\GlobReg";

struct ResultWord {
    RegResult result;
    const char* word;
    int status;
};
constexpr ResultWord kResultWords[] = {
    {RegResult::Arguments, "args", kError}, {RegResult::NotFound, "not found", kNegative},
    {RegResult::OtherType, "type", kError}, {RegResult::NoAccess, "access", kError},
    {RegResult::Failed, "error", kError},   {RegResult::NoMemory, "memory", kOutOfMemory},
};
constexpr ResultWord kUnknownResult = {RegResult::Done, "unknown", kError};

const ResultWord& wordOf(RegResult result) {
    for (const ResultWord& row : kResultWords)
        if (row.result == result) return row;
    return kUnknownResult;
}

// The arguments of a command that begins with the path of a key, as in
// "HKEY_CURRENT_USER\Software\Name", and ends with a target for the word of a failure.
class RegistryArguments : public Arguments {
  public:
    RegistryArguments(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, const char* name)
        : Arguments(engine, block, args), name_(name), path_(string(0)) {}

    // To be asked for when the other arguments are there: what a failure would
    // report and what stands in the path.
    bool ready() { return any(count() - 1) != nullptr; }
    // Done, or what is wrong with the path.
    RegResult splitPath() {
        const std::string_view path = stringView(path_);
        const size_t end = path.find('\\');
        LocalString rootName;
        if (!stringSetView(&rootName, path.substr(0, end))) return RegResult::NoMemory;
        if (!regRootFromName(&rootName, &root_)) return RegResult::NotFound;
        if (end == path.npos) return RegResult::Done;
        return stringSetView(&key_, path.substr(end + 1)) ? RegResult::Done : RegResult::NoMemory;
    }
    uint32_t root() const { return root_; }
    const String* key() const { return &key_; }

    // Puts the word for a failure into its target, and gives the status.
    int finish(RegResult result) {
        if (result == RegResult::Done) return kDone;
        const ResultWord& row = wordOf(result);
        ScriptObject* target = retyped(count() - 1, kTypeString);
        if (target == nullptr) return status();
        if (!stringSetText(&target->string, row.word) || row.status == kOutOfMemory)
            return commandOutOfMemory(engine_, name_);
        return row.status;
    }
    // The same after a message about an argument.
    int refuse(RegResult result, const char* message, const String* text = nullptr) {
        logError(engine_->logger, message, text);
        finish(result);
        return kError;
    }

  private:
    const char* name_;
    const String* path_;
    uint32_t root_ = 0;
    LocalString key_;
};

// How a value is read and written, by the word for its type.
struct ValueType {
    std::string_view word;
    ScriptType type;
    const char* notRetyped;
    const char* notGiven;
};
constexpr ValueType kValueTypes[] = {
    {"str", kTypeString, "scriptEngineGetReg: Failed to set fourth parameter to string type",
     "scriptEngineSetReg: Fourth parameter must be a string"},
    {"num", kTypeNumber, "scriptEngineGetReg: Failed to set fourth parameter to number type",
     "scriptEngineSetReg: Fourth parameter must be a number"},
};

const ValueType* valueType(const String* word) {
    for (const ValueType& row : kValueTypes)
        if (row.word == stringView(word)) return &row;
    return nullptr;
}

// Reads into a string or a number, as the object is.
RegResult readValue(uint32_t root, const String* key, const String* name, ScriptObject* object) {
    if (object->type == kTypeString) return regGetString(root, key, name, &object->string);
    uint32_t number = 0;
    const RegResult result = regGetNumber(root, key, name, &number);
    if (result == RegResult::Done) object->number = number;
    return result;
}

RegResult writeValue(uint32_t root, const String* key, const String* name,
                     const ScriptObject* object) {
    if (object->type == kTypeString) return regSetString(root, key, name, &object->string);
    return regSetNumber(root, key, name, numberToUInt32(std::round(object->number)));
}

int scriptEngineGetReg(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    RegistryArguments in(engine, block, args, "scriptEngineGetReg");
    const String* name = in.string(1);
    const String* word = in.string(2);
    in.target(3);
    if (!in.ok() || !in.ready()) return in.status();
    const ValueType* type = valueType(word);
    if (type == nullptr)
        return in.refuse(RegResult::OtherType, "scriptEngineGetReg: Invalid type \"%S\"", word);
    ScriptObject* target = in.target(3);
    if (target->type != type->type && (!in.keepTexts() || !scriptObjectRetype(target, type->type)))
        return in.refuse(RegResult::OtherType, type->notRetyped);
    // The word's target may have been a part of the other.
    if (!in.ready()) return in.status();
    const RegResult split = in.splitPath();
    if (split != RegResult::Done) return in.finish(split);
    return in.finish(readValue(in.root(), in.key(), name, target));
}

int scriptEngineSetReg(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    RegistryArguments in(engine, block, args, "scriptEngineSetReg");
    const String* name = in.string(1);
    const String* word = in.string(2);
    const ScriptObject* value = in.any(3);
    if (!in.ok() || !in.ready()) return in.status();
    const ValueType* type = valueType(word);
    if (type == nullptr)
        return in.refuse(RegResult::OtherType, "scriptEngineSetReg: Invalid type \"%S\"", word);
    if (value->type != type->type) return in.refuse(RegResult::OtherType, type->notGiven);
    const RegResult split = in.splitPath();
    if (split != RegResult::Done) return in.finish(split);
    return in.finish(writeValue(in.root(), in.key(), name, value));
}

int scriptEngineDelRegValue(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    RegistryArguments in(engine, block, args, "scriptEngineDelRegValue");
    const String* name = in.string(1);
    if (!in.ok() || !in.ready()) return in.status();
    const RegResult split = in.splitPath();
    if (split != RegResult::Done) return in.finish(split);
    return in.finish(regDeleteValue(in.root(), in.key(), name));
}

int scriptEngineDelRegKey(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    RegistryArguments in(engine, block, args, "scriptEngineDelRegKey");
    if (!in.ok() || !in.ready()) return in.status();
    const RegResult split = in.splitPath();
    if (split != RegResult::Done) return in.finish(split);
    return in.finish(regDeleteKey(in.root(), in.key()));
}

// A list with Strings of its own.
class Names {
  public:
    Names() : list_(listCreate()) {}
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;
    ~Names() { listDestroyWith(&list_, stringDestroyElement); }
    List* list() const { return list_; }

  private:
    List* list_;
};

RegResult addSubKeys(uint32_t root, const String* key, ScriptObject* target) {
    const Names names;
    if (names.list() == nullptr) return RegResult::NoMemory;
    const RegResult result = regGetSubKeys(root, key, names.list());
    if (result != RegResult::Done) return result;
    for (const ListNode* node = listFirstNode(names.list()); node != nullptr;
         node = listNextNode(names.list(), node))
        if (!containerAddText(target, stringView(static_cast<const String*>(node->value))))
            return RegResult::NoMemory;
    return RegResult::Done;
}

int scriptEngineGetRegSubKeys(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    RegistryArguments in(engine, block, args, "scriptEngineGetRegSubKeys");
    if (!in.ok() || !in.ready()) return in.status();
    ScriptObject* there = scriptBlockSearchPlace(block, in.arg(1), nullptr);
    if (there == nullptr || scriptPointerFollow(there) == nullptr)
        return in.refuse(RegResult::Arguments,
                         "scriptEngineGetRegSubKeys: Second parameter is not defined");
    ScriptObject* target = in.target(1);
    if (!in.ok()) return in.status();
    if (target->type != kTypeVector && target->type != kTypeList && target->type != kTypeSet)
        return in.refuse(
            RegResult::Arguments,
            "scriptEngineGetRegSubKeys: Second parameter must be a vector, a list or a set");
    const RegResult split = in.splitPath();
    if (split != RegResult::Done) return in.finish(split);
    return in.finish(addSubKeys(in.root(), in.key(), target));
}

// The store of globals in a file is no longer supported.
int scriptEngineSetGlobalFile(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    in.string(0);
    return kError;
}

int unsupported(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    in.string(0);
    ScriptObject* target = in.retyped(in.count() - 1, kTypeString);
    if (in.ok()) stringSetText(&target->string, "unsupported");
    return kError;
}

// The end of a command on a shared value: these tell no reasons.
int sharedStatus(ScriptEngine* engine, RegResult result) {
    if (result == RegResult::NoMemory) return commandOutOfMemory(engine, "scriptEngineGetReg");
    return result == RegResult::Done ? kDone : kNegative;
}

bool isStringOrNumber(const ScriptObject* object) {
    return object->type == kTypeString || object->type == kTypeNumber;
}

int scriptEngineGetGlobReg(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* name = in.string(0);
    ScriptObject* target = in.target(1);
    if (!in.ok()) return in.status();
    if (!isStringOrNumber(target))
        return commandError(
            engine, "scriptEngineGetReg: Can only get strings and numbers - argument 2 is neither");
    LocalString key;
    if (!stringSetText(&key, kSharedKey)) return sharedStatus(engine, RegResult::NoMemory);
    return sharedStatus(engine, readValue(kOsLocalMachine, &key, name, target));
}

int scriptEngineSetGlobReg(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* name = in.string(0);
    const ScriptObject* value = in.any(1);
    if (!in.ok()) return in.status();
    if (!isStringOrNumber(value))
        return commandError(
            engine, "scriptEngineGetReg: Can only set strings and numbers - argument 2 is neither");
    LocalString key;
    if (!stringSetText(&key, kSharedKey)) return sharedStatus(engine, RegResult::NoMemory);
    return sharedStatus(engine, writeValue(kOsLocalMachine, &key, name, value));
}

int scriptEngineDelGlobReg(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* name = in.string(0);
    if (!in.ok()) return in.status();
    LocalString key;
    if (!stringSetText(&key, kSharedKey)) return sharedStatus(engine, RegResult::NoMemory);
    return sharedStatus(engine, regDeleteValue(kOsLocalMachine, &key, name));
}

constexpr CommandRow kRegistryCommands[] = {
    // name      handler             min max targets
    {"getreg", scriptEngineGetReg, 5, 5, "4,5"},
    {"setreg", scriptEngineSetReg, 5, 5, "5", kInBlock, false, kSigned},
    {"delregvalue", scriptEngineDelRegValue, 3, 3, "3", kInBlock, false, kSigned},
    {"delregkey", scriptEngineDelRegKey, 2, 2, "2", kInBlock, false, kSigned},
    {"getregsubkeys", scriptEngineGetRegSubKeys, 3, 3, "2,3"},
    {"setglobalfile", scriptEngineSetGlobalFile, 1, 1, nullptr, kInBlock, false, kSigned},
    {"getglobal", unsupported, 3, 3, "2,3"},
    {"setglobal", unsupported, 3, 3, "3", kInBlock, false, kSigned},
    {"delglobal", unsupported, 2, 2, "2", kInBlock, false, kSigned},
    {"getglobreg", scriptEngineGetGlobReg, 2, 2, "2"},
    {"setglobreg", scriptEngineSetGlobReg, 2, 2, nullptr, kInBlock, false, kSigned},
    {"delglobreg", scriptEngineDelGlobReg, 1, 1, nullptr, kInBlock, false, kSigned},
};

}  // namespace

std::span<const CommandRow> registryCommands() {
    return kRegistryCommands;
}
