#pragma once

#include <cstdint>

#include "ScriptEngine3Defs/CommandDef.h"
#include "ScriptEngine3Defs/NameTable.h"
#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptLine.h"
#include "containers/GrowArray.h"
#include "containers/Lock.h"
#include "containers/Map.h"
#include "logger/Logger.h"
#include "strings/String.h"

// One source file parsed. Messages of the run print the two strings together.
struct SourceFile {
    String* directory;  // with trailing separator
    String* fileName;
    uint8_t isSigned;  // 0 until the signature of the file has been verified
    // `scriptname` and `scriptdir` of the file's bodies, shared by all of them.
    ScriptObject* nameLiteral;
    ScriptObject* directoryLiteral;
};

// A user function: its body, and where it is defined.
struct ScriptFunction {
    String* name;
    ScriptLine* line;  // `block` is the body, `args` the parameter ids
};

// What exists only while scripts are parsed.
struct ParseTables {
    NameTable commands;  // to an index in `commandDefs`
    GrowArray<CommandDef> commandDefs;
    NameTable functionNames;
    NameTable varIds;
    uint32_t lastVarId = 0;  // highest id handed out
    uint32_t lastHiddenName = 0;
    // Ids of the result variables are this one and the next; a bit for each that a
    // script names. ORDER result variables
    uint32_t firstResultVar = 0;
    uint8_t namedResults = 0;
    NameTable sourceIndex;  // full path of a parsed file to its index in `sources`
    // By source index, of the files that have a signature: the lines hashed so far, and
    // what they are to give. Null until there is one.
    Map* hashes = nullptr;      // to `HashState`
    Map* signatures = nullptr;  // to `String`
};

// The four variables that each statement sets. They stand in the global block
// for good, so they are reached without a lookup.
struct ResultVariables {
    ScriptObject* success;
    ScriptObject* error;
    ScriptObject* invalidArgs;
    ScriptObject* outOfMemory;
};

// `ScriptEngine::namedResults`. ORDER result variables
enum NamedResult : uint8_t {
    kErrorNamed = 1,
    kSuccessNamed = 2,
    kInvalidArgsNamed = 4,
    kOutOfMemoryNamed = 8,
    kAllResultsNamed = 15,
};

// What is on its way out of the running blocks.
enum PendingFlag : uint8_t {
    kReturnPending = 1,
    kBreakPending = 2,
    kContinuePending = 4,
    kExitPending = 8,  // `exit` ran; never cleared
};

// The interpreter: all that a script makes belongs to it.
struct ScriptEngine {
    Logger* logger;
    GrowArray<SourceFile> sources;
    ParseTables* parseTables;
    ScriptBlock* globalBlock;
    GrowArray<ScriptBlock*> blocks;  // templates by block number; number 0 is the first one's
    NameTable functionIndex;         // name to an index in `functions`
    GrowArray<ScriptFunction> functions;
    Map* listeners;
    Map* connectionQueues;
    Lock* connectionLock;
    Map* locks;  // names to `NamedLock`s, whose own the names are
    Lock* lockTableLock;
    GrowArray<ScriptBlock*> stack;  // running instances, innermost last
    // `returnPending` and its three companions as bits: each statement asks for
    // all of them at once.
    uint8_t pending;
    uint8_t returnValue;
    uint8_t requireSignature;
    // The result variables that somebody may look at. The names are known when
    // parsing has ended; what no script names is not set.
    uint8_t namedResults;
    int32_t exitValue;
    int32_t statusCode;
    uint32_t errorVar;
    uint32_t successVar;
    uint32_t invalidArgsVar;
    uint32_t outOfMemoryVar;
    ResultVariables results;
    // Running goes no deeper than this address of the native stack.
    const char* stackFloor;
};

// The next free id for objects that are made at run time: one above every id handed out.
extern uint32_t scriptVarIdCounter;

// The id of a name, made on first use; `kNoVariable` if `tables` is null, the
// name is not a valid one, or memory runs out.
uint32_t scriptVarNameToId(ParseTables* tables, std::string_view name);
// The id of a hidden variable: a name of its own that no script can meet.
uint32_t scriptHiddenVarId(ParseTables* tables);
// An id for an object without a name.
uint32_t scriptAnonymousVarId();

// Objects made while arguments were fetched; they live until the end of a
// block, be it an inner one. Takes ownership; false when memory runs out (the object is ended).
bool scriptTemporariesAdd(ScriptObject* object);
void scriptTemporariesFlush();
extern GrowArray<ScriptObject*> scriptTemporaries;

// Makes an engine's record with its empty tables; null when memory runs out.
// Ends with `scriptEngineRecordDestroy`, which takes all that the engine owns.
ScriptEngine* scriptEngineRecordCreate();
void scriptEngineRecordDestroy(ScriptEngine** engine);
// Ends the tables of the parser, which are null from then on.
void parseTablesDestroy(ParseTables** tables);

template <>
struct OwnedTraits<ScriptEngine> {
    static void destroy(ScriptEngine** engine) { scriptEngineRecordDestroy(engine); }
};
