#pragma once

#include <string_view>

#include "time/Time.h"

// Dates from texts after the pattern of ISO 8601, truncated forms included. The
// forms are told above the functions' parts. All give false, with the result
// untouched, for a text that is none of them.

// 14, 1405, 140509, 14:05, 14:05:09, and with the hour left out -05-09 and
// -05:09, or --09; each may have a fraction of the second behind a point. The
// four-digit form reads its minute from the last digit alone. What is out of
// range, and so also what was left out, becomes the greatest number in range.
bool timeParseClock(ClockFields* out, std::string_view text);

// 20, 2009, 090312, 20090312; 2009-3-12, 09-3-12; 2009-3; and with fields left
// out, which are `kDateFieldLeftOut` then, ---12, --3-12, -2009-3-12, --3,
// -2009-3, -0903. A year of two digits is of the present century, except in the
// last form. Only year, month and day are set. A text with more than three
// dashes passes with all fields 0, which no date has.
bool timeParseDate(DateFields* out, std::string_view text);

// Nothing, Z, +02:00, +0200 or +02 behind a time. `Z` marks the record as UTC. An
// offset is tested for its form and has no further effect: the fields are the
// present zone's, and so is `zoneOffset` in the end. Stored dates depend on it.
bool timeParseZone(std::string_view text, DateTime* dateTime);

// A date, optionally with T, a clock and a zone. The fields are UTC for a text
// with Z, else wall clock. A date that does not exist passes, with its fields as
// they were read, and is refused by `dateTimeToTime`.
bool timeParse(DateTime* out, std::string_view text);

// The time that a text stands for.
bool timeFromText(Time* out, std::string_view text);
