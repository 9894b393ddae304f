#include "files/BasicFile.h"

#include "containers/Memory.h"
#include "files/FileStream.h"

namespace {

// ORDER file modes
constexpr const char* kModeTexts[] = {"", "rb", "wb", "ab", "r+b", "w+b", "a+b"};

bool isOpen(const BasicFile* file) {
    return file != nullptr && file->stream != nullptr && file->stream->open;
}

void markClosed(BasicFile* file) {
    file->mode = kFileClosed;
    file->atEnd = 1;
}

// Lets go of a stream that another record has closed.
void notice(BasicFile* file) {
    if (file == nullptr || file->stream == nullptr || file->stream->open) return;
    fileStreamRelease(&file->stream);
    markClosed(file);
}

// The first look of an operation that needs a mode; logs what `number` says.
FileStatus requireMode(BasicFile* file, bool allowed, const char* message,
                       std::source_location where = std::source_location::current()) {
    if (allowed) return kFileDone;
    logError(file->logger, message, file->name, file->identity);
    logLocation(file->logger, kLogError, where);
    return kFileWrongMode;
}

}  // namespace

BasicFile* bfileInit() {
    Owned<BasicFile> file(memNew<BasicFile>());
    if (!file) return nullptr;
    file->logger = logCreate();
    if (file->logger == nullptr) return nullptr;
    file->atEnd = 1;
    file->recordLine = 1;
    file->identity = fileNextIdentity();
    logTrace(file->logger, "bfileInit: Created file %i", file->identity);
    return file.release();
}

BasicFile* bfileInitStr(const String* name) {
    if (name == nullptr) return nullptr;
    Owned<BasicFile> file(bfileInit());
    return file && bfileSetName(file.get(), name) ? file.release() : nullptr;
}

BasicFile* bfileCopy(const BasicFile* file) {
    if (file == nullptr) return nullptr;
    Owned<BasicFile> copy(bfileInit());
    if (!copy) return nullptr;
    if (file->name != nullptr && !bfileSetName(copy.get(), file->name)) return nullptr;
    if (isOpen(file)) {
        fileStreamShare(file->stream);
        copy->stream = file->stream;
        copy->mode = file->mode;
        copy->atEnd = file->atEnd;
    }
    copy->line = file->line;
    copy->recordLine = file->recordLine;
    return copy.release();
}

void bfileDestroy(BasicFile** file) {
    if (file == nullptr || *file == nullptr) return;
    BasicFile* record = *file;
    logTrace(record->logger, "BasicFile %i: Destroying object", record->identity);
    const bool lossTold = record->stream != nullptr && record->stream->lossTold;
    if (!fileStreamRelease(&record->stream) && !lossTold) {
        logError(record->logger, "bfileClose: #::216 - file %i", record->name, record->identity);
        logLocation(record->logger, kLogError);
    }
    logDestroy(&record->logger);
    stringDestroy(&record->name);
    memDelete(file);
}

bool bfileSetName(BasicFile* file, const String* name) {
    notice(file);
    if (file == nullptr || name == nullptr || file->mode != kFileClosed) return false;
    Owned<String> copy(stringClone(name));
    if (!copy) return false;
    stringDestroy(&file->name);
    file->name = copy.release();
    return true;
}

FileStatus bfileOpen(BasicFile* file, uint32_t mode) {
    if (file == nullptr) return kFileNull;
    notice(file);
    if (file->name == nullptr) {
        logError(file->logger, "bfileOpen: #::10");
        return kFileNoName;
    }
    if (file->mode != kFileClosed) {
        logError(file->logger, "bfileOpen: #::220 - file %i", file->identity);
        logLocation(file->logger, kLogError);
        return kFileAlreadyOpen;
    }
    if (mode < kFileRead || mode > kFileAppendRead) {
        logError(file->logger, "bfileOpen: #::221 - file %i", mode, file->identity);
        logLocation(file->logger, kLogError);
        return kFileWrongMode;
    }
    const FileStatus status = fileStreamOpen(stringView(file->name), mode, &file->stream);
    if (status != kFileDone) {
        if (status == kFileNoMemory)
            logError(file->logger, "bfileOpen: #::100");
        else
            logError(file->logger, "bfileOpen: #::231", file->name);
        logLocation(file->logger, kLogError);
        return status;
    }
    file->mode = mode;
    file->atEnd = 0;
    file->line = 0;
    file->recordLine = 1;
    logTrace(file->logger, "bfileOpen: Opened (mode=%S) %i = \"%S\"", kModeTexts[mode],
             file->identity, file->name);
    return kFileDone;
}

