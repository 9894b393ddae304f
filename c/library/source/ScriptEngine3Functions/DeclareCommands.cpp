#include "ScriptEngine3Functions/DeclareCommands.h"

#include "ScriptEngine3Defs/Arguments.h"

namespace {

// Declares every argument in `block`. `name` begins the message.
int declareIn(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, ScriptType type,
              const char* name) {
    for (uint32_t at = 0; at < args->count; ++at) {
        ScriptArg* arg = &args->items[at];
        if (scriptBlockSearchPlace(block, arg, nullptr) != nullptr) continue;
        if (scriptBlockDeclareVar(block, arg->id, type) != nullptr) continue;
        logError(engine->logger, "%s: Failed to create variable no. %u", name, at + 1);
        return kInvalidCall;
    }
    return kDone;
}

struct Declarator {
    ScriptType type;
    const char* name;
};

// The names in the messages are not always those of the commands.
constexpr Declarator kVar = {kTypeUndef, "scriptEngineVar"};
constexpr Declarator kPointer = {kTypePointer, "scriptEngineRef"};
constexpr Declarator kNumber = {kTypeNumber, "scriptEngineNum"};
constexpr Declarator kString = {kTypeString, "scriptEngineStr"};
constexpr Declarator kFile = {kTypeFile, "scriptEngineFile"};
constexpr Declarator kList = {kTypeList, "scriptEngineList"};
constexpr Declarator kVector = {kTypeVector, "scriptEngineVector"};
constexpr Declarator kSet = {kTypeSet, "scriptEngineSet"};
constexpr Declarator kMap = {kTypeMap, "scriptEngineMap"};
constexpr Declarator kTree = {kTypeTree, "scriptEngineMap"};
constexpr Declarator kParser = {kTypeParser, "scriptEngineParser"};
constexpr Declarator kConfig = {kTypeConfig, "scriptEngineConfig"};

template <const Declarator& kDeclarator>
int declare(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    return declareIn(engine, block, args, kDeclarator.type, kDeclarator.name);
}

int scriptEngineGlobal(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    ScriptBlock* outermost = scriptBlockOutermost(block);
    for (uint32_t at = 0; at < args->count; ++at) {
        if (scriptBlockDeclareVar(outermost, args->items[at].id, kVar.type) != nullptr) continue;
        logError(engine->logger, "%s: Failed to create variable no. %u", kVar.name, at + 1);
        return kInvalidCall;
    }
    return kDone;
}

// `new type pointer`: an object without a name in the outermost block, and the
// pointer aimed at it.
int scriptEngineNew(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    if (!in.ok()) return in.status();
    ScriptBlock* outermost = scriptBlockOutermost(block);
    const uint32_t id = scriptAnonymousVarId();
    const String* typeName = in.string(0);
    if (!in.ok()) return in.status();
    const ScriptType type = scriptObjectTypeFromName(stringView(typeName));
    if (type == kTypeNone) return kNegative;
    ScriptObject* object = scriptBlockDeclareVar(outermost, id, kTypeUndef);
    if (object == nullptr) {
        logError(engine->logger, "scriptEngineNew: Failed to create variable");
        return kInvalidCall;
    }
    if (!scriptObjectRetype(object, type)) return kNegative;
    ScriptObject* pointer = scriptBlockSearchPlace(block, in.arg(1), nullptr);
    if (pointer == nullptr) {
        logError(engine->logger, "scriptEngineNew: Failed to get pointer");
        return kError;
    }
    if (pointer->type != kTypePointer) {
        logError(engine->logger, "scriptEngineNew: First argument must be a pointer");
        return kError;
    }
    scriptPointerAim(pointer, object, outermost);
    return kDone;
}

int scriptEngineIs(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    bool follow = true;
    if (in.count() > 2) {
        const ScriptObject* flag = in.any(2);
        if (in.ok()) follow = scriptObjectGetBool(engine, flag, block) != kFalse;
    }
    const ScriptObject* object = follow ? in.any(0) : in.unfollowed(0);
    const String* word = in.string(1);
    if (!in.ok()) return in.status();
    if (object->type == kTypeUndef || object->type == kTypeExpr) return kNegative;
    return scriptObjectTypeFromName(stringView(word)) == object->type ? kDone : kNegative;
}

int scriptEngineRetype(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* object = in.target(0);
    const String* word = in.string(1);
    if (!in.ok()) return in.status();
    const ScriptType type = scriptObjectTypeFromName(stringView(word));
    return scriptObjectRetype(object, type) ? kDone : kNegative;
}

constexpr CommandRow declarator(const char* name, CommandHandler handler,
                                DeclareKind declares = kDeclaresAll) {
    return {.name = name,
            .handler = handler,
            .minArgs = 1,
            .maxArgs = kManyArgs,
            .targetSpec = "1-100",
            .scope = kAnywhere,
            .declares = declares};
}

constexpr CommandRow kDeclareCommands[] = {
    declarator("global", scriptEngineGlobal, kDeclaresOutermost),
    {"new", scriptEngineNew, 2, 2, "2", kAnywhere},
    declarator("var", declare<kVar>),
    declarator("pointer", declare<kPointer>),
    declarator("number", declare<kNumber>),
    declarator("string", declare<kString>),
    declarator("file", declare<kFile>),
    declarator("list", declare<kList>),
    declarator("vector", declare<kVector>),
    declarator("set", declare<kSet>),
    declarator("map", declare<kMap>),
    declarator("tree", declare<kTree>),
    declarator("parser", declare<kParser>),
    declarator("config", declare<kConfig>),
    {"is", scriptEngineIs, 2, 3, "1"},
    {"retype", scriptEngineRetype, 2, 2, "1"},
};

}  // namespace

std::span<const CommandRow> declareCommands() {
    return kDeclareCommands;
}
