#pragma once

#include <string_view>

#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "ScriptEngine3Defs/ScriptExpression.h"

// Compiles the text of an expression. Literals become hidden variables of
// `block`, a template. Null after a message. The caller owns the result.
ScriptExpression* scriptEngineParseExpression(ScriptEngine* engine, ScriptBlock* block,
                                              std::string_view text);

// Takes the tokens of a statement to variables: a name stays a name, a literal
// becomes a hidden variable of `block`, a parenthesised argument an expression
// there. `tokens` leaves the command's name out; `args` receives one entry a
// token. False after a message.
bool scriptEngineProcessArgs(ScriptEngine* engine, ScriptBlock* block,
                             const GrowArray<std::string_view>& tokens, GrowArray<ScriptArg>* args);

// The byte that begins an expression token in place of its parenthesis.
constexpr char kExpressionMark = 0x1F;
