#include "paths/PathTrees.h"

#include <string>

#include "paths/PathError.h"
#include "paths/PathOperations.h"
#include "paths/Paths.h"
#include "paths/TreeWalk.h"
#include "platform/files.h"
#include "strings/String.h"

namespace {

// One step of a copy; `targets` leads to where the entry goes.
bool copyStep(const TreeStep& step, DirectoryChain* targets, OsSync sync) {
    OsDirectory* to = targets->lowest();
    OpenDirectory made;
    int error = 0;
    switch (step.event) {
        case TreeEvent::Leave:
            return targets->pop();
        case TreeEvent::Enter:
            error = osEntryMakeDirectory(to, step.name, step.entered);
            if (error == 0) error = osDirectoryOpenEntry(to, step.name, made.receive());
            return error == 0 ? targets->push(made.release()) : pathFailSystem(error);
        default:
            error = osEntryCopy(step.directory, step.name, step.kind, to, step.name, sync);
            return error == 0 || pathFailSystem(error);
    }
}

size_t directoryLength(std::string_view path) {
    size_t separator = path.find_last_of("/\\");
    return separator == std::string_view::npos ? 0 : separator + 1;
}

// Such a path names no entry that could be taken out of its directory.
bool namesNoEntry(std::string_view name) {
    return name.empty() || name == "." || name == ".." || name.back() == ':';
}

// A system may refuse to remove what a read-only directory holds. Where the mark
// cannot be cleared, the removal tells.
void makeRemovable(OsDirectory* directory) {
    if (osEntryIsReadOnly(directory, ".")) osEntryClearReadOnly(directory, ".");
}

}  // namespace

bool pathCopyTree(OpenDirectory source, OpenDirectory target, OsSync sync) {
    DirectoryChain targets;
    TreeWalk walk;
    if (!targets.push(target.release()) || !walk.start(source.release())) return false;
    TreeStep step;
    while (walk.next(&step)) {
        if (step.event == TreeEvent::End) return true;
        if (!copyStep(step, &targets, sync)) return false;
    }
    return false;
}

bool pathRemoveTree(OpenDirectory top, bool force) {
    TreeWalk walk;
    if (force) makeRemovable(top.get());
    if (!walk.start(top.release())) return false;
    TreeStep step;
    while (walk.next(&step)) {
        if (step.event == TreeEvent::End) return true;
        if (step.event == TreeEvent::Enter && force) makeRemovable(step.entered);
        if (step.event == TreeEvent::Enter) continue;
        if (!pathRemoveEntry(step.directory, step.name, step.kind, force)) return false;
    }
    return false;
}

bool pathRemoveEntry(OsDirectory* directory, const char* name, OsEntryKind kind, bool force) {
    if (!force && kind == OsEntryKind::Directory && osEntryIsReadOnly(directory, name))
        return pathFail(kPathSystem);
    int error = osEntryRemove(directory, name, kind);
    if (error != 0 && force && osReadOnlyHinders(error) &&
        osEntryClearReadOnly(directory, name) == 0)
        error = osEntryRemove(directory, name, kind);
    return error == 0 || pathFailSystem(error);
}

bool pathIsBelow(std::string_view path, const OsFileId& directory) {
    path = pathWithoutEnd(path);
    std::string_view start = path.substr(0, directoryLength(path));
    OpenDirectory at;
    int error = osDirectoryReach(start.empty() ? "." : start, at.receive());
    OsFileId id;
    OsFileId last;
    while (error == 0 && osDirectoryId(at.get(), &id) == 0 && id != last) {
        if (id == directory) return true;
        last = id;
        OpenDirectory above;
        error = osDirectoryOpenParent(at.get(), above.receive());
        at = std::move(above);
    }
    return false;
}

std::string_view pathWithoutEnd(std::string_view path) {
    while (path.size() > 1 && pathIsSeparator(path.back())) path.remove_suffix(1);
    return path;
}

bool pathReachParent(std::string_view path, OpenDirectory* parent, std::string_view* name) {
    std::string_view text = pathWithoutEnd(path);
    size_t length = directoryLength(text);
    *name = text.substr(length);
    int error = osDirectoryReach(length == 0 ? "." : text.substr(0, length), parent->receive());
    return error == 0 || pathFailSystem(error);
}

bool pathCopyDirectory(const String* source, const String* target, bool overwrite) {
    pathClearError();
    if (stringIsEmpty(source) || stringIsEmpty(target)) return pathFail(kPathEmpty);
    if (!pathExists(source)) return pathFail(kPathNotFound);
    OpenDirectory from;
    OpenDirectory to;
    OsFileId id;
    OsFileId targetId;
    int error = osDirectoryOpen(stringView(source), true, from.receive());
    if (error == 0) error = osDirectoryId(from.get(), &id);
    if (error != 0) return pathFailSystem(error);
    // Removing the target would remove the source with it, or one lead into the other.
    bool isThere = osFileId(stringView(target), &targetId) == 0;
    if (isThere && (targetId == id || pathIsBelow(stringView(source), targetId)))
        return pathFail(kPathTargetExists);
    if (pathIsBelow(stringView(target), id)) return pathFail(kPathTargetExists);
    if (pathExists(target)) {
        if (!overwrite) return pathFail(kPathTargetExists);
        if (!pathRemoveDirectory(target, true, true)) return false;
    }
    pathClearError();
    error = osMakeDirectoryLike(stringView(target), from.get());
    if (error == 0)
        error = osDirectoryOpen(pathWithoutEnd(stringView(target)), false, to.receive());
    if (error != 0) return pathFailSystem(error);
    return pathCopyTree(std::move(from), std::move(to), OsSync::Sometime);
}

bool pathRemoveDirectory(const String* path, bool recursive, bool force) {
    if (stringIsEmpty(path)) pathClearError();
    if (stringIsEmpty(path)) return pathFail(kPathEmpty);
    if (!pathIsDirectory(path)) return pathFail(kPathNotDirectory);
    pathClearError();
    OpenDirectory parent;
    std::string_view name;
    if (!pathReachParent(stringView(path), &parent, &name)) return false;
    std::string entry(name);
    OsEntryKind kind;
    int error = osPathKind(pathWithoutEnd(stringView(path)), &kind);
    if (error != 0) return pathFailSystem(error);
    if (namesNoEntry(name)) {
        error = osEntryRemove(parent.get(), entry.c_str(), kind);
        return error == 0 || pathFailSystem(error);
    }
    if (recursive && kind == OsEntryKind::Directory) {
        OpenDirectory top;
        error = osDirectoryOpenEntry(parent.get(), entry.c_str(), top.receive());
        if (error != 0) return pathFailSystem(error);
        if (!pathRemoveTree(std::move(top), force)) return false;
    }
    return pathRemoveEntry(parent.get(), entry.c_str(), kind, force);
}
