#include "ScriptEngine3Defs/ScriptEngineRecord.h"

#include "ScriptEngine3Defs/ScriptHash.h"
#include "ScriptEngine3Defs/ScriptListener.h"
#include "strings/StringCompare.h"
#include "threads/NamedLock.h"

namespace {

void destroySources(ScriptEngine* engine) {
    for (SourceFile& source : engine->sources) {
        stringDestroy(&source.directory);
        stringDestroy(&source.fileName);
        scriptObjectDestroy(&source.nameLiteral);
        scriptObjectDestroy(&source.directoryLiteral);
    }
    engine->sources.clear();
}

void destroyFunctions(ScriptEngine* engine) {
    for (ScriptFunction& function : engine->functions) {
        stringDestroy(&function.name);
        scriptLineDestroy(&function.line);
    }
    engine->functions.clear();
}

}  // namespace

void parseTablesDestroy(ParseTables** tables) {
    if (tables == nullptr || *tables == nullptr) return;
    mapDestroyWith(&(*tables)->hashes, keyDestroy, scriptHashDestroyElement);
    mapDestroyWith(&(*tables)->signatures, keyDestroy, stringDestroyElement);
    memDelete(tables);
}

ScriptEngine* scriptEngineRecordCreate() {
    Owned<ScriptEngine> engine(memNew<ScriptEngine>());
    if (!engine) return nullptr;
    engine->logger = logCreate();
    engine->parseTables = memNew<ParseTables>();
    engine->globalBlock = scriptBlockCreate();
    engine->listeners = mapCreate(compareUnsigned);
    engine->connectionQueues = mapCreate(compareUnsigned);
    engine->connectionLock = lockCreate();
    engine->locks = mapCreate(stringCompareElements);
    engine->lockTableLock = lockCreate();
    engine->requireSignature = 1;
    engine->namedResults = kAllResultsNamed;
    if (engine->logger == nullptr || engine->parseTables == nullptr ||
        engine->globalBlock == nullptr || engine->listeners == nullptr ||
        engine->connectionQueues == nullptr || engine->connectionLock == nullptr ||
        engine->locks == nullptr || engine->lockTableLock == nullptr)
        return nullptr;
    engine->globalBlock->runsItself = 1;
    return engine.release();
}

void scriptEngineRecordDestroy(ScriptEngine** engine) {
    if (engine == nullptr || *engine == nullptr) return;
    ScriptEngine* record = *engine;
    scriptListenersEnd(record);
    scriptTemporariesFlush();
    parseTablesDestroy(&record->parseTables);
    scriptBlockDestroy(&record->globalBlock);
    for (ScriptBlock*& block : record->blocks) scriptBlockDestroy(&block);
    destroyFunctions(record);
    destroySources(record);
    lockDestroy(&record->connectionLock);
    lockDestroy(&record->lockTableLock);
    mapDestroyWith(&record->locks, nullptr, namedLockDestroyElement);
    logDestroy(&record->logger);
    memDelete(engine);
}
