#include "platform/threads.h"

#include <windows.h>

#include <new>

#include "platform/messages.h"

struct OsThread {
    HANDLE handle;
    DWORD id;
};

namespace {

// The program's file asks for a deep stack for the thread that runs the script;
// other threads would each reserve as much.
constexpr size_t kStackBytes = 8 * 1024 * 1024;
constexpr DWORD kKilledCode = 1;

struct Start {
    OsThreadFunction function;
    void* argument;
    HANDLE ready;
};

DWORD WINAPI threadMain(void* argument) {
    const Start start = *static_cast<Start*>(argument);
    MSG message;
    PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);  // makes the queue
    SetEvent(start.ready);
    return start.function(start.argument);
}

}  // namespace

int osThreadStart(OsThread** thread, OsThreadFunction function, void* argument) {
    *thread = nullptr;
    OsThread* made = new (std::nothrow) OsThread{};
    if (made == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
    Start start{function, argument, CreateEventA(nullptr, TRUE, FALSE, nullptr)};
    if (start.ready != nullptr)
        made->handle = CreateThread(nullptr, kStackBytes, threadMain, &start,
                                    STACK_SIZE_PARAM_IS_A_RESERVATION, &made->id);
    const int error = made->handle == nullptr ? static_cast<int>(GetLastError()) : 0;
    if (error == 0) {
        WaitForSingleObject(start.ready, INFINITE);
        *thread = made;
    } else {
        delete made;
    }
    if (start.ready != nullptr) CloseHandle(start.ready);
    return error;
}

uint32_t osThreadId(const OsThread* thread) {
    return thread == nullptr ? 0 : thread->id;
}

uint32_t osCurrentThreadId() {
    return GetCurrentThreadId();
}

void osThreadYield() {
    SwitchToThread();
}

int osThreadHasEnded(OsThread* thread, bool* ended) {
    if (thread == nullptr) return ERROR_INVALID_HANDLE;
    DWORD code = 0;
    if (!GetExitCodeThread(thread->handle, &code)) return static_cast<int>(GetLastError());
    *ended = code != STILL_ACTIVE;
    return 0;
}

bool osThreadWait(OsThread* thread, uint32_t milliseconds) {
    return thread == nullptr || WaitForSingleObject(thread->handle, milliseconds) == WAIT_OBJECT_0;
}

int osThreadTerminate(OsThread* thread) {
    if (thread == nullptr) return ERROR_INVALID_HANDLE;
    // A thread that is killed keeps the locks that it holds, those of the system's
    // libraries too: one that listens ends by itself.
    PostThreadMessageA(thread->id, kOsMessageDestroy, 0, 0);
    if (osThreadWait(thread, kOsTerminateWait)) return 0;
    if (!TerminateThread(thread->handle, kKilledCode)) return static_cast<int>(GetLastError());
    // The end is only asked for; what the thread uses must not go before it.
    WaitForSingleObject(thread->handle, kOsTerminateWait);
    return 0;
}

void osThreadClose(OsThread** thread) {
    if (thread == nullptr || *thread == nullptr) return;
    CloseHandle((*thread)->handle);
    delete *thread;
    *thread = nullptr;
}
