#include <windows.h>

#include <psapi.h>

#include <new>

#include "platform/processes.h"

struct OsProcessView {
    HANDLE handle;
};

namespace {

constexpr size_t kIdsAtOnce = 300;
constexpr DWORD kProgramPath = 260;
constexpr DWORD kNameSize = 64;
// Room for the one user that a token speaks of.
constexpr DWORD kUserSize = 100;

int lastError() {
    return static_cast<int>(GetLastError());
}

bool lookUp(HANDLE token, std::string* domain, std::string* name) {
    alignas(TOKEN_USER) char user[kUserSize];
    DWORD size = 0;
    if (!GetTokenInformation(token, TokenUser, user, sizeof user, &size)) return false;
    char nameText[kNameSize];
    char domainText[kNameSize];
    DWORD nameSize = kNameSize;
    DWORD domainSize = kNameSize;
    SID_NAME_USE use;
    if (!LookupAccountSidA(nullptr, reinterpret_cast<TOKEN_USER*>(user)->User.Sid, nameText,
                           &nameSize, domainText, &domainSize, &use))
        return false;
    *name = nameText;
    *domain = domainText;
    return true;
}

}  // namespace

uint32_t osOwnProcessId() {
    return GetCurrentProcessId();
}

int osProcessIds(std::vector<uint32_t>* ids) {
    ids->clear();
    DWORD needed = 0;
    do {
        ids->resize(ids->size() + kIdsAtOnce);
        const auto room = static_cast<DWORD>(ids->size() * sizeof(DWORD));
        if (!EnumProcesses(reinterpret_cast<DWORD*>(ids->data()), room, &needed))
            return lastError();
    } while (needed == ids->size() * sizeof(DWORD));
    ids->resize(needed / sizeof(DWORD));
    return 0;
}

int osProcessViewOpen(uint32_t id, OsProcessView** view) {
    *view = nullptr;
    const HANDLE handle = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id);
    if (handle == nullptr) return lastError();
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(handle, &code);
    if (code == STILL_ACTIVE) *view = new (std::nothrow) OsProcessView{handle};
    if (*view != nullptr) return 0;
    CloseHandle(handle);
    return code == STILL_ACTIVE ? ERROR_NOT_ENOUGH_MEMORY : ERROR_INVALID_PARAMETER;
}

void osProcessViewClose(OsProcessView** view) {
    if (view == nullptr || *view == nullptr) return;
    CloseHandle((*view)->handle);
    delete *view;
    *view = nullptr;
}

int osProcessViewProgram(OsProcessView* view, std::string* path, bool* mayCome) {
    HMODULE module = nullptr;
    DWORD needed = 0;
    *mayCome = false;
    if (!EnumProcessModules(view->handle, &module, sizeof module, &needed)) {
        *mayCome = true;
        return lastError();
    }
    char text[kProgramPath + 1];
    const DWORD length = GetModuleFileNameExA(view->handle, module, text, kProgramPath);
    if (length == 0) return lastError();
    path->assign(text, length);
    return 0;
}

bool osProcessViewUser(OsProcessView* view, std::string* domain, std::string* name) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(view->handle, TOKEN_QUERY | TOKEN_QUERY_SOURCE, &token)) return false;
    const bool found = lookUp(token, domain, name);
    CloseHandle(token);
    return found;
}
