#include "text/TextParserRules.h"

#include <algorithm>
#include <span>

#include "strings/StringFind.h"
#include "strings/StringNumbers.h"

namespace {

constexpr size_t kNowhere = std::string_view::npos;
// As the end of a column: the end of the line.
constexpr uint32_t kLineEnd = UINT32_MAX;

struct RuleWord {
    const char* word;
    uint8_t kind;
    bool mayBeEmpty;
};

constexpr RuleWord kSplitWords[] = {
    {"single+", kSplitSingleKeep, false}, {"single-", kSplitSingleDrop, false},
    {"string+", kSplitStringKeep, false}, {"string-", kSplitStringDrop, false},
    {"multi+", kSplitMultiKeep, false},   {"multi-", kSplitMultiDrop, false},
    {"size", kSplitSize, false},          {"colsize", kSplitColumnSizes, false},
    {"pos", kSplitColumnEnds, false},
};

constexpr RuleWord kBlockingWords[] = {
    {"single+", kBlockingMatching, false},    {"single-", kBlockingOthers, true},
    {"multi+", kBlockingMatchingRuns, false}, {"multi-", kBlockingOtherRuns, false},
    {"sep]", kBlockingEndsWith, false},       {"sep[", kBlockingBeginsWith, false},
    {"sep-", kBlockingBetween, true},         {"count", kBlockingCount, false},
};

enum FilterKind : uint8_t { kLineTaken, kLineKept, kSegmentTaken, kSegmentKept };

constexpr RuleWord kFilterWords[] = {
    {"line+", kLineTaken, true},
    {"line-", kLineKept, true},
    {"segment+", kSegmentTaken, true},
    {"segment-", kSegmentKept, true},
};

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isWord(std::string_view text, std::string_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char a, char b) { return lowered(a) == b; });
}

// Cuts the text behind its first `separator`; what stands in front of it goes to `head`.
bool cutHead(std::string_view* text, char separator, std::string_view* head) {
    const size_t cut = text->find(separator);
    if (cut == kNowhere) return false;
    *head = text->substr(0, cut);
    text->remove_prefix(cut + 1);
    return true;
}

// The row of the rule's word, with the argument left in `text`; null for a rule
// that has no such word, or no argument where it needs one.
const RuleWord* readWord(std::span<const RuleWord> words, std::string_view* text) {
    std::string_view head;
    if (!cutHead(text, ':', &head)) return nullptr;
    for (const RuleWord& row : words)
        if (isWord(head, row.word)) return text->empty() && !row.mayBeEmpty ? nullptr : &row;
    return nullptr;
}

// Calls `add(item)` for each part between bytes `|`, until it gives false. What
// follows the last of them counts only if it is not empty.
template <typename Add>
bool eachItem(std::string_view text, Add add) {
    std::string_view item;
    while (cutHead(&text, '|', &item))
        if (!add(item)) return false;
    return text.empty() || add(text);
}

// An empty alternative would be found everywhere and cut nothing off: it is none.
bool readAlternatives(SplitRule* rule, std::string_view text) {
    return eachItem(text,
                    [rule](std::string_view item) {
                        return item.empty() || rule->alternatives.push({item, 0});
                    }) &&
           !rule->alternatives.empty();
}

bool readColumns(SplitRule* rule, std::string_view text) {
    return eachItem(
        text, [rule](std::string_view item) { return rule->columns.push(textToUInt32(item)); });
}

// Takes the separator that ends the piece at `walk->pos`. An earlier alternative
// wins over one at the same place. Where separators stay, a later alternative
// replaces an earlier one that it overlaps.
void endAtAlternative(const SplitWalk* walk, size_t* end, size_t* next) {
    const bool keeps = walk->rule->kind == kSplitMultiKeep;
    for (SplitAlternative& alternative : walk->rule->alternatives) {
        if (alternative.hit < walk->pos)
            alternative.hit = walk->text.find(alternative.text, walk->pos);
        if (alternative.hit >= *end) continue;
        *next = alternative.hit + alternative.text.size();
        *end = keeps ? *next : alternative.hit;
    }
}

// Where the separator at `walk->pos` or behind it begins.
size_t findSeparator(const SplitWalk* walk, size_t* length) {
    const SplitRule* rule = walk->rule;
    *length = rule->separator.size();
    return *length == 1 ? walk->text.find(rule->separator[0], walk->pos)
                        : walk->text.find(rule->separator, walk->pos);
}

