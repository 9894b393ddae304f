#pragma once

#include <cstdint>
#include <string_view>

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// The op codes, in the order of the table of operators. ORDER op-codes
enum OpCode : uint8_t {
    kOpOpen = 1,
    kOpClose,
    kOpNot,
    kOpIncr,
    kOpDecr,
    kOpBool,
    kOpNum,
    kOpInt,
    kOpFExists,
    kOpFSize,
    kOpEsc,
    kOpBase,
    kOpSizeof,
    kOpSqrt,
    kOpMax,
    kOpMin,
    kOpAvg,
    kOpRemove,
    kOpOf,
    kOpPow,
    kOpMult,
    kOpDiv,
    kOpMod,
    kOpPlus,
    kOpMinus,
    kOpConcat,
    kOpLt,
    kOpGt,
    kOpLe,
    kOpGe,
    kOpBrace,
    kOpBraceStar,
    kOpBraceHash,
    kOpEq,
    kOpNe,
    kOpMatch,
    kOpAnd,
    kOpOr,
    kOpThen,
    kOpElse,
    kOpAssign,
    kOpConcatAssign,
    kOpAddAssign,
    kOpSubAssign,
    kOpMultAssign,
    kOpDivAssign,
    kOpModAssign,
    kOpPowAssign,
    kOpCount,
};

// An operation: takes objects that stay the caller's, gives a new object that
// the caller owns, or null after a message. A unary one has its operand in
// `right` and no `left`. Operands that it changes are not shared.
using ScriptOperator = ScriptObject* (*)(ScriptEngine* engine, ScriptBlock* block,
                                         ScriptObject* left, ScriptObject* right);

struct OperatorRow {
    const char* token;
    ScriptOperator operation;  // null: a token with a precedence and nothing to do
    uint8_t arity;
    uint8_t inPrecedence;     // of the operator when it arrives
    uint8_t stackPrecedence;  // of the operator while it waits
};

// The row of an op code from 1 below `kOpCount`.
const OperatorRow& scriptOperatorRow(uint32_t op);

// Whether the operation changes a variable.
constexpr bool scriptOperatorWrites(uint32_t op) {
    return op == kOpIncr || op == kOpDecr || (op >= kOpAssign && op < kOpCount);
}

// The op code of a token, or 0.
uint32_t scriptOperatorFromToken(std::string_view token);
