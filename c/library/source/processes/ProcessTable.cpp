#include "processes/ProcessTable.h"

#include <string>
#include <vector>

#include "containers/Memory.h"
#include "paths/Paths.h"
#include "platform/clock.h"
#include "platform/processes.h"
#include "strings/String.h"
#include "strings/StringCompare.h"
#include "strings/StringFormat.h"

namespace {

constexpr int kReadAttempts = 10;
constexpr uint32_t kReadStep = 50;
constexpr const char* kUnknownUser = "system";

bool readIds(std::vector<uint32_t>* ids) {
    return osProcessIds(ids) == 0;
}

String* readProgram(OsProcessView* view) {
    std::string path;
    for (int attempt = 0; attempt < kReadAttempts; ++attempt) {
        bool mayCome = false;
        if (osProcessViewProgram(view, &path, &mayCome) == 0) return stringFromView(path);
        if (!mayCome) break;
        osSleep(kReadStep);
    }
    return nullptr;
}

String* readUser(OsProcessView* view) {
    std::string domain;
    std::string name;
    if (!osProcessViewUser(view, &domain, &name)) return stringFromText(kUnknownUser);
    return stringFormatNew("\\\\%s\\%s", domain.c_str(), name.c_str());
}

// The same program at the same place with the same size has the same code.
uint64_t identityOf(const String* path) {
    if (!pathExists(path)) return 0;
    Owned<String> directory(pathDirectoryPart(path));
    Owned<String> folder(pathBaseName(directory.get()));
    Owned<String> name(pathBaseName(path));
    Owned<String> text(stringFormatNew("%S\n%S\n%U", folder, name, pathFileSize(path)));
    return text ? stringHash(text.get()) : 0;
}

void destroyElement(void** element) {
    auto* info = static_cast<ProcessInfo*>(*element);
    processInfoDestroy(&info);
    *element = nullptr;
}

}  // namespace

Vector* processListPids() {
    std::vector<uint32_t> ids;
    if (!readIds(&ids)) return nullptr;
    Owned<Vector> pids(vectorCreateSized(static_cast<uint32_t>(ids.size())));
    for (const uint32_t id : ids)
        if (!vectorAppend(pids.get(), reinterpret_cast<void*>(static_cast<uintptr_t>(id))))
            return nullptr;
    return pids.release();
}

Vector* processListInfo() {
    Owned<Vector> pids(processListPids());
    Vector* list = pids ? vectorCreate() : nullptr;
    if (list == nullptr) return nullptr;
    for (uint32_t at = 0; at < vectorSize(pids.get()); ++at) {
        Owned<ProcessInfo> info(processInfoInit(processListedPid(pids.get(), at)));
        if (info && !processInfoRead(info.get())) continue;
        if (!info || !vectorAppend(list, info.get())) {
            processListInfoDestroy(&list);
            return nullptr;
        }
        info.release();
    }
    return list;
}

void processListInfoDestroy(Vector** list) {
    vectorDestroyWith(list, destroyElement);
}

ProcessInfo* processInfoInit(uint32_t pid) {
    ProcessInfo* info = memNew<ProcessInfo>();
    if (info != nullptr) info->pid = pid;
    return info;
}

void processInfoDestroy(ProcessInfo** info) {
    if (info == nullptr || *info == nullptr) return;
    stringDestroy(&(*info)->exe);
    stringDestroy(&(*info)->user);
    memDelete(info);
}

bool processInfoRead(ProcessInfo* info, int* error) {
    if (error != nullptr) *error = 0;
    if (info == nullptr || info->pid == 0) return false;
    OsProcessView* view = nullptr;
    const int failure = osProcessViewOpen(info->pid, &view);
    if (failure != 0) {
        if (error != nullptr) *error = failure;
        return false;
    }
    stringDestroy(&info->exe);
    stringDestroy(&info->user);
    info->exe = readProgram(view);
    info->code = info->exe == nullptr ? 0 : identityOf(info->exe);
    info->user = readUser(view);
    osProcessViewClose(&view);
    return true;
}
