#pragma once

#include "ScriptEngine3/SourceFiles.h"
#include "ScriptEngine3/SourceReader.h"

// Reads a body up to its `end`, with the bodies inside it.
class BodyParser {
  public:
    BodyParser(ScriptEngine* engine, OpenSource* source, SourceReader* reader)
        : engine_(engine), source_(source), reader_(reader) {}

    // The body as a template, owned by the caller; null after a message. The end
    // of the file stands for a missing `end`.
    ScriptBlock* parse();

  private:
    bool begin(ScriptBlock* block);
    bool statement(ScriptBlock* block, DirectiveKind* previous);
    bool arguments(ScriptBlock* block);
    bool nested(ScriptBlock* block, ScriptLine* line, const CommandRow* command,
                uint32_t lineNumber);
    bool outOfMemory();
    const String* path() const { return source_->path.get(); }

    ScriptEngine* engine_;
    OpenSource* source_;
    SourceReader* reader_;
    SourceStatement statement_;
    GrowArray<ScriptArg> args_;
};

// Gives the names that the statement declares their slots.
bool bodyReserveNames(ScriptEngine* engine, ScriptBlock* block, const CommandRow* command,
                      const GrowArray<ScriptArg>& args);
