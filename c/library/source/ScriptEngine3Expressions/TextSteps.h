#pragma once

#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptExpression.h"

// `text .= piece` as a statement of its own, the usual way to build a text:
// the piece, a string or a number, goes behind a string that stands in a slot,
// and no result is made. False, with nothing done, when the program is any other.
bool scriptRunAppendStep(const ScriptExpression* expression, ScriptBlock* block);
