#pragma once

#include <cstdint>
#include <string_view>

#include "strings/String.h"

// The wildcard matcher of the system: `*` is any run of bytes, `?` one byte, all
// others stand for themselves, and the pattern has to match the whole text. It
// never goes back further than the byte that failed, so it refuses some texts
// that a full search would find: `x*aab` does not match `xaaab`. A `?` directly
// behind a `*` has no effect. Scripts and settings depend on both. The time is
// linear in the text. False too when memory for a long pattern runs out.
bool stringMatch(const String* text, const String* pattern);
bool stringMatchText(const String* text, const char* pattern);
// A to Z match a to z.
bool stringMatchNoCase(const String* text, const String* pattern);
bool stringMatchNoCaseText(const String* text, const char* pattern);

// The same with a position, which only has to lie in the text: matching begins
// at the first byte all the same.
bool stringMatchAt(const String* text, uint32_t pos, const String* pattern);
bool stringMatchTextAt(const String* text, uint32_t pos, const char* pattern);
bool stringMatchNoCaseAt(const String* text, uint32_t pos, const String* pattern);
bool stringMatchNoCaseTextAt(const String* text, uint32_t pos, const char* pattern);

// A pattern made ready once for many texts, with the results of `stringMatch`.
struct StringPattern {
    LocalString normal;  // without wildcards that have no effect
    bool takesEmpty;     // whether it matches the empty text
};
// False when memory runs out; then the pattern must not be used.
bool stringPatternPrepare(StringPattern* pattern, std::string_view text);
bool stringPatternMatches(const StringPattern* pattern, std::string_view text);
