#include "ScriptEngine3/SourceReader.h"

#include "ScriptEngine3/ArgumentScanner.h"
#include "ScriptEngine3/CommandTable.h"
#include "ScriptEngine3Expressions/ExpressionParser.h"
#include "strings/StringEdit.h"

namespace {

constexpr uint32_t kLineLimit = 10000;
constexpr char kComment = '#';

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
    : engine_(engine), file_(file), path_(path) {}

SourceReader::~SourceReader() {
    stringRelease(&line_);
    stringRelease(&tokens_);
}

bool SourceReader::readLine() {
    while (!ended_) {
        const FileStatus status = bfileReadLine(file_, &line_, kLineLimit);
        if (status != kFileDone) {
            ended_ = true;
            if (status == kFileAtEnd) return false;
            logError(engine_->logger, "scriptEngineReadLine: #::204", path_);
            logLocation(engine_->logger, kLogError);
            return false;
        }
        stringTrim(&line_);
        if (!stringIsEmpty(&line_) && stringBytes(&line_)[0] != kComment) return cutComment();
    }
    return false;
}

// The scan begins behind the first byte, which counts for nothing: a line that
// begins with a quote has the sides of its strings the wrong way round.
bool SourceReader::cutComment() {
    bool inString = false;
    for (uint32_t at = 1; at < line_.length; ++at) {
        const char c = stringBytes(&line_)[at];
        if (c == '\\') {
            ++at;
        } else if (c == '"') {
            inString = !inString;
        } else if (c == kComment && !inString) {
            stringSetLength(&line_, at);
            stringTrimRight(&line_);
            break;
        }
    }
    return true;
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
