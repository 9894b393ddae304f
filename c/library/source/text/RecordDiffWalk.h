#pragma once

#include <cstdint>

#include "strings/String.h"

struct Vector;

// The simple comparison of two sorted rows of items: a walk through both in step
// that looks one item ahead.

// The two rows, and what the walk has to know of their items.
struct DiffRows {
    const void* left;
    const void* right;
    uint32_t leftCount;
    uint32_t rightCount;
    bool (*same)(const void* left, uint32_t i, const void* right, uint32_t j);
    // Appends an item as text; false when memory runs out.
    bool (*show)(const void* row, uint32_t at, String* out);
};

// Appends a new String, the caller's, for each difference: an item that one side
// misses, or two that stand against each other. False when memory runs out; what
// was appended until then stays.
bool diffWalk(const DiffRows& rows, Vector* out);
