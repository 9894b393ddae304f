#pragma once

#include <cstdint>

#include "containers/Owned.h"
#include "time/Time.h"

// Offsets of local time from UTC, as the system tells them.

struct TimeZone {
    int32_t offset;  // minutes
};

// Ends a record and clears the pointer. Null-safe.
void zoneDestroy(TimeZone** zone);

template <>
struct OwnedTraits<TimeZone> {
    static void destroy(TimeZone** zone) { zoneDestroy(zone); }
};

// The local offset in minutes at a time; 0 where the date cannot be told. It lies
// between 0 and 24 hours: a zone west of Greenwich comes out as its complement.
int32_t zoneOffsetAt(Time time);

// The zone of the present moment. The caller owns the result; null when memory runs out.
TimeZone* zoneCurrent();

// Turns a record into the zone's wall clock, after `zoneRemove` if it is not UTC.
// False, with the fields unchanged, when the record holds no valid date.
bool zoneApply(const TimeZone* zone, DateTime* dateTime);

// Turns a record that is not marked UTC into UTC. An invalid date stays as it
// is, with false.
bool zoneRemove(const TimeZone* zone, DateTime* dateTime);

// `zoneApply` with the zone of the present moment, whatever the record's own date.
bool dateTimeToLocal(DateTime* dateTime);
