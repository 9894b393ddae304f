#include "files/Bundle.h"
#include "files/BundleFormat.h"
#include "files/ZFile.h"
#include "paths/PathOperations.h"
#include "paths/Paths.h"
#include "strings/StringMatch.h"

namespace {

// Of this size since the rule of the last block depends on it.
constexpr uint32_t kUnZipBlock = 4096;
constexpr uint32_t kSuffixLength = 3;  // of ".gz"

struct DeleteMessages {
    const char* begun;
    const char* failed;
    const char* done;
};
constexpr DeleteMessages kZipDeletes = {"bundleZipTrg: Deleting original", "bundleZipTrg: #::206",
                                        "bundleZipTrg: Original deleted"};
constexpr DeleteMessages kUnZipDeletes = {"bundleUnZip: Deleting original", "bundleUnZip: #::206",
                                          "bundleUnZip: Original deleted"};
constexpr DeleteMessages kAttachDeletes = {
    "bundleAttach: Deleting original", "bundleAttach: #::206", "bundleAttach: Original deleted"};

bool deleteSource(const String* source, const DeleteMessages& messages, Logger* logger) {
    logTrace(logger, messages.begun);
    if (!pathDelete(source, true)) {
        logError(logger, messages.failed, source);
        return false;
    }
    logTrace(logger, messages.done);
    return true;
}

// Opening the target, or deleting the source, would lose both.
bool refuseSameFile(const String* source, const String* target, const char* message,
                    Logger* logger) {
    return !bundleIsSameFile(source, target) ||
           bundleFail(logger, message, target, kFileCannotOpen);
}

bool compress(BasicFile* source, ZFile* target, Logger* logger) {
    Owned<String> block(stringNewEmpty());
    if (!block) return bundleOutOfMemory(logger, "bundleZipTrg: #::100");
    while (!bfileAtEnd(source)) {
        FileStatus status = bfileRead(source, block.get(), kBundleBlock);
        if (status != kFileDone && status != kFileAtEnd)
            return bundleFail(logger, "bundleZipTrg: #::204 #::14", source->name, status);
        status = zfileWrite(target, block.get());
        if (status != kFileDone)
            return bundleFail(logger, "bundleZipTrg: #::205 #::14", target->name, status);
    }
    const FileStatus status = zfileClose(target);
    return status == kFileDone ||
           bundleFail(logger, "bundleZipTrg: #::205 #::14", target->name, status);
}

// The end, when it is met at once, leaves the last block as it is and the block is
// written once more: on purpose.
bool decompress(ZFile* source, BasicFile* target, Logger* logger) {
    Owned<String> block(stringNewEmpty());
    if (!block) return bundleOutOfMemory(logger, "bundleUnZip: #::100");
    FileStatus status = kFileDone;
    while (source->atEnd == 0) {
        status = zfileRead(source, block.get(), kUnZipBlock);
        if (status != kFileDone && status != kFileAtEnd)
            return bundleFail(logger, "bundleUnZip: #::204 #::14", source->name, status);
        status = bfileWrite(target, block.get());
        if (status != kFileDone)
            return bundleFail(logger, "bundleUnZip: #::205 #::14", target->name, status);
    }
    // A stream that was cut off shows here.
    status = zfileClose(source);
    if (status != kFileDone)
        return bundleFail(logger, "bundleUnZip: #::204 #::14", source->name, status);
    status = bfileClose(target);
    return status == kFileDone ||
           bundleFail(logger, "bundleUnZip: #::205 #::14", target->name, status);
}

bool attach(BasicFile* source, BasicFile* target, Logger* logger) {
    Owned<String> block(stringNewEmpty());
    FileStatus status = bundleWriteView(target, kBundleMaker);
    if (status == kFileDone) status = bundleWriteView(target, kBundleMark);
    // The high half of the size is dropped: on purpose.
    auto left = static_cast<uint32_t>(pathFileSize(source->name));
    while (status == kFileDone && left > 0) {
        const uint32_t count = left < kBundleBlock ? left : kBundleBlock;
        const FileStatus got = bfileRead(source, block.get(), count);
        if (got != kFileDone) return bundleFail(logger, "bundleAttach: #::204", source->name, got);
        status = bfileWrite(target, block.get());
        left -= count;
    }
    if (status == kFileDone) status = bfileClose(target);
    return status == kFileDone || bundleFail(logger, "bundleAttach: #::205", target->name, status);
}

}  // namespace

