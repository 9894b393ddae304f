#include "platform/machine.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "posix/SystemPath.h"
#include "posix/TextFile.h"

namespace {

constexpr size_t kLongestComputerName = 128;
constexpr size_t kLongestDomainName = 200;

// The words of os-release may stand in single or double quotes.
std::string_view withoutQuotes(std::string_view text) {
    bool quoted = text.size() >= 2 && text.front() == text.back() &&
                  (text.front() == '"' || text.front() == '\'');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

bool isVersion(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789.") == std::string_view::npos &&
           text.find_first_of("0123456789") != std::string_view::npos;
}

struct ArchitectureWord {
    const char* machine;
    const char* word;
};
// By the beginning of the machine's name; those of the i386 family stand for themselves.
constexpr ArchitectureWord kArchitectureWords[] = {
    {"x86_64", "amd64"}, {"mips", "mips"}, {"alpha", "alpha"},
    {"ppc", "powerpc"},  {"ia64", "ia64"}, {"unknown", "unknown"},
};

// The domain that resolv.conf names first; no name is looked up.
bool domainOfResolver(std::string* name) {
    TextFile file("/etc/resolv.conf");
    std::string_view line;
    std::string_view found;
    while (file.nextLine(&line)) {
        std::string_view word = TextFile::cutWord(&line);
        if (word != "domain" && word != "search") continue;
        found = TextFile::cutWord(&line);  // the last such line counts
    }
    while (!found.empty() && found.back() == '.') found.remove_suffix(1);
    if (found.empty()) return false;
    *name = found.substr(0, kLongestDomainName);
    return true;
}

struct FolderPath {
    OsFolder folder;
    const char* path;
};
constexpr FolderPath kFolders[] = {
    {OsFolder::Fonts, "/usr/share/fonts/"},
    {OsFolder::Programs, "/usr/local/bin/"},
    {OsFolder::System, "/usr/bin/"},
    {OsFolder::Windows, "/"},
    {OsFolder::Users, "/home/"},
    {OsFolder::StartMenu, "/usr/share/applications/"},
    {OsFolder::Startup, "/etc/xdg/autostart/"},
};

}  // namespace

const char* osPlatformName() {
    return "linux";
}

bool osRelease(OsRelease* release) {
    *release = OsRelease();
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
        TextFile file(path);
        std::string_view line;
        while (file.nextLine(&line)) {
            std::string_view value = withoutQuotes(line.substr(line.find('=') + 1));
            if (line.substr(0, 5) == "NAME=") release->name = value;
            if (line.substr(0, 11) == "VERSION_ID=" && isVersion(value)) release->version = value;
        }
        if (file.isOpen()) break;
    }
    utsname names;
    if (release->name.empty() && uname(&names) == 0) release->name = names.sysname;
    return !release->name.empty();
}

bool osWindowsVersion(OsWindowsVersion*) {
    return false;
}

std::string osArchitecture() {
    utsname names;
    if (uname(&names) != 0) return "error";
    std::string_view machine = names.machine;
    if (machine.size() == 4 && machine[0] == 'i' && machine.substr(2) == "86") {
        return std::string(machine);
    }
    for (const ArchitectureWord& row : kArchitectureWords) {
        if (machine.substr(0, strlen(row.machine)) == row.machine) return row.word;
    }
    return "error";
}

uint32_t osBits() {
    utsname names;
    if (uname(&names) != 0) return sizeof(void*) * CHAR_BIT;
    return strstr(names.machine, "64") != nullptr || strcmp(names.machine, "s390x") == 0 ? 64 : 32;
}

bool osIsWow64() {
    return false;
}

bool osComputerName(std::string* name) {
    char buffer[HOST_NAME_MAX + 1];
    if (gethostname(buffer, sizeof buffer) != 0) return false;
    buffer[sizeof buffer - 1] = '\0';
    *name = std::string(buffer, strnlen(buffer, kLongestComputerName));
    return true;
}

bool osDomainName(std::string* name) {
    std::string host;
    if (!osComputerName(&host)) return false;
    size_t point = host.find('.');
    if (point == std::string::npos || point + 1 == host.size()) return domainOfResolver(name);
    *name = host.substr(point + 1, kLongestDomainName);
    return true;
}

bool osLocale(std::string* locale) {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = getenv(name);
        if (value == nullptr || *value == '\0') continue;
        *locale = value;
        return true;
    }
    locale->clear();
    return true;
}

bool osSpecialFolder(OsFolder folder, std::string* path) {
    for (const FolderPath& row : kFolders) {
        if (row.folder != folder) continue;
        *path = row.path;
        return true;
    }
    return false;
}

int osSystemRoot(std::string* path) {
    *path = "/";
    return 0;
}

bool osEnablePrivilege(const char*) {
    return false;
}

bool osGetEnvironment(std::string_view name, std::string* value) {
    const char* text = getenv(std::string(name).c_str());
    if (text == nullptr) return false;
    *value = text;
    return true;
}

bool osSetEnvironment(std::string_view name, std::string_view value) {
    return setenv(std::string(name).c_str(), std::string(value).c_str(), 1) == 0;
}

bool osSearchPath(std::string* path, char* separator) {
    *separator = ';';
    if (osGetEnvironment("path", path)) return true;
    *separator = ':';
    return osGetEnvironment("PATH", path);
}
