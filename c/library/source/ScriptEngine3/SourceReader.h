#pragma once

#include <string_view>

#include "ScriptEngine3/SourceLines.h"
#include "ScriptEngine3Defs/ScriptEngineRecord.h"

// One statement as read: the command's name and its argument tokens, which
// are views into the reader and live until the next line.
struct SourceStatement {
    const CommandRow* command;
    std::string_view name;
    GrowArray<std::string_view> args;
};

// Reads the statements of one source file.
class SourceReader : public SourceLines {
  public:
    // `path` is the file's full path, for messages. All stay the caller's.
    SourceReader(ScriptEngine* engine, BasicFile* file, const String* path);
    ~SourceReader();

    // Cuts the line into command and arguments and finds the command. False
    // after a message.
    bool processLine(SourceStatement* statement);

  private:
    ScriptEngine* engine_;
    String tokens_{};  // the bytes of the argument tokens, one behind the other
};
