#pragma once

#include <cstdint>

#include "strings/String.h"

// Wraps the text to lines of at most `width` bytes by putting newlines in the
// place of blanks and tabs; `breakWords` also cuts words that are longer than
// a line. Gives the number of lines, in which cuts within or behind words that
// are too long do not count, or 0, with nothing changed, when the width exceeds
// the length or memory runs out.
uint32_t stringMakeLines(String* s, uint32_t width, bool breakWords);
