#include "ScriptEngine3Functions/WholeFileCommands.h"

#include "ScriptEngine3Functions/ContainerArguments.h"
#include "files/BasicFile.h"
#include "paths/Paths.h"
#include "strings/StringEdit.h"

namespace {

// The longest line that is read, in bytes; one as long is refused.
constexpr uint32_t kLineLimit = 4096;

// As a column of the table: the command needs a signed file.
constexpr bool kSigned = true;

constexpr const char* kNotRead = "Failed to read from file";
constexpr const char* kNotWritten = "Failed to write to file";

// Opens the file that the command of this name works on. Null after a message,
// with what the command gives in `*status`.
Owned<BasicFile> openFile(ScriptEngine* engine, const char* name, const String* path, uint32_t mode,
                          int* status) {
    Owned<BasicFile> file(bfileInitStr(path));
    const FileStatus opened = file ? bfileOpen(file.get(), mode) : kFileNoMemory;
    if (opened == kFileDone) return file;
    *status = opened == kFileNoMemory ? commandOutOfMemory(engine, name)
                                      : commandFailed(engine, name, "Failed to open file");
    return Owned<BasicFile>();
}

// Reads the bytes that the file's size told, into memory of just that size.
FileStatus readBytes(BasicFile* file, uint64_t size, String* text) {
    if (size > kStringMaxLength || !stringReserve(text, static_cast<uint32_t>(size)))
        return kFileNoMemory;
    return bfileRead(file, text, static_cast<uint32_t>(size));
}

bool writeBytes(BasicFile* file, std::string_view text) {
    return text.empty() ||
           bfileWriteVal(file, text.data(), static_cast<uint32_t>(text.size())) == kFileDone;
}

bool writeLine(BasicFile* file, std::string_view text) {
    return writeBytes(file, text) && writeBytes(file, "\n");
}

// Calls `add(line)` for each line until it gives false: then memory ran out.
template <typename Add>
int eachLine(ScriptEngine* engine, const char* name, const String* path, Add add) {
    int status = kDone;
    Owned<BasicFile> file = openFile(engine, name, path, kFileRead, &status);
    if (!file) return status;
    LocalString line;
    while (!bfileAtEnd(file.get())) {
        const FileStatus read = bfileReadLine(file.get(), &line, kLineLimit);
        if (read != kFileDone && read != kFileAtEnd) return commandFailed(engine, name, kNotRead);
        if (line.length == 0 && bfileAtEnd(file.get())) break;
        if (!add(stringView(&line))) return commandOutOfMemory(engine, name);
    }
    return kDone;
}

// Lets `write(file)` write the file, and closes it: what the system refuses late
// must show too.
template <typename Write>
int writeFile(ScriptEngine* engine, const char* name, const String* path, uint32_t mode,
              Write write) {
    int status = kDone;
    Owned<BasicFile> file = openFile(engine, name, path, mode, &status);
    if (!file) return status;
    if (write(file.get()) && bfileClose(file.get()) == kFileDone) return kDone;
    return commandFailed(engine, name, kNotWritten);
}

// A name as a parameter of a template: a handler is not told its command's name.
struct ContainerCommand {
    ScriptType type;
    const char* name;
};

constexpr ContainerCommand kFileToVector = {kTypeVector, "scriptEngineFileToVector"};
constexpr ContainerCommand kFileToList = {kTypeList, "scriptEngineFileToList"};
constexpr ContainerCommand kFileToSet = {kTypeSet, "scriptEngineFileToSet"};
constexpr ContainerCommand kVectorToFile = {kTypeVector, "scriptEngineVectorToFile"};
constexpr ContainerCommand kListToFile = {kTypeList, "scriptEngineListToFile"};
constexpr ContainerCommand kSetToFile = {kTypeSet, "scriptEngineSetToFile"};

int scriptEngineFileToStr(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    constexpr const char* kName = "scriptEngineFileToStr";
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    const uint64_t size = pathFileSize(path);
    if (size == 0) return kNegative;
    int status = kDone;
    Owned<BasicFile> file = openFile(engine, kName, path, kFileRead, &status);
    if (!file) return status;
    LocalString text;
    if (readBytes(file.get(), size, &text) != kFileDone)
        return commandFailed(engine, kName, kNotRead);
    stringRemoveChar(&text, '\r');
    stringTake(&target->string, &text);
    return kDone;
}

int putText(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, const char* name,
            uint32_t mode) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    const String* path = in.string(1);
    if (!in.ok()) return in.status();
    return writeFile(engine, name, path, mode,
                     [text](BasicFile* file) { return writeBytes(file, stringView(text)); });
}

int scriptEngineStrToFile(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return putText(engine, block, args, "scriptEngineStrToFile", kFileWrite);
}
int scriptEngineAppendStrToFile(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return putText(engine, block, args, "scriptEngineAppendStrToFile", kFileAppend);
}

template <const ContainerCommand& kCommand>
int fileToContainer(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    ScriptObject* target = in.retyped(1, kCommand.type);
    if (!in.ok()) return in.status();
    if (pathFileSize(path) == 0) return kNegative;
    return eachLine(engine, kCommand.name, path,
                    [target](std::string_view line) { return containerAddText(target, line); });
}

template <const ContainerCommand& kCommand>
int containerToFile(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kCommand.type);
    const String* path = in.string(1);
    const ScriptObject* container = in.container();
    if (!in.ok()) return in.status();
    return writeFile(engine, kCommand.name, path, kFileWrite, [container](BasicFile* file) {
        return scriptContainerEach(container, [file](const ScriptObject* element) {
            return element != nullptr && element->type == kTypeString &&
                   writeLine(file, stringView(&element->string));
        });
    });
}

