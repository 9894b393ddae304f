#include "time/TimeParse.h"

#include "strings/StringMatch.h"
#include "strings/StringNumbers.h"
#include "time/Zones.h"

namespace {

constexpr std::string_view kMidnight = "00:00:00";
constexpr std::string_view kZoneBytes = "0123456789+-:";
constexpr const char* kZoneWithColon = "??*:?*";
constexpr size_t kLengthOfHoursAndMinutes = 5;
constexpr size_t kLengthOfHours = 3;
constexpr uint32_t kMinutesPerHour = 60;

struct Parts {
    std::string_view date;
    std::string_view clock = kMidnight;
    std::string_view zone;
    bool hasZone = false;
};

// A dash right behind the T belongs to the clock: it leaves out the hour.
size_t findZone(std::string_view text, size_t t) {
    const size_t dash = text.find('-', t);
    if (dash != std::string_view::npos && dash >= t + 2) return dash;
    return text.find_first_of("Z+", t);
}

Parts takeApart(std::string_view text) {
    Parts parts;
    const size_t t = text.find('T');
    parts.date = text.substr(0, t);
    if (t == std::string_view::npos) return parts;
    const size_t zone = findZone(text, t);
    parts.clock = text.substr(t + 1, zone == std::string_view::npos ? zone : zone - t - 1);
    parts.hasZone = zone != std::string_view::npos;
    if (parts.hasZone) parts.zone = text.substr(zone);
    return parts;
}

// The offset that a text tells, in minutes without its sign.
bool parseOffset(std::string_view text, uint32_t* minutes) {
    LocalString whole;
    if (!stringSetView(&whole, text)) return false;
    std::string_view hour;
    std::string_view minute;
    if (stringMatchText(&whole, kZoneWithColon)) {
        const size_t colon = text.find(':');
        hour = text.substr(1, colon - 1);
        minute = text.substr(colon + 1);
    } else if (text.size() == kLengthOfHoursAndMinutes || text.size() == kLengthOfHours) {
        hour = text.substr(1, 2);
        minute = text.substr(kLengthOfHours);
    } else {
        return false;
    }
    *minutes = textToUInt32(hour) * kMinutesPerHour + textToUInt32(minute);
    return true;
}

// Goes through the time that the fields stand for, so that all of them are set.
void refresh(DateTime* dateTime) {
    Time time;
    if (!dateTimeToTime(&time, dateTime)) return;
    const bool utc = dateTime->isUtc == 1;
    dateTimeSet(dateTime, time);
    if (!utc) dateTimeToLocal(dateTime);
}

}  // namespace

bool timeParseZone(std::string_view text, DateTime* dateTime) {
    if (dateTime == nullptr) return false;
    int32_t offset = kZoneNotSet;
    const bool plain = text.empty() || text == "Z";
    if (!plain) {
        uint32_t minutes = 0;
        if (text.front() != '+' && text.front() != '-') return false;
        if (text.find_first_not_of(kZoneBytes) != std::string_view::npos) return false;
        if (!parseOffset(text, &minutes)) return false;
        offset = static_cast<int32_t>(text.front() == '-' ? 0 - minutes : minutes);
    }
    dateTime->zoneOffset = offset;
    dateTime->isUtc = text == "Z" ? 1 : 0;
    if (plain)
        dateTime->dst = text.empty() ? 2 : 1;
    else
        refresh(dateTime);
    return true;
}

bool timeParse(DateTime* out, std::string_view text) {
    if (out == nullptr) return false;
    const Parts parts = takeApart(text);
    DateTime read;
    read.isUtc = 0;
    if (!timeParseDate(&read.date, parts.date) || !timeParseClock(&read.clock, parts.clock))
        return false;
    if (parts.hasZone && !timeParseZone(parts.zone, &read)) return false;
    refresh(&read);
    *out = read;
    return true;
}

bool timeFromText(Time* out, std::string_view text) {
    DateTime read;
    return timeParse(&read, text) && dateTimeToTime(out, &read);
}
