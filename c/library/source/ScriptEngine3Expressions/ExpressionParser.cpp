#include "ScriptEngine3Expressions/ExpressionParser.h"

#include "ScriptEngine3Expressions/Operators.h"
#include "strings/StringFormat.h"

namespace {

constexpr char kBlank = ' ';

bool isEscapable(char c) {
    return std::string_view("\"0?\\abfnrtv").find(c) != std::string_view::npos;
}

bool isClosedString(std::string_view token) {
    return token.size() > 1 && token.back() == '"';
}

// Cuts an expression at single blanks; a string keeps its own.
class ExpressionTokens {
  public:
    explicit ExpressionTokens(std::string_view text) : text_(text) {}

    bool next(std::string_view* token) {
        if (at_ > text_.size()) return false;
        const size_t start = at_;
        size_t end = findBlank(start);
        if (start < text_.size() && text_[start] == '"')
            while (!isClosedString(text_.substr(start, end - start)) && end < text_.size())
                end = findBlank(end + 1);
        *token = text_.substr(start, end - start);
        at_ = end + 1;
        return true;
    }

  private:
    size_t findBlank(size_t at) const {
        for (; at < text_.size() && text_[at] != kBlank; ++at)
            if (text_[at] == '\\' && at + 1 < text_.size() && isEscapable(text_[at + 1])) ++at;
        return at < text_.size() ? at : text_.size();
    }

    std::string_view text_;
    size_t at_ = 0;
};

uint32_t classify(std::string_view token) {
    const uint32_t op = scriptOperatorFromToken(token);
    if (op != kOpNone) return op;
    switch (scriptObjectLiteralType(token)) {
        case kTypeNumber:
        case kTypeString:
        case kTypePointer:
            return kOpValue;
        default:
            return kOpNone;
    }
}

// One compilation: operators wait on a stack until their operands stand in the program.
class ExpressionParser {
  public:
    ExpressionParser(ScriptEngine* engine, ScriptBlock* block, std::string_view text)
        : engine_(engine), block_(block), text_(text) {}

    bool parse(ScriptExpression* expression);

  private:
    bool element(std::string_view token);
    bool value(std::string_view token);
    bool literal(std::string_view token);
    bool closeParenthesis();
    bool arrive(uint32_t op);
    bool outOfMemory();
    bool emit(uint32_t op) { return program_->push({op, 0, kNoVariable}) || outOfMemory(); }

    ScriptEngine* engine_;
    ScriptBlock* block_;
    std::string_view text_;
    GrowArray<ExprToken>* program_ = nullptr;
    GrowArray<uint32_t> waiting_;
};

bool ExpressionParser::outOfMemory() {
    logError(engine_->logger, "scriptEngineParseExpression: #::100");
    logLocation(engine_->logger, kLogError);
    return false;
}

bool ExpressionParser::parse(ScriptExpression* expression) {
    program_ = &expression->tokens;
    logDebug(engine_->logger, "scriptEngineParseExpression: Parsing expression \"%S\"", text_);
    ExpressionTokens tokens(text_);
    std::string_view token;
    while (tokens.next(&token)) {
        logTrace(engine_->logger, "scriptEngineParseExpression: Got element \"%S\"", token);
        if (!element(token)) return false;
    }
    // A parenthesis left open goes along, and fails when the program runs.
    while (!waiting_.empty())
        if (!emit(waiting_.pop())) return false;
    for (const ExprToken& part : expression->tokens)
        expression->writes |= scriptOperatorWrites(part.op);
    program_->fit();
    return true;
}

bool ExpressionParser::element(std::string_view token) {
    const uint32_t op = classify(token);
    if (op == kOpNone) {
        logError(engine_->logger, "scriptEngineParseExpression: #::713", token, text_);
        return false;
    }
    if (op == kOpValue) return value(token);
    return op == kOpClose ? closeParenthesis() : arrive(op);
}

bool ExpressionParser::value(std::string_view token) {
    if (!scriptObjectIsValidName(token)) return literal(token);
    const uint32_t id = scriptVarNameToId(engine_->parseTables, token);
    if (id == kNoVariable) {
        logError(engine_->logger, "scriptEngineParseExpression: #::11");
        logLocation(engine_->logger, kLogError);
        return false;
    }
    return program_->push({kOpValue, id, kNoVariable}) || outOfMemory();
}

bool ExpressionParser::literal(std::string_view token) {
    Owned<ScriptObject> object(scriptObjectFromLiteral(token));
    if (!object) {
        logError(engine_->logger, "scriptEngineParseExpression: Invalid element (Or #::100)");
        logLocation(engine_->logger, kLogError);
        return false;
    }
    object->nameId = scriptHiddenVarId(engine_->parseTables);
    const uint32_t slot = scriptBlockAddLiteral(block_, object.get());
    if (slot == kNoVariable) {
        logError(engine_->logger,
                 "scriptEngineParseExpression: Failed to add variable object for \"%S\"", token);
        return false;
    }
    const uint32_t id = object.release()->nameId;
    return program_->push({kOpValue, id, slot}) || outOfMemory();
}

bool ExpressionParser::closeParenthesis() {
    while (!waiting_.empty()) {
        const uint32_t op = waiting_.pop();
        if (op == kOpOpen) return true;
        if (!emit(op)) return false;
    }
    logError(engine_->logger, "scriptEngineParseExpression: #::714", text_);
    return false;
}

bool ExpressionParser::arrive(uint32_t op) {
    const uint8_t precedence = scriptOperatorRow(op).inPrecedence;
    while (!waiting_.empty() && precedence < scriptOperatorRow(waiting_.back()).stackPrecedence)
        if (!emit(waiting_.pop())) return false;
    return waiting_.push(op) || outOfMemory();
}

// One argument of a statement on its way to a variable.
class ArgumentParser {
  public:
    ArgumentParser(ScriptEngine* engine, ScriptBlock* block) : engine_(engine), block_(block) {}

