#include "platform/directories.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "posix/OpenDirectory.h"
#include "posix/SystemPath.h"

namespace {

constexpr size_t kReadBlock = 64 * 1024;

OsEntryKind kindOf(mode_t mode) {
    switch (mode & S_IFMT) {
        case S_IFREG:
            return OsEntryKind::File;
        case S_IFDIR:
            return OsEntryKind::Directory;
        case S_IFLNK:
            return OsEntryKind::Link;
        default:
            return OsEntryKind::Other;
    }
}

// A file system may leave the kind out of its listing; what has gone since is
// left to those who reach for it.
OsEntryKind kindOf(int directory, const dirent64* entry) {
    struct stat status;
    switch (entry->d_type) {
        case DT_REG:
            return OsEntryKind::File;
        case DT_DIR:
            return OsEntryKind::Directory;
        case DT_LNK:
            return OsEntryKind::Link;
        case DT_UNKNOWN:
            if (fstatat(directory, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
                return OsEntryKind::File;
            return kindOf(status.st_mode);
        default:
            return OsEntryKind::Other;
    }
}

int openAt(int parent, const char* name, int how, OsDirectory** directory) {
    int handle = openat(parent, name, O_DIRECTORY | O_CLOEXEC | how);
    if (handle < 0) return errno;
    auto* opened = new (std::nothrow) OsDirectory{handle};
    if (opened == nullptr) {
        close(handle);
        return ENOMEM;
    }
    *directory = opened;
    return 0;
}

bool isDots(const char* name) {
    return strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
}

}  // namespace

int osDirectoryOpen(std::string_view path, bool followLink, OsDirectory** directory) {
    int how = followLink ? O_RDONLY : O_RDONLY | O_NOFOLLOW;
    return openAt(AT_FDCWD, SystemPath(path).c_str(), how, directory);
}

int osDirectoryReach(std::string_view path, OsDirectory** directory) {
    return openAt(AT_FDCWD, SystemPath(path).c_str(), O_PATH, directory);
}

int osDirectoryOpenEntry(OsDirectory* parent, const char* name, OsDirectory** directory) {
    return openAt(parent->handle, name, O_RDONLY | O_NOFOLLOW, directory);
}

int osDirectoryOpenParent(OsDirectory* directory, OsDirectory** parent) {
    return openAt(directory->handle, "..", O_PATH, parent);
}

void osDirectoryClose(OsDirectory** directory) {
    if (directory == nullptr || *directory == nullptr) return;
    close((*directory)->handle);
    delete *directory;
    *directory = nullptr;
}

int osDirectoryId(OsDirectory* directory, OsFileId* id) {
    struct stat status;
    if (fstat(directory->handle, &status) != 0) return errno;
    *id = {status.st_dev, status.st_ino};
    return 0;
}

int osFileId(std::string_view path, OsFileId* id) {
    struct stat status;
    if (stat(SystemPath(path).c_str(), &status) != 0) return errno;
    *id = {status.st_dev, status.st_ino};
    return 0;
}

int osDirectoryRead(OsDirectory* directory, OsEntryVisitor visitor, void* context) {
    alignas(dirent64) char block[kReadBlock];
    for (;;) {
        ssize_t size = getdents64(directory->handle, block, sizeof block);
        if (size <= 0) return size == 0 ? 0 : errno;
        for (ssize_t at = 0; at < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(block + at);
            at += entry->d_reclen;
            if (isDots(entry->d_name)) continue;
            if (!visitor(context, entry->d_name, kindOf(directory->handle, entry))) return 0;
        }
    }
}

int osPathKind(std::string_view path, OsEntryKind* kind) {
    struct stat status;
    if (lstat(SystemPath(path).c_str(), &status) != 0) return errno;
    *kind = kindOf(status.st_mode);
    return 0;
}

bool osEntryLeadsToDirectory(OsDirectory* directory, const char* name) {
    struct stat status;
    return fstatat(directory->handle, name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

int osEntryRemove(OsDirectory* directory, const char* name, OsEntryKind kind) {
    int flags = kind == OsEntryKind::Directory ? AT_REMOVEDIR : 0;
    return unlinkat(directory->handle, name, flags) == 0 ? 0 : errno;
}