bool bundleAttach(const String* source, const String* target, bool deleteOriginal, Logger* logger) {
    logTrace(logger, "bundleAttach: Attaching bundle");
    if (source == nullptr || target == nullptr) {
        logError(logger, "bundleAttach: #::10");
        return false;
    }
    if (deleteOriginal && !refuseSameFile(source, target, "bundleAttach: #::203", logger))
        return false;
    Owned<BasicFile> to(bfileInitStr(target));
    Owned<BasicFile> from(bfileInitStr(source));
    if (!to || !from) return bundleOutOfMemory(logger, "bundleAttach: #::100");
    FileStatus status = bfileOpen(to.get(), kFileAppend);
    if (status != kFileDone) return bundleFail(logger, "bundleAttach: #::203", target, status);
    status = bundleOpenSource(from.get());
    if (status != kFileDone) return bundleFail(logger, "bundleAttach: #::202", source, status);
    if (!attach(from.get(), to.get(), logger)) return false;
    from.reset();
    if (deleteOriginal && !deleteSource(source, kAttachDeletes, logger)) return false;
    logTrace(logger, "bundleAttach: Bundle attached");
    return true;
}

bool bundleZip(const String* source, bool deleteOriginal, Logger* logger) {
    if (source == nullptr) {
        logError(logger, "bundleZip: #::10");
        return false;
    }
    logTrace(logger, "bundleZip: Compressing file \"%S\"", source);
    Owned<String> target(stringClone(source));
    // Only the name ".gz" itself: a name that ends so gets a second one.
    const bool added =
        stringMatchNoCaseText(source, ".gz") || stringAppendText(target.get(), ".gz");
    if (!target || !added) return bundleOutOfMemory(logger, "bundleZip: #::100");
    return bundleZipTrg(source, target.get(), deleteOriginal, logger);
}

bool bundleZipTrg(const String* source, const String* target, bool deleteOriginal, Logger* logger) {
    if (source == nullptr || target == nullptr) {
        logError(logger, "bundleZipTrg: #::10");
        return false;
    }
    logTrace(logger, "bundleZipTrg: Compressing source file \"%S\" to target \"%S\"", source,
             target);
    Owned<BasicFile> from(bfileInitStr(source));
    Owned<ZFile> to(zfileInitStr(target));
    if (!from || !to) return bundleOutOfMemory(logger, "bundleZipTrg: #::100");
    FileStatus status = bundleOpenSource(from.get());
    if (status != kFileDone) return bundleFail(logger, "bundleZipTrg: #::202", source, status);
    if (!refuseSameFile(source, to->name, "bundleZipTrg: #::203", logger)) return false;
    status = zfileOpen(to.get(), kFileWrite);
    if (status != kFileDone) return bundleFail(logger, "bundleZipTrg: #::203", to->name, status);
    if (!compress(from.get(), to.get(), logger)) return false;
    from.reset();
    if (deleteOriginal && !deleteSource(source, kZipDeletes, logger)) return false;
    logTrace(logger, "bundleZipTrg: File compressed");
    return true;
}

bool bundleUnZip(const String* source, bool deleteOriginal, Logger* logger) {
    if (!stringMatchNoCaseText(source, "*.gz")) {
        logError(logger, "bundleUnZip: #::10");
        return false;
    }
    logTrace(logger, "bundleUnZip: De-compressing file \"%S\"", source);
    const std::string_view name = stringView(source);
    Owned<String> target(stringFromView(name.substr(0, name.size() - kSuffixLength)));
    if (!target) return bundleOutOfMemory(logger, "bundleUnZip: #::100");
    return bundleUnZipTrg(source, target.get(), deleteOriginal, logger);
}

bool bundleUnZipTrg(const String* source, const String* target, bool deleteOriginal,
                    Logger* logger) {
    if (source == nullptr || target == nullptr) {
        logError(logger, "bundleUnZip: #::10");
        return false;
    }
    logTrace(logger, "bundleUnZip: De-compressing source file \"%S\" to target \"%S\"", source,
             target);
    Owned<ZFile> from(zfileInitStr(source));
    Owned<BasicFile> to(bfileInitStr(target));
    if (!from || !to) return bundleOutOfMemory(logger, "bundleUnZip: #::100");
    FileStatus status = zfileOpen(from.get(), kFileRead);
    if (status != kFileDone) return bundleFail(logger, "bundleUnZip: #::202", from->name, status);
    if (!refuseSameFile(from->name, target, "bundleUnZip: #::203", logger)) return false;
    status = bfileOpen(to.get(), kFileWrite);
    if (status != kFileDone) return bundleFail(logger, "bundleUnZip: #::203", target, status);
    if (!decompress(from.get(), to.get(), logger)) return false;
    if (deleteOriginal && !deleteSource(source, kUnZipDeletes, logger)) return false;
    logTrace(logger, "bundleZip: File de-compressed");
    return true;
}
