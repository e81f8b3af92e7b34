// Points in time and their conversions against calendar arithmetic: a time zone, an operation, its numbers.
#include <errno.h>
#include <stdlib.h>
#include <time.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "fuzz/FuzzedInput.h"
#include "fuzz/Require.h"
#include "portable/PortableTime.h"
#include "portable/RuntimeTime.h"

namespace {

__extension__ using Int128 = __int128;

constexpr Int128 kSecondsPerDay = 86400;
// Seconds whose years all functions of the C library know.
constexpr long kMostSeconds = 1L << 54;

const char* const kZones[] = {"UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "IST-5:30", "<-0330>3:30<-0230>,M3.2.0,M11.1.0"};

// Returns whether times of the zone are those of UTC.
bool EnterZone(CFuzzedInput& input) {
    const char* const zone = input.OneOf(kZones);
    setenv("TZ", zone, 1);
    tzset();
    return zone == kZones[0];
}

Int128 FloorDivided(Int128 value, Int128 divisor) {
    return value >= 0 ? value / divisor : -((divisor - 1 - value) / divisor);
}

bool IsLeap(Int128 year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

// Days of the proleptic Gregorian calendar from 1970-01-01 to the first day of a month, 0 being January.
Int128 DaysBefore(Int128 year, int month) {
    constexpr int kDaysBeforeMonth[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    const Int128 past = year - 1;
    const Int128 days = past * 365 + FloorDivided(past, 4) - FloorDivided(past, 100) + FloorDivided(past, 400);
    return days - 719162 + kDaysBeforeMonth[month] + (month > 1 && IsLeap(year) ? 1 : 0);
}

Int128 ModelSeconds(Int128 year, Int128 month, Int128 day, Int128 hour, Int128 minute, Int128 second) {
    const Int128 years = FloorDivided(month, 12);
    const Int128 days = DaysBefore(year + years, static_cast<int>(month - years * 12)) + day - 1;
    return ((days * 24 + hour) * 60 + minute) * 60 + second;
}

struct SFields {
    long m_nYear;
    int m_nMonth;
    int m_nDay;
    int m_nHour;
    int m_nMinute;
    int m_nSecond;
    int m_nDayOfWeek;
};

SFields ModelFields(long seconds) {
    const Int128 days = FloorDivided(seconds, kSecondsPerDay);
    const int rest = static_cast<int>(seconds - days * kSecondsPerDay);
    Int128 year = 1970 + FloorDivided(days * 400, 146097);
    while (DaysBefore(year, 0) > days) --year;
    while (DaysBefore(year + 1, 0) <= days) ++year;
    int month = 11;
    while (DaysBefore(year, month) > days) --month;
    const int day = static_cast<int>(days - DaysBefore(year, month)) + 1;
    const int dayOfWeek = static_cast<int>((days + 4) - FloorDivided(days + 4, 7) * 7);
    return {static_cast<long>(year), month + 1, day, rest / 3600, rest / 60 % 60, rest % 60, dayOfWeek};
}

void RequireFields(CPortableTime time, const SFields& expected) {
    fuzz::RequireEqual<long>("the year", time.GetYear(), expected.m_nYear);
    fuzz::RequireEqual("the month", time.GetMonth(), expected.m_nMonth);
    fuzz::RequireEqual("the day", time.GetDay(), expected.m_nDay);
    fuzz::RequireEqual("the hour", time.GetHour(), expected.m_nHour);
    fuzz::RequireEqual("the minute", time.GetMinute(), expected.m_nMinute);
    fuzz::RequireEqual("the second", time.GetSecond(), expected.m_nSecond);
    fuzz::RequireEqual("the day of the week", time.GetDayOfWeek(), expected.m_nDayOfWeek);
}

void CheckFields(CFuzzedInput& input, bool utc) {
    const long seconds = input.Number<long>();
    CPortableTime time(seconds);
    tm fields = {};
    time.GetLocalTm(&fields);
    time.GetYear();
    if (seconds > kMostSeconds || seconds < -kMostSeconds) return;
    if (utc) return RequireFields(time, ModelFields(seconds));
    RequireFields(time, {fields.tm_year + 1900L, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min,
                         fields.tm_sec, fields.tm_wday});
    const SFields expected = ModelFields(seconds);
    tm universal = {};
    time.GetGmtTm(&universal);
    fuzz::RequireEqual("the hour of UTC", universal.tm_hour, expected.m_nHour);
    fuzz::RequireEqual("the day of UTC", universal.tm_mday, expected.m_nDay);
}

void CheckFileTime(CFuzzedInput& input, bool /*utc*/) {
    constexpr std::uint64_t kEpoch = 116444736000000000;
    const long seconds = input.Number<long>();
    const CPortableTime time(seconds);
    const FILETIME& converted = time;
    const auto expected = static_cast<std::uint64_t>(Int128{seconds} * 10000000 + kEpoch);
    fuzz::RequireEqual("the low half", converted.dwLowDateTime, static_cast<unsigned int>(expected));
    fuzz::RequireEqual("the high half", converted.dwHighDateTime, static_cast<unsigned int>(expected >> 32));

    const auto value = input.Number<std::uint64_t>();
    const FILETIME record = {static_cast<unsigned int>(value), static_cast<unsigned int>(value >> 32)};
    CPortableTime assigned(seconds);
    assigned = record;
    const auto back = static_cast<long>((value - kEpoch) / 10000000);
    fuzz::RequireEqual("the seconds assigned", assigned.GetTime(), back);
    fuzz::RequireEqual("the seconds constructed", CPortableTime(record, 0).GetTime(), back);
}

// The C library settles daylight saving times, and tells of years that it cannot hold.
void RequireSeconds(long actual, Int128 expected, int daylightSaving, bool utc) {
    const bool sure = utc && daylightSaving <= 0 && expected <= kMostSeconds && expected >= -kMostSeconds;
    if (sure) fuzz::RequireEqual("the seconds", actual, static_cast<long>(expected));
}

void CheckDate(CFuzzedInput& input, bool utc) {
    const auto year = input.Number<unsigned int>();
    const int month = input.Number<int>();
    const int day = input.Number<int>();
    const int hour = input.Number<int>();
    const int minute = input.Number<int>();
    const int second = input.Number<int>();
    const int daylightSaving = input.Number<signed char>();
    const CPortableTime time(year, month, day, hour, minute, second, daylightSaving);
    const bool wraps = year > 0x7FFFFFFF || month == INT32_MIN;
    if (wraps) return;
    RequireSeconds(time.GetTime(), ModelSeconds(year, Int128{month} - 1, day, hour, minute, second), daylightSaving,
                   utc);
}

void CheckSystemTime(CFuzzedInput& input, bool utc) {
    SYSTEMTIME record = {};
    for (unsigned short* const field : {&record.wYear, &record.wMonth, &record.wDayOfWeek, &record.wDay, &record.wHour,
                                        &record.wMinute, &record.wSecond, &record.wMilliseconds}) {
        *field = input.Number<unsigned short>();
    }
    const int daylightSaving = input.Number<signed char>();
    const CPortableTime time(record, daylightSaving);
    RequireSeconds(
        time.GetTime(),
        ModelSeconds(record.wYear, record.wMonth - 1, record.wDay, record.wHour - 1, record.wMinute, record.wSecond),
        daylightSaving, utc);
}

void CheckArithmetic(CFuzzedInput& input, bool utc) {
    const long left = input.Number<long>();
    const long right = input.Number<long>();
    const CPortableTime a(left);
    const CPortableTime b(right);
    const CPortableTimeSpan span(right);
    const auto sum = static_cast<long>(Int128{left} + right);
    const auto difference = static_cast<long>(Int128{left} - right);
    fuzz::RequireEqual("the difference", (a - b).GetTotalSeconds(), difference);
    fuzz::RequireEqual("the later time", (a + span).GetTime(), sum);
    fuzz::RequireEqual("the earlier time", (a - span).GetTime(), difference);
    CPortableTime moved(a);
    fuzz::RequireEqual("the time moved", (moved += span).GetTime(), sum);
    fuzz::RequireEqual("==", a == b, left == right);
    fuzz::RequireEqual("!=", a != b, left != right);
    fuzz::RequireEqual("<", a < b, left < right);
    fuzz::RequireEqual(">", a > b, left > right);
    fuzz::RequireEqual("<=", a <= b, left <= right);
    fuzz::RequireEqual("== of a number", a == right, left == right);
    const bool known = utc && right <= kMostSeconds && right >= -kMostSeconds;
    if (known) fuzz::RequireEqual("the seconds part", span.GetSeconds(), ModelFields(right).m_nSecond);
}

void CheckSpan(CFuzzedInput& input, bool /*utc*/) {
    const int days = input.Number<int>();
    const int hours = input.Number<int>();
    const int minutes = input.Number<int>();
    const int seconds = input.Number<int>();
    const Int128 total = ((Int128{days} * 24 + hours) * 60 + minutes) * 60 + seconds;
    fuzz::RequireEqual<long>("the span", CPortableTimeSpan(days, hours, minutes, seconds).GetTotalSeconds(),
                             static_cast<int>(static_cast<unsigned int>(total)));
}

std::string ModelText(long seconds) {
    static const char* const kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const SFields fields = ModelFields(seconds);
    char text[64];
    std::snprintf(text, sizeof text, "%s %s %2d %02d:%02d:%02d %ld\n", kDays[fields.m_nDayOfWeek],
                  kMonths[fields.m_nMonth - 1], fields.m_nDay, fields.m_nHour, fields.m_nMinute, fields.m_nSecond,
                  fields.m_nYear);
    return text;
}

void CheckRuntime(CFuzzedInput& input, bool utc) {
    constexpr time_t kYear10000 = 253402300800;
    const time_t seconds = input.Number<long>();
    const std::size_t size = input.Byte() % 64;
    const bool given = (input.Byte() & 1) != 0;
    const time_t* const time = given ? &seconds : nullptr;
    const bool valid = given && seconds >= 0;

    std::vector<char> text(size, 'x');
    errno = 0;
    const int result = ctime_s(text.data(), size, time);
    if (size > 0 && (size < 26 || !valid)) {
        fuzz::RequireEqual("the result of ctime_s", result, 22);
        fuzz::RequireEqual("its text", std::string(text.data()), "");
    } else if (size > 0 && utc && seconds < kYear10000) {
        fuzz::RequireEqual("the result of ctime_s", result, 0);
        fuzz::RequireEqual("its text", std::string(text.data()), ModelText(seconds));
    } else if (size == 0) {
        fuzz::RequireEqual("the result of ctime_s", result, 22);
    }

    tm fields = {};
    fuzz::RequireEqual("the result of localtime_s", localtime_s(&fields, time), valid ? 0 : 22);
    if (!valid) fuzz::RequireEqual("the year without a time", fields.tm_year, -1);
    if (valid && utc && seconds < kMostSeconds) {
        fuzz::RequireEqual("the day of localtime_s", fields.tm_mday, ModelFields(seconds).m_nDay);
    }
}

using CCheck = void (*)(CFuzzedInput&, bool);

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const CCheck kChecks[] = {CheckFields,     CheckFileTime, CheckDate,   CheckSystemTime,
                                     CheckArithmetic, CheckSpan,     CheckRuntime};
    CFuzzedInput input(data, size);
    const bool utc = EnterZone(input);
    input.OneOf(kChecks)(input, utc);
    return 0;
}
