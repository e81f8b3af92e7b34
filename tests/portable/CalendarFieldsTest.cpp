// Calendar fields of times.
#include <gtest/gtest.h>

#include <climits>

#include "portable/PortableTime.h"
#include "tests/support/ProcessState.h"

TEST(CalendarFields, AreThoseOfLocalTime) {
    const struct {
        const char* zone;
        int hour;
        int minute;
        int day;
    } rows[] = {{"UTC0", 23, 31, 13}, {"XST-1", 0, 31, 14}, {"XST5", 18, 31, 13}, {"XST-5:30", 5, 1, 14}};
    for (const auto& row : rows) {
        const CScopedTimeZone zone(row.zone);
        CPortableTime time(1234567890L);  // Friday 2009-02-13 23:31:30 UTC
        EXPECT_EQ(time.GetYear(), 2009) << row.zone;
        EXPECT_EQ(time.GetMonth(), 2) << row.zone;
        EXPECT_EQ(time.GetDay(), row.day) << row.zone;
        EXPECT_EQ(time.GetHour(), row.hour) << row.zone;
        EXPECT_EQ(time.GetMinute(), row.minute) << row.zone;
        EXPECT_EQ(time.GetSecond(), 30) << row.zone;
        EXPECT_EQ(time.GetDayOfWeek(), row.day == 13 ? 5 : 6) << row.zone;
    }
}

TEST(CalendarFields, GiveBackWhatATimeWasBuiltFrom) {
    CPortableTime time(2020, 6, 15, 10, 30, 45, -1);
    EXPECT_EQ(time.GetYear(), 2020);
    EXPECT_EQ(time.GetMonth(), 6);
    EXPECT_EQ(time.GetDay(), 15);
    EXPECT_EQ(time.GetHour(), 10);
    EXPECT_EQ(time.GetMinute(), 30);
    EXPECT_EQ(time.GetSecond(), 45);
    EXPECT_EQ(time.GetDayOfWeek(), 1);
}

TEST(CalendarFields, SundayIsDayZeroAndMonthsEndAtTwelve) {
    CPortableTime time(2023, 12, 31, 12, 0, 0, -1);
    EXPECT_EQ(time.GetDayOfWeek(), 0);
    EXPECT_EQ(time.GetMonth(), 12);
}

TEST(CalendarFields, TheRecordIsCopiedToTheCaller) {
    const CScopedTimeZone zone("XST-1");
    const CPortableTime time(1234567890L);
    tm local = {};
    tm utc = {};
    EXPECT_EQ(time.GetLocalTm(&local), &local);
    EXPECT_EQ(time.GetGmtTm(&utc), &utc);
    EXPECT_EQ(local.tm_hour, 0);
    EXPECT_EQ(local.tm_gmtoff, 3600);
    EXPECT_EQ(utc.tm_hour, 23);
    EXPECT_EQ(utc.tm_yday, 43);
}

TEST(CalendarFields, WithoutAnArgumentTheSystemsRecordIsReturned) {
    const CScopedTimeZone zone("XST-1");
    const CPortableTime time(1234567890L);
    const time_t other = 0;
    EXPECT_EQ(time.GetLocalTm(nullptr), localtime(&other));
    EXPECT_EQ(time.GetLocalTm(nullptr)->tm_hour, 0);
    EXPECT_EQ(time.GetGmtTm(nullptr)->tm_hour, 23);
}

TEST(CalendarFields, ATimeWithoutFieldsIsHarmless) {
    CPortableTime time(LONG_MAX);
    tm record = {};
    record.tm_hour = 17;
    EXPECT_EQ(time.GetYear(), 1900);
    EXPECT_EQ(time.GetLocalTm(nullptr), nullptr);
    EXPECT_EQ(time.GetGmtTm(&record), &record);
    EXPECT_EQ(record.tm_hour, 17);
}
