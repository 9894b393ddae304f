#pragma once

#include <cstdint>

#include "ScriptEngine3Defs/CommandDef.h"
#include "ScriptEngine3Defs/VarPlace.h"
#include "containers/Owned.h"

struct ExprStep;

// One argument of a statement: a variable id with its place.
using ScriptArg = VarPlace;

// The arguments of a statement, in order. They stand in one piece behind their
// statement: a `Vector` of boxed ids would cost a walk over the heap each.
struct ScriptArgs {
    ScriptArg* items;
    uint32_t count;
    // The steps of the first one, once it has been found to be a short expression of
    // the statement's own block that nobody can change; null otherwise.
    const ExprStep* steps;
};

// One statement.
struct ScriptLine {
    uint32_t source;      // index in the engine's `sources`
    uint32_t lineNumber;  // in that file, from 1
    CommandHandler handler;
    int32_t block;  // number of the body, `kNoBlock` or `kGlobalBlock`
    uint8_t needsSignature;
    FlowKind flow;  // what the run loop must know of the handler
    ScriptArgs args;
};

// A statement of the command with copies of `count` arguments; null when
// memory runs out. Ends with `scriptLineDestroy`.
ScriptLine* scriptLineCreate(uint32_t source, uint32_t lineNumber, const CommandRow* command,
                             int32_t block, const ScriptArg* args, uint32_t count);
void scriptLineDestroy(ScriptLine** line);

template <>
struct OwnedTraits<ScriptLine> {
    static void destroy(ScriptLine** line) { scriptLineDestroy(line); }
};
