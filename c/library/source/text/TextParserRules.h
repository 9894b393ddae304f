#pragma once

#include <cstdint>
#include <string_view>

#include "containers/GrowArray.h"
#include "strings/StringMatch.h"

// The rules by which a parser takes texts apart: a word, a colon, and what the
// word needs. Upper and lower case of the word are the same; the argument is
// everything behind the first colon, as it stands. A rule that is read keeps
// views of its text, which has to live as long as the rule is used.

// How a text is cut into pieces. `Keep` leaves the separator with the piece,
// `Drop` takes it out.
enum SplitKind : uint8_t {
    kSplitSingleKeep,
    kSplitSingleDrop,
    kSplitStringKeep,
    kSplitStringDrop,
    kSplitMultiKeep,
    kSplitMultiDrop,
    kSplitSize,
    kSplitColumnSizes,  // this and the next cut lines into columns only
    kSplitColumnEnds,
};

struct SplitAlternative {
    std::string_view text;
    size_t hit;  // its next place in the text that is being cut; see SplitWalk
};

struct SplitRule {
    SplitKind kind = kSplitSize;
    std::string_view separator;
    uint32_t size = 0;
    GrowArray<SplitAlternative> alternatives;  // never empty ones
    GrowArray<uint32_t> columns;               // sizes, or ends with the line's end as the last
};

// Reads a split rule: `single+` `single-` with a byte, `string+` `string-` with a
// text, `multi+` `multi-` with texts between `|`, `size` with a number, `colsize`
// and `pos` with numbers between `|`. False for any other word, for an argument
// that leaves nothing to cut at, for a size of 0, and when memory runs out.
bool splitRuleRead(SplitRule* rule, std::string_view text);

// Whether the rule is for the columns of `parserVBlocking` alone.
inline bool splitRuleIsColumns(const SplitRule* rule) {
    return rule->kind >= kSplitColumnSizes;
}

// A walk through the pieces of one text. A rule serves one walk at a time: it
// keeps where each alternative comes next, so that none is searched for twice.
struct SplitWalk {
    SplitRule* rule;
    std::string_view text;
    size_t pos;      // where the next piece begins
    uint32_t index;  // of the next column
};

// Begins a walk; the rule must not be one for columns unless the walk is taken
// by `splitWalkNextColumn`.
SplitWalk splitWalkBegin(SplitRule* rule, std::string_view text);
// Gives the next piece; false at the end of the text. A separator at the very
// end makes no further piece.
bool splitWalkNext(SplitWalk* walk, std::string_view* piece);
// The same for any rule. Columns by size end with the line, the last of those
// given by their ends takes what is left; one that ends before it begins is empty.
bool splitWalkNextColumn(SplitWalk* walk, std::string_view* piece);
// What follows the pieces taken so far and the separator behind them.
std::string_view splitWalkRest(const SplitWalk* walk);

// How lines become blocks. ORDER blocking-kinds
enum BlockingKind : uint8_t {
    kBlockingMatching,      // all matching lines, one block
    kBlockingOthers,        // all others, one block
    kBlockingMatchingRuns,  // each run of matching lines
    kBlockingOtherRuns,     // each run of others
    kBlockingEndsWith,      // a matching line is the last of its block
    kBlockingBeginsWith,    // a matching line is the first of its block
    kBlockingBetween,       // a matching line stands between blocks and is dropped
    kBlockingCount,         // that many lines
};

struct BlockingRule {
    BlockingKind kind;
    uint32_t count;
    StringPattern pattern;
};

// Reads a blocking rule: `single+` `single-` `multi+` `multi-` `sep]` `sep[` `sep-`
// with a pattern, which only `single-` and `sep-` may leave empty, or `count` with a
// number. False for any other word, for a count of 0, and when memory runs out.
bool blockingRuleRead(BlockingRule* rule, std::string_view text);

// Which lines a filter takes out.
struct FilterRule {
    bool takesMatching;  // else those that do not match
    bool isSegment;      // the pattern is for a part of the line
    uint32_t start;
    uint32_t count;
    StringPattern pattern;
};

// Reads a filter rule: `line+` `line-` with a pattern, or `segment+` `segment-` with
// start, colon, count, colon, pattern. The pattern may be empty. False for any other
// word, for a segment without its colons, and when memory runs out.
bool filterRuleRead(FilterRule* rule, std::string_view text);

// Whether the filter takes the line out. A line too short for the segment goes
// with those that do not match.
bool filterRuleTakes(const FilterRule* rule, std::string_view line);