int scriptEngineFileToMap(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    constexpr const char* kName = "scriptEngineFileToMap";
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    const String* separatorText = in.string(1);
    ScriptObject* map = in.retyped(2, kTypeMap);
    if (!in.ok()) return in.status();
    if (pathFileSize(path) == 0) return kNegative;
    // A pair that is replaced may hold what is read here.
    if (mapCount(map->map.map) > 0 && !in.keepTexts()) return commandOutOfMemory(engine, kName);
    const std::string_view separator = stringView(separatorText);
    return eachLine(engine, kName, path, [map, separator](std::string_view line) {
        const size_t cut = line.find(separator);
        return mapPutTexts(map, line.substr(0, cut),
                           cut == std::string_view::npos ? std::string_view()
                                                         : line.substr(cut + separator.size()));
    });
}

// Writes a value's text; false when it has none.
bool writeValue(ScriptEngine* engine, BasicFile* file, const void* value, String* scratch) {
    const auto* object = static_cast<const ScriptObject*>(value);
    if (object != nullptr && object->type == kTypeString)
        return writeBytes(file, stringView(&object->string));
    stringClear(scratch);
    return scriptObjectAppendString(engine, object, scratch) &&
           writeBytes(file, stringView(scratch));
}

int scriptEngineMapToFile(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    ContainerArguments in(engine, block, args, kTypeMap);
    const String* separator = in.string(1);
    const String* path = in.string(2);
    const ScriptObject* object = in.container();
    if (!in.ok()) return in.status();
    const Map* map = object->map.map;
    return writeFile(engine, "scriptEngineMapToFile", path, kFileWrite, [=](BasicFile* file) {
        LocalString scratch;
        for (const MapNode* at = mapFirstNode(map); at != nullptr; at = mapNextNode(map, at))
            if (!writeValue(engine, file, at->data, &scratch) ||
                !writeBytes(file, stringView(separator)) ||
                !writeValue(engine, file, at->value, &scratch) || !writeBytes(file, "\n"))
                return false;
        return true;
    });
}

// What the last target gets: all that is left, as it is, without a last line end.
FileStatus readRest(BasicFile* file, String* text) {
    const FileStatus status = readBytes(file, pathFileSize(file->name), text);
    if (stringView(text).ends_with('\n')) stringSetLength(text, text->length - 1);
    return status;
}

int scriptEngineFileToLines(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    constexpr const char* kName = "scriptEngineFileToLines";
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    if (!in.ok()) return in.status();
    int status = kDone;
    Owned<BasicFile> file = openFile(engine, kName, path, kFileRead, &status);
    if (!file) return status;
    for (uint32_t at = 1; at < in.count() && !bfileAtEnd(file.get()); ++at) {
        LocalString text;
        const bool last = at + 1 == in.count();
        const FileStatus read =
            last ? readRest(file.get(), &text) : bfileReadLine(file.get(), &text, kLineLimit);
        if (read != kFileDone && read != kFileAtEnd) return commandFailed(engine, kName, kNotRead);
        ScriptObject* target = in.retyped(at, kTypeString);
        if (!in.ok()) break;
        stringTake(&target->string, &text);
    }
    return in.status();
}

int scriptEngineLinesToFile(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* path = in.string(0);
    if (!in.ok()) return in.status();
    int status = kDone;
    uint32_t missing = 0;
    LocalString scratch;
    const auto writeAll = [&](BasicFile* file) {
        for (uint32_t at = 1; at < in.count(); ++at) {
            std::string_view text;
            stringClear(&scratch);
            if (!scriptEngineGetVarText(engine, block, in.arg(at), &scratch, &text)) {
                missing = at;
                return true;
            }
            if (!writeLine(file, text)) return false;
        }
        return true;
    };
    status = writeFile(engine, "scriptEngineLinesToFile", path, kFileWrite, writeAll);
    if (status != kDone || missing == 0) return status;
    logError(engine->logger, "scriptEngineLinesToFile: Parameter %u has no value", missing);
    logLocation(engine->logger, kLogError);
    return kError;
}

constexpr CommandRow kWholeFileCommands[] = {
    // name        handler                min max targets
    {"filetostr", scriptEngineFileToStr, 2, 2, "2"},
    {"strtofile", scriptEngineStrToFile, 2, 2, nullptr, kInBlock, false, kSigned},
    {"appendstrtofile", scriptEngineAppendStrToFile, 2, 2, nullptr, kInBlock, false, kSigned},
    {"filetovector", fileToContainer<kFileToVector>, 2, 2, "2"},
    {"vectortofile", containerToFile<kVectorToFile>, 2, 2, "1", kInBlock, false, kSigned},
    {"filetolist", fileToContainer<kFileToList>, 2, 2, "2"},
    {"listtofile", containerToFile<kListToFile>, 2, 2, "1", kInBlock, false, kSigned},
    {"filetoset", fileToContainer<kFileToSet>, 2, 2, "2"},
    {"settofile", containerToFile<kSetToFile>, 2, 2, "1", kInBlock, false, kSigned},
    {"filetomap", scriptEngineFileToMap, 3, 3, "3"},
    {"maptofile", scriptEngineMapToFile, 3, 3, "1", kInBlock, false, kSigned},
    {"filetolines", scriptEngineFileToLines, 2, kManyArgs, "2-100"},
    {"linestofile", scriptEngineLinesToFile, 2, kManyArgs, nullptr, kInBlock, false, kSigned},
};

}  // namespace

std::span<const CommandRow> wholeFileCommands() {
    return kWholeFileCommands;
}
