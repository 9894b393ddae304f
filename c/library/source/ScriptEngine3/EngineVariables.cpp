#include "ScriptEngine3/EngineVariables.h"

#include "strings/StringEdit.h"

namespace {

void traceNewName(ScriptEngine* engine, const char* name, uint32_t id) {
    logDebug(engine->logger,
             "scriptEngineAddVarName: Adding new variable name mapping \"%s\" = ID %u", name, id);
}

// Makes the variable in the block and gives its id.
uint32_t makeVariable(ScriptEngine* engine, ScriptBlock* block, const char* name, uint32_t id,
                      const String* defaultValue) {
    Owned<ScriptObject> object(defaultValue == nullptr
                                   ? scriptObjectCreate(kTypeUndef)
                                   : scriptObjectFromLiteral(stringView(defaultValue)));
    if (!object) {
        if (defaultValue == nullptr)
            logError(engine->logger, "scriptEngineAddVarName: #::100");
        else
            logError(engine->logger,
                     "scriptEngineAddVarName: Failed to add variable \"%S\". Most likely cause of "
                     "error: Bad default value \"%S\", or: #::100",
                     name, defaultValue);
        logLocation(engine->logger, kLogError);
        return kNoVariable;
    }
    if (!scriptBlockAddVar(block, id, object.get())) {
        logError(engine->logger,
                 "scriptEngineAddVarName: Failed to add variable \"%S\". Most likely cause of "
                 "error: #::100",
                 name);
        logLocation(engine->logger, kLogError);
        return kNoVariable;
    }
    object.release();
    return id;
}

uint32_t addDefault(ScriptEngine* engine, ScriptBlock* block, const char* caller, const char* name,
                    String* value, bool quote) {
    Owned<String> text(value);
    if (engine == nullptr) return kNoVariable;
    if (name == nullptr) {
        logError(engine->logger, "%s: #::10 - #::100", caller);
        logLocation(engine->logger, kLogError);
        return kNoVariable;
    }
    if (text && quote &&
        (!stringInsertChar(text.get(), 0, '"') || !stringAppendChar(text.get(), '"')))
        return kNoVariable;
    return scriptEngineAddVarName(engine, block, name, text.get());
}

struct ResultVariable {
    uint32_t ScriptEngine::*id;
    ScriptObject* ResultVariables::*object;
};

constexpr ResultVariable kResultVariables[] = {
    {&ScriptEngine::successVar, &ResultVariables::success},
    {&ScriptEngine::errorVar, &ResultVariables::error},
    {&ScriptEngine::invalidArgsVar, &ResultVariables::invalidArgs},
    {&ScriptEngine::outOfMemoryVar, &ResultVariables::outOfMemory},
};

}  // namespace

uint32_t scriptEngineAddVarName(ScriptEngine* engine, ScriptBlock* block, const char* name,
                                const String* defaultValue) {
    if (engine == nullptr || block == nullptr || name == nullptr) return kNoVariable;
    const uint32_t id = scriptVarNameToId(engine->parseTables, name);
    if (id == kNoVariable || scriptBlockOwnVar(block, id) != nullptr) return id;
    traceNewName(engine, name, id);
    return makeVariable(engine, block, name, id, defaultValue);
}

uint32_t scriptEngineAddDefaultVar(ScriptEngine* engine, const char* name, String* value,
                                   bool quote) {
    ScriptBlock* global = engine == nullptr ? nullptr : engine->globalBlock;
    return addDefault(engine, global, "scriptEngineAddDefaultVar", name, value, quote);
}

uint32_t scriptEngineAddDefaultLocalVar(ScriptEngine* engine, ScriptBlock* block, const char* name,
                                        String* value, bool quote) {
    return addDefault(engine, block, "scriptEngineAddDefaultLocalVar", name, value, quote);
}

bool engineBorrowLocalVar(ScriptEngine* engine, ScriptBlock* block, const char* name,
                          ScriptObject* object) {
    if (object->nameId == kNoVariable)
        object->nameId = scriptVarNameToId(engine->parseTables, name);
    if (object->nameId == kNoVariable) return false;
    traceNewName(engine, name, object->nameId);
    return scriptBlockBorrowLiteral(block, object->nameId, object);
}

bool scriptEngineSetResultVar(ScriptEngine* engine, uint32_t id, const char* value) {
    if (engine == nullptr || value == nullptr) return false;
    for (const ResultVariable& variable : kResultVariables) {
        if (engine->*variable.id != id) continue;
        return scriptObjectSetStringValue(engine, engine->results.*variable.object, value);
    }
    return false;
}

void engineFindResultVars(ScriptEngine* engine) {
    for (const ResultVariable& variable : kResultVariables)
        engine->results.*variable.object =
            scriptBlockOwnVar(engine->globalBlock, engine->*variable.id);
    // From here on whoever asks for one of the names is a script.
    engine->parseTables->firstResultVar = engine->errorVar;
    engine->parseTables->namedResults = 0;
}
