#include "platform/fileoperations.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>

#include "platform/files.h"
#include "posix/FileCopy.h"
#include "posix/OpenDirectory.h"
#include "posix/SystemPath.h"

namespace {

constexpr mode_t kPermissions = 0777;
constexpr mode_t kOwnerWorks = 0700;
constexpr mode_t kAllWrite = S_IWUSR | S_IWGRP | S_IWOTH;

int copyLink(int from, const char* name, int to, const char* newName) {
    char target[PATH_MAX];
    ssize_t length = readlinkat(from, name, target, sizeof target);
    if (length < 0) return errno;
    if (length == static_cast<ssize_t>(sizeof target)) return ENAMETOOLONG;
    target[length] = '\0';
    return symlinkat(target, to, newName) == 0 ? 0 : errno;
}

int makeDirectoryLike(int parent, const char* name, OsDirectory* like) {
    struct stat status;
    if (fstat(like->handle, &status) != 0) return errno;
    mode_t mode = (status.st_mode & kPermissions) | kOwnerWorks;
    return mkdirat(parent, name, mode) == 0 ? 0 : errno;
}

int moveAt(int fromParent, const char* from, int toParent, const char* to, bool replace) {
    unsigned flags = replace ? 0 : RENAME_NOREPLACE;
    if (renameat2(fromParent, from, toParent, to, flags) == 0) return 0;
    if (replace || errno != EINVAL) return errno;
    // A file system that cannot refuse by itself, or a target below the source.
    struct stat status;
    if (fstatat(toParent, to, &status, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
    return renameat(fromParent, from, toParent, to) == 0 ? 0 : errno;
}

int withReadable(OsDirectory* directory, int (*sync)(int)) {
    int handle = openat(directory->handle, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return errno;
    int error = sync(handle) == 0 ? 0 : errno;
    close(handle);
    return error;
}

int changeMode(int parent, const char* name, mode_t set, mode_t clear) {
    struct stat status;
    if (fstatat(parent, name, &status, 0) != 0) return errno;
    mode_t mode = ((status.st_mode & ~clear) | set) & 07777;
    return fchmodat(parent, name, mode, 0) == 0 ? 0 : errno;
}

}  // namespace

int osFileCopy(std::string_view source, std::string_view target, bool overwrite) {
    FileCopy copy;
    int error = copy.openSource(AT_FDCWD, SystemPath(source).c_str(), 0);
    SystemPath to(target);
    if (error == 0) error = copy.openTarget(AT_FDCWD, to.c_str(), overwrite);
    return error == 0 ? copy.run(false) : error;
}

int osEntryCopy(OsDirectory* from, const char* name, OsEntryKind kind, OsDirectory* to,
                const char* newName, OsSync sync) {
    if (kind == OsEntryKind::Link) return copyLink(from->handle, name, to->handle, newName);
    if (kind != OsEntryKind::File) return EOPNOTSUPP;
    FileCopy copy;
    int error = copy.openSource(from->handle, name, O_NOFOLLOW);
    if (error == 0) error = copy.openTarget(to->handle, newName, false);
    return error == 0 ? copy.run(sync == OsSync::AtOnce) : error;
}

int osEntryMakeDirectory(OsDirectory* parent, const char* name, OsDirectory* like) {
    return makeDirectoryLike(parent->handle, name, like);
}

int osMakeDirectoryLike(std::string_view path, OsDirectory* like) {
    return makeDirectoryLike(AT_FDCWD, SystemPath(path).c_str(), like);
}

int osDirectorySync(OsDirectory* directory) {
    return withReadable(directory, fsync);
}

int osTreeSync(OsDirectory* top) {
    // One call for all files: a sync of each would take a turn of the disk each.
    return withReadable(top, syncfs);
}

int osFileDelete(std::string_view path) {
    return unlink(SystemPath(path).c_str()) == 0 ? 0 : errno;
}

int osMove(std::string_view source, std::string_view target, bool replace) {
    SystemPath to(target);
    return moveAt(AT_FDCWD, SystemPath(source).c_str(), AT_FDCWD, to.c_str(), replace);
}

int osEntryMove(OsDirectory* directory, const char* name, const char* newName, bool replace) {
    return moveAt(directory->handle, name, directory->handle, newName, replace);
}

bool osIsOtherFileSystem(int error) {
    return error == EXDEV;
}

bool osReadOnlyHinders(int) {
    return false;  // the rights to the directory decide here
}

int osChangeFlags(std::string_view path, uint32_t set, uint32_t clear) {
    mode_t more = (clear & kOsFileReadOnly) != 0 ? S_IWUSR : 0;
    mode_t less = (set & kOsFileReadOnly) != 0 ? kAllWrite : 0;
    return changeMode(AT_FDCWD, SystemPath(path).c_str(), more, less);
}

bool osEntryIsReadOnly(OsDirectory* directory, const char* name) {
    struct stat status;
    return fstatat(directory->handle, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           (status.st_mode & S_IWUSR) == 0;
}

int osEntryClearReadOnly(OsDirectory* directory, const char* name) {
    return changeMode(directory->handle, name, S_IWUSR, 0);
}
