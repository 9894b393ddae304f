#include "paths/PathOperations.h"

#include <string>
#include <utility>

#include "files/BasicFile.h"
#include "paths/PathError.h"
#include "paths/PathTrees.h"
#include "paths/Paths.h"
#include "platform/files.h"
#include "strings/String.h"
#include "strings/StringCompare.h"

namespace {

constexpr uint32_t kReadOnlyMode = 0555;
constexpr uint32_t kFullMode = 0777;
constexpr uint32_t kWriteBit = 02;

// The names under which the parts of a move between file systems grow.
constexpr char kPartName[] = "moving.part";

bool failSystem(int error) {
    return error == 0 || pathFailSystem(error);
}

bool haveBoth(const String* source, const String* target) {
    pathClearError();
    return (!stringIsEmpty(source) && !stringIsEmpty(target)) || pathFail(kPathEmpty);
}

bool leadToOneThing(const String* source, const String* target, OsFileId* id) {
    OsFileId other;
    return osFileId(stringView(source), id) == 0 && osFileId(stringView(target), &other) == 0 &&
           *id == other;
}

// A move between file systems: the parents of both, and the names there.
struct LongMove {
    OpenDirectory from;
    OpenDirectory to;
    std::string name;
    std::string newName;
    std::string partName;
    OsEntryKind kind = OsEntryKind::Other;
};

bool prepare(const String* source, const String* target, OsEntryKind kind, LongMove* move) {
    std::string_view name;
    std::string_view newName;
    if (!pathReachParent(stringView(source), &move->from, &name) ||
        !pathReachParent(stringView(target), &move->to, &newName))
        return false;
    Owned<String> part(pathDirectoryPart(target));
    if (!stringAppendView(part.get(), kPartName)) return pathFail(kPathNoMemory);
    if (!pathMakeUnique(part.get(), true)) return false;
    Owned<String> partName(pathBaseName(part.get()));
    if (!partName) return pathFail(kPathNoMemory);
    move->name = name;
    move->newName = newName;
    move->partName = stringView(partName.get());
    move->kind = kind;
    return true;
}

// Removes an entry with all that is in it.
bool removeWhole(OsDirectory* directory, const char* name, OsEntryKind kind) {
    if (kind == OsEntryKind::Directory) {
        OpenDirectory top;
        int error = osDirectoryOpenEntry(directory, name, top.receive());
        if (error != 0) return pathFailSystem(error);
        if (!pathRemoveTree(std::move(top), true)) return false;
    }
    return pathRemoveEntry(directory, name, kind, true);
}

// Copies what is to be moved beside its place, and brings it to the disk. `begun`
// tells whether there is something of ours, also after a failure.
bool copyPart(const LongMove& move, bool* begun) {
    OsDirectory* to = move.to.get();
    const char* name = move.name.c_str();
    const char* part = move.partName.c_str();
    if (move.kind != OsEntryKind::Directory) {
        int error = osEntryCopy(move.from.get(), name, move.kind, to, part, OsSync::AtOnce);
        *begun = error == 0;
        return failSystem(error);
    }
    OpenDirectory source;
    OpenDirectory target;
    int error = osDirectoryOpenEntry(move.from.get(), name, source.receive());
    if (error == 0) error = osEntryMakeDirectory(to, part, source.get());
    *begun = error == 0;
    if (error == 0) error = osDirectoryOpenEntry(to, part, target.receive());
    if (error != 0) return pathFailSystem(error);
    return pathCopyTree(std::move(source), std::move(target), OsSync::WithTree) &&
           failSystem(osTreeSync(to));
}

// Nothing is at the target before the copy is complete and on the disk, and
// nothing is deleted before that.
bool moveFar(const String* source, const String* target, OsEntryKind kind, bool replace) {
    LongMove move;
    if (!prepare(source, target, kind, &move)) return false;
    bool begun = false;
    const char* part = move.partName.c_str();
    if (copyPart(move, &begun)) {
        int error = osEntryMove(move.to.get(), part, move.newName.c_str(), replace);
        begun = error != 0;
        if (error == 0) error = osDirectorySync(move.to.get());
        if (failSystem(error)) return removeWhole(move.from.get(), move.name.c_str(), kind);
    }
    // What stopped the move is to be told, not what comes of the cleaning.
    PathErrorKeeper keeper;
    if (begun) removeWhole(move.to.get(), part, kind);
    return false;
}

// A file at the target that is read-only stands in the way once.
int moveOver(std::string_view source, std::string_view target, bool replace) {
    int error = osMove(source, target, replace);
    if (error != 0 && replace && osReadOnlyHinders(error) &&
        osChangeFlags(target, 0, kOsFileReadOnly) == 0)
        error = osMove(source, target, replace);
    return error;
}

// The comparison of two files that exist and have the same size.
bool haveSameContents(const String* a, const String* b) {
    Owned<BasicFile> first(bfileInitStr(a));
    Owned<BasicFile> second(bfileInitStr(b));
    if (!first || !second) return pathFail(kPathNoMemory);
    switch (bfileCompare(first.get(), second.get())) {
        case FileComparison::Equal:
            return true;
        case FileComparison::Different:
            return false;
        default:
            return pathFail(kPathCompareFailed);
    }
}

}  // namespace

