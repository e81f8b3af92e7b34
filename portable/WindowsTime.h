// The time records of the Win32 interface.
// Plain data. [any thread]
#pragma once

// Units of 100 ns since 1601-01-01 00:00:00 UTC.
struct FILETIME {
    unsigned int dwLowDateTime;
    unsigned int dwHighDateTime;
};

// A calendar date with its time of day.
struct SYSTEMTIME {
    unsigned short wYear;
    unsigned short wMonth;      // 1 to 12
    unsigned short wDayOfWeek;  // 0 is Sunday
    unsigned short wDay;
    unsigned short wHour;
    unsigned short wMinute;
    unsigned short wSecond;
    unsigned short wMilliseconds;
};
