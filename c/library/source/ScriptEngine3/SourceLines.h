#pragma once

#include <string_view>

#include "ScriptEngine3Defs/ScriptHash.h"
#include "files/BasicFile.h"

// Why there are no more lines.
enum class SourceEnd {
    NotYet,
    OfFile,
    Unreadable,  // a line at the reader's limit, or a read error
    NoMemory,
};

// Reads the lines of one source file that say something, for whoever parses them
// and for whoever signs them.
class SourceLines {
  public:
    // `path` is the file's full path, for messages. All stay the caller's.
    SourceLines(Logger* logger, BasicFile* file, const String* path);
    ~SourceLines();
    SourceLines(const SourceLines&) = delete;
    SourceLines& operator=(const SourceLines&) = delete;

    // The next line that says something, without its comment. False at the end,
    // which `end` tells, after a message unless it is that of the file.
    bool readLine();
    std::string_view line() const { return stringView(&line_); }
    // The number of that line, from 1.
    uint32_t lineNumber() const { return file_->recordLine; }
    SourceEnd end() const { return end_; }

    // Adds every line from the next one on to the hash, until another is given;
    // null for none.
    void hashTo(HashState* hash) { hash_ = hash; }

    // Passes over the rest of a function, up to its `end`. Nothing of it is
    // hashed, nor looked at but for where blocks open and end.
    void skipFunction();

  private:
    bool nextLine();
    bool cutComment();
    bool endAt(SourceEnd end, const char* format);

    Logger* logger_;
    BasicFile* file_;
    const String* path_;
    String line_{};
    HashState* hash_ = nullptr;
    SourceEnd end_ = SourceEnd::NotYet;
};
