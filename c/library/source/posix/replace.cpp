#include "platform/replace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "posix/SystemPath.h"

namespace {

constexpr mode_t kPrivateMode = 0600;
constexpr mode_t kPermissions = 0777;
constexpr mode_t kAllModeBits = 07777;

}  // namespace

int osReplaceRemove(std::string_view path) {
    return unlink(SystemPath(path).c_str()) == 0 || errno == ENOENT ? 0 : errno;
}

int osReplaceCreate(std::string_view, std::string_view path) {
    const int handle =
        open(SystemPath(path).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kPrivateMode);
    if (handle < 0) return errno;
    close(handle);
    return 0;
}

int osReplaceCopyRights(std::string_view from, std::string_view to) {
    const SystemPath target(to);
    struct stat wanted;
    if (stat(SystemPath(from).c_str(), &wanted) != 0) return errno;
    int error = 0;
    // The owner goes first: a change of it takes mode bits away. Where it is
    // refused the group may still be one that this user has.
    if (chown(target.c_str(), wanted.st_uid, wanted.st_gid) != 0) {
        error = errno;
        if (chown(target.c_str(), static_cast<uid_t>(-1), wanted.st_gid) != 0) error = errno;
    }
    // A program must not gain the rights of another owner than the one it had.
    const mode_t mode = wanted.st_mode & (error == 0 ? kAllModeBits : kPermissions);
    if (chmod(target.c_str(), mode) != 0 && error == 0) error = errno;
    return error;
}

int osReplaceSync(OsFile file) {
    int result;
    do {
        result = fsync(file);
    } while (result != 0 && errno == EINTR);
    return result == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
}

int osReplaceRename(std::string_view from, std::string_view to) {
    const SystemPath target(to);
    struct stat there;
    if (lstat(target.c_str(), &there) == 0 && !S_ISREG(there.st_mode) && !S_ISLNK(there.st_mode))
        return S_ISDIR(there.st_mode) ? EISDIR : EEXIST;
    return rename(SystemPath(from).c_str(), target.c_str()) == 0 ? 0 : errno;
}