    bool parse(std::string_view token, GrowArray<ScriptArg>* args);

  private:
    bool expression(std::string_view token);
    bool literal(std::string_view token);
    bool name(std::string_view token);
    bool internalFailure();
    void trace(const char* hiddenName, std::string_view token) const;

    ScriptEngine* engine_;
    ScriptBlock* block_;
    Owned<ScriptObject> object_;
    ScriptArg arg_;
};

bool ArgumentParser::internalFailure() {
    logError(engine_->logger, "scriptEngineProcessArgs: #::11");
    logLocation(engine_->logger, kLogError);
    return false;
}

bool ArgumentParser::expression(std::string_view token) {
    const std::string_view text = token.substr(1);
    ScriptExpression* program = scriptEngineParseExpression(engine_, block_, text);
    if (program == nullptr) {
        logError(engine_->logger, "scriptEngineProcessArgs: Failed to parse expression \"%S\"",
                 text);
        return false;
    }
    object_.reset(scriptObjectCreate(kTypePointer));
    if (!object_) {
        scriptExpressionDestroy(&program);
        return internalFailure();
    }
    object_->type = kTypeExpr;
    object_->expression = program;
    return true;
}

bool ArgumentParser::literal(std::string_view token) {
    object_.reset(scriptObjectFromLiteral(token));
    if (object_) return true;
    if (token == ")")
        logError(engine_->logger, "scriptEngineProcessArgs: ')' missing matching '('");
    else
        logError(engine_->logger, "scriptEngineProcessArgs: Invalid argument: \"%S\"", token);
    return false;
}

bool ArgumentParser::name(std::string_view token) {
    arg_.id = scriptVarNameToId(engine_->parseTables, token);
    return arg_.id != kNoVariable || internalFailure();
}

// Hidden variables are told by a number that counts them: both systems agree on it.
void ArgumentParser::trace(const char* hiddenName, std::string_view token) const {
    if (!logWanted(kLogDebug)) return;
    Owned<String> shown(hiddenName == nullptr ? stringFromView(token)
                                              : stringFormatNew("%s%u", hiddenName, arg_.id));
    logDebug(engine_->logger, "scriptEngineProcessArgs: Argument variable \"%S\" = %u", shown.get(),
             arg_.id);
}

bool ArgumentParser::parse(std::string_view token, GrowArray<ScriptArg>* args) {
    const bool isExpression = token.size() > 1 && token.front() == kExpressionMark;
    const bool isName = !isExpression && scriptObjectIsValidName(token);
    if (isExpression ? !expression(token) : isName ? !name(token) : !literal(token)) return false;
    if (!isName) arg_.id = scriptHiddenVarId(engine_->parseTables);
    trace(isName ? nullptr : isExpression ? "expobj" : "normobj", token);
    if (object_) {
        object_->nameId = arg_.id;
        const uint32_t slot = scriptBlockAddLiteral(block_, object_.get());
        if (slot == kNoVariable) {
            logError(engine_->logger,
                     "scriptEngineProcessArgs: Failed to add variable object for expression \"%S\"",
                     token);
            return false;
        }
        object_.release();
        arg_.kind = kPlaceLiteral;
        arg_.slot = slot;
    }
    return args->push(arg_) || internalFailure();
}

}  // namespace

ScriptExpression* scriptEngineParseExpression(ScriptEngine* engine, ScriptBlock* block,
                                              std::string_view text) {
    ScriptExpression* expression = scriptExpressionCreate();
    if (expression == nullptr) {
        logError(engine->logger, "scriptEngineParseExpression: #::100");
        logLocation(engine->logger, kLogError);
        return nullptr;
    }
    if (!ExpressionParser(engine, block, text).parse(expression))
        scriptExpressionDestroy(&expression);
    return expression;
}

bool scriptEngineProcessArgs(ScriptEngine* engine, ScriptBlock* block,
                             const GrowArray<std::string_view>& tokens,
                             GrowArray<ScriptArg>* args) {
    for (const std::string_view token : tokens)
        if (!ArgumentParser(engine, block).parse(token, args)) return false;
    return true;
}
