#include "ScriptEngine3Functions/FileCommands.h"

#include <cmath>

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "files/BasicFile.h"
#include "paths/Paths.h"
#include "strings/StringNumbers.h"

namespace {

// The longest line or part of one that is read, in bytes; one as long is refused.
constexpr uint32_t kReadLimit = 4096;

// As a column of the table: the command needs a signed file.
constexpr bool kSigned = true;

uint32_t modeOfWord(std::string_view word) {
    if (word == "read") return kFileRead;
    if (word == "write") return kFileWrite;
    return word == "append" ? kFileAppend : kFileClosed;
}

// Makes the directory that a file is to be written in.
bool makeDirectoryOf(const String* name) {
    Owned<String> directory(pathDirectoryPart(name));
    return directory && (stringIsEmpty(directory.get()) || pathMakeDirectoryPath(name));
}

int openNamed(ScriptEngine* engine, BasicFile* file, const String* name, uint32_t mode) {
    constexpr const char* kName = "scriptEngineFileOpen";
    if (!bfileSetName(file, name)) return commandOutOfMemory(engine, kName);
    switch (bfileOpen(file, mode)) {
        case kFileDone:
            return kDone;
        case kFileNoMemory:
            return commandOutOfMemory(engine, kName);
        case kFileNoName:
            return commandFailed(engine, kName, "Invalid file name");
        case kFileWrongMode:
        case kFileAlreadyOpen:
            return commandFailed(engine, kName, "File already open");
        default:
            return commandFailed(engine, kName, "Failed to open file");
    }
}

int scriptEngineFileOpen(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeFile);
    const String* name = in.string(1);
    const String* word = in.string(2);
    const ScriptObject* object = in.container();
    if (!in.ok()) return in.status();
    if (bfileMode(object->file) != kFileClosed) return kNegative;
    const uint32_t mode = modeOfWord(stringView(word));
    if (mode == kFileClosed)
        return commandFailed(engine, "scriptEngineFileOpen", "Invalid file mode");
    if (fileModeWrites(mode) && !makeDirectoryOf(name)) {
        logError(engine->logger, "scriptEngineFileOpen: Could not access directory of \"%S\"",
                 name);
        logLocation(engine->logger, kLogError);
        return kError;
    }
    return openNamed(engine, object->file, name, mode);
}

int scriptEngineFileClose(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeFile);
    const ScriptObject* object = in.container();
    if (!in.ok()) return in.status();
    if (bfileMode(object->file) == kFileClosed) return kNegative;
    if (bfileClose(object->file) == kFileDone) return kDone;
    return commandFailed(engine, "scriptEngineFileClose", "Failed to close file");
}

// Where the reads put their text. Its buffer and the target's take turns, so that
// line after line needs no memory; a large one is given back.
LocalString readText;
constexpr uint32_t kKeptCapacity = 64 * 1024;

// Gives the target, the last argument, what `read(file, text)` reads. At the end
// of the file it keeps what it holds.
template <typename Read>
int readIntoTarget(ScriptEngine* engine, ContainerArguments& in, const char* name, Read read) {
    ScriptObject* target = in.retyped(in.count() - 1, kTypeString);
    const ScriptObject* object = in.container();
    if (!in.ok()) return in.status();
    if (!bfileIsReadable(object->file))
        return commandFailed(engine, name, "File not opened for reading");
    const FileStatus status = read(object->file, &readText);
    if (status == kFileAtEnd && readText.length == 0) return kNegative;
    const bool counts = status == kFileDone || status == kFileShort || status == kFileAtEnd;
    const bool taken = counts && scriptObjectTakeStringValue(target, &readText);
    if (readText.capacity > kKeptCapacity) stringRelease(&readText);
    return taken ? kDone : commandFailed(engine, name, "Failed to read");
}

int scriptEngineFileRead(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeFile);
    const uint32_t count = numberToUInt32(std::round(in.number(1)));
    return readIntoTarget(
        engine, in, "scriptEngineFileRead",
        [count](BasicFile* file, String* text) { return bfileRead(file, text, count); });
}

int scriptEngineFileReadLine(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeFile);
    return readIntoTarget(
        engine, in, "scriptEngineFileReadLine",
        [](BasicFile* file, String* text) { return bfileReadLine(file, text, kReadLimit); });
}

int scriptEngineFileReadUntil(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeFile);
    const String* stops = in.string(1);
    return readIntoTarget(
        engine, in, "scriptEngineFileReadUntil", [stops](BasicFile* file, String* text) {
            return bfileReadUntilFirst(file, text, stringText(stops), nullptr, kReadLimit);
        });
}

using WriteFunction = FileStatus (*)(BasicFile* file, const String* text);

int writeText(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, const char* name,
              WriteFunction write) {
    ContainerArguments in(engine, block, args, kTypeFile);
    const String* text = in.string(1);
    const ScriptObject* object = in.container();
    if (!in.ok()) return in.status();
    if (!bfileIsWritable(object->file))
        return commandFailed(engine, name, "File not opened for writing");
    if (write(object->file, text) != kFileDone)
        return commandFailed(engine, name, "Failed to write");
    // What the system refuses is logged, stays pending, and fails the close.
    bfileFlush(object->file);
    return kDone;
}

int scriptEngineFileWrite(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return writeText(engine, block, args, "scriptEngineFileWrite", bfileWrite);
}
int scriptEngineFileWriteLine(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return writeText(engine, block, args, "scriptEngineFileWriteLine", bfileWriteLine);
}

int scriptEngineFileAtEof(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeFile);
    const ScriptObject* object = in.container();
    if (!in.ok()) return in.status();
    return bfileAtEnd(object->file) ? kNegative : kDone;
}

constexpr CommandRow kFileObjectCommands[] = {
    // name           handler               min max targets
    {"fileopen", scriptEngineFileOpen, 3, 3, "1"},
    {"fileclose", scriptEngineFileClose, 1, 1, "1"},
    {"fileread", scriptEngineFileRead, 3, 3, "1,3"},
    {"filereadline", scriptEngineFileReadLine, 2, 2, "1,2"},
    {"filereaduntil", scriptEngineFileReadUntil, 3, 3, "1,3"},
    {"filewrite", scriptEngineFileWrite, 2, 2, "1", kInBlock, false, kSigned},
    {"filewriteline", scriptEngineFileWriteLine, 2, 2, "1", kInBlock, false, kSigned},
    {"fileateof", scriptEngineFileAtEof, 1, 1, "1"},
};

}  // namespace

std::span<const CommandRow> fileObjectCommands() {
    return kFileObjectCommands;
}
