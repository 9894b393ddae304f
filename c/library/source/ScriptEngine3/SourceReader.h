#pragma once

#include <string_view>

#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "files/BasicFile.h"

// One statement as read: the command's name and its argument tokens, which
// are views into the reader and live until the next line.
struct SourceStatement {
    const CommandRow* command;
    std::string_view name;
    GrowArray<std::string_view> args;
};

// Reads the statements of one source file.
class SourceReader {
  public:
    // `path` is the file's full path, for messages. Both stay the caller's.
    SourceReader(ScriptEngine* engine, BasicFile* file, const String* path);
    ~SourceReader();
    SourceReader(const SourceReader&) = delete;
    SourceReader& operator=(const SourceReader&) = delete;

    // The next line that says something, without its comment; false at the end
    // of the file, which a line at the reader's limit or a read error is too.
    bool readLine();
    std::string_view line() const { return stringView(&line_); }
    // The number of that line, from 1.
    uint32_t lineNumber() const { return file_->recordLine; }

    // Cuts the line into command and arguments and finds the command. False
    // after a message.
    bool processLine(SourceStatement* statement);

  private:
    bool cutComment();

    ScriptEngine* engine_;
    BasicFile* file_;
    const String* path_;
    String line_{};
    String tokens_{};  // the bytes of the argument tokens, one behind the other
    bool ended_ = false;
};
