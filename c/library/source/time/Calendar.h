#pragma once

#include <cstdint>

// The system's own calendar of dates from 1900 on, by plain arithmetic.

// What the three functions below give for a date that does not exist.
constexpr uint32_t kNoDate = 0xFFFFFFFF;

// A field that a truncated text left out.
constexpr uint32_t kDateFieldLeftOut = 0x7FFFFFFF;

// The year in which the calendar starts; its first day is a Monday.
constexpr uint32_t kFirstYear = 1900;

bool dateIsLeap(uint32_t year);

// The length of a month; 31 for a number outside 1 to 12.
uint32_t dateDaysInMonth(uint32_t year, uint32_t month);

// Whether the calendar has this day.
bool dateIsValid(uint32_t year, uint32_t month, uint32_t day);

// Days from 1900-01-01 to the first day of the year.
uint64_t dateDaysBeforeYear(uint32_t year);

// 1 for Monday to 7 for Sunday.
uint32_t dateWeekday(uint32_t year, uint32_t month, uint32_t day);

// From 1.
uint32_t dateDayOfYear(uint32_t year, uint32_t month, uint32_t day);

// From 1, by a rule of this system that is not the ISO one.
uint32_t dateWeekNumber(uint32_t year, uint32_t month, uint32_t day);
