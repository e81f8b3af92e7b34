// Calendar fields of times.
#include "portable/PortableTime.h"

namespace {

// All zero for a time that has no calendar fields.
tm LocalFields(long seconds) {
    const tm* const fields = localtime(&seconds);
    return fields != nullptr ? *fields : tm();
}

// The C library's record itself, or its copy when the caller brought one.
tm* HandOut(tm* fields, tm* out) {
    if (out == nullptr) return fields;
    if (fields != nullptr) *out = *fields;
    return out;
}

}  // namespace

// The last years that the C library knows wrap.
int CPortableTime::GetYear() {
    return static_cast<int>(static_cast<unsigned int>(LocalFields(*m_pSeconds).tm_year) + 1900);
}

int CPortableTime::GetMonth() { return LocalFields(*m_pSeconds).tm_mon + 1; }

int CPortableTime::GetDay() { return LocalFields(*m_pSeconds).tm_mday; }

int CPortableTime::GetHour() { return LocalFields(*m_pSeconds).tm_hour; }

int CPortableTime::GetMinute() { return LocalFields(*m_pSeconds).tm_min; }

int CPortableTime::GetSecond() { return LocalFields(*m_pSeconds).tm_sec; }

int CPortableTime::GetDayOfWeek() { return LocalFields(*m_pSeconds).tm_wday; }

tm* CPortableTime::GetLocalTm(tm* out) const { return HandOut(localtime(m_pSeconds.get()), out); }

tm* CPortableTime::GetGmtTm(tm* out) const { return HandOut(gmtime(m_pSeconds.get()), out); }

int CPortableTimeSpan::GetSeconds() const { return LocalFields(*m_pSeconds).tm_sec; }
