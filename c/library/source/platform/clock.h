#pragma once

#include <atomic>
#include <cstdint>

// The machine's clocks and sleeping. A test can put a clock of its own in the
// place of them all: time then passes only where somebody sleeps or waits.

struct OsVirtualClock {
    std::atomic<int64_t> utc{0};     // milliseconds since 1970-01-01 00:00:00 UTC
    std::atomic<uint64_t> ticks{0};  // milliseconds since the start of the system

    // Lets time pass.
    void advance(uint64_t milliseconds) {
        utc += static_cast<int64_t>(milliseconds);
        ticks += milliseconds;
    }
};

// The clock that stands in for the system's, or null. Set by tests only, while no
// other thread waits; the clock must outlive its time here.
inline std::atomic<OsVirtualClock*> osVirtualClock{nullptr};

// Hour, minute and second of a day.
struct OsTimeOfDay {
    int hour;
    int minute;
    int second;
};

// The time of day in UTC and in the system's zone at a time in seconds since
// 1970. False, with nothing written, for a time that the system cannot break down.
bool osTimeOfDayUtc(int64_t secondsSince1970, OsTimeOfDay* time);
bool osTimeOfDayLocal(int64_t secondsSince1970, OsTimeOfDay* time);

// The clocks of the system itself; use the functions below.
int64_t osSystemUtc();
uint64_t osSystemTicks();
void osSystemSleep(uint32_t milliseconds);

// Milliseconds since 1970-01-01 00:00:00 UTC.
inline int64_t osClockUtc() {
    OsVirtualClock* clock = osVirtualClock.load(std::memory_order_acquire);
    return clock == nullptr ? osSystemUtc() : clock->utc.load();
}

// Milliseconds since the start of the system; never goes back.
inline uint64_t osClockTicks() {
    OsVirtualClock* clock = osVirtualClock.load(std::memory_order_acquire);
    return clock == nullptr ? osSystemTicks() : clock->ticks.load();
}

// The same in 32 bits: it begins again after 49 days, so only differences count.
inline uint32_t osClockTick32() {
    return static_cast<uint32_t>(osClockTicks());
}

// Waits for the full time; nothing ends it sooner.
inline void osSleep(uint32_t milliseconds) {
    OsVirtualClock* clock = osVirtualClock.load(std::memory_order_acquire);
    if (clock == nullptr)
        osSystemSleep(milliseconds);
    else
        clock->advance(milliseconds);
}
