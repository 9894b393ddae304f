#include "files/ZFile.h"

#include <zlib.h>

#include "containers/Memory.h"
#include "files/FileStream.h"
#include "platform/files.h"

namespace {

constexpr std::string_view kSuffix = ".gz";

// ORDER file modes; those behind are not for gzip streams.
constexpr const char* kModeTexts[] = {"", "rb", "wb9"};

// Logs a message with name and record, and the location.
FileStatus failed(ZFile* file, FileStatus status, const char* message,
                  std::source_location where = std::source_location::current()) {
    logError(file->logger, message, file->name, file->identity);
    logLocation(file->logger, kLogError, where);
    return status;
}

FileStatus failedPlain(ZFile* file, FileStatus status, const char* message,
                       std::source_location where = std::source_location::current()) {
    logError(file->logger, message);
    logLocation(file->logger, kLogError, where);
    return status;
}

// Opens through the platform's names; the gzip stream takes the descriptor over.
FileStatus openStream(ZFile* file, uint32_t mode) {
    OsFile descriptor = kOsNoFile;
    if (osFileOpen(stringView(file->name), mode, &descriptor) != 0) return kFileCannotOpen;
    file->stream = gzdopen(descriptor, kModeTexts[mode]);
    if (file->stream == nullptr) {
        osFileClose(descriptor);
        return kFileNoMemory;
    }
    gzbuffer(file->stream, kFileBlockSize);
    return kFileDone;
}

}  // namespace

ZFile* zfileInitStr(const String* name) {
    if (name == nullptr) return nullptr;
    Owned<ZFile> file(memNew<ZFile>());
    if (!file) return nullptr;
    file->logger = logCreate();
    file->name = stringClone(name);
    if (file->logger == nullptr || file->name == nullptr) return nullptr;
    if (!stringView(name).ends_with(kSuffix) && !stringAppendView(file->name, kSuffix))
        return nullptr;
    file->atEnd = 1;
    file->recordLine = 1;
    file->identity = fileNextIdentity();
    logTrace(file->logger, "zfileInitStr: Created file %i", file->identity);
    return file.release();
}

void zfileDestroy(ZFile** file) {
    if (file == nullptr || *file == nullptr) return;
    ZFile* record = *file;
    logTrace(record->logger, "ZFile %i: Destroying object", record->identity);
    if (record->stream != nullptr && gzclose(record->stream) != Z_OK)
        failed(record, kFileCannotClose, "zfileClose: #::216 - file %i");
    logDestroy(&record->logger);
    stringDestroy(&record->name);
    memDelete(file);
}

FileStatus zfileOpen(ZFile* file, uint32_t mode) {
    if (file == nullptr) return kFileNull;
    logTrace(file->logger, "zfileOpen: Opening file %i", file->identity);
    if (file->name == nullptr) return failedPlain(file, kFileNoName, "zfileOpen: #::10");
    if (file->mode != kFileClosed) {
        logError(file->logger, "zfileOpen: #::220 - file %i", file->identity);
        logLocation(file->logger, kLogError);
        return kFileAlreadyOpen;
    }
    if (mode != kFileRead && mode != kFileWrite) {
        logDebug(file->logger, "zfileOpen: #::221 - file %i", mode, file->identity);
        logLocation(file->logger, kLogError);
        return kFileWrongMode;
    }
    const FileStatus status = openStream(file, mode);
    if (status != kFileDone) {
        failed(file, status, "zfileOpen: #::231");
        if (status == kFileNoMemory) logError(file->logger, "zfileOpen: #::100");
        return status;
    }
    file->mode = mode;
    file->atEnd = 0;
    file->line = 0;
    file->recordLine = 1;
    logTrace(file->logger, "zfileOpen: Opened file \"%S\" - %i", file->name, file->identity);
    return kFileDone;
}

FileStatus zfileClose(ZFile* file) {
    if (file == nullptr) return kFileNull;
    if (file->mode == kFileClosed)
        return failed(file, kFileNotOpen, "zfileClose: #::222 - file %i");
    // The stream has gone whatever the result; a record that could not be closed
    // keeps its mode, and what is tried with it fails.
    gzFile stream = file->stream;
    file->stream = nullptr;
    if (stream == nullptr || gzclose(stream) != Z_OK)
        return failed(file, kFileCannotClose, "zfileClose: #::216 - file %i");
    file->mode = kFileClosed;
    file->atEnd = 1;
    logTrace(file->logger, "zfileClose: Closed file \"%S\" - %i", file->name, file->identity);
    return kFileDone;
}

bool bfileIsReadable(const ZFile* file) {
    return file != nullptr && fileModeReads(file->mode);
}

bool bfileIsWritable(const ZFile* file) {
    return file != nullptr && fileModeWrites(file->mode);
}

FileStatus zfileRead(ZFile* file, String* out, uint32_t count) {
    if (file == nullptr || out == nullptr) return kFileNull;
    if (!bfileIsReadable(file)) return failed(file, kFileWrongMode, "zfileRead: #::223 - file %i");
    Owned<String> buffer(stringNewEmpty());
    char* place = stringMakeRoom(buffer.get(), count);
    if (place == nullptr) return failedPlain(file, kFileNoMemory, "zfileRead: #::100");
    const int got = gzread(file->stream, place, count);
    if (got <= 0) file->atEnd = 1;
    if (got < 0) return kFileShort;
    if (got == 0) return kFileAtEnd;
    const auto length = static_cast<uint32_t>(got);
    if (length < count) file->atEnd = 1;
    stringSetLength(buffer.get(), length);
    std::swap(*out, *buffer);
    return kFileDone;
}

FileStatus zfileWriteVal(ZFile* file, const void* data, uint32_t length) {
    if (file == nullptr || data == nullptr) return kFileNull;
    if (!bfileIsWritable(file))
        return failed(file, kFileWrongMode, "zfileWriteVal: #::226 - file %i");
    const int written = gzwrite(file->stream, data, length);
    if (written >= 0 && static_cast<uint32_t>(written) >= length) return kFileDone;
    if (written > 0) {
        logDebug(file->logger, "zfileWriteVal: #::227 - file %i", file->name, file->identity);
        return kFileShort;
    }
    int code = 0;
    const char* text = file->stream == nullptr ? "" : gzerror(file->stream, &code);
    logError(file->logger, "zfileWriteVal: #::205 #::14 = #::16", file->name, code, text);
    return kFileNotFlushed;
}

FileStatus zfileWrite(ZFile* file, const String* text) {
    return text == nullptr ? kFileNull : zfileWriteVal(file, stringText(text), text->length);
}
