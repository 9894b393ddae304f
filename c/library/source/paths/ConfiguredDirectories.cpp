#include "paths/ConfiguredDirectories.h"

#include "paths/Paths.h"
#include "registry/Registry.h"
#include "strings/String.h"

namespace {

// ORDER configured-directories
constexpr const char* kValueNames[] = {"installdir", "bin",  "scripts", "config", "debug",
                                       "work",       "temp", "sandbox", "svnroot"};

struct DirectoryTable {
    bool known = false;
    String* directories[kConfiguredDirectoryCount] = {};
};
DirectoryTable table;

void dropDirectories() {
    for (String*& directory : table.directories) stringDestroy(&directory);
}

// The directory of one setting; null when it is missing or memory runs out.
String* readDirectory(const char* valueName) {
    Owned<String> directory(stringNewEmpty());
    bool read = getConfigString("directories", valueName, directory.get()) == RegResult::Done;
    return read && pathEnsureTrailingSeparator(directory.get()) ? directory.release() : nullptr;
}

void readDirectories() {
    table.known = true;
    for (uint32_t i = 0; i < kConfiguredDirectoryCount; ++i) {
        table.directories[i] = readDirectory(kValueNames[i]);
        if (table.directories[i] != nullptr || i == kSourceRootDirectory) continue;
        dropDirectories();
        return;
    }
}

}  // namespace

String* pathConfiguredDirectory(ConfiguredDirectory directory) {
    if (directory >= kConfiguredDirectoryCount) return nullptr;
    if (!table.known) readDirectories();
    return stringClone(table.directories[directory]);
}

void pathReleaseConfiguredDirectories() {
    dropDirectories();
    table.known = false;
}
