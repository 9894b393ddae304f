#pragma once

#include <cstdint>

#include "strings/String.h"

// Changes in place, and parts. A `start` and `count` name a range of bytes that
// is clamped to the text.

// Puts the text in front of the byte at `pos`; a position past the end appends.
bool stringInsert(String* s, uint32_t pos, const String* other);
bool stringInsertText(String* s, uint32_t pos, const char* text);
bool stringInsertChar(String* s, uint32_t pos, char c);
bool stringInsertView(String* s, uint32_t pos, std::string_view bytes);

// Removes `count` bytes. True only when bytes behind the erased part moved: a
// tail is erased too, and the result says false, which callers depend on.
// False as well, with nothing done, for a position at or past the end.
bool stringErase(String* s, uint32_t pos, uint32_t count = kStringEnd);

// Removes every `c` of the range and gives how many there were.
uint32_t stringRemoveChar(String* s, char c, uint32_t start = 0, uint32_t count = kStringEnd);

// Remove blanks, that is bytes up to and including 32, and give how many.
uint32_t stringTrimLeft(String* s);
uint32_t stringTrimRight(String* s);
uint32_t stringTrim(String* s);

// Takes off a pair of equal quotes, ' or ", around the text. True when it did.
bool stringUnquote(String* s);

// A to Z only, up to the first zero byte.
bool stringUpper(String* s);
bool stringLower(String* s);

bool stringReverse(String* s, uint32_t start = 0, uint32_t count = kStringEnd);

// Replaces every byte `from` of the range and gives how many there were.
uint32_t stringReplaceChar(String* s, char from, char to, uint32_t start = 0,
                           uint32_t count = kStringEnd);

// Replace every occurrence within the range, going on behind what was put in.
// They give the number of replacements, -1 for bad arguments or when memory
// runs out. An empty `from` is found nowhere.
int64_t stringReplaceText(String* s, const char* from, const char* to, uint32_t start = 0,
                          uint32_t count = kStringEnd);
int64_t stringReplace(String* s, const String* from, const String* to, uint32_t start = 0,
                      uint32_t count = kStringEnd);

// Fill up to `width` bytes with `c` behind, in front, or on both sides, where
// the odd byte goes behind. A longer text stays as it is.
bool stringPadRight(String* s, uint32_t width, char c);
bool stringPadLeft(String* s, uint32_t width, char c);
bool stringPadCentre(String* s, uint32_t width, char c);

// Writes every byte below 32 or from 127 to 160 as "#", its decimal value and
// ";", and gives how many there were.
uint32_t stringMakePrintable(String* s, uint32_t start = 0, uint32_t count = kStringEnd);

// Gives a part as a new string of the caller's: empty for a count of 0, else
// null for a start at or past the end.
String* stringSub(const String* s, uint32_t start, uint32_t count = kStringEnd);
// The same into `out`; an empty source empties it and succeeds.
bool stringCopySub(const String* s, uint32_t start, uint32_t count, String* out);

// Cut the text at its first separator and give the part before it, which the
// caller owns; the text keeps what stands behind. Without a separator the
// whole text is given and the text becomes empty. An empty separator is none.
String* stringCutAtChar(String* s, char separator);
String* stringCutAtText(String* s, const char* separator);