void findEnd(const SplitWalk* walk, size_t* end, size_t* next) {
    const size_t size = walk->text.size();
    *end = size;
    *next = size;
    const SplitRule* rule = walk->rule;
    if (rule->kind == kSplitMultiKeep || rule->kind == kSplitMultiDrop)
        return endAtAlternative(walk, end, next);
    if (rule->kind == kSplitSize) {
        *end = *next = std::min(size, walk->pos + rule->size);
        return;
    }
    size_t length = 0;
    const size_t hit = findSeparator(walk, &length);
    if (hit == kNowhere) return;
    *next = hit + length;
    const bool keeps = rule->kind == kSplitSingleKeep || rule->kind == kSplitStringKeep;
    *end = keeps ? *next : hit;
}

}  // namespace

bool splitRuleRead(SplitRule* rule, std::string_view text) {
    const RuleWord* word = rule == nullptr ? nullptr : readWord(kSplitWords, &text);
    if (word == nullptr) return false;
    rule->kind = static_cast<SplitKind>(word->kind);
    rule->alternatives.clear();
    rule->columns.clear();
    switch (rule->kind) {
        case kSplitSingleKeep:
        case kSplitSingleDrop:
            rule->separator = text.substr(0, 1);
            return true;
        case kSplitStringKeep:
        case kSplitStringDrop:
            rule->separator = text;
            return true;
        case kSplitMultiKeep:
        case kSplitMultiDrop:
            return readAlternatives(rule, text);
        case kSplitSize:
            rule->size = textToUInt32(text);
            return rule->size != 0;
        case kSplitColumnSizes:
            return readColumns(rule, text);
        default:
            return readColumns(rule, text) && rule->columns.push(kLineEnd);
    }
}

SplitWalk splitWalkBegin(SplitRule* rule, std::string_view text) {
    for (SplitAlternative& alternative : rule->alternatives)
        alternative.hit = text.find(alternative.text);
    return {rule, text, 0, 0};
}

bool splitWalkNext(SplitWalk* walk, std::string_view* piece) {
    if (walk->pos >= walk->text.size()) return false;
    size_t end = 0;
    size_t next = 0;
    findEnd(walk, &end, &next);
    *piece = walk->text.substr(walk->pos, end - walk->pos);
    walk->pos = next;
    return true;
}

bool splitWalkNextColumn(SplitWalk* walk, std::string_view* piece) {
    const SplitRule* rule = walk->rule;
    if (!splitRuleIsColumns(rule)) return splitWalkNext(walk, piece);
    const size_t size = walk->text.size();
    if (walk->index == rule->columns.size() || size == 0) return false;
    size_t end = rule->columns[walk->index];
    if (rule->kind == kSplitColumnSizes) {
        if (walk->pos == size) return false;
        end += walk->pos;
    }
    ++walk->index;
    end = std::clamp(end, walk->pos, size);
    *piece = walk->text.substr(walk->pos, end - walk->pos);
    walk->pos = end;
    return true;
}

std::string_view splitWalkRest(const SplitWalk* walk) {
    return walk->text.substr(std::min(walk->pos, walk->text.size()));
}

bool blockingRuleRead(BlockingRule* rule, std::string_view text) {
    const RuleWord* word = rule == nullptr ? nullptr : readWord(kBlockingWords, &text);
    if (word == nullptr) return false;
    rule->kind = static_cast<BlockingKind>(word->kind);
    rule->count = 0;
    if (rule->kind != kBlockingCount) return stringPatternPrepare(&rule->pattern, text);
    rule->count = textToUInt32(text);
    return rule->count != 0;
}

bool filterRuleRead(FilterRule* rule, std::string_view text) {
    const RuleWord* word = rule == nullptr ? nullptr : readWord(kFilterWords, &text);
    if (word == nullptr) return false;
    rule->takesMatching = word->kind == kLineTaken || word->kind == kSegmentTaken;
    rule->isSegment = word->kind == kSegmentTaken || word->kind == kSegmentKept;
    if (rule->isSegment) {
        std::string_view start;
        std::string_view count;
        if (!cutHead(&text, ':', &start) || !cutHead(&text, ':', &count)) return false;
        rule->start = textToUInt32(start);
        rule->count = textToUInt32(count);
    }
    return stringPatternPrepare(&rule->pattern, text);
}

bool filterRuleTakes(const FilterRule* rule, std::string_view line) {
    if (rule->isSegment) {
        if (uint64_t{rule->start} + rule->count > line.size()) return !rule->takesMatching;
        line = line.substr(rule->start, rule->count);
    }
    return stringPatternMatches(&rule->pattern, line) == rule->takesMatching;
}
