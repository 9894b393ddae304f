#pragma once

#include <cstdint>
#include <string_view>

#include "containers/GrowArray.h"
#include "containers/Owned.h"
#include "containers/Vector.h"
#include "strings/String.h"

struct DiffRules;

// The records of a comparison, inside the module.

// The fields are not copied: they are views of the compared text, and those that
// were rewritten are views of a text of the side's own.
struct DiffLine {
    const std::string_view* fields;
    uint32_t count;
};

constexpr uint32_t kDiffNoDistance = UINT32_MAX;

struct DiffRecord {
    const DiffLine* lines;
    uint32_t lineCount;
    uint32_t lineNumber;  // of the line of the text where it begins, from 1
    DiffRecord* partner;
    uint32_t distance;  // from the partner, `kDiffNoDistance` without one
    bool isLeft;
    bool used;  // out of the search for partners
};

// What one text was cut into; all of it ends together.
struct DiffSide {
    GrowArray<std::string_view> fields;
    GrowArray<DiffLine> lines;
    GrowArray<DiffRecord> records;
    LocalString rewritten;
    Owned<Vector> sorted;  // the records in their order
};

// Cuts a text, which must outlive the side, and sorts its records. False when
// the rules cannot cut it and when memory runs out.
bool diffReadSide(const String* text, const DiffRules* rules, bool isLeft, DiffSide* side);

// The order of records as elements of a vector: line by line, field by field.
signed char diffCompareRecords(const void* left, const void* right);

// The number of fields that differ or that only one of the two has. A distance
// of `limit` or more comes out as any number that is no smaller.
uint32_t diffDistance(const DiffRecord& a, const DiffRecord& b, uint32_t limit);

// Pairs each record of the left side with its nearest one on the right, as far
// as the search goes; those that are equal are `used` afterwards.
void diffPair(const Vector* left, const Vector* right);

// Appends a String for each difference between paired sides, and the summary.
// False when memory runs out.
bool diffReport(const Vector* left, const Vector* right, const DiffRules* rules, Vector* out);
