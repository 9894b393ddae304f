#include "ScriptToSign.h"

#include "platform/files.h"

namespace Quorel {

namespace {

constexpr std::string_view kDirective = "signature";
constexpr uint32_t kBlockSize = 64 * 1024;

bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

// Cuts the next word off, as the parser does: at a blank, and without control
// characters around it.
std::string_view cutWord(std::string_view* text) {
    std::string_view word;
    while (word.empty() && !text->empty()) {
        const size_t blank = text->find(' ');
        word = trimmed(text->substr(0, blank));
        text->remove_prefix(blank == text->npos ? text->size() : blank + 1);
    }
    return word;
}

bool isDirective(std::string_view line) {
    return line.substr(0, line.find(' ')) == kDirective;
}

bool definesMain(std::string_view line) {
    const size_t blank = line.find(' ');
    if (blank == line.npos || line.substr(0, blank) != "function") return false;
    line.remove_prefix(blank + 1);
    return cutWord(&line) == "main";
}

}  // namespace

bool ScriptToSign::fail(const std::string& fault) {
    fault_ = fault;
    return false;
}

bool ScriptToSign::read(const std::string& path, bool isIncluded) {
    path_ = path;
    directiveLine_ = 0;
    return readBytes() && readLines(isIncluded);
}

bool ScriptToSign::readBytes() {
    bytes_.clear();
    OsFile file = kOsNoFile;
    if (osPathWaits(path_)) return fail("is no regular file");
    int error = osFileOpen(path_, kOsOpenRead, &file);
    if (error != 0) return fail("cannot be read: " + osErrorText(error));
    for (size_t got = kBlockSize; got > 0 && error == 0;) {
        const size_t length = bytes_.size();
        bytes_.resize(length + kBlockSize);
        error = osFileRead(file, bytes_.data() + length, kBlockSize, &got);
        bytes_.resize(length + (error == 0 ? got : 0));
    }
    osFileClose(file);
    return error == 0 || fail("cannot be read: " + osErrorText(error));
}

bool ScriptToSign::startHash(SourceLines* lines) {
    hash_.reset(scriptHashCreate(kHashMd5));
    lines->hashTo(hash_.get());
    return hash_.get() != nullptr || fail("there is not enough memory");
}

bool ScriptToSign::readLines(bool isIncluded) {
    const Owned<String> name(stringFromView(path_));
    const Owned<BasicFile> file(bfileInitStr(name.get()));
    if (bfileOpen(file.get(), kFileRead) != kFileDone) return fail("cannot be read");
    SourceLines lines(nullptr, file.get(), name.get());
    // Without a signature line there will be one at the top.
    if (!startHash(&lines)) return false;
    while (lines.readLine()) {
        if (isIncluded && definesMain(lines.line()))
            lines.skipFunction();
        else if (isDirective(lines.line()) && !meetDirective(&lines))
            return false;
    }
    if (lines.end() == SourceEnd::OfFile) return true;
    return fail("line " + std::to_string(lines.lineNumber()) +
                " has 10000 bytes or more or cannot be read; scripts end before such a line");
}

bool ScriptToSign::meetDirective(SourceLines* lines) {
    if (hasSignature())
        return fail("has a signature on line " + std::to_string(directiveLine_) + " and on line " +
                    std::to_string(lines->lineNumber()) + "; one is enough");
    directiveLine_ = lines->lineNumber();
    directive_ = lines->line();
    signature_ = trimmed(lines->line().substr(kDirective.size()));
    return startHash(lines);
}

std::string ScriptToSign::fitting(int variant) const {
    LocalString text;
    if (!scriptHashFinish(hash_.get(), variant, &text)) return {};
    return std::string(stringView(&text));
}

// A first line that names the program to run the script stays the first one.
std::string ScriptToSign::withNewLine(const std::string& statement) const {
    const size_t lineEnd = bytes_.find('\n');
    const bool hasReturns = lineEnd != bytes_.npos && lineEnd > 0 && bytes_[lineEnd - 1] == '\r';
    const std::string line = statement + (hasReturns ? "\r\n" : "\n");
    if (!bytes_.starts_with("#!")) return line + bytes_;
    if (lineEnd == bytes_.npos) return bytes_ + "\n" + line;
    return std::string(bytes_).insert(lineEnd + 1, line);
}

std::string ScriptToSign::signedWith(const std::string& signature) const {
    const std::string statement = std::string(kDirective) + " " + signature;
    if (!hasSignature()) return withNewLine(statement);
    size_t start = 0;
    for (uint32_t line = 1; line < directiveLine_; ++line) start = bytes_.find('\n', start) + 1;
    while (start < bytes_.size() && isBlank(bytes_[start])) ++start;
    size_t end = start;
    for (const char wanted : directive_) {
        // Carriage returns within the line do not count.
        while (end < bytes_.size() && bytes_[end] == '\r') ++end;
        if (end == bytes_.size() || bytes_[end++] != wanted) return {};
    }
    return std::string(bytes_).replace(start, end - start, statement);
}

}  // namespace Quorel
