// Spans of time.
#include "portable/PortableTime.h"

namespace {

// Unsigned 32-bit arithmetic has the wrapping that the contract asks of the signed one.
int SecondsOf(int days, int hours, int minutes, int seconds) {
    const unsigned int allHours = static_cast<unsigned int>(days) * 24 + static_cast<unsigned int>(hours);
    const unsigned int allMinutes = allHours * 60 + static_cast<unsigned int>(minutes);
    return static_cast<int>(allMinutes * 60 + static_cast<unsigned int>(seconds));
}

}  // namespace

CPortableTimeSpan::CPortableTimeSpan(long seconds) : m_pSeconds(std::make_unique<long>(seconds)) {}

CPortableTimeSpan::CPortableTimeSpan(int days, int hours, int minutes, int seconds)
    : CPortableTimeSpan(long{SecondsOf(days, hours, minutes, seconds)}) {}

CPortableTimeSpan::CPortableTimeSpan(const CPortableTimeSpan& other) : CPortableTimeSpan(other.GetTotalSeconds()) {}

CPortableTimeSpan& CPortableTimeSpan::operator=(const CPortableTimeSpan& other) {
    *m_pSeconds = *other.m_pSeconds;
    return *this;
}

CPortableTimeSpan::~CPortableTimeSpan() = default;

long CPortableTimeSpan::GetTotalSeconds() const { return *m_pSeconds; }
