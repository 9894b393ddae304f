#include <cstring>

#include "text/TextParserBlock.h"

namespace {

// Blanks are what a Windows or Unix text has between its words, and whatever
// else stands at or below the blank.
bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

// Counts bytes from 128 up as blanks, too: they are below zero.
bool hasMark(std::string_view line) {
    for (const char c : line)
        if (static_cast<signed char>(c) > ' ') return true;
    return false;
}

std::string_view trimmedLeft(std::string_view line) {
    while (!line.empty() && isBlank(line.front())) line.remove_prefix(1);
    return line;
}

std::string_view trimmedRight(std::string_view line) {
    while (!line.empty() && isBlank(line.back())) line.remove_suffix(1);
    return line;
}

std::string_view trimmed(std::string_view line, ParserTrim mode) {
    switch (mode) {
        case kTrimRight:
            return trimmedRight(line);
        case kTrimBoth:
            return trimmedLeft(trimmedRight(line));
        case kTrimClean:
            return hasMark(line) ? line : line.substr(0, 0);
        default:
            return trimmedLeft(line);
    }
}

// Gives the block a text of its own, of `size` bytes, with what `write(line, out)`
// makes of each line; it gives the place behind what it wrote.
template <typename Write>
bool rewriteLines(ParserBlock* block, uint64_t size, Write write) {
    if (size > SIZE_MAX - sizeof(ParserText)) return false;
    ParserText* text = parserTextCreate(static_cast<size_t>(size));
    if (text == nullptr) return false;
    char* out = text->bytes();
    for (std::string_view& line : block->lines) {
        char* end = write(line, out);
        line = {out, static_cast<size_t>(end - out)};
        out = end;
    }
    parserBlockShareText(block, text);
    return true;
}

char* writeView(std::string_view bytes, char* out) {
    if (!bytes.empty()) std::memcpy(out, bytes.data(), bytes.size());
    return out + bytes.size();
}

char* writeWithoutBlanks(std::string_view line, char* out) {
    for (const char c : line)
        if (!isBlank(c)) *out++ = c;
    return out;
}

uint64_t totalLength(const ParserBlock* block) {
    uint64_t total = 0;
    for (const std::string_view line : block->lines) total += line.size();
    return total;
}

size_t longestLine(const ParserBlock* block) {
    size_t longest = 0;
    for (const std::string_view line : block->lines)
        if (line.size() > longest) longest = line.size();
    return longest;
}

// Takes out the lines for which `taken` is true and gives how many.
template <typename Taken>
size_t removeLines(ParserBlock* block, Taken taken) {
    const size_t before = block->lines.size();
    size_t kept = 0;
    for (const std::string_view line : block->lines)
        if (!taken(line)) block->lines[kept++] = line;
    block->lines.truncate(kept);
    return before - kept;
}

}  // namespace

bool parserTrim(ParserBlock* block, ParserTrim mode, bool removeEmpty) {
    if (block == nullptr) return false;
    if (mode == kTrimAll) {
        if (!rewriteLines(block, totalLength(block), writeWithoutBlanks)) return false;
    } else {
        for (std::string_view& line : block->lines) line = trimmed(line, mode);
    }
    if (removeEmpty) removeLines(block, [](std::string_view line) { return line.empty(); });
    return true;
}

bool parserPad(ParserBlock* block, std::string_view prefix, std::string_view suffix) {
    if (block == nullptr) return false;
    const uint64_t added = uint64_t{prefix.size()} + suffix.size();
    if (added == 0 || block->lines.empty()) return true;
    if (longestLine(block) + added > kStringMaxLength) return false;
    return rewriteLines(block, totalLength(block) + added * block->lines.size(),
                        [&](std::string_view line, char* out) {
                            return writeView(suffix, writeView(line, writeView(prefix, out)));
                        });
}

bool parserFilter(ParserBlock* block, const FilterRule* rule) {
    if (block == nullptr || rule == nullptr) return false;
    removeLines(block, [rule](std::string_view line) { return filterRuleTakes(rule, line); });
    // What stays counts as filled anew.
    block->sorted = block->lines.empty();
    return true;
}
