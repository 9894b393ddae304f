#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "posix/SystemPath.h"

namespace {

constexpr int kOpenFlags[] = {
    -1,
    O_RDONLY,
    O_WRONLY | O_CREAT | O_TRUNC,
    O_WRONLY | O_CREAT | O_APPEND,
    O_RDWR,
    O_RDWR | O_CREAT | O_TRUNC,
    O_RDWR | O_CREAT | O_APPEND,
};
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kNewDirectoryMode = 0777;

// Seconds from 1900-01-01 to 1970-01-01, both UTC.
constexpr int64_t kSecondsTo1970 = 2208988800;

uint64_t millisecondsSince1900(const timespec& time) {
    int64_t seconds = static_cast<int64_t>(time.tv_sec) + kSecondsTo1970;
    if (seconds < 0) return 0;
    return static_cast<uint64_t>(seconds) * 1000 + static_cast<uint64_t>(time.tv_nsec) / 1000000;
}

bool isHiddenName(std::string_view path) {
    std::string_view name = path.substr(path.find_last_of("/\\") + 1);
    return name.size() > 1 && name[0] == '.' && name != "..";
}

}  // namespace

int osFileOpen(std::string_view path, uint32_t mode, OsFile* file) {
    if (mode < kOsOpenRead || mode > kOsOpenAppendRead) return EINVAL;
    int handle;
    do {
        handle = open(SystemPath(path).c_str(), kOpenFlags[mode] | O_CLOEXEC, kNewFileMode);
    } while (handle < 0 && errno == EINTR);
    if (handle < 0) return errno;
    // The system opens a directory for reading; its first read would fail.
    struct stat status;
    if (mode == kOsOpenRead && fstat(handle, &status) == 0 && S_ISDIR(status.st_mode)) {
        close(handle);
        return EISDIR;
    }
    *file = handle;
    return 0;
}

bool osPathWaits(std::string_view path) {
    struct stat status;
    if (stat(SystemPath(path).c_str(), &status) != 0) return false;
    return !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

int osFileRead(OsFile file, void* buffer, size_t size, size_t* got) {
    ssize_t count;
    do {
        count = read(file, buffer, size);
    } while (count < 0 && errno == EINTR);
    if (count < 0) return errno;
    *got = static_cast<size_t>(count);
    return 0;
}

int osFileWrite(OsFile file, const void* data, size_t size, size_t* written) {
    const char* bytes = static_cast<const char*>(data);
    *written = 0;
    while (*written < size) {
        ssize_t count = write(file, bytes + *written, size - *written);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        *written += static_cast<size_t>(count);
    }
    return 0;
}

int osFileSeek(OsFile file, int64_t offset, OsSeek from, uint64_t* position) {
    int whence = from == OsSeek::Start ? SEEK_SET : from == OsSeek::Current ? SEEK_CUR : SEEK_END;
    off_t place = lseek(file, offset, whence);
    if (place < 0) return errno;
    if (position != nullptr) *position = static_cast<uint64_t>(place);
    return 0;
}

int osFileClose(OsFile file) {
    // An interrupted close has closed here: a second one could hit another's file.
    if (close(file) != 0 && errno != EINTR) return errno;
    return 0;
}

int osFileInfo(std::string_view path, OsFileInfo* info) {
    struct stat status;
    if (stat(SystemPath(path).c_str(), &status) != 0) return errno;
    bool isDirectory = S_ISDIR(status.st_mode);
    *info = OsFileInfo();
    info->size = isDirectory ? 0 : static_cast<uint64_t>(status.st_size);
    if (isDirectory) info->flags |= kOsFileDirectory;
    if (isHiddenName(path)) info->flags |= kOsFileHidden;
    if ((status.st_mode & S_IWUSR) == 0) info->flags |= kOsFileReadOnly;
    info->accessed = millisecondsSince1900(status.st_atim);
    info->modified = millisecondsSince1900(status.st_mtim);
    return 0;
}

int osFullPath(std::string_view path, std::string* full) {
    std::string_view text = path.substr(0, path.find('\0'));
    if (text.empty()) return ENOENT;
    std::string result;
    if (text[0] != '/' && text[0] != '\\') {
        int error = osCurrentDirectory(&result);
        if (error != 0) return error;
        if (result.back() != '/') result += '/';
    }
    *full = result.append(text);
    return 0;
}

int osTrueName(std::string_view path, std::string* name) {
    struct stat status;
    if (lstat(SystemPath(path).c_str(), &status) != 0) return errno;
    *name = path.substr(path.find_last_of("/\\") + 1);
    return 0;
}

bool osDriveExists(std::string_view) {
    return false;
}

bool osLeadingSeparatorIsAbsolute() {
    return true;
}

int osCurrentDirectory(std::string* path) {
    char buffer[PATH_MAX];
    if (getcwd(buffer, sizeof buffer) == nullptr) return errno;
    *path = buffer;
    return 0;
}

int osSetCurrentDirectory(std::string_view path) {
    return chdir(SystemPath(path).c_str()) == 0 ? 0 : errno;
}

int osMakeDirectory(std::string_view path) {
    return mkdir(SystemPath(path).c_str(), kNewDirectoryMode) == 0 ? 0 : errno;
}

std::string osErrorText(int error) {
    char buffer[256];
    const char* text = strerror_r(error, buffer, sizeof buffer);
    return text == nullptr ? std::string() : std::string(text);
}
