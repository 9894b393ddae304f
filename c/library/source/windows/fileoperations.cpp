#include "platform/fileoperations.h"

#include <windows.h>

#include <string>

#include "platform/files.h"
#include "windows/AnsiPath.h"
#include "windows/FileFlags.h"
#include "windows/OpenDirectory.h"

namespace {

int lastError() {
    return static_cast<int>(GetLastError());
}

int resultOf(BOOL done) {
    return done != FALSE ? 0 : lastError();
}

int syncFile(const std::string& path) {
    HANDLE file = CreateFileA(AnsiPath(path).c_str(), GENERIC_WRITE,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return lastError();
    int error = resultOf(FlushFileBuffers(file));
    CloseHandle(file);
    return error;
}

}  // namespace

int osFileCopy(std::string_view source, std::string_view target, bool overwrite) {
    AnsiPath to(target);
    return resultOf(CopyFileA(AnsiPath(source).c_str(), to.c_str(), !overwrite));
}

int osEntryCopy(OsDirectory* from, const char* name, OsEntryKind kind, OsDirectory* to,
                const char* newName, OsSync sync) {
    if (kind != OsEntryKind::File) return ERROR_NOT_SUPPORTED;
    std::string target = to->entry(newName);
    int error = osFileCopy(from->entry(name), target, false);
    // A file that is marked read-only cannot be opened for the sync; its mark waits.
    if (error != 0 || sync == OsSync::Sometime) return error;
    bool readOnly = osEntryIsReadOnly(to, newName);
    if (readOnly) error = osEntryClearReadOnly(to, newName);
    if (error == 0) error = syncFile(target);
    return error == 0 && readOnly ? osChangeFlags(target, kOsFileReadOnly, 0) : error;
}

int osTreeSync(OsDirectory*) {
    return 0;  // each file has been synced
}

int osDirectorySync(OsDirectory*) {
    return 0;  // names are written through
}

int osEntryMakeDirectory(OsDirectory* parent, const char* name, OsDirectory* like) {
    return osMakeDirectoryLike(parent->entry(name), like);
}

int osMakeDirectoryLike(std::string_view path, OsDirectory*) {
    return osMakeDirectory(path);  // permissions come from the directory above
}

int osFileDelete(std::string_view path) {
    return resultOf(DeleteFileA(AnsiPath(path).c_str()));
}

int osMove(std::string_view source, std::string_view target, bool replace) {
    DWORD flags = MOVEFILE_WRITE_THROUGH | (replace ? MOVEFILE_REPLACE_EXISTING : 0);
    AnsiPath to(target);
    return resultOf(MoveFileExA(AnsiPath(source).c_str(), to.c_str(), flags));
}

int osEntryMove(OsDirectory* directory, const char* name, const char* newName, bool replace) {
    return osMove(directory->entry(name), directory->entry(newName), replace);
}

bool osIsOtherFileSystem(int error) {
    return error == ERROR_NOT_SAME_DEVICE;
}

bool osReadOnlyHinders(int error) {
    return error == ERROR_ACCESS_DENIED;
}

int osChangeFlags(std::string_view path, uint32_t set, uint32_t clear) {
    AnsiPath text(path);
    DWORD attributes = GetFileAttributesA(text.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return lastError();
    attributes = (attributes | attributesOf(set)) & ~attributesOf(clear);
    return resultOf(SetFileAttributesA(text.c_str(), attributes));
}

bool osEntryIsReadOnly(OsDirectory* directory, const char* name) {
    DWORD attributes = GetFileAttributesA(AnsiPath(directory->entry(name)).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

int osEntryClearReadOnly(OsDirectory* directory, const char* name) {
    return osChangeFlags(directory->entry(name), 0, kOsFileReadOnly);
}
