#pragma once

#include <cstdint>
#include <string_view>
#include <type_traits>

#ifdef __x86_64__
#include <emmintrin.h>
#endif

#include "strings/String.h"

// Numbers to text and back, without the C library: the systems differ there.

// The one way from a double to a whole number, truncating toward zero. What is
// beyond the range of a signed type, and what is not a number, gives its
// smallest number. The unsigned ones are the low bits of the 64-bit number, so
// that -1 is the largest position there is.
constexpr int32_t numberToInt32(double value) {
#ifdef __x86_64__
    // The processor's own conversion has this very rule.
    if (!std::is_constant_evaluated()) return _mm_cvttsd_si32(_mm_set_sd(value));
#endif
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<int32_t>(value) : INT32_MIN;
}
constexpr int64_t numberToInt64(double value) {
#ifdef __x86_64__
    if (!std::is_constant_evaluated()) return _mm_cvttsd_si64(_mm_set_sd(value));
#endif
    return value >= -9223372036854775808.0 && value < 9223372036854775808.0
               ? static_cast<int64_t>(value)
               : INT64_MIN;
}
constexpr uint32_t numberToUInt32(double value) {
    return static_cast<uint32_t>(numberToInt64(value));
}
constexpr uint64_t numberToUInt64(double value) {
    return static_cast<uint64_t>(numberToInt64(value));
}

constexpr uint32_t kNumberTextMax = 40;
// Writes the number as scripts see it: with up to 8 decimals, no trailing zeros,
// cut to 40 bytes before those are taken off. There is no terminator. Gives
// the number of bytes. -0 and what rounds to it is "-0"; "nan", "inf", "-inf".
uint32_t numberToText(double value, char out[kNumberTextMax]);

// New strings that the caller owns, null when memory runs out.
String* stringFromInt32(int32_t value);
String* stringFromUInt32(uint32_t value);
String* stringFromInt64(int64_t value);
String* stringFromUInt64(uint64_t value);
String* stringFromHex(uint32_t value, bool upperCase);
// As numberToText.
String* stringFromDouble(double value);

bool stringAppendInt64(String* s, int64_t value);
bool stringAppendUInt64(String* s, uint64_t value);
bool stringAppendDouble(String* s, double value);
// Replaces the text.
bool stringSetDouble(String* s, double value);

// Cuts zeros behind the point of a plain decimal number, by the rule of the
// value streams. It loses the one digit of 1.500000, and the streams' format
// depends on that. Any other text stays as it is. True when something was cut.
bool stringTrimNumber(String* s);

// Text to number: blanks in front, a sign, digits. They read as far as they
// can; null, empty and other texts give 0. The 32-bit ones are the low half of
// a 64-bit number that stops at its limits.
int32_t stringToInt32(const String* s);
uint32_t stringToUInt32(const String* s);
int32_t textToInt32(std::string_view text);
uint32_t textToUInt32(std::string_view text);

// No blanks and no plus sign here, and what is too long wraps around.
int64_t stringToInt64(const String* s);
uint64_t stringToUInt64(const String* s);
int64_t textToInt64(std::string_view text);
uint64_t textToUInt64(std::string_view text);

// Blanks, a sign, digits, a point, an exponent; no hexadecimal and no words.
double stringToDouble(const String* s);
double textToDouble(std::string_view text);

// Two upper-case digits for the byte, or for each byte of the text, into `out`.
bool stringByteToHex(uint8_t byte, String* out);
bool stringToHex(const String* s, String* out);
