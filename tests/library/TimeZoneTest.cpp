#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/clock.h"
#include "time/TimeFormat.h"
#include "time/TimeParse.h"
#include "time/Zones.h"

namespace {

// Runs once for each of these values of TZ, which a program reads only once.
struct Place {
    const char* tz;
    int32_t winter;  // minutes: west of Greenwich the complement to a day
    int32_t summer;
};
constexpr Place kPlaces[] = {{"UTC0", 0, 0},       {"QRL-3:30", 210, 210},
                             {"QRL-13", 780, 780}, {"QRL3:30", 1230, 1230},
                             {"QRL12", 720, 720},  {"EST5EDT", 1140, 1200}};

constexpr int64_t kWinter = 1231943400;  // 2009-01-14 14:30:00 UTC
constexpr int64_t kSummer = 1247581800;  // 2009-07-14 14:30:00 UTC

struct TimeZoneTest : testing::Test {
    OsVirtualClock clock;
    const Place* place = nullptr;
    TimeZoneTest() {
        const char* tz = std::getenv("TZ");
        for (const Place& known : kPlaces)
            if (tz != nullptr && std::string(tz) == known.tz) place = &known;
        osVirtualClock = &clock;
    }
    ~TimeZoneTest() override { osVirtualClock = nullptr; }
    void SetUp() override { ASSERT_NE(nullptr, place) << "TZ is not one of those known here"; }
};

TEST_F(TimeZoneTest, OffsetIsThatOfTheMomentAsked) {
    for (int64_t hour = 0; hour < 24; ++hour) {
        EXPECT_EQ(place->winter, zoneOffsetAt(timeFromEpoch(kWinter + hour * 3600))) << hour;
        EXPECT_EQ(place->summer, zoneOffsetAt(timeFromEpoch(kSummer + hour * 3600))) << hour;
    }
    EXPECT_EQ(place->winter, zoneOffsetAt(0)) << "of a year of the same leap pattern";
}

TEST_F(TimeZoneTest, PresentOffsetServesForAllTimes) {
    for (const int64_t now : {kWinter, kSummer}) {
        clock.utc = now * 1000;
        const TimeZone zone{now == kWinter ? place->winter : place->summer};
        for (const int64_t when : {kWinter, kSummer}) {
            const Time time = timeFromEpoch(when);
            const Owned<String> text(timeToText(time));
            const Owned<String> wanted(timeFormat(time, &zone, "%Y-%0.2M-%0.2DT%0.2h:%0.2m:%0.2s"));
            ASSERT_EQ(stringView(wanted.get()), stringView(text.get()));
            // An offset in a text has no effect: the clock is the present zone's.
            for (const char* tail : {"", "+02:00", "-1130"}) {
                Time back = 0;
                ASSERT_TRUE(timeFromText(&back, std::string(stringView(text.get())) + tail));
                EXPECT_EQ(time, back) << tail;
            }
            // Daylight saving is where the offset half a year later is the greater one.
            DateTime fields;
            dateTimeSet(&fields, time);
            ASSERT_TRUE(dateTimeToLocal(&fields));
            EXPECT_EQ(place->winter == place->summer || when == kWinter ? 1 : 0, fields.dst);
            EXPECT_EQ(zone.offset, fields.zoneOffset);
        }
    }
}

}  // namespace
