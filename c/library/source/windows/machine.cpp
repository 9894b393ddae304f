#include "platform/machine.h"

#include <windows.h>

#include <lm.h>
#include <shlobj.h>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr DWORD kLongestComputerName = 128;
constexpr size_t kLongestDomainName = 200;
constexpr size_t kLongestGroupName = 256;
constexpr DWORD kFirstUserNameSize = 20;
constexpr DWORD kTokenAccess = TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY;

// The local form of a text of the network functions; false when it is too long.
bool localText(const wchar_t* wide, size_t longest, std::string* text) {
    std::string buffer(longest + 1, '\0');
    int size = WideCharToMultiByte(CP_ACP, 0, wide, -1, buffer.data(),
                                   static_cast<int>(buffer.size()), nullptr, nullptr);
    if (size <= 0) return false;
    text->assign(buffer, 0, static_cast<size_t>(size) - 1);
    return true;
}

// Finds a function that not every version of the system has.
template <typename Function>
Function* findFunction(const char* name) {
    HMODULE library = GetModuleHandleA("kernel32.dll");
    if (library == nullptr) return nullptr;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

struct ArchitectureWord {
    WORD number;
    const char* word;
};
constexpr ArchitectureWord kArchitectureWords[] = {
    {1, "mips"},  {2, "alpha"},          {3, "powerpc"},     {6, "ia64"},
    {9, "amd64"}, {10, "ia32_on_win64"}, {65535, "unknown"},
};

// A buffer of the network functions, freed with its object.
class NetBuffer {
  public:
    NetBuffer() = default;
    NetBuffer(const NetBuffer&) = delete;
    NetBuffer& operator=(const NetBuffer&) = delete;
    ~NetBuffer() {
        if (data_ != nullptr) NetApiBufferFree(data_);
    }
    BYTE** receive() { return &data_; }
    template <typename Record>
    const Record* records() const {
        return reinterpret_cast<const Record*>(data_);
    }

  private:
    BYTE* data_ = nullptr;
};

struct FolderNumber {
    OsFolder folder;
    int number;
};
constexpr FolderNumber kFolderNumbers[] = {
    {OsFolder::Fonts, 20},     {OsFolder::Programs, 38}, {OsFolder::System, 37},
    {OsFolder::Windows, 36},   {OsFolder::Users, 22},  // the common start menu, two levels below
    {OsFolder::StartMenu, 11}, {OsFolder::Startup, 7},
};

// Cuts the last component off, leaving the separator before it.
void cutLastComponent(std::string* path) {
    if (!path->empty() && (path->back() == '\\' || path->back() == '/')) path->pop_back();
    size_t separator = path->find_last_of("\\/");
    path->resize(separator == std::string::npos ? 0 : separator + 1);
}

}  // namespace

const char* osPlatformName() {
    return "windows";
}

bool osRelease(OsRelease*) {
    return false;
}

bool osWindowsVersion(OsWindowsVersion* version) {
    constexpr int kServerRelease2Metric = 89;
    OSVERSIONINFOEXA info = {};
    info.dwOSVersionInfoSize = sizeof info;
    if (!GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&info))) return false;
    version->platformId = info.dwPlatformId;
    version->major = info.dwMajorVersion;
    version->minor = info.dwMinorVersion;
    version->productType = info.wProductType;
    version->suiteMask = info.wSuiteMask;
    version->servicePack = info.wServicePackMajor;
    version->isRelease2 = GetSystemMetrics(kServerRelease2Metric) != 0;
    return true;
}

std::string osArchitecture() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    auto* native = findFunction<void WINAPI(SYSTEM_INFO*)>("GetNativeSystemInfo");
    if (native != nullptr) native(&info);
    if (info.wProcessorArchitecture == 0) return "i" + std::to_string(info.dwProcessorType);
    for (const ArchitectureWord& row : kArchitectureWords) {
        if (row.number == info.wProcessorArchitecture) return row.word;
    }
    return "error";
}

uint32_t osBits() {
    return osIsWow64() ? 64 : 32;
}

bool osIsWow64() {
    auto* ask = findFunction<BOOL WINAPI(HANDLE, BOOL*)>("IsWow64Process");
    BOOL emulated = FALSE;
    return ask != nullptr && ask(GetCurrentProcess(), &emulated) && emulated;
}

bool osComputerName(std::string* name) {
    char buffer[kLongestComputerName + 1];
    DWORD size = sizeof buffer;
    if (!GetComputerNameA(buffer, &size)) return false;
    name->assign(buffer, size);
    return true;
}

bool osDomainName(std::string* name) {
    NetBuffer buffer;
    if (NetWkstaGetInfo(nullptr, 100, buffer.receive()) != NERR_Success) return false;
    const WKSTA_INFO_100* info = buffer.records<WKSTA_INFO_100>();
    return info != nullptr && localText(reinterpret_cast<const wchar_t*>(info->wki100_langroup),
                                        kLongestDomainName, name);
}

