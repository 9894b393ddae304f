#include <string>
#include <string_view>

#include "paths/PathError.h"
#include "paths/Paths.h"
#include "platform/files.h"
#include "strings/String.h"

namespace {

// The path without one trailing separator, which stays where it is all there is.
std::string_view withoutSeparator(std::string_view text) {
    if (text.size() > 1 && pathIsSeparator(text.back())) text.remove_suffix(1);
    return text;
}

// As the system is asked: the root of a drive, too, is one by its separator.
std::string_view systemText(const String* path) {
    std::string_view text = stringView(path);
    return text.size() == 3 && text[1] == ':' ? text : withoutSeparator(text);
}

// One look at the disk; the failure goes to the record.
bool look(const String* path, OsFileInfo* info) {
    pathClearError();
    if (stringIsEmpty(path)) return pathFail(kPathEmpty);
    int error = osFileInfo(systemText(path), info);
    return error == 0 || pathFailSystem(error);
}

}  // namespace

bool getFileInfo(const String* path, FileInfo* info) {
    if (info == nullptr) return pathFail(kPathEmpty);
    *info = FileInfo();
    OsFileInfo found;
    if (!look(path, &found)) return false;
    std::string full;
    int error = osFullPath(systemText(path), &full);
    if (error != 0) return pathFailSystem(error);
    info->path = stringFromView(full);
    if (info->path == nullptr) return pathFail(kPathNoMemory);
    info->size = found.size;
    info->flags = found.flags;
    info->created = found.created;
    info->accessed = found.accessed;
    info->modified = found.modified;
    return true;
}

void fileInfoClear(FileInfo* info) {
    if (info == nullptr) return;
    stringDestroy(&info->path);
    *info = FileInfo();
}

bool pathExists(const String* path) {
    pathClearError();
    if (path == nullptr) return pathFail(kPathEmpty);
    std::string_view text = stringView(path);
    if (text.empty() || text == "." || text == "./" || text == ".\\") return true;
    OsFileInfo info;
    return look(path, &info);
}

bool pathFileExists(const String* path) {
    OsFileInfo info;
    return look(path, &info);
}

bool pathDirectoryExists(const String* path) {
    std::string_view text = withoutSeparator(stringView(path));
    if (text.empty() || text.back() != ':') return pathFileExists(path);
    pathClearError();
    OsFileInfo info;
    return osDriveExists(text) || look(path, &info);
}

bool pathIsDirectory(const String* path) {
    OsFileInfo info;
    if (!look(path, &info)) return pathFail(kPathEmpty);
    return (info.flags & kOsFileDirectory) != 0;
}

uint64_t pathFileSize(const String* path) {
    OsFileInfo info;
    return look(path, &info) ? info.size : 0;
}
