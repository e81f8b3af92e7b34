// The library's status object.
#include "com/StatusObject.h"

#include "com/InterfaceIds.h"
#include "com/QueryTable.h"

CStatus::CStatus(EAudioError error) : m_references(1), m_nSystemError(0), m_eAudioError(error), m_eCategory(SC_NONE) {}

CStatus::CStatus(unsigned int systemError)
    : m_references(1), m_nSystemError(systemError), m_eAudioError(AE_NONE), m_eCategory(SC_NONE) {}

CStatus::CStatus(const char* description)
    : m_references(1), m_nSystemError(0), m_eAudioError(AE_NONE), m_eCategory(SC_NONE), m_strDescription(description) {}

CStatus::~CStatus() = default;

unsigned int CStatus::AddRef() { return m_references.Increment(); }

unsigned int CStatus::Release() {
    const unsigned int count = m_references.Decrement();
    if (count == 0) delete this;
    return count;
}

int CStatus::QueryInterface(unsigned long identity, void** face) {
    IStatusCategory* const category = m_eCategory != SC_NONE ? this : nullptr;
    return AnswerQuery(*this, identity, face,
                       {{IID_IUnknown, static_cast<IStatus*>(this)},
                        {IID_IStatus, static_cast<IStatus*>(this)},
                        {IID_IStatusCategory, category}});
}

const char* CStatus::GetDescription() { return m_strDescription.GetText(); }

EAudioError CStatus::GetAudioError() { return m_eAudioError; }

unsigned int CStatus::GetSysError() { return m_nSystemError; }

void CStatus::SetCategory(EStatusCategory category) { m_eCategory = category; }

EStatusCategory CStatus::GetCategory() { return m_eCategory; }
