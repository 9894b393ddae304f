#include "platform/replace.h"

#include <windows.h>

#include <io.h>

#include <vector>

#include "windows/AnsiPath.h"

namespace {

// What a new file takes over; the others are not for us to set.
constexpr DWORD kKeptAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                  FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

int lastError() {
    return static_cast<int>(GetLastError());
}

bool isReadOnly(DWORD attributes) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

// A part of a file's security descriptor; empty when it cannot be had.
std::vector<char> security(const AnsiPath& path, SECURITY_INFORMATION part) {
    DWORD size = 0;
    GetFileSecurityA(path.c_str(), part, nullptr, 0, &size);
    std::vector<char> descriptor(size);
    if (size != 0 && !GetFileSecurityA(path.c_str(), part, descriptor.data(), size, &size))
        descriptor.clear();
    return descriptor;
}

int copySecurity(const AnsiPath& from, const AnsiPath& to, SECURITY_INFORMATION part) {
    std::vector<char> descriptor = security(from, part);
    const bool done = !descriptor.empty() && SetFileSecurityA(to.c_str(), part, descriptor.data());
    return done ? 0 : lastError();
}

int rename(const AnsiPath& from, const AnsiPath& to) {
    const DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    return MoveFileExA(from.c_str(), to.c_str(), how) ? 0 : lastError();
}

}  // namespace

int osReplaceRemove(std::string_view path) {
    const AnsiPath name(path);
    // A file that may only be read cannot be removed either.
    const DWORD attributes = GetFileAttributesA(name.c_str());
    if (isReadOnly(attributes))
        SetFileAttributesA(name.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    if (DeleteFileA(name.c_str())) return 0;
    const int error = lastError();
    return error == ERROR_FILE_NOT_FOUND ? 0 : error;
}

int osReplaceCreate(std::string_view like, std::string_view path) {
    std::vector<char> descriptor = security(AnsiPath(like), DACL_SECURITY_INFORMATION);
    SECURITY_ATTRIBUTES rights = {sizeof rights, descriptor.data(), FALSE};
    const HANDLE handle = CreateFileA(AnsiPath(path).c_str(), GENERIC_WRITE, 0,
                                      descriptor.empty() ? nullptr : &rights, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return lastError();
    CloseHandle(handle);
    return 0;
}

int osReplaceCopyRights(std::string_view from, std::string_view to) {
    const AnsiPath source(from);
    const AnsiPath target(to);
    const DWORD attributes = GetFileAttributesA(source.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return lastError();
    int error = 0;
    for (const SECURITY_INFORMATION part :
         {OWNER_SECURITY_INFORMATION, GROUP_SECURITY_INFORMATION, DACL_SECURITY_INFORMATION}) {
        const int refused = copySecurity(source, target, part);
        if (error == 0) error = refused;
    }
    const DWORD kept = attributes & kKeptAttributes;
    if (kept != 0 && !SetFileAttributesA(target.c_str(), kept) && error == 0) error = lastError();
    return error;
}

int osReplaceSync(OsFile file) {
    return _commit(file) == 0 ? 0 : static_cast<int>(_doserrno);
}

int osReplaceRename(std::string_view from, std::string_view to) {
    const AnsiPath source(from);
    const AnsiPath target(to);
    const int error = rename(source, target);
    const DWORD attributes = GetFileAttributesA(target.c_str());
    if (error != ERROR_ACCESS_DENIED || !isReadOnly(attributes)) return error;
    // A file that may only be read is not replaced as it stands.
    SetFileAttributesA(target.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    const int again = rename(source, target);
    if (again != 0) SetFileAttributesA(target.c_str(), attributes);
    return again;
}
