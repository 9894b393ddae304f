#pragma once

#include <string_view>

#include "strings/String.h"
#include "time/Time.h"
#include "time/Zones.h"

// Dates as text. The functions give a new string that the caller owns, or null
// when memory runs out.

// Writes the time as `format` says, in the wall clock of `zone`, or of the
// system's present zone for null. After a percent sign come an optional fill (a
// digit and a point), a width of one digit, of several the last, and a letter:
//
//   Y year     y its last two digits    M month    D day
//   W week     w weekday                d day of the year
//   h hour     m minute   s second      S millisecond
//   e seconds since 1970                E milliseconds since 1900
//   Z sign and hours of the offset      z its minutes, with the sign unless Z or
//                                         z came before
//
// Another letter stands for itself. Numbers are filled in front up to the width,
// with blanks when there is no fill. "@Z" at the format's first @ is taken out:
// the text is in UTC then and ends in "Z".
String* timeFormat(Time time, const TimeZone* zone, std::string_view format);

// The time of the present zone's wall clock as 2009-03-12T14:05:09.
String* timeToText(Time time);
