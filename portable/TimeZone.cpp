// The local time zone's distance from UTC.
#include "portable/PortableTime.h"

namespace {

constexpr int kSecondsPerHour = 3600;

}  // namespace

int CPortableTime::GetCurrentGMTOffset() {
    const time_t current = time(nullptr);
    tm utc = *gmtime(&current);
    utc.tm_isdst = localtime(&current)->tm_isdst;
    // Division truncates toward zero, so a half-hour zone loses its half hour: part of the contract.
    return static_cast<int>((current - mktime(&utc)) / kSecondsPerHour);
}

int CPortableTime::GetCurrentTimeZone() {
    const time_t current = time(nullptr);
    return GetCurrentGMTOffset() - localtime(&current)->tm_isdst;
}
