#include <gtest/gtest.h>

#include <array>

#include "time/Calendar.h"
#include "time/Time.h"

namespace {

struct Date {
    uint32_t year, month, day;
};

TEST(Calendar, KnowsWeekdayDayAndWeek) {
    constexpr uint32_t kCases[][6] = {{1900, 1, 1, 1, 1, 1},
                                      {1901, 1, 1, 2, 1, 1},
                                      {2000, 2, 29, 2, 60, 9},
                                      {2009, 3, 12, 4, 71, 11},
                                      {2011, 1, 1, 6, 1, 1},
                                      {2011, 12, 31, 6, 365, 53},
                                      {2022, 1, 4, 2, 4, 1},
                                      {2004, 12, 31, 5, 366, 53},
                                      {1900, 2, 29, kNoDate, kNoDate, kNoDate},
                                      {1899, 12, 31, kNoDate, kNoDate, kNoDate},
                                      {2000, 13, 1, kNoDate, kNoDate, kNoDate},
                                      {2000, 4, 31, kNoDate, kNoDate, kNoDate},
                                      {2000, 1, 0, kNoDate, kNoDate, kNoDate}};
    for (const auto& [year, month, day, weekday, dayOfYear, week] : kCases) {
        EXPECT_EQ(weekday, dateWeekday(year, month, day)) << year << '-' << month;
        EXPECT_EQ(dayOfYear, dateDayOfYear(year, month, day)) << year << '-' << month;
        EXPECT_EQ(week, dateWeekNumber(year, month, day)) << year << '-' << month;
    }
}

TEST(Calendar, BreaksEveryDayDownToWhatItIsMadeOf) {
    Date expected{kFirstYear, 1, 1};
    for (Time day = 0; expected.year < 2410; ++day) {
        const Time time = day * kMsPerDay + 86399999;
        DateTime fields;
        dateTimeSet(&fields, time);
        ASSERT_EQ(expected.year, fields.date.year) << day;
        ASSERT_EQ(expected.month, fields.date.month) << day;
        ASSERT_EQ(expected.day, fields.date.day) << day;
        Time back = 0;
        ASSERT_TRUE(dateTimeToTime(&back, &fields));
        ASSERT_EQ(time, back);
        if (++expected.day <= dateDaysInMonth(expected.year, expected.month)) continue;
        expected.day = 1;
        if (++expected.month > 12) ++expected.year, expected.month = 1;
    }
}

TEST(Calendar, RefusesFieldsThatAreOutOfRange) {
    Time time = 7;
    for (const auto& f : {std::array{24, 0, 0, 0}, {0, 60, 0, 0}, {0, 0, 60, 0}, {0, 0, 0, 1000}})
        EXPECT_FALSE(timeFromFields(&time, 2000, 1, 1, f[0], f[1], f[2], f[3]));
    EXPECT_FALSE(timeFromFields(&time, kDateFieldLeftOut, 1, 1, 0, 0, 0, 0));
    EXPECT_EQ(7u, time);
    DateTime fields;
    dateTimeSet(&fields, ~Time{0});
    EXPECT_GE(31u, fields.date.day) << "absurd counts end soon, too";
}

}  // namespace
