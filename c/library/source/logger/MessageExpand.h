#pragma once

#include <cstdint>

#include "logger/Logger.h"
#include "strings/String.h"

// Expands a format text: `#::N` becomes the text that the catalogue holds for N,
// itself expanded, and a `%` letter the next argument:
//   i u   32-bit signed, unsigned      I U   64-bit signed, unsigned
//   t     unsigned                     f     a double, trailing zeros trimmed
//   c     a character                  s S   a text in either form
// An argument of another type than its letter's comes out in its own form. Other
// letters vanish with their `%`; a `%` with no argument left stays. The caller
// owns the result; null when memory runs out.
String* messageExpand(const char* format, LogForm form, const LogArg* args, uint32_t count);

// The same, appended to `out`. Where memory runs out a piece is left out.
void messageExpandInto(String* out, const char* format, LogForm form, const LogArg* args,
                       uint32_t count);
