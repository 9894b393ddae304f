#include "text/TextParserBlock.h"

namespace {

// The blocks that come out of another one while its lines are walked through.
struct Cutting {
    Parser* parser;
    const ParserBlock* source;
    ParserBlocks* made;
    Owned<ParserBlock> open;  // takes the lines; none before the first
};

bool openBlock(Cutting* cutting) {
    cutting->open.reset(parserBlockCreate());
    if (cutting->open) parserBlockShareText(cutting->open.get(), cutting->source->text);
    return static_cast<bool>(cutting->open);
}

bool registerBlock(Cutting* cutting, Owned<ParserBlock>* block) {
    if (!cutting->made->push(block->get())) return false;
    if (parserAddBlock(cutting->parser, block)) return true;
    cutting->made->pop();
    return false;
}

// An open block without lines stays open.
bool closeBlock(Cutting* cutting) {
    if (cutting->open->lines.empty()) return true;
    return registerBlock(cutting, &cutting->open) && openBlock(cutting);
}

enum LineAction : uint8_t { kSkipLine, kAddLine, kCloseBlock, kAddAndClose, kCloseAndAdd };

struct BlockingActions {
    LineAction matching;
    LineAction other;
};

// ORDER blocking-kinds
constexpr BlockingActions kActions[] = {
    {kAddLine, kSkipLine},     // kBlockingMatching
    {kSkipLine, kAddLine},     // kBlockingOthers
    {kAddLine, kCloseBlock},   // kBlockingMatchingRuns
    {kCloseBlock, kAddLine},   // kBlockingOtherRuns
    {kAddAndClose, kAddLine},  // kBlockingEndsWith
    {kCloseAndAdd, kAddLine},  // kBlockingBeginsWith
    {kCloseBlock, kAddLine},   // kBlockingBetween
    {kAddAndClose, kAddLine},  // kBlockingCount, where the last line of each block matches
};

bool takeLine(Cutting* cutting, std::string_view line, LineAction action) {
    if (action == kSkipLine) return true;
    if (action == kCloseAndAdd && !closeBlock(cutting)) return false;
    if (action != kCloseBlock && !parserBlockAddLine(cutting->open.get(), line)) return false;
    return action == kAddLine || action == kCloseAndAdd || closeBlock(cutting);
}

bool isMatch(const BlockingRule* rule, std::string_view line, size_t index) {
    if (rule->kind == kBlockingCount) return (index + 1) % rule->count == 0;
    return stringPatternMatches(&rule->pattern, line);
}

bool cutColumns(Cutting* cutting, std::string_view line, SplitRule* rule, ParserBlocks* columns) {
    SplitWalk walk = splitWalkBegin(rule, line);
    std::string_view piece;
    for (size_t column = 0; splitWalkNextColumn(&walk, &piece); ++column) {
        if (column == columns->size()) {
            if (!openBlock(cutting) || !columns->push(cutting->open.get())) return false;
            cutting->open.release();
        }
        if (!parserBlockAddLine((*columns)[column], piece)) return false;
    }
    return true;
}

}  // namespace

bool parserBlocking(Parser* parser, const ParserBlock* source, BlockingRule* rule,
                    ParserBlocks* made) {
    if (parser == nullptr || source == nullptr || rule == nullptr || made == nullptr) return false;
    if (source->lines.empty()) return true;
    Cutting cutting{parser, source, made, {}};
    if (!openBlock(&cutting)) return false;
    const BlockingActions& actions = kActions[rule->kind];
    for (size_t at = 0; at < source->lines.size(); ++at) {
        const std::string_view line = source->lines[at];
        const LineAction action = isMatch(rule, line, at) ? actions.matching : actions.other;
        if (!takeLine(&cutting, line, action)) return false;
    }
    return cutting.open->lines.empty() || registerBlock(&cutting, &cutting.open);
}

bool parserVBlocking(Parser* parser, const ParserBlock* source, SplitRule* rule,
                     ParserBlocks* made) {
    if (parser == nullptr || source == nullptr || rule == nullptr || made == nullptr) return false;
    Cutting cutting{parser, source, made, {}};
    ParserBlocks columns;
    bool whole = true;
    for (size_t at = 0; whole && at < source->lines.size(); ++at)
        whole = cutColumns(&cutting, source->lines[at], rule, &columns);
    for (ParserBlock* column : columns) {
        Owned<ParserBlock> block(column);
        whole = whole && registerBlock(&cutting, &block);
    }
    return whole;
}
