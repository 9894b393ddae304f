#include "platform/clock.h"

#include <windows.h>

#include <ctime>

namespace {

// The system's clock counts steps of 100 nanoseconds from 1601.
constexpr int64_t kStepsPerMillisecond = 10000;
constexpr int64_t kMillisecondsTo1970 = 11644473600000;

bool timeOfDay(bool broke, const tm& broken, OsTimeOfDay* time) {
    if (broke) *time = {broken.tm_hour, broken.tm_min, broken.tm_sec};
    return broke;
}

}  // namespace

bool osTimeOfDayUtc(int64_t secondsSince1970, OsTimeOfDay* time) {
    tm broken{};
    const __time64_t seconds = secondsSince1970;
    return timeOfDay(_gmtime64_s(&broken, &seconds) == 0, broken, time);
}

bool osTimeOfDayLocal(int64_t secondsSince1970, OsTimeOfDay* time) {
    tm broken{};
    const __time64_t seconds = secondsSince1970;
    return timeOfDay(_localtime64_s(&broken, &seconds) == 0, broken, time);
}

int64_t osSystemUtc() {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    const auto steps =
        static_cast<int64_t>(static_cast<uint64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime);
    return steps / kStepsPerMillisecond - kMillisecondsTo1970;
}

uint64_t osSystemTicks() {
    return GetTickCount64();
}

void osSystemSleep(uint32_t milliseconds) {
    Sleep(milliseconds);
}
