// Points in time and their conversions.
#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

#include "portable/PortableTime.h"
#include "tests/support/ProcessState.h"
#include "tests/support/SlotTable.h"

static_assert(sizeof(FILETIME) == 8 && offsetof(FILETIME, dwLowDateTime) == 0, "low half first");
static_assert(offsetof(FILETIME, dwHighDateTime) == 4, "high half second");
static_assert(sizeof(SYSTEMTIME) == 16, "eight 16-bit fields");
static_assert(offsetof(SYSTEMTIME, wYear) == 0 && offsetof(SYSTEMTIME, wMonth) == 2, "year, month");
static_assert(offsetof(SYSTEMTIME, wDayOfWeek) == 4 && offsetof(SYSTEMTIME, wDay) == 6, "day of week, day");
static_assert(offsetof(SYSTEMTIME, wHour) == 8 && offsetof(SYSTEMTIME, wMinute) == 10, "hour, minute");
static_assert(offsetof(SYSTEMTIME, wSecond) == 12 && offsetof(SYSTEMTIME, wMilliseconds) == 14, "second, rest");
static_assert(sizeof(CPortableTime) == 24, "virtual table, cell, FILETIME cache");
static_assert(std::has_virtual_destructor<CPortableTime>::value, "its only virtual operation");

namespace {

constexpr std::uint64_t kFileTimeOf1970 = 116444736000000000;

FILETIME FileTime(std::uint64_t value) {
    return {static_cast<unsigned int>(value), static_cast<unsigned int>(value >> 32)};
}

std::uint64_t ValueOf(const FILETIME& fileTime) {
    return std::uint64_t{fileTime.dwHighDateTime} << 32 | fileTime.dwLowDateTime;
}

const long* CellOf(const CPortableTime& time) { return FieldAt<const long*>(&time, 8); }

}  // namespace

TEST(PortableTime, ANewTimeIsZero) {
    EXPECT_EQ(CPortableTime().GetTime(), 0);
    EXPECT_EQ(CPortableTime(-5L).GetTime(), -5);
    EXPECT_EQ(CPortableTime(1234567890L).GetTime(), 1234567890);
}

TEST(PortableTime, FileTimesBecomeWholeSeconds) {
    const struct {
        std::uint64_t fileTime;
        long seconds;
    } rows[] = {{kFileTimeOf1970, 0},
                {kFileTimeOf1970 + 9999999, 0},
                {kFileTimeOf1970 + 10000000, 1},
                {kFileTimeOf1970 + 12345678900000000, 1234567890},
                {kFileTimeOf1970 - 1, 1844674407370},
                {0, 1833029933770},
                {0xFFFFFFFFFFFFFFFF, 1833029933770}};
    for (const auto& row : rows) {
        EXPECT_EQ(CPortableTime(FileTime(row.fileTime), 0).GetTime(), row.seconds) << row.fileTime;
        EXPECT_EQ(CPortableTime(FileTime(row.fileTime), 7).GetTime(), row.seconds) << row.fileTime;
        CPortableTime assigned;
        assigned = FileTime(row.fileTime);
        EXPECT_EQ(assigned.GetTime(), row.seconds) << row.fileTime;
    }
}

TEST(PortableTime, SecondsBecomeFileTimes) {
    const struct {
        long seconds;
        std::uint64_t fileTime;
    } rows[] = {{0, kFileTimeOf1970}, {1, 116444736010000000}, {-11644473600, 0}, {1234567890, 128790414900000000}};
    for (const auto& row : rows) {
        const CPortableTime time(row.seconds);
        EXPECT_EQ(ValueOf(time), row.fileTime) << row.seconds;
    }
}

TEST(PortableTime, TheFileTimeIsLentFromTheObject) {
    CPortableTime time(1L);
    const FILETIME& lent = time;
    EXPECT_EQ(static_cast<const void*>(&lent), reinterpret_cast<const char*>(&time) + 16);
    time = 2;
    EXPECT_EQ(ValueOf(lent), 116444736010000000u);
    const FILETIME& again = time;
    EXPECT_EQ(&again, &lent);
    EXPECT_EQ(ValueOf(lent), 116444736020000000u);
}

TEST(PortableTime, CalendarFieldsAreReadAsLocalTime) {
    const CScopedTimeZone zone("XST-3");
    EXPECT_EQ(CPortableTime(1970, 1, 1, 3, 0, 0, 0).GetTime(), 0);
    EXPECT_EQ(CPortableTime(1970, 1, 1, 3, 0, 0, -1).GetTime(), 0);
    EXPECT_EQ(CPortableTime(2009, 2, 14, 2, 31, 30, 0).GetTime(), 1234567890);
}

