#include "platform/clock.h"

#include <cerrno>
#include <ctime>

namespace {

constexpr int64_t kMillisecondsPerSecond = 1000;
constexpr int64_t kNanosecondsPerMillisecond = 1000000;

int64_t milliseconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return time.tv_sec * kMillisecondsPerSecond + time.tv_nsec / kNanosecondsPerMillisecond;
}

bool timeOfDay(const tm* broken, OsTimeOfDay* time) {
    if (broken == nullptr) return false;
    *time = {broken->tm_hour, broken->tm_min, broken->tm_sec};
    return true;
}

}  // namespace

bool osTimeOfDayUtc(int64_t secondsSince1970, OsTimeOfDay* time) {
    const time_t seconds = secondsSince1970;
    tm broken{};
    return timeOfDay(gmtime_r(&seconds, &broken), time);
}

bool osTimeOfDayLocal(int64_t secondsSince1970, OsTimeOfDay* time) {
    const time_t seconds = secondsSince1970;
    tm broken{};
    return timeOfDay(localtime_r(&seconds, &broken), time);
}

int64_t osSystemUtc() {
    return milliseconds(CLOCK_REALTIME);
}

uint64_t osSystemTicks() {
    return static_cast<uint64_t>(milliseconds(CLOCK_BOOTTIME));
}

void osSystemSleep(uint32_t duration) {
    timespec rest{
        static_cast<time_t>(duration / kMillisecondsPerSecond),
        static_cast<long>(duration % kMillisecondsPerSecond * kNanosecondsPerMillisecond)};
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &rest, &rest) == EINTR) continue;
}
