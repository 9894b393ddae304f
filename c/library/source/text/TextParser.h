#pragma once

#include <cstdint>
#include <string_view>

#include "containers/GrowArray.h"
#include "containers/Map.h"
#include "containers/Owned.h"
#include "strings/String.h"
#include "text/TextParserRules.h"

// Takes texts apart that other programs wrote. A parser holds named blocks of
// lines; a block is cut out of a text or of another block, and stays until the
// parser ends. Null is tolerated everywhere: what needs a parser or a block that
// is not there fails, as when memory runs out, and changes nothing.

// Bytes that the lines of one or more blocks lie in; ends with the last block.
struct ParserText;

// A line is a part of the block's text and no String of its own: cutting a text
// into a million lines, and those into blocks, copies no line.
struct ParserBlock {
    String* name;                       // owned
    GrowArray<std::string_view> lines;  // in `text`
    ParserText* text;                   // shared; null while there are no lines
    bool sorted;  // some sort has happened, and no line was added or taken out since
};

struct Parser {
    Map* blocks;  // by name; the key is the block's own name
};

// A parser without blocks, or with copies of all blocks of another one. The
// caller owns it; null when memory runs out.
Parser* parserCreate();
Parser* parserClone(const Parser* source);
// Ends the parser with its blocks and clears the caller's pointer.
void parserDestroy(Parser** parser);

template <>
struct OwnedTraits<Parser> {
    static void destroy(Parser** parser) { parserDestroy(parser); }
};

// The block of this name; null when the parser has none.
ParserBlock* parserFindBlock(const Parser* parser, const String* name);

// Number of lines; 0 for null.
inline uint32_t parserBlockSize(const ParserBlock* block) {
    return block == nullptr ? 0 : static_cast<uint32_t>(block->lines.size());
}
// A line, valid until the block changes; `index` must be below the size.
inline std::string_view parserBlockLine(const ParserBlock* block, uint32_t index) {
    return block->lines[index];
}

// Names are `b-1`, `b-2` and so on for all parsers of the process; a name is used
// once. A block that is given belongs to its parser.

// Cuts a copy of the text into lines; null, too, for a rule for columns.
ParserBlock* parserParse(Parser* parser, SplitRule* rule, std::string_view text);

// The blocks that a command made, in order.
using ParserBlocks = GrowArray<ParserBlock*>;

// Cuts a block into blocks of whole lines. On failure those made so far stay.
bool parserBlocking(Parser* parser, const ParserBlock* source, BlockingRule* rule,
                    ParserBlocks* made);

// Cuts each line into columns and gives a block for each column. A line without
// bytes adds nothing; a block has as many lines as there were with that column.
bool parserVBlocking(Parser* parser, const ParserBlock* source, SplitRule* rule,
                     ParserBlocks* made);

enum ParserTrim : uint8_t {
    kTrimLeft,
    kTrimRight,
    kTrimBoth,
    kTrimAll,    // every byte up to and including 32 goes
    kTrimClean,  // a line without a byte from 33 to 127 becomes empty
};

// Cleans every line, and then takes out the empty ones if that is asked for.
bool parserTrim(ParserBlock* block, ParserTrim mode, bool removeEmpty);

// Puts the texts before and behind every line.
bool parserPad(ParserBlock* block, std::string_view prefix, std::string_view suffix);

// Takes out lines.
bool parserFilter(ParserBlock* block, const FilterRule* rule);

// Sorts the lines in the order of `stringCompare`, or downward, unless the block
// counts as sorted: then it stays, whichever order that was.
bool parserSort(ParserBlock* block, bool descending);
