#include "time/Calendar.h"

namespace {

constexpr uint32_t kFebruary = 2;
constexpr uint32_t kThirtyDayMonths[] = {4, 6, 9, 11};

// From the first day of the year to the first day of the month.
uint32_t daysBeforeMonth(uint32_t year, uint32_t month) {
    uint32_t days = 0;
    for (uint32_t earlier = 1; earlier < month; ++earlier) days += dateDaysInMonth(year, earlier);
    return days;
}

}  // namespace

bool dateIsLeap(uint32_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

uint32_t dateDaysInMonth(uint32_t year, uint32_t month) {
    if (month == kFebruary) return dateIsLeap(year) ? 29 : 28;
    for (uint32_t shorter : kThirtyDayMonths)
        if (month == shorter) return 30;
    return 31;
}

bool dateIsValid(uint32_t year, uint32_t month, uint32_t day) {
    return year >= kFirstYear && month >= 1 && month <= 12 && day >= 1 &&
           day <= dateDaysInMonth(year, month);
}

uint64_t dateDaysBeforeYear(uint32_t year) {
    if (year <= kFirstYear) return 0;
    const uint64_t days = static_cast<uint64_t>(year - 1900) * 365;
    return days + (year - 1901) / 4 - (year - 1901) / 100 + (year - 1601) / 400;
}

uint32_t dateDayOfYear(uint32_t year, uint32_t month, uint32_t day) {
    if (!dateIsValid(year, month, day)) return kNoDate;
    return daysBeforeMonth(year, month) + day;
}

uint32_t dateWeekday(uint32_t year, uint32_t month, uint32_t day) {
    if (!dateIsValid(year, month, day)) return kNoDate;
    return (dateDaysBeforeYear(year) + daysBeforeMonth(year, month) + day - 1) % 7 + 1;
}

uint32_t dateWeekNumber(uint32_t year, uint32_t month, uint32_t day) {
    if (!dateIsValid(year, month, day)) return kNoDate;
    // The first week reaches into the year before when 4 January is past Friday.
    const uint32_t fourth = dateWeekday(year, 1, 4);
    const uint32_t days = fourth > 5 ? fourth - 5 : 0;
    return (days + daysBeforeMonth(year, month) + day) / 7 + 1;
}
