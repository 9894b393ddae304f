#include "threads/QuitFlag.h"

#include <algorithm>
#include <atomic>

#include "platform/clock.h"
#include "platform/messages.h"

namespace {

constexpr uint32_t kStep = 50;

std::atomic<bool> quitFlag{false};

}  // namespace

OsEvent* quitEvent() {
    static OsEvent* const event = osEventCreate();
    return event;
}

bool quitFlagIsSet() {
    return quitFlag.load(std::memory_order_acquire);
}

void quitFlagSet() {
    quitFlag.store(true, std::memory_order_release);
    osEventRaise(quitEvent());
}

void quitFlagReset() {
    quitFlag.store(false, std::memory_order_release);
    osEventClear(quitEvent());
}

void sleepInterruptible(uint32_t milliseconds) {
    if (milliseconds < kStep) {
        osSleep(milliseconds);
        return;
    }
    const uint32_t start = osClockTick32();
    while (!quitFlagIsSet()) {
        const uint32_t passed = osClockTick32() - start;
        if (passed >= milliseconds) return;
        if (osWaitForEvent(quitEvent(), std::min(kStep, milliseconds - passed)) != OsWake::Timeout)
            return;
    }
}
