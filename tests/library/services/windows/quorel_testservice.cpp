// A service that runs until it is told to stop, or for a minute.

#include <windows.h>

namespace {

SERVICE_STATUS_HANDLE handle;
HANDLE stopped;

void tell(DWORD state) {
    SERVICE_STATUS status = {};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    status.dwControlsAccepted = state == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP : 0;
    SetServiceStatus(handle, &status);
}

DWORD WINAPI heed(DWORD control, DWORD, void*, void*) {
    if (control != SERVICE_CONTROL_STOP) return ERROR_CALL_NOT_IMPLEMENTED;
    tell(SERVICE_STOP_PENDING);
    SetEvent(stopped);
    return NO_ERROR;
}

void WINAPI run(DWORD, char**) {
    stopped = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    handle = RegisterServiceCtrlHandlerExA("QuorelServiceTest", heed, nullptr);
    tell(SERVICE_RUNNING);
    WaitForSingleObject(stopped, 60000);
    tell(SERVICE_STOPPED);
}

char name[] = "QuorelServiceTest";

}  // namespace

int main() {
    const SERVICE_TABLE_ENTRYA services[] = {{name, run}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherA(services) ? 0 : 1;
}
