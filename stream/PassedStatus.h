// A caller's status pointer that plug-ins are given as it is.
#pragma once

#include "com/ComPtr.h"
#include "com/Status.h"

// Keeps what several calls store there one after the other from leaking. [one thread]
class CPassedStatus {
public:
    // `status` may be null; what stands there belongs to the caller.
    explicit CPassedStatus(IStatus** status)
        : m_ppStatus(status), m_pStanding(status != nullptr ? *status : nullptr), m_bStored(false) {}
    ~CPassedStatus() { Update(); }

    CPassedStatus(const CPassedStatus&) = delete;
    CPassedStatus& operator=(const CPassedStatus&) = delete;

    IStatus** Get() const { return m_ppStatus; }

    // To be called between two calls that may store a status: releases the one of an earlier call that was replaced.
    // The destructor does so after the last call, one that throws included.
    void Update() {
        if (m_ppStatus == nullptr || *m_ppStatus == m_pStanding) return;
        if (m_bStored) CComPtr<IStatus>::Adopt(m_pStanding);
        m_pStanding = *m_ppStatus;
        m_bStored = true;
    }

private:
    IStatus** m_ppStatus;
    IStatus* m_pStanding;
    bool m_bStored;
};
