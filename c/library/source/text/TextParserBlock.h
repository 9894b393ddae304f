#pragma once

#include "text/TextParser.h"

// What the parts of the text parser share; not for others.

struct ParserText {
    size_t users;  // blocks

    char* bytes() { return reinterpret_cast<char*>(this + 1); }
};

// A text of no user yet, for `size` bytes; null when memory runs out.
ParserText* parserTextCreate(size_t size);
// Makes the block a user of the text, or of none, in place of what it used so far.
void parserBlockShareText(ParserBlock* block, ParserText* text);

// A block without lines and with the next name, owned by the caller; null when
// memory runs out.
ParserBlock* parserBlockCreate();
void parserBlockDestroy(ParserBlock** block);

template <>
struct OwnedTraits<ParserBlock> {
    static void destroy(ParserBlock** block) { parserBlockDestroy(block); }
};

// Gives the block to the parser; on failure it stays the caller's.
bool parserAddBlock(Parser* parser, Owned<ParserBlock>* block);

// Adds a line that lies in the block's text.
inline bool parserBlockAddLine(ParserBlock* block, std::string_view line) {
    block->sorted = false;
    return block->lines.push(line);
}
