#include "ScriptEngine3/SourceLines.h"

#include "strings/StringEdit.h"

namespace {

constexpr uint32_t kLineLimit = 10000;
constexpr char kComment = '#';
constexpr std::string_view kEndOfBody = "end";
constexpr std::string_view kBlockOpeners[] = {"if", "elseif", "else", "while", "for"};

bool opensBlock(std::string_view word) {
    for (const std::string_view opener : kBlockOpeners)
        if (word == opener) return true;
    return false;
}

}  // namespace

SourceLines::SourceLines(Logger* logger, BasicFile* file, const String* path)
    : logger_(logger), file_(file), path_(path) {}

SourceLines::~SourceLines() {
    stringRelease(&line_);
}

bool SourceLines::endAt(SourceEnd end, const char* format) {
    end_ = end;
    logError(logger_, format, path_);
    logLocation(logger_, kLogError);
    return false;
}

bool SourceLines::readLine() {
    if (!nextLine()) return false;
    if (hash_ == nullptr || scriptHashAdd(hash_, &line_)) return true;
    return endAt(SourceEnd::NoMemory, "scriptEngineParse: #::100");
}

bool SourceLines::nextLine() {
    while (end_ == SourceEnd::NotYet) {
        const FileStatus status = bfileReadLine(file_, &line_, kLineLimit);
        if (status == kFileAtEnd) {
            end_ = SourceEnd::OfFile;
            return false;
        }
        if (status != kFileDone)
            return endAt(SourceEnd::Unreadable, "scriptEngineReadLine: #::204");
        stringTrim(&line_);
        if (!stringIsEmpty(&line_) && stringBytes(&line_)[0] != kComment) return cutComment();
    }
    return false;
}

// The scan begins behind the first byte, which counts for nothing: a line that
// begins with a quote has the sides of its strings the wrong way round.
bool SourceLines::cutComment() {
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

void SourceLines::skipFunction() {
    int depth = 1;
    while (depth > 0 && nextLine()) {
        const std::string_view word = line().substr(0, line().find(' '));
        if (word == kEndOfBody)
            --depth;
        else if (opensBlock(word))
            ++depth;
    }
}
