// Points in time and spans of time in POSIX seconds, with the Win32 time records.
// The calendar getters, the tm getters without an out-argument and the zone functions use the C library's shared
// records: one thread at a time in the whole process. Everything else: one thread per object.
#pragma once

#include <sys/time.h>
#include <time.h>

#include <memory>

#include "portable/Export.h"
#include "portable/WindowsTime.h"

// The first reading of CPortableTime::GetSyncTime; zero until then.
extern KELO_EXPORT timeval starttime;

// A signed difference of two times, in seconds.
class KELO_EXPORT CPortableTimeSpan {
public:
    // Any number of seconds, negative ones too.
    CPortableTimeSpan(long seconds);

    // Computed in 32 bits, so a span beyond about 68 years wraps: part of the contract.
    CPortableTimeSpan(int days, int hours, int minutes, int seconds);

    // The same difference.
    CPortableTimeSpan(const CPortableTimeSpan& other);
    CPortableTimeSpan& operator=(const CPortableTimeSpan& other);
    virtual ~CPortableTimeSpan();

    // The whole difference.
    long GetTotalSeconds() const;

    // The seconds part, 0 to 59, in any time zone whose offset is whole minutes.
    int GetSeconds() const;

private:
    std::unique_ptr<long> m_pSeconds;
};

// A point in time: seconds since 1970-01-01 00:00:00 UTC.
class KELO_EXPORT CPortableTime {
public:
    // The time 0.
    CPortableTime();
    CPortableTime(long seconds);
    CPortableTime(const CPortableTime& other);

    // As the assignment of a FILETIME; the second argument is ignored.
    CPortableTime(const FILETIME& fileTime, int ignored);

    // Local time; a `daylightSaving` of -1 lets the system decide. -1 seconds when there is no such time.
    CPortableTime(unsigned int year, int month, int day, int hour, int minute, int second, int daylightSaving);

    // Local time one hour before the record's hour: part of the contract. The milliseconds are ignored.
    CPortableTime(const SYSTEMTIME& systemTime, int daylightSaving);

    virtual ~CPortableTime();

    // time(2).
    static CPortableTime GetCurrentTime();

    // Seconds since 1970-01-01 00:00:00 UTC.
    long GetTime() const;

    // Lent by the object until its next conversion or its end.
    operator const FILETIME&() const;

    // Fields of local time.
    int GetYear();
    int GetMonth();  // 1 to 12
    int GetDay();
    int GetHour();
    int GetMinute();
    int GetSecond();
    int GetDayOfWeek();  // 0 is Sunday

    // Fills and returns `out`, or returns the C library's own record when `out` is null.
    // A time without calendar fields leaves `out` as it was.
    tm* GetLocalTm(tm* out) const;
    tm* GetGmtTm(tm* out) const;

    // Seconds since 1970-01-01 00:00:00 UTC.
    CPortableTime& operator=(long seconds);
    CPortableTime& operator=(const CPortableTime& other);

    // Drops the fraction of a second; a FILETIME before 1970 wraps to a very large count: part of the contract.
    CPortableTime& operator=(const FILETIME& fileTime);

    // Compare the seconds.
    bool operator==(long seconds) const;
    bool operator==(const CPortableTime& other) const;
    bool operator!=(const CPortableTime& other) const;
    bool operator<(const CPortableTime& other) const;
    bool operator>(const CPortableTime& other) const;
    bool operator<=(const CPortableTime& other) const;

    // Arithmetic in seconds.
    CPortableTimeSpan operator-(const CPortableTime& other) const;
    CPortableTime operator+(const CPortableTimeSpan& span) const;
    CPortableTime operator-(const CPortableTimeSpan& span) const;
    CPortableTime& operator+=(CPortableTimeSpan span);

    // Milliseconds of the wall clock since the first call, wrapping after about 49.7 days.
    // The first call writes `starttime` without a lock.
    static unsigned int GetSyncTime();

    // Local time minus UTC in whole hours, truncated toward zero: with daylight saving, and without.
    static int GetCurrentGMTOffset();
    static int GetCurrentTimeZone();

private:
    std::unique_ptr<long> m_pSeconds;
    mutable FILETIME m_fileTime;
};
