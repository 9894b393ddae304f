#include "files/Bundle.h"

#include "containers/Vector.h"
#include "files/BundleFormat.h"
#include "paths/PathOperations.h"
#include "paths/Paths.h"
#include "platform/directories.h"
#include "platform/files.h"
#include "strings/StringEdit.h"
#include "strings/StringFind.h"
#include "strings/StringFormat.h"
#include "strings/StringMatch.h"
#include "strings/StringNumbers.h"

bool bundleHeaderIsValid(String* header, const String* name, const char* function, Logger* logger) {
    if (!stringView(header).starts_with(kBundlePrefix)) {
        logError(logger, "%s: #::208", function, name);
        return false;
    }
    stringErase(header, 0, kBundlePrefix.size());
    stringTrimRight(header);
    const int32_t version = stringToInt32(header);
    if (version == kBundleVersion) return true;
    logError(logger, "%s: #::209", function, name, version);
    return false;
}

FileStatus bundleOpenSource(BasicFile* source) {
    if (source != nullptr && osPathWaits(stringView(source->name))) return kFileCannotOpen;
    return bfileOpen(source, kFileRead);
}

bool bundleIsSameFile(const String* a, const String* b) {
    OsFileId idA;
    OsFileId idB;
    return osFileId(stringView(a), &idA) == 0 && osFileId(stringView(b), &idB) == 0 && idA == idB;
}

String* bundlePlainName(const String* name, bool anyCase) {
    Owned<String> plain(stringClone(name));
    const bool compressed =
        anyCase ? stringMatchNoCaseText(name, "*.gz") : stringView(name).ends_with(".gz");
    if (plain && compressed) pathCutSuffix(plain.get());
    return plain.release();
}

namespace {

const String* pathAt(const Vector* files, uint32_t index) {
    return static_cast<const String*>(vectorGet(files, index));
}

// A run of `bundleAppend`.
struct Appending {
    BasicFile* bundle;
    Logger* logger;
    Owned<String> block = Owned<String>(stringNewEmpty());
    bool whole = true;  // all bytes have come and gone, as many as their sizes said
};

bool cannotRead(Logger* logger, const String* path, const char* reason) {
    logError(logger, "bundleAppend: #::202 #::15", path, reason);
    return false;
}

// Looks, before anything is written, for what no bundle can take in: itself, since
// it would grow as it is read, and names that would end their line too early.
bool canHold(const String* bundle, const Vector* files, Logger* logger) {
    for (uint32_t at = 0; at < vectorSize(files); ++at) {
        const String* path = pathAt(files, at);
        if (bundleIsSameFile(bundle, path)) return cannotRead(logger, path, "it is the bundle");
        Owned<String> name(pathBaseName(path));
        if (!name) return bundleOutOfMemory(logger, "bundleAppend: #::100");
        if (stringFindChar(name.get(), '\n') != kStringNotFound)
            return cannotRead(logger, path, "its name holds a line end");
    }
    return true;
}

// A short write is remembered and passed over.
bool add(Appending* to, std::string_view bytes) {
    const FileStatus status = bundleWriteView(to->bundle, bytes);
    if (status == kFileShort) to->whole = false;
    if (status == kFileDone || status == kFileShort) return true;
    return bundleFail(to->logger, "bundleAppend: #::205 #::14", to->bundle->name, status);
}

bool addLines(Appending* to, const String* path, uint64_t size) {
    Owned<String> name(pathBaseName(path));
    Owned<String> lines(stringNewEmpty());
    if (!name || !stringFormat(lines.get(), "%I\n%S\n", size, name))
        return bundleOutOfMemory(to->logger, "bundleAppend: #::100");
    return add(to, stringView(lines.get()));
}

bool addBody(Appending* to, BasicFile* source, uint64_t size) {
    uint64_t added = 0;
    while (!bfileAtEnd(source)) {
        const FileStatus status = bfileRead(source, to->block.get(), kBundleBlock);
        if (status == kFileAtEnd) break;
        if (status == kFileShort) to->whole = false;
        if (status != kFileDone && status != kFileShort)
            return bundleFail(to->logger, "bundleAppend: #::204 #::14", source->name, status);
        if (!add(to, stringView(to->block.get()))) return false;
        added += to->block->length;
    }
    if (added != size) to->whole = false;
    return true;
}

bool addFile(Appending* to, const String* path) {
    const uint64_t size = pathFileSize(path);
    if (!addLines(to, path, size)) return false;
    Owned<BasicFile> source(bfileInitStr(path));
    const FileStatus status = bundleOpenSource(source.get());
    if (status != kFileDone && pathFileExists(path))
        return bundleFail(to->logger, "bundleAppend: #::202 #::14", path, status);
    if (status != kFileDone) return cannotRead(to->logger, path, "not found");
    if (!addBody(to, source.get(), size)) return false;
    logTrace(to->logger, "bundleAppend: File added to bundle: \"%S\"", path);
    return true;
}

// Opens the bundle for adding, once its header is found good.
bool openForAppending(BasicFile* file, Logger* logger) {
    FileStatus status = bfileOpen(file, kFileRead);
    if (status != kFileDone)
        return bundleFail(logger, "bundleAppend: #::202 #::14", file->name, status);
    Owned<String> header(stringNewEmpty());
    status = bfileRead(file, header.get(), kBundleHeader.size());
    if (status != kFileDone)
        return bundleFail(logger, "bundleAppend: #::204 #::14", file->name, status);
    if (!bundleHeaderIsValid(header.get(), file->name, "bundleAppend", logger)) return false;
    bfileClose(file);
    status = bfileOpen(file, kFileAppend);
    return status == kFileDone ||
           bundleFail(logger, "bundleAppend: #::203 #::14", file->name, status);
}

void deleteFiles(const Vector* files, Logger* logger) {
    logTrace(logger, "bundleAppend: Deleting originals");
    for (uint32_t at = 0; at < vectorSize(files); ++at)
        if (!pathDelete(pathAt(files, at), true))
            logError(logger, "bundleAppend: #::206", pathAt(files, at));
}

// Makes the plain bundle with its header only.
bool makeEmpty(const String* name, Logger* logger) {
    Owned<BasicFile> file(bfileInitStr(name));
    FileStatus status = bfileOpen(file.get(), kFileWrite);
    if (status != kFileDone) return bundleFail(logger, "bundleMake: #::203 #::14", name, status);
    status = bundleWriteView(file.get(), kBundleHeader);
    if (status == kFileDone) status = bfileClose(file.get());
    return status == kFileDone || bundleFail(logger, "bundleMake: #::205 #::14", name, status);
}

}  // namespace