FileStatus bfileClose(BasicFile* file) {
    if (file == nullptr) return kFileNull;
    logTrace(file->logger, "bfileClose: Closing file %i", file->identity);
    notice(file);
    if (file->mode == kFileClosed) {
        logError(file->logger, "bfileClose: #::222 - file %i", file->name, file->identity);
        logLocation(file->logger, kLogError);
        return kFileNotOpen;
    }
    if (!fileStreamClose(file->stream)) {
        file->stream->lossTold = true;
        logError(file->logger, "bfileClose: #::216 - file %i", file->name, file->identity);
        logLocation(file->logger, kLogError);
        return kFileCannotClose;
    }
    fileStreamRelease(&file->stream);
    markClosed(file);
    logTrace(file->logger, "bfileClose: Closed file \"%S\" - %i", file->name, file->identity);
    return kFileDone;
}

uint32_t bfileMode(const BasicFile* file) {
    return isOpen(file) ? file->mode : kFileClosed;
}

bool bfileAtEnd(const BasicFile* file) {
    return !isOpen(file) || file->atEnd != 0;
}

bool bfileIsReadable(const BasicFile* file) {
    return fileModeReads(bfileMode(file));
}

bool bfileIsWritable(const BasicFile* file) {
    return fileModeWrites(bfileMode(file));
}

FileStatus bfileWriteVal(BasicFile* file, const void* data, uint32_t length) {
    if (file == nullptr || data == nullptr) return kFileNull;
    if (requireMode(file, bfileIsWritable(file), "bfileWriteVal: #::226 - file %i") != kFileDone)
        return kFileWrongMode;
    if (fileStreamWrite(file->stream, static_cast<const char*>(data), length) == length)
        return kFileDone;
    logDebug(file->logger, "bfileWriteVal: #::227 - file %i", file->name, file->identity);
    return kFileShort;
}

FileStatus bfileWrite(BasicFile* file, const String* text) {
    return text == nullptr ? kFileNull : bfileWriteVal(file, stringText(text), text->length);
}

FileStatus bfileWriteLineVal(BasicFile* file, const void* data, uint32_t length) {
    const FileStatus status = bfileWriteVal(file, data, length);
    return status == kFileDone ? bfileWriteVal(file, "\n", 1) : status;
}

FileStatus bfileWriteLine(BasicFile* file, const String* text) {
    return text == nullptr ? kFileNull : bfileWriteLineVal(file, stringText(text), text->length);
}

FileStatus bfileFlush(BasicFile* file) {
    if (file == nullptr) return kFileNull;
    if (requireMode(file, bfileIsWritable(file), "bfileFlush: #::226 - file %i") != kFileDone)
        return kFileWrongMode;
    if (fileStreamFlush(file->stream)) return kFileDone;
    logError(file->logger, "bfileFlush: #::228 - file %i", file->name, file->identity);
    logLocation(file->logger, kLogError);
    return kFileNotFlushed;
}

namespace {

// Reads one block of each. Equal stands for "so far".
FileComparison compareBlocks(BasicFile* a, BasicFile* b, String* blockA, String* blockB) {
    const FileStatus statusA = bfileRead(a, blockA, kFileBlockSize);
    const FileStatus statusB = bfileRead(b, blockB, kFileBlockSize);
    if ((statusA != kFileDone && statusA != kFileAtEnd) ||
        (statusB != kFileDone && statusB != kFileAtEnd))
        return FileComparison::Failed;
    return stringView(blockA) == stringView(blockB) ? FileComparison::Equal
                                                    : FileComparison::Different;
}

FileComparison compareOpen(BasicFile* a, BasicFile* b) {
    Owned<String> blockA(stringNewEmpty());
    Owned<String> blockB(stringNewEmpty());
    if (!blockA || !blockB) return FileComparison::Failed;
    while (!bfileAtEnd(a) && !bfileAtEnd(b)) {
        const FileComparison result = compareBlocks(a, b, blockA.get(), blockB.get());
        if (result != FileComparison::Equal) return result;
    }
    return bfileAtEnd(a) && bfileAtEnd(b) ? FileComparison::Equal : FileComparison::Different;
}

}  // namespace

FileComparison bfileCompare(BasicFile* a, BasicFile* b) {
    if (bfileOpen(a, kFileRead) != kFileDone) return FileComparison::Failed;
    FileComparison result = FileComparison::Failed;
    if (bfileOpen(b, kFileRead) == kFileDone) {
        result = compareOpen(a, b);
        bfileClose(b);
    }
    bfileClose(a);
    return result;
}
