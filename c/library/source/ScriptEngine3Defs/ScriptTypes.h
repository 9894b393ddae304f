#pragma once

#include <cstdint>
#include <string_view>

// The small numbers that the parts of the engine share.

struct ScriptEngine;
struct ScriptBlock;
struct ScriptObject;
struct ScriptArgs;

// As wide as the word of an object that holds it: there are systems where it would get
// a word of its own otherwise.
enum ScriptType : uint32_t {
    kTypeNone = 0,
    kTypeUndef = 1,
    kTypeExpr = 2,
    kTypePointer = 3,
    kTypeNumber = 4,
    kTypeString = 5,
    kTypeFile = 6,
    kTypeList = 7,
    kTypeVector = 8,
    kTypeSet = 9,
    kTypeMap = 10,
    kTypeTree = 11,
    kTypeParser = 12,
    kTypeConfig = 13,
};
constexpr uint32_t kTypeCount = 14;

// What a command handler gives back.
enum CommandStatus : int {
    kDone = 0,
    kNegative = 1,          // worked, and the answer is no
    kError = 2,             // the block stops
    kInvalidArguments = 3,  // reported, the block goes on
    kOutOfMemory = 4,       // reported, the block goes on
    kInvalidCall = 5,       // internal failure: the block stops
};

// The truth of a value.
enum ScriptTruth : int { kFalse = 0, kTrue = 1, kNoTruth = 2 };

constexpr int kCompareFailed = -2;
constexpr uint32_t kNoSize = 0xFFFFFFFF;

// No variable id. Ids are handed out from 1 up to it, and an object keeps 24 bits of one.
constexpr uint32_t kNoVariable = 0xFFFFFF;

// `ScriptLine::block` of a statement without a body, and of a global statement.
constexpr int kNoBlock = -1;
constexpr int kGlobalBlock = 0;

// `statusCode` after a statement was refused for want of a signature.
constexpr int kStatusUnsigned = 1000;

// The type that a script names by a word, as in `new`, `is` and `retype`;
// `kTypeNone` for an unknown word.
ScriptType scriptObjectTypeFromName(std::string_view name);

// The word for a type in printed text; a pointer reads "ref" here. "error" for
// a number that is no type.
const char* scriptObjectTypeName(uint32_t type);
