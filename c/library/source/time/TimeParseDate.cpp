#include "strings/StringNumbers.h"
#include "time/Calendar.h"
#include "time/TimeParse.h"

namespace {

constexpr uint32_t kYearsPerCentury = 100;
// A first dash here says that the year is written in full.
constexpr size_t kFullYear = 4;
constexpr size_t kMostDashes = 3;

// Where the dashes of a text stand.
struct Dashes {
    size_t at[kMostDashes];
    size_t count = 0;
};

Dashes findDashes(std::string_view text) {
    Dashes dashes;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '-') continue;
        if (dashes.count < kMostDashes) dashes.at[dashes.count] = at;
        ++dashes.count;
    }
    return dashes;
}

uint32_t number(std::string_view text, size_t start, size_t end = std::string_view::npos) {
    return textToUInt32(text.substr(start, end - start));
}

// The first year of the present century.
uint32_t century() {
    DateTime now;
    dateTimeSet(&now, timeNow());
    return now.date.year - now.date.year % kYearsPerCentury;
}

DateFields dateOf(uint32_t year, uint32_t month, uint32_t day) {
    return {year, month, day, 0, 0, 0};
}

// 20, 2009, 090312, 20090312.
bool readDigits(std::string_view text, const Dashes&, DateFields* out) {
    switch (text.size()) {
        case 2:
            *out = dateOf(number(text, 0) * kYearsPerCentury, 1, 1);
            return true;
        case 4:
            *out = dateOf(number(text, 0), 1, 1);
            return true;
        case 6:
            *out = dateOf(century() + number(text, 0, 2), number(text, 2, 4), number(text, 4));
            return true;
        case 8:
            *out = dateOf(number(text, 0, 4), number(text, 4, 6), number(text, 6));
            return true;
        default:
            return false;
    }
}

uint32_t yearBeforeDash(std::string_view text, size_t dash) {
    const uint32_t year = number(text, 0, dash);
    return dash == kFullYear ? year : century() + year;
}

// 2009-3-12, 09-3-12.
bool readYearMonthDay(std::string_view text, const Dashes& dashes, DateFields* out) {
    *out = dateOf(yearBeforeDash(text, dashes.at[0]), number(text, dashes.at[0] + 1, dashes.at[1]),
                  number(text, dashes.at[1] + 1));
    return true;
}

// 2009-3.
bool readYearMonth(std::string_view text, const Dashes& dashes, DateFields* out) {
    *out = dateOf(yearBeforeDash(text, dashes.at[0]), number(text, dashes.at[0] + 1), 1);
    return true;
}

// What stands between a dash in front and this one; nothing leaves the year out.
uint32_t yearBetween(std::string_view text, size_t dash) {
    return dash <= 1 ? kDateFieldLeftOut : number(text, 1, dash);
}

// ---12, --3-12, -2009-3-12.
bool readThreeDashes(std::string_view text, const Dashes& dashes, DateFields* out) {
    const uint32_t day = number(text, dashes.at[2] + 1);
    if (dashes.at[2] == dashes.at[1] + 1)
        *out = dateOf(kDateFieldLeftOut, kDateFieldLeftOut, day);
    else
        *out = dateOf(yearBetween(text, dashes.at[1]), number(text, dashes.at[1] + 1, dashes.at[2]),
                      day);
    return true;
}

// --3, -2009-3.
bool readDashYearMonth(std::string_view text, const Dashes& dashes, DateFields* out) {
    *out = dateOf(yearBetween(text, dashes.at[1]), number(text, dashes.at[1] + 1), 1);
    return true;
}

// -0903. The form -09 is none, although a year could be read from it.
bool readDashDigits(std::string_view text, const Dashes&, DateFields* out) {
    if (text.size() != 5) return false;
    *out = dateOf(number(text, 1, 3), number(text, 3), 1);
    return true;
}

struct DateForm {
    std::string_view allowed;
    bool (*read)(std::string_view text, const Dashes& dashes, DateFields* out);
};

// By number of dashes; the second of a pair when the text begins with one.
constexpr DateForm kForms[][2] = {
    {{"0123456789", readDigits}, {}},
    {{"-0123456789", readYearMonth}, {"-0123456789", readDashDigits}},
    {{"-0123456789", readYearMonthDay}, {"-0123456789", readDashYearMonth}},
    {{"-0123456789", readThreeDashes}, {"-0123456789", readThreeDashes}},
};

}  // namespace

bool timeParseDate(DateFields* out, std::string_view text) {
    if (out == nullptr) return false;
    const Dashes dashes = findDashes(text);
    if (dashes.count > kMostDashes) {
        *out = dateOf(0, 0, 0);
        return true;
    }
    const bool dashFirst = dashes.count > 0 && dashes.at[0] == 0;
    const DateForm& form = kForms[dashes.count][dashFirst];
    if (text.find_first_not_of(form.allowed) != std::string_view::npos) return false;
    DateFields read;
    if (!form.read(text, dashes, &read)) return false;
    *out = read;
    return true;
}
