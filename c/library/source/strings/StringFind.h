#pragma once

#include <cstdint>
#include <string_view>

#include "strings/String.h"

// Searches within `count` bytes from `start`, clamped to the text, give the
// position in the text, or -1. What is searched must lie in the range whole.
// An empty text is found at the start of a range, in the reverse forms at its
// end; nothing is found from a start at or past the end of the text.
int64_t stringFindChar(const String* s, char c, uint32_t start = 0, uint32_t count = kStringEnd);
int64_t stringFindText(const String* s, const char* text, uint32_t start = 0,
                       uint32_t count = kStringEnd);
int64_t stringFind(const String* s, const String* what, uint32_t start = 0,
                   uint32_t count = kStringEnd);

// The last occurrence in the range.
int64_t stringFindCharReverse(const String* s, char c, uint32_t start = 0,
                              uint32_t count = kStringEnd);
int64_t stringFindTextReverse(const String* s, const char* text, uint32_t start = 0,
                              uint32_t count = kStringEnd);
int64_t stringFindReverse(const String* s, const String* what, uint32_t start = 0,
                          uint32_t count = kStringEnd);

// The first byte of the range that is one of `set`, or none of it.
int64_t stringFindAnyOf(const String* s, const char* set, uint32_t start = 0,
                        uint32_t count = kStringEnd);
int64_t stringFindNotOf(const String* s, const char* set, uint32_t start = 0,
                        uint32_t count = kStringEnd);

// The same going backward over at most `count` bytes, the first of them the one
// at `start`; a start of 0, or past the end, means the last byte.
int64_t stringFindLastAnyOf(const String* s, const char* set, uint32_t start = 0,
                            uint32_t count = kStringEnd);
int64_t stringFindLastNotOf(const String* s, const char* set, uint32_t start = 0,
                            uint32_t count = kStringEnd);

// How often the byte stands in the range.
uint32_t stringCountChar(const String* s, char c, uint32_t start = 0, uint32_t count = kStringEnd);

// The part of the text that `start` and `count` name.
inline std::string_view stringRange(const String* s, uint32_t start, uint32_t count) {
    const std::string_view text = stringView(s);
    if (start >= text.size()) return std::string_view();
    return text.substr(start, count);
}
