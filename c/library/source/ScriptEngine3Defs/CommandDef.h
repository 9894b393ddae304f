#pragma once

#include <cstdint>

#include "ScriptEngine3Defs/ScriptTypes.h"

// A command's handler: the running block, the statement's arguments, and the
// number of the statement's body. Gives a `CommandStatus`; `kInvalidCall` for
// null arguments.
using CommandHandler = int (*)(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                               int blockNumber);

enum CommandScope : uint8_t { kInBlock = 0, kAtFileLevel = 1, kAnywhere = 2 };

// "Many" in the column of the largest number of arguments.
constexpr uint32_t kManyArgs = 100;

// What the run loop must know of a statement beside its handler.
enum FlowKind : uint8_t {
    kPlainCommand,
    kCallCommand,
    kContinueCommand,
    // Mostly run without their handlers.
    kEvalCommand,
    kIfCommand,
};

// Where a command makes the variables that its arguments name, so that the
// parser can give them their slots.
enum DeclareKind : uint8_t { kDeclaresNone, kDeclaresAll, kDeclaresFirst, kDeclaresOutermost };

// What the parser does with a command beside making a statement of it.
enum DirectiveKind : uint8_t {
    kNoDirective,
    kDirectiveSignature,
    kDirectiveInclude,
    kDirectiveLimit,
    kDirectiveUser,
    kDirectiveGroup,
    kDirectiveFunction,
    kBranchIf,
    kBranchElseif,  // this and `kBranchElse` stand behind an `if` or `elseif`
    kBranchElse,
};

// One row of a family's table of commands.
struct CommandRow {
    const char* name;
    CommandHandler handler;
    uint32_t minArgs;
    uint32_t maxArgs;
    const char* targetSpec = nullptr;  // "1,3", "1-100", or null
    CommandScope scope = kInBlock;
    bool opensBlock = false;
    bool needsSignature = false;
    DeclareKind declares = kDeclaresNone;
    DirectiveKind directive = kNoDirective;
    FlowKind flow = kPlainCommand;
};

// One command as registered. The row's texts are not copied: rows are constant
// data of the program.
struct CommandDef {
    const CommandRow* row;
    uint32_t order;  // place in the order of registration, from 0
};
