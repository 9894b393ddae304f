#include "time/Zones.h"

#include "containers/Memory.h"
#include "platform/clock.h"

namespace {

constexpr uint32_t kEpochYear = 1970;

// Half a year: the offset that far away tells whether there is daylight saving.
constexpr Time kHalfYear = 183 * kMsPerDay;

Time shifted(Time time, int64_t minutes) {
    return time + static_cast<Time>(minutes) * kMsPerMinute;
}

// The fields as they stand, taken as UTC.
bool fieldsToTime(Time* out, const DateTime& from) {
    return timeFromFields(out, from.date.year, from.date.month, from.date.day, from.clock.hour,
                          from.clock.minute, from.clock.second, from.clock.msec);
}

// A time before 1970 moves to a year that the system knows, with the month, the
// day and about the leap pattern that it had.
bool moveBehindEpoch(Time* time) {
    DateTime fields;
    dateTimeSet(&fields, *time);
    fields.date.year = kEpochYear + ((kEpochYear - fields.date.year) & 3);
    return fieldsToTime(time, fields);
}

}  // namespace

void zoneDestroy(TimeZone** zone) {
    memDelete(zone);
}

int32_t zoneOffsetAt(Time time) {
    if (time < kEpoch && !moveBehindEpoch(&time)) return 0;
    const int64_t seconds = timeToEpoch(time);
    OsTimeOfDay local;
    OsTimeOfDay utc;
    if (!osTimeOfDayLocal(seconds, &local) || !osTimeOfDayUtc(seconds, &utc)) return 0;
    if (local.hour < utc.hour) local.hour += 24;
    const int offset = (local.hour - utc.hour) * 3600 + (local.minute - utc.minute) * 60 +
                       local.second - utc.second;
    return offset / 60;
}

TimeZone* zoneCurrent() {
    TimeZone* zone = memNew<TimeZone>();
    if (zone != nullptr) zone->offset = zoneOffsetAt(timeNow());
    return zone;
}

bool zoneRemove(const TimeZone* zone, DateTime* dateTime) {
    if (zone == nullptr || dateTime == nullptr || dateTime->isUtc == 1) return false;
    Time time;
    if (!fieldsToTime(&time, *dateTime)) return false;
    dateTimeSet(dateTime, shifted(time, -zone->offset));
    return true;
}

bool zoneApply(const TimeZone* zone, DateTime* dateTime) {
    if (zone == nullptr || dateTime == nullptr) return false;
    if (dateTime->isUtc != 1 && !zoneRemove(zone, dateTime)) return false;
    Time utc;
    if (!fieldsToTime(&utc, *dateTime)) return false;
    const Time local = shifted(utc, zone->offset);
    dateTimeSet(dateTime, local);
    dateTime->isUtc = 0;
    // Without a difference the flag stays 1: zones without daylight saving report it.
    const int32_t here = zoneOffsetAt(local);
    const int32_t away = zoneOffsetAt(utc + kHalfYear);
    if (here != away) dateTime->dst = here < away ? 1 : 0;
    dateTime->zoneOffset = zone->offset;
    return true;
}

bool dateTimeToLocal(DateTime* dateTime) {
    const TimeZone zone{zoneOffsetAt(timeNow())};
    return zoneApply(&zone, dateTime);
}
