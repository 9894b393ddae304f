#include <algorithm>

#include "containers/Vector.h"
#include "files/Bundle.h"
#include "files/BundleFormat.h"
#include "paths/PathOperations.h"
#include "paths/Paths.h"
#include "strings/StringNumbers.h"

namespace {

constexpr uint32_t kLineLimit = 2048;

// A run of `bundleExplode`.
struct Exploding {
    BasicFile* bundle;
    const String* directory;
    Vector* extracted;
    Logger* logger;
    Owned<String> line = Owned<String>(stringNewEmpty());
    Owned<String> block = Owned<String>(stringNewEmpty());
    bool whole = true;  // no read and no write was short
};

bool openBundle(BasicFile* file, Logger* logger) {
    FileStatus status = bfileOpen(file, kFileRead);
    if (status != kFileDone)
        return bundleFail(logger, "bundleExplode: #::202 #::14", file->name, status);
    logTrace(logger, "bundleExplode: Validating bundle");
    Owned<String> header(stringNewEmpty());
    status = bfileRead(file, header.get(), kBundleHeader.size());
    if (status != kFileDone && status != kFileShort)
        return bundleFail(logger, "bundleExplode: #::204 #::14", file->name, status);
    if (!bundleHeaderIsValid(header.get(), file->name, "bundleExplode", logger)) return false;
    logTrace(logger, "bundleExplode: The bundle is valid");
    return true;
}

// `kFileAtEnd` and failures other than a short read are the caller's matter.
FileStatus readLine(Exploding* from) {
    const FileStatus status =
        bfileReadUntil(from->bundle, from->line.get(), '\n', nullptr, kLineLimit);
    if (status == kFileShort) from->whole = false;
    return status == kFileShort ? kFileDone : status;
}

// Where the file named by the line goes: a path that is free. The caller owns it.
String* targetPath(const Exploding* from) {
    // The system sees a name up to its first zero byte, and so must the search for
    // a free one.
    std::string_view name = stringView(from->line.get());
    name = name.substr(0, name.find('\0'));
    Owned<String> path(stringClone(from->directory));
    const bool made = pathEnsureTrailingSeparator(path.get()) &&
                      stringAppendView(path.get(), name) && pathMakeUnique(path.get(), false);
    return made ? path.release() : nullptr;
}

// A body that ends too early leaves a short file behind, which is no failure.
bool copyBody(Exploding* from, BasicFile* target, int64_t size) {
    const String* name = from->bundle->name;
    logTrace(from->logger, "bundleExplode:    Copying from \"%S\" to target \"%S\"", name,
             target->name);
    int64_t left = size;
    for (; left > 0 && !bfileAtEnd(from->bundle); left -= kBundleBlock) {
        const auto count = static_cast<uint32_t>(std::min<int64_t>(left, kBundleBlock));
        FileStatus status = bfileRead(from->bundle, from->block.get(), count);
        if (from->block->length < count) from->whole = false;
        if (status != kFileDone && status != kFileShort && status != kFileAtEnd)
            return bundleFail(from->logger, "bundleExplode: #::204 #::14", name, status);
        status = bfileWrite(target, from->block.get());
        if (status == kFileShort) from->whole = false;
        if (status != kFileDone && status != kFileShort)
            return bundleFail(from->logger, "bundleExplode: #::205 #::14", target->name, status);
    }
    if (left > 0) from->whole = false;
    return true;
}

// Makes the file that the line names, of the next `size` bytes.
bool extract(Exploding* from, int64_t size) {
    Logger* logger = from->logger;
    Owned<String> path(targetPath(from));
    Owned<BasicFile> target(bfileInitStr(path.get()));
    if (!target) return bundleOutOfMemory(logger, "bundleExplode: #::100");
    logTrace(logger, "bundleExplode:    The full explode path (target file) is \"%S\"", path.get());
    FileStatus status = bfileOpen(target.get(), kFileWrite);
    if (status != kFileDone)
        return bundleFail(logger, "bundleExplode: #::203 #::14", path.get(), status);
    logTrace(logger, "bundleExplode:    The target file \"%S\" has been opened", path.get());
    if (!copyBody(from, target.get(), size)) return false;
    logTrace(logger, "bundleExplode: File extracted from bundle: \"%S\"", path.get());
    status = bfileClose(target.get());
    if (status != kFileDone)
        return bundleFail(logger, "bundleExplode: #::205 #::14", path.get(), status);
    if (from->extracted == nullptr) return true;
    if (!vectorAppend(from->extracted, path.get()))
        return bundleOutOfMemory(logger, "bundleExplode: #::100");
    path.release();
    return true;
}

// What is no size, or none but 0, is passed over, one line at a time.
bool extractAll(Exploding* from) {
    const String* name = from->bundle->name;
    while (!bfileAtEnd(from->bundle)) {
        FileStatus status = readLine(from);
        if (status == kFileAtEnd) break;
        if (status != kFileDone)
            return bundleFail(from->logger, "bundleExplode: #::204 #::14", name, status);
        const int64_t size = stringToInt64(from->line.get());
        if (size == 0) continue;
        logTrace(from->logger, "bundleExplode:    Size of next file is %I byte(s)", size);
        status = readLine(from);
        if (status != kFileDone)
            return bundleFail(from->logger, "bundleExplode: #::204 #::14", name, status);
        logTrace(from->logger, "bundleExplode:    The base name of the file is \"%S\"",
                 from->line.get());
        if (!extract(from, size)) return false;
    }
    return true;
}

}  // namespace

bool bundleExplode(const String* source, const String* directory, Vector* extracted,
                   bool deleteOriginal, Logger* logger) {
    if (source == nullptr || directory == nullptr) {
        logError(logger, "bundleExplode: #::10");
        return false;
    }
    logTrace(logger, "bundleExplode: Exploding bundle \"%S\" to \"%S\"", source, directory);
    Owned<String> plain(bundlePlainName(source, false));
    if (!plain) return bundleOutOfMemory(logger, "bundleExplode: #::100");
    if (stringView(source).ends_with(".gz") && !bundleUnZip(source, deleteOriginal, logger))
        return false;
    Owned<BasicFile> file(bfileInitStr(plain.get()));
    Exploding from{file.get(), directory, extracted, logger};
    if (!file || !from.line || !from.block)
        return bundleOutOfMemory(logger, "bundleExplode: #::100");
    if (!openBundle(file.get(), logger)) return false;
    logTrace(logger, "bundleExplode: Copying contents of bundle to individual files");
    if (!extractAll(&from)) return false;
    bfileClose(file.get());
    if (deleteOriginal && from.whole) {
        logTrace(logger, "bundleExplode: Deleting original");
        if (pathDelete(plain.get(), true))
            logTrace(logger, "bundleExplode: Original deleted");
        else
            logError(logger, "bundleExplode: #::206", plain.get());
    }
    logTrace(logger, "bundleExplode: Bundle exploded");
    return true;
}
