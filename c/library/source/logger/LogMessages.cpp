#include "logger/LogMessages.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "files/BasicFile.h"
#include "logger/MessageCatalogue.h"
#include "paths/ConfiguredDirectories.h"
#include "paths/Paths.h"
#include "strings/String.h"
#include "strings/StringNumbers.h"
#include "system/SystemInfo.h"

namespace {

constexpr std::string_view kFileName = "logmsg.conf";
constexpr uint32_t kLineLimit = 10000;

struct BuiltInText {
    uint32_t number;
    std::string_view text;
};

// What an empty file stands for. The second text of 200 is found by nobody: the
// tree keeps both and meets the first.
constexpr BuiltInText kBuiltIn[] = {
    {0, "Error occured in file \"%s\", line %i"},
    {10, "Input validity test failed (bad parameters)"},
    {11, "INTERNAL ERROR!"},
    {12, "NULL pointer to %s"},
    {13, "NULL pointer to %S"},
    {14, "(Error: %i)"},
    {15, "(Error: %s)"},
    {16, "(Error: %S)"},
    {100, "Out of memory"},
    {200, "Could not find/access file \"%s\""},
    {200, "Could not find/access file \"%S\""},
};

uint32_t users = 0;

bool isBlank(char byte) {
    return static_cast<unsigned char>(byte) <= ' ';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

void addLine(std::string_view line) {
    line = trimmed(line);
    if (line.empty() || line.front() == '#') return;
    const size_t equals = std::min(line.find('='), line.size());
    const std::string_view key = trimmed(line.substr(0, equals));
    const std::string_view text = trimmed(line.substr(std::min(equals + 1, line.size())));
    if (key.empty() || key.find_first_not_of("0123456789") != std::string_view::npos) return;
    messageCatalogueAdd(textToUInt32(key), text);
}

// Gives the path of an existing file, or null.
String* findFile() {
    Owned<String> path(pathConfiguredDirectory(kConfigDirectory));
    if (path) {
        if (!stringAppendView(path.get(), kFileName)) return nullptr;
        return pathFileExists(path.get()) ? path.release() : nullptr;
    }
    Owned<String> name(stringFromView(kFileName));
    path.reset(stringNewEmpty());
    return pathFindInPath(name.get(), path.get()) ? path.release() : nullptr;
}

bool readFile(const String* path) {
    Owned<BasicFile> file(bfileInitStr(path));
    Owned<String> line(stringNewEmpty());
    if (!line || bfileOpen(file.get(), kFileRead) != kFileDone) return false;
    while (bfileReadLine(file.get(), line.get(), kLineLimit) == kFileDone)
        addLine(stringView(line.get()));
    return true;
}

}  // namespace

bool logMessagesInit() {
    ++users;
    if (messageCatalogueExists()) return true;
    if (!messageCatalogueCreate()) return false;
    Owned<String> path(findFile());
    if (!path) return false;
    if (!readFile(path.get())) {
        messageCatalogueDestroy();
        return false;
    }
    if (messageCatalogueCount() == 0)
        for (const BuiltInText& row : kBuiltIn) messageCatalogueAdd(row.number, row.text);
    return true;
}

void logMessagesDone() {
    if (users == 0 || --users > 0 || !messageCatalogueExists()) return;
    messageCatalogueDestroy();
    // What the library has looked up about host and paths ends with the texts.
    pathReleaseConfiguredDirectories();
    sysReleaseCache();
}
