#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "strings/StringCompare.h"
#include "text/TextParser.h"

// The input's first line is a rule, tried in each place where rules are taken;
// what follows is the text, cut at line feeds first.

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

std::string joined(const ParserBlock* block) {
    std::string all;
    for (const std::string_view line : block->lines) all.append(line);
    return all;
}

bool isKeeping(SplitKind kind) {
    return kind == kSplitSingleKeep || kind == kSplitStringKeep || kind == kSplitMultiKeep ||
           kind == kSplitSize;
}

void cutText(Parser* parser, std::string_view ruleText, std::string_view text) {
    SplitRule rule;
    if (!splitRuleRead(&rule, ruleText)) return;
    const ParserBlock* block = parserParse(parser, &rule, text);
    require((block == nullptr) == splitRuleIsColumns(&rule));
    if (block == nullptr) return;
    if (isKeeping(rule.kind)) require(joined(block) == text);
    for (const std::string_view line : block->lines)
        require(rule.kind != kSplitSize || line.size() <= rule.size);
}

void cutColumns(Parser* parser, const ParserBlock* lines, std::string_view ruleText) {
    SplitRule rule;
    if (!splitRuleRead(&rule, ruleText)) return;
    ParserBlocks made;
    require(parserVBlocking(parser, lines, &rule, &made));
    for (size_t at = 1; at < made.size() && rule.kind != kSplitColumnSizes; ++at)
        require(parserBlockSize(made[at]) <= parserBlockSize(made[at - 1]));
}

void cutBlocks(Parser* parser, const ParserBlock* lines, std::string_view ruleText) {
    BlockingRule rule;
    if (!blockingRuleRead(&rule, ruleText)) return;
    ParserBlocks made;
    require(parserBlocking(parser, lines, &rule, &made));
    uint64_t total = 0;
    for (const ParserBlock* block : made) total += parserBlockSize(block);
    require(total <= parserBlockSize(lines));
    const bool keepsAll = rule.kind == kBlockingEndsWith || rule.kind == kBlockingBeginsWith ||
                          rule.kind == kBlockingCount;
    require(!keepsAll || total == parserBlockSize(lines));
}

// The lines that a filter takes out and those that it leaves are all the lines.
void filter(const Parser* parser, const ParserBlock* lines, std::string_view ruleText) {
    FilterRule rule;
    if (!filterRuleRead(&rule, ruleText)) return;
    Owned<Parser> copy(parserClone(parser));
    ParserBlock* kept = parserFindBlock(copy.get(), lines->name);
    require(parserFilter(kept, &rule));
    size_t taken = 0;
    for (const std::string_view line : lines->lines) taken += filterRuleTakes(&rule, line);
    require(kept->lines.size() + taken == lines->lines.size());
}

void edit(const Parser* parser, const ParserBlock* lines, std::string_view ruleText) {
    Owned<Parser> copy(parserClone(parser));
    ParserBlock* block = parserFindBlock(copy.get(), lines->name);
    require(parserPad(block, ruleText, "|") && parserTrim(block, kTrimAll, false));
    require(parserSort(block, false) && parserBlockSize(block) == parserBlockSize(lines));
    require(std::is_sorted(block->lines.begin(), block->lines.end(),
                           [](auto a, auto b) { return stringCompareViews(a, b) < 0; }));
    for (const ParserTrim mode : {kTrimClean, kTrimRight, kTrimLeft}) parserTrim(block, mode, true);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const size_t cut = std::min(input.find('\n'), input.size());
    const std::string_view rule = input.substr(0, cut);
    const std::string_view text = input.substr(std::min(cut + 1, input.size()));
    Owned<Parser> parser(parserCreate());
    SplitRule byLine;
    require(splitRuleRead(&byLine, "single-:\n"));
    const ParserBlock* lines = parserParse(parser.get(), &byLine, text);
    cutText(parser.get(), rule, text);
    cutColumns(parser.get(), lines, rule);
    cutBlocks(parser.get(), lines, rule);
    filter(parser.get(), lines, rule);
    edit(parser.get(), lines, rule);
    return 0;
}
