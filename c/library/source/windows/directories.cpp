#include "platform/directories.h"

#include <windows.h>

#include <cstring>
#include <new>

#include "platform/files.h"
#include "windows/AnsiPath.h"
#include "windows/OpenDirectory.h"

namespace {

int lastError() {
    return static_cast<int>(GetLastError());
}

int resultOf(BOOL done) {
    return done != FALSE ? 0 : lastError();
}

// The system's own numbers for "stands for another name"; other marks on a file,
// such as being stored elsewhere, leave it a file.
bool standsForAnother(const WIN32_FIND_DATAA& found) {
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           IsReparseTagNameSurrogate(found.dwReserved0);
}

OsEntryKind kindOf(const WIN32_FIND_DATAA& found) {
    bool isDirectory = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (isDirectory && standsForAnother(found)) return OsEntryKind::Link;
    return isDirectory ? OsEntryKind::Directory : OsEntryKind::File;
}

int findFirst(const std::string& path, WIN32_FIND_DATAA* found) {
    HANDLE search = FindFirstFileA(AnsiPath(path).c_str(), found);
    if (search == INVALID_HANDLE_VALUE) return lastError();
    FindClose(search);
    return 0;
}

int makeRecord(std::string path, OsDirectory** directory) {
    DWORD attributes = GetFileAttributesA(AnsiPath(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return lastError();
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return ERROR_DIRECTORY;
    if (path.back() != '\\' && path.back() != '/') path += '\\';
    *directory = new OsDirectory{std::move(path)};
    return 0;
}

bool isDots(const char* name) {
    return strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
}

}  // namespace

int osDirectoryOpen(std::string_view path, bool followLink, OsDirectory** directory) {
    std::string full;
    int error = osFullPath(path, &full);
    OsEntryKind kind = OsEntryKind::Directory;
    // A root has no entry that could be asked.
    if (!followLink && osPathKind(path, &kind) == 0 && kind == OsEntryKind::Link)
        return ERROR_DIRECTORY;
    return error != 0 ? error : makeRecord(full, directory);
}

int osDirectoryReach(std::string_view path, OsDirectory** directory) {
    return osDirectoryOpen(path, true, directory);
}

int osDirectoryOpenEntry(OsDirectory* parent, const char* name, OsDirectory** directory) {
    return osDirectoryOpen(parent->entry(name), false, directory);
}

int osDirectoryOpenParent(OsDirectory* directory, OsDirectory** parent) {
    return osDirectoryOpen(directory->entry(".."), true, parent);
}

void osDirectoryClose(OsDirectory** directory) {
    if (directory == nullptr) return;
    delete *directory;
    *directory = nullptr;
}

int osDirectoryId(OsDirectory* directory, OsFileId* id) {
    return osFileId(directory->path, id);
}

int osFileId(std::string_view path, OsFileId* id) {
    HANDLE file = CreateFileA(AnsiPath(path).c_str(), 0,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return lastError();
    BY_HANDLE_FILE_INFORMATION found;
    int error = resultOf(GetFileInformationByHandle(file, &found));
    CloseHandle(file);
    if (error != 0) return error;
    id->volume = found.dwVolumeSerialNumber;
    id->number = (static_cast<uint64_t>(found.nFileIndexHigh) << 32) | found.nFileIndexLow;
    return 0;
}

int osDirectoryRead(OsDirectory* directory, OsEntryVisitor visitor, void* context) {
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA(AnsiPath(directory->entry("*")).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return lastError();
    bool wanted = true;
    do {
        if (!isDots(found.cFileName)) wanted = visitor(context, found.cFileName, kindOf(found));
    } while (wanted && FindNextFileA(search, &found) != FALSE);
    int error = wanted ? lastError() : 0;
    FindClose(search);
    return error == ERROR_NO_MORE_FILES ? 0 : error;
}

int osPathKind(std::string_view path, OsEntryKind* kind) {
    WIN32_FIND_DATAA found;
    int error = findFirst(std::string(path), &found);
    if (error == 0) *kind = kindOf(found);
    return error;
}

bool osEntryLeadsToDirectory(OsDirectory* directory, const char* name) {
    DWORD attributes = GetFileAttributesA(AnsiPath(directory->entry(name)).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

int osEntryRemove(OsDirectory* directory, const char* name, OsEntryKind kind) {
    std::string path = directory->entry(name);
    if (kind == OsEntryKind::File) return resultOf(DeleteFileA(AnsiPath(path).c_str()));
    return resultOf(RemoveDirectoryA(AnsiPath(path).c_str()));
}
