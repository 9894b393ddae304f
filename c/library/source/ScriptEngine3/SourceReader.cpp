#include "ScriptEngine3/SourceReader.h"

#include "ScriptEngine3/ArgumentScanner.h"
#include "ScriptEngine3/CommandTable.h"
#include "ScriptEngine3Expressions/ExpressionParser.h"

namespace {

// The statement as it was understood, an expression shown in its parentheses.
void traceStatement(ScriptEngine* engine, const SourceStatement& statement) {
    if (!logWanted(kLogTrace)) return;
    Owned<String> shown(stringNewEmpty());
    for (const std::string_view arg : statement.args) {
        const bool isExpression = arg.front() == kExpressionMark;
        stringAppendText(shown.get(), isExpression ? " (" : " ");
        stringAppendView(shown.get(), arg.substr(isExpression));
        if (isExpression) stringAppendChar(shown.get(), ')');
    }
    logTrace(engine->logger, "scriptEngineProcessLine: Argument(s) to function \"%S\":%S",
             statement.name, shown.get());
}

}  // namespace

SourceReader::SourceReader(ScriptEngine* engine, BasicFile* file, const String* path)
    : SourceLines(engine->logger, file, path), engine_(engine) {}

SourceReader::~SourceReader() {
    stringRelease(&tokens_);
}

bool SourceReader::processLine(SourceStatement* statement) {
    const std::string_view text = line();
    logTrace(engine_->logger, "scriptEngineProcessLine: Parsing \"%S\"", text);
    const size_t blank = text.find(' ');
    statement->name = text.substr(0, blank);
    statement->command = scriptEngineFindFunction(engine_->parseTables, statement->name);
    if (statement->command == nullptr) {
        logError(engine_->logger, "scriptEngineProcessLine: Unknown function \"%S\"",
                 statement->name);
        logLocation(engine_->logger, kLogError);
        return false;
    }
    const std::string_view rest = text.substr(blank < text.size() ? blank + 1 : text.size());
    if (!scriptEngineParseArgs(engine_, rest, &tokens_, &statement->args)) return false;
    traceStatement(engine_, *statement);
    return true;
}
