#pragma once

#include <cstdint>

#include "containers/List.h"
#include "containers/Owned.h"
#include "containers/Vector.h"
#include "strings/String.h"
#include "strings/StringMatch.h"

// Compares two reports record by record, by the rules of a text, and pairs each
// record with the one on the other side that is nearest to it.

// Tells whether a line that matches takes part; the first filter that matches decides.
struct DiffFilter {
    bool exclude;
    StringPattern pattern;
};

enum DiffSepKind : uint8_t { kDiffColumn = 0, kDiffText = 1 };

// Where a field ends: after `width` bytes, or before the text `value`, which is
// skipped. With `repeat` it cuts the rest of its line, too.
struct DiffSep {
    DiffSepKind kind;
    bool repeat;
    uint32_t width;
    LocalString value;
};

// Line numbers within a record and field numbers within a line count from 1; the
// entry of line 1 is the first of its vector.
struct DiffRules {
    List* filters;      // of DiffFilter, owned
    uint32_t lines;     // of a record
    Vector* seps;       // of List of DiffSep, owned; lines beyond the last use the last
    Vector* blocks;     // of Set of numbers of fields that are blanked, owned
    Vector* nums;       // of Set of numbers of fields that are rewritten as numbers, owned
    uint32_t declevel;  // the decimals of those
};

// The rules of a text of entries `key=value` with `|` between them: `exclude`,
// `include`, `lines`, `sep`, `block`, `num`, `declevel`. What is unknown is
// passed over. The caller owns the rules; null only when memory runs out or
// there is no text.
DiffRules* diffCompile(const String* ruleText);

// Ends the rules and clears the caller's pointer.
void diffRulesDestroy(DiffRules** rules);

template <>
struct OwnedTraits<DiffRules> {
    static void destroy(DiffRules** rules) { diffRulesDestroy(rules); }
};

// Compares two texts. Appends a new String, the caller's, for each difference
// and one with the summary, and gives the number of differences. -1, with
// nothing appended, when a line is to be cut by rules without a `sep`, with
// `lines` 0 or with a repeated `sep` that does not get on, and when memory runs out.
int64_t diffRun(const String* left, const String* right, const DiffRules* rules, Vector* out);