bool pathCopy(const String* source, const String* target, bool overwrite) {
    if (!haveBoth(source, target)) return false;
    OsFileId id;
    if (leadToOneThing(source, target, &id)) return pathFail(kPathTargetExists);
    return failSystem(osFileCopy(stringView(source), stringView(target), overwrite));
}

bool pathDelete(const String* path, bool force) {
    pathClearError();
    if (stringIsEmpty(path)) return pathFail(kPathEmpty);
    int error = osFileDelete(stringView(path));
    if (error != 0 && force && osReadOnlyHinders(error) &&
        osChangeFlags(stringView(path), 0, kOsFileReadOnly) == 0)
        error = osFileDelete(stringView(path));
    return failSystem(error);
}

bool pathMove(const String* source, const String* target, bool overwrite) {
    if (!haveBoth(source, target)) return false;
    OsEntryKind kind;
    int error = osPathKind(pathWithoutEnd(stringView(source)), &kind);
    if (error != 0) return pathFailSystem(error);
    const bool isDirectory = kind == OsEntryKind::Directory;
    OsFileId id;
    if (leadToOneThing(source, target, &id) || (isDirectory && pathIsBelow(stringView(target), id)))
        return pathFail(kPathTargetExists);
    OsEntryKind old;
    bool replace = overwrite && osPathKind(pathWithoutEnd(stringView(target)), &old) == 0;
    if (replace && old == OsEntryKind::Directory) return pathFail(kPathIsDirectory);
    if (replace && isDirectory) {
        // Only a file can be put in a file's place.
        if (!pathDelete(target, true)) return false;
        replace = false;
    }
    error = moveOver(stringView(source), stringView(target), replace);
    if (osIsOtherFileSystem(error)) return moveFar(source, target, kind, replace);
    return failSystem(error);
}

bool pathMoveDirectory(const String* source, const String* target, bool overwrite) {
    Owned<String> from(stringClone(source));
    Owned<String> to(stringClone(target));
    bool cut = pathRemoveTrailingSeparator(from.get()) && pathRemoveTrailingSeparator(to.get());
    if (cut) return pathMove(from.get(), to.get(), overwrite);
    return haveBoth(source, target) && pathFail(kPathNoMemory);
}

uint32_t pathMode(const String* path) {
    FileInfo info;
    if (!getFileInfo(path, &info)) return 0;
    const uint32_t mode = (info.flags & kOsFileReadOnly) != 0 ? kReadOnlyMode : kFullMode;
    fileInfoClear(&info);
    return mode;
}

bool pathSetMode(const String* path, uint32_t mode) {
    const uint32_t old = pathMode(path);
    if (old == 0) return false;
    if (((old ^ mode) & kWriteBit) == 0) return true;
    return pathSetAttributes(path, kOsFileReadOnly, (mode & kWriteBit) != 0);
}

bool pathSetAttributes(const String* path, uint32_t flags, bool clear) {
    pathClearError();
    if (stringIsEmpty(path)) return pathFail(kPathEmpty);
    return failSystem(osChangeFlags(stringView(path), clear ? 0 : flags, clear ? flags : 0));
}

bool pathAreSameFile(const String* a, const String* b) {
    pathClearError();
    if (a == nullptr || b == nullptr) return a == b;
    if (stringEqual(a, b)) return true;
    if (!pathExists(a) || !pathExists(b)) return pathFail(kPathNotFound);
    if (pathIsDirectory(a) || pathIsDirectory(b)) return pathFail(kPathIsDirectory);
    const uint64_t size = pathFileSize(a);
    const uint64_t other = pathFileSize(b);
    return size != 0 && size == other && haveSameContents(a, b);
}
