#pragma once

#include <cstdint>

#include "containers/Owned.h"

// Milliseconds since 1900-01-01 00:00:00 UTC.
using Time = uint64_t;

constexpr Time kMsPerSecond = 1000;
constexpr Time kMsPerMinute = 60 * kMsPerSecond;
constexpr Time kMsPerHour = 60 * kMsPerMinute;
constexpr Time kMsPerDay = 24 * kMsPerHour;

// The start of 1970, from which scripts count their seconds.
constexpr Time kEpoch = 2208988800000;

struct DateFields {
    uint32_t year;   // in full
    uint32_t month;  // 1 to 12
    uint32_t day;    // 1 to 31
    uint32_t wday;   // 1 is Monday, 7 is Sunday
    uint32_t yday;   // from 1
    uint32_t week;
};

struct ClockFields {
    uint32_t hour;
    uint32_t minute;
    uint32_t second;
    uint32_t msec;
};

constexpr int32_t kZoneNotSet = 6000;

// A time broken down. The two groups of fields lie inside the record rather than
// behind pointers: every log line makes one of these.
struct DateTime {
    DateFields date;
    ClockFields clock;
    int32_t zoneOffset = kZoneNotSet;  // minutes east of UTC
    int32_t isUtc = 2;                 // 1: UTC; 0: wall clock; 2: nothing yet
    int32_t dst = 1;                   // meaningful after a conversion to local time
};

// Ends a record and clears the pointer. Null-safe.
void dateTimeDestroy(DateTime** dateTime);

template <>
struct OwnedTraits<DateTime> {
    static void destroy(DateTime** dateTime) { dateTimeDestroy(dateTime); }
};

// Puts a time together. False, with `out` untouched, when a field is out of range.
bool timeFromFields(Time* out, uint32_t year, uint32_t month, uint32_t day, uint32_t hour,
                    uint32_t minute, uint32_t second, uint32_t msec);

// Breaks a time down to UTC fields. The caller owns the result; null when memory runs out.
DateTime* timeToDateTime(Time time);

// The same into a record of the caller's.
void dateTimeSet(DateTime* dateTime, Time time);

// The time that a record stands for: its fields as they are when it is UTC, else
// less the present moment's local offset. False when a field is out of range.
bool dateTimeToTime(Time* out, const DateTime* dateTime);

// From and to seconds since 1970. Times before 1970 do not survive the second.
Time timeFromEpoch(int64_t seconds);
int64_t timeToEpoch(Time time);

// The present moment.
Time timeNow();
