#include "text/TextParser.h"

#include <cstring>

#include "strings/StringCompare.h"
#include "strings/StringFormat.h"
#include "text/TextParserBlock.h"

namespace {

// For all parsers of the process; scripts run on one thread.
uint32_t lastBlockNumber = 0;

void destroyBlockElement(void** element) {
    auto* block = static_cast<ParserBlock*>(*element);
    *element = nullptr;
    parserBlockDestroy(&block);
}

// The same lines under the same name. It counts as filled anew, so not as sorted.
ParserBlock* cloneBlock(const ParserBlock* source) {
    Owned<ParserBlock> copy(memNew<ParserBlock>());
    if (!copy) return nullptr;
    copy->name = stringClone(source->name);
    const size_t count = source->lines.size();
    if (copy->name == nullptr || !copy->lines.reserve(count) ||
        !copy->lines.append(source->lines.data(), count))
        return nullptr;
    parserBlockShareText(copy.get(), source->text);
    copy->sorted = copy->lines.empty();
    return copy.release();
}

}  // namespace

ParserText* parserTextCreate(size_t size) {
    auto* text = static_cast<ParserText*>(memAlloc(sizeof(ParserText) + size));
    if (text != nullptr) text->users = 0;
    return text;
}

void parserBlockShareText(ParserBlock* block, ParserText* text) {
    if (text != nullptr) ++text->users;
    if (block->text != nullptr && --block->text->users == 0) memFree(&block->text);
    block->text = text;
}

ParserBlock* parserBlockCreate() {
    Owned<ParserBlock> block(memNew<ParserBlock>());
    if (!block) return nullptr;
    block->name = stringFormatNew("b-%u", ++lastBlockNumber);
    return block->name == nullptr ? nullptr : block.release();
}

void parserBlockDestroy(ParserBlock** block) {
    if (block == nullptr || *block == nullptr) return;
    parserBlockShareText(*block, nullptr);
    stringDestroy(&(*block)->name);
    memDelete(block);
}

bool parserAddBlock(Parser* parser, Owned<ParserBlock>* block) {
    if (!mapInsert(parser->blocks, (*block)->name, block->get())) return false;
    block->release();
    return true;
}

Parser* parserCreate() {
    Owned<Parser> parser(memNew<Parser>());
    if (!parser) return nullptr;
    parser->blocks = mapCreate(stringCompareElements);
    return parser->blocks == nullptr ? nullptr : parser.release();
}

Parser* parserClone(const Parser* source) {
    if (source == nullptr) return nullptr;
    Owned<Parser> copy(parserCreate());
    if (!copy) return nullptr;
    for (const MapNode* at = mapFirstNode(source->blocks); at != nullptr;
         at = mapNextNode(source->blocks, at)) {
        Owned<ParserBlock> block(cloneBlock(static_cast<const ParserBlock*>(at->value)));
        if (!block || !parserAddBlock(copy.get(), &block)) return nullptr;
    }
    return copy.release();
}

void parserDestroy(Parser** parser) {
    if (parser == nullptr || *parser == nullptr) return;
    mapDestroyWith(&(*parser)->blocks, nullptr, destroyBlockElement);
    memDelete(parser);
}

ParserBlock* parserFindBlock(const Parser* parser, const String* name) {
    if (parser == nullptr || name == nullptr) return nullptr;
    return static_cast<ParserBlock*>(mapGet(parser->blocks, name));
}

ParserBlock* parserParse(Parser* parser, SplitRule* rule, std::string_view text) {
    if (parser == nullptr || rule == nullptr || splitRuleIsColumns(rule)) return nullptr;
    Owned<ParserBlock> block(parserBlockCreate());
    if (!block) return nullptr;
    if (!text.empty()) {
        ParserText* copy = parserTextCreate(text.size());
        if (copy == nullptr) return nullptr;
        parserBlockShareText(block.get(), copy);
        std::memcpy(copy->bytes(), text.data(), text.size());
        text = {copy->bytes(), text.size()};
    }
    SplitWalk walk = splitWalkBegin(rule, text);
    for (std::string_view line; splitWalkNext(&walk, &line);)
        if (!parserBlockAddLine(block.get(), line)) return nullptr;
    ParserBlock* made = block.get();
    return parserAddBlock(parser, &block) ? made : nullptr;
}
