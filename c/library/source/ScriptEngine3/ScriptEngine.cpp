#include "ScriptEngine3/ScriptEngine.h"

#include "ScriptEngine3/BlockExecution.h"
#include "ScriptEngine3/BuiltInVariables.h"
#include "ScriptEngine3/CommandTable.h"
#include "ScriptEngine3/SourceParser.h"
#include "ScriptEngine3Expressions/Evaluator.h"
#include "paths/Paths.h"
#include "system/SystemInfo.h"

namespace {

// The global statements run once in a process, however many functions are run.
bool globalBlockDone = false;

bool failWithLocation(ScriptEngine* engine, const char* message) {
    logError(engine->logger, message);
    logLocation(engine->logger, kLogError);
    return false;
}

bool runGlobalBlock(ScriptEngine* engine) {
    if (globalBlockDone) return true;
    if (!scriptEngineRunBlock(engine, engine->globalBlock))
        return failWithLocation(engine, "scriptEngineRunArgs: Failed to execute global block");
    globalBlockDone = true;
    return true;
}

}  // namespace

ScriptEngine* scriptEngineCreate() {
    Owned<ScriptEngine> engine(scriptEngineRecordCreate());
    if (!engine || !scriptOperatorsInit()) return nullptr;
    // Commands on processes reach further with it; without it they still work.
    sysEnablePrivilege("SeDebugPrivilege");
    return engine.release();
}

void scriptEngineDestroy(ScriptEngine** engine) {
    if (engine == nullptr || *engine == nullptr) return;
    logVerbose((*engine)->logger, "Destroying expression engine object");
    scriptEngineRecordDestroy(engine);
    scriptOperatorsDone();
}

bool scriptEnginePrepareEngine(ScriptEngine* engine) {
    if (engine == nullptr) return false;
    if (!scriptEngineAddBuiltInVariables(engine))
        return failWithLocation(engine, "scriptEnginePrepareEngine: #::1111");
    engineFindResultVars(engine);
    if (!scriptEngineRegisterDefaultFunctions(engine))
        return failWithLocation(engine,
                                "scriptEnginePrepareEngine: Failed to register default functions");
    return true;
}

bool scriptEnginePrepareRun(ScriptEngine* engine, const String* scriptPath) {
    if (engine == nullptr || scriptPath == nullptr) return false;
    if (engine->parseTables == nullptr)
        return failWithLocation(
            engine, "scriptEnginePrepareRun: This script engine has already been prepared!");
    logTrace(engine->logger, "scriptEnginePrepareRun: Got script file \"%S\"", scriptPath);
    logTrace(engine->logger, "scriptEnginePrepareRun: Preparing script file \"%S\"", scriptPath);
    Owned<String> directory(pathDirectoryPart(scriptPath));
    if (!directory) return failWithLocation(engine, "scriptEnginePrepareRun: #::100");
    logTrace(engine->logger, "scriptEnginePrepareRun: Got directory \"%S\"", directory.get());
    if (!scriptEngineParse(engine, scriptPath, directory.get(), true)) {
        logLocation(engine->logger, kLogError);
        return false;
    }
    if (!scriptBlockMakeReady(engine->globalBlock))
        return failWithLocation(engine, "scriptEnginePrepareRun: #::100");
    engine->namedResults = engine->parseTables->namedResults;
    parseTablesDestroy(&engine->parseTables);
    return true;
}

bool scriptEngineRun(ScriptEngine* engine, const String* functionName) {
    if (engine == nullptr) return false;
    engine->pending = 0;
    const GrowArray<const String*> none;
    return scriptEngineRunArgs(engine, functionName, none);
}

bool scriptEngineRunArgs(ScriptEngine* engine, const String* functionName,
                         const GrowArray<const String*>& args) {
    if (engine == nullptr) return false;
    stackMeasure(engine);
    if (!runGlobalBlock(engine)) return false;
    const bool named = !stringIsEmpty(functionName);
    const ScriptFunction* function = scriptEngineFindUserFunction(
        engine, named ? stringView(functionName) : std::string_view("main"));
    if (function == nullptr) {
        if (functionName == nullptr)
            logError(engine->logger, "scriptEngineRunArgs: There is no \"main\" function");
        else
            logError(engine->logger, "scriptEngineRunArgs: The function \"%S\" was not found",
                     functionName);
        return false;
    }
    if (scriptEngineExecuteFunction(engine, function, engine->globalBlock, args)) return true;
    if (functionName == nullptr)
        logError(engine->logger, "scriptEngineRunArgs: Failed to execute \"main\"");
    else
        logError(engine->logger, "scriptEngineRunArgs: Failed to execute \"%S\"", functionName);
    return false;
}
