// Points in time and their conversions.
#include "portable/PortableTime.h"

#include <cstdint>

namespace {

constexpr std::uint64_t kFileTimeOf1970 = 116444736000000000;
constexpr std::uint64_t kFileTimeUnitsPerSecond = 10000000;

long SecondsOf(const FILETIME& fileTime) {
    const std::uint64_t value = std::uint64_t{fileTime.dwHighDateTime} << 32 | fileTime.dwLowDateTime;
    return static_cast<long>((value - kFileTimeOf1970) / kFileTimeUnitsPerSecond);
}

FILETIME FileTimeOf(long seconds) {
    const std::uint64_t value = static_cast<std::uint64_t>(seconds) * kFileTimeUnitsPerSecond + kFileTimeOf1970;
    return {static_cast<unsigned int>(value), static_cast<unsigned int>(value >> 32)};
}

// Unsigned arithmetic wraps where that of signed seconds would not be defined.
long Sum(long left, long right) {
    return static_cast<long>(static_cast<unsigned long>(left) + static_cast<unsigned long>(right));
}

long Difference(long left, long right) {
    return static_cast<long>(static_cast<unsigned long>(left) - static_cast<unsigned long>(right));
}

long SecondsOf(const SYSTEMTIME& systemTime, int daylightSaving) {
    tm fields = {};
    fields.tm_sec = systemTime.wSecond;
    fields.tm_min = systemTime.wMinute;
    fields.tm_hour = systemTime.wHour - 1;  // one lower than the record says: part of the contract
    fields.tm_mday = systemTime.wDay;
    fields.tm_mon = systemTime.wMonth - 1;
    fields.tm_year = systemTime.wYear - 1900;
    fields.tm_wday = systemTime.wDayOfWeek;
    fields.tm_isdst = daylightSaving;
    return mktime(&fields);
}

}  // namespace

CPortableTime::CPortableTime() : CPortableTime(0L) {}

CPortableTime::CPortableTime(long seconds) : m_pSeconds(std::make_unique<long>(seconds)), m_fileTime() {}

CPortableTime::CPortableTime(const CPortableTime& other) : CPortableTime(other.GetTime()) {}

CPortableTime::CPortableTime(const FILETIME& fileTime, int /*ignored*/) : CPortableTime(SecondsOf(fileTime)) {}

CPortableTime::CPortableTime(unsigned int year, int month, int day, int hour, int minute, int second,
                             int daylightSaving)
    : CPortableTime() {
    tm fields = {};
    fields.tm_sec = second;
    fields.tm_min = minute;
    fields.tm_hour = hour;
    fields.tm_mday = day;
    fields.tm_mon = static_cast<int>(static_cast<unsigned int>(month) - 1);
    fields.tm_year = static_cast<int>(year - 1900);
    fields.tm_isdst = daylightSaving;
    *m_pSeconds = mktime(&fields);
}

CPortableTime::CPortableTime(const SYSTEMTIME& systemTime, int daylightSaving)
    : CPortableTime(SecondsOf(systemTime, daylightSaving)) {}

CPortableTime::~CPortableTime() = default;

CPortableTime CPortableTime::GetCurrentTime() { return CPortableTime(time(nullptr)); }

long CPortableTime::GetTime() const { return *m_pSeconds; }

CPortableTime::operator const FILETIME&() const {
    m_fileTime = FileTimeOf(*m_pSeconds);
    return m_fileTime;
}

CPortableTime& CPortableTime::operator=(long seconds) {
    *m_pSeconds = seconds;
    return *this;
}

CPortableTime& CPortableTime::operator=(const CPortableTime& other) {
    if (this != &other) *m_pSeconds = *other.m_pSeconds;
    return *this;
}

CPortableTime& CPortableTime::operator=(const FILETIME& fileTime) {
    *m_pSeconds = SecondsOf(fileTime);
    return *this;
}

bool CPortableTime::operator==(long seconds) const { return *m_pSeconds == seconds; }

bool CPortableTime::operator==(const CPortableTime& other) const { return *m_pSeconds == *other.m_pSeconds; }

bool CPortableTime::operator!=(const CPortableTime& other) const { return *m_pSeconds != *other.m_pSeconds; }

bool CPortableTime::operator<(const CPortableTime& other) const { return *m_pSeconds < *other.m_pSeconds; }

bool CPortableTime::operator>(const CPortableTime& other) const { return *m_pSeconds > *other.m_pSeconds; }

bool CPortableTime::operator<=(const CPortableTime& other) const { return *m_pSeconds <= *other.m_pSeconds; }

CPortableTimeSpan CPortableTime::operator-(const CPortableTime& other) const {
    return CPortableTimeSpan(Difference(*m_pSeconds, *other.m_pSeconds));
}

CPortableTime CPortableTime::operator+(const CPortableTimeSpan& span) const {
    return CPortableTime(Sum(*m_pSeconds, span.GetTotalSeconds()));
}

CPortableTime CPortableTime::operator-(const CPortableTimeSpan& span) const {
    return CPortableTime(Difference(*m_pSeconds, span.GetTotalSeconds()));
}

CPortableTime& CPortableTime::operator+=(CPortableTimeSpan span) {
    *m_pSeconds = Sum(*m_pSeconds, span.GetTotalSeconds());
    return *this;
}
