#include <gtest/gtest.h>

#include <string>

#include "platform/clock.h"
#include "time/Calendar.h"
#include "time/TimeFormat.h"
#include "time/TimeParse.h"

namespace {

constexpr uint32_t kOut = kDateFieldLeftOut;
// 2009-03-12 14:05:09.007, a Thursday.
constexpr Time kMoment = kEpoch + 1236866709007;

struct VirtualClock {
    OsVirtualClock clock;
    VirtualClock() {
        clock.utc = 1236866709007;
        osVirtualClock = &clock;
    }
    ~VirtualClock() { osVirtualClock = nullptr; }
};

std::string format(Time time, int32_t zoneOffset, std::string_view form) {
    const TimeZone zone{zoneOffset};
    Owned<String> text(timeFormat(time, &zone, form));
    return text ? std::string(stringView(text.get())) : "none";
}

TEST(TimeFormat, WritesFieldsWithWidthAndFill) {
    const struct {
        int32_t zone;
        const char* form;
        const char* text;
    } cases[] = {
        {0, "%Y-%0.2M", "2009-03"},
        {0, "%0.2M@Z", "03Z"},
        {0, "%y/%M/%D %W %w %d", "9/3/12 11 4 71"},
        {0, "%h:%m:%s.%0.3S|%2M|%5M|%*.3M", "14:5:9.007| 3|    3|*.3M"},
        {0, "%0.12Y%3.4M", "20093333"},
        {0, "%9.0M%1Y%x%%y%", "32009x%y%"},
        {0, "%5", ""},
        {0, "%0.", ""},
        {0, "%e %E %9e", "1236866709 3445855509007 1236866709"},
        {90, "%h:%m %Z%z %z%Z %0.2Z:%0.2z", "15:35 +130 30+1 +01:30"},
        {-330, "%0.2z%0.2z%D", "-303012"},
        {0, "%Z|%z", "+0|0"},
        {600, "%D.%M. %h @Z", "12.3. 14 Z"},
        {600, "a@b%h@Z", "a@b0@Z"},
        {600, "%D@", "13@"},
    };
    for (const auto& [zone, form, text] : cases)
        EXPECT_EQ(text, format(kMoment, zone, form)) << form;
    EXPECT_EQ("0000123", format(123, 0, "%E"));
    EXPECT_EQ("1900-1-1 1", format(0, 0, "%Y-%M-%D %w"));
    // No field of an absurd time is trusted.
    EXPECT_NE("none", format(~Time{0}, 1439, "%Y-%M-%D %W %e"));
}

struct Clock {
    const char* text;
    bool good;
    ClockFields fields;
};

TEST(TimeParse, ReadsClocksOfAllForms) {
    constexpr Clock kCases[] = {
        {"14", true, {14, 0, 0, 0}},
        {"1245", true, {12, 5, 0, 0}},
        {"140509", true, {14, 5, 9, 0}},
        {"140509.9999", true, {14, 5, 9, 999}},
        {"14.9999", true, {14, 0, 0, 0}},
        {"1445.25", true, {14, 5, 0, 250}},
        {"14:05", true, {14, 5, 0, 0}},
        {"1:2:3", true, {1, 2, 3, 0}},
        {"::", true, {0, 0, 0, 0}},
        {"12:30:45.5", true, {12, 30, 45, 500}},
        {"12:30:45.0005", true, {12, 30, 45, 1}},
        {"25:61:99", true, {23, 59, 59, 0}},
        {"99999999999999999999:0", true, {23, 0, 0, 0}},
        {"-05-09", true, {23, 5, 9, 0}},
        {"-0509.5", true, {23, 5, 9, 500}},
        {"--09", true, {23, 59, 9, 0}},
        {"-5-7", true, {23, 5, 7, 0}},
        {"-", true, {23, 59, 0, 0}},
        {"-05:09", true, {23, 5, 9, 0}},
        {":-5", true, {23, 0, 59, 0}},
        {"", false, {}},
        {"1", false, {}},
        {"12345", false, {}},
        {"1:2:3:4", false, {}},
        {"1:2:-3", false, {}},
        {"1a", false, {}},
        {" 12", false, {}},
        {"12.", false, {}},
        {"12.5.5", false, {}},
        {"12.-5", false, {}},
    };
    for (const auto& [text, good, wanted] : kCases) {
        ClockFields got{7, 7, 7, 7};
        ASSERT_EQ(good, timeParseClock(&got, text)) << text;
        const ClockFields& fields = good ? wanted : ClockFields{7, 7, 7, 7};
        EXPECT_EQ(fields.hour, got.hour) << text;
        EXPECT_EQ(fields.minute, got.minute) << text;
        EXPECT_EQ(fields.second, got.second) << text;
        EXPECT_EQ(fields.msec, got.msec) << text;
    }
}

TEST(TimeParse, ReadsDatesOfAllForms) {
    const VirtualClock clock;
    const struct {
        const char* text;
        bool good;
        uint32_t year, month, day;
    } cases[] = {
        {"20", true, 2000, 1, 1},
        {"2009", true, 2009, 1, 1},
        {"090312", true, 2009, 3, 12},
        {"20090312", true, 2009, 3, 12},
        {"2009-3-12", true, 2009, 3, 12},
        {"99-12-31", true, 2099, 12, 31},
        {"20091-1-1", true, 22091, 1, 1},
        {"---12", true, kOut, kOut, 12},
        {"--3-12", true, kOut, 3, 12},
        {"-2009-3-12", true, 2009, 3, 12},
        {"2009-03", true, 2009, 3, 1},
        {"9-13", true, 2009, 13, 1},
        {"--3", true, kOut, 3, 1},
        {"-2009-3", true, 2009, 3, 1},
        {"-0903", true, 9, 3, 1},
        {"2009--", true, 2009, 0, 0},
        {"-a-b-c-d", true, 0, 0, 0},
        {"", false, 7, 7, 7},
        {"9", false, 7, 7, 7},
        {"2009031", false, 7, 7, 7},
        {"-", false, 7, 7, 7},
        {"-09", false, 7, 7, 7},
        {"-090", false, 7, 7, 7},
        {"2009/3/12", false, 7, 7, 7},
        {"2009-3-x", false, 7, 7, 7},
    };
    for (const auto& [text, good, year, month, day] : cases) {
        DateFields got{7, 7, 7, 7, 7, 7};
        EXPECT_EQ(good, timeParseDate(&got, text)) << text;
        EXPECT_EQ(year, got.year) << text;
        EXPECT_EQ(month, got.month) << text;
        EXPECT_EQ(day, got.day) << text;
    }
}

TEST(TimeParse, TestsAZoneForItsForm) {
    const VirtualClock clock;
    for (const char* good : {"", "Z", "+02:00", "-2:0", "+02", "-0230", "+99:99", "+-:12", "+2:"}) {
        DateTime fields{{2009, 3, 12, 0, 0, 0}, {14, 5, 9, 0}};
        EXPECT_TRUE(timeParseZone(good, &fields)) << good;
        EXPECT_EQ(14u, fields.clock.hour) << good;
        EXPECT_EQ(*good == 'Z', fields.isUtc == 1) << good;
    }
    for (const char* bad : {"z", "ZZ", "02:00", "+2", "+023", "+02300", "+", "+0a:00", " +02"}) {
        DateTime fields{{2009, 3, 12, 0, 0, 0}, {14, 5, 9, 0}};
        EXPECT_FALSE(timeParseZone(bad, &fields)) << bad;
        EXPECT_EQ(2, fields.isUtc) << bad;
    }
}

TEST(TimeParse, PutsDateClockAndZoneTogether) {
    const VirtualClock clock;
    const struct {
        const char* text;
        const char* utc;  // null for a text that is refused
    } cases[] = {
        {"2009-03-12T14:05:09Z", "2009-3-12 14:5:9.0"},
        {"2000-02-29T235959.25Z", "2000-2-29 23:59:59.250"},
        {"20090312T-05-09Z", "2009-3-12 23:5:9.0"},
        {"1900-01-01T00Z", "1900-1-1 0:0:0.0"},
        {"99999-12-31T24:60:60Z", "101999-12-31 23:59:59.0"},
        {"9999-12-31T23:59:59Z", "9999-12-31 23:59:59.0"},
        {"1900-02-29T00:00Z", nullptr},
        {"1899-12-31T00:00Z", nullptr},
        {"2009-13-01", nullptr},
        {"0000-01-01", nullptr},
        {"---12T10:00Z", nullptr},
        {"--3-12", nullptr},
        {"-a-b-c-d", nullptr},
        {"2009-03-12T", nullptr},
        {"T10:00", nullptr},
        {"2009-03-12T14:05:09Zulu", nullptr},
        {"2009-03-12T14:05:09+2", nullptr},
        {"2009-03-12 14:05:09", nullptr},
        {"now", nullptr},
    };
    for (const auto& [text, utc] : cases) {
        Time time = 7;
        ASSERT_EQ(utc != nullptr, timeFromText(&time, text)) << text;
        if (utc == nullptr) {
            EXPECT_EQ(7u, time) << text;
            continue;
        }
        EXPECT_EQ(utc, format(time, 0, "%Y-%M-%D %h:%m:%s.%S")) << text;
    }
    // The fields that a date leaves out are told from those that are there.
    DateTime fields;
    ASSERT_TRUE(timeParse(&fields, "--3-12T10:20"));
    EXPECT_EQ(kOut, fields.date.year);
    EXPECT_EQ(3u, fields.date.month);
    EXPECT_EQ(20u, fields.clock.minute);
}

TEST(TimeParse, TakesRandomBytes) {
    const VirtualClock clock;
    constexpr char kBytes[] = "0123456789--::..TZ+\0 \x80";
    uint32_t seed = 1;
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (uint32_t length = round % 24; length > 0; --length) {
            seed = seed * 1664525 + 1013904223;
            text += kBytes[(seed >> 16) % (sizeof(kBytes) - 1)];
        }
        Time time = 0;
        DateTime fields;
        timeFromText(&time, text);
        timeParseZone(text, &fields);
        Owned<String> formatted(timeFormat(time, nullptr, text));
        ASSERT_TRUE(formatted);
    }
}

}  // namespace
