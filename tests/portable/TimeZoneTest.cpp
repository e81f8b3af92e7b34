// The local time zone's distance from UTC.
#include <gtest/gtest.h>

#include "portable/PortableTime.h"
#include "tests/support/ProcessState.h"

TEST(TimeZone, OffsetsAreWholeHoursTruncatedTowardZero) {
    const struct {
        const char* rule;
        int offset;
        int zone;
    } rows[] = {{"UTC0", 0, 0},      {"XST-1", 1, 1},    {"XST5", -5, -5},  {"XST-5:30", 5, 5},
                {"XST3:30", -3, -3}, {"XST-0:30", 0, 0}, {"XST0:30", 0, 0}, {"XST-14", 14, 14}};
    for (const auto& row : rows) {
        const CScopedTimeZone zone(row.rule);
        EXPECT_EQ(CPortableTime::GetCurrentGMTOffset(), row.offset) << row.rule;
        EXPECT_EQ(CPortableTime::GetCurrentTimeZone(), row.zone) << row.rule;
    }
}

TEST(TimeZone, DaylightSavingCountsInTheOffsetOnly) {
    // Daylight saving from the first to the last day of the year.
    const CScopedTimeZone zone("XST-1XDT,0/0,J365/25");
    const time_t current = time(nullptr);
    ASSERT_EQ(localtime(&current)->tm_isdst, 1);
    EXPECT_EQ(CPortableTime::GetCurrentGMTOffset(), 2);
    EXPECT_EQ(CPortableTime::GetCurrentTimeZone(), 1);
}
