// Spans of time.
#include <gtest/gtest.h>

#include <type_traits>

#include "portable/PortableTime.h"
#include "tests/support/ProcessState.h"
#include "tests/support/SlotTable.h"

static_assert(sizeof(CPortableTimeSpan) == 16, "virtual table, cell");
static_assert(std::has_virtual_destructor<CPortableTimeSpan>::value, "its only virtual operation");

TEST(PortableTimeSpan, PartsAddUpInWrapping32Bits) {
    const struct {
        int days;
        int hours;
        int minutes;
        int seconds;
        long total;
    } rows[] = {{0, 0, 0, 0, 0},
                {1, 0, 0, 0, 86400},
                {0, 1, 0, 0, 3600},
                {0, 0, 1, 5, 65},
                {-1, 0, 0, 1, -86399},
                {24855, 3, 14, 7, 2147483647},
                {24855, 3, 14, 8, -2147483648},
                {49711, 0, 0, 0, 63104}};
    for (const auto& row : rows) {
        EXPECT_EQ(CPortableTimeSpan(row.days, row.hours, row.minutes, row.seconds).GetTotalSeconds(), row.total)
            << row.days << " " << row.seconds;
    }
}

TEST(PortableTimeSpan, SecondsAreKeptIn64Bits) {
    EXPECT_EQ(CPortableTimeSpan(5000000000L).GetTotalSeconds(), 5000000000);
    EXPECT_EQ(CPortableTimeSpan(-1L).GetTotalSeconds(), -1);
}

TEST(PortableTimeSpan, TheSecondsPartIsTheSecondOfTheMinute) {
    for (const char* rule : {"UTC0", "XST-5:30", "XST8"}) {
        const CScopedTimeZone zone(rule);
        EXPECT_EQ(CPortableTimeSpan(0, 0, 1, 5).GetSeconds(), 5) << rule;
        EXPECT_EQ(CPortableTimeSpan(59L).GetSeconds(), 59) << rule;
        EXPECT_EQ(CPortableTimeSpan(60L).GetSeconds(), 0) << rule;
        EXPECT_EQ(CPortableTimeSpan(-1L).GetSeconds(), 59) << rule;
    }
}

TEST(PortableTimeSpan, ACopyHasItsOwnCell) {
    CPortableTimeSpan span(5L);
    const CPortableTimeSpan copy(span);
    const long* const cell = FieldAt<const long*>(&span, 8);
    EXPECT_NE(FieldAt<const long*>(&copy, 8), cell);
    span = CPortableTimeSpan(6L);
    EXPECT_EQ(FieldAt<const long*>(&span, 8), cell);
    EXPECT_EQ(*cell, 6);
    EXPECT_EQ(copy.GetTotalSeconds(), 5);
}
