#include "platform/messages.h"

#include <windows.h>

#include <new>

#include "platform/clock.h"
#include "windows/WaitEvent.h"

struct OsEvent {
    HANDLE handle;
};

namespace {

constexpr DWORD kPostedMessages = QS_POSTMESSAGE | QS_ALLPOSTMESSAGE;

}  // namespace

int osPostMessage(uint32_t threadId, uint32_t message) {
    return PostThreadMessageA(threadId, message, 0, 0) ? 0 : static_cast<int>(GetLastError());
}

bool osTakeMessage(uint32_t* message) {
    MSG taken;
    if (!PeekMessageA(&taken, nullptr, 0, 0, PM_REMOVE)) return false;
    *message = taken.message;
    return true;
}

OsEvent* osEventCreate() {
    const HANDLE handle = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    if (handle == nullptr) return nullptr;
    OsEvent* event = new (std::nothrow) OsEvent{handle};
    if (event == nullptr) CloseHandle(handle);
    return event;
}

void osEventDestroy(OsEvent** event) {
    if (event == nullptr || *event == nullptr) return;
    CloseHandle((*event)->handle);
    delete *event;
    *event = nullptr;
}

void osEventRaise(OsEvent* event) {
    if (event != nullptr) SetEvent(event->handle);
}

void osEventClear(OsEvent* event) {
    if (event != nullptr) ResetEvent(event->handle);
}

OsWake osWaitForEvent(OsEvent* event, uint32_t milliseconds) {
    OsVirtualClock* clock = osVirtualClock.load(std::memory_order_acquire);
    const DWORD count = event == nullptr ? 0 : 1;
    const DWORD woken =
        MsgWaitForMultipleObjects(count, count == 0 ? nullptr : &event->handle, FALSE,
                                  clock == nullptr ? milliseconds : 0, kPostedMessages);
    if (woken < WAIT_OBJECT_0 + count) return OsWake::Event;
    if (woken == WAIT_OBJECT_0 + count) {
        // The message that ended this wait must not end the next one.
        GetQueueStatus(kPostedMessages);
        return OsWake::Message;
    }
    if (clock != nullptr) {
        clock->advance(milliseconds);
        SwitchToThread();
    }
    return OsWake::Timeout;
}

HANDLE windowsEventHandle(const OsEvent* event) {
    return event == nullptr ? nullptr : event->handle;
}
