#include "time/Time.h"

#include "containers/Memory.h"
#include "platform/clock.h"
#include "time/Calendar.h"
#include "time/Zones.h"

namespace {

// The mean year of the calendar, for the first guess at a day's year.
constexpr double kDaysPerYear = 365.2425;

// Leap years from 1900 up to the year `years` after it, which is not counted.
uint32_t leapYearsBefore(uint32_t years) {
    return years <= 4 ? 0 : (years + 299) / 400 - (years - 1) / 100 + (years - 1) / 4;
}

// Date of the day that is `days` after 1900-01-01, year, month and day only.
DateFields dateOfDay(uint32_t days) {
    uint32_t years = static_cast<uint32_t>(days / kDaysPerYear);
    // On the last day of some leap years, from 2068 on, the guess is a year ahead.
    if (365 * years + leapYearsBefore(years) > days) --years;
    uint32_t rest = days - 365 * years - leapYearsBefore(years);
    DateFields date{kFirstYear + years, 1, 0, 0, 0, 0};
    for (;;) {
        const uint32_t length = dateDaysInMonth(date.year, date.month);
        if (length > rest) break;
        rest -= length;
        if (++date.month > 12) {
            date.month = 1;
            ++date.year;
        }
    }
    date.day = rest + 1;
    return date;
}

}  // namespace

void dateTimeDestroy(DateTime** dateTime) {
    memDelete(dateTime);
}

bool timeFromFields(Time* out, uint32_t year, uint32_t month, uint32_t day, uint32_t hour,
                    uint32_t minute, uint32_t second, uint32_t msec) {
    if (out == nullptr || year == kDateFieldLeftOut || !dateIsValid(year, month, day)) return false;
    if (hour >= 24 || minute >= 60 || second >= 60 || msec >= 1000) return false;
    const Time days = dateDaysBeforeYear(year) + dateDayOfYear(year, month, day) - 1;
    *out =
        days * kMsPerDay + hour * kMsPerHour + minute * kMsPerMinute + second * kMsPerSecond + msec;
    return true;
}

void dateTimeSet(DateTime* dateTime, Time time) {
    if (dateTime == nullptr) return;
    const Time rest = time % kMsPerDay;
    DateFields& date = dateTime->date;
    date = dateOfDay(static_cast<uint32_t>(time / kMsPerDay));
    date.wday = dateWeekday(date.year, date.month, date.day);
    date.yday = dateDayOfYear(date.year, date.month, date.day);
    date.week = dateWeekNumber(date.year, date.month, date.day);
    dateTime->clock.hour = static_cast<uint32_t>(rest / kMsPerHour);
    dateTime->clock.minute = static_cast<uint32_t>(rest % kMsPerHour / kMsPerMinute);
    dateTime->clock.second = static_cast<uint32_t>(rest % kMsPerMinute / kMsPerSecond);
    dateTime->clock.msec = static_cast<uint32_t>(rest % kMsPerSecond);
    dateTime->zoneOffset = kZoneNotSet;
    dateTime->isUtc = 1;
    dateTime->dst = 1;
}

DateTime* timeToDateTime(Time time) {
    DateTime* dateTime = memNew<DateTime>();
    dateTimeSet(dateTime, time);
    return dateTime;
}

bool dateTimeToTime(Time* out, const DateTime* dateTime) {
    if (dateTime == nullptr) return false;
    DateTime utc = *dateTime;
    if (utc.isUtc != 1) {
        const TimeZone zone{zoneOffsetAt(timeNow())};
        if (!zoneRemove(&zone, &utc)) return false;
    }
    return timeFromFields(out, utc.date.year, utc.date.month, utc.date.day, utc.clock.hour,
                          utc.clock.minute, utc.clock.second, utc.clock.msec);
}

Time timeFromEpoch(int64_t seconds) {
    return static_cast<Time>(seconds) * kMsPerSecond + kEpoch;
}

int64_t timeToEpoch(Time time) {
    return static_cast<int64_t>((time - kEpoch) / kMsPerSecond);
}

Time timeNow() {
    return static_cast<Time>(osClockUtc()) + kEpoch;
}
