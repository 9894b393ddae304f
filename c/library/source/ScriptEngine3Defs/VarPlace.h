#pragma once

#include <cstdint>

#include "ScriptEngine3Defs/ScriptTypes.h"

// One block of the chain in which a name can stand.
struct VarCandidate {
    uint32_t depth;  // 0: the block that looks, 1: the next one out that can hold names, ...
    uint32_t slot;
    bool isLiteral;
};

enum VarPlaceKind : uint8_t {
    kPlaceUnknown,  // not worked out yet
    kPlaceLiteral,  // a literal, or an expression, of the block itself
    kPlaceLocal,    // one block only can hold the name, and it is near
    kPlaceMany,     // several can, or one far out: the nearest that does counts
    kPlaceNowhere,  // no block has a slot for the name, or too many: each is asked
};

// A variable id together with what was found out about where it stands, seen
// from the statements of one template. Worked out at the first use: which
// blocks can hold a name is fixed when parsing has ended.
struct VarPlace {
    uint32_t id = kNoVariable;
    VarPlaceKind kind = kPlaceUnknown;
    uint8_t depth = 0;            // of `kPlaceLocal`
    uint16_t candidateCount = 0;  // of `kPlaceMany`
    union {
        uint32_t slot = 0;        // of `kPlaceLiteral` and `kPlaceLocal`
        uint32_t firstCandidate;  // of `kPlaceMany`, in the template's list
    };
};
