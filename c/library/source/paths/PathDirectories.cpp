#include <string>
#include <string_view>

#include "paths/PathError.h"
#include "paths/Paths.h"
#include "platform/files.h"
#include "strings/StringEdit.h"

namespace {

// Whether making directories starts from the path itself and not from the
// current directory; the path has its dots resolved.
bool startsAtRoot(std::string_view path) {
    if (path.size() > 1 && path[1] == ':') return true;
    if (path.substr(0, 2) == "\\\\") return true;
    return !path.empty() && path[0] == '\\' && osLeadingSeparatorIsAbsolute();
}

bool isThere(std::string_view path) {
    OsFileInfo info;
    return osFileInfo(path, &info) == 0;
}

// Makes the directory; one that somebody else has made meanwhile will do.
bool makeOne(std::string_view path) {
    int error = osMakeDirectory(path);
    return error == 0 || isThere(path) || pathFailSystem(error);
}

// The end of the longest part of `path` that exists, or of its root; the parts
// below it are still to be made.
size_t existingPart(std::string_view path) {
    size_t end = path.size();
    while (end > 0) {
        if (isThere(path.substr(0, end))) return end;
        size_t separator = path.substr(0, end).rfind('\\');
        if (separator == std::string_view::npos) return 0;
        end = separator;
    }
    return 0;
}

// Makes a directory and all of its parents that are missing, from the top down.
bool makeParts(std::string_view path) {
    if (!path.empty() && path.back() == '\\') path.remove_suffix(1);
    size_t end = existingPart(path);
    while (end < path.size()) {
        size_t start = path.find_first_not_of('\\', end);
        if (start == std::string_view::npos) break;
        end = path.find('\\', start);
        if (end == std::string_view::npos) end = path.size();
        bool isDrive = end == 2 && path[1] == ':';
        if (!isDrive && !makeOne(path.substr(0, end))) return false;
    }
    return true;
}

}  // namespace

String* pathCurrentDirectory() {
    pathClearError();
    std::string path;
    int error = osCurrentDirectory(&path);
    if (error != 0) pathFailSystem(error);
    return error == 0 ? stringFromView(path) : nullptr;
}

bool pathSetCurrentDirectory(const String* path) {
    pathClearError();
    if (stringIsEmpty(path)) return pathFail(kPathEmpty);
    int error = osSetCurrentDirectory(stringView(path));
    return error == 0 || pathFailSystem(error);
}

bool pathMakeDirectory(const String* path) {
    pathClearError();
    if (stringIsEmpty(path)) return pathFail(kPathEmpty);
    int error = osMakeDirectory(stringView(path));
    return error == 0 || pathFailSystem(error);
}

bool pathMakeDirectoryPath(const String* path) {
    pathClearError();
    if (stringIsEmpty(path)) return pathFail(kPathEmpty);
    Owned<String> directory(stringClone(path));
    if (!pathResolveDots(directory.get())) return pathFail(kPathNoMemory);
    // The last component of a path without a trailing separator is a file's name.
    std::string_view text = stringView(directory.get());
    size_t separator = text.rfind('\\');
    size_t length = separator == std::string_view::npos ? 0 : separator + 1;
    if (length == 0) return true;
    stringSetLength(directory.get(), static_cast<uint32_t>(length));
    if (pathDirectoryExists(directory.get())) return true;
    pathClearError();
    if (startsAtRoot(stringView(directory.get()))) return makeParts(stringView(directory.get()));
    Owned<String> full(pathCurrentDirectory());
    if (!full) return false;
    bool joined = pathUnifySeparators(full.get()) && pathEnsureTrailingSeparator(full.get()) &&
                  stringAppend(full.get(), directory.get());
    return joined ? makeParts(stringView(full.get())) : pathFail(kPathNoMemory);
}
