#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "platform/clock.h"
#include "time/TimeFormat.h"
#include "time/TimeParse.h"

namespace {

// 2009-03-12 14:05:09.007, a Thursday.
constexpr int64_t kNow = 1236866709007;

struct VirtualClock {
    OsVirtualClock clock;
    VirtualClock() {
        clock.utc = kNow;
        osVirtualClock = &clock;
    }
    ~VirtualClock() { osVirtualClock = nullptr; }
};

std::string format(Time time, int32_t zoneOffset, std::string_view form) {
    const TimeZone zone{zoneOffset};
    const Owned<String> text(timeFormat(time, &zone, form));
    return text ? std::string(stringView(text.get())) : "none";
}

std::string clockOf(const std::string& text) {
    ClockFields clock;
    if (!timeParseClock(&clock, text)) return "none";
    return std::to_string(clock.hour) + ":" + std::to_string(clock.minute) + ":" +
           std::to_string(clock.second) + "." + std::to_string(clock.msec);
}

std::string dateOf(const std::string& text) {
    DateFields date;
    if (!timeParseDate(&date, text)) return "none";
    const auto field = [](uint32_t value) {
        return value == 0x7FFFFFFF ? std::string("?") : std::to_string(value);
    };
    return field(date.year) + "-" + field(date.month) + "-" + field(date.day);
}

std::string timeOf(const std::string& text) {
    Time time;
    return timeFromText(&time, text) ? format(time, 0, "%Y-%M-%DT%h:%m:%s.%S") : "none";
}

// Whether a text is a zone, and whether the fields are UTC then.
std::string zoneOf(const std::string& text) {
    DateTime fields{{2009, 3, 12, 0, 0, 0}, {14, 5, 9, 0}};
    if (!timeParseZone(text, &fields)) return fields.isUtc == 2 ? "none" : "changed";
    return fields.clock.hour != 14 ? "moved" : fields.isUtc == 1 ? "utc" : "local";
}

// Goes through cases TEXT=RESULT with blanks between them.
void check(std::string (*read)(const std::string&), const std::string& cases) {
    for (size_t at = 0, end; at < cases.size(); at = end + 1) {
        end = std::min(cases.find(' ', at), cases.size());
        const size_t sign = cases.find('=', at);
        const std::string text = cases.substr(at, sign - at);
        EXPECT_EQ(cases.substr(sign + 1, end - sign - 1), read(text)) << text;
    }
}

TEST(TimeFormat, WritesFieldsWithWidthAndFill) {
    const struct {
        int32_t zone;
        const char* form;
        const char* text;
    } cases[] = {{0, "%Y-%0.2M", "2009-03"},
                 {0, "%0.2M@Z", "03Z"},
                 {0, "%y/%M/%D %W %w %d", "9/3/12 11 4 71"},
                 {0, "%h:%m:%s.%0.3S|%2M|%*.3M", "14:5:9.007| 3|*.3M"},
                 {0, "%0.12Y%3.4M%9.0M%x%%y%", "200933333x%y%"},
                 {0, "%e %E %Z%5", "1236866709 3445855509007 +0"},
                 {90, "%h:%m %Z%z %z%Z %0.2Z:%0.2z", "15:35 +130 30+1 +01:30"},
                 {-330, "%0.2z%0.2z%D", "-303012"},
                 {600, "%D.%M. %h @Z", "12.3. 14 Z"},
                 {600, "a@b%h@Z%D@", "a@b0@Z13@"}};
    for (const auto& [zone, form, text] : cases)
        EXPECT_EQ(text, format(kEpoch + kNow, zone, form)) << form;
    EXPECT_EQ("0000123 1900-1-1 1", format(123, 0, "%E %Y-%M-%D %w"));
    EXPECT_NE("none", format(~Time{0}, 1439, "%Y-%M-%D %W %e"));
}

TEST(TimeParse, ReadsAllForms) {
    const VirtualClock clock;
    check(clockOf,
          "14=14:0:0.0 1245=12:5:0.0 140509=14:5:9.0 140509.9999=14:5:9.999 14.9999=14:0:0.0 "
          "1445.25=14:5:0.250 14:05=14:5:0.0 1:2:3=1:2:3.0 ::=0:0:0.0 12:30:45.5=12:30:45.500 "
          "12:30:45.0005=12:30:45.1 25:61:99=23:59:59.0 99999999999999999999:0=23:0:0.0 "
          "-05-09=23:5:9.0 -0509.5=23:5:9.500 --09=23:59:9.0 -5-7=23:5:7.0 -=23:59:0.0 "
          "-05:09=23:5:9.0 :-5=23:0:59.0 =none 1=none 12345=none 1:2:3:4=none 1:2:-3=none "
          "1a=none 12.=none 12.5.5=none 12.-5=none");
    check(dateOf,
          "20=2000-1-1 2009=2009-1-1 090312=2009-3-12 20090312=2009-3-12 2009-3-12=2009-3-12 "
          "99-12-31=2099-12-31 20091-1-1=22091-1-1 ---12=?-?-12 --3-12=?-3-12 "
          "-2009-3-12=2009-3-12 2009-03=2009-3-1 9-13=2009-13-1 --3=?-3-1 -2009-3=2009-3-1 "
          "-0903=9-3-1 2009--=2009-0-0 -a-b-c-d=0-0-0 =none 9=none 2009031=none -=none "
          "-09=none 2009/3/12=none 2009-3-x=none");
    check(zoneOf,
          "=local Z=utc +02:00=local -2:0=local +02=local -0230=local +99:99=local +2:=local "
          "z=none ZZ=none 02:00=none +2=none +023=none +0a:00=none");
    check(timeOf,
          "2000-02-29T235959.25Z=2000-2-29T23:59:59.250 20090312T-05-09Z=2009-3-12T23:5:9.0 "
          "1900-01-01T00Z=1900-1-1T0:0:0.0 99999-12-31T24:60:60Z=101999-12-31T23:59:59.0 "
          "1900-02-29T00:00Z=none 1899-12-31T00:00Z=none 2009-13-01=none ---12T10:00Z=none "
          "-a-b-c-d=none 2009-03-12T=none T10:00=none 2009-03-12T14:05Zulu=none "
          "2009-03-12T14:05+2=none");
}

}  // namespace
