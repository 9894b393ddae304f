#include <string>

#include "platform/machine.h"
#include "strings/StringCompare.h"
#include "system/SystemInfo.h"

namespace {

struct FolderName {
    const char* name;
    OsFolder folder;
};
constexpr FolderName kFolderNames[] = {
    {"fonts", OsFolder::Fonts},           {"programs", OsFolder::Programs},
    {"programfiles", OsFolder::Programs}, {"system", OsFolder::System},
    {"windows", OsFolder::Windows},       {"systemroot", OsFolder::Windows},
    {"users", OsFolder::Users},           {"startmenu", OsFolder::StartMenu},
    {"startup", OsFolder::Startup},
};

}  // namespace

String* sysGetSpecialFolder(const String* name) {
    if (name == nullptr) return nullptr;
    for (const FolderName& row : kFolderNames) {
        if (stringCompareNoCaseText(name, row.name) != 0) continue;
        std::string path;
        if (!osSpecialFolder(row.folder, &path)) return nullptr;
        if (path.empty() || (path.back() != '\\' && path.back() != '/')) path += '\\';
        return stringFromView(path);
    }
    return nullptr;
}