bool bundleMake(const String* target, const Vector* files, bool zip, bool deleteOriginals,
                Logger* logger) {
    logTrace(logger, "bundleMake: Making bundle");
    if (target == nullptr) {
        logError(logger, "bundleMake: #::10");
        return false;
    }
    Owned<String> plain(bundlePlainName(target, true));
    if (!plain) return bundleOutOfMemory(logger, "bundleMake: #::100");
    // The name of the plain bundle may be that of a source, which would be emptied.
    if (!canHold(plain.get(), files, logger)) return false;
    if (!makeEmpty(plain.get(), logger)) return false;
    if (files != nullptr && !bundleAppend(plain.get(), files, deleteOriginals, logger)) {
        pathDelete(plain.get(), true);
        return false;
    }
    if (zip && !bundleZip(plain.get(), true, logger)) return false;
    logTrace(logger, "bundleMake: Bundle made");
    return true;
}

bool bundleAppend(const String* bundle, const Vector* files, bool deleteOriginals, Logger* logger) {
    logTrace(logger, "bundleAppend: Appending files to bundle");
    if (bundle == nullptr || files == nullptr) {
        logError(logger, "bundleAppend: #::10");
        return false;
    }
    Owned<BasicFile> file(bfileInitStr(bundle));
    Appending to{file.get(), logger};
    if (!file || !to.block) return bundleOutOfMemory(logger, "bundleAppend: #::100");
    if (!canHold(bundle, files, logger) || !openForAppending(file.get(), logger)) return false;
    for (uint32_t at = 0; at < vectorSize(files); ++at)
        if (!addFile(&to, pathAt(files, at))) return false;
    const FileStatus closed = bfileClose(file.get());
    if (closed != kFileDone)
        return bundleFail(logger, "bundleAppend: #::205 #::14", bundle, closed);
    if (deleteOriginals && to.whole) deleteFiles(files, logger);
    logTrace(logger, "bundleAppend: Files appended to bundle");
    return true;
}
