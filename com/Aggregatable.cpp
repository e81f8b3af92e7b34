// Inner count and outer object of an aggregatable object.
#include "com/Aggregatable.h"

CAggregatable::CAggregatable(unsigned int flags) : m_innerCount(0), m_pAggregator(nullptr), m_nFlags(flags) {}

CAggregatable::~CAggregatable() = default;

bool CAggregatable::SetAggregator(IUnknown* outer) {
    m_pAggregator = outer;
    return true;
}

bool CAggregatable::GetAggregator(IUnknown** outer) {
    if (outer == nullptr) return false;
    *outer = m_pAggregator;
    if (m_pAggregator != nullptr) m_pAggregator->AddRef();
    return true;
}

unsigned int CAggregatable::InnerAddRef() { return m_innerCount.Increment(); }

unsigned int CAggregatable::InnerRelease() {
    const unsigned int count = m_innerCount.Decrement();
    if (count != 0 || (m_nFlags & kNeverDeleted) != 0) return count;
    delete this;
    return 0;
}
