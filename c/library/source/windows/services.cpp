#include "platform/services.h"

#include <windows.h>

#include <new>
#include <string>

struct OsServiceManager {
    SC_HANDLE handle;
};
struct OsService {
    SC_HANDLE handle;
};

namespace {

// Wraps a handle of the service manager; a null one is the failure of the call before.
template <typename T>
uint32_t receive(SC_HANDLE handle, T** opened) {
    const DWORD error = GetLastError();
    *opened = nullptr;
    if (handle == nullptr) return error;
    *opened = new (std::nothrow) T{handle};
    if (*opened != nullptr) return 0;
    CloseServiceHandle(handle);
    return ERROR_NOT_ENOUGH_MEMORY;
}

template <typename T>
void release(T** opened) {
    if (*opened == nullptr) return;
    CloseServiceHandle((*opened)->handle);
    delete *opened;
    *opened = nullptr;
}

uint32_t errorOf(BOOL done) {
    return done ? 0 : GetLastError();
}

}  // namespace

uint32_t osServiceManagerOpen(OsServiceManager** manager) {
    return receive(OpenSCManagerA(nullptr, SERVICES_ACTIVE_DATABASEA, SC_MANAGER_ALL_ACCESS),
                   manager);
}

void osServiceManagerClose(OsServiceManager** manager) {
    release(manager);
}

uint32_t osServiceOpen(OsServiceManager* manager, std::string_view name, OsService** service) {
    const std::string text(name);
    return receive(OpenServiceA(manager->handle, text.c_str(), SERVICE_ALL_ACCESS), service);
}

void osServiceClose(OsService** service) {
    release(service);
}

uint32_t osServiceQuery(OsService* service, uint32_t* state) {
    SERVICE_STATUS_PROCESS status = {};
    DWORD needed = 0;
    const uint32_t error =
        errorOf(QueryServiceStatusEx(service->handle, SC_STATUS_PROCESS_INFO,
                                     reinterpret_cast<BYTE*>(&status), sizeof status, &needed));
    *state = status.dwCurrentState;
    return error;
}

uint32_t osServiceStop(OsService* service, uint32_t* state) {
    SERVICE_STATUS status = {};
    const uint32_t error = errorOf(ControlService(service->handle, SERVICE_CONTROL_STOP, &status));
    *state = status.dwCurrentState;
    return error;
}

uint32_t osServiceStart(OsService* service) {
    return errorOf(StartServiceA(service->handle, 0, nullptr));
}
