#include "time/TimeFormat.h"

#include "strings/StringNumbers.h"

namespace {

constexpr std::string_view kUtcMark = "@Z";
constexpr std::string_view kPlainForm = "%Y-%0.2M-%0.2DT%0.2h:%0.2m:%0.2s";
constexpr uint32_t kYearsOfShortForm = 100;
// The count of milliseconds is written in two parts.
constexpr Time kLowPart = 1000000;
constexpr uint32_t kLowPartDigits = 6;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// What stands between the percent sign and the letter.
struct Field {
    char fill = ' ';
    uint32_t width = 0;
};

bool appendFilled(String* out, std::string_view digits, Field field) {
    for (uint32_t at = static_cast<uint32_t>(digits.size()); at < field.width; ++at)
        if (!stringAppendChar(out, field.fill)) return false;
    return stringAppendView(out, digits);
}

// Fields of the calendar and the clock by their letter; false for other letters.
bool fieldOfLetter(const DateTime& fields, char letter, uint32_t* value) {
    const struct {
        char letter;
        uint32_t value;
    } rows[] = {
        {'Y', fields.date.year},    {'y', fields.date.year % kYearsOfShortForm},
        {'M', fields.date.month},   {'D', fields.date.day},
        {'W', fields.date.week},    {'w', fields.date.wday},
        {'d', fields.date.yday},    {'h', fields.clock.hour},
        {'m', fields.clock.minute}, {'s', fields.clock.second},
        {'S', fields.clock.msec},
    };
    for (const auto& row : rows) {
        if (row.letter != letter) continue;
        *value = row.value;
        return true;
    }
    return false;
}

// One walk over a format.
class FormatWalk {
  public:
    FormatWalk(String* out, Time time, const DateTime& fields, int32_t offset)
        : out_(out), time_(time), fields_(fields), offset_(offset) {}

    bool run(std::string_view format) {
        while (!format.empty()) {
            const size_t percent = format.find('%');
            if (percent == std::string_view::npos || percent + 1 == format.size())
                return stringAppendView(out_, format);
            if (!stringAppendView(out_, format.substr(0, percent))) return false;
            format.remove_prefix(percent + 1);
            const Field field = takeField(&format);
            if (format.empty()) return true;
            if (!write(format.front(), field)) return false;
            format.remove_prefix(1);
        }
        return true;
    }

  private:
    static Field takeField(std::string_view* format) {
        Field field;
        if (format->size() > 1 && isDigit((*format)[0]) && (*format)[1] == '.') {
            field.fill = format->front();
            format->remove_prefix(2);
        }
        for (; !format->empty() && isDigit(format->front()); format->remove_prefix(1))
            field.width = static_cast<uint32_t>(format->front() - '0');
        return field;
    }

    bool write(char letter, Field field) {
        uint32_t value = 0;
        if (fieldOfLetter(fields_, letter, &value)) return number(value, field);
        if (letter == 'e') return number(timeToEpoch(time_), field);
        if (letter == 'E') return milliseconds(field);
        if (letter == 'Z' || letter == 'z') return offset(letter == 'Z', field);
        return stringAppendChar(out_, letter);
    }

    bool number(int64_t value, Field field) {
        LocalString digits;
        return stringAppendInt64(&digits, value) && appendFilled(out_, stringView(&digits), field);
    }

    bool milliseconds(Field field) {
        LocalString digits;
        LocalString low;
        return stringAppendUInt64(&digits, time_ / kLowPart) &&
               stringAppendUInt64(&low, time_ % kLowPart) &&
               appendFilled(&digits, stringView(&low), {'0', kLowPartDigits}) &&
               appendFilled(out_, stringView(&digits), field);
    }

    bool offset(bool hours, Field field) {
        const int64_t minutes = offset_ < 0 ? -int64_t{offset_} : offset_;
        if ((hours || !signWritten_) && !stringAppendChar(out_, offset_ < 0 ? '-' : '+'))
            return false;
        signWritten_ = true;
        return number(hours ? minutes / 60 : minutes % 60, field);
    }

    String* out_;
    Time time_;
    const DateTime& fields_;
    int32_t offset_;  // minutes
    bool signWritten_ = false;
};

}  // namespace

String* timeFormat(Time time, const TimeZone* zone, std::string_view format) {
    DateTime fields;
    dateTimeSet(&fields, time);
    const size_t mark = format.find('@');
    const bool utc =
        mark != std::string_view::npos && format.substr(mark, kUtcMark.size()) == kUtcMark;
    if (!utc) {
        if (zone != nullptr)
            zoneApply(zone, &fields);
        else
            dateTimeToLocal(&fields);
    }
    Owned<String> out(stringNewEmpty());
    if (!out) return nullptr;
    LocalString unmarked;
    if (utc) {
        if (!stringAppendView(&unmarked, format.substr(0, mark)) ||
            !stringAppendView(&unmarked, format.substr(mark + kUtcMark.size())))
            return nullptr;
        format = stringView(&unmarked);
    }
    const int32_t offset = zone != nullptr ? zone->offset : zoneOffsetAt(time);
    if (!FormatWalk(out.get(), time, fields, offset).run(format)) return nullptr;
    if (utc && !stringAppendChar(out.get(), 'Z')) return nullptr;
    return out.release();
}

String* timeToText(Time time) {
    return timeFormat(time, nullptr, kPlainForm);
}
