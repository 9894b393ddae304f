#include "platform/files.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <vector>

#include "windows/AnsiPath.h"
#include "windows/FileFlags.h"

namespace {

constexpr int kOpenFlags[] = {
    -1,
    _O_RDONLY,
    _O_WRONLY | _O_CREAT | _O_TRUNC,
    _O_WRONLY | _O_CREAT | _O_APPEND,
    _O_RDWR,
    _O_RDWR | _O_CREAT | _O_TRUNC,
    _O_RDWR | _O_CREAT | _O_APPEND,
};

constexpr size_t kLargestBlock = 0x40000000;

// The system's number behind a failure of the C library's calls.
int lastFileError() {
    int error = static_cast<int>(_doserrno);
    return error != 0 ? error : errno;
}

// Milliseconds from the file system's epoch, 1601, to 1900.
constexpr uint64_t kMillisecondsTo1900 = 9435484800000;

uint64_t millisecondsSince1900(const FILETIME& time) {
    uint64_t ticks = (static_cast<uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    uint64_t milliseconds = ticks / 10000;
    return milliseconds < kMillisecondsTo1900 ? 0 : milliseconds - kMillisecondsTo1900;
}

int findFirst(std::string_view path, WIN32_FIND_DATAA* found) {
    HANDLE search = FindFirstFileA(AnsiPath(path).c_str(), found);
    if (search == INVALID_HANDLE_VALUE) return static_cast<int>(GetLastError());
    FindClose(search);
    return 0;
}

// "/" or "c:/", with either separator.
bool isRoot(std::string_view path) {
    const bool isShort = path.size() == 1 || (path.size() == 3 && path[1] == ':');
    return isShort && (path.back() == '/' || path.back() == '\\');
}

// A root has no entry that a search would find: only its attributes are told.
int rootAttributes(std::string_view path, DWORD* attributes) {
    *attributes = GetFileAttributesA(AnsiPath(path).c_str());
    return *attributes == INVALID_FILE_ATTRIBUTES ? static_cast<int>(GetLastError()) : 0;
}

// Calls a function of the system that fills a buffer and gives the length needed
// when it is too small.
template <typename Fill>
int fillText(const Fill& fill, std::string* text) {
    std::vector<char> buffer(MAX_PATH);
    DWORD length = fill(buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length >= buffer.size()) {
        buffer.resize(length + 1);
        length = fill(buffer.data(), static_cast<DWORD>(buffer.size()));
    }
    if (length == 0) return static_cast<int>(GetLastError());
    if (length >= buffer.size()) return ERROR_INSUFFICIENT_BUFFER;
    text->assign(buffer.data(), length);
    return 0;
}

}  // namespace

int osFileOpen(std::string_view path, uint32_t mode, OsFile* file) {
    if (mode < kOsOpenRead || mode > kOsOpenAppendRead) return ERROR_INVALID_PARAMETER;
    int flags = kOpenFlags[mode] | _O_BINARY | _O_NOINHERIT;
    int handle = _sopen(AnsiPath(path).c_str(), flags, _SH_DENYNO, _S_IREAD | _S_IWRITE);
    if (handle < 0) return lastFileError();
    *file = handle;
    return 0;
}

bool osPathWaits(std::string_view path) {
    // Pipes and devices have a name space of their own; the full path of a short
    // name such as "con" leads into it.
    char full[MAX_PATH];
    DWORD length = GetFullPathNameA(AnsiPath(path).c_str(), sizeof full, full, nullptr);
    return length < sizeof full && std::string_view(full, length).starts_with("\\\\.\\");
}

int osFileRead(OsFile file, void* buffer, size_t size, size_t* got) {
    int count = _read(file, buffer, static_cast<unsigned>(std::min(size, kLargestBlock)));
    if (count < 0) return lastFileError();
    *got = static_cast<size_t>(count);
    return 0;
}

int osFileWrite(OsFile file, const void* data, size_t size, size_t* written) {
    const char* bytes = static_cast<const char*>(data);
    *written = 0;
    while (*written < size) {
        size_t block = std::min(size - *written, kLargestBlock);
        int count = _write(file, bytes + *written, static_cast<unsigned>(block));
        if (count < 0) return lastFileError();
        if (count == 0) return ERROR_DISK_FULL;
        *written += static_cast<size_t>(count);
    }
    return 0;
}

int osFileSeek(OsFile file, int64_t offset, OsSeek from, uint64_t* position) {
    int whence = from == OsSeek::Start ? SEEK_SET : from == OsSeek::Current ? SEEK_CUR : SEEK_END;
    long long place = _lseeki64(file, offset, whence);
    if (place < 0) return lastFileError();
    if (position != nullptr) *position = static_cast<uint64_t>(place);
    return 0;
}

int osFileClose(OsFile file) {
    return _close(file) == 0 ? 0 : lastFileError();
}

int osFileInfo(std::string_view path, OsFileInfo* info) {
    WIN32_FIND_DATAA found = {};
    int error =
        isRoot(path) ? rootAttributes(path, &found.dwFileAttributes) : findFirst(path, &found);
    if (error != 0) return error;
    *info = OsFileInfo();
    info->size = (static_cast<uint64_t>(found.nFileSizeHigh) << 32) | found.nFileSizeLow;
    info->flags = fileFlagsOf(found.dwFileAttributes);
    info->created = millisecondsSince1900(found.ftCreationTime);
    info->accessed = millisecondsSince1900(found.ftLastAccessTime);
    info->modified = millisecondsSince1900(found.ftLastWriteTime);
    return 0;
}

int osFullPath(std::string_view path, std::string* full) {
    AnsiPath text(path);
    return fillText(
        [&](char* buffer, DWORD size) {
            return GetFullPathNameA(text.c_str(), size, buffer, nullptr);
        },
        full);
}

int osTrueName(std::string_view path, std::string* name) {
    WIN32_FIND_DATAA found;
    int error = findFirst(path, &found);
    if (error == 0) *name = found.cFileName;
    return error;
}

bool osDriveExists(std::string_view path) {
    return GetDriveTypeA(AnsiPath(path).c_str()) != 0;
}

bool osLeadingSeparatorIsAbsolute() {
    return false;
}

int osCurrentDirectory(std::string* path) {
    return fillText([](char* buffer, DWORD size) { return GetCurrentDirectoryA(size, buffer); },
                    path);
}

int osSetCurrentDirectory(std::string_view path) {
    bool done = SetCurrentDirectoryA(AnsiPath(path).c_str()) != FALSE;
    return done ? 0 : static_cast<int>(GetLastError());
}

int osMakeDirectory(std::string_view path) {
    bool done = CreateDirectoryA(AnsiPath(path).c_str(), nullptr) != FALSE;
    return done ? 0 : static_cast<int>(GetLastError());
}

std::string osErrorText(int error) {
    char* text = nullptr;
    DWORD length = FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, static_cast<DWORD>(error), 0, reinterpret_cast<char*>(&text), 0, nullptr);
    // The system's texts end in CR LF.
    std::string result(text == nullptr ? "" : text, length < 2 ? 0 : length - 2);
    LocalFree(text);
    return result;
}