TEST(PortableTime, TheDaylightFlagIsHeeded) {
    const CScopedTimeZone zone("XST0XDT,M3.5.0,M10.5.0");
    const long standard = CPortableTime(2020, 6, 15, 10, 30, 0, 0).GetTime();
    EXPECT_EQ(CPortableTime(2020, 6, 15, 10, 30, 0, 1).GetTime(), standard - 3600);
    EXPECT_EQ(CPortableTime(2020, 6, 15, 10, 30, 0, -1).GetTime(), standard - 3600);
}

TEST(PortableTime, ATimeThatCannotBeToldIsMinusOne) {
    EXPECT_EQ(CPortableTime(2147483647u + 1900u, 25, 1, 0, 0, 0, 0).GetTime(), -1);
}

TEST(PortableTime, TheHourOfASystemTimeIsTakenOneLower) {
    const CScopedTimeZone zone("XST-3");
    const SYSTEMTIME record = {2020, 6, 1, 15, 10, 30, 0, 999};
    EXPECT_EQ(CPortableTime(record, 0).GetTime(), CPortableTime(2020, 6, 15, 9, 30, 0, 0).GetTime());
    const SYSTEMTIME midnight = {2020, 6, 1, 15, 0, 30, 7, 0};
    EXPECT_EQ(CPortableTime(midnight, 0).GetTime(), CPortableTime(2020, 6, 14, 23, 30, 7, 0).GetTime());
}

TEST(PortableTime, ASystemTimeHeedsTheDaylightFlag) {
    const CScopedTimeZone zone("XST0XDT,M3.5.0,M10.5.0");
    const SYSTEMTIME record = {2020, 6, 1, 15, 10, 30, 0, 0};
    EXPECT_EQ(CPortableTime(record, 1).GetTime(), CPortableTime(record, 0).GetTime() - 3600);
}

TEST(PortableTime, TheCurrentTimeIsTheSystems) {
    const long before = time(nullptr);
    const long current = CPortableTime::GetCurrentTime().GetTime();
    EXPECT_GE(current, before);
    EXPECT_LE(current, time(nullptr));
}

TEST(PortableTime, ACopyHasItsOwnCell) {
    CPortableTime time(5L);
    const CPortableTime copy(time);
    EXPECT_NE(CellOf(copy), CellOf(time));
    time = 6;
    EXPECT_EQ(copy.GetTime(), 5);
}

TEST(PortableTime, AssignmentNeverChangesTheCell) {
    CPortableTime time(5L);
    const long* const cell = CellOf(time);
    EXPECT_EQ(*cell, 5);
    time = 6;
    EXPECT_EQ(*cell, 6);
    time = CPortableTime(7L);
    EXPECT_EQ(*cell, 7);
    time = FileTime(116444736010000000);
    EXPECT_EQ(*cell, 1);
    time += CPortableTimeSpan(9L);
    EXPECT_EQ(*cell, 10);
    CPortableTime& same = time;
    time = same;
    EXPECT_EQ(*cell, 10);
    EXPECT_EQ(CellOf(time), cell);
}

TEST(PortableTime, TimesCompareBySignedSeconds) {
    const struct {
        long left;
        long right;
    } rows[] = {{0, 0}, {0, 1}, {1, 0}, {-1, 0}, {0, -1}, {-2, -1}, {5000000000, 1}};
    for (const auto& row : rows) {
        const CPortableTime left(row.left);
        const CPortableTime right(row.right);
        EXPECT_EQ(left == right, row.left == row.right);
        EXPECT_EQ(left == row.right, row.left == row.right);
        EXPECT_EQ(left != right, row.left != row.right);
        EXPECT_EQ(left < right, row.left < row.right);
        EXPECT_EQ(left > right, row.left > row.right);
        EXPECT_EQ(left <= right, row.left <= row.right);
    }
}

TEST(PortableTime, TheDifferenceOfTwoTimesAddsBack) {
    const CPortableTime earlier(1000L);
    const CPortableTime later(5000000000L);
    const CPortableTimeSpan span = later - earlier;
    EXPECT_EQ(span.GetTotalSeconds(), 4999999000);
    EXPECT_EQ((earlier + span).GetTime(), later.GetTime());
    EXPECT_EQ((later - span).GetTime(), earlier.GetTime());
    EXPECT_EQ((earlier - later).GetTotalSeconds(), -4999999000);
    CPortableTime moved(earlier);
    moved += span;
    EXPECT_EQ(moved.GetTime(), later.GetTime());
}

TEST(PortableTime, ItsDestructorIsItsOnlySlotPair) {
    auto* const time = new CPortableTime(5L);
    CallSlot<void>(time, 1);
    alignas(CPortableTime) unsigned char storage[sizeof(CPortableTime)];
    auto* const inPlace = new (storage) CPortableTime(6L);
    EXPECT_EQ(inPlace->GetTime(), 6);
    CallSlot<void>(inPlace, 0);
}
