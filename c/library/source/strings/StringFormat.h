#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "strings/FormatArg.h"
#include "strings/String.h"

// The format language of the system: after a percent sign come an optional fill
// ('c'), width, precision (.n), and a letter:
//
//   d i   signed 32-bit            I     signed 64-bit
//   u     unsigned 32-bit          U     unsigned 64-bit
//   x X   hexadecimal, 32-bit      c     one byte
//   s S   text or String           f e E g G   double, at most 40 characters
//
// Any other byte stands for itself. A shorter text is filled in front up to
// the width; a null text gives "<NULL>", which is not. A precision of 0 is the
// standard one of the letter; G is g. An argument of another type than its
// letter's is converted: a text under a letter for numbers prints as it is, a
// number under one for texts in its plainest form. A conversion without an
// argument prints nothing.
//
// The functions fail when memory runs out, and then the text is as before, for
// stringFormat empty. An argument may be the string itself, and has the text
// from before the call.
bool stringFormatArgs(String* s, const char* format, std::span<const FormatArg> args);
String* stringFormatNewArgs(const char* format, std::span<const FormatArg> args);
bool stringAppendFormatArgs(String* s, const char* format, std::span<const FormatArg> args);
bool stringInsertFormatArgs(String* s, uint32_t pos, const char* format,
                            std::span<const FormatArg> args);

// What stands between the percent sign and the letter.
struct FormatField {
    char fill = ' ';
    uint32_t width = 0;
    uint32_t precision = 0;
};

// Appends one argument as the letter says; a letter that is none appends itself.
bool stringAppendArg(String* s, char letter, const FormatField& field, const FormatArg& arg);

constexpr uint32_t kFormatDoubleMax = 40;
// Writes the double as `letter` (f, e, E or g, G) says, at most 40 bytes and no
// terminator, the same on all systems, and gives their number.
uint32_t formatDouble(double value, char letter, uint32_t precision, char out[kFormatDoubleMax]);

// The array behind the arguments of one call; one longer, since none are allowed.
template <typename... Args>
struct FormatArgList {
    explicit FormatArgList(const Args&... args) : items{FormatArg(args)..., FormatArg()} {}
    operator std::span<const FormatArg>() const { return {items, sizeof...(Args)}; }
    FormatArg items[sizeof...(Args) + 1];
};

// Replaces the text.
template <typename... Args>
bool stringFormat(String* s, const char* format, const Args&... args) {
    return stringFormatArgs(s, format, FormatArgList<Args...>(args...));
}

// Gives a new string, which the caller owns, or null.
template <typename... Args>
String* stringFormatNew(const char* format, const Args&... args) {
    return stringFormatNewArgs(format, FormatArgList<Args...>(args...));
}

template <typename... Args>
bool stringAppendFormat(String* s, const char* format, const Args&... args) {
    return stringAppendFormatArgs(s, format, FormatArgList<Args...>(args...));
}

template <typename... Args>
bool stringInsertFormat(String* s, uint32_t pos, const char* format, const Args&... args) {
    return stringInsertFormatArgs(s, pos, format, FormatArgList<Args...>(args...));
}