bool osUserName(std::string* name) {
    std::string buffer(kFirstUserNameSize, '\0');
    DWORD size = kFirstUserNameSize;
    while (!GetUserNameA(buffer.data(), &size)) {
        DWORD error = GetLastError();
        bool grows = error == ERROR_INSUFFICIENT_BUFFER && size > buffer.size();
        if (!grows) return false;
        buffer.resize(size);
    }
    *name = buffer.c_str();
    return true;
}

bool osLocale(std::string*) {
    return false;
}

bool osSpecialFolder(OsFolder folder, std::string* path) {
    for (const FolderNumber& row : kFolderNumbers) {
        if (row.folder != folder) continue;
        char buffer[MAX_PATH + 1] = "";
        if (!SHGetSpecialFolderPathA(nullptr, buffer, row.number, FALSE)) return false;
        std::string result = buffer;
        // What holds all users' folders has no number of its own.
        if (folder == OsFolder::Users) {
            cutLastComponent(&result);
            cutLastComponent(&result);
        }
        path->swap(result);
        return true;
    }
    return false;
}

int osSystemRoot(std::string* path) {
    char buffer[MAX_PATH];
    UINT length = GetWindowsDirectoryA(buffer, sizeof buffer);
    if (length == 0) return static_cast<int>(GetLastError());
    if (length >= sizeof buffer) return ERROR_INSUFFICIENT_BUFFER;
    path->assign(buffer, length);
    return 0;
}

bool osEnablePrivilege(const char* name) {
    HANDLE token;
    if (!OpenProcessToken(GetCurrentProcess(), kTokenAccess, &token)) return false;
    TOKEN_PRIVILEGES privileges = {};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    bool known = LookupPrivilegeValueA(nullptr, name, &privileges.Privileges[0].Luid) != FALSE;
    // The call succeeds also when it could not give the privilege; only the error tells.
    bool enabled = known && AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr) &&
                   GetLastError() == ERROR_SUCCESS;
    CloseHandle(token);
    return enabled;
}

bool osGroups(std::vector<std::string>* groups) {
    NetBuffer buffer;
    DWORD count = 0;
    DWORD total = 0;
    if (NetLocalGroupEnum(nullptr, 0, buffer.receive(), MAX_PREFERRED_LENGTH, &count, &total,
                          nullptr) != NERR_Success) {
        return false;
    }
    groups->clear();
    const auto* records = buffer.records<LOCALGROUP_INFO_0>();
    for (DWORD i = 0; records != nullptr && i < count; ++i) {
        std::string name;
        if (localText(records[i].lgrpi0_name, kLongestGroupName, &name)) groups->push_back(name);
    }
    return true;
}

bool osGroupMembers(std::string_view group, std::vector<std::string>* members) {
    std::wstring name(group.size(), L'\0');
    int length = MultiByteToWideChar(CP_ACP, 0, group.data(), static_cast<int>(group.size()),
                                     name.data(), static_cast<int>(name.size()));
    name.resize(static_cast<size_t>(length));
    NetBuffer buffer;
    DWORD count = 0;
    DWORD total = 0;
    if (NetLocalGroupGetMembers(nullptr, name.c_str(), 3, buffer.receive(), MAX_PREFERRED_LENGTH,
                                &count, &total, nullptr) != NERR_Success) {
        return false;
    }
    members->clear();
    const auto* records = buffer.records<LOCALGROUP_MEMBERS_INFO_3>();
    for (DWORD i = 0; records != nullptr && i < count; ++i) {
        std::string member;
        if (localText(records[i].lgrmi3_domainandname, kLongestGroupName, &member)) {
            members->push_back(member.substr(member.find('\\') + 1));
        }
    }
    return true;
}

bool osUserGroups(std::string_view user, std::vector<std::string>* groups) {
    std::vector<std::string> all;
    if (!osGroups(&all)) return false;
    groups->clear();
    for (const std::string& group : all) {
        std::vector<std::string> members;
        if (osGroupMembers(group, &members) &&
            std::find(members.begin(), members.end(), user) != members.end())
            groups->push_back(group);
    }
    return true;
}

bool osGetEnvironment(std::string_view name, std::string* value) {
    const char* text = getenv(std::string(name).c_str());
    if (text == nullptr) return false;
    *value = text;
    return true;
}

bool osSetEnvironment(std::string_view name, std::string_view value) {
    return _putenv_s(std::string(name).c_str(), std::string(value).c_str()) == 0;
}

bool osSearchPath(std::string* path, char* separator) {
    *separator = ';';
    return osGetEnvironment("path", path);
}
