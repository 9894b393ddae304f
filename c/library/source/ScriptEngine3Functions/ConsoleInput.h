#pragma once

#include "strings/String.h"

// Reads standard input up to and with the next line feed, at most `limit`
// bytes; what is left of the line comes with the next read. False, with `line`
// emptied, at the end of the input, and after a failed read.
bool inputReadLine(String* line, uint32_t limit);
