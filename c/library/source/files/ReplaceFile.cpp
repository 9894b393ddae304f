#include "files/ReplaceFile.h"

#include <string>

#include "platform/processes.h"
#include "platform/replace.h"

namespace {

int writeWhole(const std::string& path, std::string_view bytes) {
    OsFile file = kOsNoFile;
    int error = osFileOpen(path, kOsOpenWrite, &file);
    if (error != 0) return error;
    size_t written = 0;
    error = osFileWrite(file, bytes.data(), bytes.size(), &written);
    if (error == 0) error = osReplaceSync(file);
    const int closing = osFileClose(file);
    return error != 0 ? error : closing;
}

}  // namespace

void fileReplacePrepare(std::string_view file, std::string_view temporary) {
    OsFileInfo info;
    osReplaceRemove(temporary);
    if (osFileInfo(file, &info) == 0) osReplaceCreate(file, temporary);
}

int fileReplace(std::string_view file, std::string_view bytes) {
    // Two processes at once do not share the temporary file.
    const std::string temporary =
        std::string(file) + "." + std::to_string(osOwnProcessId()) + ".tmp";
    fileReplacePrepare(file, temporary);
    int error = writeWhole(temporary, bytes);
    if (error == 0) {
        osReplaceCopyRights(file, temporary);
        error = osReplaceRename(temporary, file);
    }
    if (error != 0) osReplaceRemove(temporary);
    return error;
}
