#include "strings/StringNumbers.h"
#include "time/Calendar.h"
#include "time/TimeParse.h"

namespace {

constexpr std::string_view kDigits = "0123456789";
// Added before the cut to milliseconds, so that 0.0005 counts as one.
constexpr double kHalfMillisecond = 0.0005;
constexpr uint32_t kLastMsec = 999;
constexpr uint32_t kLastSecond = 59;
constexpr uint32_t kLastMinute = 59;
constexpr uint32_t kLastHour = 23;

size_t countOf(std::string_view text, char c) {
    size_t count = 0;
    for (const char byte : text) count += byte == c;
    return count;
}

// The part of the text in which a number stands; empty where the text is too short.
uint32_t numberAt(std::string_view text, size_t start, size_t count = std::string_view::npos) {
    return start >= text.size() ? 0 : textToUInt32(text.substr(start, count));
}

// Cuts the fraction off and gives it in milliseconds, up to 1000.
bool takeFraction(std::string_view* text, uint32_t* msec) {
    const size_t point = text->find('.');
    *msec = 0;
    if (point == std::string_view::npos) return true;
    const std::string_view digits = text->substr(point + 1);
    if (digits.empty() || digits.find_first_not_of(kDigits) != std::string_view::npos) return false;
    const double fraction = textToDouble(text->substr(point));
    *msec = numberToUInt32((fraction + kHalfMillisecond) * kMsPerSecond);
    text->remove_suffix(text->size() - point);
    return true;
}

// 14, 1405, 140509.
bool readDigits(std::string_view text, uint32_t msec, ClockFields* out) {
    *out = {numberAt(text, 0, 2), 0, 0, msec};
    if (text.size() == 6) {
        out->minute = numberAt(text, 2, 2);
        out->second = numberAt(text, 4, 2);
        return true;
    }
    out->msec = msec % kMsPerSecond;
    // The first digit of the minute is passed over; times stored that way depend on it.
    if (text.size() == 4) out->minute = numberAt(text, 3);
    return text.size() == 2 || text.size() == 4;
}

// 14:05, 14:05:09.
bool readColons(std::string_view text, uint32_t msec, ClockFields* out) {
    const size_t first = text.find(':');
    const size_t second = text.find(':', first + 1);
    *out = {numberAt(text, 0, first), numberAt(text, first + 1, second - first - 1), 0, msec};
    if (second != std::string_view::npos) out->second = numberAt(text, second + 1);
    return true;
}

// -05-09, -0509, --09: the second has at most two digits, and the minute is left
// out when nothing stands in front of the last dash.
bool readDashes(std::string_view text, uint32_t msec, ClockFields* out) {
    const size_t dash = text.rfind('-');
    const bool behindDash = text.size() - dash <= 3;
    const size_t second = behindDash ? dash + 1 : text.size() - 2;
    const bool noMinute = behindDash && (dash == 0 || text[dash - 1] == '-');
    *out = {kDateFieldLeftOut, noMinute ? kDateFieldLeftOut : numberAt(text, 1, 2),
            numberAt(text, second), msec};
    return true;
}

// -05:09.
bool readDashAndColon(std::string_view text, uint32_t msec, ClockFields* out) {
    const size_t colon = text.find(':');
    const uint32_t minute = colon < 2 ? 0 : numberAt(text, 1, colon - 1);
    *out = {kDateFieldLeftOut, minute, numberAt(text, colon + 1), msec};
    return true;
}

struct ClockForm {
    std::string_view allowed;
    bool (*read)(std::string_view text, uint32_t msec, ClockFields* out);
};
constexpr ClockForm kDigitsForm = {"0123456789", readDigits};
constexpr ClockForm kColonsForm = {"0123456789:", readColons};
constexpr ClockForm kDashesForm = {"0123456789-", readDashes};
constexpr ClockForm kDashAndColonForm = {"0123456789-:", readDashAndColon};

const ClockForm* formOf(std::string_view text) {
    const bool dash = text.find('-') != std::string_view::npos;
    switch (countOf(text, ':')) {
        case 0:
            return dash ? &kDashesForm : &kDigitsForm;
        case 1:
            return dash ? &kDashAndColonForm : &kColonsForm;
        case 2:
            return &kColonsForm;
        default:
            return nullptr;
    }
}

void limit(uint32_t* field, uint32_t last) {
    if (*field > last) *field = last;
}

}  // namespace

bool timeParseClock(ClockFields* out, std::string_view text) {
    uint32_t msec = 0;
    if (out == nullptr || !takeFraction(&text, &msec)) return false;
    const ClockForm* form = formOf(text);
    ClockFields read;
    if (form == nullptr || text.find_first_not_of(form->allowed) != std::string_view::npos ||
        !form->read(text, msec, &read))
        return false;
    limit(&read.msec, kLastMsec);
    limit(&read.second, kLastSecond);
    limit(&read.minute, kLastMinute);
    limit(&read.hour, kLastHour);
    *out = read;
    return true;
}
