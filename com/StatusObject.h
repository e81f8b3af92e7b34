// The library's status object.
#pragma once

#include "com/ReferenceCount.h"
#include "com/Status.h"
#include "portable/BasicString.h"
#include "portable/Export.h"

// Starts with the one reference of its creator. [any thread] for the count; the fields are set before it is handed out.
class KELO_EXPORT CStatus : public IStatus, public IStatusCategory {
public:
    // An error of the library or of a plug-in.
    explicit CStatus(EAudioError error);

    // An errno value.
    explicit CStatus(unsigned int systemError);

    // A text that a person reads; copied.
    explicit CStatus(const char* description);

    CStatus(const CStatus&) = delete;
    CStatus& operator=(const CStatus&) = delete;

    unsigned int AddRef() override;
    unsigned int Release() override;

    // IStatusCategory is denied while the category is 0: callers test for a category by asking.
    int QueryInterface(unsigned long identity, void** face) override;

    const char* GetDescription() override;
    EAudioError GetAudioError() override;
    unsigned int GetSysError() override;

    virtual ~CStatus();

    // SC_NONE takes the category back. Before the status is handed out.
    virtual void SetCategory(EStatusCategory category);
    EStatusCategory GetCategory() override;

private:
    CReferenceCount m_references;
    unsigned int m_nSystemError;
    EAudioError m_eAudioError;
    EStatusCategory m_eCategory;
    CBasicString<char> m_strDescription;
};

// Stores a new status made from `reason` where the caller asked for one; the caller owns its reference.
template <typename TReason>
void ReportStatus(IStatus** status, TReason reason) {
    if (status != nullptr) *status = new CStatus(reason);
}
