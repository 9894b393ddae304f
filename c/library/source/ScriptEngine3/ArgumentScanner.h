#pragma once

#include <string_view>

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// Cuts the text behind a command's name into argument tokens and translates
// its escape sequences. A parenthesised argument begins with
// `kExpressionMark`, an escaped quote in a string is byte 27. The tokens are
// views of `storage`, which is overwritten. False after a message.
bool scriptEngineParseArgs(ScriptEngine* engine, std::string_view text, String* storage,
                           GrowArray<std::string_view>* tokens);
