#include "posix/FileCopy.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/files.h"

namespace {

constexpr size_t kBlock = 64 * 1024;
constexpr mode_t kPermissions = 0777;

// Were a pipe or a device put in a file's place meanwhile, opening it would at
// least not wait.
constexpr int kCareful = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

int refusalOf(mode_t mode) {
    if (S_ISREG(mode)) return 0;
    return S_ISDIR(mode) ? EISDIR : EOPNOTSUPP;
}

// Looks what the name leads to, opens it, and makes sure that it is that still.
// A name that must be no link comes from a listing, which has told what it is.
int openRegular(int directory, const char* name, int flags, int* handle, struct stat* status) {
    if ((flags & O_NOFOLLOW) == 0) {
        if (fstatat(directory, name, status, 0) != 0) return errno;
        if (int refusal = refusalOf(status->st_mode)) return refusal;
    }
    *handle = openat(directory, name, flags | kCareful);
    if (*handle < 0 || fstat(*handle, status) != 0) return errno;
    return refusalOf(status->st_mode);
}

bool isOutOfRoom(int error) {
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

bool isSparse(const struct stat& status) {
    return status.st_blocks < status.st_size / 512;
}

}  // namespace

FileCopy::~FileCopy() {
    if (source_ >= 0) close(source_);
    if (target_ >= 0) close(target_);
    if (isBegun_) unlinkat(directory_, name_, 0);
}

int FileCopy::openSource(int directory, const char* name, int flags) {
    return openRegular(directory, name, O_RDONLY | flags, &source_, &status_);
}

int FileCopy::openTarget(int directory, const char* name, bool overwrite) {
    directory_ = directory;
    name_ = name;
    int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    target_ = openat(directory, name, flags, status_.st_mode & kPermissions);
    isBegun_ = target_ >= 0;
    mustCut_ = !isBegun_ || isSparse(status_);
    if (isBegun_) return 0;
    if (errno != EEXIST || !overwrite) return errno;
    struct stat old;
    int error = openRegular(directory, name, O_WRONLY, &target_, &old);
    if (error != 0) return error;
    if (old.st_dev == status_.st_dev && old.st_ino == status_.st_ino) return EEXIST;
    if (isSparse(status_)) {
        isBegun_ = true;
        return ftruncate(target_, 0) == 0 ? 0 : errno;
    }
    return reserve(old.st_size);
}

// Takes the room that the target still needs, so that a full disk shows while
// the old contents are there.
int FileCopy::reserve(off_t oldSize) {
    if (status_.st_size > oldSize && fallocate(target_, 0, 0, status_.st_size) != 0 &&
        isOutOfRoom(errno)) {
        int error = errno;
        return ftruncate(target_, oldSize) == 0 ? error : errno;
    }
    isBegun_ = true;
    return 0;
}

int FileCopy::run(bool sync) {
    int error = isSparse(status_) ? copyParts() : copyRange(status_.st_size);
    // A file of the system may have no size before it is read.
    if (error == 0 && status_.st_size == 0) error = copyRest();
    if (error == 0 && mustCut_ && ftruncate(target_, lseek(target_, 0, SEEK_CUR)) != 0)
        error = errno;
    if (error != 0) return error;
    // A file system without times still has the copy.
    const timespec times[] = {{0, UTIME_OMIT}, status_.st_mtim};
    if (futimens(target_, times) != 0) errno = 0;
    if (sync && fsync(target_) != 0) return errno;
    error = osFileClose(target_);
    target_ = -1;
    if (error == 0) isBegun_ = false;
    return error;
}

// Copies the parts of a file with holes, and leaves the holes.
int FileCopy::copyParts() {
    for (off_t at = 0; at < status_.st_size;) {
        off_t data = lseek(source_, at, SEEK_DATA);
        if (data < 0 && errno != ENXIO) return copyRange(status_.st_size);
        if (data < 0) break;
        at = lseek(source_, data, SEEK_HOLE);
        if (at < 0 || lseek(source_, data, SEEK_SET) < 0 || lseek(target_, data, SEEK_SET) < 0)
            return errno;
        if (int error = copyRange(at - data)) return error;
    }
    bool atEnd = lseek(source_, status_.st_size, SEEK_SET) >= 0 &&
                 lseek(target_, status_.st_size, SEEK_SET) >= 0;
    return atEnd ? 0 : errno;
}

// Copies so many bytes from where both files stand, or fewer at the source's end.
int FileCopy::copyRange(off_t size) {
    while (size > static_cast<off_t>(kBlock)) {
        ssize_t count =
            copy_file_range(source_, nullptr, target_, nullptr, static_cast<size_t>(size), 0);
        if (count < 0 && isOutOfRoom(errno)) return errno;
        if (count <= 0) break;  // not between these two: block by block, then
        size -= count;
    }
    while (size > 0) {
        size_t got = 0;
        if (int error = copyBlock(static_cast<size_t>(size), &got)) return error;
        if (got == 0) break;
        size -= static_cast<off_t>(got);
    }
    return 0;
}

int FileCopy::copyRest() {
    for (size_t got = 1; got > 0;) {
        if (int error = copyBlock(kBlock, &got)) return error;
    }
    return 0;
}

int FileCopy::copyBlock(size_t most, size_t* got) {
    char block[kBlock];
    size_t written = 0;
    int error = osFileRead(source_, block, most < kBlock ? most : kBlock, got);
    return error == 0 ? osFileWrite(target_, block, *got, &written) : error;
}
